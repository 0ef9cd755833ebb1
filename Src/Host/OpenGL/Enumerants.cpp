// The tables of constants; see Enumerants.h.
#include "Enumerants.h"

#include <algorithm>
#include <bit>
#include <iterator>

// Compilers take longer literals than they have to.
#pragma GCC diagnostic ignored "-Woverlength-strings"

namespace opengl {
namespace {

constexpr const char kTexts[] =
#include "EnumerantTexts.inc"
    ;

struct Enumerant {
    std::uint32_t value;
    std::uint32_t text;
};

struct Group {
    std::uint16_t first;
    std::uint16_t count;
};

// By value; a value may have several.
constexpr Enumerant kEnumerants[] = {
#define AVSK_ENUMERANT(value, text) {value, text},
#include "Enumerants.inc"
#undef AVSK_ENUMERANT
};

#define AVSK_GROUP(first, count)
#define AVSK_MEMBER(enumerant)
#define AVSK_PARAMETER_GROUP(group)

constexpr Group kGroups[] = {
#undef AVSK_GROUP
#define AVSK_GROUP(first, count) {first, count},
#include "Groups.inc"
#undef AVSK_GROUP
#define AVSK_GROUP(first, count)
};

// The constants of each group, by value.
constexpr std::uint16_t kMembers[] = {
#undef AVSK_MEMBER
#define AVSK_MEMBER(enumerant) enumerant,
#include "Groups.inc"
#undef AVSK_MEMBER
#define AVSK_MEMBER(enumerant)
};

constexpr std::int16_t kParameterGroups[] = {
#undef AVSK_PARAMETER_GROUP
#define AVSK_PARAMETER_GROUP(group) group,
#include "Groups.inc"
#undef AVSK_PARAMETER_GROUP
};
#undef AVSK_GROUP
#undef AVSK_MEMBER

const Enumerant *FindInGroup(std::uint32_t value, int group) {
    if (group < 0)
        return nullptr;
    const std::uint16_t *const begin = kMembers + kGroups[group].first;
    const std::uint16_t *const end = begin + kGroups[group].count;
    const auto *const found = std::lower_bound(begin, end, value, [](std::uint16_t member, std::uint32_t wanted) {
        return kEnumerants[member].value < wanted;
    });
    return found != end && kEnumerants[*found].value == value ? kEnumerants + *found : nullptr;
}

// 0 and 1 mean too much to have one name.
const Enumerant *FindAny(std::uint32_t value) {
    if (value <= 1)
        return nullptr;
    const auto *const found =
        std::lower_bound(std::begin(kEnumerants), std::end(kEnumerants), value,
                         [](const Enumerant &enumerant, std::uint32_t wanted) { return enumerant.value < wanted; });
    return found != std::end(kEnumerants) && found->value == value ? found : nullptr;
}

} // namespace

std::string_view NameOf(std::uint32_t value, int group) {
    const Enumerant *found = FindInGroup(value, group);
    if (!found)
        found = FindAny(value);
    return found ? kTexts + found->text : std::string_view();
}

void AddEnumerant(crossings::Line &line, std::uint32_t value, int group) {
    constexpr std::uint32_t kSmall = 10;
    const std::string_view name = NameOf(value, group);
    if (!name.empty())
        line.Add(name);
    else if (value < kSmall)
        line.Add(static_cast<int>(value));
    else
        line.AddHex(value);
}

void AddBits(crossings::Line &line, std::uint32_t bits, int group) {
    if (const Enumerant *const all = FindInGroup(bits, group); all || bits == 0)
        return line.Add(all ? std::string_view(kTexts + all->text) : "0");
    std::uint32_t unnamed = 0;
    bool isFirst = true;
    const auto separate = [&] {
        if (!isFirst)
            line.Add('|');
        isFirst = false;
    };
    for (; bits != 0; bits &= bits - 1) {
        const std::uint32_t bit = bits & -bits;
        const Enumerant *const found = FindInGroup(bit, group);
        if (!found) {
            unnamed |= bit;
            continue;
        }
        separate();
        line.Add(kTexts + found->text);
    }
    if (unnamed != 0) {
        separate();
        line.AddHex(unnamed);
    }
}

int GroupOfParameter(std::size_t index) { return kParameterGroups[index]; }

} // namespace opengl
