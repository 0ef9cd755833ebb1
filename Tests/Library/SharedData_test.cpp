// Shared data: values that are nobody's, who hears of writes, and what a
// notification survives.
#include "World.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <tuple>

namespace {

class SharedData : public ThreePlugins {
  protected:
    static AVSKDataRef Share(const char *name, int type) {
        EXPECT_EQ(AVSKShareData(name, type, nullptr, nullptr), 1);
        return AVSKFindDataRef(name);
    }
    // A subscription of a plugin's to the int "x" that runs f, and its refcon.
    void *Subscribe(const Puppet &owner, NoticePlayer f) {
        void *const refcon = Keep(std::move(f));
        owner.Run([&] { EXPECT_EQ(AVSKShareData("x", AVSKDataTypeInt, owner.code.notified, refcon), 1); });
        return refcon;
    }
    void *Says(const Puppet &owner, const std::string &line) {
        return Subscribe(owner, [=] { Note(line); });
    }
    static int Unshare(const Puppet &owner, void *refcon) {
        int removed = 0;
        owner.Run([&] { removed = AVSKUnshareData("x", AVSKDataTypeInt, owner.code.notified, refcon); });
        return removed;
    }
    static std::string Write(int value = 1) {
        AVSKSetDatai(AVSKFindDataRef("x"), value);
        return TakeCalls();
    }
};

// ---- Values

TEST_F(SharedData, AnyTypeIsServedAndNoOther) {
    for (const int type : {0, 1, 2, 3, 4, 8, 16, 32}) {
        AVSKDataRef ref = nullptr;
        a.Run([&] { ref = Share(Line("x/", type).c_str(), type); });
        EXPECT_EQ(AVSKGetDataRefTypes(ref), type);
        EXPECT_EQ(AVSKGetDatavi(ref, nullptr, 0, 0), type == AVSKDataTypeIntArray);
        EXPECT_EQ(AVSKGetDatavf(ref, nullptr, 0, 0), type == AVSKDataTypeFloatArray);
        EXPECT_EQ(AVSKGetDatab(ref, nullptr, 0, 0), type == AVSKDataTypeData);
        AVSKSetDatai(ref, 7);
        AVSKSetDataf(ref, 7.5F);
        AVSKSetDatad(ref, 7.25);
        a.Run([&] { AVSKUnregisterDataAccessor(ref); });
        AVSKDisablePlugin(1); // it is the host's
        EXPECT_EQ(AVSKGetDatai(ref), type == AVSKDataTypeInt ? 7 : 0);
        EXPECT_EQ(AVSKGetDataf(ref), type == AVSKDataTypeFloat ? 7.5F : 0);
        EXPECT_EQ(AVSKGetDatad(ref), type == AVSKDataTypeDouble ? 7.25 : 0);
        AVSKEnablePlugin(1);
    }
}

TEST_F(SharedData, ATakenNameIsReportedToTheHostAndStaysItsOwners) {
    a.Run([] { Publish("x", [](void *) { return 5; }); });
    b.Run(JournalErrors);
    Says(b, "changed");
    EXPECT_EQ(TakeCalls(), "") << "not to B: the dataref would not be B's either";
    JournalErrors();
    a.Run([] { Publish("z"); });
    AVSKShareData("z", AVSKDataTypeInt, nullptr, nullptr);
    EXPECT_EQ(TakeCalls(), "error: Dataref is already registered by someone else.");
    EXPECT_EQ(Write(), "");
    EXPECT_EQ(AVSKGetDatai(AVSKFindDataRef("x")), 5);
}

TEST_F(SharedData, NothingIsReadOrWrittenOutsideTheValue) {
    const AVSKDataRef ref = Share("x", AVSKDataTypeIntArray);
    int in[] = {1, 2, 3, 4, 5};
    AVSKSetDatavi(ref, in, 3, 2); // grows it
    AVSKSetDatavi(ref, in, 0, 5);
    AVSKSetDatavi(ref, in, 0, 1);
    for (const auto &[offset, max, returned] : {std::tuple(0, 10, 5),
                                                {1, 2, 2},
                                                {3, INT_MAX, 2},
                                                {5, 1, 0},
                                                {7, 10, -2},
                                                {INT_MAX, INT_MAX, 5 - INT_MAX},
                                                {-1, 3, 0},
                                                {2, INT_MIN, INT_MIN},
                                                {0x40000000, 1, 5 - 0x40000000}}) {
        std::vector<int> out(6, 77), expected(6, 77);
        std::copy_n(in + (returned > 0 ? offset : 0), std::max(returned, 0), expected.begin());
        EXPECT_EQ(AVSKGetDatavi(ref, out.data(), offset, max), returned);
        EXPECT_EQ(out, expected);
    }
    int zeros[5] = {};
    for (const auto &[offset, count] :
         {std::pair(-1, 1), {0, -1}, {INT_MAX, 1}, {0x7FFFFFF0, 0x20}, {INT_MIN, INT_MIN}})
        AVSKSetDatavi(ref, zeros, offset, count);
    AVSKSetDatavi(ref, nullptr, 0, 1);
    int out[6] = {};
    EXPECT_EQ(AVSKGetDatavi(ref, out, 0, 6), 5);
    EXPECT_EQ(std::memcmp(in, out, sizeof in), 0);
}

TEST_F(SharedData, ArraysOfFloatsAndBytesGrowByTheirElementsAndShowZerosInGaps) {
    const AVSKDataRef floats = Share("f", AVSKDataTypeFloatArray);
    const AVSKDataRef bytes = Share("b", AVSKDataTypeData);
    float values[7] = {1.5F, 2.5F, 9, 9, 9, 9, 9};
    char text[8] = "xyz####";
    AVSKSetDatavf(floats, values, 3, 2);
    AVSKSetDatab(bytes, text, 3, 3);
    EXPECT_EQ(AVSKGetDatavf(floats, values, 1, 9), 4);
    EXPECT_EQ(std::vector<float>(values, values + 5), (std::vector<float>{0, 0, 1.5F, 2.5F, 9}));
    EXPECT_EQ(AVSKGetDatab(bytes, text, 1, 9), 5);
    EXPECT_EQ(std::string(text, 7), std::string("\0\0xyz##", 7));
}

// ---- Notifications

TEST_F(SharedData, ASubscriptionEndsByItsOwnersValuesAndOneAtATime) {
    void *const refcon = Says(a, "A");
    a.Run([&] { AVSKShareData("x", AVSKDataTypeInt, a.code.notified, refcon); });
    EXPECT_EQ(Unshare(b, refcon), 0);
    EXPECT_EQ(Write(), "A; A");
    EXPECT_EQ(Unshare(a, refcon), 1);
    EXPECT_EQ(Write(), "A");
    a.Run([&, notified = a.code.notified] {
        EXPECT_EQ(AVSKUnshareData(nullptr, 1, notified, refcon) + AVSKUnshareData("x", 2, notified, refcon), 0);
        EXPECT_EQ(AVSKUnshareData("y", 1, notified, refcon) + AVSKUnshareData("x", 1, nullptr, refcon), 0);
        EXPECT_EQ(AVSKShareData(nullptr, 1, notified, refcon) + AVSKShareData("x", 2, notified, refcon), 0);
    });
    EXPECT_EQ(Write(), "A");
    a.Run([&] { AVSKShareData("v", AVSKDataTypeIntArray, a.code.notified, refcon); });
    AVSKSetDatavi(AVSKFindDataRef("v"), nullptr, 0, 0);
    EXPECT_EQ(TakeCalls(), "A") << "a write of nothing is told as well";
}

// The second of three subscribers, the aircraft's, does something.
TEST_F(SharedData, SubscribersMayComeAndGoWhileTheyAreNotified) {
    void *refcons[3] = {};
    const Puppet *const owners[3] = {&a, &air, &b};
    const auto end = [&](int i) { Unshare(*owners[i], refcons[i]); };
    const struct {
        const char *what;
        std::function<void()> act;
        std::string now, next;
    } cases[] = {
        {"itself", [&] { end(1); }, "1; 2; 3", "1; 3"},
        {"next", [&] { end(2); }, "1; 2", "1; 2"},
        {"previous", [&] { end(0); }, "1; 2; 3", "2; 3"},
        {"all", [&] { end(0), end(1), end(2); }, "1; 2", ""},
        {"another", [&] { Says(a, "new"); }, "1; 2; 3", "1; 2; 3; new"},
        {"another, and a write", [&] { Says(a, "new"), AVSKSetDatai(AVSKFindDataRef("x"), 3); },
         "1; 2; 1; 2; 3; new; 3", "1; 2; 3; new"},
        {"disabled", [&] { AVSKDisablePlugin(2); }, "1; 2; disable B", "1; 2"},
        {"unloaded", [] { World::UnloadAircraft(); }, "1; 2; disable air; stop air; 3", "1; 3"},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        bool acted = false;
        for (int i = 0; i < 3; ++i)
            refcons[i] = Subscribe(*owners[i], [&, i] {
                Note(std::to_string(i + 1));
                EXPECT_EQ(AVSKGetMyID(), owners[i]->Id());
                if (i == 1 && !std::exchange(acted, true)) {
                    each.act();
                    air.returned = 0;
                    EXPECT_TRUE(air.IsMapped());
                }
            });
        EXPECT_EQ(Write(), each.now);
        EXPECT_EQ(air.returned, 1) << "the call came back into the plugin";
        EXPECT_EQ(Write(), each.next);
        Restart();
    }
}

} // namespace
