// Makes prototypes and values; see Prototypes.h. Owns the prototypes.
#include "Prototypes.h"

#include "Enumerants.h"

#include "Crossings/Prototypes.h"
#include "Crossings/ValueText.h"

#include <bit>
#include <string>
#include <vector>

namespace opengl {
namespace {

using crossings::Prototype;
using crossings::Value;
using Kind = crossings::Value::Kind;

Kind KindOf(char type) {
    switch (type) {
    case 'v':
        return Kind::Nothing;
    case 's':
        return Kind::Text;
    case 'p':
        return Kind::Pointer;
    case 'F':
        return Kind::Function;
    case 'E':
    case 'X':
        return Kind::Enumerant;
    case 'B':
        return Kind::Bits;
    case 'f':
    case 'd':
    case 'l':
    case 'L':
        return Kind::Real; // 64 bits fit into no other kind
    default:
        return Kind::Integer;
    }
}

// The bits above those of a small type are not defined.
int Integer(char type, std::uint32_t word) {
    switch (type) {
    case 'b':
    case 'C':
        return static_cast<std::uint8_t>(word);
    case 'c':
        return static_cast<std::int8_t>(word);
    case 'H':
        return static_cast<std::uint16_t>(word);
    case 'h':
        return static_cast<std::int16_t>(word);
    default:
        return static_cast<int>(word);
    }
}

double RealOf(char type, std::uint64_t words) {
    switch (type) {
    case 'f':
        return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(words)));
    case 'd':
        return std::bit_cast<double>(words);
    case 'l':
        return static_cast<double>(static_cast<std::int64_t>(words));
    default:
        return static_cast<double>(words);
    }
}

Value ValueOf(char type, std::uint64_t words, int group) {
    const auto word = static_cast<std::uint32_t>(words);
    constexpr std::uint32_t kFirstEnumerant = 0x100; // of a number that may be one
    Value value;
    value.kind = KindOf(type);
    if (type == 'X' && word < kFirstEnumerant)
        value.kind = Kind::Integer;
    else if (type == 'u' && static_cast<int>(word) < 0)
        value.kind = Kind::Word;
    switch (value.kind) {
    case Kind::Nothing:
        break;
    case Kind::Integer:
        value.integer = Integer(type, word);
        break;
    case Kind::Real:
        value.real = RealOf(type, words);
        break;
    case Kind::Enumerant:
    case Kind::Bits:
        value.group = static_cast<std::int16_t>(group);
        [[fallthrough]];
    default:
        value.word = word;
    }
    return value;
}

void AddName(crossings::Line &line, const Value &value) {
    if (value.kind == Kind::Bits)
        AddBits(line, value.word, value.group);
    else
        AddEnumerant(line, value.word, value.group);
}

std::vector<Prototype> MakePrototypes() {
    std::vector<Prototype> prototypes;
    prototypes.reserve(kFunctionCount);
    for (const Function &function : kFunctions)
        prototypes.push_back(
            {function.Name(), function.Parameters(), Prototype::Form::OpenGL, KindOf(function.Types()[0])});
    return prototypes;
}

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const Function &function : kFunctions)
        names.emplace_back(function.Name());
    return names;
}

// The command line checks filters before a plugin calls, and a signal handler may name a constant.
__attribute__((constructor)) void OfferNames() {
    crossings::SetOpenGLNames(Names);
    crossings::SetEnumerantNames(AddName);
}

} // namespace

std::span<Prototype> Prototypes() {
    static std::vector<Prototype> &prototypes = *new std::vector<Prototype>(MakePrototypes()); // calls outlive statics
    return prototypes;
}

Number NumberOf(const Prototype &prototype) { return static_cast<Number>(&prototype - Prototypes().data()); }

std::span<Value> ReadArguments(Values &values, const Function &function, const std::uint32_t *words) {
    std::size_t count = 0;
    std::size_t group = function.groups;
    for (const char *at = function.Types() + 1; *at; ++at) {
        const char type = *at;
        const bool isLong = type == 'd' || type == 'l' || type == 'L';
        const std::uint64_t high = isLong ? words[1] : 0;
        const bool hasGroup = type == 'E' || type == 'B';
        values.all[count++] = ValueOf(type, high << 32 | words[0], hasGroup ? GroupOfParameter(group++) : -1);
        words += isLong ? 2 : 1;
    }
    return std::span(values.all).first(count);
}

Value ReadResult(const Function &function, std::uint64_t result) { return ValueOf(function.Types()[0], result, -1); }

} // namespace opengl
