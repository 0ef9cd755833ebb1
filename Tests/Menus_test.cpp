// Menus: per-plugin numbering, the host's calls, picks, queries and cleanup.
#include "World.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace {

class Menus : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    AVSKMenuID shared = nullptr;

    void SetUp() override {
        world.StartQuietly();
        shared = AVSKFindPluginsMenu();
    }

    static int Append(const Puppet &owner, AVSKMenuID menu, const char *name, void *itemRef = nullptr) {
        int index = -2;
        owner.Run([&] { index = AVSKAppendMenuItem(menu, name, itemRef, 0); });
        return index;
    }
    static AVSKMenuID Create(const Puppet &owner, const char *name, MenuPlayer *player = nullptr) {
        AVSKMenuID menu = nullptr;
        owner.Run([&] { menu = AVSKCreateMenu(name, nullptr, 0, player ? owner.code.menuPicked : nullptr, player); });
        return menu;
    }
    // -2 where the host is told that the item is no plugin's.
    int CheckOf(int menu, int index) {
        int check = -7;
        return AVSKCheckMenuHook(host.Menu(menu), index, &check) == 0 ? check : -2;
    }
};

TEST_F(Menus, AMenuWithoutParentHangsUnderANewItemOfThePluginsMenu) {
    ASSERT_NE(shared, nullptr);
    Append(b, shared, "b0");
    const AVSKMenuID menu = Create(a, "Mine");
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(Take(), (Lines{"appendMenuItem(menu1, 0, \"b0\", 0)", "appendMenuItem(menu1, 1, \"Mine\", 1)",
                             "createMenu(menu1, 1, \"Mine\")"}));
    a.Run([&] {
        AVSKAppendMenuItem(menu, "item", nullptr, 0);
        AVSKCreateMenu("Sub", menu, 0, nullptr, nullptr);
        AVSKCreateMenu("Lost", menu, 5, nullptr, nullptr);
    });
    EXPECT_EQ(Take(), (Lines{"appendMenuItem(menu2, 0, \"item\", 0)", "createMenu(menu2, 0, \"Sub\")",
                             "createMenu(menu2, -1, \"Lost\")"}));
}

TEST_F(Menus, EachPluginNumbersItsOwnItems) {
    EXPECT_EQ(Append(a, shared, "a0"), 0);
    EXPECT_EQ(Append(b, shared, "b0"), 0);
    a.Run([&] { AVSKAppendMenuSeparator(shared); });
    EXPECT_EQ(Append(a, shared, "a2"), 2);
    Take();
    a.Run([&] { AVSKRemoveMenuItem(shared, 0); });
    b.Run([&] { AVSKSetMenuItemName(shared, 0, "b zero", 1); });
    a.Run([&] {
        AVSKSetMenuItemName(shared, 1, "a two", 0);
        AVSKSetMenuItemName(shared, 2, "nobody", 0);
        AVSKSetMenuItemName(shared, -1, "nobody", 0);
    });
    EXPECT_EQ(Take(), (Lines{"removeMenuItem(menu1, 0)", "setMenuItemName(menu1, 0, \"b zero\", 1)",
                             "setMenuItemName(menu1, 2, \"a two\", 0)", "setMenuItemName(menu1, -1, \"nobody\", 0)",
                             "setMenuItemName(menu1, -1, \"nobody\", 0)"}));
}

TEST_F(Menus, OnlyRemovingChecksItsIndex) {
    Append(b, shared, "b0");
    a.Run(JournalErrors);
    Take();
    a.Run([&] {
        int check = 77;
        for (const int index : {-1, 0, 5}) {
            AVSKRemoveMenuItem(shared, index);
            AVSKCheckMenuItem(shared, index, 2);
            AVSKEnableMenuItem(shared, index, 0);
            AVSKCheckMenuItemState(shared, index, &check);
        }
        EXPECT_EQ(check, 77);
    });
    EXPECT_EQ(Take(), Lines(3, "error: AVSKRemoveMenuItem was passed an out of range item index."));
    EXPECT_EQ(CheckOf(1, 0), -1) << "B's item is as it was";
}

