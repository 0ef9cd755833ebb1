// Shared data: values that are nobody's, who hears of writes, and what a
// notification survives.
#include "ThreePlugins.h"

#include "AVSK/AVSKHost.h"

#include <climits>
#include <cstring>
#include <numeric>
#include <stdexcept>

namespace {

class SharedData : public ThreePlugins<NoticePlayer> {
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
    for (const int type : {0, 1, 2, 3, 4, 8, 16, 32, 64}) {
        SCOPED_TRACE(type);
        AVSKDataRef ref = nullptr;
        a.Run([&] { ref = Share(("x/" + std::to_string(type)).c_str(), type); });
        EXPECT_EQ(AVSKIsDataRefGood(ref), 1);
        EXPECT_EQ(AVSKCanWriteDataRef(ref), 1);
        EXPECT_EQ(AVSKGetDataRefTypes(ref), type);
        EXPECT_EQ(AVSKGetDatavi(ref, nullptr, 0, 0), type == AVSKDataTypeIntArray);
        EXPECT_EQ(AVSKGetDatavf(ref, nullptr, 0, 0), type == AVSKDataTypeFloatArray);
        EXPECT_EQ(AVSKGetDatab(ref, nullptr, 0, 0), type == AVSKDataTypeData);
        AVSKSetDatai(ref, 7);
        AVSKSetDataf(ref, 7.5F);
        AVSKSetDatad(ref, 7.25);
        EXPECT_EQ(AVSKGetDatai(ref), type == AVSKDataTypeInt ? 7 : 0);
        EXPECT_EQ(AVSKGetDataf(ref), type == AVSKDataTypeFloat ? 7.5F : 0);
        EXPECT_EQ(AVSKGetDatad(ref), type == AVSKDataTypeDouble ? 7.25 : 0);
        a.Run([&] { AVSKUnregisterDataAccessor(ref); });
        AVSKDisablePlugin(1);
        EXPECT_EQ(AVSKIsDataRefGood(ref), 1) << "it is the host's";
        EXPECT_EQ(AVSKGetDatai(ref), type == AVSKDataTypeInt ? 7 : 0);
        AVSKEnablePlugin(1);
    }
}

TEST_F(SharedData, OneNameHasOneType) {
    Share("x", AVSKDataTypeInt);
    bool called = false;
    const NoticePlayer player = [&] { called = true; };
    void *const refcon = const_cast<NoticePlayer *>(&player);
    a.Run([&] { EXPECT_EQ(AVSKShareData("x", AVSKDataTypeFloat, a.code.notified, refcon), 0); });
    EXPECT_EQ(AVSKShareData(nullptr, AVSKDataTypeInt, nullptr, nullptr), 0);
    Write();
    EXPECT_FALSE(called);
    EXPECT_EQ(Unshare(a, refcon), 0);
}

TEST_F(SharedData, ATakenNameIsReportedToTheHostAndStaysItsOwners) {
    const IntPlayer answer = [] { return 5; };
    a.Run([&] { Publish("x", a.code.readInt, const_cast<IntPlayer *>(&answer)); });
    b.Run(JournalErrors);
    Says(b, "changed");
    EXPECT_EQ(TakeCalls(), "") << "not to B: the dataref would not be B's either";
    JournalErrors();
    a.Run([] { Publish("z"); });
    b.Run([] { EXPECT_EQ(AVSKShareData("z", AVSKDataTypeInt, nullptr, nullptr), 1); });
    EXPECT_EQ(TakeCalls(), "error: Dataref is already registered by someone else.");
    EXPECT_EQ(Write(), "");
    EXPECT_EQ(AVSKGetDatai(AVSKFindDataRef("x")), 5);
}

// Calls an array's accessors for any of the three element types.
struct Elements {
    int type;
    int size;
    int (*get)(AVSKDataRef ref, void *values, int offset, int max);
    void (*set)(AVSKDataRef ref, void *values, int offset, int count);
};
const Elements kElements[] = {
    {AVSKDataTypeIntArray, 4, [](auto ref, void *v, int o, int n) { return AVSKGetDatavi(ref, (int *)v, o, n); },
     [](auto ref, void *v, int o, int n) { AVSKSetDatavi(ref, static_cast<int *>(v), o, n); }},
    {AVSKDataTypeFloatArray, 4, [](auto ref, void *v, int o, int n) { return AVSKGetDatavf(ref, (float *)v, o, n); },
     [](auto ref, void *v, int o, int n) { AVSKSetDatavf(ref, static_cast<float *>(v), o, n); }},
    {AVSKDataTypeData, 1, [](auto ref, void *v, int o, int n) { return AVSKGetDatab(ref, v, o, n); },
     [](auto ref, void *v, int o, int n) { AVSKSetDatab(ref, v, o, n); }},
};

TEST_F(SharedData, ArraysGrowToWhatIsWrittenAndNeverShrink) {
    for (const Elements &each : kElements) {
        SCOPED_TRACE(each.type);
        const AVSKDataRef ref = Share(("x/" + std::to_string(each.type)).c_str(), each.type);
        const auto count = [&] { return each.get(ref, nullptr, 3, 1); };
        unsigned char in[12] = {1, 0, 0xA0, 0x7F, 3, 4, 5, 6, 7, 8, 9, 10}; // begins as a signalling NaN
        each.set(ref, in, 2, 3);
        EXPECT_EQ(count(), 5);
        each.set(ref, in, 0, 1);
        EXPECT_EQ(count(), 5);
        each.set(ref, nullptr, 7, 0);
        EXPECT_EQ(count(), 7) << "an empty write grows it as well";
        unsigned char out[12] = {};
        EXPECT_EQ(each.get(ref, out, 2, 3), 3);
        EXPECT_EQ(std::memcmp(in, out, static_cast<std::size_t>(3 * each.size)), 0);
    }
}

TEST_F(SharedData, NothingIsReadOrWrittenOutsideTheValue) {
    const struct {
        int offset, max, returned;
    } reads[] = {{0, 10, 5}, {0, INT_MAX, 5}, {3, 10, 2}, {4, 1, 1},  {5, 1, 0},       {INT_MAX, INT_MAX, 0},
                 {-1, 3, 0}, {INT_MIN, 1, 0}, {0, 0, 0},  {0, -1, 0}, {2, INT_MIN, 0}, {0x40000000, 1, 0}};
    const struct {
        int offset, count;
    } writes[] = {{-1, 1}, {INT_MIN, 1}, {0, -1}, {INT_MAX, 1}, {INT_MAX, -1}, {0x7FFFFFF0, 0x20}, {INT_MIN, INT_MIN}};
    for (const Elements &each : kElements) {
        const AVSKDataRef ref = Share(("x/" + std::to_string(each.type)).c_str(), each.type);
        unsigned char in[20];
        std::iota(in, in + sizeof in, 1);
        each.set(ref, in, 0, 5);
        const auto size = [&](int n) { return static_cast<std::size_t>(n * each.size); };
        for (const auto &read : reads) {
            SCOPED_TRACE(testing::Message() << each.type << ": " << read.offset << ", " << read.max);
            unsigned char out[24], expected[24];
            std::memset(out, 0xEE, sizeof out);
            std::memset(expected, 0xEE, sizeof expected);
            if (read.returned > 0)
                std::memcpy(expected, in + size(read.offset), size(read.returned));
            EXPECT_EQ(each.get(ref, out, read.offset, read.max), read.returned);
            EXPECT_EQ(std::memcmp(out, expected, sizeof out), 0);
        }
        for (const auto &write : writes) {
            SCOPED_TRACE(testing::Message() << each.type << ": " << write.offset << ", " << write.count);
            unsigned char zeros[20] = {};
            unsigned char out[20] = {};
            each.set(ref, zeros, write.offset, write.count);
            EXPECT_EQ(each.get(ref, nullptr, 0, 0), 5);
            EXPECT_EQ(each.get(ref, out, 0, 5), 5);
            EXPECT_EQ(std::memcmp(in, out, size(5)), 0);
        }
    }
}

TEST_F(SharedData, AValueOutlivesEverySharer) {
    air.Run([] { EXPECT_EQ(AVSKShareData("y", AVSKDataTypeInt, nullptr, nullptr), 1); });
    Says(air, "air's");
    Says(a, "A's");
    EXPECT_EQ(Write(4), "air's; A's");
    World::UnloadAircraft();
    TakeCalls();
    EXPECT_EQ(Write(5), "A's");
    const AVSKDataRef ref = AVSKFindDataRef("y");
    AVSKSetDatai(ref, 6);
    EXPECT_EQ(AVSKGetDatai(ref), 6);
    EXPECT_EQ(AVSKIsDataRefGood(ref), 1);
}

// ---- Notifications

TEST_F(SharedData, EverySubscriberHearsEveryWriteAsItself) {
    const auto id = [] {
        Note(std::to_string(AVSKGetMyID()) + " " + std::to_string(AVSKGetDatai(AVSKFindDataRef("x"))));
    };
    for (const Puppet *owner : {&b, &a, &b})
        Subscribe(*owner, id);
    EXPECT_EQ(Write(7), "2 7; 1 7; 2 7");
    a.Run([] { EXPECT_EQ(Write(7), "2 7; 1 7; 2 7") << "by the writer, and of no change"; });
    AVSKDisablePlugin(2);
    TakeCalls();
    EXPECT_EQ(Write(8), "1 8");
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(SharedData, ASubscriptionEndsByItsOwnersValuesAndOneAtATime) {
    void *const first = Says(a, "first");
    Says(a, "second");
    a.Run([&] { EXPECT_EQ(AVSKShareData("x", AVSKDataTypeInt, a.code.notified, first), 1); });
    EXPECT_EQ(Unshare(b, first), 0);
    EXPECT_EQ(Unshare(a, nullptr), 0);
    a.Run([&] {
        EXPECT_EQ(AVSKUnshareData("x", AVSKDataTypeFloat, a.code.notified, first), 0);
        EXPECT_EQ(AVSKUnshareData("x", AVSKDataTypeInt, b.code.notified, first), 0);
        EXPECT_EQ(AVSKUnshareData("x", AVSKDataTypeInt, nullptr, first), 0);
        EXPECT_EQ(AVSKUnshareData("y", AVSKDataTypeInt, a.code.notified, first), 0);
        EXPECT_EQ(AVSKUnshareData(nullptr, AVSKDataTypeInt, a.code.notified, first), 0);
    });
    EXPECT_EQ(Write(), "first; second; first");
    EXPECT_EQ(Unshare(a, first), 1);
    EXPECT_EQ(Write(), "second; first");
    EXPECT_EQ(Unshare(a, first), 1);
    EXPECT_EQ(Unshare(a, first), 0);
    EXPECT_EQ(Write(), "second");
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
        {"all, and a write", [&] { end(0), end(1), end(2), AVSKSetDatai(AVSKFindDataRef("x"), 3); }, "1; 2", ""},
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

TEST_F(SharedData, AnExceptionOfASubscriberLeavesEverythingInOrder) {
    void *refcon = nullptr;
    refcon = Subscribe(a, [&] {
        Unshare(a, refcon);
        throw std::runtime_error("notified");
    });
    Says(b, "B's");
    EXPECT_THROW(Write(2), std::runtime_error);
    EXPECT_EQ(AVSKGetMyID(), 0);
    EXPECT_EQ(AVSKGetDatai(AVSKFindDataRef("x")), 2);
    EXPECT_EQ(Write(3), "B's");
}

} // namespace
