// Makes each system call of the library fail in turn: only this call, or this and
// all later ones of its kind. Each fault runs in its own child process. The tables
// list what the exports return and what the log says.
#include "Faults.h"
#include "World.h"

#include "AVSK/AVSKDisplay.h"
#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKPlanes.h"
#include "AVSK/AVSKThreadLocal.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <regex>
#include <set>
#include <sstream>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

#define AVSK_TEST_CALL_NAME(name, ...) #name,
const char *const kNames[] = {AVSK_TEST_SYSTEM_CALLS(AVSK_TEST_CALL_NAME)};

// The lines in the log, or on standard output, for faults that the process survives.
const std::pair<std::set<int>, const char *> kLines[] = {
    {{kCall_malloc}, R"(Failed: %  \(This folder cannot be read: Cannot allocate memory\.\))"},
    {{kCall_malloc}, R"(\[Name of A\]: Out of memory in AVSK\w+: the call has no effect\.)"},
    {{kCall_realloc}, R"(Out of memory: shared data faults/\S+ keeps its size; nothing is written\.)"},
    {{kCall_dlopen, kCall_dlsym}, "dlerror:"},
    {{kCall_dlopen, kCall_open64, kCall_fstat64, kCall_pread64},
     R"(Failed: %  \(This file is missing, not a DLL or could not be .*)"},
    {{kCall_dlsym}, R"(Failed: %  \(This file is a loadable DLL but is missing the AVPluginStart callback\.\))"},
    {{kCall_opendir}, R"(Failed: (%|/nowhere\.)  \(This folder cannot be read: Too many open files\.\))"},
    {{kCall_readdir64}, R"(Failed: %  \(This folder cannot be read: Input/output error\.\))"},
    {{kCall_stat64}, R"(name \S+, errno 13)"},
    {{kCall_open64}, "dlerror:%: Too many open files"},
    {{kCall_fstat64, kCall_pread64}, "dlerror:%: Input/output error"},
};

// A world with plugins of the host, the aircraft and the scenery, and a host that creates objects.
struct Stage {
    World world;
    Puppet &a = world.Install("A");
    Puppet &b = world.InstallAt("Resources/plugins/B.avp", "B");
    int thing = 0; // the host's handle for every menu, probe and object
    void (*completion)(void *, void *) = nullptr;
    void *completed = nullptr;

    Stage() {
        world.InstallAircraft("air");
        world.InstallScenery("scenery");
        for (const char *fault : {"EmptySignature", "NoStart", "NotALibrary", "OnlyStart", "RefusesStart"})
            world.InstallDefective(Line("Refused/plugins/", fault, "/lin.avp"), fault);
        Host().on.createMenu = [this](void *, int, const char *) { return &thing; };
        Host().on.createProbe = [this] { return &thing; };
        Host().on.loadObject = [this](const char *) { return &thing; };
        Host().on.loadDataFile = [](int, const char *) { return 1; };
        Host().on.saveDataFile = [](int, const char *) { return 1; };
        Host().on.loadObjectAsync = [this](const char *, void (*done)(void *, void *), void *argument) {
            completion = done;
            completed = argument;
        };
    }
};

struct Session {
    const char *name;
    bool isStarted; // whether the library starts before the faults
    std::string (*act)(Stage &stage);
    std::set<std::string> answers; // the results without a fault, and with faults that the process survives
};

void PrintTo(const Session &session, std::ostream *out) { *out << session.name; }

std::string Listing(const std::string &folder) {
    char names[256] = "";
    int total = -1;
    int returned = -1;
    const int complete =
        AVSKGetDirectoryContents(folder.c_str(), 0, names, sizeof names, nullptr, 0, &total, &returned);
    return Line(complete, " ", total, " ", returned);
}

