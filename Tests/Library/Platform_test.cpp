// Libraries, symbols, folders and the two text functions, and what only the inside of the library shows.
#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKLoader.h"
#include "AVSKPlatform.h"
#include "World.h"

#include <dlfcn.h>
#include <unistd.h>

AVSKData_t *DataIsValid(AVSKDataRef handle, std::map<std::string, AVSKData_t *>::iterator *outPosition);
const char *DebugDataRefName(AVSKDataRef handle);
extern int gLastCallNumber;

namespace {

class Platform : public InWorld {
  protected:
    void SetUp() override { world.StartQuietly(); }

    Lines Contents(const std::string &folder, const char *pattern) const {
        Lines names;
        AVSKFetchDirectoryContents(world.Path(folder).c_str(), pattern, names);
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(Platform, AFolderIsListedByPattern) {
    for (const char *folder : {"f/sub", "f/my.dir", "f/x.avp"})
        world.MakeFolder(folder);
    for (const char *file : {"f/a.avp", "f/B.AVP", "f/.hidden", "f/file.DIR"})
        std::ofstream(world.Path(file)) << "x";
    EXPECT_EQ(Contents("f", "*.avp"), (Lines{"B.AVP", "a.avp", "x.avp"}));
    ASSERT_EQ(symlink("nowhere", world.Path("f/dangling").c_str()), 0);
    testing::internal::CaptureStdout();
    EXPECT_EQ(Contents("f", "DIR"), (Lines{"file.DIR", "my.dir", "my.dir", "sub", "x.avp"}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "name dangling, errno 2\n");
    EXPECT_EQ(Contents("nowhere", "*.*"), Lines());
}

TEST_F(Platform, TextsAreMatchedCutAndStripped) {
    const char *const texts[] = {"a.avp", "A.AvP", ".avp", "avp", "a.avx", "a.avp.x", ""};
    const std::pair<const char *, const char *> patterns[] = {
        {"*.avp", "1110000"}, {"*.*", "1111111"}, {"VP", "1111000"}};
    for (const auto &[pattern, matches] : patterns)
        for (std::size_t i = 0; i < std::size(texts); ++i)
            EXPECT_EQ(suffix_matches(texts[i], pattern), matches[i] - '0') << texts[i] << " " << pattern;
    for (const auto &[size, expected] :
         {std::pair(-1, "#####"), {0, "#####"}, {1, "\0####"}, {3, "te\0##"}, {9, "text\0"}}) {
        char buffer[6] = "#####";
        strcpytrunc(buffer, "text", size);
        EXPECT_EQ(std::string(buffer, 5), std::string(expected, 5)) << size;
    }
    for (const auto &[path, rest] : {std::pair("/plugins/x/plugins/B.avp", "B.avp"), {"/a/plugins", ""}, {"/D", "/D"}})
        EXPECT_STREQ(StripPluginsFolder(path), rest);
}

// A symbol at address zero: the lookup succeeds and dlerror() reports nothing.
asm(".globl AvskTestNothing\n.set AvskTestNothing, 0");

TEST_F(Platform, AMissingSymbolIsLoggedIfWanted) {
    void *const program = dlopen(nullptr, RTLD_NOW);
    AVSKFindSymbol(nullptr, "x", 1);
    AVSKFindSymbol(program, "no such symbol", 0);
    EXPECT_EQ(AVSKFindSymbol(program, "AvskTestNothing", 1), nullptr);
    EXPECT_EQ(host.TakeLog(), "dlerror:\n");
    dlclose(program);
}

TEST_F(Platform, WrongPluginsAndDatarefsHaveLabels) {
    for (const auto &[id, label] : {std::pair(-2, "[Bad plugin ID low]"), {1, "[Bad plugin ID high]"}}) {
        AVSKSetDispatchedPlugin(id);
        EXPECT_STREQ(DebugCurrentPluginName(), label);
    }
    AVSKSetDispatchedPlugin(AVSK_PLUGIN_AERIVO);
    const AVSKDataRef ref = Publish("a/x");
    std::map<std::string, AVSKData_t *>::iterator position;
    EXPECT_TRUE(DataIsValid(ref, &position) == ref && position->second == ref);
    EXPECT_STREQ(DebugDataRefName(ref), "a/x");
    EXPECT_STREQ(DebugDataRefName(nullptr), "(null dataref)");
    EXPECT_STREQ(DebugDataRefName(reinterpret_cast<AVSKDataRef>(&position)), "(invalid dataref)");
}

// Pass counts above 2^24 cannot be represented exactly by a float.
TEST_F(Platform, PassCountsCompareExactlyBeyondTheIntegersOfAFloat) {
    gLastCallNumber = (1 << 24) + 1;
    AVSKRegisterFlightLoopCallback([](float, float, int, void *) { return Note("called"), -3.0F; }, -3, nullptr);
    for (const bool called : {false, false, true, false, false, true})
        EXPECT_EQ(DOES(World::Pass(1)), called ? "1: called" : "1");
}

TEST(Print, IsFormattedIntoTheLogOnceThereIsOne) {
    AVSK_dprintf("lost");
    World world;
    world.StartQuietly();
    EXPECT_EQ(AVSK_dprintf("%d %s", 2, std::string(9000, 'x').c_str()), 0);
    EXPECT_EQ(Host().TakeLog(), "2 " + std::string(8189, 'x'));
}

} // namespace
