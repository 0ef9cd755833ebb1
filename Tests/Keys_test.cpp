// Key sniffers and hot keys, and the way of a key through them.
#include "World.h"

#include "AVSK/AVSKDisplay.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using Player = std::function<int(int key, int flags, int virtualKey)>;

int Play(char key, int flags, char virtualKey, void *refcon) {
    return (*static_cast<const Player *>(refcon))(key, flags, virtualKey);
}

using HotPlayer = std::function<void()>;

void PlayHot(void *refcon) { (*static_cast<const HotPlayer *>(refcon))(); }

class Keys : public testing::Test {
  protected:
    World world;
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");

    void SetUp() override { world.StartQuietly(); }

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
    static Player Answers(const char *label, int answer) {
        return [=](int, int, int) { return Note(label + std::to_string(AVSKGetMyID())), answer; };
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
                 {2, {all[0], all[1]}, 0},
                 {3, {all[0], all[1], all[2]}, 0},
                 {4, {all[0], all[1], all[3]}, 0},
                 {5, {all[0], all[1], all[4]}, 0},
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

TEST_F(Keys, OnlyAKeyOfThreeZerosReachesNobody) {
    Player player = [](int key, int flags, int virtualKey) {
        Note(std::to_string(key) + " " + std::to_string(flags) + " " + std::to_string(virtualKey));
        return 1;
    };
    Sniff(a, player, 1);
    EXPECT_EQ(AVSKKeyPressHook(0, 0, 0), 1);
    EXPECT_EQ(AVSKKeyPressHook(0, 0, 1), 1);
    EXPECT_EQ(AVSKKeyPressHook(0, 1, 0), 1);
    EXPECT_EQ(AVSKKeyPressHook('\xE9', -8, '\x80'), 1);
    EXPECT_EQ(Take(), (Lines{"0 0 1", "0 1 0", "-23 -8 -128"}));
}

// ---- Sniffers

TEST_F(Keys, ASniffersThreeValuesAreItsNameWhoeverRegisteredIt) {
    Player player = Answers("as ", 1);
    Player other = Answers("other as ", 1);
    EXPECT_EQ(Sniff(a, player, 1), 1);
    EXPECT_EQ(Sniff(a, player, 1), 0);
    EXPECT_EQ(Sniff(b, player, 1), 0);
    EXPECT_EQ(Sniff(b, player, 2), 1);
    EXPECT_EQ(Sniff(b, other, 1), 1);
    b.Run([&] {
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, 0, &player), 0);
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, 1, &player), 1);
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, 1, &player), 0);
    });
    AVSKKeyPressHook('k', 0, 0);
    EXPECT_EQ(Take(), (Lines{"other as 2", "as 2"}));
}

TEST_F(Keys, ASnifferUnregisteredAfterAKeyPressIsGone) {
    Player player = Answers("", 1);
    Sniff(a, player, 1);
    AVSKKeyPressHook('k', 0, 0); // from now on the list's depth stays raised
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, 1, &player), 1);
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, 1, &player), 0);
        EXPECT_EQ(AVSKRegisterKeySniffer(Play, 1, &player), 1);
        AVSKKeyPressHook('k', 0, 0);
    }
    EXPECT_EQ(Take(), (Lines{"1", "0", "0", "0"}));
}

TEST_F(Keys, UnregisteredInAKeyPressItCannotBeRegisteredAgainInIt) {
    for (const int before : {1, 0}) {
        Player player;
        player = [&](int, int, int) {
            Note("called");
            EXPECT_EQ(AVSKUnregisterKeySniffer(Play, before, &player), 1);
            EXPECT_EQ(AVSKRegisterKeySniffer(Play, before, &player), 0);
            return 1;
        };
        EXPECT_EQ(Sniff(a, player, before), 1);
        AVSKKeyPressHook('k', 0, 0);
        AVSKKeyPressHook('k', 0, 0);
        EXPECT_EQ(Take(), Lines{"called"});
        EXPECT_EQ(Sniff(a, player, before), 1);
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, before, &player), 1);
    }
}

// ---- Hot keys

TEST_F(Keys, TheNewestHotKeyWhosePluginIsEnabledRunsAlone) {
    HotPlayer first = [] { Note("first as " + std::to_string(AVSKGetMyID())); };
    HotPlayer second = [] { Note("second as " + std::to_string(AVSKGetMyID())); };
    Hot(a, 'K', 2, first);
    Hot(b, 'K', 2, second);
    EXPECT_EQ(AVSKKeyPressHook('k', 2, 'K'), 0);
    EXPECT_EQ(Take(), Lines{"second as 2"});
    AVSKDisablePlugin(b.Id());
    Take();
    EXPECT_EQ(AVSKKeyPressHook('k', 2, 'K'), 0);
    EXPECT_EQ(Take(), Lines{"first as 1"});
    const struct {
        int flags;
        char virtualKey;
    } others[] = {{3, 'K'}, {0, 'K'}, {2, 'k'}};
    for (const auto &other : others)
        EXPECT_EQ(AVSKKeyPressHook('k', other.flags, other.virtualKey), 1);
    EXPECT_EQ(Take(), Lines());
}

