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
    using Offsets = std::vector<std::size_t>;
#define AVSK_AT(field) offsetof(Type, field)
    {
        using Type = AVSKCreateFlightLoopParams;
        EXPECT_EQ((Offsets{AVSK_AT(structSize), AVSK_AT(phase), AVSK_AT(callbackFunc), AVSK_AT(refcon), sizeof(Type)}),
                  (Offsets{0, 4, 8, 12, 16}));
    }
    {
        using Type = AVSKCreateWindowParams;
        EXPECT_EQ((Offsets{AVSK_AT(structSize), AVSK_AT(left), AVSK_AT(top), AVSK_AT(right), AVSK_AT(bottom),
                           AVSK_AT(visible), AVSK_AT(drawFunc), AVSK_AT(mouseClickFunc), AVSK_AT(keyFunc),
                           AVSK_AT(cursorFunc), AVSK_AT(mouseWheelFunc), AVSK_AT(refcon), sizeof(Type)}),
                  (Offsets{0, 4, 8, 12, 16, 20, 24, 28, 32, 36, 40, 44, 48}));
    }
#undef AVSK_AT
    EXPECT_EQ((Offsets{sizeof(AVSKWord), sizeof(AVSKDataRef), sizeof(AVSKDataTypeBits)}), (Offsets{4, 4, 4}));
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
