// Key names, simulated keys and buttons, paths and folder listings.
#include "Forwarding.h"
#include "World.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKUtilities.h"

#include <cstring>
#include <fstream>
#include <set>

namespace {

class Paths : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
    Puppet &a = world.Install("A");

    void SetUp() override { world.StartQuietly(); }
};

// ---- Keys and buttons

TEST_F(Paths, KeysHaveNamesAndOtherCodesAreUnknown) {
    const struct {
        int first, last;
        std::vector<std::string> names; // one each, or a beginning to count up from
    } named[] = {
        {8, 9, {"Backspace", "Tab"}},
        {12, 13, {"Clear", "Return"}},
        {27, 27, {"Escape"}},
        {32,
         47,
         {"Space", "Page Up", "Page Down", "End", "Home", "Left", "Up", "Right", "Down", "Select", "Print", "Execute",
          "Snapshot", "Insert", "Delete", "Help"}},
        {48, 57, {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}},
        {65, 90, {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M",
                  "N", "O", "P", "Q", "R", "S", "T", "U", "V", "W", "X", "Y", "Z"}},
        {96,
         107,
         {"Numpad-0", "Numpad-1", "Numpad-2", "Numpad-3", "Numpad-4", "Numpad-5", "Numpad-6", "Numpad-7", "Numpad-8",
          "Numpad-9", "Numpad-*", "Numpad-+"}},
        {109, 111, {"Numpad--", "Numpad-.", "Numpad-/"}},
        {112, 135, {"F1",  "F2",  "F3",  "F4",  "F5",  "F6",  "F7",  "F8",  "F9",  "F10", "F11", "F12",
                    "F13", "F14", "F15", "F16", "F17", "F18", "F19", "F20", "F21", "F22", "F23", "F24"}},
        {176, 189, {"=", "-", "]", "[", "'", ";", "\\", ",", "/", ".", "`", "Enter", "Numpad-Enter", "Numpad-="}},
    };
    std::vector<std::string> expected(256, "Unknown");
    for (const auto &each : named) {
        ASSERT_EQ(each.names.size(), static_cast<std::size_t>(each.last - each.first + 1));
        std::copy(each.names.begin(), each.names.end(), expected.begin() + each.first);
    }
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(AVSKGetVirtualKeyDescription(static_cast<char>(code)), expected[static_cast<unsigned>(code)]) << code;
}

TEST_F(Paths, KeysAndStrokesAreTheHosts) {
    EXPECT_FORWARDED(AVSKSimulateKeyPress, simulateKeyPress);
    EXPECT_FORWARDED(AVSKCommandKeyStroke, commandKeyStroke);
}

TEST_F(Paths, HeldButtonsArePressedAgainEveryFrame) {
    Lines heard;
    host.on.commandButton = [&](const int *buttons, int release, int pass) {
        std::string line;
        for (; *buttons; ++buttons)
            line += std::to_string(*buttons) + " ";
        heard.push_back(line + (release ? "released" : "pressed") + ", pass " + std::to_string(pass));
    };
    const auto frame = [&] {
        heard.clear();
        World::Pass(1);
        return heard;
    };
    EXPECT_EQ(frame(), Lines());
    for (const int button : {9, 7, 9})
        AVSKCommandButtonPress(button);
    EXPECT_EQ(heard, (Lines{"9 pressed, pass 0", "9 pressed, pass 1", "7 pressed, pass 0", "7 pressed, pass 1",
                            "9 pressed, pass 0", "9 pressed, pass 1"}));
    EXPECT_EQ(frame(), Lines{"9 7 9 pressed, pass 1"});
    heard.clear();
    AVSKCommandButtonRelease(9);
    AVSKCommandButtonRelease(4);
    EXPECT_EQ(heard, (Lines{"9 released, pass 0", "9 released, pass 1", "4 released, pass 0", "4 released, pass 1"}));
    EXPECT_EQ(frame(), Lines{"7 9 pressed, pass 1"}) << "the first of two presses ended";
    AVSKEventHook(AVSKHostEventFrameEnd, 1, 0, 0);
    EXPECT_EQ(heard.size(), 1U) << "once a frame";
}

