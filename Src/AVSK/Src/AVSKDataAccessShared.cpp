// Shared data: values that the library stores for several plugins and publishes
// as datarefs of the host. Owns gSharedData, gSharedNames and gSubscribers; called
// by plugins.
#include "AVSK/AVSKDataAccess.h"

#include "AVSKCallbackSequence.h"
#include "AVSKDispatch.h"
#include "AVSKModules.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

struct AVSKSharedDataSubscriber {
    AVSKDataChanged_f callback;
    void *refcon;
    int owner;

    bool operator==(const AVSKSharedDataSubscriber &other) const {
        return callback == other.callback && refcon == other.refcon && owner == other.owner;
    }
};

using Subscribers = AVSKOwnedSequences<AVSKSharedDataSubscriber, &AVSKSharedDataSubscriber::owner>;

// One value. Never freed, because its dataref outlives the plugins that share it.
struct AVSKSharedDataRecord {
    std::string name;
    int type;
    unsigned char *buffer;
    int size; // of the buffer, in bytes
    Subscribers::Sequence subscribers;
};

std::vector<AVSKSharedDataRecord *> &gSharedData = *new std::vector<AVSKSharedDataRecord *>; // in order of creation
using SharedNames = std::unordered_map<std::string_view, AVSKSharedDataRecord *>;
SharedNames &gSharedNames = *new SharedNames; // the same records; the keys are their names
Subscribers &gSubscribers = *new Subscribers; // of all records

int InitialSize(int type) {
    switch (type) {
    case AVSKDataTypeDouble:
        return 8;
    case AVSKDataTypeData:
        return 1;
    default:
        return 4;
    }
}

int AVSK_TMIN(int a, int b) { return b < a ? b : a; }

AVSKSharedDataRecord *FindShared(const char *name) {
    const auto found = gSharedNames.find(name);
    return found == gSharedNames.end() ? nullptr : found->second;
}

// Notifies every subscriber of a write, the writer included.
void Notify(AVSKSharedDataRecord &record) {
    StDispatchCallback guard;
    record.subscribers.EachOfNow([&guard](const AVSKSharedDataSubscriber &subscriber) {
        if (guard.Enter(subscriber.owner))
            subscriber.callback(subscriber.refcon);
    });
}

template <class T>
T GetScalar(void *refcon) {
    const auto &record = *static_cast<const AVSKSharedDataRecord *>(refcon);
    T value = 0;
    std::memcpy(&value, record.buffer, sizeof value);
    return value;
}

template <class T>
void SetScalar(void *refcon, T value) {
    auto &record = *static_cast<AVSKSharedDataRecord *>(refcon);
    std::memcpy(record.buffer, &value, sizeof value);
    Notify(record);
}

// Copies elements and returns their count. Past the end of the value the count
// is negative; a negative offset gives 0.
int GetElements(void *refcon, int elementSize, void *values, int offset, int max) {
    const auto &record = *static_cast<const AVSKSharedDataRecord *>(refcon);
    const int count = record.size / elementSize;
    if (!values)
        return count;
    if (offset < 0)
        return 0;
    const int copied = AVSK_TMIN(max, count - offset);
    if (copied > 0)
        std::memcpy(values, record.buffer + offset * elementSize, static_cast<std::size_t>(copied * elementSize));
    return copied;
}

// Grows the value as needed; it never shrinks. A negative offset or count, or a
// size above 2 GiB, writes nothing.
void SetElements(void *refcon, int elementSize, const void *values, int offset, int count) {
    auto &record = *static_cast<AVSKSharedDataRecord *>(refcon);
    if (offset < 0 || count < 0 || (count > 0 && !values))
        return;
    const std::int64_t needed = (static_cast<std::int64_t>(offset) + count) * elementSize;
    if (needed > INT32_MAX)
        return;
    if (record.size < needed) {
        auto *grown = static_cast<unsigned char *>(std::realloc(record.buffer, static_cast<std::size_t>(needed)));
        if (!grown) // unreachable: only without memory
            return; // unreachable: only without memory
        // A gap reads as zeros.
        std::memset(grown + record.size, 0, static_cast<std::size_t>(needed - record.size));
        record.buffer = grown;
        record.size = static_cast<int>(needed);
    }
    if (count > 0)
        std::memcpy(record.buffer + offset * elementSize, values, static_cast<std::size_t>(count * elementSize));
    Notify(record);
}

// The accessors of the datarefs: one pair per type.

int AVSKSharedDataGeti(void *refcon) { return GetScalar<int>(refcon); }

