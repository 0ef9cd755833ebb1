// Datarefs: the index of names, the pool of records, whose addresses are the
// handles, and typed reads and writes. Owns gDataRefs, gNames, gDataBlock,
// gDataPages, gDataFree, gDataCount and gOwned; called by plugins, the host and the
// library. Shared data is in AVSKDataAccessShared.cpp.
#include "AVSKDataAccess.h"

#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKModules.h"

#include <cstdint>
#include <functional>
#include <new>
#include <string_view>
#include <vector>

std::map<std::string, AVSKData_t *> &gDataRefs = *new std::map<std::string, AVSKData_t *>;
DataBlock *gDataBlock = nullptr;
DataBlock *gDataFree = nullptr;
int gDataCount = 0;

namespace {

// A hash table with open addressing; records are never removed. gDataRefs has the
// same records in the order of their names.
class NameIndex {
  public:
    AVSKData_t *Find(std::string_view name) const {
        if (slots.empty())
            return nullptr;
        const std::size_t hash = Hash(name);
        for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
            const Slot &slot = slots[at];
            if (!slot.record)
                return nullptr;
            if (slot.hash == hash && slot.name == name)
                return slot.record;
        }
    }

    // Reserves a slot for one more record, so that Insert cannot fail.
    void Reserve() {
        if (2 * (used + 1) <= slots.size())
            return;
        std::vector<Slot> larger(slots.empty() ? 64 : 2 * slots.size());
        larger.swap(slots);
        mask = slots.size() - 1;
        for (const Slot &slot : larger)
            if (slot.record)
                Place(slot);
    }

    void Insert(AVSKData_t *record) {
        Place({Hash(record->name), record->name, record});
        ++used;
    }

  private:
    // The name is here too: its text and the record are fetched in parallel.
    struct Slot {
        std::size_t hash = 0;
        std::string_view name;
        AVSKData_t *record = nullptr;
    };

    static std::size_t Hash(std::string_view name) { return std::hash<std::string_view>()(name); }

    void Place(Slot slot) {
        std::size_t at = slot.hash & mask;
        while (slots[at].record)
            at = (at + 1) & mask;
        slots[at] = slot;
    }

    std::vector<Slot> slots; // a power of two, at most half full
    std::size_t mask = 0;
    std::size_t used = 0;
};

NameIndex &gNames = *new NameIndex;

// Each block has a memory page of its own. A table over the address space holds
// for each page how many slots are in use and which have an owner, so a handle
// is validated without a search of the blocks.
constexpr std::size_t kPageBits = 12;
constexpr std::size_t kPageSize = 1U << kPageBits;
constexpr std::size_t kLeafBits = 10;
static_assert(sizeof(DataBlock) <= kPageSize, "a block is one page");

struct DataPage {
    std::uint32_t used = 0;
    std::uint32_t owned = 0; // a bit per slot
};
static_assert(kDataBlockRecords <= 32, "a bit per slot");

DataPage *gDataPages[1U << (32 - kPageBits - kLeafBits)];

std::uintptr_t AddressOf(const void *p) { return reinterpret_cast<std::uintptr_t>(p); }

DataPage *&LeafOf(std::uintptr_t address) { return gDataPages[address >> (kPageBits + kLeafBits)]; }

std::size_t PageInLeaf(std::uintptr_t address) { return (address >> kPageBits) & ((1U << kLeafBits) - 1); }

std::size_t SlotOf(std::uintptr_t address) {
    return ((address & (kPageSize - 1)) - DataBlock::kHeaderSize) / sizeof(AVSKData_t);
}

// The page of the record whose address the handle is, or null.
DataPage *PageOf(const void *handle) {
    const std::uintptr_t address = AddressOf(handle);
    DataPage *leaf = LeafOf(address);
    if (!leaf)
        return nullptr;
    DataPage &page = leaf[PageInLeaf(address)];
    // Below the first slot the subtraction wraps to a large number.
    const std::size_t offset = (address & (kPageSize - 1)) - DataBlock::kHeaderSize;
    if (offset >= page.used * sizeof(AVSKData_t) || offset % sizeof(AVSKData_t) != 0)
        return nullptr;
    return &page;
}

// The first dataref of each owner, by plugin ID. The others follow in the records.
std::vector<AVSKData_t *> &gOwned = *new std::vector<AVSKData_t *>;

