// Key sniffers and hot keys, and the way of a key through them.
#include "World.h"

#include "AVSK/AVSKDisplay.h"

namespace {

using Player = std::function<int(int key, int flags, int virtualKey)>;

int Play(char key, int flags, char virtualKey, void *refcon) {
    return (*static_cast<const Player *>(refcon))(key, flags, virtualKey);
}

using HotPlayer = std::function<void()>;

void PlayHot(void *refcon) { (*static_cast<const HotPlayer *>(refcon))(); }

class Keys : public ThreePlugins {
  protected:
    static int Sniff(const Puppet &owner, Player &player, int beforeWindows) {
        int answer = -1;
        owner.Run([&] { answer = AVSKRegisterKeySniffer(Play, beforeWindows, &player); });
        return answer;
    }
    static AVSKHotKeyID Hot(const Puppet &owner, char virtualKey, int flags, HotPlayer &player,
                            const char *description = "") {
        AVSKHotKeyID key = nullptr;
        owner.Run([&] { key = AVSKRegisterHotKey(virtualKey, flags, description, PlayHot, &player); });
        return key;
    }
};

// ---- The way of a key

TEST_F(Keys, AKeyGoesFromStationToStationUntilOneTakesIt) {
    int taker = 0;
    const auto station = [&](int number, const char *label) {
        return [&taker, number, label](int, int, int) { return Note(label), taker == number ? 0 : 1; };
    };
    Player before2 = station(1, "before, newest");
    Player before1 = station(2, "before, oldest");
    Player after2 = station(5, "after, newest");
    Player after1 = station(6, "after, oldest");
    Sniff(a, after1, 0);
    Sniff(a, before1, 7);
    Sniff(b, after2, 0);
    Sniff(b, before2, 1);
    HotPlayer hot = [] { Note("hot key"); };
    const AVSKHotKeyID hotKey = Hot(a, 'K', 0, hot);
    AVSKWindowID window = nullptr;
    b.Run([&] {
        window = AVSKCreateWindow(
            0, 1, 1, 0, 0, nullptr,
            [](AVSKWindowID, char, int, char, void *, int losing) { Note(losing ? "loses" : "window"); }, nullptr,
            nullptr);
    });
    const Lines all = {"before, newest", "before, oldest", "hot key", "window", "after, newest", "after, oldest"};
    const struct {
        int taker; // 3 the hot key, 4 the window, 7 nobody
        Lines heard;
        int answer;
    } cases[] = {{1, {all[0]}, 0},
                 {3, {all[0], all[1], all[2]}, 0},
                 {4, {all[0], all[1], all[3]}, 0},
                 {6, {all[0], all[1], all[4], all[5]}, 0},
                 {7, {all[0], all[1], all[4], all[5]}, 1}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.taker);
        taker = each.taker;
        AVSKSetHotKeyCombination(hotKey, taker == 3 ? 'K' : 'X', 0);
        AVSKTakeKeyboardFocus(taker == 4 ? window : nullptr);
        Take();
        EXPECT_EQ(AVSKKeyPressHook('k', 0, 'K'), each.answer);
        EXPECT_EQ(Take(), each.heard);
    }
    AVSKTakeKeyboardFocus(window);
    AVSKDisablePlugin(b.Id());
    taker = 7;
    Take();
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 'K'), 1);
    EXPECT_EQ(Take(), (Lines{"before, oldest", "after, oldest"})) << "B's stations are passed over";
}

// ---- Sniffers

