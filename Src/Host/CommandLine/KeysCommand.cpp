// `avsk keys`: prints the virtual key codes and the flags as enumerations of C.
#include "Commands.h"
#include "SharedOptions.h"

#include "Common/Columns.h"
#include "Common/NamePattern.h"
#include "Services/Input.h"

#include "AVSK/AVSKUtilities.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace host {
namespace {

constexpr int kCodes = 256;

// The library's name of a virtual key code; empty if the code is no key.
std::string KeyName(int code) {
    const char *name = AVSKGetVirtualKeyDescription(static_cast<char>(code));
    return name && std::string(name) != "Unknown" ? name : "";
}

// "Numpad-+" becomes KEY_NUMPAD_PLUS.
std::string KeyConstant(const std::string &name) {
    constexpr std::pair<char, const char *> kSigns[] = {
        {'*', "ASTERISK"},   {'+', "PLUS"},          {'-', "MINUS"},        {'.', "PERIOD"},      {'/', "SLASH"},
        {'=', "EQUALS"},     {']', "RIGHT_BRACKET"}, {'[', "LEFT_BRACKET"}, {'\'', "APOSTROPHE"}, {';', "SEMICOLON"},
        {'\\', "BACKSLASH"}, {',', "COMMA"},         {'`', "GRAVE"}};
    std::string constant = "KEY_";
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        const bool isLast = i + 1 == name.size();
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            constant += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        } else if (!isLast) {
            constant += '_';
        } else {
            for (const auto &[sign, word] : kSigns) {
                if (sign == c)
                    constant += word;
            }
        }
    }
    return constant;
}

std::vector<std::string> ListKeys(const std::string &pattern) {
    std::vector<std::string> names;
    for (int code = 1; code < kCodes; ++code) {
        if (std::string name = KeyName(code); !name.empty())
            names.push_back(std::move(name));
    }
    const std::vector<std::string> selected = SelectNames(names, pattern, "keys");
    std::vector<std::vector<std::string>> rows;
    for (int code = 1; code < kCodes; ++code) {
        const std::string name = KeyName(code);
        if (name.empty() || std::find(selected.begin(), selected.end(), name) == selected.end())
            continue;
        const char *command = Input::BoundName(code);
        const std::string shown = name == "\\" ? "backslash" : name; // at a line's end it would continue the line
        rows.push_back({"    " + KeyConstant(name) + " = " + std::to_string(code) + ",",
                        "/* " + shown + (command ? ": runs " + std::string(command) : "") + " */"});
    }
    std::vector<std::string> lines{
        "/* Virtual key codes. As a char, a code above 127 is negative: write (char)KEY_... */", "enum {"};
    for (const std::string &line : AlignColumns(rows))
        lines.push_back(line);
    lines.insert(
        lines.end(),
        {"};", "", "/* Flags of a key: a sum. A press has KEY_FLAG_DOWN, a release KEY_FLAG_UP. */", "enum {"});
    constexpr std::pair<const char *, KeyFlag> kFlags[] = {
        {"SHIFT", kKeyShift}, {"CONTROL", kKeyControl}, {"DOWN", kKeyDown}, {"UP", kKeyUp}};
    for (const auto &[name, flag] : kFlags)
        lines.push_back("    KEY_FLAG_" + std::string(name) + " = " + std::to_string(flag) + ",");
    lines.emplace_back("};");
    return lines;
}

} // namespace

void AddKeysCommand(CLI::App &app, Job &job) {
    const auto pattern = std::make_shared<std::string>();
    CLI::App *command = app.add_subcommand("keys", "Prints the key codes and flags as constants for C and C++.");
    AddPattern(*command, *pattern);
    command->footer(
        "The output compiles as it is: 'avsk keys > keys.h'. The comment beside a code is the key's name, as "
        "sessions use it,\nand the command of the simulator that the key runs.\n\n"
        "Examples:\n  avsk keys > keys.h\n  avsk keys 'Numpad*'\n\n"
        "Exit status: 0, or 2 if no key matches.");
    command->callback([pattern, &job] {
        job = [pattern] {
            PrintLines(ListKeys(*pattern));
            return 0;
        };
    });
}

} // namespace host
