// `avsk exec`: programs that load the library in every way are observed, and go on as without it.
#include "RunAvsk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

namespace {

struct Program {
    const char *name;
    const char *words; // of Plugins/AnyHost.c
    int status;
    std::vector<std::string> said; // in this order
    const char *options = "--ps --profile --check";
    const char *dies = ""; // a way in Plugins/Dies.cpp

    friend std::ostream &operator<<(std::ostream &out, const Program &program) { return out << program.name; }
};

struct ExecTest : testing::TestWithParam<Program> {};

const std::string kProgram = AVSK_TEST_ANY_HOST " " AVSK_TEST_LIBRARY " " AVSK_TEST_DIES_ROOT "/ ";

TEST_P(ExecTest, ObservesAndLeavesTheProgramAsItIs) {
    const Program &program = GetParam();
    const auto [status, said] =
        RunObserved(program.options, kProgram + program.words, std::string("AVSK_TEST_DIES=") + program.dies);
    EXPECT_EQ(status, program.status) << said;
    for (std::size_t at = 0; const std::string &piece : program.said) {
        at = said.find(piece, at);
        ASSERT_NE(at, std::string::npos) << "no '" << piece << "' in\n" << said;
        at += piece.size();
    }
}

const std::string kOwned = "Owned by plugins:\n  Dies    loop  Tick  AVSKRegisterFlightLoopCallback in AVPluginStart\n";
const std::string kTimes = "AVSKFlightLoop_f Tick\n";
const std::string kTick = " in AVSKFlightLoop_f Tick\n";

INSTANTIATE_TEST_SUITE_P(
    Programs, ExecTest,
    testing::Values(
        Program{
            "LibraryInAScopeOfItsOwn", "", 0, {"1 plugins", "the end", "Owned by plugins:\n", "loop  Tick", kTimes}},
        Program{"LibraryInTheGlobalScope", "global", 0, {"1 plugins", "the end", "loop  Tick", kTimes}},
        Program{"LibraryInAnotherThread", "thread", 0, {"1 plugins", "the end", "loop  Tick", kTimes}},
        Program{"NoShutdown", "stays", 0, {"the end", "loop  Tick", kTimes}},
        Program{"LeavesWithoutHandlers", "leaves", 0, {"the end", "loop  Tick", kTimes}},
        Program{"ChildrenDoNotReport", "forks", 0, {"the end", "Owned by plugins:"}},
        Program{"CallOfAThirdThread", "foreign", 1, {"the end", "AVSKCountPlugins", "(call-thread)"}},
        Program{"ReportsWhenAsked", "signal", 0, {"loop  Tick", kTimes, "the end", "loop  Tick", kTimes}},
        Program{"HostsHandlerRunsAfterTheReport",
                "handler",
                7,
                {"its handler is kept", "avsk: plugin 'Dies' died of SIGSEGV (address 0x0 is not mapped)" + kTick,
                 "Calls under way", "the host's own handler ran"},
                "",
                "write"},
        Program{"FullStack", "handler", 7, {"(the stack is full: ", "the host's own handler ran"}, "", "stack"},
        Program{"ExceptionThatNobodyCatches",
                "",
                134,
                {"avsk: plugin 'Dies' threw an exception" + kTick.substr(0, kTick.size() - 1) +
                 ", which nobody caught, and the host died of SIGABRT"},
                "",
                "throw"},
        Program{"ExitKeepsItsStatus", "", 0, {"avsk: plugin 'Dies' called exit(0)" + kTick}, "", "exit"},
        Program{"HangingCall", "thread", 3, {"avsk: plugin 'Dies' did not return within 1 s"}, "--timeout 1", "loop"}),
    testing::PrintToStringParamName());

TEST(Exec, WritesReportsAndTracesToFiles) {
    const std::string folder = testing::TempDir() + "/exec test";
    std::filesystem::create_directories(folder);
    const auto [status, said] = RunObserved(
        "--ps --report \"" + folder + "/report.txt\" --trace \"" + folder + "/t.txt\"", kProgram + "foreign");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(said.find("Owned"), std::string::npos) << said;
    const auto contains = [](const std::string &path, const std::string &text) {
        std::ifstream file(path);
        return std::string(std::istreambuf_iterator<char>(file), {}).find(text) != std::string::npos;
    };
    EXPECT_TRUE(contains(folder + "/report.txt", "loop  Tick"));
    EXPECT_TRUE(contains(folder + "/t.txt", "library > Dies  AVSKFlightLoop_f Tick"));
    EXPECT_TRUE(contains(folder + "/t.txt", " > library  AVSKCountPlugins, which is not the host's thread"));
}

struct Refused {
    const char *name;
    const char *arguments;
    const char *said;