const Session kSessions[] = {
    {"BeforeTheStart",
     false,
     [](Stage &stage) {
         AVSKFindPluginByPath(stage.b.path.c_str());
         return Line(Publish("host/value") != nullptr, " ", Listing(stage.world.PluginsFolder()));
     },
     {"1 1 2 2", "1 1 1 1", "1 1 0 0"}},
    {"Start",
     false,
     [](Stage &stage) {
         stage.world.Start();
         return Line(AVSKCountPlugins(), " ", stage.a.Id(), " ", stage.b.Id());
     },
     {"3 2 1", "2 1 -1", "2 -1 1", "1 -1 -1"}},
    {"RefusedPlugins",
     true,
     [](Stage &stage) {
         const std::string folder = stage.world.Path("Refused/");
         AVSKEventHook(AVSKHostEventSceneryFolder, 0, 0, reinterpret_cast<AVSKWord>(folder.c_str()));
         return Line(AVSKCountPlugins());
     },
     {"4", "3"}},
    {"SharedDataAndThreadLocal",
     true,
     [](Stage &stage) {
         int size = 0;
         stage.a.Run([&size] {
             AVSKShareData("faults/shared/of/some/length", AVSKDataTypeIntArray, Nothing, nullptr);
             AVSKDataRef ref = AVSKFindDataRef("faults/shared/of/some/length");
             int value = 1;
             for (int at = 1; at <= 1000; at *= 10)
                 AVSKSetDatavi(ref, &value, at, 1);
             size = AVSKGetDatavi(ref, nullptr, 0, 0);
             AVSKUnshareData("faults/shared/of/some/length", AVSKDataTypeIntArray, Nothing, nullptr);
         });
         const unsigned int key = AVSKAllocTLS();
         return Line(size, " ", AVSKSetTLS(key, &stage), AVSKGetTLS(key) == &stage);
     },
     {"1001 00", "101 00", "11 00", "2 00", "1 00", "1001 220"}},
    {"Reload",
     true,
     [](Stage &) {
         AVSKReloadPlugins();
         World::Pass(1);
         return Line(AVSKCountPlugins());
     },
     {"4", "3", "2", "1"}},
    {"AircraftAndScenery",
     true,
     [](Stage &stage) {
         World::LoadAircraft();
         const int loaded = AVSKCountPlugins();
         World::UnloadAircraft();
         const int left = AVSKCountPlugins();
         stage.world.LoadScenery();
         return Line(loaded, " ", left, " ", AVSKCountPlugins());
     },
     {"4 3 4", "3 3 4", "4 3 3", "3 3 3"}},
    {"FolderListing",
     true,
     [](Stage &stage) {
         std::string found;
         stage.a.Run([&] { found = Listing(stage.world.PluginsFolder()) + ", " + Listing("/nowhere"); });
         return found;
     },
     {"1 2 2, 1 0 0", "1 1 1, 1 0 0", "1 0 0, 1 0 0"}},
    {"Paths",
     true,
     [](Stage &stage) {
         const std::string path = stage.b.path;
         char info[AVSK_TEXT_SIZE] = "";
         char folder[AVSK_PATH_SIZE] = "";
         std::string answers;
         stage.a.Run([&] {
             AVSKGetPluginInfo(stage.b.Id(), nullptr, info, nullptr, nullptr);
             AVSKGetSystemPath(folder);
             AVSKSetUsersAircraft(path.c_str());
             answers = Line(AVSKFindPluginByPath(path.c_str()), " ", AVSKLoadDataFile(1, path.c_str()), " ",
                            AVSKSaveDataFile(1, path.c_str()), " ", path == info, folder == Host().systemPath);
         });
         return answers;
     },
     {"1 1 1 11", "1 1 0 11", "1 0 1 11", "-1 1 1 11", "-1 0 1 11", "-1 0 0 11"}},
    {"EveryModule",
     true,
     [](Stage &stage) {
         std::string made;
         AVSKWindowID window = nullptr;
         float f = 0;
         int good = 0;
         stage.a.Run([&] {
             for (int i = 0; i < 70; ++i)
                 good += AVSKIsDataRefGood(Publish(Line("faults/a/dataref/of/some/length/", i).c_str()));
             AVSKUnregisterDataAccessor(AVSKFindDataRef("faults/a/dataref/of/some/length/7"));
             AVSKMenuID menu = AVSKCreateMenu("menu", nullptr, 0, Nothing, nullptr);
             for (int i = 0; i < 5; ++i)
                 good += AVSKAppendMenuItem(menu, "item", nullptr, 0);
             AVSKDestroyMenu(menu);
             window = AVSKCreateWindow(0, 9, 9, 0, 1, Nothing, Nothing, Nothing, nullptr);
             AVSKTakeKeyboardFocus(window);
             AVSKRegisterDrawCallback(Nothing, 5, 1, nullptr);
             AVSKRegisterHotKey('K', 0, "a hot key of some length", Nothing, nullptr);
             AVSKRegisterKeySniffer(Nothing, 1, nullptr);
             AVSKRegisterFlightLoopCallback(Nothing, -1, nullptr);
             AVSKCommandButtonPress(1);
             AVSKRegisterCommandHandler(&stage.thing, Nothing, 1, nullptr);
             AVSKCommandBegin(&stage.thing);
             AVSKCreateCommand("sim/faults", "warned of in the log");
             AVSKDestroyProbe(AVSKCreateProbe(AVSK_PROBE_Y));
             AVSKObjectRef object = AVSKLoadObject("object");
             AVSKLoadObjectAsync("object", Nothing, nullptr);
             AVSKControlCamera(AVSKCameraForever, Nothing, nullptr);
             AVSKSendMessageToPlugin(NO_PLUGIN_ID, 5, nullptr);
             AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", 1);
             AVSKEnumerateFeatures(Nothing, nullptr);
             char model[] = "Aircraft/a model of some length.acf", *models[] = {model, nullptr};
             made = Line(object && AVSKCreateProbe(AVSK_PROBE_Y), AVSKAcquirePlanes(models, nullptr, nullptr));
             AVSKSetAircraftModel(1, model);
             made += Line(stage.b.Run([] { return AVSKAcquirePlanes(nullptr, Nothing, nullptr); }));
             AVSKReleasePlanes();
         });
         for (int code = 1; code <= 26; ++code)
             AVSKDoDrawingHook(code, 0);
         made += Line(World::Pass(1), AVSKMouseClickHook(5, 5, 1), AVSKKeyPressHook('K', 0, 'K'), AVSKCountHotKeys(),
                      AVSKEventHook(AVSKHostEventCommands, 1, 0, 0), AVSKCommandHook(&stage.thing, 1, 0, 1),
                      AVSKCameraHook(&f, &f, &f, &f, &f, &f, &f));
         AVSKDisablePlugin(stage.a.Id());
         stage.completion(&stage.thing, stage.completed);
         made += Line(AVSKEnablePlugin(stage.a.Id()));
         stage.a.Run([&] { AVSKDestroyWindow(window), AVSKLoadObjectAsync("object", Nothing, nullptr); });
         stage.world.Stop();
         return Line(made, " ", good, " ", AVSKCountPlugins());
     },
     {"11011011011 80 0"}},
};

