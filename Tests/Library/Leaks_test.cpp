// Memory must not grow over many frames that create and destroy resources, even
// in lists whose walks stay open. Memory and mappings must not grow over reloads.
#include "World.h"

#include <cstdlib>

#include <malloc.h>
#include <sys/wait.h>

namespace {

// Bytes in use. Always 0 under a sanitizer, which checks for leaks itself at exit.
std::size_t InUse() { return mallinfo2().uordblks; }

// The number of mappings of each file.
std::map<std::string, int> MappedFiles() {
    std::map<std::string, int> files;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (const auto path = line.find('/'); path != std::string::npos)
            ++files[line.substr(path)];
    return files;
}

int gHostThing = 0; // the host's handle for every menu, command and object

// Creates one of every kind, owned by the caller.
struct Things {
    AVSKMenuID menu = AVSKCreateMenu("a menu of some length", nullptr, 0, Nothing, nullptr);
    AVSKDataRef ref = Publish("leaks/value/of/some/length", Nothing);
    AVSKHotKeyID hotKey = AVSKRegisterHotKey('K', 0, "a hot key of some length", Nothing, nullptr);
    AVSKWindowID window = AVSKCreateWindow(0, 9, 9, 0, 1, Nothing, Nothing, Nothing, nullptr);
    AVSKProbeRef probe = AVSKCreateProbe(AVSK_PROBE_Y);

    Things() {
        AVSKAppendMenuItem(menu, "an item of some length", nullptr, 0);
        AVSKRegisterFlightLoopCallback(Nothing, -1, nullptr);
        AVSKRegisterDrawCallback(Nothing, 5, 1, nullptr);
        AVSKRegisterKeySniffer(Nothing, 1, nullptr);
        AVSKShareData("leaks/shared/of/some/length", AVSKDataTypeInt, Nothing, nullptr);
        AVSKRegisterCommandHandler(&gHostThing, Nothing, 1, nullptr);
        AVSKCommandBegin(&gHostThing);
        AVSKLoadObjectAsync("object", Nothing, nullptr);
    }
    void Destroy() const {
        AVSKUnloadObject(&gHostThing);
        AVSKCommandEnd(&gHostThing);
        AVSKUnregisterCommandHandler(&gHostThing, Nothing, 1, nullptr);
        AVSKUnshareData("leaks/shared/of/some/length", AVSKDataTypeInt, Nothing, nullptr);
        AVSKUnregisterKeySniffer(Nothing, 1, nullptr);
        AVSKUnregisterDrawCallback(Nothing, 5, 1, nullptr);
        AVSKUnregisterFlightLoopCallback(Nothing, nullptr);
        AVSKDestroyProbe(probe);
        AVSKDestroyWindow(window);
        AVSKUnregisterHotKey(hotKey);
        AVSKUnregisterDataAccessor(ref);
        AVSKDestroyMenu(menu);
        AVSKRemoveMenuItem(AVSKFindPluginsMenu(), 0);
    }
};

void Frame() {
    World::Pass(1);
    for (const char key : {'K', 'X'}) // leaves walks of the lists open
        AVSKKeyPressHook(key, 0, key);
    for (int code = 1; code <= 26; ++code)
        AVSKDoDrawingHook(code, 0);
    AVSKEventHook(AVSKHostEventCommands, 1, 0, 0);
    AVSKEventHook(AVSKHostEventFrameEnd, 1, 0, 0);
    Take();
    Host().TakeLog();
}

class Leaks : public ThreePlugins {
  protected:
    void SetUp() override {
        ThreePlugins::SetUp();
        host.on.createMenu = [](void *, int, const char *) { return &gHostThing; };
        host.on.loadObjectAsync = [](const char *, void (*done)(void *, void *), void *call) {
            done(&gHostThing, call);
        };
    }
};

#ifdef __SANITIZE_ADDRESS__
constexpr int kFrames = 1000; // the sanitizer is slow and finds leaks at exit
#else
constexpr int kFrames = 10000;
#endif

TEST_F(Leaks, MemoryStaysFlatOverFramesOfThingsThatComeAndGo) {
    std::size_t before = 0;
    for (int i = 0; i <= kFrames; ++i) {
        std::unique_ptr<const Things> things;
        a.Run([&] { things = std::make_unique<const Things>(); });
        Frame();
        a.Run([&] { things->Destroy(); });
        Take();
        if (i == 100)
            before = InUse();
    }
    EXPECT_EQ(InUse(), before);
}

TEST_F(Leaks, MemoryAndMappingsStayFlatOverReloads) {
    for (Puppet *puppet : {&a, &b, &air})
        puppet->enable = [] { return Things().menu != nullptr; };
    constexpr int kReloads = 500;
    std::map<std::string, int> mapped;
    std::size_t before = 0;
    for (int i = -20; i < kReloads; ++i) {
        AVSKReloadPlugins();
        Frame();
        if (i == -1) {
            mapped = MappedFiles();
            before = InUse();
        }
    }
    // malloc counts its cached blocks as used, so the number varies. The smallest block is 16 bytes.
    EXPECT_LT(InUse(), before + 16 * kReloads / 4) << "less than a block in four reloads";
    EXPECT_EQ(MappedFiles(), mapped);
    EXPECT_EQ(AVSKCountPlugins(), 4);
}

#ifdef __SANITIZE_ADDRESS__
// All other tests of this build rely on this, including the samples' sessions.
TEST(LeaksDeathTest, AProgramThatLeaksDoesNotEndWell) {
    const auto leak = [] {
        for (int i = 0; i < 100; ++i)
            new int[1000](); // NOLINT: on purpose
        std::exit(0);
    };
    const auto complains = [](int status) { return WIFEXITED(status) && WEXITSTATUS(status) != 0; };
    EXPECT_EXIT(leak(), complains, "LeakSanitizer") << "take options out of ASAN_OPTIONS and LSAN_OPTIONS";
}
#endif

} // namespace
