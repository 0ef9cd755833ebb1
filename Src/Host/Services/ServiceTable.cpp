// Assembles the table of services and checks that no slot is empty.
#include "ServiceTable.h"

#include <array>
#include <bit>
#include <stdexcept>
#include <string>

namespace host {

static_assert(sizeof(AVSKHostCallbacks) == 288, "the library knows a full table by its 288 bytes");

namespace {

constexpr int kTableVersion = 4; // the first with all optional services: messages and progress

// The library does not test slots for null: an empty slot would crash at its first call.
void CheckComplete(const AVSKHostCallbacks &table) {
    const auto words = std::bit_cast<std::array<AVSKWord, AVSK_HOST_SLOTS>>(table);
    for (std::size_t slot = 0; slot < words.size(); ++slot) {
        if (words[slot] == 0)
            throw std::logic_error("slot " + std::to_string(slot) + " of the table of services is empty");
    }
}

} // namespace

AVSKHostCallbacks MakeTable() {
    AVSKHostCallbacks table{};
    table.version = kTableVersion;
    table.sizeInBytes = sizeof table;
    FillAircraftSlots(table);
    FillCameraSlots(table);
    FillCommandSlots(table);
    FillDisplaySlots(table);
    FillFileSlots(table);
    FillGraphicsSlots(table);
    FillInputSlots(table);
    FillMenuSlots(table);
    FillNavigationSlots(table);
    FillObjectSlots(table);
    FillProbeSlots(table);
    FillSymbolSlots(table);
    FillSystemSlots(table);
    CheckComplete(table);
    return table;
}

} // namespace host
