// Menus: per-plugin numbering, the host's calls, picks, queries and cleanup.
#include "World.h"

#include <stdexcept>

namespace {

class Menus : public ThreePlugins {
  protected:
    AVSKMenuID shared = nullptr;

    void SetUp() override {
        ThreePlugins::SetUp();
        shared = AVSKFindPluginsMenu();
    }

    static int Append(const Puppet &owner, AVSKMenuID menu, const char *name, void *itemRef = nullptr) {
        int index = -2;
        owner.Run([&] { index = AVSKAppendMenuItem(menu, name, itemRef, 0); });
        return index;
    }
    AVSKMenuID Create(const Puppet &owner, const char *name, MenuPlayer f = nullptr) {
        AVSKMenuID menu = nullptr;
        const AVSKMenuHandler_f handler = f ? owner.code.menuPicked : nullptr;
        void *const menuRef = Keep(std::move(f));
        owner.Run([&] { menu = AVSKCreateMenu(name, nullptr, 0, handler, menuRef); });
        return menu;
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

TEST_F(Menus, TheHostAsksForCheckMarksCountedFromMinusOne) {
    Append(a, shared, "a0");
    const struct { int stored, answer, told; } cases[] = {{0, 0, -1}, {2, 0, 1}, {3, 1, -7}, {-1, 1, -7}};
    for (const auto &each : cases) {
        int check = -7;
        a.Run([&] {
            int stored = 77;
            AVSKCheckMenuItem(shared, 0, each.stored);
            AVSKCheckMenuItemState(shared, 0, &stored);
            EXPECT_EQ(stored, each.stored);
        });
        EXPECT_EQ(AVSKCheckMenuHook(host.Menu(1), 0, &check), each.answer);
        EXPECT_EQ(check, each.told);
        EXPECT_EQ(AVSKCheckMenuHook(host.Menu(1), 1, &check), 1);
        EXPECT_EQ(AVSKCheckMenuHook(nullptr, 0, &check), 1);
        EXPECT_EQ(AVSKCheckMenuHook(host.Menu(1), 0, nullptr), each.answer);
    }
    a.Run([&] { AVSKCheckMenuItemState(shared, 0, nullptr); });
}

TEST_F(Menus, APickCallsTheMenusHandlerAsItsOwnerWhoeverAppendedTheItem) {
    const AVSKMenuID menu = Create(a, "Mine", [](void *itemRef) {
        Note(Line("picked as ", AVSKGetMyID(), " ", static_cast<const char *>(itemRef)));
    });
    char ref[] = "r";
    Append(b, menu, "b0", ref);
    const int item = host.lastItemID;
    Append(b, shared, "of a menu without handler");
    Take();
    EXPECT_EQ(AVSKMenuHook(item), 0);
    EXPECT_EQ(Take(), Lines{"picked as 1 r"});
    EXPECT_EQ(AVSKMenuHook(item + 1), 0);
    EXPECT_EQ(AVSKMenuHook(999), 1) << "no plugin's item";
    b.Run([&] { AVSKEnableMenuItem(menu, 0, 0); });
    EXPECT_EQ(AVSKMenuHook(item), 0) << "disabled, but a plugin's";
    b.Run([&] { AVSKEnableMenuItem(menu, 0, 1); });
    EXPECT_EQ(AVSKMenuItemEnabled(host.Menu(2), 0), 1);
    AVSKDisablePlugin(a.Id());
    EXPECT_EQ(AVSKMenuItemEnabled(host.Menu(2), 0), 0);
    EXPECT_EQ(AVSKMenuHook(item), 0);
    EXPECT_EQ(Take(), Lines{"disable A"});
}

TEST_F(Menus, AHandlerMayDestroyItsMenuOrThrow) {
    AVSKMenuID menu = nullptr;
    menu = Create(a, "Mine", [&](void *) { AVSKDestroyMenu(menu); });
    Append(a, menu, "a0");
    const int item = host.lastItemID;
    EXPECT_EQ(AVSKMenuHook(item), 0);
    EXPECT_EQ(AVSKMenuHook(item), 1);

    Append(a, Create(a, "Bad", [](void *) { throw std::runtime_error("picked"); }), "a0");
    EXPECT_THROW(AVSKMenuHook(host.lastItemID), std::runtime_error);
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Menus, ClearingRenamesEverybodysItemsAndStartsAgainAt0) {
    const AVSKMenuID menu = Create(a, "Mine");
    Append(a, menu, "a0");
    Append(b, menu, "b0");
    Take();
    b.Run([&] { AVSKClearAllMenuItems(menu); });
    b.Run([&] { AVSKDestroyMenu(menu); });
    a.Run([&] { AVSKDestroyMenu(shared); });
    EXPECT_EQ(Take(), Lines()) << "not B's menu, and the host's is nobody's";
    a.Run([&] { AVSKClearAllMenuItems(menu); });
    EXPECT_EQ(Append(b, menu, "b new"), 0);
    EXPECT_EQ(Take(), (Lines{"setMenuItemName(menu2, 0, \"\", 0)", "setMenuItemName(menu2, 1, \"\", 0)",
                             "appendMenuItem(menu2, 0, \"b new\", 0)"}));
}

TEST_F(Menus, AMenuBeingDestroyedHasNoItemsForAHostThatAsksBack) {
    const AVSKMenuID menu = Create(a, "Mine", [](void *) { Note("picked"); });
    Append(a, menu, "item");
    host.on.destroyMenu = [&](void *hostMenu) {
        int check = 77;
        EXPECT_EQ(AVSKMenuHook(host.lastItemID), 1);
        EXPECT_EQ(AVSKCheckMenuHook(hostMenu, 0, &check), 1);
        EXPECT_EQ(check, 77);
        EXPECT_EQ(AVSKMenuItemEnabled(hostMenu, 0), 1);
        EXPECT_EQ(AVSKAppendMenuItem(menu, "new", nullptr, 0), 0);
    };
    Take();
    a.Run([&] { AVSKDestroyMenu(menu); });
    EXPECT_EQ(TakeCalls(),
              "setMenuItemName(menu2, 0, \"\", 0); destroyMenu(menu2); appendMenuItem(menu2, 0, \"new\", 0)");
    AVSKDestroyMenu(AVSKFindPluginsMenu());
    EXPECT_EQ(TakeCalls(), "") << "plugins' menus hang there";
}

TEST_F(Menus, AMenuThatIsGoneIsIgnoredByEveryCall) {
    const AVSKMenuID menu = Create(a, "Mine");
    a.Run(JournalErrors);
    Take();
    a.Run([&] {
        int check = 77;
        AVSKRemoveMenuItem(menu, 0);
        EXPECT_EQ(Take(), Lines{"error: AVSKRemoveMenuItem was passed an out of range item index."});
        AVSKDestroyMenu(menu);
        EXPECT_EQ(Take(), Lines{"destroyMenu(menu2)"}) << "the item that opened it stays";
        EXPECT_EQ(AVSKAppendMenuItem(menu, "x", nullptr, 0), -1);
        AVSKAppendMenuSeparator(menu);
        AVSKRemoveMenuItem(menu, 0);
        AVSKSetMenuItemName(menu, 0, "x", 0);
        AVSKCheckMenuItem(menu, 0, 1);
        AVSKCheckMenuItemState(menu, 0, &check);
        AVSKEnableMenuItem(menu, 0, 1);
        AVSKClearAllMenuItems(menu);
        AVSKDestroyMenu(menu);
        EXPECT_EQ(AVSKCreateMenu("x", menu, 0, nullptr, nullptr), nullptr);
        EXPECT_EQ(check, 77);
    });
    EXPECT_EQ(Take(), Lines());
}

TEST_F(Menus, TheHostMayReEnterFromItsMenuServices) {
    AVSKMenuID menu = nullptr;
    std::function<void()> inside; // a service, once
    const auto act = [&] { return inside ? std::exchange(inside, nullptr)() : void(), 1; };
    host.on.setMenuItemName = [&](void *, int, const char *, int) { act(); };
    host.on.appendMenuItem = [&](void *, int, const char *, int) { return act(); };
    host.on.removeMenuItem = [&](void *, int) { act(); };
    const auto clear = [&] { AVSKClearAllMenuItems(menu); };
    const auto destroy = [&] { AVSKDestroyMenu(menu); };
    const auto append = [&] {
        EXPECT_EQ(AVSKAppendMenuItem(menu, "late", nullptr, 0), -1) << "not where it was to be";
    };
    const auto remove = [&] { AVSKRemoveMenuItem(menu, 1); };
    const struct {
        std::function<void()> call, inside;
        bool stays;
    } cases[] = {{clear, destroy, false},
                 {destroy, destroy, false},
                 {append, destroy, false},
                 {append, clear, true},
                 {append, [&] { Append(b, menu, "B's"); }, true},
                 {remove, clear, true},
                 {remove, destroy, false}};
    for (const auto &each : cases) {
        menu = Create(a, "Mine");
        for (int i = 0; i < 2; ++i)
            Append(a, menu, "item");
        a.Run([&] { inside = each.inside, each.call(); });
        EXPECT_EQ(Append(a, menu, "still there") >= 0, each.stays);
    }

    // A duplicate's last calls are made in its own name.
    World::UnloadAircraft();
    air.signature = "test.A";
    air.start = [&] {
        AVSKAppendMenuItem(menu = AVSKCreateMenu("Mine", nullptr, 0, nullptr, nullptr), "item", nullptr, 0);
        return inside = destroy, 1;
    };
    TakeCalls();
    World::LoadAircraft();
    const std::string calls = TakeCalls();
    EXPECT_EQ(calls.find("destroyMenu("), calls.rfind("destroyMenu("));

    air.signature = "test.air";
    air.start = nullptr;
    World::LoadAircraft();
    for (int i = 0; i < 2; ++i)
        Append(air, shared, "air's");
    inside = [&] { AVSKClearAllMenuItems(shared); }; // the host's
    World::UnloadAircraft();
    EXPECT_EQ(Append(a, shared, "the first again"), 0);
    world.Stop();
}

TEST_F(Menus, CleanupTakesAPluginsMenusThenItsSharedItemsFromTheLast) {
    Append(a, shared, "a");
    Append(air, shared, "air 1");
    Append(a, Create(air, "air's"), "a");
    Append(air, Create(b, "B's"), "stays");
    const int stays = host.lastItemID;
    TakeCalls();
    World::UnloadAircraft();
    EXPECT_EQ(TakeCalls(), "disable air; stop air; setMenuItemName(menu2, 0, \"\", 0); destroyMenu(menu2); "
                           "removeMenuItem(menu1, 2); removeMenuItem(menu1, 1)");
    EXPECT_EQ(AVSKMenuItemEnabled(host.Menu(2), 0), 1) << "no longer a plugin's menu";
    EXPECT_EQ(AVSKMenuHook(stays), 0);
}

} // namespace
