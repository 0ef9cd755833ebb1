// Plugins that end the reference host: its exit status, and which plugin it
// blames for which fault.
#include "RunAvsk.h"
#include "World.h"

#include <gtest/gtest.h>

#include <fstream>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct End {
    const char *way; // a way to die in Plugins/Dies.cpp
    int status;
    std::vector<std::string> said;

    friend std::ostream &operator<<(std::ostream &out, const End &end) { return out << end.way; }
};

struct BlameTest : testing::TestWithParam<End> {};

TEST_P(BlameTest, RunNamesWhoEndedIt) {
    const auto [status, said] = RunAvsk("run --root " AVSK_TEST_DIES_ROOT " --frames 3 --key F8@2 --timeout 2",
                                        std::string("AVSK_TEST_DIES=") + GetParam().way);
    EXPECT_EQ(status, GetParam().status) << said;
    EXPECT_EQ(said.find("a fault of its own"), std::string::npos) << said;
    for (std::size_t at = 0; const std::string &piece : GetParam().said) { // in this order
        at = said.find(piece, at);
        ASSERT_NE(at, std::string::npos) << "no '" << piece << "' in\n" << said;
        at += piece.size();
    }
}

// The address sanitizer's own unwinder stops before it reaches the overwritten part.
#ifdef __SANITIZE_ADDRESS__
constexpr const char *kNoCallers = "The stack";
#else
constexpr const char *kNoCallers = "the stack is overwritten";
#endif
const std::string kTick = " in AVSKFlightLoop_f Tick\n";
const std::string kUnderWay = "  host > library  AVSKEventHook(event=0, ";
const std::string kLast = "  Dies > library  AVSKRegisterFlightLoopCallback(callback=Tick, interval=-1, refcon=null)\n";

INSTANTIATE_TEST_SUITE_P(
    Ways, BlameTest,
    testing::Values(
        // The plugin's buffered output is flushed before the report.
        End{"write",
            3,
            {"about to die", "avsk: plugin 'Dies' died of SIGSEGV (address 0x0 is not mapped)" + kTick, kUnderWay,
             "\n    library > Dies  AVSKFlightLoop_f Tick(", kLast, "Dies.cpp:"}},
        End{"call", 3, {"avsk: plugin 'Dies' died of SIGSEGV (there is no code at 0x0)" + kTick, "Dies.cpp:"}},
        End{"stack", 3, {"avsk: plugin 'Dies' died of SIGSEGV (the stack is full: ", kTick, "Recurse", "... and more"}},
        End{"abort", 3, {"avsk: plugin 'Dies' died of SIGABRT (abort() was called) in AVSKHotKey_f Pressed\n"}},
        End{"library",
            3,
            {"avsk: the library died of SIGSEGV (address 0x7 is not mapped) in AVSKGetPluginInfo, called by plugin "
             "'Dies'\n"}},
        // The history copies the text before the library reads it.
        End{"text",
            3,
            {"avsk: the library died of SIGSEGV", " in AVSKFindDataRef, called by plugin 'Dies'\n",
             "AVSKFindDataRef(name=unreadable 0x7)"}},
        End{"loading", 3, {"avsk: code of '", "Dies/lin.avp' died of SIGSEGV", " in AVSKInitializePlugins, "}},
        End{"thread", 3, {"avsk: a thread other than the main one, in '", "Dies/lin.avp', died of SIGSEGV"}},
        End{"loop", 3, {"avsk: plugin 'Dies' did not return within 2 s from AVSKFlightLoop_f Tick\n", "Dies.cpp:"}},
        End{"exit", 3, {"avsk: plugin 'Dies' called exit(0)" + kTick, kUnderWay, "Dies.cpp:"}},
        // The stack is overwritten; the report does not depend on it.
        End{"smash", 3, {"died of SIGSEGV (there is no code at 0x41414141)" + kTick, "In frame 1\n", kLast}},
        End{"smashfar", 3, {"died of SIGSEGV (there is no code at 0x41414141)" + kTick, kLast, kNoCallers}},
        End{"registers", 3, {"died of SIGSEGV (address 0x", kTick, kLast, "Dies.cpp:"}},
        End{"names", 3, {"(address 0x0 is not mapped)" + kTick, "debugString(text=\"nnn", "\"...)\n", "Dies.cpp:"}},
        End{"throw",
            1,
            {"avsk: the run was broken off by an exception of plugin 'Dies' in ", ": enough\nIn frame 1\n", kLast,
             "It was thrown here", "Dies.cpp:"}},
        // The host reports the second exception, not the first, which was caught.
        End{"rethrow", 1, {": its type is not derived from std::exception\n", "It was thrown here", "Caught() at "}},
        End{"nothing", 0, {"Dies"}}));

// The plugin ends the run in the first frame, while the trace is buffered.
TEST(TraceTest, IsCompleteWhenAPluginEndsTheRun) {
    const World world;
    for (const std::string way : {"_exit", "abort", "exit", "interrupt"}) {
        const auto [status, said] =
            RunAvsk("run --root " AVSK_TEST_DIES_ROOT " --frames 3 --key F8@2 --trace " + world.Path("t.txt"),
                    "AVSK_TEST_DIES=" + way);
        std::ostringstream trace;
        trace << std::ifstream(world.Path("t.txt")).rdbuf();
        const std::string hook = way == "abort" ? "host > library  AVSKKeyPressHook(" : "AVSKEventHook(event=0, ";
        EXPECT_NE(trace.str().rfind(hook), std::string::npos) << way << ' ' << status << '\n' << said << trace.str();
    }
}

} // namespace
