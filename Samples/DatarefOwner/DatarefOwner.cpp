// DatarefOwner: publishes two values that any plugin can read and write by
// name. The library stores nothing: each read and write calls one of the
// accessors below. DatarefReader is the other side.
#include <AVSK/AVSK.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

int gCounter = 0;
std::array<float, 4> gLevels{};

AVSKDataRef gCounterRef = nullptr;
AVSKDataRef gLevelsRef = nullptr;

int ReadCounter(void *) { return gCounter; }
void WriteCounter(void *, int value) { gCounter = value; }

// Returns how many of `wanted` elements, starting at `offset`, lie inside the array.
int Clip(int offset, int wanted) {
    const int size = static_cast<int>(gLevels.size());
    if (offset < 0 || offset >= size || wanted <= 0)
        return 0;
    return std::min(wanted, size - offset);
}

// By convention a null buffer asks for the length.
int ReadLevels(void *, float *values, int offset, int max) {
    if (values == nullptr)
        return static_cast<int>(gLevels.size());
    const int count = Clip(offset, max);
    std::copy_n(gLevels.begin() + (count > 0 ? offset : 0), count, values);
    return count;
}

void WriteLevels(void *, float *values, int offset, int count) {
    const int fits = Clip(offset, count);
    std::copy_n(values, fits, gLevels.begin() + (fits > 0 ? offset : 0));
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "DatarefOwner");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.datarefowner");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Publishes sample/counter and sample/levels.");

    // The accessors come in pairs, read and write: int, float, double, int array, float array, bytes.
    gCounterRef = AVSKRegisterDataAccessor("sample/counter", AVSKDataTypeInt, 1, ReadCounter, WriteCounter, nullptr,
                                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, nullptr);
    gLevelsRef = AVSKRegisterDataAccessor("sample/levels", AVSKDataTypeFloatArray, 1, nullptr, nullptr, nullptr,
                                          nullptr, nullptr, nullptr, nullptr, nullptr, ReadLevels, WriteLevels, nullptr,
                                          nullptr, nullptr, nullptr);
    AVSKDebugString("DatarefOwner: publishes sample/counter and sample/levels\n");
    return 1;
}

// From here on readers that kept the handles read 0, until a plugin publishes the names again.
void AVPluginStop(void) {
    char line[AVSK_TEXT_SIZE];
    std::snprintf(line, sizeof line, "DatarefOwner: the counter ends at %d\n", gCounter);
    AVSKDebugString(line);
    AVSKUnregisterDataAccessor(gCounterRef);
    AVSKUnregisterDataAccessor(gLevelsRef);
}

// These are empty: the log reports every entry point that a plugin lacks.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
