// The records of datarefs. A handle is a record's address. Records are never
// freed or moved, so a handle stays valid as long as the library is loaded.
#ifndef AVSK_DATA_ACCESS_RECORDS_H
#define AVSK_DATA_ACCESS_RECORDS_H

#include "AVSK/AVSKDataAccess.h"

#include <cstddef>
#include <map>
#include <string>

// Hidden symbols are reached without the global offset table.
#pragma GCC visibility push(hidden)

struct AVSKData_t {
    std::string name;
    int types = 0;
    int writable = 0;
    int owner = 0; // -1: nobody publishes it
    AVSKGetDatai_f readInt = nullptr;
    AVSKSetDatai_f writeInt = nullptr;
    AVSKGetDataf_f readFloat = nullptr;
    AVSKSetDataf_f writeFloat = nullptr;
    AVSKGetDatad_f readDouble = nullptr;
    AVSKSetDatad_f writeDouble = nullptr;
    AVSKGetDatavi_f readIntArray = nullptr;
    AVSKSetDatavi_f writeIntArray = nullptr;
    AVSKGetDatavf_f readFloatArray = nullptr;
    AVSKSetDatavf_f writeFloatArray = nullptr;
    AVSKGetDatab_f readData = nullptr;
    AVSKSetDatab_f writeData = nullptr;
    void *readRefcon = nullptr;
    void *writeRefcon = nullptr;

    // The owner's other datarefs.
    AVSKData_t *nextOwned = nullptr;
    AVSKData_t *previousOwned = nullptr;
};

constexpr int kDataBlockRecords = 32;

// A block of the pool: 32 slots, used in order.
struct DataBlock {
    DataBlock *next;
    int capacity;
    int count; // slots in use

    static constexpr std::size_t kHeaderSize = 12;
    alignas(AVSKData_t) unsigned char slots[kDataBlockRecords * sizeof(AVSKData_t)];

    void *Slot(int index) { return slots + static_cast<std::size_t>(index) * sizeof(AVSKData_t); }
};
static_assert(offsetof(DataBlock, slots) == DataBlock::kHeaderSize, "three words, then the records");

extern std::map<std::string, AVSKData_t *> &gDataRefs; // entries are never removed
extern DataBlock *gDataBlock;                          // the first block
extern DataBlock *gDataFree;                           // the last block, which has the next slot
extern int gDataCount;                                 // records ever made; only for debuggers, nothing reads it

// The record if handle is the address of one, else null; on request its position in gDataRefs.
AVSKData_t *DataIsValid(AVSKDataRef handle, std::map<std::string, AVSKData_t *>::iterator *outPosition = nullptr);
// A label for a debugger. The library does not call it, only the tests do.
const char *DebugDataRefName(AVSKDataRef handle);

#pragma GCC visibility pop

#endif