TEST_F(Paths, ButtonsMayChangeWhileTheyArePressedAgain) {
    for (const int button : {1, 2, 3})
        AVSKCommandButtonPress(button);
    std::vector<int> seen;
    bool inside = false;
    host.on.commandButton = [&](const int *buttons, int, int) {
        if (std::exchange(inside, true))
            return;
        for (int i = 0; i < 100; ++i)
            AVSKCommandButtonPress(50);
        for (const int button : {1, 2, 3})
            AVSKCommandButtonRelease(button);
        for (; *buttons; ++buttons)
            seen.push_back(*buttons);
    };
    World::Pass(1);
    EXPECT_EQ(seen, (std::vector<int>{1, 2, 3}));
}

// ---- Paths

TEST_F(Paths, TheHostsPathsAreCutTo512BytesUnlessThePluginWantsThemNative) {
    const std::string path = "/" + std::string(598, 'x') + "\xC3";
    host.on.getSystemPath = host.on.getPrefsPath = [&](char *out) { std::strcpy(out, path.c_str()); };
    for (const int native : {0, 1})
        for (const auto get : {AVSKGetSystemPath, AVSKGetPrefsPath})
            a.Run([&] {
                AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", native);
                char out[700] = "";
                get(out);
                EXPECT_EQ(out, native ? path : path.substr(0, 511));
                get(nullptr);
                EXPECT_STREQ(AVSKGetDirectorySeparator(), "/");
            });
}

TEST_F(Paths, APathIsSplitAtItsLastSeparator) {
    const struct {
        const char *path, *folder, *file;
    } cases[] = {
        {"a/b.txt", "a", "b.txt"},
        {"a/sub/", "a", "sub"},
        {"/a/b/c", "/a/b", "c"},
        {"b.txt", "b.txt", "b.txt"},
        {"b/", "b", "b"},
        {"/b", "", "b"},
        {"/b/", "", "b"},
        {"a//", "a", ""},
        {"//", "", ""},
        {"/", "", ""},
        {"", "", ""},
        {"x", "x", "x"},
    };
    for (const int native : {0, 1})
        for (const auto &each : cases)
            a.Run([&] {
                SCOPED_TRACE(each.path);
                AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", native);
                char path[16] = "";
                std::strcpy(path, each.path);
                const char *const file = AVSKExtractFileAndPath(path);
                EXPECT_STREQ(path, each.folder);
                EXPECT_STREQ(file, each.file);
                EXPECT_TRUE(file >= path && file < path + sizeof path);
            });
    EXPECT_EQ(AVSKExtractFileAndPath(nullptr), nullptr);
}

// ---- Folder listings

class Listing : public Paths {
  protected:
    std::string folder = world.Path("listed");
    std::vector<std::string> names; // in the order of the listing: a, bb, ccc, 9 bytes with their zeros

    void SetUp() override {
        Paths::SetUp();
        world.MakeFolder("listed/ccc");
        for (const char *name : {"a", "bb"})
            std::ofstream(folder + "/" + name);
        char buffer[32];
        char *found[8];
        int returned = 0;
        EXPECT_EQ(AVSKGetDirectoryContents(folder.c_str(), 0, buffer, sizeof buffer, found, 8, nullptr, &returned), 1);
        names.assign(found, found + returned);
        EXPECT_EQ(std::set<std::string>(names.begin(), names.end()), (std::set<std::string>{"a", "bb", "ccc"}));
    }
};

