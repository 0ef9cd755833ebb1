// The slots about aircraft and the camera, and the fleet behind them.
#include "HostAircraft.h"

#include "HostTable.h"
#include "Simulator.h"
#include "Text.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace host {
namespace {

bool InFleet(int index) { return index >= 0 && index < Fleet::kCount; }

// Nothing here shows aircraft. The answer says that it was not drawn.
int DrawAircraft(AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord) {
    Enter();
    return 1;
}

void LoadAircraftModel(int index, const char *path, const char * /*fileName*/) {
    Simulator &simulator = Enter();
    if (path && InFleet(index))
        simulator.fleet.Request(index, path);
}

void GetAircraftModel(int index, char *outPath, char *outFileName) {
    const std::string &model = Enter().fleet.Model(index);
    CopyText(outPath, AVSK_TEXT_SIZE, model);
    CopyText(outFileName, AVSK_TEXT_SIZE, std::filesystem::path(model).filename().string());
}

int CountAircraft() {
    Enter();
    return Fleet::kCount;
}

void PlaceUserAtAirport(const char *airport) {
    Simulator &simulator = Enter();
    if (airport)
        simulator.console.Note(std::string("no airport '") + airport + "': this host has none, the aircraft stays");
}

int ReinitUsersPlane(int, int) {
    Enter().aeroplane = Aeroplane();
    return 1;
}

void ReadCameraPosition(float *f1, float *f2, float *f3, float *f4, float *f5, float *f6, float *f7) {
    const auto &camera = Enter().camera;
    Store(f1, camera[0]);
    Store(f2, camera[1]);
    Store(f3, camera[2]);
    Store(f4, camera[3]);
    Store(f5, camera[4]);
    Store(f6, camera[5]);
    Store(f7, camera[6]);
}

} // namespace

Fleet::Fleet(const std::string &usersModel) { mModels[0] = usersModel; }

const std::string &Fleet::Model(int index) const {
    static const std::string none;
    return InFleet(index) ? mModels[static_cast<std::size_t>(index)] : none;
}

void Fleet::Request(int index, std::string_view path) { mRequested[static_cast<std::size_t>(index)] = path; }

void Fleet::LoadRequested(Simulator &simulator) {
    for (std::size_t i = 0; i < mRequested.size(); ++i) {
        const std::string requested = std::exchange(mRequested[i], {});
        if (requested.empty())
            continue;
        const std::string path = ResolvePath(simulator.options.root, requested);
        std::error_code error;
        if (path.size() >= AVSK_TEXT_SIZE || !std::filesystem::is_regular_file(path, error)) {
            simulator.console.Note("cannot load the aircraft '" + path +
                                   "': name a file with a path of less than 256 bytes");
            continue;
        }
        if (!mModels[i].empty()) {
            AVSKEventHook(AVSKHostEventPlaneUnloaded, simulator.Elapsed(), 0, i);
            simulator.ForgetUnloaded();
        }
        mModels[i] = path;
        AVSKEventHook(AVSKHostEventPlaneLoaded, simulator.Elapsed(), 0, i);
    }
}

void Fleet::ReportUsersAircraft(const Simulator &simulator, int event) const {
    if (!mModels[0].empty())
        AVSKEventHook(event, simulator.Elapsed(), 0, 0);
}

void Fleet::AskForModels() {
    for (int i = 1; i < kCount; ++i) {
        // The library copies a plugin's path without knowing the room for it.
        std::array<char, 4096> path{};
        std::array<char, AVSK_TEXT_SIZE> name{};
        AVSKUpdatePlaneNameAndPath(i, name.data(), path.data());
        Request(i, path.data());
    }
}

void FillAircraftSlots(AVSKHostCallbacks &table) {
    table.drawAircraft = DrawAircraft;
    table.loadAircraftModel = LoadAircraftModel;
    table.getAircraftModel = GetAircraftModel;
    table.countAircraft = CountAircraft;
    table.placeUserAtAirport = PlaceUserAtAirport;
    table.reinitUsersPlane = ReinitUsersPlane;
    table.readCameraPosition = ReadCameraPosition;
}

} // namespace host
