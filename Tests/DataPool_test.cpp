// The records behind datarefs, which the interface shows only as handles.
#include "AVSKDataAccess.h"
#include "World.h"

#include "AVSKModules.h"

#include <gtest/gtest.h>

namespace {

TEST(DataPool, RecordsComeFromAChainOfBlocksOf32) {
    EXPECT_EQ(gDataBlock, nullptr);
    const AVSKDataRef first = Publish("a/0");
    for (int i = 1; i < 32; ++i)
        Publish(("a/" + std::to_string(i)).c_str());
    EXPECT_EQ(gDataFree, gDataBlock);
    EXPECT_EQ(first, gDataBlock->Slot(0));
    const AVSKDataRef next = Publish("a/32");
    EXPECT_EQ(gDataBlock->next, gDataFree);
    EXPECT_EQ(gDataBlock->count, 32);
    EXPECT_EQ(gDataBlock->capacity, 32);
    EXPECT_EQ(gDataFree->count, 1);
    EXPECT_EQ(gDataFree->next, nullptr);
    EXPECT_EQ(gDataCount, 33);
    EXPECT_EQ(DataIsValid(next), next);
    EXPECT_EQ(DataIsValid(static_cast<AVSKDataRef>(gDataFree->Slot(1))), nullptr) << "not handed out yet";

    AVSKUnregisterDataAccessor(first);
    Publish("a/0");
    EXPECT_EQ(gDataCount, 33) << "the record is revived";
}

TEST(DataPool, AValidHandleHasANameAndAPlaceInTheMap) {
    const AVSKDataRef ref = Publish("a/x");
    std::map<std::string, AVSKData_t *>::iterator position;
    ASSERT_EQ(DataIsValid(ref, &position), ref);
    EXPECT_EQ(position->first, "a/x");
    EXPECT_EQ(position->second, ref);
    EXPECT_STREQ(DebugDataRefName(ref), "a/x");
    EXPECT_STREQ(DebugDataRefName(nullptr), "(null dataref)");
    EXPECT_STREQ(DebugDataRefName(reinterpret_cast<AVSKDataRef>(&position)), "(invalid dataref)");
}

TEST(DataPool, CleanupEndsOwnershipAndNothingElse) {
    const AVSKDataRef ref = Publish("a/x"); // the host's
    AVSKDataRefsCleanupHook(5);
    EXPECT_EQ(AVSKFindDataRef("a/x"), ref);
    AVSKDataRefsCleanupHook(0);
    EXPECT_EQ(AVSKFindDataRef("a/x"), nullptr);
    EXPECT_EQ(gDataRefs.at("a/x"), ref);
    EXPECT_EQ(ref->types, AVSKDataTypeInt);
}

} // namespace