TEST_F(Keys, HotKeysAreListedNewestFirstAndReboundInPlace) {
    HotPlayer player = [] { Note("ran"); };
    const AVSKHotKeyID first = Hot(a, 'A', 1, player, "first");
    const AVSKHotKeyID second = Hot(b, 'B', 2, player, "second");
    EXPECT_EQ(AVSKCountHotKeys(), 2);
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
    EXPECT_EQ(virtualKey, '\xC0');
    EXPECT_EQ(flags, 9);
    EXPECT_STREQ(description, "first");
    EXPECT_EQ(plugin, 1);
    EXPECT_EQ(AVSKGetNthHotKey(1), first);
    EXPECT_EQ(AVSKKeyPressHook('a', 1, 'A'), 1);
    EXPECT_EQ(AVSKKeyPressHook(0, 9, '\xC0'), 0);
    EXPECT_EQ(Take(), Lines{"ran"});
    AVSKGetHotKeyInfo(first, nullptr, nullptr, nullptr, nullptr);
}

TEST_F(Keys, ADescriptionIsCutTo511Characters) {
    HotPlayer player = [] {};
    for (const std::size_t length : {0U, 511U, 512U, 600U}) {
        const AVSKHotKeyID key = Hot(a, 'A', 0, player, std::string(length, 'd').c_str());
        char description[AVSK_HOT_KEY_TEXT_SIZE];
        AVSKGetHotKeyInfo(key, nullptr, nullptr, description, nullptr);
        EXPECT_EQ(description, std::string(std::min<std::size_t>(length, 511), 'd'));
    }
}

TEST_F(Keys, AnUnknownHotKeyIsIgnored) {
    HotPlayer player = [] {};
    const AVSKHotKeyID key = Hot(a, 'A', 0, player);
    b.Run([&] { AVSKUnregisterHotKey(key); });
    EXPECT_EQ(AVSKCountHotKeys(), 0);
    int flags = 77;
    for (const AVSKHotKeyID unknown : {key, AVSKHotKeyID(nullptr), reinterpret_cast<AVSKHotKeyID>(&flags)}) {
        AVSKUnregisterHotKey(unknown);
        AVSKSetHotKeyCombination(unknown, 'A', 0);
        AVSKGetHotKeyInfo(unknown, nullptr, &flags, nullptr, nullptr);
    }
    EXPECT_EQ(flags, 77);
}

// The queries leave their walk open; the removing call ends one.
TEST_F(Keys, RemovingAHotKeyDropsTheCountAtOnce) {
    HotPlayer player = [] {};
    const AVSKHotKeyID first = Hot(a, 'A', 0, player);
    const AVSKHotKeyID second = Hot(a, 'B', 0, player);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(AVSKCountHotKeys(), 2);
    AVSKKeyPressHook('a', 0, 'A');
    AVSKUnregisterHotKey(second);
    EXPECT_EQ(AVSKCountHotKeys(), 1);
    AVSKUnregisterHotKey(first);
    EXPECT_EQ(AVSKCountHotKeys(), 0);
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
    EXPECT_EQ(AVSKKeyPressHook('a', 0, 'A'), 0);
    EXPECT_EQ(AVSKKeyPressHook('a', 0, 'A'), 1);
    EXPECT_EQ(Take(), Lines{"ran"});
    EXPECT_EQ(AVSKCountHotKeys(), 0);
}

TEST_F(Keys, EverythingGoesWithItsPlugin) {
    const Puppet &air = world.InstallAircraft("air");
    World::LoadAircraft();
    Player sniffer = Answers("sniffer", 1);
    Player unloads = [](int, int, int) { return World::UnloadAircraft(), 1; };
    HotPlayer hot = [] { Note("hot"); };
    Sniff(air, sniffer, 1);
    Sniff(air, sniffer, 0);
    Hot(air, 'K', 0, hot);
    Sniff(a, unloads, 1);
    Take();
    EXPECT_EQ(AVSKKeyPressHook('k', 0, 'K'), 1);
    EXPECT_EQ(Take().back(), "stop air");
    EXPECT_EQ(AVSKCountHotKeys(), 0);
    EXPECT_FALSE(air.IsMapped());
}

} // namespace
