// The records behind datarefs. Records are never freed or moved, so that a
// handle, a record's address, stays good for the life of the library.
#ifndef AVSK_DATA_ACCESS_RECORDS_H
#define AVSK_DATA_ACCESS_RECORDS_H

#include "AVSK/AVSKDataAccess.h"

#include <cstddef>
#include <map>
#include <string>

// Known to be local, so that it is reached without the global offset table.
#pragma GCC visibility push(hidden)

struct AVSKData_t {
    std::string name;
    int types = 0;
    int writable = 0;
    int owner = 0; // -1: nobody publishes it now
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
};

constexpr int kDataBlockRecords = 32;

// A link of the pool: room for 32 records, handed out in order.
struct AVSKDataBlock {
    AVSKDataBlock *next;
    int capacity;
    int count; // handed out

    static constexpr std::size_t kHeaderSize = 12;
    alignas(AVSKData_t) unsigned char slots[kDataBlockRecords * sizeof(AVSKData_t)];

    void *Slot(int index) { return slots + static_cast<std::size_t>(index) * sizeof(AVSKData_t); }
};
static_assert(offsetof(AVSKDataBlock, slots) == AVSKDataBlock::kHeaderSize, "three words, then the records");

extern std::map<std::string, AVSKData_t *> &gDataRefs; // entries are never removed
extern AVSKDataBlock *gDataBlock;                      // the first block
extern AVSKDataBlock *gDataFree;                       // the last one, from which slots are cut
extern int gDataCount;                                 // records ever made

// The record if handle is one's address, else null; on request its place in gDataRefs.
AVSKData_t *DataIsValid(AVSKDataRef handle, std::map<std::string, AVSKData_t *>::iterator *outPosition = nullptr);
// A name for a debugger's eye.
const char *DebugDataRefName(AVSKDataRef handle);

#pragma GCC visibility pop

#endif
