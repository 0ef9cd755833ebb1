// For calls that hand their arguments to one host service as they are.
#ifndef AVSK_TESTS_FORWARDING_H
#define AVSK_TESTS_FORWARDING_H

#include "FakeHost.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

// As a float each of the words from here on is a signalling NaN, which
// arithmetic and conversions would quieten.
constexpr AVSKWord kSignallingNaN = 0x7FA00001;

// A float that a function returns may pass through the x87, which quietens it as well.
template <class Argument>
void SetWord(Argument &argument, AVSKWord word) {
    static_assert(sizeof argument == sizeof word);
    if constexpr (std::is_same_v<Argument, const char *>)
        argument = "text"; // goes to the journal
    else
        std::memcpy(&argument, &word, sizeof word);
}

template <class... Arguments>
std::vector<AVSKWord> Words(Arguments... arguments) {
    return {std::bit_cast<AVSKWord>(arguments)...};
}

// Expects one call of the service, with the same words, and its answer back.
template <class Result, class... Arguments>
void ExpectForwarded(const char *name, Result (*call)(Arguments...),
                     std::function<Result(Arguments...)> HostServices::*service) {
    SCOPED_TRACE(name);
    std::vector<std::vector<AVSKWord>> received;
    Host().on.*service = [&received](Arguments... arguments) -> Result {
        received.push_back(Words(arguments...));
        if constexpr (!std::is_void_v<Result>)
            return std::bit_cast<Result>(0x89ABCDEF);
    };
    std::tuple<Arguments...> given;
    AVSKWord word = kSignallingNaN;
    std::apply([&word](Arguments &...arguments) { (SetWord(arguments, word++), ...); }, given);
    if constexpr (std::is_void_v<Result>)
        std::apply(call, given);
    else
        EXPECT_EQ(std::bit_cast<AVSKWord>(std::apply(call, given)), 0x89ABCDEF);
    ASSERT_EQ(received.size(), 1U);
    EXPECT_EQ(received.front(), std::apply(Words<Arguments...>, given));
    Host().on.*service = nullptr;
}

#define EXPECT_FORWARDED(function, service) ExpectForwarded(#function, function, &HostServices::service)

#endif