    friend std::ostream &operator<<(std::ostream &out, const Refused &refused) { return out << refused.name; }
};

struct ExecRefusesTest : testing::TestWithParam<Refused> {};

TEST_P(ExecRefusesTest, InOneLine) {
    const auto [status, said] = RunAvsk(std::string("exec ") + GetParam().arguments);
    EXPECT_EQ(status, 2) << said;
    EXPECT_NE(said.find(GetParam().said), std::string::npos) << said;
    EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
}

INSTANTIATE_TEST_SUITE_P(
    Requests, ExecRefusesTest,
    testing::Values(
        Refused{"NoProgram", "--ps", "say which program to run"},
        Refused{"UnknownOption", "--trase x -- prog", "did you mean '--trace'?"},
        Refused{"WideProgram", "-- /bin/ls", "is a 64-bit program"},
        Refused{"NoSuchProgram", "-- /bin/lz", "there is no program '/bin/lz'; did you mean"},
        Refused{"NotInPath", "-- no-such-program", "in the folders of PATH"},
        Refused{"Folder", "-- /tmp", "is a folder"}, Refused{"Script", "-- " AVSK_TEST_SCRIPT, "is a script"},
        Refused{"Library", "-- " AVSK_TEST_LIBRARY, "linked statically or no program"},
        Refused{"SetUid", "-- " AVSK_TEST_SET_UID, "is set-uid or set-gid"},
        Refused{"Itself", "-- " AVSK_TEST_HOST " run", "observes plugins itself"},
        Refused{"ProgramBesideVariables", "--environment -- " AVSK_TEST_ANY_HOST, "runs no program"},
        Refused{"TraceInNoFolder", "--trace /nowhere/t -- " AVSK_TEST_ANY_HOST, "cannot write '/nowhere/t'"},
        Refused{"ReportInNoFolder", "--report /nowhere/r -- " AVSK_TEST_ANY_HOST, "'/nowhere/r' cannot be written"}),
    testing::PrintToStringParamName());

#ifndef __SANITIZE_ADDRESS__ // which has an action of its own, and refuses to load a library in this way

INSTANTIATE_TEST_SUITE_P(
    OtherPrograms, ExecTest,
    testing::Values(
        Program{"LibraryThatBindsToItself", "deepbind", 0, {"1 plugins", "the end", "loop  Tick", kTimes}},
        Program{
            "DefaultActionEndsTheProgram", "", 139, {"avsk: plugin 'Dies' died of SIGSEGV", "Dies.cpp:"}, "", "write"}),
    testing::PrintToStringParamName());

TEST(Exec, SaysThatAProgramDidNotLoadTheLibrary) {
    const auto [status, said] = RunAvsk("exec -- " AVSK_TEST_ANY_HOST " nothing nowhere");
    EXPECT_EQ(status, 2) << said;
    EXPECT_NE(said.find("did not load libAVSK.so, so nothing was observed"), std::string::npos) << said;
}

TEST(Exec, ProgramsAreObservedByTwoVariablesToo) {
    const std::string command =
        "sh -c 'eval \"$(" AVSK_TEST_HOST " exec --environment --ps)\"; exec " AVSK_TEST_ANY_HOST " " AVSK_TEST_LIBRARY
        " " AVSK_TEST_DIES_ROOT "/'";
    const std::string said = RunAvsk("--version; " + command).said;
    EXPECT_NE(said.find("Owned by plugins:"), std::string::npos) << said;
    const std::string wrong =
        RunAvsk("--version; LD_PRELOAD=" AVSK_TEST_PRELOAD " AVSK_OBSERVE=--trise " AVSK_TEST_ANY_HOST
                " " AVSK_TEST_LIBRARY " " AVSK_TEST_DIES_ROOT "/")
            .said;
    EXPECT_NE(wrong.find("avsk: AVSK_OBSERVE: "), std::string::npos) << wrong;
    EXPECT_NE(wrong.find("the program runs unobserved\n"), std::string::npos) << wrong;
    EXPECT_NE(wrong.find("the end"), std::string::npos) << wrong;
}

#endif

} // namespace
