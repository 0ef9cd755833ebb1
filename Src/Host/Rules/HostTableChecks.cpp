// The checks of the host's table; see HostTableChecks.h. The table is read through
// the kernel only: the host may have passed anything.
#include "HostTableChecks.h"

#include "HostOrderChecks.h"
#include "HostTableRules.h"
#include "StackAlignment.h"

#include "Crossings/Services.h"
#include "Crossings/Symbols.h"
#include "Crossings/ValueText.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string_view>

namespace host {
namespace {

using crossings::Crossing;
using crossings::Prototype;

constexpr std::size_t kHeaderWords = 2; // version and size, before the slots
constexpr AVSKWord kWord = sizeof(AVSKWord);
constexpr AVSKWord kSmallest = 280;
constexpr AVSKWord kFull = sizeof(AVSKHostCallbacks);

enum Slot : std::size_t {
    kVersion = 0,
    kSize = 1,
    kDestroyMenu = 33,
    kReinitUsersPlane = 34,
    kShowMessage = 53,
    kShowProgress = 54,
    kReceiveMessage = 71,
};

bool IsNamed(const Crossing &crossing, const Prototype *&known, std::string_view name) {
    if (!known && name == crossing.what.name)
        known = &crossing.what;
    return known == &crossing.what;
}

const void *Address(AVSKWord word) { return reinterpret_cast<const void *>(word); }

// Whether the library never calls the slot.
bool IsLeftOut(const HostTableChecks::Words &words, std::size_t slot) {
    const auto version = static_cast<int>(words[kVersion]);
    switch (slot) {
    case kShowMessage:
        return version < 3;
    case kShowProgress:
        return version < 4;
    case kDestroyMenu:
    case kReinitUsersPlane:
    case kReceiveMessage:
        return words[kSize] < kFull;
    default:
        return false;
    }
}

bool IsExecutable(AVSKWord address) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        unsigned long begin = 0;
        unsigned long end = 0;
        char executable = '-';
        if (std::sscanf(line.c_str(), "%lx-%lx %*c%*c%c", &begin, &end, &executable) == 3 && address >= begin &&
            address < end)
            return executable == 'x';
    }
    return false;
}

// "4 and 288"
std::string NumbersOf(const HostTableChecks::Words &words) {
    return std::to_string(static_cast<int>(words[kVersion])) + " and " + std::to_string(static_cast<int>(words[kSize]));
}

} // namespace

HostTableChecks::HostTableChecks(Findings &findings) : mFindings(findings), mNames(crossings::ServiceNames()) {
    crossings::AddObserver(*this);
}

HostTableChecks::~HostTableChecks() { crossings::RemoveObserver(*this); }

crossings::Interest HostTableChecks::InterestIn(const Prototype &function) const {
    return IsHook(function) ? crossings::Interest::Work : crossings::Interest::None;
}

void HostTableChecks::Begins(const Crossing &crossing) {
    if (crossing.outer)
        return;
    if (mTable)
        Compare(crossing, /*isDuringCall=*/false);
    if (IsNamed(crossing, mStart, "AVSKInitializePlugins"))
        Take(crossing);
}

void HostTableChecks::Ends(const Crossing &crossing) {
    if (crossing.outer || !mTable)
        return;
    Compare(crossing, /*isDuringCall=*/true);
    if (IsNamed(crossing, mShutdown, "AVSKShutdownPlugins"))
        mTable = nullptr;
}

std::string HostTableChecks::NameOf(std::size_t slot) const {
    return "slot " + std::to_string(slot) + " (" + mNames[slot - kHeaderWords] + ")";
}

void HostTableChecks::Take(const Crossing &start) {
    const void *table = start["table"].pointer;
    mTable = nullptr;
    mWords = {};
    if (!crossings::ReadMemory(table, mWords.data(), kHeaderWords * kWord))
        return mFindings.Add(Named(kHostTableRules, "host-table-unreadable"), start,
                             {{"address", table ? Hexadecimal(table) : "null"}});
    const AVSKWord size = mWords[kSize];
    JudgeSize(start, size);
    const auto *words = static_cast<const AVSKWord *>(table);
    for (mCount = kHeaderWords; mCount < std::min<std::size_t>(size / kWord, mWords.size()); ++mCount) {
        if (!crossings::ReadMemory(words + mCount, &mWords[mCount], kWord))
            return mFindings.Add(Named(kHostTableRules, "host-table-ends"), start,
                                 {{"", ""}, {"size", std::to_string(size)}, {"bytes", std::to_string(mCount * kWord)}});
    }
    mTable = table;
    for (std::size_t slot = kHeaderWords; slot < mCount; ++slot)
        JudgeSlot(start, slot);
}

void HostTableChecks::JudgeSize(const Crossing &start, AVSKWord size) {
    const Rule *rule = nullptr;
    if (size < kSmallest || (size < kFull && size % kWord != 0) || size > INT32_MAX)
        rule = &Named(kHostTableRules, "host-table-size");
    else if (size > kFull)
        rule = &Named(kHostTableRules, "host-table-beyond");
    if (rule)
        mFindings.Add(*rule, start, {{"size", std::to_string(static_cast<int>(size))}});
}

void HostTableChecks::JudgeSlot(const Crossing &crossing, std::size_t slot) {
    const AVSKWord word = mWords[slot];
    if (IsLeftOut(mWords, slot)) {
        if (word != 0)
            mFindings.Add(Named(kHostTableRules, "host-table-version"), crossing,
                          {{"slot", NameOf(slot)},
                           {"version", std::to_string(static_cast<int>(mWords[kVersion]))},
                           {"size", std::to_string(mWords[kSize])}});
        return;
    }
    if (word == 0) {
        if (slot != kReceiveMessage)
            mFindings.Add(Named(kHostTableRules, "host-table-slot-null"), crossing, {{"slot", NameOf(slot)}});
    } else if (!IsExecutable(word)) {
        mFindings.Add(Named(kHostTableRules, "host-table-slot-code"), crossing,
                      {{"slot", NameOf(slot)}, {"address", Hexadecimal(Address(word))}});
    } else if (ReliesOnAlignedStack(Address(word))) {
        mFindings.Add(Named(kHostTableRules, "host-table-alignment"), crossing,
                      {{"slot", NameOf(slot)}, {"function", crossings::SymbolAt(Address(word))}});
    }
}

void HostTableChecks::Compare(const Crossing &crossing, bool isDuringCall) {
    Words now{};
    if (!crossings::ReadMemory(mTable, now.data(), mCount * kWord)) {
        mFindings.Add(Named(kHostTableRules, "host-table-gone"), crossing, {{"address", Hexadecimal(mTable)}});
        mTable = nullptr;
        return;
    }
    if (now == mWords)
        return;
    const Words before = std::exchange(mWords, now);
    if (now[kVersion] != before[kVersion] || now[kSize] != before[kSize]) {
        mFindings.Add(Named(kHostTableRules, "host-table-overwritten"), crossing,
                      {{"", ""}, {"after", NumbersOf(now)}, {"before", NumbersOf(before)}});
        mTable = nullptr;
        return;
    }
    for (std::size_t slot = kHeaderWords; slot < mCount; ++slot) {
        if (now[slot] == before[slot])
            continue;
        if (slot == kReceiveMessage)
            mFindings.Add(Named(kHostTableRules, "host-table-receiver"), crossing);
        else if (isDuringCall)
            mFindings.Add(Named(kHostTableRules, "host-table-slot-changed"), crossing, {{"slot", NameOf(slot)}});
        JudgeSlot(crossing, slot);
    }
}

} // namespace host
