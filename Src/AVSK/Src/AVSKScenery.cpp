// Terrain probes and scenery objects: the owner of each, and the asynchronous
// loads that the host has not completed. Owns gProbes, gFreeProbes and gObjects;
// called by plugins, by the host when a load completes, and by the core when a
// plugin is unloaded.
#include "AVSK/AVSKScenery.h"

#include "AVSKDelivery.h"
#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKHostTable.h"
#include "AVSKLoaderRegistry.h"
#include "AVSKModules.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

struct AVSKProbe_t {
    int owner;
    int type;
    void *hostProbe;
};

static_assert(sizeof(AVSKProbeInfo) == 44 && sizeof(AVSKDrawInfo) == 28, "layouts that plugins are compiled to");

// Outside readers rely on these globals.
std::set<AVSKProbe_t *> &gProbes = *new std::set<AVSKProbe_t *>;
std::set<void *> &gFreeProbes = *new std::set<void *>; // host probes to reuse; the host cannot destroy one
using ObjectsByPlugin = std::map<int, std::vector<void *>>;
ObjectsByPlugin &gObjects = *new ObjectsByPlugin; // by plugin; an object appears once for each load

namespace {

std::vector<void *>::iterator FindObject(std::vector<void *> &objects, void *object) {
    return std::find(objects.begin(), objects.end(), object);
}

// One asynchronous load. The host knows it by a number that is never reused, so
// that a completion that is reported twice does not reach a later load. Outside
// readers rely on the names of the class and its members.
class AVSKObjectCompletion_t final : public AVSKDelivery {
  public:
    AVSKObjectCompletion_t(AVSKObjectLoaded_f function, void *reference) : callback(function), refcon(reference) {
        pluginID = AVSKGetDispatchedPlugin();
        expected[number] = this;
    }

    void *Argument() const { return reinterpret_cast<void *>(number); }

    // The host calls this when the load is complete. An unknown number, or one
    // that was reported before, is ignored.
    static void AsyncCB(void *objectRef, void *argument) {
        const auto found = expected.extract(reinterpret_cast<std::uintptr_t>(argument));
        if (found.empty())
            return;
        found.mapped()->object = objectRef;
        AVSKSendDelivery(found.mapped());
    }

    void DeliverToPlugin(bool cancelled) override {
        const std::unique_ptr<AVSKObjectCompletion_t> freed(this);
        if (cancelled) {
            gHooks->unloadObject(object); // null too: the host ignores it
            return;
        }
        // The plugin owns the object only after the call, also if the call throws.
        const Recording recording(pluginID, object);
        if (callback)
            callback(object, refcon);
    }

  private:
    // Records the object for its plugin at the end of the scope, or unloads it
    // if the plugin was unloaded meanwhile.
    class Recording {
      public:
        Recording(int id, void *loaded)
            : plugin(id), object(loaded), record(gAllPlugins[static_cast<std::size_t>(id)]) {}
        ~Recording() {
            if (!object)
                return;
            if (record->unloaded)
                gHooks->unloadObject(object);
            else
                gObjects[plugin].push_back(object);
        }
        Recording(const Recording &) = delete;
        Recording &operator=(const Recording &) = delete;

      private:
        const int plugin;
        void *const object;
        const std::shared_ptr<PluginRecord> record;
    };

    AVSKObjectLoaded_f callback;
    void *refcon;
    void *object = nullptr;
    const std::uintptr_t number = ++last;

    static inline std::uintptr_t last = 0;
    // The loads that the host has not completed.
    using Completions = std::map<std::uintptr_t, AVSKObjectCompletion_t *>;
    static inline Completions &expected = *new Completions;
};

} // namespace

// ---- Probes

AVSKProbeRef AVSKCreateProbe(int type) {
    void *hostProbe = nullptr;
    if (gFreeProbes.empty())
        hostProbe = gHooks->createProbe();
    else
        hostProbe = gFreeProbes.extract(gFreeProbes.begin()).value();
    auto *probe = new AVSKProbe_t{AVSKGetDispatchedPlugin(), type, hostProbe};
    gProbes.insert(probe);
    return probe;
}

