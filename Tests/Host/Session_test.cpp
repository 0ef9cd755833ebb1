// What sessions report to a user: wrong lines and values, listings, and files
// that plugins wrote.
#include "RunAvsk.h"
#include "World.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct SessionTest : testing::Test {
    World world; // an empty folder, for files

    // Runs the lines from a file or from standard input. The output must contain the pieces in this order.
    void Expect(int status, const std::string &lines, const std::vector<std::string> &pieces,
                const std::string &options = "--root " AVSK_TEST_DEMO, const std::string &environment = "") {
        std::ofstream(world.Path("s.avs")) << lines;
        const bool isInput = options.find("--interactive") != std::string::npos;
        const std::string file = (isInput ? "< " : "") + world.Path("s.avs");
        const AvskRun run = RunAvsk("run --quiet " + options + " " + file, environment);
        EXPECT_EQ(run.status, status) << run.said;
        std::size_t at = 0;
        for (const std::string &piece : pieces) {
            at = run.said.find(piece, at);
            ASSERT_NE(at, std::string::npos) << "no '" << piece << "' in\n" << run.said;
            at += piece.size();
        }
    }
};

TEST_F(SessionTest, SetStoresWhatTheTypeHoldsAndRefusesTheRest) {
    struct {
        const char *set;
        const char *message;
    } const kRefused[] = {
        {"sample/counter 47,5", ":20: frame 0: set sample/counter 47,5: '47,5' is not a whole number"},
        {"sample/counter 0x10", "its type is int"},
        {"sample/counter 1e400", "'1e400' is not"},
        {"sample/counter 47.5", "'47.5' is not"},
        {"sample/counter 3e9", "'3e9' is not"},
        {"sample/counter true", "'true' is not"},
        {"sample/counter 1 2", ":22: frame 0: set sample/counter 1 2: it takes one number"},
        {"sample/counter[0] 1", "it has no elements"},
        {"sim/flight/latitude nan", "'nan' is not a number that fits, such as 47.5; its type is double"},
        {"sample/levels 1 \"2\"", ":21: frame 0: set sample/levels 1 \"2\": '2' is a text"},
        {"sample/levels 1 1e39", "'1e39' is not"},
        {"sample/levels[3] 1 2", "it has 4 elements, the last one is [3]; its type is float array"},
        {"sim/flight/heading 1", "it cannot be written; its type is float, read-only"},
        {"sample/countr 1", "nobody publishes 'sample/countr'; did you mean 'sample/counter'?"},
    };
    std::string lines = "plugin DatarefOwner\n";
    std::vector<std::string> messages;
    for (const auto &[set, message] : kRefused) {
        lines += std::string("set ") + set + "\n";
        messages.insert(messages.end(), {"s.avs:" + std::to_string(messages.size() / 2 + 2), message});
    }
    messages.emplace_back(" 0 frames, 14 steps, 1 expectations, 14 failed\n");
    Expect(1, lines + "expect dataref sample/counter 0\n", messages);
    Expect(
        0,
        "plugin DatarefOwner\nset sample/counter 1e2\nset sample/levels[1] 2.5 3\nexpect dataref sample/levels 0 2.5 "
        "3 0\nget sample/levels[2]\nget sample/counter\n",
        {"sample/levels[2] = 3 (float array)\nsample/counter = 100 (int)\n"});
}

