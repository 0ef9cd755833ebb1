// The table of parameter kinds; see ParameterKinds.h.
#include "ParameterKinds.h"

#include "PictureCheck.h"
#include "Values.h"

#include "Common/Text.h"
#include "Crossings/Services.h"
#include "Crossings/Words.h"
#include "Observing/CallLog.h"
#include "Observing/Possession.h"
#include "Rules/RuleTable.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace host {
namespace {

constexpr int kMostCount = 10'000'000;

bool IsText(const Word &word) { return !word.text.empty(); }

bool IsPng(const Word &word) { return word.text.size() > 4 && word.text.ends_with(".png"); }
bool IsTolerance(const Word &word) { return ReadTolerance(word.text).has_value(); }

bool IsCount(const Word &word) {
    const auto number = ReadInteger(word.text);
    return number && *number > 0 && *number <= kMostCount;
}

bool IsInteger(const Word &word) { return ReadInteger(word.text).has_value(); }

bool IsPositive(const Word &word) {
    const auto number = ReadNumber(word.text);
    return number && *number > 0 && *number <= kMostCount;
}

bool IsPoint(const Word &word) { return ReadIntegers(word.text, ',', 2).has_value(); }
bool IsRectangle(const Word &word) { return ReadIntegers(word.text, ',', 4).has_value(); }
bool IsSize(const Word &word) { return ReadIntegers(word.text, 'x', 2).has_value(); }
bool IsKey(const Word &word) { return KeyCode(word.text) != 0; }
bool IsSlot(const Word &word) { return CallLog::CountArguments(word.text) >= 0; }
bool IsPossession(const Word &word) { return KindOf(word.text).has_value(); }

bool IsRule(const Word &word) { return FindRule(word.text) != nullptr; }

bool IsValue(const Word &word) {
    const std::string_view text = word.text;
    const std::size_t tilde = text.find('~');
    return word.quoted || tilde == std::string_view::npos ||
           (ReadNumber(text.substr(0, tilde)) && ReadNumber(text.substr(tilde + 1)));
}

std::vector<std::string> SplitAt(std::string_view text, std::string_view separators) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        if (const std::string_view part = crossings::TakeWord(text, separators); !part.empty())
            parts.emplace_back(part);
    }
    return parts;
}

std::vector<std::string> KindNames() { return SplitAt(KindWords(), ", "); }

constexpr ParameterKind kKinds[] = {
    {"TEXT", IsText, "a text"},
    {"NAME", IsText, "a name"},
    {"PLUGIN", IsText, "a plugin's name or signature"},
    {"PATH", IsText, "a path"},
    {"PATTERN", IsText, "a part of a name, or a pattern in which * is any text"},
    {"DIR", IsText, "a folder"},
    {"FILE", IsText, "a file"},
    {"FILE.png", IsPng, "a .png file"},
    {"TOLERANCE", IsTolerance,
     "the difference that a colour channel may have, from 0 to 255, and the share of pixels that may have more, such "
     "as 8 or 8,0.5% (default 48,0.01%)"},
    {"COUNT", IsCount, "a whole number from 1 to 10000000"},
    {"INTEGER", IsInteger, "a whole number"},
    {"NUMBER", IsPositive, "a number above 0, at most 10000000"},
    {"POINT", IsPoint, "a point X,Y"},
    {"RECT", IsRectangle, "a rectangle LEFT,TOP,RIGHT,BOTTOM"},
    {"SIZE", IsSize, "a size WIDTHxHEIGHT"},
    {"KEY", IsKey, "a key (a letter, a digit, F1 to F24, or a name such as Escape or \"Page Up\")", KeyNames},
    {"SLOT", IsSlot, "a host service, named as in AVSKHostCallbacks", crossings::ServiceNames},
    {"KIND", IsPossession, "a kind of possession", KindNames},
    {"RULE", IsRule, "a rule; 'avsk explain' lists them", RuleIds},
    {"VALUE", IsValue, "a value (a text or a number; in expectations also NUMBER~TOLERANCE)"},
};

const ParameterKind *FindKind(std::string_view mark) {
    const auto *const found = std::find_if(std::begin(kKinds), std::end(kKinds),
                                           [mark](const ParameterKind &kind) { return kind.mark == mark; });
    if (found != std::end(kKinds))
        return found;
    if (std::isupper(static_cast<unsigned char>(mark.front())) != 0)
        throw std::logic_error("a form has the unknown parameter kind " + std::string(mark));
    return nullptr;
}

} // namespace

bool Parameter::Accepts(const Word &word) const {
    if (kind)
        return kind->accepts(word);
    const std::vector<std::string> names = Names();
    return !word.quoted && std::find(names.begin(), names.end(), word.text) != names.end();
}

std::vector<std::string> Parameter::Names() const {
    if (kind)
        return kind->names ? kind->names() : std::vector<std::string>();
    return SplitAt(choices, "|");
}

std::string Parameter::Meaning() const {
    if (kind && kind->names == KindNames)
        return std::string(kind->meaning) + " (" + KindWords() + ")";
    if (kind)
        return std::string(kind->meaning);
    return "'" + Join(Names(), "' or '") + "'";
}

std::vector<Parameter> ParametersOf(std::string_view parameters) {
    std::vector<Parameter> read;
    while (!parameters.empty()) {
        std::string_view mark = crossings::TakeWord(parameters, " ");
        Parameter parameter{nullptr, "", false, mark.ends_with('+')};
        if (parameter.repeated)
            mark.remove_suffix(1);
        parameter.optional = mark.starts_with('[');
        if (parameter.optional)
            mark = mark.substr(1, mark.size() - 2);
        parameter.kind = FindKind(mark);
        parameter.choices = mark;
        read.push_back(parameter);
    }
    return read;
}

} // namespace host
