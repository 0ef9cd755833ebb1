// What crosses the border: the layout of every structure, and the exports.
#include "FakeHost.h"

#include "AVSK/AVSK.h"
#include "AVSK/AVSKDisplay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

TEST(Abi, TheHostTableIs72WordsInTheirOrder) {
    EXPECT_EQ(sizeof(AVSKHostCallbacks), 288U);
    EXPECT_EQ(offsetof(AVSKHostCallbacks, version), 0U);
    EXPECT_EQ(offsetof(AVSKHostCallbacks, sizeInBytes), 4U);
    int slots = 2;
#define AVSK_TEST_OFFSET(number, name)                                                                                 \
    EXPECT_EQ(offsetof(AVSKHostCallbacks, name), 4U * (number)) << #name;                                              \
    EXPECT_EQ(sizeof(AVSKHostCallbacks::name), 4U) << #name;                                                           \
    ++slots;
    AVSK_TEST_SLOTS(AVSK_TEST_OFFSET)
#undef AVSK_TEST_OFFSET
    EXPECT_EQ(slots, AVSK_HOST_SLOTS);
}

TEST(Abi, StructuresOfThePluginInterfaceKeepTheirLayout) {
    const struct {
        const char *field;
        std::size_t offset;
        std::size_t expected;
    } cases[] = {
        {"AVSKCreateFlightLoopParams", sizeof(AVSKCreateFlightLoopParams), 16},
        {"structSize", offsetof(AVSKCreateFlightLoopParams, structSize), 0},
        {"phase", offsetof(AVSKCreateFlightLoopParams, phase), 4},
        {"callbackFunc", offsetof(AVSKCreateFlightLoopParams, callbackFunc), 8},
        {"refcon", offsetof(AVSKCreateFlightLoopParams, refcon), 12},
        {"AVSKCreateWindowParams", sizeof(AVSKCreateWindowParams), 48},
        {"structSize", offsetof(AVSKCreateWindowParams, structSize), 0},
        {"left", offsetof(AVSKCreateWindowParams, left), 4},
        {"top", offsetof(AVSKCreateWindowParams, top), 8},
        {"right", offsetof(AVSKCreateWindowParams, right), 12},
        {"bottom", offsetof(AVSKCreateWindowParams, bottom), 16},
        {"visible", offsetof(AVSKCreateWindowParams, visible), 20},
        {"drawFunc", offsetof(AVSKCreateWindowParams, drawFunc), 24},
        {"mouseClickFunc", offsetof(AVSKCreateWindowParams, mouseClickFunc), 28},
        {"keyFunc", offsetof(AVSKCreateWindowParams, keyFunc), 32},
        {"cursorFunc", offsetof(AVSKCreateWindowParams, cursorFunc), 36},
        {"mouseWheelFunc", offsetof(AVSKCreateWindowParams, mouseWheelFunc), 40},
        {"refcon", offsetof(AVSKCreateWindowParams, refcon), 44},
        {"AVSKWord", sizeof(AVSKWord), 4},
        {"AVSKDataRef", sizeof(AVSKDataRef), 4},
        {"AVSKDataTypeBits", sizeof(AVSKDataTypeBits), 4},
    };
    for (const auto &each : cases)
        EXPECT_EQ(each.offset, each.expected) << each.field;
}

TEST(Abi, TheLibraryExportsExactlyTheListedNames) {
    Lines listed;
    std::ifstream list(AVSK_TEST_EXPORTS);
    for (std::string name; std::getline(list, name);)
        listed.push_back(name);
    ASSERT_FALSE(listed.empty()) << AVSK_TEST_EXPORTS;
    std::sort(listed.begin(), listed.end());

    Lines exported;
    std::FILE *nm = popen("nm -D --defined-only '" AVSK_TEST_LIBRARY "'", "r");
    ASSERT_NE(nm, nullptr);
    char name[256];
    while (std::fscanf(nm, "%*s %*s %255s", name) == 1)
        exported.emplace_back(name);
    ASSERT_EQ(pclose(nm), 0);
    std::sort(exported.begin(), exported.end());

    Lines missing;
    Lines unexpected;
    std::set_difference(listed.begin(), listed.end(), exported.begin(), exported.end(), std::back_inserter(missing));
    std::set_difference(exported.begin(), exported.end(), listed.begin(), listed.end(), std::back_inserter(unexpected));
    EXPECT_EQ(missing, Lines());
    EXPECT_EQ(unexpected, Lines()) << "a new export goes into Tests/exports.txt";
}

} // namespace