AVSKData_t *FirstOwned(int owner) {
    return static_cast<std::size_t>(owner) < gOwned.size() ? gOwned[static_cast<std::size_t>(owner)] : nullptr;
}

void TakeOwner(AVSKData_t *record, int owner) {
    record->owner = owner;
    PageOf(record)->owned |= 1U << SlotOf(AddressOf(record));
    const auto index = static_cast<std::size_t>(owner);
    if (index >= gOwned.size())
        gOwned.resize(index + 1);
    record->previousOwned = nullptr;
    record->nextOwned = gOwned[index];
    if (record->nextOwned)
        record->nextOwned->previousOwned = record;
    gOwned[index] = record;
}

void DropOwner(AVSKData_t *record) {
    if (record->nextOwned)
        record->nextOwned->previousOwned = record->previousOwned;
    if (record->previousOwned)
        record->previousOwned->nextOwned = record->nextOwned;
    else
        gOwned[static_cast<std::size_t>(record->owner)] = record->nextOwned;
    PageOf(record)->owned &= ~(1U << SlotOf(AddressOf(record)));
    record->owner = NO_PLUGIN_ID;
}

void AllocDataBlock() {
    void *memory = ::operator new(sizeof(DataBlock), std::align_val_t(kPageSize));
    auto *block = new (memory) DataBlock();
    DataPage *&leaf = LeafOf(AddressOf(block));
    if (!leaf)
        leaf = new DataPage[1U << kLeafBits];
    block->capacity = kDataBlockRecords;
    if (gDataFree)
        gDataFree->next = block;
    gDataFree = block;
    if (!gDataBlock)
        gDataBlock = block;
}

AVSKData_t *AllocDataRef() {
    if (!gDataFree || gDataFree->count == gDataFree->capacity)
        AllocDataBlock();
    auto *record = new (gDataFree->Slot(gDataFree->count)) AVSKData_t;
    ++gDataFree->count;
    ++LeafOf(AddressOf(record))[PageInLeaf(AddressOf(record))].used;
    ++gDataCount;
    return record;
}

// One function reads and one writes all types; the types differ only in the
// accessor's member and its arguments.
template <class Result, class... Arguments>
Result Read(AVSKDataRef ref, Result (*AVSKData_t::*accessor)(void *, Arguments...), Arguments... arguments) {
    if (!ref || !(ref->*accessor))
        return Result();
    if (const StDispatchCallback guard(ref->owner); guard())
        return (ref->*accessor)(ref->readRefcon, arguments...);
    return Result();
}

template <class... Arguments>
void Write(AVSKDataRef ref, void (*AVSKData_t::*accessor)(void *, Arguments...), Arguments... arguments) {
    if (!ref || !ref->writable || !(ref->*accessor))
        return;
    if (const StDispatchCallback guard(ref->owner); guard())
        (ref->*accessor)(ref->writeRefcon, arguments...);
}

} // namespace

AVSKData_t *DataIsValid(AVSKDataRef handle, std::map<std::string, AVSKData_t *>::iterator *outPosition) {
    if (!PageOf(handle))
        return nullptr;
    if (outPosition)
        *outPosition = gDataRefs.find(handle->name);
    return handle;
}

const char *DebugDataRefName(AVSKDataRef handle) {
    if (!handle)
        return "(null dataref)";
    return DataIsValid(handle) ? handle->name.c_str() : "(invalid dataref)";
}

AVSKDataRef AVSKFindDataRef(const char *name) {
    AVSKData_t *record = name ? gNames.Find(name) : nullptr;
    return record && record->owner != NO_PLUGIN_ID ? record : nullptr;
}

