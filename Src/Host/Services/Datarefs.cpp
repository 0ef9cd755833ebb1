// The simulator's own datarefs; see Datarefs.h.
#include "Datarefs.h"

#include "Simulator.h"

#include "AVSK/AVSKDataAccess.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace host {
namespace {

// The names of 19 datarefs begin with this; an index and a bracket follow.
constexpr std::string_view kOtherPilot = "sim/private/net_disables/ai_loc[";

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

struct Datarefs::Row {
    std::string_view name;
    DatarefDescription description;
    Accessors accessors;
    void *(*refcon)(Simulator &simulator);
};

std::span<const Datarefs::Row> Datarefs::Rows() {
    constexpr Accessors kDouble{.readDouble = ReadDouble, .writeDouble = WriteDouble};
    constexpr Accessors kFleet{.readFloats = ReadFleet, .writeFloats = WriteFleet};
    static constexpr Row kRows[] = {
        {"sim/aircraft/x",
         {"metres", "east of the start, per aircraft; 0 is the user's; the host overwrites those that it flies"},
         kFleet,
         [](Simulator &simulator) -> void * { return &simulator.fleet.x; }},
        {"sim/aircraft/y",
         {"metres", "above the sea, per aircraft, as sim/aircraft/x"},
         kFleet,
         [](Simulator &simulator) -> void * { return &simulator.fleet.y; }},
        {"sim/aircraft/z",
         {"metres", "south of the start, per aircraft, as sim/aircraft/x"},
         kFleet,
         [](Simulator &simulator) -> void * { return &simulator.fleet.z; }},
        {"sim/flight/altitude",
         {"metres", "the user's aircraft above the sea"},
         {.readFloat = ReadDoubleAsFloat},
         [](Simulator &simulator) -> void * { return &simulator.aeroplane.altitude; }},
        {"sim/flight/heading",
         {"degrees", "the user's aircraft's heading: 0 is north, clockwise"},
         {.readFloat = ReadDoubleAsFloat},
         [](Simulator &simulator) -> void * { return &simulator.aeroplane.heading; }},
        {"sim/flight/latitude",
         {"degrees", "the user's aircraft; north is positive"},
         kDouble,
         [](Simulator &simulator) -> void * { return &simulator.aeroplane.latitude; }},
        {"sim/flight/longitude",
         {"degrees", "the user's aircraft; east is positive"},
         kDouble,
         [](Simulator &simulator) -> void * { return &simulator.aeroplane.longitude; }},
        {"sim/time/elapsed",
         {"seconds", "simulated time since the start"},
         {.readFloat = ReadElapsed},
         [](Simulator &simulator) -> void * { return &simulator; }},
        {"sim/version/avsk_build_string",
         {"text", "the build date and time of the library, which writes it"},
         {.readData = ReadBuild, .writeData = WriteBuild},
         [](Simulator &simulator) -> void * { return &simulator.datarefs; }},
    };
    return kRows;
}

void Datarefs::Publish(Simulator &simulator) {
    for (const Row &row : Rows())
        Register(row.name.data(), row.accessors, row.refcon(simulator));
    for (int i = 1; i < Fleet::kCount; ++i) {
        const std::string name = std::string(kOtherPilot) + std::to_string(i) + "]";
        Register(name.c_str(), {.readInt = ReadInt, .writeInt = WriteInt},
                 &simulator.fleet.otherPilot[static_cast<std::size_t>(i)]);
    }
}

void Datarefs::Withdraw() {
    std::vector<std::string> names;
    for (const Row &row : Rows())
        names.emplace_back(row.name);
    for (int i = 1; i < Fleet::kCount; ++i)
        names.push_back(std::string(kOtherPilot) + std::to_string(i) + "]");
    for (const std::string &name : names) {
        if (const AVSKDataRef known = AVSKFindDataRef(name.c_str()))
            AVSKUnregisterDataAccessor(known);
    }
}

const DatarefDescription *Datarefs::Describe(std::string_view name) {
    static constexpr DatarefDescription kOtherPilotText{
        "0 or 1", "1 while a plugin flies this aircraft instead of the host; the library writes it"};
    const auto rows = Rows();
    const auto found = std::find_if(rows.begin(), rows.end(), [name](const Row &row) { return row.name == name; });
    if (found != rows.end())
        return &found->description;
    return name.starts_with(kOtherPilot) ? &kOtherPilotText : nullptr;
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
