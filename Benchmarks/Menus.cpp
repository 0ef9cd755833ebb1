// Menus: appending items to a long menu, and the calls of host and owner on its items.
#include "FakeHost.h"
#include "Harness.h"
#include "Simulator.h"

#include "AVSK/AVSKHost.h"
#include "AVSK/AVSKMenus.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>

namespace {

constexpr AVSKPluginID kOwner = 1;
constexpr unsigned kItems = 2000;

void CountPick(void *menuRef, void * /*itemRef*/) { ++*static_cast<std::uint64_t *>(menuRef); }

// A menu of one plugin.
struct LongMenu {
    Simulator simulator{1};
    std::uint64_t picks = 0;
    AVSKMenuID menu = nullptr;
    void *hostMenu = nullptr;

    LongMenu() {
        simulator.AsPlugin(kOwner, [this] { menu = AVSKCreateMenu("Benchmark", nullptr, 0, CountPick, &picks); });
        hostMenu = FakeHostMenu();
    }

    // Returns the sum of the indices of the new items.
    std::uint64_t Append() {
        std::uint64_t indices = 0;
        simulator.AsPlugin(kOwner, [&] {
            for (unsigned i = 0; i < kItems; ++i)
                indices += static_cast<unsigned>(AVSKAppendMenuItem(menu, "Item", nullptr, 1));
        });
        return indices;
    }

    void Clear() {
        simulator.AsPlugin(kOwner, [this] { AVSKClearAllMenuItems(menu); });
    }
};

// Visits every item once, in the same random order in every run.
std::vector<int> RandomIndices() {
    std::vector<int> indices(kItems);
    std::iota(indices.begin(), indices.end(), 0);
    std::shuffle(indices.begin(), indices.end(), std::mt19937(20));
    return indices;
}

void MeasureAppending(Report &report) {
    LongMenu menu;
    std::uint64_t appended = 0;
    report.Measure("append up to 2000 menu items, each",
                   Side::Here(
                       kItems,
                       [&] {
                           if (menu.Append() != std::uint64_t{kItems} * (kItems - 1) / 2)
                               throw WrongCount("the new menu items are not numbered from 0 to 1999");
                           appended += kItems;
                       },
                       [&appended] { return appended; }, [&menu] { menu.Clear(); }));
}

void MeasureChecking(Report &report) {
    LongMenu menu;
    menu.Append();
    const std::vector<int> indices = RandomIndices();
    int check = AVSKMenuUnchecked;
    std::uint64_t checked = 0;
    // The marks are summed as the host sees them, one less than the plugin's values.
    const auto countMarks = [&] {
        for (unsigned i = 0; i < kItems; ++i) {
            int mark = -1;
            checked += AVSKCheckMenuHook(menu.hostMenu, static_cast<int>(i), &mark) == 0 && mark == check - 1;
        }
    };
    report.Measure("check one of 2000 menu items", Side::Here(
                                                       kItems,
                                                       [&] {
                                                           check = AVSKMenuUnchecked + AVSKMenuChecked - check;
                                                           menu.simulator.AsPlugin(kOwner, [&] {
                                                               for (const int index : indices)
                                                                   AVSKCheckMenuItem(menu.menu, index, check);
                                                           });
                                                       },
                                                       [&checked] { return checked; }, countMarks));
}

void MeasureAsking(Report &report) {
    LongMenu menu;
    menu.Append();
    menu.simulator.AsPlugin(kOwner, [&menu] {
        for (unsigned i = 0; i < kItems; ++i)
            AVSKCheckMenuItem(menu.menu, static_cast<int>(i), AVSKMenuChecked);
    });
    const std::vector<int> indices = RandomIndices();
    std::uint64_t marks = 0;
    report.Measure("ask for the check mark of one of 2000 menu items", Side::Here(
                                                                           kItems,
                                                                           [&] {
                                                                               for (const int index : indices) {
                                                                                   int mark = 0;
                                                                                   AVSKCheckMenuHook(menu.hostMenu,
                                                                                                     index, &mark);
                                                                                   marks += static_cast<unsigned>(mark);
                                                                               }
                                                                           },
                                                                           [&marks] { return marks; }));
}

void MeasurePicking(Report &report) {
    LongMenu menu;
    menu.Append();
    std::vector<int> picked = RandomIndices();
    const int firstID = FakeHostMenuItem() - static_cast<int>(kItems) + 1;
    for (int &item : picked)
        item += firstID;
    report.Measure("pick one of 2000 menu items", Side::Here(
                                                      kItems,
                                                      [&picked] {
                                                          for (const int item : picked)
                                                              AVSKMenuHook(item);
                                                      },
                                                      [&menu] { return menu.picks; }));
}

} // namespace

std::vector<Comparison> MenuComparisons() {
    return {{"append menu items", MeasureAppending},
            {"check menu items", MeasureChecking},
            {"ask for menu items' check marks", MeasureAsking},
            {"pick menu items", MeasurePicking}};
}