AVSKDataRef AVSKRegisterDataAccessor(const char *name, int types, int writable, AVSKGetDatai_f readInt,
                                     AVSKSetDatai_f writeInt, AVSKGetDataf_f readFloat, AVSKSetDataf_f writeFloat,
                                     AVSKGetDatad_f readDouble, AVSKSetDatad_f writeDouble,
                                     AVSKGetDatavi_f readIntArray, AVSKSetDatavi_f writeIntArray,
                                     AVSKGetDatavf_f readFloatArray, AVSKSetDatavf_f writeFloatArray,
                                     AVSKGetDatab_f readData, AVSKSetDatab_f writeData, void *readRefcon,
                                     void *writeRefcon) {
    if (!name || !MayCreate())
        return nullptr;
    AVSKData_t *record = gNames.Find(name);
    if (record && record->owner != NO_PLUGIN_ID) {
        AVSKSendError("Dataref is already registered by someone else.");
        return record;
    }
    if (!record) {
        std::string key = name;
        gNames.Reserve();
        record = AllocDataRef();
        record->name = key;
        gDataRefs.emplace(std::move(key), record);
        gNames.Insert(record);
    }
    record->types = types;
    record->writable = writable;
    record->readInt = readInt;
    record->writeInt = writeInt;
    record->readFloat = readFloat;
    record->writeFloat = writeFloat;
    record->readDouble = readDouble;
    record->writeDouble = writeDouble;
    record->readIntArray = readIntArray;
    record->writeIntArray = writeIntArray;
    record->readFloatArray = readFloatArray;
    record->writeFloatArray = writeFloatArray;
    record->readData = readData;
    record->writeData = writeData;
    record->readRefcon = readRefcon;
    record->writeRefcon = writeRefcon;
    TakeOwner(record, AVSKGetDispatchedPlugin());
    return record;
}

void AVSKUnregisterDataAccessor(AVSKDataRef ref) {
    AVSKData_t *record = DataIsValid(ref);
    if (!record)
        AVSKSendError("Dataref is illegal and cannot be unregistered.");
    else if (record->owner != AVSKGetDispatchedPlugin())
        AVSKSendError("Dataref is not owned by you - you cannot unregsiter.");
    else if (record->owner != NO_PLUGIN_ID)
        DropOwner(record);
}

int AVSKCanWriteDataRef(AVSKDataRef ref) {
    const AVSKData_t *record = DataIsValid(ref);
    return record ? record->writable : 0;
}

int AVSKIsDataRefGood(AVSKDataRef ref) {
    const DataPage *page = PageOf(ref);
    return page && (page->owned >> SlotOf(AddressOf(ref)) & 1U);
}

int AVSKGetDataRefTypes(AVSKDataRef ref) {
    const AVSKData_t *record = DataIsValid(ref);
    return record ? record->types : 0;
}

void AVSKDataRefsCleanupHook(int pluginID) {
    while (AVSKData_t *record = FirstOwned(pluginID))
        DropOwner(record);
}

bool DataRefsHold(int pluginID) { return FirstOwned(pluginID) != nullptr; }

int AVSKGetDatai(AVSKDataRef ref) { return Read(ref, &AVSKData_t::readInt); }

void AVSKSetDatai(AVSKDataRef ref, int value) { Write(ref, &AVSKData_t::writeInt, value); }

float AVSKGetDataf(AVSKDataRef ref) { return Read(ref, &AVSKData_t::readFloat); }

void AVSKSetDataf(AVSKDataRef ref, float value) { Write(ref, &AVSKData_t::writeFloat, value); }

double AVSKGetDatad(AVSKDataRef ref) { return Read(ref, &AVSKData_t::readDouble); }

void AVSKSetDatad(AVSKDataRef ref, double value) { Write(ref, &AVSKData_t::writeDouble, value); }

int AVSKGetDatavi(AVSKDataRef ref, int *values, int offset, int max) {
    return Read(ref, &AVSKData_t::readIntArray, values, offset, max);
}

void AVSKSetDatavi(AVSKDataRef ref, int *values, int offset, int count) {
    Write(ref, &AVSKData_t::writeIntArray, values, offset, count);
}

int AVSKGetDatavf(AVSKDataRef ref, float *values, int offset, int max) {
    return Read(ref, &AVSKData_t::readFloatArray, values, offset, max);
}

void AVSKSetDatavf(AVSKDataRef ref, float *values, int offset, int count) {
    Write(ref, &AVSKData_t::writeFloatArray, values, offset, count);
}

int AVSKGetDatab(AVSKDataRef ref, void *bytes, int offset, int max) {
    return Read(ref, &AVSKData_t::readData, bytes, offset, max);
}

void AVSKSetDatab(AVSKDataRef ref, void *bytes, int offset, int count) {
    Write(ref, &AVSKData_t::writeData, bytes, offset, count);
}
