// TerrainObject: loads an object from its own folder in the background and draws
// it on the ground, 500 metres east of the map's origin.
#include <AVSK/AVSK.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

constexpr int kObjectsPhase = 5; // the simulator's terrain and objects
constexpr float kEast = 500.0F;

AVSKObjectRef gObject = nullptr;
AVSKProbeRef gProbe = nullptr;
int gDrawn = 0;

void Say(const std::string &text) { AVSKDebugString(("TerrainObject: " + text + "\n").c_str()); }

int Draw(int /*phase*/, int /*isBefore*/, void * /*refcon*/) {
    // Probe in every frame: the ground changes with the scenery, and a probe is cheap.
    AVSKProbeInfo ground{};
    ground.structSize = sizeof ground;
    if (AVSKProbeTerrainXYZ(gProbe, kEast, 0, 0, &ground) != AVSKProbeHit)
        return 1;
    // The simulator defines the triples: the first is the point on the ground.
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

// May be called before AVSKLoadObjectAsync returns. From here on we own the object.
void Loaded(AVSKObjectRef object, void * /*refcon*/) {
    if (object == nullptr) {
        Say("there is no Cairn.txt beside the plugin");
        return;
    }
    Say("loaded");
    gObject = object;
    AVSKRegisterDrawCallback(Draw, kObjectsPhase, /*wantsBefore=*/0, nullptr);
}

// Returns the folder of this plugin.
std::string OwnFolder() {
    std::array<char, AVSK_TEXT_SIZE> path{};
    AVSKGetPluginInfo(AVSKGetMyID(), nullptr, path.data(), nullptr, nullptr);
    AVSKExtractFileAndPath(path.data()); // keeps the folder only
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

// The library releases object and probe, and cancels a load that is still pending.
void AVPluginStop(void) { Say("drew " + std::to_string(gDrawn) + " times"); }

// These are empty: the log reports every entry point that a plugin lacks.
int AVPluginEnable(void) { return 1; }
void AVPluginDisable(void) {}
void AVPluginReceiveMessage(AVSKPluginID /*sender*/, int /*message*/, void * /*parameter*/) {}