void AVSKDestroyProbe(AVSKProbeRef probe) {
    if (gProbes.erase(probe) == 0)
        return;
    gFreeProbes.insert(probe->hostProbe);
    delete probe;
}

int AVSKProbeTerrainXYZ(AVSKProbeRef probe, float x, float y, float z, AVSKProbeInfo *outInfo) {
    if (gProbes.count(probe) == 0 || probe->type != AVSK_PROBE_Y)
        return AVSKProbeError;
    if (!outInfo || outInfo->structSize != static_cast<int>(sizeof *outInfo))
        return AVSKProbeError;
    const float point[] = {x, y, z};
    return gHooks->probeTerrain(probe->hostProbe, point, outInfo->triple1, outInfo->triple2, outInfo->triple3,
                                &outInfo->flag)
               ? AVSKProbeHit
               : AVSKProbeMissed;
}

// ---- Objects

AVSKObjectRef AVSKLoadObject(const char *path) {
    void *object = gHooks->loadObject(path);
    if (object)
        gObjects[AVSKGetDispatchedPlugin()].push_back(object);
    return object;
}

void AVSKLoadObjectAsync(const char *path, AVSKObjectLoaded_f callback, void *refcon) {
    auto *completion = new AVSKObjectCompletion_t(callback, refcon);
    AVSKQueueDelivery(completion);
    void *const argument = completion->Argument();
    // The host may complete the load inside this call, which frees it. The table
    // of an old host ends before the service; then the object is loaded at once.
    if (gHooks->sizeInBytes >= static_cast<int>(offsetof(AVSKHostCallbacks, loadObjectAsync) + sizeof(void *)))
        gHooks->loadObjectAsync(path, AVSKObjectCompletion_t::AsyncCB, argument);
    else
        AVSKObjectCompletion_t::AsyncCB(gHooks->loadObject(path), argument);
}

void AVSKDrawObjects(AVSKObjectRef object, int count, AVSKDrawInfo *infos, int lighting, int earthRelative) {
    if (AVSKHasError()) {
        std::vector<void *> &objects = gObjects[AVSKGetDispatchedPlugin()];
        if (FindObject(objects, object) == objects.end()) {
            AVSKSendError("Illegal object, or object not owned by this plugin.");
            return;
        }
        const auto misfit = [](const AVSKDrawInfo &info) { return info.structSize != static_cast<int>(sizeof info); };
        if (infos && count > 0 && std::any_of(infos, infos + count, misfit)) {
            AVSKSendError("Struct size mismatch for AVSKDrawObjects");
            return;
        }
    }
    for (int i = 0; infos && i < count; ++i) {
        const AVSKDrawInfo &info = infos[i];
        // The host's service takes the second angle before the first.
        gHooks->drawObject(object, info.x, info.y, info.z, info.angle2, info.angle1, info.angle3, lighting,
                           earthRelative);
    }
}

void AVSKUnloadObject(AVSKObjectRef object) {
    std::vector<void *> &objects = gObjects[AVSKGetDispatchedPlugin()];
    const auto found = FindObject(objects, object);
    if (found == objects.end()) {
        AVSKSendError("Unknown object for AVSKUnloadObject");
        return;
    }
    objects.erase(found);
    gHooks->unloadObject(object);
}

int AVSKLookupObjects(const char *path, float latitude, float longitude, AVSKLibraryEnumerator_f enumerator,
                      void *refcon) {
    return gHooks->lookupObjects(path, latitude, longitude, enumerator, refcon);
}

void AVSKSceneryCleanupHook(int pluginID) {
    const std::vector<AVSKProbe_t *> probes(gProbes.begin(), gProbes.end()); // a copy: destroying shrinks the set
    for (AVSKProbe_t *probe : probes)
        if (probe->owner == pluginID)
            AVSKDestroyProbe(probe);
    for (void *object : std::exchange(gObjects[pluginID], {}))
        gHooks->unloadObject(object);
}

bool SceneryHolds(int pluginID) {
    const auto objects = gObjects.find(pluginID);
    return (objects != gObjects.end() && !objects->second.empty()) ||
           std::any_of(gProbes.begin(), gProbes.end(),
                       [pluginID](const AVSKProbe_t *probe) { return probe->owner == pluginID; });
}