TEST_F(Listing, GivesWholeNamesWhileThereIsRoomForThemAndTheirEnd) {
    const int first = static_cast<int>(names[0].size()) + 1;
    const int two = first + static_cast<int>(names[1].size()) + 1;
    const struct {
        int from, size, indexCount, returned, result;
    } cases[] = {
        {0, 10, 4, 3, 1},         {0, 9, 4, 3, 0},         {0, 10, 3, 3, 0},
        {0, 10, -1, 0, 0},        {0, two, 4, 2, 0},       {0, two - 1, 4, 1, 0},
        {0, 10, 1, 1, 0},         {0, 0, 4, 0, 0},         {0, -5, 4, 0, 0},
        {1, 10 - first, 3, 2, 1}, {1, 9 - first, 3, 2, 0}, {2, 10 - two, 2, 1, 1},
        {3, 1, 1, 0, 1},          {3, 0, 1, 0, 0},         {3, 1, 0, 0, 0},
        {99, 10, 4, 0, 1},        {-1, 10, 4, 3, 1},       {-2147483647 - 1, 10, 4, 3, 1},
    };
    for (const auto &each : cases)
        for (const bool indexed : {true, false})
            for (const int native : {0, 1}) {
                if (!indexed && each.indexCount < 4 && each.result == 0)
                    continue; // that is what the missing indices are about
                SCOPED_TRACE(testing::Message() << each.from << " " << each.size << " " << each.indexCount);
                // As large as told, so that a byte too much is seen.
                std::vector<char> buffer(static_cast<std::size_t>(std::max(each.size, 0)), '#');
                std::vector<char *> found(static_cast<std::size_t>(std::max(each.indexCount, 0)), nullptr);
                char *noIndex = nullptr;
                char none = '#';
                int total = -1;
                int returned = -1;
                int result = -1;
                a.Run([&] {
                    AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", native);
                    result = AVSKGetDirectoryContents(folder.c_str(), each.from, buffer.empty() ? &none : buffer.data(),
                                                      each.size,
                                                      !indexed        ? nullptr
                                                      : found.empty() ? &noIndex
                                                                      : found.data(),
                                                      each.indexCount, &total, &returned);
                });
                EXPECT_EQ(result, each.result);
                EXPECT_EQ(total, 3);
                EXPECT_EQ(returned, each.returned);
                EXPECT_EQ(none, '#');
                EXPECT_EQ(noIndex, nullptr);
                std::string expected;
                const auto from = static_cast<std::size_t>(std::max(each.from, 0));
                for (std::size_t i = 0; i < static_cast<std::size_t>(returned); ++i) {
                    if (indexed) {
                        EXPECT_EQ(found[i], buffer.data() + expected.size());
                    }
                    expected += names[from + i] + '\0';
                }
                if (result)
                    expected += '\0';
                if (result && indexed) {
                    EXPECT_EQ(found[static_cast<std::size_t>(returned)], nullptr);
                }
                expected.resize(buffer.size(), '#');
                EXPECT_EQ(std::string(buffer.begin(), buffer.end()), expected);
            }
}

TEST_F(Listing, WithoutABufferOnlyTheTotalIsOfUse) {
    char *found[4] = {};
    int total = 0;
    int returned = -1;
    EXPECT_EQ(AVSKGetDirectoryContents(folder.c_str(), 0, nullptr, 100, found, 4, &total, &returned), 0);
    EXPECT_EQ(total, 3);
    EXPECT_EQ(returned, 0);
    EXPECT_EQ(AVSKGetDirectoryContents(folder.c_str(), 3, nullptr, 100, nullptr, 0, nullptr, nullptr), 0);
    for (const char *empty : {static_cast<const char *>(nullptr), "/no/such/folder"}) {
        char buffer[2] = "#";
        EXPECT_EQ(AVSKGetDirectoryContents(empty, 0, buffer, 2, nullptr, 0, &total, &returned), 1);
        EXPECT_EQ(total, 0);
        EXPECT_EQ(returned, 0);
        EXPECT_EQ(buffer[0], '\0');
    }
}

} // namespace
