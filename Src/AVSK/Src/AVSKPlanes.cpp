// The user's aircraft, and control of the others by one plugin at a time.
// Owns gOwner, gPlaneLimit, gHostPlaneCount, gRequestedPlanes, gQueue and
// gIsSelfLoading; called by plugins, by the host when it loads aircraft, and
// by the core when a plugin is disabled or unloaded.
#include "AVSK/AVSKPlanes.h"

#include "AVSKCallbackSequence.h"
#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKFeatures.h"
#include "AVSKHostTable.h"
#include "AVSKModules.h"
#include "AVSKPlatform.h"
#include "AVSKScopedValue.h"
#include "UTL_unicode.h"

#include "AVSK/AVSKDataAccess.h"
#include "AVSK/AVSKUtilities.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <utility>

// Outside readers rely on these globals and on gQueue.
int gOwner = NO_PLUGIN_ID; // the plugin in control
int gPlaneLimit = -1;      // the number of active aircraft that it wants, -1 for no limit
int gHostPlaneCount = -1;  // the number that the host last reported, -1 before the first report
std::map<int, std::string> &gRequestedPlanes = *new std::map<int, std::string>; // model paths by aircraft
bool gIsSelfLoading = false; // the host is loading a model that the library asked for

namespace {

struct Waiting {
    AVSKPlanesAvailable_f callback;
    void *refcon;
    int plugin;
};

AVSKCallbackSequence<Waiting> &gQueue =
    *new AVSKCallbackSequence<Waiting>; // plugins that wait for control, in the order of their requests

// The plugins to which control is being offered. They leave the queue first: a
// plugin that asks again during the offer waits for the next one.
struct Offer {
    Offer() : waiting(std::exchange(gQueue, {})), outer(std::exchange(innermost, this)) {}
    ~Offer() { innermost = outer; }
    Offer(const Offer &) = delete;
    Offer &operator=(const Offer &) = delete;

    AVSKCallbackSequence<Waiting> waiting;
    Offer *const outer;
    static Offer *innermost;
};
Offer *Offer::innermost = nullptr;

bool IsInControl() { return AVSKGetDispatchedPlugin() == gOwner && gOwner != NO_PLUGIN_ID; }

std::string Converted(const char *path) {
    std::string text = path;
    if (AVSKNeedPathConvert())
        AVSKOldToUTF8(text);
    return text;
}

// Whether a model's path fits into the buffer that the host has for it.
bool Fits(const std::string &path) { return path.size() < AVSK_TEXT_SIZE; }

void LoadModel(int index, const std::string &path, const char *fileName) {
    const AVSKScopedValue selfLoading(gIsSelfLoading, true);
    gHooks->loadAircraftModel(index, path.c_str(), fileName);
}

// The file name follows the last separator. In a path without a separator it
// begins at the second character, as hosts have always been told.
const char *FileNameIn(const std::string &path) {
    std::size_t at = path.size();
    while (at > 0 && path[at] != *AVSKGetDirectorySeparator())
        --at;
    return path.c_str() + std::min(at + 1, path.size());
}

void SetDisabledAI(int index, int disabled) {
    char name[64];
    std::snprintf(name, sizeof name, "sim/private/net_disables/ai_loc[%d]", index);
    AVSKSetDatai(AVSKFindDataRef(name), disabled);
}

} // namespace

void AVSKSetUsersAircraft(const char *path) {
    if (!path)
        return;
    std::string given;
    std::string converted;
    if (!CopyText(given, path, "AVSKSetUsersAircraft") || !CopyText(converted, path, "AVSKSetUsersAircraft"))
        return;
    if (AVSKNeedPathConvert())
        AVSKOldToUTF8(converted);
    LoadModel(0, converted, FileNameIn(given));
}

void AVSKPlaceUserAtAirport(const char *airport) { gHooks->placeUserAtAirport(airport); }

void AVSKCountAircraft(int *outTotal, int *outActive, AVSKPluginID *outController) {
    const int total = gHooks->countAircraft();
    if (outTotal)
        *outTotal = total;
    if (outActive)
        *outActive = gPlaneLimit == -1 ? total : std::min(gPlaneLimit, total);
    if (outController)
        *outController = gOwner;
}

