// Calls as text; see Format.h.
#include "Format.h"

#include "Callback.h"
#include "Symbols.h"
#include "Words.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstring>

#include <sys/uio.h>
#include <unistd.h>

namespace crossings {
namespace {

constexpr std::string_view kMore = "...";

template <class... N>
std::string_view Digits(std::span<char> buffer, N... number) {
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number...).ptr;
    return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

// Up to the end of the page that the address is in: the next one may be missing.
std::size_t LeftOnPage(const char *address) {
    constexpr std::uintptr_t kPage = 4096;
    return kPage - reinterpret_cast<std::uintptr_t>(address) % kPage;
}

// The kernel says whether there is memory, where reading it ourselves would be the end.
bool Copy(const char *from, char *to, std::size_t size) {
    const iovec source{const_cast<char *>(from), size};
    const iovec target{to, size};
    return process_vm_readv(getpid(), &target, 1, &source, 1, 0) == static_cast<ssize_t>(size);
}

std::string_view SideName(Side side, const std::string &plugin) {
    return side == Side::Host ? "host" : side == Side::Library ? "library" : std::string_view(plugin);
}

bool IsEntryPoint(const Callback &callback) { return callback.owner == NO_PLUGIN_ID; }

} // namespace

bool ReadText(const char *text, int length, char *buffer, std::size_t size) {
    const std::size_t most = length < 0 ? size - 1 : std::min(size - 1, static_cast<std::size_t>(length));
    std::size_t read = 0;
    while (read < most) {
        const std::size_t part = std::min(most - read, LeftOnPage(text + read));
        if (!Copy(text + read, buffer + read, part))
            return false;
        if (std::memchr(buffer + read, '\0', part) != nullptr)
            return true;
        read += part;
    }
    buffer[most] = '\0';
    return true;
}

void Line::Add(std::string_view text) {
    const std::size_t length = std::min(text.size(), kSize - mLength);
    std::memcpy(mText + mLength, text.data(), length);
    mLength += length;
    if (length < text.size())
        std::memcpy(mText + kSize - kMore.size(), kMore.data(), kMore.size());
}

void Line::Add(double number) {
    char buffer[32];
    // Few digits for what was a float.
    const auto rounded = static_cast<float>(number);
    Add(rounded == number ? Digits(buffer, rounded) : Digits(buffer, number));
}

void Line::Add(int number) {
    char buffer[16];
    Add(Digits(buffer, number));
}

void Line::AddHex(AVSKWord word) {
    char buffer[16];
    Add("0x");
    Add(Digits(buffer, word, 16));
}

void Line::AddText(const char *text, int length) {
    constexpr std::size_t kMost = 80;
    char buffer[kMost + 1];
    if (!text)
        return Add("null");
    if (!ReadText(text, length, buffer, sizeof buffer)) {
        Add("unreadable ");
        return AddHex(reinterpret_cast<std::uintptr_t>(text));
    }
    Add('"');
    const std::size_t end = std::strlen(buffer);
    for (const char c : std::string_view(buffer, end)) {
        if (c == '\n')
            Add("\\n");
        else if (c == '"' || c == '\\')
            Add(std::string_view(c == '"' ? "\\\"" : "\\\\"));
        else
            Add(static_cast<unsigned char>(c) < ' ' ? '?' : c);
    }
    Add('"');
    if (end == kMost && length != static_cast<int>(kMost))
        Add(kMore);
}

void Line::Add(const Value &value) {
    constexpr AVSKWord kFirstAddress = 4096; // words carry numbers and addresses alike
    switch (value.kind) {
    case Value::Kind::Nothing:
        return Add("nothing");
    case Value::Kind::Integer:
        return Add(value.integer);
    case Value::Kind::Word:
        return value.word < kFirstAddress ? Add(static_cast<int>(value.word)) : AddHex(value.word);
    case Value::Kind::Real:
        return Add(value.real);
    case Value::Kind::Character:
        if (value.integer >= ' ' && value.integer < 0x7F) {
            Add('\'');
            Add(static_cast<char>(value.integer));
            return Add('\'');
        }
        return Add(value.integer);
    case Value::Kind::Text:
        return AddText(value.text, value.length);
    case Value::Kind::Function:
        return value.pointer ? Add(SymbolAt(value.pointer)) : Add("null");
    case Value::Kind::Pointer:
        return value.pointer ? AddHex(reinterpret_cast<std::uintptr_t>(value.pointer)) : Add("null");
    case Value::Kind::Structure:
        Add('{');
        Add(value.structure->fields, value.structure->values);
        return Add('}');
    }
}

void Line::Add(std::string_view names, std::span<const Value> values) {
    for (const Value &value : values) {
        if (&value != values.data())
            Add(", ");
        Add(TakeWord(names));
        Add('=');
        Add(value);
    }
}

std::string_view CallerOf(const Crossing &crossing) {
    return SideName(crossing.from, LabelOf(crossing.outer ? crossing.outer->plugin : AVSK_PLUGIN_AERIVO));
}

std::string_view CalleeOf(const Crossing &crossing) { return SideName(crossing.to, LabelOf(crossing.plugin)); }

std::string TitleOf(const Crossing &crossing) {
    std::string title = crossing.what.name;
    if (crossing.callback && !IsEntryPoint(*crossing.callback))
        title += " " + NameOf(*crossing.callback);
    return title;
}

void AddTitle(Line &line, const Crossing &crossing) {
    line.Add(crossing.what.name);
    if (crossing.callback && !IsEntryPoint(*crossing.callback)) {
        line.Add(' ');
        line.Add(NameOf(*crossing.callback));
    }
}

void AddCall(Line &line, const Crossing &crossing) {
    AddTitle(line, crossing);
    line.Add('(');
    line.Add(crossing.what.parameters, crossing.arguments);
    line.Add(')');
}

void AddResult(Line &line, const Crossing &crossing) {
    if (!crossing.returned)
        return line.Add(" threw");
    if (crossing.result.kind == Value::Kind::Nothing)
        return;
    line.Add(" = ");
    line.Add(crossing.result);
}

void AddSides(Line &line, const Crossing &crossing) {
    line.Add(CallerOf(crossing));
    line.Add(" > ");
    line.Add(CalleeOf(crossing));
}

} // namespace crossings
