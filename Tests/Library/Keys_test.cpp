// Key sniffers and hot keys, and the order in which a key reaches them.
#include "World.h"

namespace {

using KeyPlayer = std::function<int()>;
std::string gKey; // the key that the last sniffer received

int Play(char key, int flags, char virtualKey, void *refcon) {
    gKey = Line(int(key), " ", flags, " ", int(virtualKey));
    return (*static_cast<const KeyPlayer *>(refcon))();
}

void PlayHot(void *refcon) { (*static_cast<const NoticePlayer *>(refcon))(); }

class Keys : public ThreePlugins {
  protected:
    static int Sniff(const Puppet &owner, KeyPlayer &player, int beforeWindows) {
        return owner.Run([&] { return AVSKRegisterKeySniffer(Play, beforeWindows, &player); });
    }
    static AVSKHotKeyID Hot(const Puppet &owner, char virtualKey, int flags, NoticePlayer &player,
                            const std::string &description = "") {
        return owner.Run([&] { return AVSKRegisterHotKey(virtualKey, flags, description.c_str(), PlayHot, &player); });
    }
    static std::string Press(char virtualKey, int flags = 0) { return DOES(AVSKKeyPressHook('k', flags, virtualKey)); }
};

TEST_F(Keys, AKeyGoesFromStationToStationUntilOneTakesIt) {
    int taker = 0;
    const auto station = [&](int number) {
        return [&taker, number] { return Note(std::to_string(number)), taker == number ? 0 : 1; };
    };
    KeyPlayer stations[] = {station(1), station(2), station(5), station(6)};
    Sniff(a, stations[3], 0);
    Sniff(a, stations[1], 7);
    Sniff(b, stations[2], 0);
    Sniff(b, stations[0], 1);
    NoticePlayer hot = [] { Note("hot key"); };
    const AVSKHotKeyID hotKey = Hot(a, 'K', 0, hot);
    const auto handle = [](AVSKWindowID, char, int, char, void *, int losing) { Note(losing ? "loses" : "window"); };
    const AVSKWindowID window =
        b.Run([&] { return AVSKCreateWindow(0, 1, 1, 0, 0, nullptr, handle, nullptr, nullptr); });
    for (const auto &[number, heard] : Table<int, std::string>{{1, "0: 1"},
                                                               {3, "0: 1; 2; hot key"},
                                                               {4, "0: 1; 2; window"},
                                                               {6, "0: 1; 2; 5; 6"},
                                                               {7, "1: 1; 2; 5; 6"}}) { // none takes it
        taker = number;
        AVSKSetHotKeyCombination(hotKey, taker == 3 ? 'K' : 'X', 0);
        AVSKTakeKeyboardFocus(taker == 4 ? window : nullptr);
        EXPECT_EQ(Press('K'), heard);
    }
    AVSKTakeKeyboardFocus(window);
    AVSKDisablePlugin(b.Id());
    EXPECT_EQ(Press('K'), "1: 2; 6") << "B's stations are passed over";
}

TEST_F(Keys, ASniffersThreeValuesAreItsNameWhoeverRegisteredItAndAsLongAsTheKeyPressLasts) {
    for (const int before : {1, 0}) {
        KeyPlayer player;
        player = [&] {
            EXPECT_EQ(AVSKUnregisterKeySniffer(Play, before, &player), 1);
            EXPECT_EQ(AVSKRegisterKeySniffer(Play, before, &player), 0);
            return Note("called"), 1;
        };
        EXPECT_EQ(Sniff(a, player, before), 1);
        EXPECT_EQ(Sniff(b, player, before), 0);
        EXPECT_EQ(Press(0), "1: called");
        EXPECT_EQ(Press(0), "1");
        EXPECT_EQ(Sniff(b, player, before), 1) << "its depth stays raised, but it is gone";
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, before, &player), 1);
        EXPECT_EQ(AVSKUnregisterKeySniffer(Play, before, &player), 0);
    }
    KeyPlayer player = [] { return Note("called"), 1; };
    Sniff(a, player, 0);
    AVSKRegisterKeySniffer(nullptr, 0, nullptr);
    EXPECT_EQ(DOES(AVSKKeyPressHook(0, 0, 0)), "1") << "no key";
    EXPECT_EQ(DOES(AVSKKeyPressHook(0, 0, 'K')) + DOES(AVSKKeyPressHook(0, 1, 0)), "1: called1: called");
    EXPECT_EQ(DOES(AVSKKeyPressHook('\xE9', -1, '\x80')), "1: called");
    EXPECT_EQ(gKey, "-23 -1 -128");
    AVSKUnregisterKeySniffer(Play, 0, &player);
}

TEST_F(Keys, TheNewestHotKeyWhosePluginIsEnabledRunsAlone) {
    NoticePlayer player = [] { Note(std::to_string(AVSKGetMyID())); };
    Hot(a, 'K', 2, player);
    Hot(b, 'K', 2, player);
    AVSKRegisterHotKey('K', 2, nullptr, nullptr, nullptr); // no callback
    EXPECT_EQ(Press('K', 2), "0: 2");
    AVSKDisablePlugin(b.Id());
    EXPECT_EQ(Press('K', 2), "0: 1");
    EXPECT_EQ(Press('K', 3) + Press('k', 2), "11");
}

TEST_F(Keys, HotKeysAreListedNewestFirstAndReboundInPlace) {
    NoticePlayer player = [] { Note("ran"); };
    const AVSKHotKeyID first = Hot(a, 'A', 1, player, std::string(600, 'd'));
    const AVSKHotKeyID second = Hot(b, 'B', 2, player, "second");
    for (const auto &[index, key] : Table<int, AVSKHotKeyID>{{0, second}, {1, first}, {2, nullptr}, {-1, nullptr}})
        EXPECT_EQ(AVSKGetNthHotKey(index), key);
    b.Run([&] { AVSKSetHotKeyCombination(first, '\xC0', 9); });
    char virtualKey = 0, description[AVSK_HOT_KEY_TEXT_SIZE];
    int flags = 0, plugin = -1;
    AVSKGetHotKeyInfo(first, &virtualKey, &flags, description, &plugin);
    AVSKGetHotKeyInfo(first, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Line(int(virtualKey), " ", flags, " ", plugin, description), "-64 9 1" + std::string(511, 'd'));
    EXPECT_EQ(Press('A', 1), "1");
    EXPECT_EQ(Press('\xC0', 9), "0: ran");
}

TEST_F(Keys, AHotKeyMayUnregisterItselfAndAllOthers) {
    AVSKHotKeyID keys[3];
    NoticePlayer player = [&] {
        Note("ran");
        for (const AVSKHotKeyID key : {keys[0], keys[1], keys[2], keys[1]})
            AVSKUnregisterHotKey(key);
    };
    for (AVSKHotKeyID &key : keys)
        key = Hot(a, 'A', 0, player);
    // AVSKCountHotKeys leaves its walk of the list open; the removing call closes one walk.
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(AVSKCountHotKeys(), 3);
    EXPECT_EQ(Press('A'), "0: ran");
    EXPECT_EQ(Press('A'), "1");
    EXPECT_EQ(AVSKCountHotKeys(), 0);
}

} // namespace
