// Menus: per-plugin numbering, the host's calls, picks, queries and cleanup.
#include "World.h"

namespace {

class Menus : public ThreePlugins {
  protected:
    AVSKMenuID shared = nullptr;

    void SetUp() override {
        ThreePlugins::SetUp();
        shared = AVSKFindPluginsMenu();
    }

    static int Append(const Puppet &owner, AVSKMenuID menu, const char *name, void *itemRef = nullptr) {
        return owner.Run([&] { return AVSKAppendMenuItem(menu, name, itemRef, 0); });
    }
    AVSKMenuID Create(const Puppet &owner, const char *name, MenuPlayer f = nullptr, AVSKMenuID parent = nullptr,
                      int item = 0) {
        const AVSKMenuHandler_f handler = f ? owner.code.menuPicked : nullptr;
        void *const menuRef = Keep(std::move(f));
        return owner.Run([&] { return AVSKCreateMenu(name, parent, item, handler, menuRef); });
    }
    // What the host gets for an item: the hook's result, the check mark (77 if unset), and whether it is enabled.
    static std::string Asked(void *hostMenu, int index) {
        int check = 77;
        const int answer = AVSKCheckMenuHook(hostMenu, index, &check);
        return Line(answer, " ", check, " ", AVSKMenuItemEnabled(hostMenu, index));
    }
};

TEST_F(Menus, AMenuWithoutParentHangsUnderANewItemOfThePluginsMenu) {
    ASSERT_NE(shared, nullptr);
    EXPECT_EQ(DOES(Append(b, shared, "b0")), "0: appendMenuItem(menu1, 0, \"b0\", 0)");
    AVSKMenuID menu = nullptr;
    EXPECT_EQ(DOES((menu = Create(a, "Mine")) != nullptr),
              "1: appendMenuItem(menu1, 1, \"Mine\", 1); createMenu(menu1, 1, \"Mine\")");
    EXPECT_EQ(DOES(Append(a, menu, "item")), "0: appendMenuItem(menu2, 0, \"item\", 0)");
    EXPECT_EQ(DOES(Create(a, "Sub", nullptr, menu), 1), "1: createMenu(menu2, 0, \"Sub\")");
    EXPECT_EQ(DOES(Create(a, "Lost", nullptr, menu, 5), 1), "1: createMenu(menu2, -1, \"Lost\")");
}

TEST_F(Menus, EachPluginNumbersItsOwnItems) {
    EXPECT_EQ(Append(a, shared, "a0"), 0);
    EXPECT_EQ(Append(b, shared, "b0"), 0);
    EXPECT_EQ(DOES_AS(a, AVSKAppendMenuSeparator(shared)), "appendMenuItem(menu1, 2, \"-\", 0)");
    EXPECT_EQ(Append(a, shared, "a2"), 2);
    EXPECT_EQ(DOES_AS(a, AVSKRemoveMenuItem(shared, 0)), "removeMenuItem(menu1, 0)");
    for (const auto &[plugin, index, seen] :
         Table<const Puppet *, int, int>{{&b, 0, 0}, {&a, 1, 2}, {&a, 2, -1}, {&a, -1, -1}})
        EXPECT_EQ(DOES_AS(*plugin, AVSKSetMenuItemName(shared, index, "new", index)),
                  Line("setMenuItemName(menu1, ", seen, ", \"new\", ", index, ")"));
}

TEST_F(Menus, TheHostAsksForCheckMarksCountedFromMinusOne) {
    Append(a, shared, "a0");
    for (const auto &[stored, told] :
         Table<int, std::string>{{0, "0 -1 1"}, {2, "0 1 1"}, {3, "1 77 1"}, {-1, "1 77 1"}}) {
        const int check = a.Run([&, stored = stored] {
            int read = 77;
            AVSKCheckMenuItem(shared, 0, stored);
            AVSKCheckMenuItemState(shared, 0, &read);
            AVSKCheckMenuItemState(shared, 0, nullptr);
            return read;
        });
        EXPECT_EQ(check, stored);
        EXPECT_EQ((Lines{Asked(host.Menu(1), 0), Asked(host.Menu(1), 1), Asked(nullptr, 0)}),
                  (Lines{told, "1 77 1", "1 77 1"}));
        EXPECT_EQ(AVSKCheckMenuHook(host.Menu(1), 0, nullptr), told[0] - '0');
    }
}

TEST_F(Menus, APickCallsTheMenusHandlerAsItsOwnerWhoeverAppendedTheItem) {
    const AVSKMenuID menu = Create(a, "Mine", [](void *itemRef) {
        Note(Line("picked as ", AVSKGetMyID(), " ", static_cast<const char *>(itemRef)));
    });
    char ref[] = "r";
    Append(b, menu, "b0", ref);
    const int item = host.lastItemID;
    const auto pick = [=] { return DOES(AVSKMenuHook(item)); };
    Append(b, shared, "of a menu without handler");
    EXPECT_EQ(pick(), "0: picked as 1 r");
    EXPECT_EQ(DOES(AVSKMenuHook(item + 1)), "0");
    EXPECT_EQ(DOES(AVSKMenuHook(999)), "1") << "no plugin's item";
    b.Run([&] { AVSKEnableMenuItem(menu, 0, 0); });
    EXPECT_EQ(pick(), "0") << "disabled, but a plugin's";
    EXPECT_EQ(AVSKMenuItemEnabled(host.Menu(2), 0), 0);
    b.Run([&] { AVSKEnableMenuItem(menu, 0, 1); });
    EXPECT_EQ(AVSKMenuItemEnabled(host.Menu(2), 0), 1);
    AVSKDisablePlugin(a.Id());
    EXPECT_EQ(AVSKMenuItemEnabled(host.Menu(2), 0), 0);
    EXPECT_EQ(pick(), "0");
}

TEST_F(Menus, ClearingRenamesEverybodysItemsAndStartsAgainAt0) {
    const AVSKMenuID menu = Create(a, "Mine");
    Append(a, menu, "a0");
    Append(b, menu, "b0");
    EXPECT_EQ(DOES_AS(b, AVSKClearAllMenuItems(menu), AVSKDestroyMenu(menu)), "") << "not B's menu";
    EXPECT_EQ(DOES_AS(a, AVSKDestroyMenu(shared)) + DOES(AVSKDestroyMenu(shared)), "") << "plugins' menus hang there";
    EXPECT_EQ(DOES_AS(a, AVSKClearAllMenuItems(menu)),
              "setMenuItemName(menu2, 0, \"\", 0); setMenuItemName(menu2, 1, \"\", 0)");
    EXPECT_EQ(DOES(Append(b, menu, "b new")), "0: appendMenuItem(menu2, 0, \"b new\", 0)");
}

TEST_F(Menus, ClearingLeavesWhatTheHostCausesToBeAppended) {
    const AVSKMenuID menu = Create(a, "Mine", [](void *) { Note("picked"); });
    for (int i = 0; i < 2; ++i)
        Append(a, menu, "item");
    host.on.setMenuItemName = [&](auto...) { EXPECT_GE(AVSKAppendMenuItem(menu, "more", nullptr, 0), 0); };
    a.Run([&] { AVSKClearAllMenuItems(menu); });
    host.on.setMenuItemName = nullptr;
    EXPECT_EQ(DOES_AS(a, AVSKSetMenuItemName(menu, 1, "second", 0)), "setMenuItemName(menu2, 3, \"second\", 0)")
        << "where the host has it";
    EXPECT_EQ(DOES(AVSKMenuHook(host.lastItemID)), "0: picked");
    EXPECT_EQ(DOES(AVSKMenuHook(host.lastItemID - 2)), "1") << "cleared";
    EXPECT_EQ(Asked(host.Menu(2), 0), "1 77 0");
    a.Run([&] { AVSKClearAllMenuItems(menu); });
    EXPECT_EQ(DOES(Append(a, menu, "3")), "0: appendMenuItem(menu2, 0, \"3\", 0)");
}

TEST_F(Menus, AMenuBeingDestroyedHasNoItemsForAHostThatAsksBack) {
    const AVSKMenuID menu = Create(a, "Mine", [](void *) { Note("picked"); });
    Append(a, menu, "item");
    host.on.destroyMenu = [&](void *hostMenu) {
        EXPECT_EQ(AVSKMenuHook(host.lastItemID), 1);
        EXPECT_EQ(Asked(hostMenu, 0), "1 77 1");
        EXPECT_EQ(AVSKAppendMenuItem(menu, "new", nullptr, 0), 0);
    };
    EXPECT_EQ(DOES_AS(a, AVSKDestroyMenu(menu)),
              "setMenuItemName(menu2, 0, \"\", 0); destroyMenu(menu2); appendMenuItem(menu2, 0, \"new\", 0)");
}

TEST_F(Menus, AMenuThatIsGoneIsIgnoredByEveryCall) {
    const AVSKMenuID menu = Create(a, "Mine");
    a.Run(JournalErrors);
    EXPECT_EQ(DOES_AS(a, AVSKRemoveMenuItem(menu, 0)),
              "error: AVSKRemoveMenuItem was passed an out of range item index.");
    EXPECT_EQ(DOES_AS(a, AVSKDestroyMenu(menu)), "destroyMenu(menu2)") << "the item that opened it stays";
    const auto use = [&] {
        int check = 77;
        AVSKAppendMenuSeparator(menu);
        AVSKRemoveMenuItem(menu, 0);
        AVSKSetMenuItemName(menu, 0, "x", 0);
        AVSKCheckMenuItem(menu, 0, 1);
        AVSKCheckMenuItemState(menu, 0, &check);
        AVSKEnableMenuItem(menu, 0, 1);
        AVSKClearAllMenuItems(menu);
        AVSKDestroyMenu(menu);
        return Line(check, AVSKAppendMenuItem(menu, "x", nullptr, 0), AVSKCreateMenu("x", menu, 0, nullptr, nullptr));
    };
    EXPECT_EQ(DOES_AS(a, use()), "77-10");
}

TEST_F(Menus, TheHostMayReEnterFromItsMenuServices) {
    AVSKMenuID menu = nullptr;
    std::function<void()> inside; // runs once, inside the next service
    const auto act = [&](auto...) { return inside ? std::exchange(inside, nullptr)() : void(), 1; };
    host.on.setMenuItemName = act, host.on.appendMenuItem = act, host.on.removeMenuItem = act;
    const auto clear = [&] { AVSKClearAllMenuItems(menu); };
    const auto destroy = [&] { AVSKDestroyMenu(menu); };
    const auto append = [&] {
        EXPECT_EQ(AVSKAppendMenuItem(menu, "late", nullptr, 0), -1) << "not where it was to be";
    };
    const auto remove = [&] { AVSKRemoveMenuItem(menu, 1); };
    for (const auto &[call, within, stays] :
         Table<std::function<void()>, std::function<void()>, bool>{{clear, destroy, false},
                                                                   {clear, remove, true},
                                                                   {destroy, destroy, false},
                                                                   {append, destroy, false},
                                                                   {append, clear, true},
                                                                   {append, [&] { Append(b, menu, "B's"); }, true},
                                                                   {remove, clear, true},
                                                                   {remove, destroy, false}}) {
        menu = Create(a, "Mine");
        for (int i = 0; i < 2; ++i)
            Append(a, menu, "item");
        a.Run([&, &call = call, &within = within] { inside = within, call(); });
        EXPECT_EQ(Append(a, menu, "still there") >= 0, stays);
    }

    // The last calls for a rejected duplicate run as that plugin.
    World::UnloadAircraft();
    air.signature = "test.A";
    air.start = [&] {
        AVSKAppendMenuItem(menu = AVSKCreateMenu("Mine", nullptr, 0, nullptr, nullptr), "item", nullptr, 0);
        return inside = destroy, 1;
    };
    const std::string calls = DOES(World::LoadAircraft());
    EXPECT_EQ(calls.find("destroyMenu("), calls.rfind("destroyMenu("));

    air.signature = "test.air";
    air.start = nullptr;
    World::LoadAircraft();
    for (int i = 0; i < 2; ++i)
        Append(air, shared, "air's");
    inside = [&] { AVSKClearAllMenuItems(shared); }; // runs as the host
    World::UnloadAircraft();
    EXPECT_EQ(Append(a, shared, "the first again"), 0);
    world.Stop();
}

TEST_F(Menus, CleanupTakesAPluginsMenusThenItsSharedItemsFromTheLast) {
    Append(a, shared, "a");
    Append(air, shared, "air 1");
    Append(a, Create(air, "air's"), "a");
    Append(air, Create(b, "B's"), "stays");
    EXPECT_EQ(DOES(World::UnloadAircraft()), "disable air; stop air; setMenuItemName(menu2, 0, \"\", 0); "
                                             "destroyMenu(menu2); removeMenuItem(menu1, 2); removeMenuItem(menu1, 1)");
    EXPECT_EQ(AVSKMenuItemEnabled(host.Menu(2), 0), 1) << "no longer a plugin's menu";
    EXPECT_EQ(AVSKMenuHook(host.lastItemID), 0);
}

} // namespace