TEST_F(Keys, ASniffersThreeValuesAreItsNameWhoeverRegisteredItAndAsLongAsTheKeyPressLasts) {
    for (const int before : {1, 0}) {
        Player player;
        player = [&](int, int, int) {
            Note("called");
            EXPECT_EQ(AVSKUnregisterKeySniffer(Play, before, &player), 1);
            EXPECT_EQ(AVSKRegisterKeySniffer(Play, before, &player), 0);
            return 1;
        };
        EXPECT_EQ(Sniff(a, player, before), 1);
        EXPECT_EQ(Sniff(b, player, before), 0);
        AVSKKeyPressHook('k', 0, 0);
        AVSKKeyPressHook('k', 0, 0);
        EXPECT_EQ(Take(), Lines{"called"});
        EXPECT_EQ(Sniff(b, player, before), 1) << "its depth stays raised, but it is gone";
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, before, &player), 1);
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, before, &player), 0);
    }
    Player player = [](int, int, int) { return Note("called"), 1; };
    Sniff(a, player, 0);
    AVSKRegisterKeySniffer(nullptr, 0, nullptr);
    for (const char virtualKey : {'\0', 'K'})
        EXPECT_EQ(AVSKKeyPressHook(0, 0, virtualKey), 1);
    EXPECT_EQ(Take(), Lines{"called"}) << "the first key is none";
    AVSKUnregisterKeySniffer(Play, 0, &player);
}

// ---- Hot keys

TEST_F(Keys, TheNewestHotKeyWhosePluginIsEnabledRunsAlone) {
    HotPlayer player = [] { Note(std::to_string(AVSKGetMyID())); };
    Hot(a, 'K', 2, player);
    Hot(b, 'K', 2, player);
    AVSKRegisterHotKey('K', 2, nullptr, nullptr, nullptr); // has nothing to run
    EXPECT_EQ(AVSKKeyPressHook('k', 2, 'K'), 0);
    AVSKDisablePlugin(b.Id());
    EXPECT_EQ(AVSKKeyPressHook('k', 2, 'K'), 0);
    EXPECT_EQ(AVSKKeyPressHook('k', 3, 'K'), 1);
    EXPECT_EQ(AVSKKeyPressHook('k', 2, 'k'), 1);
    EXPECT_EQ(Take(), (Lines{"2", "disable B", "1"}));
}

TEST_F(Keys, HotKeysAreListedNewestFirstAndReboundInPlace) {
    HotPlayer player = [] { Note("ran"); };
    const AVSKHotKeyID first = Hot(a, 'A', 1, player, std::string(600, 'd').c_str());
    const AVSKHotKeyID second = Hot(b, 'B', 2, player, "second");
    EXPECT_EQ(AVSKGetNthHotKey(0), second);
    EXPECT_EQ(AVSKGetNthHotKey(1), first);
    EXPECT_EQ(AVSKGetNthHotKey(2), nullptr);
    EXPECT_EQ(AVSKGetNthHotKey(-1), nullptr);
    b.Run([&] { AVSKSetHotKeyCombination(first, '\xC0', 9); });
    char virtualKey = 0;
    int flags = 0;
    char description[AVSK_HOT_KEY_TEXT_SIZE];
    int plugin = -1;
    AVSKGetHotKeyInfo(first, &virtualKey, &flags, description, &plugin);
    EXPECT_EQ(Line(int(virtualKey), " ", flags, " ", plugin, description), "-64 9 1" + std::string(511, 'd'));
    EXPECT_EQ(AVSKKeyPressHook('a', 1, 'A'), 1);
    EXPECT_EQ(AVSKKeyPressHook(0, 9, '\xC0'), 0);
    EXPECT_EQ(Take(), Lines{"ran"});
    AVSKGetHotKeyInfo(first, nullptr, nullptr, nullptr, nullptr);
}

TEST_F(Keys, AHotKeyMayUnregisterItselfAndAllOthers) {
    HotPlayer player;
    AVSKHotKeyID keys[3];
    player = [&] {
        Note("ran");
        for (const AVSKHotKeyID key : keys)
            AVSKUnregisterHotKey(key);
        AVSKUnregisterHotKey(keys[1]);
    };
    for (AVSKHotKeyID &key : keys)
        key = Hot(a, 'A', 0, player);
    // The count leaves its walk open; the removing call ends one.
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(AVSKCountHotKeys(), 3);
    EXPECT_EQ(AVSKKeyPressHook('a', 0, 'A'), 0);
    EXPECT_EQ(AVSKKeyPressHook('a', 0, 'A'), 1);
    EXPECT_EQ(Take(), Lines{"ran"});
    EXPECT_EQ(AVSKCountHotKeys(), 0);
}

} // namespace
