// TerrainObject: loads an object from its own folder while the simulator goes
// on, and draws it on the ground, 500 metres east of the map's origin.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

constexpr int kObjectsPhase = 5; // the simulator's terrain and what stands on it
constexpr float kEast = 500.0F;

AVSKObjectRef gObject = nullptr;
AVSKProbeRef gProbe = nullptr;
int gDrawn = 0;

void Say(const std::string &text) { AVSKDebugString(("TerrainObject: " + text + "\n").c_str()); }

int Draw(int /*phase*/, int /*isBefore*/, void * /*refcon*/) {
    // Each time anew: the ground comes and goes with the scenery, and a probe costs little.
    AVSKProbeInfo ground{};
    ground.structSize = sizeof ground;
    if (AVSKProbeTerrainXYZ(gProbe, kEast, 0, 0, &ground) != AVSKProbeHit)
        return 1;
    // The triples are the simulator's: the first is the place that was hit.
    AVSKDrawInfo place{sizeof(AVSKDrawInfo), ground.triple1[0], ground.triple1[1], ground.triple1[2], 0, 0, 0};
    constexpr int kByDay = 0;
    constexpr int kUpright = 0;
    AVSKDrawObjects(gObject, 1, &place, kByDay, kUpright);
    if (++gDrawn == 1) {
        std::array<char, AVSK_TEXT_SIZE> text{};
        std::snprintf(text.data(), text.size(), "stands at a height of %.2f m", double{place.y});
        Say(text.data());
    }
    return 1;
}

// May also be called before AVSKLoadObjectAsync has returned. From here on the object is ours.
void Loaded(AVSKObjectRef object, void * /*refcon*/) {
    if (object == nullptr) {
        Say("there is no Cairn.txt beside the plugin");
        return;
    }
    Say("loaded");
    gObject = object;
    AVSKRegisterDrawCallback(Draw, kObjectsPhase, /*wantsBefore=*/0, nullptr);
}

// The folder this plugin was loaded from.
std::string OwnFolder() {
    std::array<char, AVSK_TEXT_SIZE> path{};
    AVSKGetPluginInfo(AVSKGetMyID(), nullptr, path.data(), nullptr, nullptr);
    AVSKExtractFileAndPath(path.data()); // leaves the folder
    return path.data();
}

} // namespace

int AVPluginStart(char *outName, char *outSignature, char *outDescription) {
    std::snprintf(outName, AVSK_TEXT_SIZE, "TerrainObject");
    std::snprintf(outSignature, AVSK_TEXT_SIZE, "aerivo.samples.terrainobject");
    std::snprintf(outDescription, AVSK_TEXT_SIZE, "Draws an object on the terrain.");

    gProbe = AVSKCreateProbe(AVSK_PROBE_Y);
    AVSKLoadObjectAsync((OwnFolder() + AVSKGetDirectorySeparator() + "Cairn.txt").c_str(), Loaded, nullptr);
    return 1;
}

// Object and probe go with us, and a load that is still under way is called off.
void AVPluginStop(void) { Say("drew " + std::to_string(gDrawn) + " times"); }

// Nothing to do, but the log mentions each entry point that a plugin does not have.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