TEST_F(SessionTest, AllWrongLinesAreReportedAndNothingRuns) {
    Expect(2,
           "\xEF\xBB\xBFplugin Menu\nroot nowhere\nframse 3\nlog \"x\"\nexpect frames\nexpect view cokpit\n"
           "menu \"a\nscreen 9x99999\nunlaod\nexpect nothing left\nexpect no nothing left\n\"ps\"\n",
           {":3:1: unknown word 'framse'; did you mean 'frames'?\n",
            ":4:1: 'log' is an expectation: write 'expect [no] log TEXT'\n", ":5:8: 'frames' is no expectation",
            ":6:13: expected 'tower' or 'chase' or 'cockpit', found 'cokpit': write 'expect [no] view ",
            "; did you mean 'cockpit'?\n", ":7:6: this text does not end",
            ":8:1: 'screen' belongs before the first step", ":9:1: unknown word 'unlaod'; did you mean 'unload'?\n",
            ":11:1: there is no 'expect no nothing'",
            ":12:1: a text where a word is expected: write ps without quotes"});
    Expect(2, "plugin Mneu\nplugin Windw\nframes 1\n",
           {"s.avs:1:8: no plugin 'Mneu' in ", "; did you mean 'Menu'?\navsk: ", "s.avs:2:8: no plugin 'Windw'"});
    Expect(2, "plugin Menu\nframes 1\n", {"s.avs:1:8: no plugin 'Menu': no root was named"}, "");
    std::string many;
    for (int i = 0; i < 22; ++i)
        many += "framse 1\n";
    Expect(2, many, {"s.avs:20:1: unknown word 'framse'", "\navsk: 2 more lines are wrong\n"});
    Expect(2, std::string("frames 1\n\0", 10), {"s.avs' is no session, because it is no text"});
    Expect(2, "plugin " AVSK_TEST_HOST "\nframes 1\n", {": the library loads no file of this name: call it NAME.avp"});
    Expect(2, "root " + world.Path("") + "\nplugin Menu\nscenery gone\nframes 1\n", {"s.avs:3:9: no folder 'gone'"},
           "");
}

TEST_F(SessionTest, ThePromptExplainsWordsAndListsWhatThereIs) {
    Expect(1,
           "help key\nhelp framse\nplugin Menu\nplugin Window\nframes 1\ndatarefs flight*TUDE\ndatarefs "
           "*LONgitude\nwindows\nmenus\ncommands\n"
           "get sim/flight/altitud\nexpect no owns Mneu hold\nreload\nexpect no log \"new plugin\"\n"
           "expect call showMessage\nhelp expect no file\nhelp quit\nquit\n",
           {"key KEY [shift|control]+\n", "one of   'shift' or 'control'; optional; can be repeated\n",
            "no word 'framse'; did you mean 'frames'?\n", "input:6: frame 1: datarefs flight*TUDE: no dataref matches ",
            "Datarefs:\n  name                  type    access    unit     owner      meaning\n  sim/flight/longitude ",
            "Windows:\n  Window  40,500,392,410 visible front\n", "    Sample lights\n      Beacon         checked\n",
            "      Reset          disabled\n", "sim/flight/climb    simulator  F5, button 1  Climb while held\n",
            "input:11:5: frame 1: get sim/flight/altitud: nobody publishes 'sim/flight/altitud'; did you mean ",
            "input:12: frame 1: expect no owns Mneu hold: seen: no plugin with the name or signature 'Mneu' is loaded; "
            "did you mean 'Menu'?",
            "expect [no] file PATH [TEXT]\n", "\nquit  at the prompt: ends the session\n",
            "input: 2 frames, 8 steps, 3 expectations, 3 failed\n"},
           "--interactive --root " AVSK_TEST_DEMO);
}

TEST_F(SessionTest, FilesInTheRootAreExpectedReportedAndKept) {
    const std::string root = "--root " AVSK_TEST_DIES_ROOT;
    const std::string lines = "plugin Dies\nexpect no file Notes.txt\nframes 1\n"
                              "expect file Notes.txt \"avsk situation\"\nexpect no file Notes.txt nothing\nunload\n"
                              "expect file Notes.txt\n";
    const std::string kept = world.Path("kept");
    const std::string option = " --keep-root " + kept;
    Expect(0, lines,
           {"files written into the temporary root were removed: Notes.txt; --keep-root DIR keeps such files\n"}, root,
           "AVSK_TEST_DIES=file");
    Expect(0, lines, {"the root is kept in '" + kept + "'; files written there: Notes.txt\n"}, root + option,
           "AVSK_TEST_DIES=file");
    EXPECT_TRUE(std::filesystem::exists(kept + "/Notes.txt"));
    Expect(2, lines, {"--keep-root: '" + kept + "' exists"}, root + option);
    Expect(2, "frames 1\n", {"--keep-root: the session uses the real root"}, root + option);
    Expect(1, "plugin Dies\nexpect file Nots.txt\nexpect file gone/a\n",
           {"frame 0: expect file Nots.txt: seen: no such file; the folder has Resources\n",
            "frame 0: expect file gone/a: seen: no folder '<root>/gone'\n"},
           root);
}

} // namespace
