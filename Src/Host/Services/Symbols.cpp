// The service that looks up functions of the host, and these functions:
//
//     int hostFrameNumber(void);                     the frame, 1 for the first
//     float hostTerrainHeight(float x, float z);     metres, see Terrain.h
#include "ServiceTable.h"
#include "Simulator.h"
#include "World/Terrain.h"

#include <string_view>

namespace host {
namespace {

int FrameNumber() { return Enter().frame; }

float TerrainHeight(float x, float z) {
    Enter();
    return static_cast<float>(GroundAt(x, z).height);
}

void *FindSymbol(const char *name) {
    Enter();
    const std::string_view wanted = name ? name : "";
    if (wanted == "hostFrameNumber")
        return reinterpret_cast<void *>(FrameNumber);
    if (wanted == "hostTerrainHeight")
        return reinterpret_cast<void *>(TerrainHeight);
    return nullptr;
}

} // namespace

void FillSymbolSlots(AVSKHostCallbacks &table) { table.findSymbol = FindSymbol; }

} // namespace host
