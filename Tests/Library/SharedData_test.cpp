// Shared data: values that are nobody's, and who hears of writes.
#include "World.h"

#include <climits>

namespace {

class SharedData : public ThreePlugins {
  protected:
    static AVSKDataRef Share(const std::string &name, int type) {
        EXPECT_EQ(AVSKShareData(name.c_str(), type, nullptr, nullptr), 1);
        return AVSKFindDataRef(name.c_str());
    }
    // A subscription of a plugin's to the int "x" that notes a line, and its refcon.
    void *Says(const Puppet &owner, const std::string &line) {
        void *const refcon = Keep(NoticePlayer([=] { Note(Line(line, AVSKGetMyID())); }));
        owner.Run([&] { EXPECT_EQ(AVSKShareData("x", AVSKDataTypeInt, owner.code.notified, refcon), 1); });
        return refcon;
    }
    static int Unshare(const Puppet &owner, void *refcon) {
        return owner.Run([&] { return AVSKUnshareData("x", AVSKDataTypeInt, owner.code.notified, refcon); });
    }
    static std::string Write(int value = 1) { return DOES(AVSKSetDatai(AVSKFindDataRef("x"), value)); }
};

// ---- Values

TEST_F(SharedData, AnyTypeIsServedAndNoOther) {
    for (const int type : {0, 1, 2, 3, 4, 8, 16, 32}) {
        const AVSKDataRef ref = a.Run([&] { return Share(Line("x/", type), type); });
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
    a.Run([] { Publish("x", [](void *) { return 5; }), Publish("z"); });
    b.Run(JournalErrors);
    EXPECT_EQ(DOES(Says(b, "changed"), 0), "0") << "not to B: the dataref would not be B's either";
    JournalErrors();
    EXPECT_EQ(DOES(AVSKShareData("z", 1, nullptr, nullptr)),
              "1: error: Dataref is already registered by someone else.");
    EXPECT_EQ(Write(), "");
    EXPECT_EQ(AVSKGetDatai(AVSKFindDataRef("x")), 5);
}

TEST_F(SharedData, NothingIsReadOrWrittenOutsideTheValue) {
    const AVSKDataRef ref = Share("x", AVSKDataTypeIntArray);
    int in[] = {1, 2, 3, 4, 5};
    AVSKSetDatavi(ref, in, 3, 2); // grows it
    AVSKSetDatavi(ref, in, 0, 5);
    AVSKSetDatavi(ref, in, 0, 1);
    int zeros[5] = {};
    for (const auto &[offset, count] :
         {std::pair(-1, 1), {0, -1}, {INT_MAX, 1}, {0x7FFFFFF0, 0x20}, {INT_MIN, INT_MIN}})
        AVSKSetDatavi(ref, zeros, offset, count);
    AVSKSetDatavi(ref, nullptr, 0, 1);
    constexpr int far = 0x40000000;
    for (const auto &[offset, max, returned] : Table<int, int, int>{{0, 10, 5},
                                                                    {1, 2, 2},
                                                                    {3, INT_MAX, 2},
                                                                    {5, 1, 0},
                                                                    {7, 10, -2},
                                                                    {INT_MAX, INT_MAX, 5 - INT_MAX},
                                                                    {-1, 3, 0},
                                                                    {2, INT_MIN, INT_MIN},
                                                                    {far, 1, 5 - far}}) {
        std::vector<int> out(6, 77), expected(6, 77);
        std::copy_n(in + (returned > 0 ? offset : 0), std::max(returned, 0), expected.begin());
        EXPECT_EQ(AVSKGetDatavi(ref, out.data(), offset, max), returned);
        EXPECT_EQ(out, expected);
    }
}

TEST_F(SharedData, ArraysOfFloatsAndBytesGrowByTheirElementsAndShowZerosInGaps) {
    const AVSKDataRef floats = Share("f", AVSKDataTypeFloatArray), bytes = Share("b", AVSKDataTypeData);
    std::vector<float> values = {1.5F, 2.5F, 9, 9, 9, 9, 9};
    char text[8] = "xyz####";
    AVSKSetDatavf(floats, values.data(), 3, 2);
    AVSKSetDatab(bytes, text, 3, 3);
    EXPECT_EQ(AVSKGetDatavf(floats, values.data(), 1, 9), 4);
    EXPECT_EQ(values, (std::vector<float>{0, 0, 1.5F, 2.5F, 9, 9, 9}));
    EXPECT_EQ(AVSKGetDatab(bytes, text, 1, 9), 5);
    EXPECT_EQ(std::string(text, 7), std::string("\0\0xyz##", 7));
}

// ---- Notifications

TEST_F(SharedData, ASubscriptionEndsByItsOwnersValuesAndOneAtATime) {
    void *const refcon = Says(a, "A");
    const AVSKDataChanged_f notified = a.code.notified;
    a.Run([&] { AVSKShareData("x", AVSKDataTypeInt, notified, refcon); });
    EXPECT_EQ(Unshare(b, refcon), 0);
    EXPECT_EQ(b.Run([&] { return AVSKUnshareData("x", AVSKDataTypeInt, notified, refcon); }), 0);
    EXPECT_EQ(Unshare(a, this), 0);
    EXPECT_EQ(Write(), "A1; A1");
    EXPECT_EQ(Unshare(a, refcon), 1);
    EXPECT_EQ(Write(), "A1");
    a.Run([&] {
        for (const auto &[name, type, callback] : Table<const char *, int, AVSKDataChanged_f>{
                 {nullptr, 1, notified}, {"x", 2, notified}, {"y", 1, notified}, {"x", 1, nullptr}})
            EXPECT_EQ(AVSKUnshareData(name, type, callback, refcon), 0);
        EXPECT_EQ(AVSKShareData(nullptr, 1, notified, refcon) + AVSKShareData("x", 2, notified, refcon), 0);
        AVSKShareData("v", AVSKDataTypeIntArray, notified, refcon);
    });
    EXPECT_EQ(Write(), "A1");
    EXPECT_EQ(DOES(AVSKSetDatavi(AVSKFindDataRef("v"), nullptr, 0, 0)), "A1") << "a write of nothing is told as well";
}

} // namespace
