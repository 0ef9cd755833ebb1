// The services for scenery objects.
//
// Any file that exists is an object; paths are absolute or relative to the root.
// An asynchronous load completes three frames later or, if the run ends before,
// after the plugins were unloaded. A virtual path names a file in
// Resources/library, or a folder there: all its files are choices, in
// alphabetical order.
#include "Objects.h"

#include "Common/Text.h"
#include "ServiceTable.h"
#include "Simulator.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

namespace host {
namespace {

namespace fs = std::filesystem;

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

// Objects are counted, not drawn.
void DrawObject(void *object, float, float, float, float, float, float, int, int) {
    Objects &objects = Enter().objects;
    if (objects.Known(object))
        ++objects.drawn;
}

// The object library is the same everywhere, so the position is ignored.
int LookupObjects(const char *path, float /*latitude*/, float /*longitude*/, void (*enumerator)(const char *, void *),
                  void *reference) {
    const std::vector<std::string> files = Enter().objects.Lookup(path ? path : "");
    for (const std::string &file : files) {
        if (enumerator)
            enumerator(file.c_str(), reference);
    }
    return static_cast<int>(files.size());
}

} // namespace

Object *Objects::Load(std::string_view path) {
    const std::string file = ResolvePath(mRoot, path);
    std::error_code error;
    if (!fs::is_regular_file(file, error))
        return nullptr;
    mLoaded.push_back(std::make_unique<Object>(Object{file}));
    return mLoaded.back().get();
}

void Objects::Unload(void *object) {
    std::erase_if(mLoaded, [object](const auto &loaded) { return loaded.get() == object; });
}

bool Objects::Known(const void *object) const {
    return std::any_of(mLoaded.begin(), mLoaded.end(), [object](const auto &known) { return known.get() == object; });
}

void Objects::LoadLater(int frame, std::string_view path, Completion completion, void *argument) {
    constexpr int kFramesToLoad = 3;
    mPending.push_back({frame + kFramesToLoad, std::string(path), completion, argument});
}

void Objects::CompleteLoads(int frame) {
    if (mHeld)
        return;
    // A completion may request the next load.
    std::vector<Pending> due;
    const auto later = std::stable_partition(mPending.begin(), mPending.end(),
                                             [frame](const Pending &pending) { return pending.due <= frame; });
    due.assign(std::make_move_iterator(mPending.begin()), std::make_move_iterator(later));
    mPending.erase(mPending.begin(), later);
    for (const Pending &pending : due)
        pending.completion(Load(pending.path), pending.argument);
}

void Objects::CompleteAllLoads() {
    mHeld = false;
    CompleteLoads(std::numeric_limits<int>::max());
}

int Objects::FinishLoads(std::string_view path, bool fail) {
    std::vector<Pending> chosen;
    std::erase_if(mPending, [&](const Pending &pending) {
        const bool wanted =
            path.empty() || pending.path == path || ResolvePath(mRoot, pending.path) == ResolvePath(mRoot, path);
        if (wanted)
            chosen.push_back(pending);
        return wanted;
    });
    for (const Pending &pending : chosen)
        pending.completion(fail ? nullptr : Load(pending.path), pending.argument);
    return static_cast<int>(chosen.size());
}

std::vector<std::string> Objects::Lookup(std::string_view path) const {
    const fs::path wanted = fs::path(path).lexically_normal();
    if (path.empty() || wanted.is_absolute() || *wanted.begin() == "..")
        return {};
    const fs::path entry = fs::path("Resources/library") / wanted;
    std::error_code error;
    if (fs::is_regular_file(mRoot / entry, error))
        return {entry.string()};
    std::vector<std::string> files;
    for (fs::directory_iterator file(mRoot / entry, error), end; !error && file != end; file.increment(error)) {
        std::error_code unreadable;
        if (file->is_regular_file(unreadable))
            files.push_back((entry / file->path().filename()).string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

void FillObjectSlots(AVSKHostCallbacks &table) {
    table.loadObject = LoadObject;
    table.loadObjectAsync = LoadObjectAsync;
    table.unloadObject = UnloadObject;
    table.drawObject = DrawObject;
    table.lookupObjects = LookupObjects;
}

} // namespace host