class FaultsInTurn : public testing::TestWithParam<Session> {
  protected:
    struct Run {
        Lines said; // lines of the log and of both outputs, and the results
        int status;
        Faults faults;
    };

    // Runs the session in a child process, whose abort does not end the test program.
    Run InChild(SystemCall fails, int failsAt, bool lasting) {
        int pipe[2];
        EXPECT_EQ(::pipe(pipe), 0);
        const pid_t child = fork();
        if (child == 0) {
            dup2(pipe[1], STDERR_FILENO);
            dup2(pipe[1], STDOUT_FILENO);
            alarm(20);
            try {
                Act(fails, failsAt, lasting);
            } catch (const std::exception &thrown) {
                fputs(thrown.what(), stderr);
            }
            _exit(1);
        }
        close(pipe[1]);
        std::string text;
        char buffer[4096];
        for (ssize_t size = 0; (size = read(pipe[0], buffer, sizeof buffer)) > 0;)
            text.append(buffer, static_cast<std::size_t>(size));
        close(pipe[0]);
        Run run = {};
        waitpid(child, &run.status, 0);
        std::istringstream lines(text);
        static const std::regex paths("/tmp/[^ :,]*");
        for (std::string line; std::getline(lines, line);)
            if (!line.empty())
                run.said.push_back(std::regex_replace(line, paths, "%"));
        run.faults = *shared;
        return run;
    }

    void Act(SystemCall fails, int failsAt, bool lasting) {
        Host().on.debugString = [](const char *text) {
            fputs(text, stderr);
            if (std::strstr(text, "simulator cannot continue"))
                AVSKCreateProbe(AVSK_PROBE_Y); // fails for lack of memory, too
        };
        setvbuf(stdout, nullptr, _IONBF, 0);
        std::signal(SIGABRT, [](int) { AVSKTestSaveCounts(); });
        Faults &faults = *AVSKTestFaults();
        faults.fails = fails;
        faults.failsAt = failsAt;
        faults.lasting = lasting;
        faults.counting = true;
        const std::string answers = GetParam().act(stage);
        faults.counting = false;
        fputs(("answers " + answers + "\n").c_str(), stderr);
        Host().on.debugString = nullptr;
        stage.world.Stop();
        *shared = faults;
        AVSKTestSaveCounts();
        _exit(HasFailure());
    }

    // Returns the lines of a run that the run without faults does not have.
    static Lines Difference(const Run &run, const Run &dry) {
        Lines lines;
        std::multiset<std::string> usual(dry.said.begin(), dry.said.end());
        for (const std::string &line : run.said)
            if (const auto same = usual.find(line); same != usual.end())
                usual.erase(same);
            else
                lines.push_back(line);
        return lines;
    }

