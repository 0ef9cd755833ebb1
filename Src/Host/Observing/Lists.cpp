// Makes the lists; see Lists.h.
#include "Lists.h"

#include "DatarefValues.h"
#include "Publications.h"

#include "Common/Columns.h"
#include "Common/NearestName.h"
#include "Common/Text.h"
#include "Common/UsageError.h"
#include "Services/Commands.h"
#include "Services/Datarefs.h"
#include "Services/Input.h"

#include "AVSK/AVSKUtilities.h"

#include <cctype>
#include <utility>

#include <fnmatch.h>

namespace host {
namespace {

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

std::string TypesText(AVSKDataRef ref, std::size_t count) {
    constexpr std::pair<int, const char *> kNames[] = {
        {AVSKDataTypeInt, "int"},        {AVSKDataTypeFloat, "float"},
        {AVSKDataTypeDouble, "double"},  {AVSKDataTypeFloatArray, "float[]"},
        {AVSKDataTypeIntArray, "int[]"}, {AVSKDataTypeData, "bytes"}};
    const int types = AVSKGetDataRefTypes(ref);
    std::vector<std::string> texts;
    for (const auto &[bit, name] : kNames) {
        if ((types & bit) != 0)
            texts.emplace_back(name);
    }
    if (texts.size() == 1 && texts[0].ends_with("[]"))
        texts[0].insert(texts[0].size() - 1, std::to_string(count));
    return texts.empty() ? "none" : Join(texts, "+");
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
        shown.emplace_back("...");
    }
    return shown.empty() ? "-" : Join(shown, " ");
}

TableRow DatarefRow(const std::string &name, const Publication &publication) {
    AVSKDataRef ref = AVSKFindDataRef(name.c_str());
    const std::vector<std::string> values = ReadDataref(ref);
    const DatarefDescription *description = Datarefs::Describe(name);
    return {name,
            TypesText(ref, values.size()),
            AVSKCanWriteDataRef(ref) != 0 ? "writable" : "read-only",
            ValueText(ref, values),
            description ? description->unit : "-",
            description            ? description->meaning
            : publication.isShared ? "shared; first by plugin " + publication.owner
                                   : "of plugin " + publication.owner};
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

std::vector<std::string> ListDatarefs(const Publications &published, const std::string &pattern) {
    const auto datarefs = published.Datarefs();
    std::vector<std::string> names;
    names.reserve(datarefs.size());
    for (const auto &[name, publication] : datarefs)
        names.push_back(name);
    std::vector<TableRow> rows{{"name", "type", "access", "value", "unit", "meaning"}};
    for (const std::string &name : Select(names, pattern, "dataref", "avsk datarefs"))
        rows.push_back(DatarefRow(name, datarefs.at(name)));
    return AlignColumns(rows);
}

std::vector<std::string> ListCommands(const CommandTable &commands, const Publications &published,
                                      const std::string &pattern) {
    std::vector<std::string> names;
    for (const auto &command : commands.All())
        names.push_back(command->name);
    std::vector<TableRow> rows{{"name", "owner", "bound to", "description"}};
    for (const std::string &name : Select(names, pattern, "command", "avsk commands")) {
        const Command *command = commands.Find(name);
        const std::string bindings = Input::BindingsOf(name);
        rows.push_back({name, command->act ? "simulator" : published.CreatorOf(name), bindings.empty() ? "-" : bindings,
                        command->description});
    }
    return AlignColumns(rows);
}

std::vector<std::string> ListKeys(const std::string &pattern) {
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
