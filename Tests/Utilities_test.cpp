// The log, versions and data files, and the calls that only forward.
#include "World.h"

#include "AVSK/AVSKThreadLocal.h"
#include "AVSK/AVSKUtilities.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>

namespace {

class Utilities : public testing::Test {
  protected:
    Utilities() { world.StartQuietly(); }

    World world;
    FakeHost &host = Host();
};

TEST_F(Utilities, ForwardedCallsReachTheHostUnchanged) {
    host.on.getLanguage = [] { return 3; };
    host.on.findSymbol = [](const char *) { return static_cast<void *>(&Host()); };
    AVSKSpeakString("speak");
    AVSKReloadScenery();
    EXPECT_EQ(AVSKGetLanguage(), 3);
    EXPECT_EQ(AVSKFindSymbol("symbol"), &Host());
    AVSKDebugString("debug");
    EXPECT_EQ(Take(), (Lines{"speakString(\"speak\")", "reloadScenery()", "getLanguage()", "findSymbol(\"symbol\")"}));
    EXPECT_EQ(host.logPieces, Lines{"debug"});
}

TEST_F(Utilities, DataFilesAreCheckedBeforeTheHostIsAsked) {
    host.on.loadDataFile = [](int, const char *) { return 11; };
    host.on.saveDataFile = [](int, const char *) { return 22; };
    const struct {
        int (*call)(int, const char *);
        int type;
        const char *path;
        int result;
        Lines journal;
    } cases[] = {
        {AVSKLoadDataFile, 1, "p", 11, {"loadDataFile(1, \"p\")"}},
        {AVSKLoadDataFile, 2, "p", 11, {"loadDataFile(2, \"p\")"}},
        {AVSKLoadDataFile, 0, "p", 0, {"error: Illegal file type passed to AVSKLoadDataFile."}},
        {AVSKLoadDataFile, 3, nullptr, 0, {"error: Illegal file type passed to AVSKLoadDataFile."}},
        {AVSKSaveDataFile, 1, "p", 22, {"saveDataFile(1, \"p\")"}},
        {AVSKSaveDataFile, 2, "p", 22, {"saveDataFile(2, \"p\")"}},
        {AVSKSaveDataFile, 0, "p", 0, {"error: Illegal file type passed to AVSKSaveDataFile."}},
        {AVSKSaveDataFile, 3, "p", 0, {"error: Illegal file type passed to AVSKSaveDataFile."}},
        {AVSKSaveDataFile, 7, nullptr, 0, {"error: Null file path passed to AVSKSaveDataFile."}},
    };
    JournalErrors();
    for (const auto &each : cases) {
        EXPECT_EQ(each.call(each.type, each.path), each.result);
        EXPECT_EQ(Take(), each.journal);
    }
}

TEST_F(Utilities, VersionsAreWrittenWhereAskedFor) {
    host.on.getVersions = [](int *version, int *value) {
        *version = 1040;
        *value = 7;
    };
    int hostVersion = 0;
    int libVersion = 0;
    int hostValue = 0;
    AVSKGetVersions(nullptr, &libVersion, nullptr);
    EXPECT_EQ(libVersion, 210);
    AVSKGetVersions(&hostVersion, nullptr, &hostValue);
    EXPECT_EQ(hostVersion, 1040);
    EXPECT_EQ(hostValue, 7);
    EXPECT_EQ(Take(), (Lines{"getVersions(pointer, pointer)", "getVersions(pointer, pointer)"}));
}

TEST(ThreadLocal, EachThreadHasItsOwnValue) {
    const unsigned int key = AVSKAllocTLS();
    const unsigned int other = AVSKAllocTLS();
    EXPECT_NE(key, other);
    EXPECT_EQ(AVSKGetTLS(key), nullptr);
    int mine = 0;
    EXPECT_EQ(AVSKSetTLS(key, &mine), 0);
    std::thread([key] {
        EXPECT_EQ(AVSKGetTLS(key), nullptr);
        int theirs = 0;
        AVSKSetTLS(key, &theirs);
        EXPECT_EQ(AVSKGetTLS(key), &theirs);
    }).join();
    EXPECT_EQ(AVSKGetTLS(key), &mine);
    EXPECT_EQ(AVSKGetTLS(other), nullptr);
    EXPECT_EQ(AVSKSetTLS(0xFFFFFFFF, &mine), EINVAL);
    EXPECT_EQ(AVSKGetTLS(0xFFFFFFFF), nullptr);
}

} // namespace
