// Datarefs: names and owners, typed reads and writes.
#include "World.h"

#include <stdexcept>

namespace {

class DataAccess : public ThreePlugins {
  protected:
    AVSKDataRef PublishAs(const Puppet &owner, const char *name, AVSKGetDatai_f read = nullptr,
                          void *refcon = nullptr) {
        AVSKDataRef ref = nullptr;
        owner.Run([&] { ref = Publish(name, read, refcon); });
        return ref;
    }
};

int Seven(void * /*refcon*/) { return 7; }
int Eight(void * /*refcon*/) { return 8; }

TEST_F(DataAccess, ANameKeepsItsHandleThroughOwnersAndGaps) {
    EXPECT_EQ(AVSKFindDataRef("a/x"), nullptr);
    const AVSKDataRef ref = PublishAs(a, "a/x", Seven);
    ASSERT_NE(ref, nullptr);
    EXPECT_EQ(AVSKFindDataRef("A/x"), nullptr);
    EXPECT_EQ(AVSKIsDataRefGood(ref), 1);
    a.Run([&] { AVSKUnregisterDataAccessor(ref); });
    EXPECT_EQ(AVSKFindDataRef("a/x"), nullptr);
    EXPECT_EQ(AVSKIsDataRefGood(ref), 0);
    EXPECT_EQ(AVSKGetDatai(ref), 0);
    EXPECT_EQ(AVSKGetDataRefTypes(ref), AVSKDataTypeInt) << "what was stored is still told";
    EXPECT_EQ(PublishAs(b, "a/x", Eight), ref);
    EXPECT_EQ(AVSKGetDatai(ref), 8);
    EXPECT_EQ(AVSKFindDataRef(nullptr), nullptr);
    EXPECT_EQ(Publish(nullptr), nullptr);
}

TEST_F(DataAccess, NamesOfTheSameHashAreTwo) {
    PublishAs(a, "a/83368", Seven);
    PublishAs(a, "a/132813", Eight);
    EXPECT_EQ(AVSKGetDatai(AVSKFindDataRef("a/83368")) * 10 + AVSKGetDatai(AVSKFindDataRef("a/132813")), 78);
}

TEST_F(DataAccess, OnlyItsOwnerGivesADatarefUp) {
    const AVSKDataRef ref = PublishAs(a, "a/x");
    b.Run(JournalErrors);
    b.Run([&] { AVSKUnregisterDataAccessor(ref); });
    EXPECT_EQ(Take(), Lines{"error: Dataref is not owned by you - you cannot unregsiter."});
    EXPECT_EQ(AVSKFindDataRef("a/x"), ref);
    char *const inside = reinterpret_cast<char *>(ref) + 4;
    b.Run([&] {
        AVSKUnregisterDataAccessor(nullptr);
        AVSKUnregisterDataAccessor(reinterpret_cast<AVSKDataRef>(inside));
    });
    EXPECT_EQ(Take(), Lines(2, "error: Dataref is illegal and cannot be unregistered."));
}

TEST_F(DataAccess, OnlyARecordsAddressIsGood) {
    char *last = nullptr;
    for (int i = 0; i < 33; ++i) // a second block
        last = reinterpret_cast<char *>(PublishAs(a, Line("a/", i).c_str()));
    char *const first = reinterpret_cast<char *>(AVSKFindDataRef("a/0"));
    const auto size = reinterpret_cast<char *>(AVSKFindDataRef("a/1")) - first;
    char local = 0;
    const auto isGood = [](char *handle) { return AVSKIsDataRefGood(reinterpret_cast<AVSKDataRef>(handle)); };
    for (char *good : {first, last})
        EXPECT_EQ(isGood(good), 1);
    for (char *bad : {static_cast<char *>(nullptr), first + 1, first + size / 2, first - size, last + size, &local})
        EXPECT_EQ(isGood(bad), 0);
}

// ---- Typed access

// A value of each type that journals every access: "who type refcon ...".
AVSKDataRef PublishAll(const char *name, int writable) {
    static char readRefcon = 'r';
    static char writeRefcon = 'w';
    static const auto Say = [](const char *what, void *refcon, const std::string &value) {
        Note(std::to_string(AVSKGetMyID()) + what + *static_cast<char *>(refcon) + value);
    };
    return AVSKRegisterDataAccessor(
        name, 63, writable, [](void *r) { return Say(" i ", r, ""), 1; },
        [](void *r, int v) { Say(" i ", r, std::to_string(v)); }, [](void *r) { return Say(" f ", r, ""), 2.5F; },
        [](void *r, float v) { Say(" f ", r, std::to_string(v)); }, [](void *r) { return Say(" d ", r, ""), 3.25; },
        [](void *r, double v) { Say(" d ", r, std::to_string(v)); },
        [](void *r, int *v, int offset, int max) {
            Say(" vi ", r, "");
            if (v)
                v[0] = 44;
            return offset * 100 + max;
        },
        [](void *r, int *v, int offset, int count) { Say(" vi ", r, std::to_string(v[0] + offset * 100 + count)); },
        [](void *r, float *v, int offset, int max) {
            Say(" vf ", r, "");
            v[0] = 5.5F;
            return offset * 100 + max;
        },
        [](void *r, float *v, int offset, int count) {
            Say(" vf ", r, std::to_string(static_cast<int>(v[0]) + offset * 100 + count));
        },
        [](void *r, void *v, int offset, int max) {
            Say(" b ", r, "");
            *static_cast<char *>(v) = 'B';
            return offset * 100 + max;
        },
        [](void *r, void *v, int offset, int count) {
            Say(" b ", r, *static_cast<char *>(v) + std::to_string(offset * 100 + count));
        },
        &readRefcon, &writeRefcon);
}

// Reads and writes everything once; what came back, joined.
std::string UseAll(AVSKDataRef ref) {
    int ints[2] = {10, 0};
    float floats[2] = {20, 0};
    char bytes[2] = "x";
    AVSKSetDatai(ref, -1);
    AVSKSetDataf(ref, 0.5F);
    AVSKSetDatad(ref, 0.25);
    AVSKSetDatavi(ref, ints, 3, 2);
    AVSKSetDatavf(ref, floats, 3, 2);
    AVSKSetDatab(ref, bytes, 3, 1);
    std::string read = std::to_string(AVSKGetDatai(ref));
    read += " " + std::to_string(AVSKGetDataf(ref));
    read += " " + std::to_string(AVSKGetDatad(ref));
    for (const int result : {AVSKGetDatavi(ref, ints, 1, 2), AVSKGetDatavf(ref, floats, 1, 2),
                             AVSKGetDatab(ref, bytes, 1, 2), AVSKGetDatavi(ref, nullptr, 0, 0)})
        read += " " + std::to_string(result);
    return read + " " + std::to_string(ints[0]) + " " + std::to_string(floats[0]) + " " + bytes;
}

const std::string kValues = "1 2.500000 3.250000 102 102 102 0 44 5.500000 B";
const std::string kNothing = "0 0.000000 0.000000 0 0 0 0 10 20.000000 x";
const Lines kWrites = {"1 i w-1", "1 f w0.500000", "1 d w0.250000", "1 vi w312", "1 vf w322", "1 b wx301"};
const Lines kReads = {"1 i r", "1 f r", "1 d r", "1 vi r", "1 vf r", "1 b r", "1 vi r"};

TEST_F(DataAccess, EachTypeGoesToItsOwnAccessorAsTheOwnerAndNoWriterWithoutPermission) {
    for (const int writable : {1, 0}) {
        AVSKDataRef ref = nullptr;
        a.Run([&] { ref = PublishAll(writable ? "a/all" : "a/read", writable); });
        b.Run([&] {
            EXPECT_EQ(UseAll(ref), kValues);
            EXPECT_EQ(AVSKCanWriteDataRef(ref), writable);
            EXPECT_EQ(AVSKGetMyID(), 2) << "the caller again";
        });
        Lines expected = writable ? kWrites : Lines();
        expected.insert(expected.end(), kReads.begin(), kReads.end());
        EXPECT_EQ(Take(), expected);
    }
}

TEST_F(DataAccess, NobodyIsCalledForAnAbsentOwner) {
    AVSKDataRef ref = nullptr;
    a.Run([&] { ref = PublishAll("a/all", 1); });
    for (const auto &leave : std::initializer_list<std::function<void()>>{
             [] { AVSKDisablePlugin(1); },
             [&] { AVSKEnablePlugin(1), a.Run([&] { AVSKUnregisterDataAccessor(ref); }); },
             [&] { a.Run([] { PublishAll("a/all", 1); }), world.Stop(); }, [&] { ref = nullptr; }}) {
        leave();
        Take();
        EXPECT_EQ(UseAll(ref), kNothing);
        EXPECT_EQ(Take(), Lines());
    }
}

TEST_F(DataAccess, AnAccessorMayReadOnGiveUpItsOwnDatarefOrThrow) {
    static AVSKDataRef inner;
    inner = PublishAs(b, "b/inner", [](void *) { return AVSKGetMyID() * 10; });
    const AVSKDataRef outer = PublishAs(a, "a/outer", [](void *) { return AVSKGetDatai(inner) + AVSKGetMyID(); });
    EXPECT_EQ(AVSKGetDatai(outer), 21);

    static AVSKDataRef once;
    once = PublishAs(a, "a/once", [](void *) { return AVSKUnregisterDataAccessor(once), 5; });
    EXPECT_EQ(AVSKGetDatai(once), 5);
    EXPECT_EQ(AVSKGetDatai(once), 0);

    const AVSKDataRef bad = PublishAs(a, "a/bad", [](void *) -> int { throw std::runtime_error("read"); });
    b.Run([&] {
        EXPECT_THROW(AVSKGetDatai(bad), std::runtime_error);
        EXPECT_EQ(AVSKGetMyID(), 2);
    });
}

} // namespace
