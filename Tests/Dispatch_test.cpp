// The dispatch guard, and the core's functions that only modules call.
#include "AVSKDispatch.h"
#include "AVSKErrors.h"
#include "AVSKFeatures.h"
#include "World.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

class Dispatch : public testing::Test {
  protected:
    World world;
    Puppet &a = world.Install("A");
    FakeHost &host = Host();
};

TEST_F(Dispatch, TheGuardSetsTheIDAndTellsWhetherToCall) {
    {
        const StDispatchCallback host0(0);
        EXPECT_TRUE(host0()) << "the registry is empty";
        const StDispatchCallback nobody(1);
        EXPECT_FALSE(nobody());
    }
    world.StartQuietly();
    AVSKDisablePlugin(1);
    const struct {
        int id;
        bool allowed;
    } cases[] = {{0, true}, {1, false}, {2, false}, {-1, false}};
    for (const auto &each : cases) {
        const StDispatchCallback guard(each.id);
        EXPECT_EQ(guard(), each.allowed) << each.id;
        EXPECT_EQ(AVSKGetDispatchedPlugin(), each.id);
    }
    EXPECT_EQ(AVSKGetDispatchedPlugin(), 0);
}

TEST_F(Dispatch, GuardsNestAndEndWithAnException) {
    world.StartQuietly();
    AVSKSetDispatchedPlugin(1);
    try {
        const StDispatchCallback outer(0);
        const StDispatchCallback inner(-1);
        throw std::runtime_error("inside");
    } catch (const std::runtime_error &) {
    }
    EXPECT_EQ(AVSKGetDispatchedPlugin(), 1);
    AVSKSetDispatchedPlugin(0);
}

TEST_F(Dispatch, WhoeverIsDispatchedHasALabel) {
    world.StartQuietly();
    const struct {
        int id;
        const char *label;
    } cases[] = {{-1, "[NO_PLUGIN_ID]"},      {0, "[AVSK_PLUGIN_AERIVO]"}, {1, "Name of A"},
                 {-2, "[Bad plugin ID low]"}, {2, "[Bad plugin ID high]"}, {99, "[Bad plugin ID high]"}};
    for (const auto &each : cases) {
        const StDispatchCallback guard(each.id);
        EXPECT_STREQ(DebugCurrentPluginName(), each.label);
        EXPECT_STREQ(AVSKDebugGetCurrentPluginName(), each.label);
    }
}

TEST_F(Dispatch, WarningsAreLoggedInPiecesWithTheirAuthor) {
    world.StartQuietly();
    const struct {
        int id;
        Lines pieces;
    } cases[] = {{1, {"[", "Name of A", "]: ", "careful", "\n"}},
                 {0, {"[", "Aerivo", "]: ", "careful", "\n"}},
                 {-1, {"[unknown]: ", "careful", "\n"}}};
    for (const auto &each : cases) {
        const StDispatchCallback guard(each.id);
        AVSKLogPluginWarning("careful");
        EXPECT_EQ(host.logPieces, each.pieces);
        host.TakeLog();
    }
}

TEST_F(Dispatch, ErrorsNeedAValidPluginWithACallback) {
    world.StartQuietly();
    for (const int id : {0, 1, 2, -1}) {
        SCOPED_TRACE(id);
        const StDispatchCallback guard(id);
        EXPECT_FALSE(AVSKHasError());
        AVSKSendError("dropped");
        JournalErrors();
        EXPECT_EQ(AVSKHasError(), id == 0 || id == 1);
        AVSKSendError("heard");
        EXPECT_EQ(Take(), id == 0 || id == 1 ? Lines{"error: heard"} : Lines());
    }
}

TEST_F(Dispatch, FeaturesOfAnInvalidPluginAreOff) {
    world.StartQuietly();
    EXPECT_EQ(AVSKFeatureToID("AVSK_USE_NATIVE_PATHS"), kFeatureUseNativePaths);
    EXPECT_EQ(AVSKFeatureToID("AVSK_use_native_paths"), -1);
    for (const int id : {-1, 2}) {
        const StDispatchCallback guard(id);
        AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", 1);
        EXPECT_EQ(AVSKHasFeatureInternal(id, kFeatureUseNativePaths), 0);
        EXPECT_TRUE(AVSKNeedPathConvert());
    }
    const StDispatchCallback guard(1);
    EXPECT_TRUE(AVSKNeedPathConvert());
    AVSKEnableFeature("AVSK_USE_NATIVE_PATHS", 9);
    EXPECT_FALSE(AVSKNeedPathConvert());
    EXPECT_EQ(AVSKHasFeatureInternal(1, kFeatureUseNativePaths), 9);
    EXPECT_EQ(AVSKHasFeatureInternal(0, kFeatureUseNativePaths), 0);
}

TEST_F(Dispatch, FormattedPrintsReachTheLogOnceThereIsOne) {
    EXPECT_EQ(AVSK_dprintf("%d\n", 1), 0);
    EXPECT_EQ(host.log, "");
    world.StartQuietly();
    EXPECT_EQ(AVSK_dprintf("%s %d\n", "two", 2), 0);
    EXPECT_EQ(host.logPieces, Lines{"two 2\n"});
}

TEST(Paths, TheNameBehindTheLastPluginsFolderIsShown) {
    const struct {
        const char *path;
        const char *rest;
    } cases[] = {{"/s/Resources/plugins/A/lin.avp", "A/lin.avp"},
                 {"/plugins/x/plugins/B.avp", "B.avp"},
                 {"/elsewhere/B.avp", "/elsewhere/B.avp"},
                 {"myplugins/C", "C"},
                 {"/plugins", ""},
                 {"", ""}};
    for (const auto &each : cases)
        EXPECT_STREQ(StripPluginsFolder(each.path), each.rest);
}

} // namespace
