// Decodes the lengths of 32-bit x86 instructions; see StackAlignment.h. Knows no
// AVX instructions: code that uses them is not judged.
#include "StackAlignment.h"

#include "Crossings/Symbols.h"
#include "Crossings/ValueText.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

namespace host {
namespace {

using Code = std::span<const std::uint8_t>;

// What follows an opcode. A letter stands for each of 16 opcodes.
//   . nothing   m ModRM   b byte   w word   z word or double word, as the operand size says   o address
//   M ModRM and byte   Z ModRM and z   t ModRM, and an immediate if it is a test   e three bytes   ? unknown
constexpr std::array<std::string_view, 16> kOneByte = {
    "mmmmbz..mmmmbz.?", "mmmmbz..mmmmbz..", "mmmmbz?.mmmmbz?.", "mmmmbz?.mmmmbz?.", // 00 to 3F
    "................", "................", "..?m????zZbM....", "bbbbbbbbbbbbbbbb", // 40 to 7F
    "MZMMmmmmmmmmmmmm", "..........?.....", "oooo....bz......", "bbbbbbbbzzzzzzzz", // 80 to BF
    "MMw.??MZe.w..b?.", "mmmmbb?.mmmmmmmm", "bbbbbbbbzz?b....", "?.??..tT......mm", // C0 to FF
};
constexpr std::array<std::string_view, 16> kTwoBytes = {
    "mmmm?.....?.?m??", "mmmmmmmmmmmmmmmm", "mmmmmmmmmmmmmmmm", "........????????", // 00 to 3F
    "mmmmmmmmmmmmmmmm", "mmmmmmmmmmmmmmmm", "mmmmmmmmmmmmmmmm", "MMMMmmm.????mmmm", // 40 to 7F
    "zzzzzzzzzzzzzzzz", "mmmmmmmmmmmmmmmm", "...mMm??...mMmmm", "mmmmmmmmmmMmmmmm", // 80 to BF
    "mmMmMMMm........", "mmmmmmmmmmmmmmmm", "mmmmmmmmmmmmmmmm", "mmmmmmmmmmmmmmm?", // C0 to FF
};

struct Instruction {
    std::size_t length = 0; // 0: unknown
    bool isTwoBytes = false;
    std::uint8_t prefix = 0; // 66, F2, F3; the last one
    std::uint8_t opcode = 0;
    std::uint8_t modRm = 0;
    std::uint8_t sib = 0;
    std::size_t operand = 0; // where the immediate begins

