// Values as text, in two styles: for a reader of this run, and for comparison
// with other runs. Plugins may pass anything, so texts are read in a way that
// survives a bad address.
#ifndef AVSK_HOST_VALUE_TEXT_H
#define AVSK_HOST_VALUE_TEXT_H

#include "Crossing.h"
#include "Line.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace crossings {

// Names the objects that handles stand for.
class HandleNames {
  public:
    virtual ~HandleNames() = default;
    // Empty if the handle is unknown. The text stays until the next call.
    virtual std::string_view NameOf(const void *handle) const = 0;
};

// The names that AddValue() shows instead of addresses. Null for none; else they
// must stay until replaced, and the texts for ever, outside the heap.
void SetHandleNames(const HandleNames *names);
// One of them; empty if there is none.
std::string_view NameOfHandle(const void *handle);

// Adds the name or names of a value of the kinds Enumerant and Bits. Null for none; then they are numbers. Signal
// handlers call it.
void SetEnumerantNames(void (*add)(Line &line, const Value &value));

// So many bytes of a text are shown to a reader.
inline constexpr std::size_t kShownText = 80;

// For a reader: texts in quotes and cut, functions and handles by name, other
// addresses in hexadecimal.
void AddValue(Line &line, const Value &value);
// "name=value, name=value"
void AddValues(Line &line, std::string_view names, std::span<const Value> values);

// The same in every run: texts whole and without quotes; "pointer", "function"
// or "word" instead of an address that has no name.
std::string StableText(const Value &value, const HandleNames &names);

// A text argument as it is; "unreadable" at a bad address, empty if the value is no text.
std::string WholeText(const Value &value);

// Reads a text of at most size - 1 bytes, or length if that is not negative.
// False if a part of it is not mapped.
bool ReadText(const char *text, int length, char *buffer, std::size_t size);

// Copies memory that a plugin names. False if a part of it is not mapped.
bool ReadMemory(const void *from, void *to, std::size_t size);

} // namespace crossings

#endif
