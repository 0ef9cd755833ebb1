// Reads through the library into guarded memory; see DatarefReading.h.
#include "DatarefReading.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

#include <sys/mman.h>
#include <unistd.h>

namespace host {
namespace {

// Bytes that end where a page begins that may not be accessed.
class GuardedBytes {
  public:
    explicit GuardedBytes(std::size_t size) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t room = (size + page - 1) / page * page;
        mSize = room + page;
        mMemory = mmap(nullptr, mSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mMemory == MAP_FAILED)
            return;
        mprotect(static_cast<char *>(mMemory) + room, page, PROT_NONE);
        mBegin = static_cast<char *>(mMemory) + room - size;
    }
    ~GuardedBytes() {
        if (mBegin)
            munmap(mMemory, mSize);
    }
    GuardedBytes(const GuardedBytes &) = delete;
    GuardedBytes &operator=(const GuardedBytes &) = delete;

    char *Begin() const { return mBegin; } // null if there is not enough memory

  private:
    void *mMemory = MAP_FAILED;
    char *mBegin = nullptr;
    std::size_t mSize = 0;
};

std::string NumberText(double number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.9g", number);
    return text.data();
}

template <typename T, typename Read>
std::string ReadArray(AVSKDataRef ref, int offset, int count, Read read) {
    constexpr int kMostShown = 64;
    if (count == 0)
        return "length " + std::to_string(read(ref, nullptr, 0, 0));
    const GuardedBytes bytes(static_cast<std::size_t>(count) * sizeof(T));
    if (!bytes.Begin())
        return "not read: there is not enough memory";
    T *values = reinterpret_cast<T *>(bytes.Begin());
    const int returned = read(ref, values, offset, count);
    std::string text = std::to_string(returned) + " elements:";
    for (int i = 0; i < std::min({returned, count, kMostShown}); ++i)
        text += " " + NumberText(static_cast<double>(values[i]));
    return returned > kMostShown ? text + " ..." : text;
}

} // namespace

const std::vector<Accessor> &Accessors() {
    static const std::vector<Accessor> accessors = {
        {"int", AVSKDataTypeInt, false},          {"float", AVSKDataTypeFloat, false},
        {"double", AVSKDataTypeDouble, false},    {"ints", AVSKDataTypeIntArray, true},
        {"floats", AVSKDataTypeFloatArray, true}, {"data", AVSKDataTypeData, true},
    };
    return accessors;
}

std::string ReadBy(std::string_view word, AVSKDataRef ref, int offset, int count) {
    if (word == "int")
        return std::to_string(AVSKGetDatai(ref));
    if (word == "float")
        return NumberText(static_cast<double>(AVSKGetDataf(ref)));
    if (word == "double")
        return NumberText(AVSKGetDatad(ref));
    if (word == "ints")
        return ReadArray<int>(ref, offset, count, AVSKGetDatavi);
    if (word == "floats")
        return ReadArray<float>(ref, offset, count, AVSKGetDatavf);
    return ReadArray<unsigned char>(ref, offset, count, AVSKGetDatab);
}

} // namespace host
