// Results that arrive later: their order, and their end on every way out.
#include "AVSKDelivery.h"
#include "AVSKDispatch.h"
#include "World.h"

#include <gtest/gtest.h>

namespace {

// Notes how it ends: "name delivered as ID" or "name cancelled".
class Result : public AVSKDelivery {
  public:
    Result(const char *label, int plugin) : name(label) { pluginID = plugin; }
    void DeliverToPlugin(bool cancelled) override {
        Note(name + (cancelled ? " cancelled" : " delivered as " + std::to_string(AVSKGetMyID())));
        if (then)
            then();
    }
    std::string name;
    std::function<void()> then;
};

class Delivery : public testing::Test {
  protected:
    World world;
    Puppet &a = world.Install("A");
    Puppet &b = world.Install("B");
    Result x{"x", 1};
    Result y{"y", 1};
    Result z{"z", 1};

    void SetUp() override { world.StartQuietly(); }
};

TEST_F(Delivery, AQueueGivesTheNewestFirst) {
    AVSKDeliveryHead head;
    EXPECT_EQ(AVSKDeliveryPop(head), nullptr);
    for (Result *each : {&x, &y, &z})
        AVSKDeliveryEnqueue(head, each);
    AVSKDeliveryDequeue(&y);
    AVSKDeliveryDequeue(&y); // in no queue
    EXPECT_EQ(AVSKDeliveryPop(head), &z);
    EXPECT_EQ(AVSKDeliveryPop(head), &x);
    EXPECT_EQ(AVSKDeliveryPop(head), nullptr);
    for (const Result *each : {&x, &y, &z}) {
        EXPECT_EQ(each->next, nullptr);
        EXPECT_EQ(each->prev, nullptr);
    }
}

TEST_F(Delivery, AnEnabledPluginGetsItAtOnceAndOnce) {
    AVSKQueueDelivery(&x);
    EXPECT_EQ(Take(), Lines());
    AVSKSendDelivery(&x);
    AVSKSendDelivery(&x);
    EXPECT_EQ(Take(), Lines{"x delivered as 1"});
    EXPECT_EQ(AVSKGetMyID(), 0);
}

TEST_F(Delivery, ADisabledPluginGetsThemWhenEnabledNewestFirst) {
    AVSKQueueDelivery(&x);
    AVSKQueueDelivery(&y);
    AVSKDisablePlugin(1);
    AVSKSendDelivery(&x);
    AVSKSendDelivery(&y);
    EXPECT_EQ(Take(), Lines{"disable A"});
    EXPECT_EQ(AVSKEnablePlugin(1), 1);
    EXPECT_EQ(Take(), (Lines{"enable A", "y delivered as 1", "x delivered as 1"}));
}

TEST_F(Delivery, EnablingAnEnabledPluginHandsOverTheRest) {
    AVSKDeliveryEnqueue(gAllPlugins[1]->deferredDeliveries, &x);
    EXPECT_EQ(AVSKEnablePlugin(1), 1);
    EXPECT_EQ(Take(), Lines{"x delivered as 1"});
}

TEST_F(Delivery, TheRestWaitsForAPluginThatIsDisabledMeanwhile) {
    AVSKDisablePlugin(1);
    for (Result *each : {&x, &y}) {
        AVSKQueueDelivery(each);
        AVSKSendDelivery(each);
    }
    y.then = [] { AVSKDisablePlugin(1); };
    EXPECT_EQ(AVSKEnablePlugin(1), 0);
    EXPECT_EQ(Take(), (Lines{"disable A", "enable A", "y delivered as 1", "disable A"}));
    EXPECT_EQ(AVSKEnablePlugin(1), 1);
    EXPECT_EQ(Take(), (Lines{"enable A", "x delivered as 1"}));
}

TEST_F(Delivery, UnloadingCancelsWhatArrivedAndOrphansTheRest) {
    AVSKQueueDelivery(&x);
    AVSKQueueDelivery(&y);
    AVSKDisablePlugin(1);
    AVSKSendDelivery(&y);
    Take();
    UnloadOnePlugin(1);
    EXPECT_EQ(Take(), (Lines{"y cancelled", "stop A"})) << "before the plugin is called for the last time";
    EXPECT_EQ(orphaned.next, &x);
    EXPECT_EQ(x.pluginID, NO_PLUGIN_ID);
    AVSKSendDelivery(&x);
    AVSKSendDelivery(&x);
    EXPECT_EQ(Take(), Lines{"x cancelled"});
    EXPECT_EQ(orphaned.next, nullptr);
}

// Whatever way a record leaves the registry, nothing of its stays queued with it.
TEST_F(Delivery, EndsAsACancellationWhicheverWayItsPluginGoes) {
    Puppet &air = world.InstallAircraft("air");
    const auto load = World::LoadAircraft;
    const auto ask = [this] {
        x.pluginID = AVSKGetMyID();
        AVSKQueueDelivery(&x);
        return 1;
    };
    const struct {
        const char *way;
        std::function<void()> go;
    } cases[] = {
        {"unloaded",
         [&] {
             load();
             air.Run(ask);
             World::UnloadAircraft();
         }},
        {"refused",
         [&] {
             air.start = [&] { return ask(), 0; };
             load();
         }},
        {"duplicate",
         [&] {
             air.start = ask;
             air.signature = "test.A";
             load();
         }},
        {"threw",
         [&] {
             air.start = [&]() -> int {
                 ask();
                 throw 1;
             };
             EXPECT_THROW(load(), int);
         }},
        {"asked in its stop call",
         [&] {
             air.start = nullptr;
             air.signature = "test.air";
             air.stop = ask;
             load();
             UnloadOnePlugin(air.Id());
         }},
        {"reload",
         [&] {
             World::UnloadAircraft(); // its record
             air.stop = nullptr;
             load();
             air.Run(ask);
             AVSKReloadPlugins();
             World::Pass(1);
         }},
        {"shutdown",
         [&] {
             air.Run(ask);
             world.Stop();
         }},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.way);
        each.go();
        EXPECT_EQ(x.pluginID, NO_PLUGIN_ID);
        Take();
        AVSKSendDelivery(&x);
        EXPECT_EQ(Take(), Lines{"x cancelled"});
    }
}

TEST_F(Delivery, QueuesHoldWhenTheRegistryGrows) {
    AVSKQueueDelivery(&x);
    AVSKQueueDelivery(&y);
    for (int i = 0; i < 30; ++i)
        world.InstallScenery("s" + std::to_string(i));
    world.LoadScenery();
    Take();
    AVSKSendDelivery(&y); // unlinks itself from the head, which must not have moved
    EXPECT_EQ(gAllPlugins[1]->pendingDeliveries.next, &x);
    EXPECT_EQ(x.prev, &gAllPlugins[1]->pendingDeliveries);
    AVSKSendDelivery(&x);
    EXPECT_EQ(Take(), (Lines{"y delivered as 1", "x delivered as 1"}));
}

TEST_F(Delivery, AnInvalidPluginIsReportedAndNothingIsQueued) {
    JournalErrors();
    for (const int bad : {-1, 3}) {
        Result lost("lost", bad);
        AVSKQueueDelivery(&lost);
        EXPECT_EQ(Take(), Lines{"error: Internal error: async queue pending but the plugin ID is invalid."});
        EXPECT_EQ(lost.prev, nullptr);
        AVSKSendDelivery(&lost);
        EXPECT_EQ(Take(), Lines{"lost cancelled"});
    }
}

} // namespace
