// Values as text; see ValueText.h. Owns the pointers to the names of handles and enumerants.
#include "ValueText.h"

#include "Symbols.h"
#include "TextCopy.h"
#include "Words.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include <sys/uio.h>
#include <unistd.h>

namespace crossings {
namespace {

const HandleNames *gHandleNames = nullptr;
void (*gAddEnumerant)(Line &line, const Value &value) = nullptr;

// Words carry numbers and addresses alike; nothing is mapped below this one.
constexpr AVSKWord kFirstAddress = 4096;

std::size_t BytesLeftOnPage(const char *address) {
    constexpr std::uintptr_t kPageSize = 4096;
    return kPageSize - reinterpret_cast<std::uintptr_t>(address) % kPageSize;
}

void AddQuoted(Line &line, std::string_view text) {
    const auto isPlain = [](char c) { return static_cast<unsigned char>(c) >= ' ' && c != '"' && c != '\\'; };
    line.Add('"');
    while (!text.empty()) {
        const auto *const end = std::find_if_not(text.begin(), text.end(), isPlain);
        line.Add(text.substr(0, static_cast<std::size_t>(end - text.begin())));
        text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
        if (text.empty())
            break;
        const char c = text.front();
        line.Add(c == '\n' ? std::string_view("\\n") : c == '"' ? "\\\"" : c == '\\' ? "\\\\" : "?");
        text.remove_prefix(1);
    }
    line.Add('"');
}

void AddUnreadable(Line &line, const void *text) {
    line.Add("unreadable ");
    line.AddHex(reinterpret_cast<std::uintptr_t>(text));
}

void AddText(Line &line, const char *text, int length) {
    std::array<char, kShownText + 1> buffer;
    if (!text)
        return line.Add("null");
    if (!ReadText(text, length, buffer.data(), buffer.size()))
        return AddUnreadable(line, text);
    const std::string_view shown = buffer.data();
    AddQuoted(line, shown);
    if (shown.size() == kShownText && length != static_cast<int>(kShownText))
        line.Add("...");
}

void AddPointer(Line &line, const Value &value) {
    if (!value.pointer)
        return line.Add("null");
    const std::string_view name = value.isHandle ? NameOfHandle(value.pointer) : "";
    return name.empty() ? line.AddHex(reinterpret_cast<std::uintptr_t>(value.pointer)) : line.Add(name);
}

void AddCharacter(Line &line, int character) {
    if (character < ' ' || character >= 0x7F)
        return line.Add(character);
    line.Add('\'');
    line.Add(static_cast<char>(character));
    line.Add('\'');
}

} // namespace

void SetEnumerantNames(void (*add)(Line &line, const Value &value)) { gAddEnumerant = add; }
void SetHandleNames(const HandleNames *names) { gHandleNames = names; }

std::string_view NameOfHandle(const void *handle) {
    return gHandleNames ? gHandleNames->NameOf(handle) : std::string_view();
}

// The kernel copies, so a bad address is an error and not a fault.
bool ReadMemory(const void *from, void *to, std::size_t size) {
    const iovec source{const_cast<void *>(from), size};
    const iovec target{to, size};
    return process_vm_readv(getpid(), &target, 1, &source, 1, 0) == static_cast<ssize_t>(size);
}

bool ReadText(const char *text, int length, char *buffer, std::size_t size) {
    const std::size_t most = length < 0 ? size - 1 : std::min(size - 1, static_cast<std::size_t>(length));
    if (gMayFault)
        return CopyText(text, buffer, most);
    std::size_t read = 0;
    while (read < most) {
        const std::size_t part = std::min(most - read, BytesLeftOnPage(text + read)); // the next page may be missing
        if (!ReadMemory(text + read, buffer + read, part))
            return false;
        if (std::memchr(buffer + read, '\0', part) != nullptr)
            return true;
        read += part;
    }
    buffer[most] = '\0';
    return true;
}

void AddValue(Line &line, const Value &value) {
    switch (value.kind) {
    case Value::Kind::Nothing:
        return line.Add("nothing");
    case Value::Kind::Integer:
        return line.Add(value.integer);
    case Value::Kind::Word:
        return value.word < kFirstAddress ? line.Add(static_cast<int>(value.word)) : line.AddHex(value.word);
    case Value::Kind::Real:
        return line.Add(value.real);
    case Value::Kind::Character:
        return AddCharacter(line, value.integer);
    case Value::Kind::Text:
        return AddText(line, value.text, value.length);
    case Value::Kind::Function:
        return value.pointer ? line.Add(KeptNameAt(value.pointer)) : line.Add("null");
    case Value::Kind::Pointer:
        return AddPointer(line, value);
    case Value::Kind::Structure:
        line.Add('{');
        AddValues(line, value.structure->fields, value.structure->values);
        return line.Add('}');
    case Value::Kind::Enumerant:
    case Value::Kind::Bits:
        return gAddEnumerant ? gAddEnumerant(line, value) : line.AddHex(value.word);
    case Value::Kind::Name:
        return line.Add({value.text, static_cast<std::size_t>(value.length)});
    case Value::Kind::Unreadable:
        return AddUnreadable(line, value.pointer);
    }
}

void AddValues(Line &line, std::string_view names, std::span<const Value> values) {
    for (const Value &value : values) {
        if (&value != values.data())
            line.Add(", ");
        line.Add(TakeWord(names));
        line.Add('=');
        AddValue(line, value);
    }
}

std::string StableText(const Value &value, const HandleNames &names) {
    std::array<char, 32> digits{};
    switch (value.kind) {
    case Value::Kind::Nothing:
        return "nothing";
    case Value::Kind::Integer:
    case Value::Kind::Character:
        return std::to_string(value.integer);
    case Value::Kind::Word:
        return value.word < kFirstAddress ? std::to_string(value.word) : "word";
    case Value::Kind::Real:
        std::snprintf(digits.data(), digits.size(), "%.6g", value.real);
        return digits.data();
    case Value::Kind::Text:
        return value.text ? WholeText(value) : "null";
    case Value::Kind::Function:
        return value.pointer ? "function" : "null";
    case Value::Kind::Pointer: {
        const std::string_view name = value.pointer ? names.NameOf(value.pointer) : "null";
        return std::string(name.empty() ? "pointer" : name);
    }
    case Value::Kind::Enumerant:
    case Value::Kind::Bits: {
        Line line;
        AddValue(line, value);
        return std::string(line.Text());
    }
    default:
        return "pointer";
    }
}

std::string WholeText(const Value &value) {
    constexpr std::size_t kLongest = 64 * 1024;
    if (value.kind != Value::Kind::Text || !value.text)
        return "";
    std::string text;
    for (std::size_t size = 256; size <= kLongest; size *= 4) {
        text.resize(size);
        if (!ReadText(value.text, value.length, text.data(), size))
            return "unreadable";
        text.resize(std::strlen(text.c_str()));
        if (text.size() + 1 < size)
            break;
    }
    return text;
}

} // namespace crossings