    Stage stage;
    Faults *const shared =
        static_cast<Faults *>(mmap(nullptr, sizeof(Faults), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
};

TEST_P(FaultsInTurn, EndWithAMessageOrTheNeutralResult) {
    if (GetParam().isStarted)
        stage.world.StartQuietly();
    const Run dry = InChild(kSystemCalls, 0, false);
    ASSERT_EQ(dry.status, 0) << testing::PrintToString(dry.said);
    std::set<std::string> answers = {dry.said.back().substr(8)};
    for (int call = 0; call < kSystemCalls; ++call) {
        RecordProperty(kNames[call], dry.faults.count[call]);
        for (int i = 0; i < 2 * dry.faults.count[call]; ++i) {
            SCOPED_TRACE(Line(kNames[call], " ", i / 2 + 1, i % 2 ? " and all later ones" : ""));
            const Run run = InChild(static_cast<SystemCall>(call), i / 2 + 1, i % 2 != 0);
            const Lines difference = Difference(run, dry);
            const std::string text = testing::PrintToString(difference);
            if (WIFSIGNALED(run.status)) {
                EXPECT_EQ(WTERMSIG(run.status), SIGABRT) << text;
                EXPECT_LE(call, kCall_aligned_alloc) << text;
                // The line is on standard error and, once the library has started, also in the log.
                static const std::regex early("AVSK: out of memory; the simulator cannot continue");
                static const std::regex late(
                    "AVSK: out of memory in a call of plugin '[^']+'; the simulator cannot continue");
                const bool mayBeEarly = !GetParam().isStarted;
                const std::size_t copies =
                    difference.empty() || (mayBeEarly && std::regex_match(difference[0], early)) ? 1 : 2;
                EXPECT_EQ(difference, Lines(copies, difference.empty() ? "" : difference[0]));
                EXPECT_TRUE(std::regex_match(difference.front(), copies == 1 ? early : late)) << text;
            } else {
                EXPECT_EQ(run.status, 0) << text;
                EXPECT_LE(run.faults.blocks, dry.faults.blocks) << "a leak";
                const bool changed = !difference.empty() && difference.back().starts_with("answers");
                const bool isLogged =
                    call != kCall_pthread_key_create && std::strcmp(GetParam().name, "BeforeTheStart") != 0;
                EXPECT_TRUE(!changed || difference.size() > 1 || !isLogged) << "no line in the log";
                EXPECT_TRUE(text.find("read: Cannot allocate") == std::string::npos ||
                            text.find("answers 1 1 1,") == std::string::npos)
                    << "a plugin gets the whole folder or nothing";
                EXPECT_TRUE(!difference.empty() || !isLogged) << "the fault has no effect";
                for (const std::string &line : difference)
                    if (line.starts_with("answers "))
                        answers.insert(line.substr(8));
                    else
                        EXPECT_TRUE(std::any_of(std::begin(kLines), std::end(kLines), [&](const auto &each) {
                            return each.first.contains(call) && std::regex_match(line, std::regex(each.second));
                        })) << line;
            }
        }
    }
    EXPECT_EQ(answers, GetParam().answers);
}

INSTANTIATE_TEST_SUITE_P(Sessions, FaultsInTurn, testing::ValuesIn(kSessions),
                         [](const auto &session) { return session.param.name; });

// A text of 2 GiB, which is one megabyte of memory mapped again and again.
TEST(LongTexts, ThatNoStringCanHoldAreRefused) {
    World world;
    world.StartQuietly();
    constexpr std::size_t part = 1 << 20, size = std::size_t{1} << 31;
    const int file = memfd_create("text", 0);
    ASSERT_EQ(ftruncate(file, part), 0);
    auto *const text =
        static_cast<char *>(mmap(nullptr, size + part, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    for (std::size_t at = 0; at < size; at += part)
        mmap(text + at, part, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0);
    std::memset(text, 'x', part);
    EXPECT_EQ(AVSKFindPluginByPath(text), NO_PLUGIN_ID);
    EXPECT_EQ(Host().log, "[[AVSK_PLUGIN_AERIVO]]: Out of memory in AVSKFindPluginByPath: the call has no effect.\n");
    munmap(text, size + part);
    close(file);
}

// Checks that the library imports nothing that may throw, since C programs call it.
TEST(Imports, TheLibraryUsesNoOperatorNewAndNoTextsOfTheRuntime) {
    const std::string command = std::string("nm -D --undefined-only ") + AVSK_TEST_LIBRARY;
    FILE *names = popen(command.c_str(), "r");
    ASSERT_TRUE(names);
    int count = 0;
    static const std::regex unwanted("_Zn[aw].*|_Zd[al].*|_ZNK?S[bs].*|_ZNK?St7__cxx11.*|.*throw_(bad_a|length).*");
    for (char kind = 0, name[512]; fscanf(names, " %c %511[^@\n]%*[^\n]", &kind, name) > 0; ++count)
        EXPECT_FALSE(std::regex_match(name, unwanted)) << name;
    pclose(names);
    EXPECT_GT(count, 20);
}

} // namespace
