// Libraries, symbols, folders and the two text functions.
#include "AVSKPlatform.h"
#include "World.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include <dlfcn.h>
#include <unistd.h>

namespace {

class Platform : public testing::Test {
  protected:
    World world;
    FakeHost &host = Host();

    void SetUp() override { world.StartQuietly(); }

    Lines Contents(const std::string &folder, const char *pattern) const {
        Lines names;
        AVSKFetchDirectoryContents(world.Path(folder).c_str(), pattern, names);
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(Platform, AMissingFileIsSilentAndADefectiveOneLogged) {
    EXPECT_EQ(AVSKLoadDLL(world.Path("nothing.avp").c_str()), nullptr);
    EXPECT_EQ(host.logPieces, Lines());
    EXPECT_EQ(AVSKLoadDLL(world.InstallDefective("text.avp", "NotALibrary").c_str()), nullptr);
    ASSERT_EQ(host.logPieces.size(), 3U);
    EXPECT_EQ(host.logPieces[0], "dlerror:");
    EXPECT_NE(host.logPieces[1].find("text.avp"), std::string::npos);
    EXPECT_EQ(host.logPieces[2], "\n");
}

TEST_F(Platform, AMissingSymbolIsLoggedOnRequest) {
    void *const library = AVSKLoadDLL(world.InstallDefective("only.avp", "OnlyStart").c_str());
    ASSERT_NE(library, nullptr);
    void *const start = AVSKFindSymbol(library, "AVPluginStart", 1);
    EXPECT_NE(start, nullptr);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "AVPluginStart"), start) << "visible to what is loaded later";
    EXPECT_EQ(AVSKFindSymbol(library, "AVPluginStop", 0), nullptr);
    EXPECT_EQ(AVSKFindSymbol(nullptr, "AVPluginStart", 1), nullptr);
    EXPECT_EQ(host.logPieces, Lines());
    EXPECT_EQ(AVSKFindSymbol(library, "AVPluginStop", 1), nullptr);
    ASSERT_EQ(host.logPieces.size(), 3U);
    EXPECT_EQ(host.logPieces[0], "dlerror:");
    AVSKUnloadDLL(library);
}

TEST_F(Platform, AnEndingMatchesInAnyCase) {
    const struct {
        const char *name;
        const char *pattern;
        int matches;
    } cases[] = {{"PLUGIN.AVP", "*.avp", 1},
                 {"a.avp", ".avp", 1},
                 {"avp", ".avp", 0},
                 {"x", "*", 1},
                 {"", "*", 1},
                 {"", "", 1},
                 {"x", "*.*", 1},
                 {"a.avp.bak", "*.avp", 0},
                 {"a*.avp", "**.avp", 1},
                 {"a.avp", "**.avp", 0},
                 {"\xE9", "\xE9", 1}};
    for (const auto &each : cases)
        EXPECT_EQ(suffix_matches(each.name, each.pattern), each.matches) << each.name << " " << each.pattern;
}

TEST_F(Platform, AFolderIsListedByPattern) {
    for (const char *folder : {"f/sub", "f/my.dir", "f/x.avp"})
        world.MakeFolder(folder);
    for (const char *file : {"f/a.avp", "f/B.AVP", "f/.hidden", "f/file.DIR"})
        std::ofstream(world.Path(file)) << "x";
    EXPECT_EQ(Contents("f", "*.avp"), (Lines{"B.AVP", "a.avp", "x.avp"}));
    EXPECT_EQ(Contents("f", "DIR"), (Lines{"file.DIR", "my.dir", "my.dir", "sub", "x.avp"}));
    EXPECT_EQ(Contents("f", "*.*").size(), 7U);
    EXPECT_EQ(Contents("nowhere", "*.*"), Lines());
    Lines appended = {"first"};
    AVSKFetchDirectoryContents(world.Path("f/sub").c_str(), "*.*", appended);
    EXPECT_EQ(appended, Lines{"first"});
}

TEST_F(Platform, AnEntryThatCannotBeExaminedIsReportedOnStandardOutput) {
    world.MakeFolder("f");
    ASSERT_EQ(symlink("nowhere", world.Path("f/dangling").c_str()), 0);
    testing::internal::CaptureStdout();
    EXPECT_EQ(Contents("f", "DIR"), Lines());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "name dangling, errno 2\n");
}

TEST_F(Platform, ABoundedCopyFitsAndEnds) {
    const struct {
        const char *source;
        int size;
        std::string bytes; // of a buffer of six '#'
    } cases[] = {{"hello", 6, std::string("hello\0", 6)},
                 {"hello", 5, std::string("hell\0#", 6)},
                 {"hi", 6, std::string("hi\0###", 6)},
                 {"hi", 1, std::string("\0#####", 6)},
                 {"hi", 0, "######"}};
    for (const auto &each : cases) {
        char buffer[7] = "######";
        strcpytrunc(buffer, each.source, each.size);
        EXPECT_EQ(std::string(buffer, 6), each.bytes) << each.source << " " << each.size;
    }
}

} // namespace
