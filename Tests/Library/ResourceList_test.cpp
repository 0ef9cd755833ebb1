// The list of callbacks: records may be removed at any time during any walk.
#include "AVSKCallbackSequence.h"
#include "AVSKResourceList.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <map>
#include <memory>
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

// A list of letters. The newest comes first: "cba".
class ResourceList : public testing::Test {
  protected:
    struct List : AVSKResourceList<Item> {
        using AVSKResourceList::AVSKResourceList, AVSKResourceList::head, AVSKResourceList::iterate_depth;
    };

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
    // Frees every reachable record in any state.
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
    [[gnu::noinline]] std::string Names(Range &&range, const std::function<void(char)> &at = nullptr) {
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

TEST_F(ResourceList, InAWalkARemovedRecordIsMarkedEvenIfMovedAndReclaimedAtTheEnd) {
    Fill("abc");
    list->BeginIterate();
    Remove('b');
    Remove('b');
    EXPECT_TRUE(items['b']->is_dead());
    EXPECT_TRUE(list->Any([](const Item &item) { return item.name == 'b'; }));
    list->MoveToFront(items['b']);
    EXPECT_EQ(list->head, items['b']);
    EXPECT_EQ(freed, 0);
    Add('d');
    list->EndIterate();
    EXPECT_EQ(freed, 1);
    EXPECT_EQ(All(), "dca");
    list->EndIterate();
    EXPECT_EQ(list->iterate_depth, 0) << "an end too many";
}

TEST_F(ResourceList, AWalkFromTheBackLeavesTheCursorOnTheLastRecord) {
    Fill("abc");
    Names(list->LiveRecordsFromBack());
    EXPECT_EQ(list->head, items['a']);
    EXPECT_TRUE(list->Any([](const Item &item) { return item.name == 'c'; }));
    EXPECT_EQ(All(), "cba") << "the next walk rewinds it";

    Names(list->LiveRecordsFromBack());
    Add('d');
    EXPECT_EQ(All(), "da") << "those in front of the cursor are cut off";
    list->MoveToFront(items['b']);
    list->MoveToFront(items['c']);
    EXPECT_EQ(All(), "cbda");
    EXPECT_EQ(Names(list->LiveRecordsFromBack()), "adbc");
}

TEST_F(ResourceList, MovingToTheFrontHappensAtOnce) {
    // The walk moves the letter while it is at b.
    for (const auto &[letter, after, visited] :
         {std::tuple('c', "cba", "cba"), {'b', "bca", "cbca"}, {'a', "acb", "cb"}}) {
        Fill("abc");
        Item *moving = items[letter];
        EXPECT_EQ(Names(list->LiveRecords(),
                        [&](char at) {
                            if (at == 'b' && moving)
                                list->MoveToFront(std::exchange(moving, nullptr));
                        }),
                  visited);
        EXPECT_EQ(All(), after);
    }
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
    list->iterate_depth = INT_MAX;
    list->BeginIterate();
    EXPECT_EQ(list->iterate_depth, INT_MAX) << "the deepest";
}

TEST_F(ResourceList, AWalkGoesOnThoughAWalkOrAnEndTooManyInsideItReclaims) {
    Fill("abc");
    const auto endInside = [&](char at) { at == 'b' ? Remove('b'), void(Live()) : void(); };
    EXPECT_EQ(Names(list->LiveRecordsFromBack(), endInside), "abc");
    EXPECT_EQ(freed, 1);
    const auto reclaimBoth = [&](char at) { at == 'c' ? Remove('c'), Live(), Remove('b'), void(Live()) : void(); };
    Fill("abcd");
    EXPECT_EQ(Names(list->LiveRecords(), reclaimBoth), "dca");
    for (const auto &[removed, moved, forward, visited] : {std::tuple('c', 'b', true, "dca"), // b is in front now
                                                           {'c', 'a', true, "dcb"},
                                                           {'b', 'c', false, "abdc"}, // c is still to come
                                                           {'b', 'd', false, "abcd"}}) {
        Fill("abcd");
        const auto move = [&, gone = removed, to = moved](char at) {
            at == gone ? Remove(gone), Live(), list->MoveToFront(items[to]) : void();
        };
        EXPECT_EQ(forward ? Names(list->LiveRecords(), move) : Names(list->LiveRecordsFromBack(), move), visited);
    }
    Fill("abc", AVSKReclaim::AfterPass);
    const auto endTooMany = [&](char at) { at == 'b' ? Remove('b'), list->EndIterate(), Remove('b') : void(); };
    EXPECT_EQ(Names(list->LiveRecords(), endTooMany), "cba");
    EXPECT_EQ(freed, 1);
    Fill("abc");
    const auto endFirst = [&](char at) { at == 'b' ? list->EndIterate(), Remove('b') : void(); };
    EXPECT_EQ(Names(list->LiveRecords(), endFirst), "cba");
    EXPECT_EQ(freed, 1);
}

#if AVSK_POOLS_RECORDS
TEST_F(ResourceList, AFreedSlotIsReused) {
    Fill("abc");
    const Item *const slot = items['b'];
    Remove('b');
    Add('d');
    EXPECT_EQ(items['d'], slot);
}
#endif

TEST(CallbackSequence, AnItemThatIsErasedInItsCallIsNotFound) {
    AVSKCallbackSequence<int> sequence;
    sequence.Append(7);
    const auto isSeven = [](int item) { return item == 7; };
    EXPECT_TRUE(sequence.Any(isSeven));
    sequence.FromOldest([&](int /*item*/) {
        sequence.EraseAll(isSeven);
        EXPECT_FALSE(sequence.Any(isSeven));
        return true;
    });
    EXPECT_TRUE(sequence.Empty());
}

} // namespace
