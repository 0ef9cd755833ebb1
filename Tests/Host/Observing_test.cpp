// What the reference host tells of plugins: traces, times, and what a session
// makes of a changing world.
#include "RunAvsk.h"
#include "World.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

// Runs a session, of which only the steps are given.
struct ObservingTest : testing::Test {
    World world; // an empty folder, for files

    AvskRun Session(const std::string &steps, const std::string &options = "") {
        std::ofstream(world.Path("session.avs")) << steps;
        return RunAvsk("run --quiet " + world.Path("session.avs") + " --root " AVSK_TEST_DEMO " " + options);
    }
    std::string Read(const std::string &file) const {
        std::ostringstream text;
        text << std::ifstream(world.Path(file)).rdbuf();
        return text.str();
    }
};

const std::string kPick = "plugin Menu\nmenu \"Plugins/Sample lights/Beacon\"\n";

TEST_F(ObservingTest, TheTextTraceIsNestedAndFilteredByPluginAndFunction) {
    const AvskRun run =
        Session(kPick, "--trace " + world.Path("t.txt") + " --trace-plugin 'men*' --trace-function '*nuItem'");
    EXPECT_EQ(run.status, 0) << run.said;
    const std::string trace = Read("t.txt");
    EXPECT_EQ(trace.find("AVPluginStart"), std::string::npos) << trace;
    std::size_t at = 0;
    for (const char *piece :
         {"  Menu > library  AVSKAppendMenuItem(menu=\"Sample lights\", name=\"Beacon\", itemRef=0x",
          ", forceEnglish=0) {\n", "    library > host  appendMenuItem(", ") = ", "  [", " us]\n",
          "  } AVSKAppendMenuItem = 0  [", "Menu > library  AVSKCheckMenuItem(", ", check=2)  ["}) {
        at = trace.find(piece, at);
        ASSERT_NE(at, std::string::npos) << "no '" << piece << "' in\n" << trace;
    }
}

TEST_F(ObservingTest, TheJsonTraceIsBalancedAndInOrder) {
    const AvskRun run = Session(kPick, "--trace " + world.Path("t.json"));
    EXPECT_EQ(run.status, 0) << run.said;
    int depth = 0;
    int deepest = 0;
    double before = 0;
    for (const auto &event : nlohmann::json::parse(Read("t.json"))) {
        if (event["ph"] == "M")
            continue;
        depth += event["ph"] == "B" ? 1 : -1;
        deepest = std::max(deepest, depth);
        ASSERT_GE(depth, 0);
        ASSERT_GE(event["ts"].get<double>(), before);
        before = event["ts"];
        if (event["ph"] == "B" && event["name"] == "AVSKMenuHandler_f Picked") {
            EXPECT_TRUE(event["cat"] == "library > Menu" && event["args"].contains("itemRef")) << event;
        }
    }
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(deepest, 4) << "hook, handler, function, service";
}

TEST_F(ObservingTest, TimesAreListedAndABudgetFailsTheSession) {
    const AvskRun run = Session("budget 0.000001 Menu\nbudget 1000000\n" + kPick + "frames 2\nmenu " +
                                    "\"Plugins/Sample lights/Beacon\"\nunload\n",
                                "--profile");
    EXPECT_EQ(run.status, 1) << run.said;
    for (const char *piece : {"budget: 'Menu' took ", " ms in frame 2, more than its budget of 1e-06 ms, most of it (",
                              ") in AVSKMenuHandler_f Picked; over it in 1 frames\n", "AVPluginStart", " 1 failed\n"})
        EXPECT_NE(run.said.find(piece), std::string::npos) << "no '" << piece << "' in\n" << run.said;
}

TEST_F(ObservingTest, WhatMatchesNothingOrCannotBeWrittenIsNamedAndFails) {
    const std::string trace = "--trace " + world.Path("t.txt");
    const struct {
        std::string setUp, options;
        int status;
        const char *said;
    } cases[] = {
        {"", trace + " --trace-plugin Memu", 1, "--trace-plugin: no plugin 'Memu' was started; did you mean 'Menu'?"},
        {"", trace + " --trace-function Piked", 1, "no callback of that name was called; did you mean 'Picked'?"},
        {"", trace + " --trace-function Picked", 0, " 0 failed"},
        {"", trace + " --trace-function AVSKCreateMnu", 2, "did you mean 'AVSKCreateMenu'"},
        {"budget 1 Memu\n", "", 1, "budget: no plugin 'Memu' was started, so its budget was not checked; did you mean"},
        {"", "--trace /dev/full", 1, "--trace: '/dev/full' is not complete: "},
        {"", "--log /dev/full", 1, "--log: '/dev/full' is not complete: No space left on device"},
    };
    for (const auto &[setUp, options, status, said] : cases) {
        const AvskRun run = Session(setUp + kPick, options);
        EXPECT_EQ(run.status, status) << options << run.said;
        EXPECT_NE(run.said.find(said), std::string::npos) << options << run.said;
    }
}

TEST_F(ObservingTest, AnExceptionIsReportedWithTheLineOfTheSession) {
    setenv("AVSK_TEST_DIES", "throw", 1);
    const AvskRun run = Session("plugin " AVSK_TEST_DIES_ROOT "/Resources/plugins/Dies\nframes 2\n");
    EXPECT_EQ(run.status, 1);
    const std::size_t place = run.said.find("In frame 1, at " + world.Path("session.avs") + ":2: frames 2\n");
    EXPECT_NE(run.said.find("Dies.cpp:", place), std::string::npos) << run.said;
}

TEST_F(ObservingTest, SessionsChangeTheAircraftAndReportTheScenery) {
    for (const char *place : {"Trainer/plugins/", "Other/plugins/", "Island/plugins/"})
        world.MakeFolder(place);
    fs::copy(AVSK_TEST_DIES_ROOT "/Resources/plugins/Dies", world.Path("Trainer/plugins/Dies"));
    std::ofstream(world.Path("Other/other.acf"));
    const AvskRun run =
        Session("plugin Template\naircraft Trainer\nscenery Island\n"
                "expect plugin Dies enabled\n"
                "load aircraft " +
                world.Path("Other/other.acf") +
                "\nexpect no plugin Dies\nreport scenery\ncrash\nframes 1\nunload\nexpect nothing left\n");
    EXPECT_EQ(run.status, 0) << run.said;
    EXPECT_NE(run.said.find("3 expectations, 0 failed"), std::string::npos) << run.said;
}

} // namespace
