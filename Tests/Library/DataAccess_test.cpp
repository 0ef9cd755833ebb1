// Datarefs: names and owners, typed reads and writes.
#include "World.h"

namespace {

class DataAccess : public ThreePlugins {
  protected:
    static AVSKDataRef PublishAs(const Puppet &owner, const std::string &name, AVSKGetDatai_f read = nullptr) {
        return owner.Run([&] { return Publish(name.c_str(), read); });
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
    EXPECT_EQ(PublishAs(a, "a/x", Seven), ref) << "taken: B's, unchanged";
    EXPECT_EQ(AVSKGetDatai(ref), 8);
    EXPECT_TRUE(!AVSKFindDataRef(nullptr) && !Publish(nullptr));
    EXPECT_TRUE(!AVSKCanWriteDataRef(nullptr) && !AVSKGetDataRefTypes(nullptr));
}

TEST_F(DataAccess, NamesOfTheSameHashAreTwo) {
    PublishAs(a, "a/83368", Seven);
    PublishAs(a, "a/132813", Eight);
    EXPECT_EQ(AVSKGetDatai(AVSKFindDataRef("a/83368")) * 10 + AVSKGetDatai(AVSKFindDataRef("a/132813")), 78);
}

TEST_F(DataAccess, OnlyItsOwnerGivesADatarefUp) {
    const AVSKDataRef ref = PublishAs(a, "a/x");
    b.Run(JournalErrors);
    EXPECT_EQ(DOES_AS(b, AVSKUnregisterDataAccessor(ref)),
              "error: Dataref is not owned by you - you cannot unregsiter.");
    EXPECT_EQ(AVSKFindDataRef("a/x"), ref);
    for (const AVSKDataRef bad : {AVSKDataRef(), reinterpret_cast<AVSKDataRef>(reinterpret_cast<char *>(ref) + 4)})
        EXPECT_EQ(DOES_AS(b, AVSKUnregisterDataAccessor(bad)), "error: Dataref is illegal and cannot be unregistered.");
    const AVSKDataRef orphan = PublishAs(air, "air/x");
    air.Run([&] { World::UnloadAircraft(), AVSKUnregisterDataAccessor(orphan); });
    EXPECT_EQ(AVSKIsDataRefGood(orphan), 0);
}

TEST_F(DataAccess, OnlyARecordsAddressIsGood) {
    std::vector<char *> handles; // enough to fill more than two blocks
    for (int i = 0; i < 100; ++i)
        handles.push_back(reinterpret_cast<char *>(PublishAs(a, Line("a/", i))));
    const auto isGood = [](char *handle) { return AVSKIsDataRefGood(reinterpret_cast<AVSKDataRef>(handle)); };
    for (char *handle : handles)
        EXPECT_EQ(isGood(handle), 1);
    std::sort(handles.begin(), handles.end());
    for (std::size_t i = 32; i < handles.size(); ++i) // a page holds 32 records
        EXPECT_NE(reinterpret_cast<std::uintptr_t>(handles[i]) >> 12,
                  reinterpret_cast<std::uintptr_t>(handles[i - 32]) >> 12);
    const auto size = handles[1] - handles[0];
    for (char *bad : {static_cast<char *>(nullptr), handles[0] + 1, handles[0] + size / 2, handles[0] - size,
                      handles.back() + size, reinterpret_cast<char *>(handles.data())})
        EXPECT_EQ(isGood(bad), 0);
    a.Run(JournalErrors);
    for (char *handle : handles)
        if (char *next = handle + size; !std::binary_search(handles.begin(), handles.end(), next)) {
            EXPECT_EQ(DOES_AS(a, AVSKUnregisterDataAccessor(reinterpret_cast<AVSKDataRef>(next))),
                      "error: Dataref is illegal and cannot be unregistered.");
        }
    world.Stop();
    for (char *handle : handles)
        EXPECT_EQ(isGood(handle), 0) << "all go with their plugin";
}

// ---- Typed access

// Accessors of every type that journal each access as "caller type and direction, value".
void Say(const char *what, void *refcon, const std::string &value = "") {
    Note(Line(AVSKGetMyID(), what, static_cast<char *>(refcon), value));
}
template <class T>
int ReadArray(void *refcon, T *values, int offset, int max) {
    Say(" array ", refcon, std::to_string(sizeof(T)));
    if (values)
        *values = 44;
    return offset * 100 + max;
}
template <class T>
void WriteArray(void *refcon, T *values, int offset, int count) {
    Say(" array ", refcon, Line(sizeof(T), " ", *values + static_cast<T>(offset * 100 + count)));
}

AVSKDataRef PublishAll(const char *name, int writable) {
    static char readRefcon[] = "r", writeRefcon[] = "w";
    return AVSKRegisterDataAccessor(
        name, 63, writable, [](void *r) { return Say(" i ", r), 1; }, [](void *r, int v) { Say(" i ", r, Line(v)); },
        [](void *r) { return Say(" f ", r), 2.5F; }, [](void *r, float v) { Say(" f ", r, Line(v)); },
        [](void *r) { return Say(" d ", r), 3.25; }, [](void *r, double v) { Say(" d ", r, Line(v)); }, ReadArray<int>,
        WriteArray<int>, ReadArray<float>, WriteArray<float>,
        [](void *r, void *v, int offset, int max) { return ReadArray(r, static_cast<char *>(v), offset, max); },
        [](void *r, void *v, int offset, int count) { WriteArray(r, static_cast<char *>(v), offset, count); },
        readRefcon, writeRefcon);
}

// Writes and reads the dataref once as each type; returns the joined results.
std::string UseAll(AVSKDataRef ref) {
    int ints[2] = {10, 0};
    float floats[2] = {20.5F, 0};
    char bytes[2] = "\1";
    AVSKSetDatai(ref, -1);
    AVSKSetDataf(ref, 0.5F);
    AVSKSetDatad(ref, 0.25);
    AVSKSetDatavi(ref, ints, 3, 2);
    AVSKSetDatavf(ref, floats, 3, 2);
    AVSKSetDatab(ref, bytes, 0, 'A');
    std::string read = Line(AVSKGetDatai(ref), " ");
    read += Line(AVSKGetDataf(ref), " ");
    read += Line(AVSKGetDatad(ref));
    for (const int result : {AVSKGetDatavi(ref, ints, 1, 2), AVSKGetDatavf(ref, floats, 1, 3),
                             AVSKGetDatab(ref, bytes, 1, 4), AVSKGetDatavi(ref, nullptr, 0, 0)})
        read += Line(" ", result);
    return Line(read, " ", ints[0], " ", floats[0], " ", int(bytes[0]));
}

TEST_F(DataAccess, EachTypeGoesToItsOwnAccessorAsTheOwnerAndNoWriterWithoutPermission) {
    const std::string writes = "1 i w-1; 1 f w0.5; 1 d w0.25; 1 array w4 312; 1 array w4 322.5; 1 array w1 66; ";
    for (const int writable : {1, 0}) {
        const AVSKDataRef ref = a.Run([&] { return PublishAll(writable ? "a/all" : "a/read", writable); });
        EXPECT_EQ(DOES_AS(b, UseAll(ref)), "1 2.5 3.25 102 103 104 0 44 44 44: " + (writable ? writes : "") +
                                               "1 i r; 1 f r; 1 d r; 1 array r4; 1 array r4; 1 array r1; 1 array r4");
        EXPECT_EQ(AVSKCanWriteDataRef(ref), writable);
        EXPECT_EQ(AVSKGetMyID(), 0) << "the caller again";
    }
}

TEST_F(DataAccess, NobodyIsCalledForAnAbsentOwner) {
    AVSKDataRef ref = a.Run([] { return PublishAll("a/all", 1); });
    for (const auto &leave : std::initializer_list<std::function<void()>>{
             [] { AVSKDisablePlugin(1); },
             [&] { AVSKEnablePlugin(1), a.Run([&] { AVSKUnregisterDataAccessor(ref); }); },
             [&] { a.Run([] { PublishAll("a/all", 1); }), world.Stop(); }, [&] { ref = nullptr; }}) {
        leave();
        EXPECT_EQ(DOES(UseAll(ref)), "0 0 0 0 0 0 0 10 20.5 1");
    }
}

} // namespace
