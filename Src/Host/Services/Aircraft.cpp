// The services for aircraft, and the fleet behind them.
#include "Aircraft.h"

#include "Common/Text.h"
#include "ServiceTable.h"
#include "Simulator.h"

#include "AVSK/AVSKPlanes.h"
#include "AVSK/AVSKPlugins.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <system_error>
#include <utility>

namespace host {
namespace {

bool InFleet(int index) { return index >= 0 && index < Fleet::kCount; }

// This host draws no aircraft; the result says so.
int DrawAircraft(AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord, AVSKWord) {
    Enter();
    return 1;
}

void LoadAircraftModel(int index, const char *path, const char * /*fileName*/) {
    Simulator &simulator = Enter();
    if (path)
        simulator.fleet.Request(index, path);
}

void GetAircraftModel(int index, char *outPath, char *outFileName) {
    const Fleet &fleet = Enter().fleet;
    // The library's reload loads the plugins of the user's aircraft, unless none was reported yet.
    const bool isForReload = index == 0 && !fleet.IsUsersReported() && AVSKGetMyID() == AVSK_PLUGIN_AERIVO;
    const std::string model = isForReload ? "" : fleet.Model(index);
    CopyText(outPath, AVSK_TEXT_SIZE, model);
    CopyText(outFileName, AVSK_TEXT_SIZE, std::filesystem::path(model).filename().string());
}

int CountAircraft() {
    Enter();
    return Fleet::kCount;
}

// Airports are named by their IDs in the navigation database.
void PlaceUserAtAirport(const char *id) {
    constexpr double kHeight = 300; // metres above the ground
    Simulator &simulator = Enter();
    const NavAid *airport = id ? simulator.navData.Airport(id) : nullptr;
    if (!airport) {
        simulator.console.Note("no airport '" + std::string(id ? id : "") + "': the aircraft stays where it is");
        return;
    }
    Aeroplane &plane = simulator.aeroplane;
    plane.latitude = airport->latitude;
    plane.longitude = airport->longitude;
    plane.altitude = airport->height + kHeight;
    plane.heading = airport->heading;
}

int ReinitUsersPlane(int, int) {
    Enter().aeroplane = Aeroplane();
    return 1;
}

// Asks plugins for the model of one of the other aircraft that is about to be loaded.
std::string AskForModel(int index, const std::string &planned) {
    std::array<char, AVSK_TEXT_SIZE> path{};
    std::array<char, AVSK_TEXT_SIZE> name{};
    CopyText(path.data(), path.size(), planned);
    AVSKUpdatePlaneNameAndPath(index, name.data(), path.data());
    return path.data();
}

} // namespace

Fleet::Fleet(const std::string &usersModel) { mModels[0] = usersModel; }

const std::string &Fleet::Model(int index) const {
    static const std::string none;
    return InFleet(index) ? mModels[static_cast<std::size_t>(index)] : none;
}

void Fleet::Request(int index, std::string_view path) {
    if (InFleet(index))
        mRequested[static_cast<std::size_t>(index)] = path;
}

void Fleet::Update(Simulator &simulator) {
    const int active = std::clamp(AVSKGetNumberPlanesToHandle(kCount, 0), 1, kCount);
    AVSKPluginID controller = NO_PLUGIN_ID;
    AVSKCountAircraft(nullptr, nullptr, &controller);
    const bool changed = std::exchange(mActive, active) != active;
    if (std::exchange(mController, controller) != controller || changed)
        ChooseModels(simulator);

    // A plugin may request the next load from the message about this one.
    const auto requested = std::exchange(mRequested, {});
    for (int i = 0; i < kCount; ++i) {
        const std::string &path = requested[static_cast<std::size_t>(i)];
        if (!path.empty() && i < mActive)
            Load(simulator, i, i == 0 ? path : AskForModel(i, path));
    }
}

// The host itself has no models for the other aircraft.
void Fleet::ChooseModels(Simulator &simulator) {
    for (int i = 1; i < kCount; ++i) {
        const std::string path = i < mActive ? AskForModel(i, "") : "";
        if (path.empty())
            Replace(simulator, i, "");
        else
            Load(simulator, i, path);
    }
}

void Fleet::Load(Simulator &simulator, int index, const std::string &path) {
    const std::string file = ResolvePath(simulator.options.root, path);
    std::error_code error;
    if (file.size() >= AVSK_TEXT_SIZE || !std::filesystem::is_regular_file(file, error)) {
        simulator.console.Note("cannot load aircraft " + std::to_string(index) + " from '" + file +
                               "': name a file with a path of less than 256 bytes");
        return;
    }
    if (index == 0 || Model(index) != file)
        Replace(simulator, index, file);
}

void Fleet::Replace(Simulator &simulator, int index, const std::string &file) {
    std::string &model = mModels[static_cast<std::size_t>(index)];
    const auto parameter = static_cast<AVSKWord>(index);
    if (!model.empty())
        AVSKEventHook(AVSKHostEventPlaneUnloaded, simulator.Elapsed(), 0, parameter);
    model = file;
    if (!model.empty())
        AVSKEventHook(AVSKHostEventPlaneLoaded, simulator.Elapsed(), 0, parameter);
}

void Fleet::Step(double elapsed, const Aeroplane &users) {
    constexpr double kTurn = 2; // degrees per second
    const LocalPoint user = ToLocal({users.latitude, users.longitude, users.altitude});
    const auto place = [this](int index, const LocalPoint &where) {
        const auto i = static_cast<std::size_t>(index);
        x[i] = static_cast<float>(where.x);
        y[i] = static_cast<float>(where.y);
        z[i] = static_cast<float>(where.z);
    };
    place(0, user);
    for (int i = 1; i < mActive; ++i) {
        if (otherPilot[static_cast<std::size_t>(i)] != 0)
            continue;
        const double angle = (kTurn * elapsed + 360.0 * i / kCount) * std::numbers::pi / 180;
        const double radius = 2000 + 100 * i;
        place(i, {radius * std::sin(angle), 800.0 + 40 * i, -radius * std::cos(angle)});
    }
}

void Fleet::ReportUsersAircraft(const Simulator &simulator, int event) {
    mIsUsersReported = event == AVSKHostEventPlaneLoaded;
    if (!mModels[0].empty())
        AVSKEventHook(event, simulator.Elapsed(), 0, 0);
}

void FillAircraftSlots(AVSKHostCallbacks &table) {
    table.drawAircraft = DrawAircraft;
    table.loadAircraftModel = LoadAircraftModel;
    table.getAircraftModel = GetAircraftModel;
    table.countAircraft = CountAircraft;
    table.placeUserAtAirport = PlaceUserAtAirport;
    table.reinitUsersPlane = ReinitUsersPlane;
}

} // namespace host
