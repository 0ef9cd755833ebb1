// The slots about scenery objects and terrain probes, and what is behind them.
#include "HostObjects.h"

#include "HostTable.h"
#include "Simulator.h"
#include "Text.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

namespace host {
namespace {

void *LoadObject(const char *path) {
    Objects &objects = Enter().objects;
    return path ? objects.Load(path) : nullptr;
}

void LoadObjectAsync(const char *path, Objects::Completion completion, void *argument) {
    Simulator &simulator = Enter();
    if (completion)
        simulator.objects.LoadLater(simulator.frame, path ? path : "", completion, argument);
}

void UnloadObject(void *object) { Enter().objects.Unload(object); }

// Objects are not shown.
void DrawObject(void *, float, float, float, float, float, float, int, int) { Enter(); }

// There is no library of virtual paths, so none of them names an object.
int LookupObjects(const char *, float, float, void (*)(const char *, void *), void *) {
    Enter();
    return 0;
}

void *CreateProbe() { return Enter().objects.CreateProbe(); }

void StoreTriple(float *out, float x, float y, float z) {
    if (!out)
        return;
    out[0] = x;
    out[1] = y;
    out[2] = z;
}

// The ground is flat, at the height of the sea, and dry: straight below or
// above the point, with its normal up, and still.
int ProbeTerrain(void *probe, const float *xyz, float *position, float *normal, float *velocity, int *wet) {
    Enter();
    if (!probe || !xyz)
        return 0;
    StoreTriple(position, xyz[0], 0, xyz[2]);
    StoreTriple(normal, 0, 1, 0);
    StoreTriple(velocity, 0, 0, 0);
    Store(wet, 0);
    return 1;
}

} // namespace

Object *Objects::Load(std::string_view path) {
    const std::string file = ResolvePath(mRoot, path);
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        return nullptr;
    mLoaded.push_back(std::make_unique<Object>(Object{file}));
    return mLoaded.back().get();
}

void Objects::Unload(void *object) {
    std::erase_if(mLoaded, [object](const auto &loaded) { return loaded.get() == object; });
}

void Objects::LoadLater(int frame, std::string_view path, Completion completion, void *argument) {
    constexpr int kFramesToLoad = 3;
    mPending.push_back({frame + kFramesToLoad, std::string(path), completion, argument});
}

void Objects::CompleteLoads(int frame) {
    // A completion may ask for the next load.
    std::vector<Pending> due;
    const auto later = std::stable_partition(mPending.begin(), mPending.end(),
                                             [frame](const Pending &pending) { return pending.due <= frame; });
    due.assign(std::make_move_iterator(mPending.begin()), std::make_move_iterator(later));
    mPending.erase(mPending.begin(), later);
    for (const Pending &pending : due)
        pending.completion(Load(pending.path), pending.argument);
}

void Objects::CompleteAllLoads() { CompleteLoads(std::numeric_limits<int>::max()); }

Probe *Objects::CreateProbe() {
    mProbes.push_back(std::make_unique<Probe>());
    return mProbes.back().get();
}

void FillObjectSlots(AVSKHostCallbacks &table) {
    table.loadObject = LoadObject;
    table.loadObjectAsync = LoadObjectAsync;
    table.unloadObject = UnloadObject;
    table.drawObject = DrawObject;
    table.lookupObjects = LookupObjects;
    table.createProbe = CreateProbe;
    table.probeTerrain = ProbeTerrain;
}

} // namespace host