void AVSKSharedDataSeti(void *refcon, int value) { SetScalar<int>(refcon, value); }

float AVSKSharedDataGetf(void *refcon) { return GetScalar<float>(refcon); }

void AVSKSharedDataSetf(void *refcon, float value) { SetScalar<float>(refcon, value); }

double AVSKSharedDataGetd(void *refcon) { return GetScalar<double>(refcon); }

void AVSKSharedDataSetd(void *refcon, double value) { SetScalar<double>(refcon, value); }

int AVSKSharedDataGetvi(void *refcon, int *values, int offset, int max) {
    return GetElements(refcon, 4, values, offset, max);
}

void AVSKSharedDataSetvi(void *refcon, int *values, int offset, int count) {
    SetElements(refcon, 4, values, offset, count);
}

int AVSKSharedDataGetvf(void *refcon, float *values, int offset, int max) {
    return GetElements(refcon, 4, values, offset, max);
}

void AVSKSharedDataSetvf(void *refcon, float *values, int offset, int count) {
    SetElements(refcon, 4, values, offset, count);
}

int AVSKSharedDataGetb(void *refcon, void *bytes, int offset, int max) {
    return GetElements(refcon, 1, bytes, offset, max);
}

void AVSKSharedDataSetb(void *refcon, void *bytes, int offset, int count) {
    SetElements(refcon, 1, bytes, offset, count);
}

// Registers the dataref, with the accessors of its type only. The host owns it,
// so it is readable whichever plugins are enabled.
void Publish(AVSKSharedDataRecord &record) {
    const StDispatchCallback asHost(AVSK_PLUGIN_AERIVO);
    const auto is = [&record](int type) { return record.type == type; };
    AVSKRegisterDataAccessor(record.name.c_str(), record.type, 1,                        //
                             is(AVSKDataTypeInt) ? AVSKSharedDataGeti : nullptr,         //
                             is(AVSKDataTypeInt) ? AVSKSharedDataSeti : nullptr,         //
                             is(AVSKDataTypeFloat) ? AVSKSharedDataGetf : nullptr,       //
                             is(AVSKDataTypeFloat) ? AVSKSharedDataSetf : nullptr,       //
                             is(AVSKDataTypeDouble) ? AVSKSharedDataGetd : nullptr,      //
                             is(AVSKDataTypeDouble) ? AVSKSharedDataSetd : nullptr,      //
                             is(AVSKDataTypeIntArray) ? AVSKSharedDataGetvi : nullptr,   //
                             is(AVSKDataTypeIntArray) ? AVSKSharedDataSetvi : nullptr,   //
                             is(AVSKDataTypeFloatArray) ? AVSKSharedDataGetvf : nullptr, //
                             is(AVSKDataTypeFloatArray) ? AVSKSharedDataSetvf : nullptr, //
                             is(AVSKDataTypeData) ? AVSKSharedDataGetb : nullptr,        //
                             is(AVSKDataTypeData) ? AVSKSharedDataSetb : nullptr, &record, &record);
}

} // namespace

int AVSKShareData(const char *name, int type, AVSKDataChanged_f callback, void *refcon) {
    if (!name)
        return 0;
    AVSKSharedDataRecord *record = FindShared(name);
    if (record && record->type != type)
        return 0;
    if (!record) {
        const int size = InitialSize(type);
        auto *buffer = static_cast<unsigned char *>(std::calloc(1, static_cast<std::size_t>(size)));
        if (!buffer)  // unreachable: only without memory
            return 0; // unreachable: only without memory
        record = new AVSKSharedDataRecord{name, type, buffer, size, {}};
        gSharedData.push_back(record);
        gSharedNames.emplace(record->name, record);
        Publish(*record);
    }
    if (callback)
        gSubscribers.Append(record->subscribers, {callback, refcon, AVSKGetDispatchedPlugin()});
    return 1;
}

int AVSKUnshareData(const char *name, int type, AVSKDataChanged_f callback, void *refcon) {
    if (!name || !callback)
        return 0;
    AVSKSharedDataRecord *record = FindShared(name);
    if (!record || record->type != type)
        return 0;
    return gSubscribers.EraseOne(record->subscribers, {callback, refcon, AVSKGetDispatchedPlugin()}, /*newest=*/false);
}

void AVSKSharedDataCleanupHook(int pluginID) { gSubscribers.EraseAllOf(pluginID); }

bool SharedDataHolds(int pluginID) { return gSubscribers.Holds(pluginID); }
