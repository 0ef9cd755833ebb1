// The simulator's own datarefs; see Datarefs.h.
#include "Datarefs.h"

#include "Simulator.h"

#include "AVSK/AVSKDataAccess.h"

#include <algorithm>
#include <cstring>

namespace host {
namespace {

// The accessors of one dataref; a null accessor is a type that it does not have.
struct Accessors {
    AVSKGetDatai_f readInt = nullptr;
    AVSKSetDatai_f writeInt = nullptr;
    AVSKGetDataf_f readFloat = nullptr;
    AVSKSetDataf_f writeFloat = nullptr;
    AVSKGetDatad_f readDouble = nullptr;
    AVSKSetDatad_f writeDouble = nullptr;
    AVSKGetDatavf_f readFloats = nullptr;
    AVSKSetDatavf_f writeFloats = nullptr;
    AVSKGetDatab_f readData = nullptr;
    AVSKSetDatab_f writeData = nullptr;
};

void Register(const char *name, const Accessors &use, void *refcon) {
    const int types = (use.readInt ? AVSKDataTypeInt : 0) | (use.readFloat ? AVSKDataTypeFloat : 0) |
                      (use.readDouble ? AVSKDataTypeDouble : 0) | (use.readFloats ? AVSKDataTypeFloatArray : 0) |
                      (use.readData ? AVSKDataTypeData : 0);
    const bool writable = use.writeInt || use.writeFloat || use.writeDouble || use.writeFloats || use.writeData;
    AVSKRegisterDataAccessor(name, types, writable, use.readInt, use.writeInt, use.readFloat, use.writeFloat,
                             use.readDouble, use.writeDouble, nullptr, nullptr, use.readFloats, use.writeFloats,
                             use.readData, use.writeData, refcon, refcon);
}

int ReadInt(void *refcon) { return *static_cast<int *>(refcon); }
void WriteInt(void *refcon, int value) { *static_cast<int *>(refcon) = value; }

double ReadDouble(void *refcon) { return *static_cast<double *>(refcon); }
void WriteDouble(void *refcon, double value) { *static_cast<double *>(refcon) = value; }
float ReadDoubleAsFloat(void *refcon) { return static_cast<float>(*static_cast<double *>(refcon)); }

// Copies a range of a fixed list with one number per aircraft.
int ReadFleet(void *refcon, float *values, int offset, int max) {
    const auto &all = *static_cast<Fleet::Numbers *>(refcon);
    if (!values)
        return Fleet::kCount;
    if (offset < 0 || offset >= Fleet::kCount || max <= 0)
        return 0;
    const int count = std::min(max, Fleet::kCount - offset);
    std::copy_n(all.begin() + offset, count, values);
    return count;
}

void WriteFleet(void *refcon, float *values, int offset, int count) {
    auto &all = *static_cast<Fleet::Numbers *>(refcon);
    if (values && offset >= 0 && offset < Fleet::kCount && count > 0)
        std::copy_n(values, std::min(count, Fleet::kCount - offset), all.begin() + offset);
}

float ReadElapsed(void *refcon) { return static_cast<Simulator *>(refcon)->Elapsed(); }

} // namespace

void Datarefs::Publish(Simulator &simulator) {
    Register("sim/version/avsk_build_string", {.readData = ReadBuild, .writeData = WriteBuild}, this);
    Register("sim/time/elapsed", {.readFloat = ReadElapsed}, &simulator);

    Aeroplane &plane = simulator.aeroplane;
    Register("sim/flight/latitude", {.readDouble = ReadDouble, .writeDouble = WriteDouble}, &plane.latitude);
    Register("sim/flight/longitude", {.readDouble = ReadDouble, .writeDouble = WriteDouble}, &plane.longitude);
    Register("sim/flight/altitude", {.readFloat = ReadDoubleAsFloat}, &plane.altitude);
    Register("sim/flight/heading", {.readFloat = ReadDoubleAsFloat}, &plane.heading);

    // Position of each aircraft, in local metres. The host overwrites those of the aircraft that it flies.
    Fleet &fleet = simulator.fleet;
    Register("sim/aircraft/x", {.readFloats = ReadFleet, .writeFloats = WriteFleet}, &fleet.x);
    Register("sim/aircraft/y", {.readFloats = ReadFleet, .writeFloats = WriteFleet}, &fleet.y);
    Register("sim/aircraft/z", {.readFloats = ReadFleet, .writeFloats = WriteFleet}, &fleet.z);

    // The library writes these when a plugin takes an aircraft over.
    for (int i = 1; i < Fleet::kCount; ++i) {
        const std::string name = "sim/private/net_disables/ai_loc[" + std::to_string(i) + "]";
        Register(name.c_str(), {.readInt = ReadInt, .writeInt = WriteInt},
                 &fleet.otherPilot[static_cast<std::size_t>(i)]);
    }
}

std::string Datarefs::Build() const { return {mBuild.data(), strnlen(mBuild.data(), mBuild.size())}; }

int Datarefs::ReadBuild(void *refcon, void *bytes, int offset, int max) {
    const std::string text = static_cast<Datarefs *>(refcon)->Build();
    const int length = static_cast<int>(text.size());
    if (!bytes)
        return length;
    const int count = offset < 0 ? 0 : std::clamp(length - offset, 0, std::max(max, 0));
    if (count > 0)
        std::memcpy(bytes, text.data() + offset, static_cast<std::size_t>(count));
    return count;
}

void Datarefs::WriteBuild(void *refcon, void *bytes, int offset, int count) {
    auto &text = static_cast<Datarefs *>(refcon)->mBuild;
    const int size = static_cast<int>(text.size());
    if (!bytes || offset < 0 || offset >= size || count <= 0)
        return;
    std::memcpy(text.data() + offset, bytes, static_cast<std::size_t>(std::min(count, size - offset)));
}

} // namespace host
