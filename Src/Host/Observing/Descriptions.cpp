// Collects what the library, the services and the ledger say; see Descriptions.h.
#include "Descriptions.h"

#include "DatarefNames.h"
#include "DatarefValues.h"
#include "Ledger.h"

#include "Common/Columns.h"
#include "Common/NearestName.h"
#include "Common/Text.h"
#include "Common/UsageError.h"
#include "Services/Commands.h"
#include "Services/Datarefs.h"
#include "Services/Input.h"

#include "AVSK/AVSKPlugins.h"
#include "AVSK/AVSKUtilities.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include <fnmatch.h>

namespace host {
namespace {

using TableRow = std::vector<std::string>;

// The names that match a pattern. Throws UsageError if there are none.
std::vector<std::string> Select(const std::vector<std::string> &names, const std::string &pattern, const char *what,
                                const char *list) {
    std::string glob = pattern.find('*') == std::string::npos ? "*" + pattern + "*" : pattern;
    for (std::size_t at = 0; (at = glob.find_first_of("[]?\\", at)) != std::string::npos; at += 2)
        glob.insert(at, "\\"); // only * is special
    std::vector<std::string> selected;
    for (const std::string &name : names) {
        if (fnmatch(glob.c_str(), name.c_str(), FNM_CASEFOLD) == 0)
            selected.push_back(name);
    }
    if (selected.empty()) {
        const std::string nearest = DidYouMean(pattern, names);
        throw UsageError(std::string("no ") + what + " matches '" + pattern + "'" +
                         (nearest.empty() ? std::string(": '") + list + "' without a pattern lists all" : nearest));
    }
    return selected;
}

// ---- Datarefs

std::string NameOf(AVSKPluginID plugin) {
    std::array<char, AVSK_TEXT_SIZE> name{};
    AVSKGetPluginInfo(plugin, name.data(), nullptr, nullptr, nullptr);
    return name.data();
}

// The plugin that owns something of this description; empty if none does.
std::string OwnerOf(Kind kind, const std::string &what, const Ledger &owners) {
    for (int i = 1; i < AVSKCountPlugins(); ++i) {
        const AVSKPluginID plugin = AVSKGetNthPlugin(i);
        for (const Possession &owned : owners.OwnedBy(plugin, kind)) {
            if (owned.what == what)
                return NameOf(plugin);
        }
    }
    return "";
}

std::string ValueText(AVSKDataRef ref, const std::vector<std::string> &values) {
    constexpr std::size_t kMostElements = 3;
    constexpr std::size_t kLongestText = 24;
    if (AVSKGetDataRefTypes(ref) == AVSKDataTypeData) {
        std::string text = values.front();
        for (char &c : text) {
            if (static_cast<unsigned char>(c) < ' ')
                c = '?';
        }
        return '"' + (text.size() > kLongestText ? text.substr(0, kLongestText) + "..." : text) + '"';
    }
    std::vector<std::string> shown = values;
    if (shown.size() > kMostElements) {
        shown.resize(kMostElements);
        shown.push_back("... (" + std::to_string(values.size()) + ")");
    }
    return shown.empty() ? "-" : Join(shown, " ");
}

std::string MeaningOf(const std::string &name, const DatarefNames &datarefs, const Ledger &owners) {
    if (const DatarefDescription *description = Datarefs::Describe(name))
        return description->meaning;
    if (datarefs.IsShared(name))
        return "shared by plugins";
    const std::string owner = OwnerOf(Kind::Dataref, name, owners);
    return owner.empty() ? "-" : "of plugin " + owner;
}

// ---- Keys

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

} // namespace

std::vector<std::string> DescribeDatarefs(const DatarefNames &datarefs, const Ledger &owners,
                                          const std::string &pattern) {
    std::vector<TableRow> rows{{"name", "type", "access", "value", "unit", "meaning"}};
    for (const std::string &name : Select(datarefs.Published(), pattern, "dataref", "avsk datarefs")) {
        AVSKDataRef ref = FindPublished(name);
        const DatarefDescription *description = Datarefs::Describe(name);
        rows.push_back({name, DatarefTypes(ref), AVSKCanWriteDataRef(ref) != 0 ? "writable" : "read-only",
                        ValueText(ref, ReadDataref(ref)), description ? description->unit : "-",
                        MeaningOf(name, datarefs, owners)});
    }
    return AlignColumns(rows);
}

std::vector<std::string> DescribeCommands(const CommandTable &commands, const Ledger &owners,
                                          const std::string &pattern) {
    std::vector<std::string> names;
    for (const auto &command : commands.All())
        names.push_back(command->name);
    std::vector<TableRow> rows{{"name", "owner", "bound to", "description"}};
    for (const std::string &name : Select(names, pattern, "command", "avsk commands")) {
        const Command *command = commands.Find(name);
        const std::string owner = command->act ? "simulator" : OwnerOf(Kind::Command, name, owners);
        const std::string bindings = Input::BindingsOf(name);
        rows.push_back({name, owner.empty() ? "-" : owner, bindings.empty() ? "-" : bindings, command->description});
    }
    return AlignColumns(rows);
}

std::vector<std::string> DescribeKeys(const std::string &pattern) {
    std::vector<std::string> names;
    for (int code = 1; code < kCodes; ++code) {
        if (std::string name = KeyName(code); !name.empty())
            names.push_back(std::move(name));
    }
    const std::vector<std::string> selected = Select(names, pattern, "key", "avsk keys");
    std::vector<TableRow> rows;
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

} // namespace host