void AVSKGetNthAircraftModel(int index, char *outFileName, char *outPath) {
    char unwantedPath[AVSK_PATH_SIZE] = "";
    char unwantedName[AVSK_PATH_SIZE] = "";
    char *path = outPath ? outPath : unwantedPath;
    gHooks->getAircraftModel(index, path, outFileName ? outFileName : unwantedName);
    if (AVSKNeedPathConvert()) {
        std::string text = path;
        AVSKUTF8ToOld(text);
        strcpytrunc(path, text, AVSK_PATH_SIZE);
    }
}

int AVSKAcquirePlanes(char **paths, AVSKPlanesAvailable_f callback, void *refcon) {
    if (!MayCreate())
        return 0;
    const int plugin = AVSKGetDispatchedPlugin();
    if (plugin == gOwner)
        return 1;
    if (gOwner != NO_PLUGIN_ID) {
        if (callback)
            gQueue.Append({callback, refcon, plugin});
        return 0;
    }
    gOwner = plugin; // its predecessor's release has cleared the limit and the requests
    bool tooLong = false;
    for (int index = 0; paths && paths[index]; ++index) {
        std::string path = Converted(paths[index]);
        if (Fits(path))
            gRequestedPlanes[index] = std::move(path);
        else
            tooLong = true;
    }
    if (tooLong)
        AVSKSendError("AVSKAcquirePlanes was passed a path of more than 255 bytes.");
    return plugin == gOwner; // the error callback may have released control
}

void AVSKReleasePlanes() {
    if (!IsInControl())
        return;
    gPlaneLimit = -1;
    gOwner = NO_PLUGIN_ID;
    gRequestedPlanes.clear();
    Offer offer;
    for (int index = 1; index < gHostPlaneCount; ++index)
        SetDisabledAI(index, 0);
    StDispatchCallback guard;
    offer.waiting.FromOldest([&guard](const Waiting &each) {
        if (guard.Enter(each.plugin))
            each.callback(each.refcon);
        return true;
    });
}

void AVSKSetActiveAircraftCount(int count) {
    if (IsInControl())
        gPlaneLimit = count;
}

void AVSKSetAircraftModel(int index, const char *path) {
    if (!IsInControl() || index < 0 || !path)
        return;
    const std::string converted = Converted(path);
    if (!Fits(converted)) {
        AVSKSendError("AVSKSetAircraftModel was passed a path of more than 255 bytes.");
        return;
    }
    gRequestedPlanes[index] = converted;
    if (gHostPlaneCount != -1 && index < gHostPlaneCount)
        LoadModel(index, converted, converted.c_str());
}

void AVSKDisableAIForPlane(int index) { SetDisabledAI(index, 1); }

int AVSKDrawAircraft(AVSKWord a1, AVSKWord a2, AVSKWord a3, AVSKWord a4, AVSKWord a5, AVSKWord a6, AVSKWord a7,
                     AVSKWord a8, AVSKWord a9) {
    return IsInControl() ? gHooks->drawAircraft(a1, a2, a3, a4, a5, a6, a7, a8, a9) : 1;
}

void AVSKReinitUsersPlane() {
    if (IsInControl() && AVSKHostHasFullTable(gHooks))
        gHooks->reinitUsersPlane(208, 201);
}

void AVSKHandleUpdatePlaneNameAndPath(int index, char * /*name*/, char *path) {
    if (gOwner == NO_PLUGIN_ID || gIsSelfLoading || index == 0)
        return;
    const auto requested = gRequestedPlanes.find(index);
    if (requested != gRequestedPlanes.end() && !requested->second.empty())
        std::strcpy(path, requested->second.c_str()); // longer paths are refused
}

int AVSKHandleGetNumberPlanesToHandle(int count, int flag) {
    gHostPlaneCount = count;
    const bool limited = !flag && !gIsSelfLoading && gOwner != NO_PLUGIN_ID && gPlaneLimit != -1;
    return limited ? std::min(count, gPlaneLimit) : count;
}

void AVSKPlaneDisableHook(int pluginID) {
    if (pluginID != gOwner)
        return;
    const StDispatchCallback asOwner(pluginID);
    AVSKReleasePlanes();
}

void AVSKPlaneCleanupHook(int pluginID) {
    const auto owned = [pluginID](const Waiting &each) { return each.plugin == pluginID; };
    gQueue.EraseAll(owned);
    for (Offer *offer = Offer::innermost; offer; offer = offer->outer)
        offer->waiting.EraseAll(owned);
    AVSKPlaneDisableHook(pluginID);
}

bool PlanesHold(int pluginID) {
    return pluginID == gOwner || gQueue.Any([pluginID](const Waiting &each) { return each.plugin == pluginID; });
}
