// Reads and writes whole files, and reads parts of large ones.
#ifndef AVSK_HOST_COMMON_FILES_H
#define AVSK_HOST_COMMON_FILES_H

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {

// The bytes of a file; none, with errno set, if it cannot be read.
inline std::optional<std::string> ReadFile(const std::string &path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream bytes;
    if (!stream || (stream.peek() != std::ifstream::traits_type::eof() && !(bytes << stream.rdbuf())) || stream.bad())
        return std::nullopt;
    return std::move(bytes).str();
}

// Writes a text to the end. False, with errno set, if that fails. It can be called while a signal is handled.
inline bool WriteAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return false;
        text.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

// A file of which parts are read. Offsets and counts may come from the file itself:
// a part that does not lie within the file is empty.
class FileParts {
  public:
    explicit FileParts(const std::string &path) : mFile(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        struct stat info {};
        if (mFile >= 0 && fstat(mFile, &info) == 0)
            mSize = static_cast<std::uint64_t>(info.st_size);
    }
    ~FileParts() {
        if (mFile >= 0)
            close(mFile);
    }
    FileParts(const FileParts &) = delete;
    FileParts &operator=(const FileParts &) = delete;

    bool IsOpen() const { return mFile >= 0; }
    std::uint64_t Size() const { return mSize; }

    bool Contains(std::uint64_t offset, std::uint64_t size) const { return offset <= mSize && size <= mSize - offset; }

    std::string Bytes(std::uint64_t offset, std::uint64_t size) const { return Part<std::string>(offset, size); }

    template <class T>
    std::vector<T> Table(std::uint64_t offset, std::uint64_t count) const {
        static_assert(std::is_trivially_copyable_v<T>);
        return Part<std::vector<T>>(offset, count);
    }

  private:
    template <class Container>
    Container Part(std::uint64_t offset, std::uint64_t count) const {
        constexpr std::size_t kItem = sizeof(typename Container::value_type);
        if (count > mSize / kItem || !Contains(offset, count * kItem))
            return {};
        Container part;
        part.resize(static_cast<std::size_t>(count));
        const auto size = static_cast<ssize_t>(part.size() * kItem);
        // A file can become shorter while it is read.
        return pread(mFile, part.data(), static_cast<std::size_t>(size), static_cast<off_t>(offset)) == size
                   ? std::move(part)
                   : Container{};
    }

    int mFile;
    std::uint64_t mSize = 0;
};

} // namespace host

#endif
