// One run: a host starts the library in a folder of puppets, does what the
// input says, shuts the library down, and finds everything as it was.
#include "Host.h"
#include "Model.h"

#include "AVSKDispatch.h"
#include "AVSKLoader.h"
#include "AVSKModules.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <dlfcn.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

void RemoveRoot() {
    std::error_code ignored;
    fs::remove_all(gFuzz.root, ignored);
}

void Report() {
    std::fprintf(stderr, "fuzz: %llu runs, %llu calls, %llu hooks, %llu callbacks, %llu starts, %llu exceptions\n",
                 gCounters.runs, gCounters.calls, gCounters.hooks, gCounters.callbacks, gCounters.starts,
                 gCounters.throws);
    RemoveRoot();
}

// A folder in memory with a copy of the puppet under every name.
void MakeRoot() {
    const char *const given = std::getenv("AVSK_FUZZ_TMP"); // of a caller that removes it
    std::string folder = std::string(given ? given : "/dev/shm") + "/avsk-fuzz-XXXXXX";
    if (!mkdtemp(folder.data())) {
        std::fprintf(stderr, "fuzz: %s: cannot make the folder: %s; set AVSK_FUZZ_TMP to one that can be written\n",
                     folder.c_str(), std::strerror(errno));
        std::exit(2);
    }
    gFuzz.root = folder + "/";
    std::atexit(Report);
    for (const char *file : kPuppetFiles) {
        const fs::path path = gFuzz.root + file;
        fs::create_directories(path.parent_path());
        fs::copy_file(AVSK_FUZZ_PUPPET, path);
    }
}

void Begin(const std::uint8_t *data, std::size_t size) {
    gFuzz.in.Set(data, size);
    gFuzz.actions = 0;
    gFuzz.loads = 0;
    gFuzz.serial = 0;
    gFuzz.now = 0;
    gFuzz.calm = false;
    gFuzz.camera = nullptr;
    gFuzz.registrations.clear();
    gFuzz.registrations.reserve(kMaxRegistrations);
    gFuzz.incarnations.clear();
    gFuzz.buttons.clear();
    // What earlier runs left behind, set to what it is in a fresh process.
    gScheduleReload = false;
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
    AVSKGetNumberPlanesToHandle(4, 1);
}

void Initialise(const AVSKHostCallbacks *table) {
    try {
        const int answer = AVSKInitializePlugins(gFuzz.root.c_str(), table, 0);
        REQUIRE(answer == AVSK_HOST_INTERFACE, "the start answers %d", answer);
    } catch (...) {
        ++gCounters.throws;
    }
}

// Takes from the library what the host and nobody own, and what was inherited,
// and unmaps what stayed mapped: no run knows of another.
void CleanUpRest() {
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
    AVSKDontControlCamera();
    for (const int button : gFuzz.buttons)
        AVSKCommandButtonRelease(button);
    for (int id = NO_PLUGIN_ID; id < 64; ++id) {
        AVSKCommandCleanupHook(id);
        AVSKDisplayCleanupHook(id);
        AVSKProcessingCleanupHook(id);
        AVSKCameraCleanupHook(id);
        AVSKMenuCleanupHook(id);
        AVSKPlaneCleanupHook(id);
        if (id != AVSK_PLUGIN_AERIVO)
            AVSKDataRefsCleanupHook(id);
        AVSKSharedDataCleanupHook(id);
        AVSKSceneryCleanupHook(id);
    }
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
    for (const Registration &each : gFuzz.registrations)
        if (each.kind == Kind::Data)
            AVSKUnregisterDataAccessor(static_cast<AVSKDataRef>(each.handle));
    for (int index = 0; index < kPuppets; ++index) {
        const std::string path = gFuzz.root + kPuppetFiles[index];
        while (gFuzz.mapped[index]) {
            void *kept = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
            REQUIRE(kept, "file %d is mapped and not found: %s", index, dlerror());
            dlclose(kept);
            dlclose(kept);
        }
        gFuzz.kept[index] = false;
    }
    // Each registering ends one of the walks that questions left open.
    for (int i = 0; i < 2; ++i)
        AVSKUnregisterHotKey(AVSKRegisterHotKey(0, 0, "", nullptr, nullptr));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    MakeRoot();
    gFuzz.trace = std::getenv("AVSK_FUZZ_TRACE") != nullptr;
    ShareNames();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    ++gCounters.runs;
    Begin(data, size);
    const unsigned kind = gFuzz.in.Byte();
    gFuzz.wildHost = (kind & 4U) != 0;
    const AVSKHostCallbacks *table = FreshHost(2 + static_cast<int>(kind >> 4U & 3U), (kind & 3U) != 3);
    Initialise(table);
    CheckQuiet();
    while (!gFuzz.in.Empty() && gFuzz.actions < kMaxActions) {
        ActAtTop();
        CheckQuiet();
    }

    gFuzz.calm = true;
    Trace("shutdown");
    AVSKShutdownPlugins();
    CheckQuiet();
    { const StDispatchCallback last; } // unmaps what waits for the end of a call
    CheckAfterShutdown();
    CompleteAllLoads(); // late: their plugins are gone
    CleanUpRest();
    CheckObjectsReturned();
    return 0;
}