    int Mode() const { return modRm >> 6; }
    int Register() const { return modRm >> 3 & 7; }
    bool IsInMemory() const { return Mode() != 3; }
    bool HasSib() const { return IsInMemory() && (modRm & 7) == 4; }
    bool IsOnStack(bool hasFrame) const {
        constexpr int kStack = 4;
        constexpr int kFrame = 5;
        const int base = HasSib() ? sib & 7 : modRm & 7;
        if (!IsInMemory())
            return false;
        return (HasSib() && base == kStack) || (hasFrame && base == kFrame && Mode() != 0);
    }
};

// Reads beyond the end as zeros; the caller compares the length.
std::uint8_t At(Code code, std::size_t place) { return place < code.size() ? code[place] : 0; }

Instruction Decode(Code code) {
    Instruction one;
    std::size_t at = 0;
    constexpr std::array<std::uint8_t, 10> kPrefixes = {0x26, 0x2E, 0x36, 0x3E, 0x64, 0x65, 0x66, 0xF0, 0xF2, 0xF3};
    bool isWord = false;
    for (; std::find(kPrefixes.begin(), kPrefixes.end(), At(code, at)) != kPrefixes.end(); ++at) {
        isWord = isWord || code[at] == 0x66;
        if (code[at] >= 0x66)
            one.prefix = code[at];
    }
    constexpr std::uint8_t kEscape = 0x0F;
    one.isTwoBytes = At(code, at) == kEscape;
    at += one.isTwoBytes ? 1 : 0;
    one.opcode = At(code, at++);
    char kind = (one.isTwoBytes ? kTwoBytes : kOneByte)[one.opcode >> 4][one.opcode & 0xF];
    if (one.isTwoBytes && (one.opcode == 0x38 || one.opcode == 0x3A)) { // a third byte of the opcode
        kind = one.opcode == 0x38 ? 'm' : 'M';
        ++at;
    }
    if (kind == '?')
        return one;
    if (std::strchr("mMZtT", kind)) {
        one.modRm = At(code, at++);
        if (one.HasSib())
            one.sib = At(code, at++);
        const int base = one.HasSib() ? one.sib & 7 : one.modRm & 7;
        if (one.Mode() == 1)
            at += 1;
        else if (one.Mode() == 2 || (one.Mode() == 0 && base == 5))
            at += 4;
    }
    one.operand = at;
    const std::size_t wide = isWord ? 2 : 4;
    const bool isTest = one.Register() < 2;
    switch (kind) {
    case 'b':
    case 'M':
        at += 1;
        break;
    case 'w':
        at += 2;
        break;
    case 'e':
        at += 3;
        break;
    case 'o':
        at += 4;
        break;
    case 'z':
    case 'Z':
        at += wide;
        break;
    case 't':
        at += isTest ? 1 : 0;
        break;
    case 'T':
        at += isTest ? wide : 0;
        break;
    default:
        break;
    }
    one.length = at <= code.size() ? at : 0;
    return one;
}

// and $-16,%esp, or stricter
bool AlignsStack(const Instruction &one, Code code) {
    constexpr std::uint8_t kAndEsp = 0xE4;
    return !one.isTwoBytes && (one.opcode == 0x83 || one.opcode == 0x81) && one.modRm == kAndEsp &&
           (code[one.operand] & 0xF) == 0;
}

// movaps, movapd or movdqa
bool IsAlignedMove(const Instruction &one) {
    if (!one.isTwoBytes)
        return false;
    if (one.opcode == 0x28 || one.opcode == 0x29)
        return one.prefix == 0 || one.prefix == 0x66;
    return (one.opcode == 0x6F || one.opcode == 0x7F) && one.prefix == 0x66;
}

// A return, or a jump to another function.
bool IsLast(const Instruction &one) {
    constexpr int kJump = 4; // of the opcode FF
    if (one.isTwoBytes)
        return false;
    return one.opcode == 0xC3 || one.opcode == 0xC2 || one.opcode == 0xE9 || one.opcode == 0xEB ||
           (one.opcode == 0xFF && one.Register() == kJump);
}

// mov %esp,%ebp
bool MakesFrame(const Instruction &one) {
    return !one.isTwoBytes && ((one.opcode == 0x89 && one.modRm == 0xE5) || (one.opcode == 0x8B && one.modRm == 0xEC));
}

} // namespace

bool ReliesOnAlignedStack(Code code, bool isEndKnown) {
    bool hasFrame = false;
    while (!code.empty()) {
        const Instruction one = Decode(code);
        if (one.length == 0 || AlignsStack(one, code) || (!isEndKnown && IsLast(one)))
            return false;
        hasFrame = hasFrame || MakesFrame(one);
        if (IsAlignedMove(one) && one.IsOnStack(hasFrame))
            return true;
        code = code.subspan(one.length);
    }
    return false;
}

bool ReliesOnAlignedStack(const void *function) {
    constexpr std::size_t kMost = 16 * 1024;
    constexpr std::size_t kWithoutSymbol = 256;
    const std::size_t size = crossings::SizeAt(function);
    std::vector<std::uint8_t> code(size > 0 ? std::min(size, kMost) : kWithoutSymbol);
    if (!crossings::ReadMemory(function, code.data(), code.size()))
        return false;
    return ReliesOnAlignedStack(code, size > 0);
}

} // namespace host
