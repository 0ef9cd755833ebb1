// Key names, buttons, paths and folder listings, data files and thread slots.
#include "World.h"

#include <cerrno>
#include <set>
#include <thread>

namespace {

class Paths : public ThreePlugins {};

// ---- Keys and buttons

TEST_F(Paths, KeysHaveNamesAndOtherCodesAreUnknown) {
    const std::pair<int, const char *> runs[] = {
        {8, "Backspace Tab"},
        {12, "Clear Return"},
        {27, "Escape"},
        {32, "Space Page_Up Page_Down End Home Left Up Right Down Select Print Execute Snapshot Insert Delete Help"},
        {48, "0 1 2 3 4 5 6 7 8 9"},
        {65, "A B C D E F G H I J K L M N O P Q R S T U V W X Y Z"},
        {96, "Numpad-0 Numpad-1 Numpad-2 Numpad-3 Numpad-4 Numpad-5 Numpad-6 Numpad-7 Numpad-8 Numpad-9"},
        {106, "Numpad-* Numpad-+ Unknown Numpad-- Numpad-. Numpad-/"},
        {112, "F1 F2 F3 F4 F5 F6 F7 F8 F9 F10 F11 F12 F13 F14 F15 F16 F17 F18 F19 F20 F21 F22 F23 F24"},
        {176, "= - ] [ ' ; \\ , / . ` Enter Numpad-Enter Numpad-="}};
    std::vector<std::string> names(256, "Unknown");
    for (auto [code, words] : runs) {
        std::istringstream run(words);
        for (std::string name; run >> name; names.at(code++) = name)
            std::replace(name.begin(), name.end(), '_', ' ');
    }
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(AVSKGetVirtualKeyDescription(static_cast<char>(code)), names.at(code)) << code;
}

TEST_F(Paths, HeldButtonsArePressedAgainEveryFrameAndMayChangeMeanwhile) {
    std::function<void()> inside;
    host.on.commandButton = [&](const int *buttons, int release, int pass) {
        inside ? std::exchange(inside, nullptr)() : void();
        std::string line;
        for (; *buttons; ++buttons)
            line += Line(*buttons, " ");
        Note(Line(line, release ? "released " : "pressed ", pass));
    };
    const auto heard = [](const std::function<void()> &act) { // without the host calls, which show pointers
        Take();
        act();
        Lines lines = Take();
        std::erase_if(lines, [](auto &line) { return line.find('(') != std::string::npos; });
        return lines;
    };
    EXPECT_EQ(heard([] { AVSKCommandButtonPress(9); }), (Lines{"9 pressed 0", "9 pressed 1"}));
    AVSKCommandButtonPress(7);
    AVSKCommandButtonPress(9);
    AVSKCommandButtonRelease(8); // is not held
    EXPECT_EQ(heard([] { World::Pass(1), AVSKEventHook(AVSKHostEventFrameEnd, 1, 0, 0); }), Lines{"9 7 9 pressed 1"})
        << "once a frame";
    EXPECT_EQ(heard([] { AVSKCommandButtonRelease(9); }), (Lines{"9 released 0", "9 released 1"}));
    inside = [] {
        AVSKCommandButtonRelease(7);
        for (int i = 0; i < 100; ++i)
            AVSKCommandButtonPress(50);
    };
    EXPECT_EQ(heard([] { World::Pass(1); }).back(), "7 9 pressed 1") << "the first of two presses had ended";
}

// ---- Paths

TEST_F(Paths, TheHostsPathsAreCutTo512BytesUnlessThePluginWantsThemNative) {
    const std::string path = "/" + std::string(598, 'x') + "\xC3";
    host.on.getSystemPath = host.on.getPrefsPath = [&](char *out) { std::strcpy(out, path.c_str()); };
    for (const int native : {0, 1})
        a.Run([&] {
            AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", native);
            char out[700] = "";
            for (const auto get : {AVSKGetSystemPath, AVSKGetPrefsPath}) {
                get(out);
                EXPECT_EQ(out, native ? path : path.substr(0, 511));
                get(nullptr);
            }
            EXPECT_EQ(AVSKIsFeatureEnabled("AVSK_USE_NATIVE_PATHS"), native);
            EXPECT_EQ(AVSKFindPluginByPath(b.path.c_str()), b.Id());
            AVSKGetPluginInfo(b.Id(), nullptr, out, nullptr, nullptr);
            EXPECT_EQ(out, b.path);
        });
}

TEST_F(Paths, APathIsSplitAtItsLastSeparator) {
    for (const int native : {0, 1})
        for (const auto &[whole, folder, file] :
             Table<const char *, const char *, const char *>{{"a/b.txt", "a", "b.txt"},
                                                             {"a/sub/", "a", "sub"},
                                                             {"b.txt", "b.txt", "b.txt"},
                                                             {"/b", "", "b"},
                                                             {"a//", "a", ""},
                                                             {"/", "", ""},
                                                             {"", "", ""}}) {
            AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", native);
            char path[16] = "";
            std::strcpy(path, whole);
            EXPECT_STREQ(AVSKExtractFileAndPath(path), file);
            EXPECT_STREQ(path, folder);
        }
    EXPECT_EQ(AVSKExtractFileAndPath(nullptr), nullptr);
}

// ---- Folder listings

TEST_F(Paths, AListingGivesWholeNamesWhileThereIsRoomForThemAndTheirEnd) {
    const std::string folder = world.Path("listed");
    world.MakeFolder("listed/ccc");
    for (const char *name : {"/a", "/bb"})
        std::ofstream(folder + name);
    char all[32], *index[8];
    EXPECT_EQ(AVSKGetDirectoryContents(folder.c_str(), 0, all, sizeof all, index, 8, nullptr, nullptr), 1);
    const Lines names(index, index + 3); // in listing order; 9 bytes with their terminators
    EXPECT_EQ(std::set<std::string>(index, index + 3), (std::set<std::string>{"a", "bb", "ccc"}));
    const int first = static_cast<int>(names[0].size()) + 1;
    const int two = first + static_cast<int>(names[1].size()) + 1;
    for (const auto &[from, size, indexCount, expectedCount, result] :
         Table<int, int, int, int, int>{{0, 10, 4, 3, 1},
                                        {0, 9, 4, 3, 0},
                                        {0, 10, 3, 3, 0},
                                        {0, two - 1, 4, 1, 0},
                                        {0, 10, 1, 1, 0},
                                        {0, 0, 4, 0, 0},
                                        {0, -5, 4, 0, 0},
                                        {1, 10 - first, 3, 2, 1},
                                        {3, 1, 1, 0, 1},
                                        {99, 10, 4, 0, 1},
                                        {-1, 10, 4, 3, 1}}) {
        SCOPED_TRACE(Line(from, " ", size, " ", indexCount));
        // Exactly the size passed, so that a sanitizer detects an overflow.
        std::vector<char> buffer(static_cast<std::size_t>(std::max(size, 0)), '#');
        char none = '#';
        std::vector<char *> found(static_cast<std::size_t>(indexCount), &none);
        int total = -1, returned = -1;
        EXPECT_EQ(AVSKGetDirectoryContents(folder.c_str(), from, buffer.empty() ? &none : buffer.data(), size,
                                           found.data(), indexCount, &total, &returned),
                  result);
        ASSERT_EQ(Line(total, " ", returned, none), Line("3 ", expectedCount, "#"));
        std::string expected;
        for (int i = 0; i < returned; ++i) {
            EXPECT_EQ(found.at(i), buffer.data() + expected.size());
            expected += names.at(std::max(from, 0) + i) + '\0';
        }
        if (result) {
            expected += '\0';
            EXPECT_EQ(found.at(returned), nullptr);
        }
        expected.resize(buffer.size(), '#');
        EXPECT_EQ(std::string(buffer.begin(), buffer.end()), expected);
    }
    const auto list = [](const char *path, char *out, int size, int *returned) {
        return AVSKGetDirectoryContents(path, 0, out, size, nullptr, 0, nullptr, returned);
    };
    a.Run([&] {
        AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", 1);
        int returned = -1;
        EXPECT_EQ(list(folder.c_str(), nullptr, 10, &returned), 0);
        EXPECT_EQ(returned, 0);
        EXPECT_EQ(list(folder.c_str(), all, 10, nullptr) + list(nullptr, all, 1, nullptr), 2);
    });
}

// ---- Data files and thread slots

TEST_F(Paths, DataFilesAreCheckedBeforeTheHostIsAsked) {
    JournalErrors();
    host.on.loadDataFile = [](auto...) { return 5; };
    host.on.saveDataFile = [](auto...) { return 6; };
    for (const int type : {1, 2})
        EXPECT_EQ(DOES(AVSKLoadDataFile(type, "p")), Line("5: loadDataFile(", type, ", \"p\")"));
    EXPECT_EQ(DOES(AVSKLoadDataFile(3, "p")), "0: error: Illegal file type passed to AVSKLoadDataFile.");
    EXPECT_EQ(DOES(AVSKLoadDataFile(1, nullptr)), "0");
    EXPECT_EQ(DOES(AVSKSaveDataFile(2, "p")), "6: saveDataFile(2, \"p\")");
    EXPECT_EQ(DOES(AVSKSaveDataFile(0, "p")), "0: error: Illegal file type passed to AVSKSaveDataFile.");
    EXPECT_EQ(DOES(AVSKSaveDataFile(7, nullptr)), "0: error: Null file path passed to AVSKSaveDataFile.");
}

TEST_F(Paths, VersionsAreTheHostsAndTheLibrarysAndAnyMayBeLeftOut) {
    host.on.getVersions = [](int *version, int *value) { *version = 1160, *value = 7; };
    int versions[3] = {};
    AVSKGetVersions(&versions[0], &versions[1], &versions[2]);
    EXPECT_EQ((std::vector<int>{versions, versions + 3}), (std::vector<int>{1160, 210, 7}));
    AVSKGetVersions(nullptr, nullptr, nullptr);
}

TEST(ThreadLocal, EachThreadHasItsOwnValue) {
    const unsigned int key = AVSKAllocTLS();
    EXPECT_NE(key, AVSKAllocTLS());
    EXPECT_EQ(AVSKGetTLS(key), nullptr);
    int mine = 0;
    EXPECT_EQ(AVSKSetTLS(key, &mine), 0);
    std::thread([key] { EXPECT_EQ(AVSKGetTLS(key), nullptr); }).join();
    EXPECT_EQ(AVSKGetTLS(key), &mine);
    EXPECT_EQ(AVSKSetTLS(0xFFFFFFFF, &mine), EINVAL);
}

} // namespace