TEST_F(Menus, TheHostAsksForCheckMarksCountedFromMinusOne) {
    Append(a, shared, "a0");
    const struct {
        int stored;
        int told;
    } cases[] = {{0, -1}, {1, 0}, {2, 1}, {3, -2}, {-1, -2}};
    for (const auto &each : cases) {
        int stored = 77;
        a.Run([&] {
            AVSKCheckMenuItem(shared, 0, each.stored);
            AVSKCheckMenuItemState(shared, 0, &stored);
            AVSKCheckMenuItemState(shared, 0, nullptr);
        });
        EXPECT_EQ(stored, each.stored);
        EXPECT_EQ(CheckOf(1, 0), each.told);
    }
    EXPECT_EQ(CheckOf(1, 1), -2);
    EXPECT_EQ(CheckOf(1, -1), -2);
    int check = 0;
    EXPECT_EQ(AVSKCheckMenuHook(nullptr, 0, &check), 1);
}

TEST_F(Menus, AnItemIsEnabledIfItsFlagAndItsMenusOwnerAre) {
    const AVSKMenuID menu = Create(a, "Mine");
    Append(b, menu, "b0");
    void *const hostMenu = host.Menu(2);
    EXPECT_EQ(AVSKMenuItemEnabled(hostMenu, 0), 1);
    b.Run([&] { AVSKEnableMenuItem(menu, 0, 0); });
    EXPECT_EQ(AVSKMenuItemEnabled(hostMenu, 0), 0);
    b.Run([&] { AVSKEnableMenuItem(menu, 0, 3); });
    EXPECT_EQ(AVSKMenuItemEnabled(hostMenu, 0), 3) << "as it was stored";
    AVSKDisablePlugin(a.Id());
    EXPECT_EQ(AVSKMenuItemEnabled(hostMenu, 0), 0);
    EXPECT_EQ(AVSKMenuItemEnabled(hostMenu, 1), 1) << "not an item";
    EXPECT_EQ(AVSKMenuItemEnabled(nullptr, 0), 1) << "not a menu";
}

TEST_F(Menus, APickCallsTheMenusHandlerAsItsOwnerWhoeverAppendedTheItem) {
    MenuPlayer player = [](void *itemRef) {
        Note("picked as " + std::to_string(AVSKGetMyID()) + " " + *static_cast<const char *>(itemRef));
    };
    const AVSKMenuID menu = Create(a, "Mine", &player);
    char ref = 'r';
    Append(b, menu, "b0", &ref);
    const int item = host.lastItemID;
    Take();
    EXPECT_EQ(AVSKMenuHook(item), 0);
    EXPECT_EQ(Take(), Lines{"picked as 1 r"});
    const struct {
        const char *why;
        std::function<void()> arrange;
        int item;
        int answer;
    } cases[] = {{"no plugin's item", [] {}, 999, 1},
                 {"an item of a menu without handler", [&] { Append(b, shared, "b"); }, item + 1, 0},
                 {"a disabled item", [&] { b.Run([&] { AVSKEnableMenuItem(menu, 0, 0); }); }, item, 0},
                 {"a disabled plugin's menu",
                  [&] {
                      b.Run([&] { AVSKEnableMenuItem(menu, 0, 1); });
                      AVSKDisablePlugin(a.Id());
                  },
                  item, 0}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.why);
        each.arrange();
        Take();
        EXPECT_EQ(AVSKMenuHook(each.item), each.answer);
        EXPECT_EQ(Take(), Lines());
    }
}

TEST_F(Menus, AHandlerMayDestroyItsMenuOrThrow) {
    AVSKMenuID menu = nullptr;
    MenuPlayer player = [&](void *) { AVSKDestroyMenu(menu); };
    menu = Create(a, "Mine", &player);
    Append(a, menu, "a0");
    const int item = host.lastItemID;
    EXPECT_EQ(AVSKMenuHook(item), 0);
    EXPECT_EQ(AVSKMenuHook(item), 1);

    MenuPlayer throws = [](void *) { throw std::runtime_error("picked"); };
    Append(a, Create(a, "Bad", &throws), "a0");
    EXPECT_THROW(AVSKMenuHook(host.lastItemID), std::runtime_error);
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Menus, ClearingRenamesEverybodysItemsAndStartsAgainAt0) {
    const AVSKMenuID menu = Create(a, "Mine");
    Append(a, menu, "a0");
    Append(b, menu, "b0");
    Take();
    b.Run([&] { AVSKClearAllMenuItems(menu); });
    EXPECT_EQ(Take(), Lines()) << "not B's menu";
    a.Run([&] { AVSKClearAllMenuItems(menu); });
    EXPECT_EQ(Append(b, menu, "b new"), 0);
    EXPECT_EQ(Take(), (Lines{"setMenuItemName(menu2, 0, \"\", 0)", "setMenuItemName(menu2, 1, \"\", 0)",
                             "appendMenuItem(menu2, 0, \"b new\", 0)"}));
}

