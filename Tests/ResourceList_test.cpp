// The list of callbacks: removal at any moment of any walk.
#include "AVSKResourceList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

namespace {

struct Item : AVSKResource_t<Item> {
    explicit Item(char label, int &freedCount) : name(label), freed(freedCount) {}
    ~Item() { ++freed; }
    char name;
    int &freed;
};

// A list of letters, of which the last added is the first: "cba".
class ResourceList : public testing::Test {
  protected:
    using List = AVSKResourceList<Item>;

    int freed = 0;
    std::unique_ptr<List> list;
    std::map<char, Item *> items;

    void Fill(const char *names, AVSKReclaim when = AVSKReclaim::AtEveryEnd) {
        Empty();
        list = std::make_unique<List>(when);
        freed = 0;
        for (; *names; ++names)
            Add(*names);
    }
    void Add(char name) { list->Add(items[name] = new Item(name, freed)); }
    void Remove(char name) { list->Remove(items[name]); }
    void TearDown() override { Empty(); }
    // Everything reachable, whatever its state, back to the heap.
    void Empty() {
        if (!list)
            return;
        list->iterate_depth = 0;
        list->Clean();
        while (list->BeginIterate()) {
            list->EndIterate();
            list->Remove(list->head);
        }
    }

    template <class Range>
    std::string Names(Range &&range, const std::function<void(char)> &at = nullptr) {
        std::string names;
        for (Item &item : range) {
            names += item.name;
            if (at)
                at(item.name);
        }
        return names;
    }
    std::string All() { return Names(list->AllRecords()); }
    std::string Live() { return Names(list->LiveRecords()); }
};

TEST_F(ResourceList, NewRecordsGoToTheFront) {
    Fill("abc");
    EXPECT_EQ(All(), "cba");
    EXPECT_EQ(Names(list->LiveRecordsFromBack()), "abc");
}

TEST_F(ResourceList, OutsideAWalkARecordIsFreedAtOnce) {
    for (const char *gone : {"a", "b", "c", "abc", "cba"}) {
        Fill("abc");
        std::string expected = "cba";
        for (const char *name = gone; *name; ++name) {
            Remove(*name);
            expected.erase(expected.find(*name), 1);
        }
        EXPECT_EQ(All(), expected);
        EXPECT_EQ(static_cast<std::size_t>(freed), std::string(gone).size());
    }
}

TEST_F(ResourceList, InAWalkItIsMarkedAndReclaimedAtTheEnd) {
    Fill("abc");
    Item *const first = list->BeginIterate();
    Remove('b');
    Remove('b');
    EXPECT_EQ(first->get_next(), items['b']);
    EXPECT_TRUE(items['b']->is_dead());
    EXPECT_EQ(freed, 0);
    EXPECT_EQ(list->dead_list, items['b']);
    EXPECT_EQ(items['b']->dead_next, nullptr) << "chained once";
    list->EndIterate();
    EXPECT_EQ(freed, 1);
    EXPECT_EQ(All(), "ca");
}

TEST_F(ResourceList, AnEndWithoutABeginLeavesTheDepthAt0) {
    Fill("a");
    list->EndIterate();
    EXPECT_EQ(list->iterate_depth, 0);
    Remove('a');
    EXPECT_EQ(freed, 1);
}

TEST_F(ResourceList, AnEmptyListStillCountsItsWalks) {
    Fill("");
    EXPECT_EQ(list->BeginIterate(), nullptr);
    EXPECT_EQ(list->BeginReverseIterate(), nullptr);
    EXPECT_EQ(list->iterate_depth, 2);
}

// A walk over "dcba" stands on c (from the back: on b) when something happens.
struct Change {
    const char *what;
    const char *removed;
    bool nested; // and a walk inside, whose end reclaims
    const char *visited;
    const char *remaining;
};

void PrintTo(const Change &change, std::ostream *out) { *out << change.what; }

class Removal : public ResourceList, public testing::WithParamInterface<std::tuple<Change, bool, bool>> {};

TEST_P(Removal, LeavesTheWalkWhereItWouldGoOn) {
    const auto &[change, waitsForPass, fromBack] = GetParam();
    // Seen from the back the same list is the same walk.
    Fill(fromBack ? "dcba" : "abcd", waitsForPass ? AVSKReclaim::AfterPass : AVSKReclaim::AtEveryEnd);
    std::string inner;
    const auto act = [&, &each = change](char at) {
        if (at != 'c')
            return;
        for (const char *name = each.removed; *name; ++name)
            Remove(*name);
        if (each.nested)
            inner = Live();
    };
    EXPECT_EQ(fromBack ? Names(list->LiveRecordsFromBack(), act) : Names(list->LiveRecords(), act), change.visited);
    std::string remaining = change.remaining;
    if (fromBack)
        std::reverse(remaining.begin(), remaining.end());
    if (change.nested) {
        EXPECT_EQ(inner, remaining);
    }
    EXPECT_EQ(All(), remaining);
    EXPECT_EQ(freed, static_cast<int>(4 - remaining.size()));
    EXPECT_EQ(list->iterate_depth, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Matrix, Removal,
    testing::Combine(
        testing::Values(
            Change{"nothing", "", false, "dcba", "dcba"}, Change{"itself", "c", false, "dcba", "dba"},
            Change{"next", "b", false, "dca", "dca"}, Change{"last", "a", false, "dcb", "dcb"},
            Change{"itself and next", "cb", false, "dca", "da"}, Change{"next and itself", "bc", false, "dca", "da"},
            Change{"itself twice", "cc", false, "dcba", "dba"}, Change{"all", "abcd", false, "dc", ""},
            Change{"all", "dcba", false, "dc", ""}, Change{"itself, nested", "c", true, "dcba", "dba"},
            Change{"next, nested", "b", true, "dca", "dca"}, Change{"previous, nested", "d", true, "dcba", "cba"},
            Change{"itself and next, nested", "cb", true, "dca", "da"},
            Change{"next and itself, nested", "bc", true, "dca", "da"}, Change{"all, nested", "cbad", true, "dc", ""}),
        testing::Bool(), testing::Bool()));

// From the back the previous record is the one the cursor stands on: see below.
INSTANTIATE_TEST_SUITE_P(MatrixForward, Removal,
                         testing::Combine(testing::Values(Change{"previous", "d", false, "dcba", "cba"}),
                                          testing::Bool(), testing::Values(false)));

TEST_F(ResourceList, WithTheLastRecordRemovedUnderItTheCursorLosesTheOthers) {
    Fill("abc");
    Names(list->LiveRecordsFromBack());
    Remove('a');
    EXPECT_EQ(list->head, nullptr);
    EXPECT_EQ(All(), "");
    delete items['b'];
    delete items['c'];
}

TEST_F(ResourceList, AnInnerEndReclaimsUnlessTheListWaitsForThePass) {
    for (const AVSKReclaim when : {AVSKReclaim::AtEveryEnd, AVSKReclaim::AfterPass}) {
        Fill("abc", when);
        std::string inner;
        Names(list->LiveRecords(), [&](char at) {
            if (at != 'b')
                return;
            Remove('b');
            Names(list->AllRecords());
            inner = All(); // dead ones included
            EXPECT_EQ(freed, 0) << "the outer walk still stands on it";
        });
        EXPECT_EQ(inner, when == AVSKReclaim::AtEveryEnd ? "ca" : "cba");
        EXPECT_EQ(freed, 1);
        EXPECT_EQ(All(), "ca");
    }
}

TEST_F(ResourceList, DeepWalksStandingOnTheSameRecordAllGoOn) {
    Fill("abcd");
    std::string visited;
    const std::function<void(int)> walk = [&](int depth) {
        Names(list->LiveRecords(), [&, depth](char at) {
            visited += at;
            if (at == 'c' && depth < 3)
                walk(depth + 1);
            else if (at == 'c') {
                Remove('c');
                Remove('b');
                Live();
            }
        });
    };
    walk(1);
    EXPECT_EQ(visited, "dcdcdcaaa");
    EXPECT_EQ(freed, 2);
}

TEST_F(ResourceList, ARecordAddedInAWalkIsNotReachedAndOneRemovedIsNotRevived) {
    Fill("ab");
    EXPECT_EQ(Names(list->LiveRecords(),
                    [&](char at) {
                        if (at == 'b') {
                            Remove('b');
                            Add('c');
                        }
                    }),
              "ba");
    EXPECT_EQ(All(), "ca");
}

TEST_F(ResourceList, AnExceptionEndsTheWalk) {
    Fill("ab");
    EXPECT_THROW(Names(list->LiveRecords(),
                       [&](char) {
                           Remove('b');
                           throw std::runtime_error("in the walk");
                       }),
                 std::runtime_error);
    EXPECT_EQ(list->iterate_depth, 0);
    EXPECT_EQ(freed, 1);
    EXPECT_EQ(All(), "a");
}

TEST_F(ResourceList, AWalkFromTheBackLeavesTheCursorOnTheLastRecord) {
    Fill("abc");
    Names(list->LiveRecordsFromBack());
    EXPECT_EQ(list->head, items['a']);
    EXPECT_EQ(All(), "cba") << "the next walk rewinds it";

    Names(list->LiveRecordsFromBack());
    Add('d');
    EXPECT_EQ(All(), "da") << "those in front of the cursor are cut off";
    delete items['b'];
    delete items['c'];
}

TEST_F(ResourceList, MovingToTheFrontHappensAtOnce) {
    const struct {
        char moved;
        const char *after;
        const char *visited; // by a walk that stands on b
    } cases[] = {{'c', "cba", "cba"}, {'b', "bca", "cbca"}, {'a', "acb", "cb"}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.moved);
        Fill("abc");
        list->MoveToFront(items[each.moved]);
        EXPECT_EQ(All(), each.after);
        std::string backwards = each.after;
        std::reverse(backwards.begin(), backwards.end());
        EXPECT_EQ(Names(list->LiveRecordsFromBack()), backwards);

        Fill("abc");
        bool moved = false;
        EXPECT_EQ(Names(list->LiveRecords(),
                        [&](char at) {
                            if (at == 'b' && !std::exchange(moved, true))
                                list->MoveToFront(items[each.moved]);
                        }),
                  each.visited);
        EXPECT_EQ(freed, 0);
    }
}

TEST_F(ResourceList, MovingToTheFrontSavesNoRemovedRecord) {
    Fill("abc");
    list->BeginIterate();
    Remove('a');
    list->MoveToFront(items['a']);
    EXPECT_FALSE(items['a']->is_dead());
    Remove('a');
    EXPECT_TRUE(items['a']->is_dead());
    list->MoveToFront(items['a']);
    EXPECT_EQ(list->head, items['a']);
    list->EndIterate();
    EXPECT_EQ(freed, 1);
    EXPECT_EQ(All(), "cb");
}

TEST_F(ResourceList, AWalkThatStaysOpenKeepsTheDepthAndFreesItsStorage) {
    Fill("abc");
    {
        auto range = list->LiveRecords();
        for (const Item &item : range) {
            if (item.name == 'c')
                Remove('c');
            range.KeepOpen();
        }
    }
    EXPECT_EQ(list->iterate_depth, 1);
    EXPECT_EQ(freed, 0) << "nothing has ended";
    Remove('b');
    EXPECT_EQ(freed, 0);
    EXPECT_EQ(Live(), "a") << "its end reclaims both";
    EXPECT_EQ(freed, 2);
    EXPECT_EQ(list->iterate_depth, 1);
}

TEST_F(ResourceList, ALookWithoutAWalkSeesDeadRecordsToo) {
    Fill("abc");
    list->BeginIterate();
    Remove('b');
    EXPECT_TRUE(list->Any([](const Item &item) { return item.name == 'b'; }));
    EXPECT_FALSE(list->Any([](const Item &item) { return item.name == 'x'; }));
    EXPECT_EQ(list->iterate_depth, 1);
    list->EndIterate();
    EXPECT_FALSE(list->Any([](const Item &item) { return item.name == 'b'; }));
}

} // namespace