TEST_F(Menus, OnlyItsOwnerDestroysAMenu) {
    const AVSKMenuID menu = Create(a, "Mine");
    Append(a, menu, "a0");
    Take();
    b.Run([&] { AVSKDestroyMenu(menu); });
    a.Run([&] { AVSKDestroyMenu(shared); });
    EXPECT_EQ(Take(), Lines());
    a.Run([&] {
        AVSKDestroyMenu(menu);
        AVSKDestroyMenu(menu);
    });
    EXPECT_EQ(Take(), (Lines{"setMenuItemName(menu2, 0, \"\", 0)", "destroyMenu(menu2)"}))
        << "the item that opened it stays";
}

TEST_F(Menus, AMenuThatIsGoneIsIgnoredByEveryCall) {
    const AVSKMenuID gone = Create(a, "Mine");
    a.Run(JournalErrors);
    a.Run([&] { AVSKDestroyMenu(gone); });
    Take();
    for (const AVSKMenuID menu : {gone, AVSKMenuID(nullptr)})
        a.Run([&] {
            int check = 77;
            EXPECT_EQ(AVSKAppendMenuItem(menu, "x", nullptr, 0), -1);
            AVSKAppendMenuSeparator(menu);
            AVSKRemoveMenuItem(menu, 0);
            AVSKSetMenuItemName(menu, 0, "x", 0);
            AVSKCheckMenuItem(menu, 0, 1);
            AVSKCheckMenuItemState(menu, 0, &check);
            AVSKEnableMenuItem(menu, 0, 1);
            AVSKClearAllMenuItems(menu);
            AVSKDestroyMenu(menu);
            EXPECT_EQ(check, 77);
        });
    a.Run([&] { EXPECT_EQ(AVSKCreateMenu("x", gone, 0, nullptr, nullptr), nullptr); });
    EXPECT_EQ(Take(), Lines());
}

TEST_F(Menus, TheHostMayReEnterFromItsMenuServices) {
    const AVSKMenuID menu = Create(a, "Mine");
    Append(a, menu, "a0");
    Append(a, menu, "a1");
    host.on.setMenuItemName = [&](void *, int, const char *, int) {
        host.on.setMenuItemName = nullptr;
        AVSKDestroyMenu(menu);
    };
    a.Run([&] { AVSKClearAllMenuItems(menu); });
    const AVSKMenuID second = Create(a, "Second");
    host.on.appendMenuItem = [&](void *, int, const char *, int) { return AVSKDestroyMenu(second), 1; };
    EXPECT_EQ(Append(a, second, "a0"), -1);
}

// With a table of 287 bytes the host's menu stays and the record is dropped all the same.
TEST_F(Menus, CleanupTakesAPluginsMenusThenItsSharedItemsFromTheLast) {
    const Puppet &air = world.InstallAircraft("air");
    for (const int size : {288, 287}) {
        SCOPED_TRACE(size);
        host.table.sizeInBytes = size;
        host.menus.resize(1);
        World::LoadAircraft();
        Append(a, shared, "a");
        Append(air, shared, "air 1");
        const AVSKMenuID theirs = Create(air, "air's");
        Append(a, theirs, "a");
        const AVSKMenuID other = Create(b, "B's");
        Append(air, other, "stays");
        const int stays = host.lastItemID;
        Take();
        World::UnloadAircraft();
        const Lines journal = Take();
        Lines expected = {"stop air", "setMenuItemName(menu2, 0, \"\", 0)", "destroyMenu(menu2)",
                          "removeMenuItem(menu1, 2)", "removeMenuItem(menu1, 1)"};
        if (size == 287)
            expected.erase(expected.begin() + 2);
        EXPECT_EQ(Lines(std::find(journal.begin(), journal.end(), "stop air"), journal.end()), expected);
        EXPECT_EQ(AVSKMenuItemEnabled(host.Menu(2), 0), 1) << "no longer a plugin's menu";
        EXPECT_EQ(AVSKMenuHook(stays), 0);
        b.Run([&] { AVSKDestroyMenu(other); });
        for (const Puppet *owner : {&a, &b})
            owner->Run([&] { AVSKRemoveMenuItem(shared, 0); });
    }
}

} // namespace
