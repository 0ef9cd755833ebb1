// Reads a session's text: words, then the form of each line; see Session.h.
// Whatever can be wrong with a line by itself is found here, before anything runs.
#include "Session.h"

#include "Common/UsageError.h"
#include "Crossings/Words.h"
#include "Observing/CallLog.h"
#include "Observing/Possession.h"

#include "AVSK/AVSKUtilities.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>

namespace host {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

template <typename T>
bool Reads(std::string_view text, T &value) {
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && stop == text.data() + text.size();
}

bool IsNumber(std::string_view text) {
    double number = 0;
    return Reads(text, number) && std::isfinite(number);
}

// Whole numbers between separators.
bool AreIntegers(std::string_view text, char separator, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const bool last = i + 1 == count;
        const std::size_t end = last ? text.size() : text.find(separator);
        int number = 0;
        if (end == std::string_view::npos || !Reads(text.substr(0, end), number))
            return false;
        text.remove_prefix(last ? end : end + 1);
    }
    return true;
}

// A value, or a number and how far from it will do: 1.5~0.01.
bool IsValue(std::string_view text) {
    const std::size_t tilde = text.find('~');
    return tilde == std::string_view::npos || (IsNumber(text.substr(0, tilde)) && IsNumber(text.substr(tilde + 1)));
}

// One parameter of a form.
struct Parameter {
    std::string_view what; // without its marks
    bool optional;
    bool repeated;
};

std::vector<Parameter> ParametersOf(std::string_view text) {
    std::vector<Parameter> parameters;
    while (!text.empty()) {
        Parameter parameter{crossings::TakeWord(text, " "), false, false};
        if (parameter.what.ends_with('+')) {
            parameter.repeated = true;
            parameter.what.remove_suffix(1);
        }
        if (parameter.what.starts_with('[')) {
            parameter.optional = true;
            parameter.what = parameter.what.substr(1, parameter.what.size() - 2);
        }
        parameters.push_back(parameter);
    }
    return parameters;
}

bool IsOneOf(std::string_view words, std::string_view text) {
    while (!words.empty()) {
        if (crossings::TakeWord(words, "|") == text)
            return true;
    }
    return false;
}

bool Fits(std::string_view what, const Word &word) {
    constexpr int kMost = 10'000'000;
    int number = 0;
    if (what == "TEXT")
        return !word.text.empty();
    if (what == "COUNT")
        return Reads(std::string_view(word.text), number) && number > 0 && number <= kMost;
    if (what == "INTEGER")
        return Reads(std::string_view(word.text), number);
    if (what == "NUMBER")
        return IsNumber(word.text) && NumberOf(word.text) > 0 && NumberOf(word.text) <= kMost;
    if (what == "POINT")
        return AreIntegers(word.text, ',', 2);
    if (what == "RECT")
        return AreIntegers(word.text, ',', 4);
    if (what == "SIZE")
        return AreIntegers(word.text, 'x', 2);
    if (what == "KEY")
        return KeyOf(word.text) != 0;
    if (what == "SLOT")
        return CallLog::CountArguments(word.text) >= 0;
    if (what == "KIND")
        return KindOf(word.text).has_value();
    if (what == "VALUE")
        return word.quoted || IsValue(word.text);
    return !word.quoted && IsOneOf(what, word.text);
}

std::string NameOf(std::string_view what) {
    static constexpr std::pair<std::string_view, std::string_view> kNames[] = {
        {"TEXT", "a text"},
        {"COUNT", "a whole number from 1 to 10000000"},
        {"INTEGER", "a whole number"},
        {"NUMBER", "a number above 0, at most 10000000"},
        {"POINT", "a point, written X,Y,"},
        {"RECT", "a rectangle, written LEFT,TOP,RIGHT,BOTTOM,"},
        {"SIZE", "a size, written WIDTHxHEIGHT,"},
        {"KEY", "a key (a letter, a digit, F1 to F24, or a name such as Escape or \"Page Up\")"},
        {"SLOT", "a host service, named as in AVSKHostCallbacks,"},
        {"VALUE", "a value (a text, a number, or NUMBER~TOLERANCE)"}};
    for (const auto &[kind, name] : kNames) {
        if (kind == what)
            return std::string(name);
    }
    if (what == "KIND")
        return "a kind of thing (" + KindWords() + ")";
    std::string name = "'" + std::string(what) + "'";
    for (std::size_t at = 0; (at = name.find('|', at)) != std::string::npos; at += 6)
        name.replace(at, 1, "' or '");
    return name;
}

std::string Usage(const Form &form) {
    std::string usage = form.kind == StepKind::Expect ? "expect [no] " : "";
    usage += form.name;
    return form.parameters.empty() ? usage : usage + " " + std::string(form.parameters);
}

} // namespace

bool Step::Has(std::string_view word) const {
    return std::any_of(words.begin() + std::min<std::ptrdiff_t>(1, std::ssize(words)), words.end(),
                       [word](const Word &known) { return !known.quoted && known.text == word; });
}

std::vector<std::string> Step::From(std::size_t first) const {
    std::vector<std::string> texts;
    for (std::size_t i = first; i < words.size(); ++i)
        texts.push_back(words[i].text);
    return texts;
}

double NumberOf(std::string_view text) {
    double number = 0;
    Reads(text, number);
    return number;
}

std::vector<int> IntegersOf(std::string_view text) {
    std::vector<int> numbers;
    while (!text.empty()) {
        Reads(crossings::TakeWord(text, ",x"), numbers.emplace_back());
    }
    return numbers;
}

int KeyOf(std::string_view name) {
    constexpr int kCodes = 256;
    const auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    for (int code = 1; code < kCodes; ++code) {
        const char *known = AVSKGetVirtualKeyDescription(static_cast<char>(code));
        const std::string_view text = known ? known : "";
        if (!text.empty() && std::equal(text.begin(), text.end(), name.begin(), name.end(), same))
            return code;
    }
    return 0;
}

void SessionParser::Refuse(int column, const std::string &why) const {
    throw UsageError(mName + ":" + std::to_string(mLine) + ":" + std::to_string(column) + ": " + why);
}

std::vector<Word> SessionParser::Split(std::string_view line) const {
    std::vector<Word> words;
    std::size_t at = 0;
    while (true) {
        while (at < line.size() && IsBlank(line[at]))
            ++at;
        if (at == line.size() || line[at] == '#')
            return words;
        Word word{"", static_cast<int>(at) + 1, line[at] == '"'};
        if (!word.quoted) {
            for (; at < line.size() && !IsBlank(line[at]); ++at) {
                if (line[at] == '"')
                    Refuse(static_cast<int>(at) + 1, "a quote in the middle of a word: put the whole text in quotes");
                word.text += line[at];
            }
            words.push_back(word);
            continue;
        }
        for (++at;; ++at) {
            if (at >= line.size())
                Refuse(word.column, "this text does not end: close it with a quote");
            if (line[at] == '"')
                break;
            if (line[at] == '\\') {
                static constexpr std::string_view kEscapes = "\"\\nt";
                static constexpr std::string_view kMeanings = "\"\\\n\t";
                const std::size_t known = ++at < line.size() ? kEscapes.find(line[at]) : std::string_view::npos;
                if (known == std::string_view::npos)
                    Refuse(static_cast<int>(at), R"(unknown escape: there are \" \\ \n and \t)");
                word.text += kMeanings[known];
            } else {
                word.text += line[at];
            }
        }
        if (++at < line.size() && !IsBlank(line[at]))
            Refuse(static_cast<int>(at) + 1, "put a blank behind the text's closing quote");
        words.push_back(word);
    }
}

const Form &SessionParser::Find(const std::vector<Word> &words, std::size_t first, bool expectation, int end) const {
    if (first == words.size())
        Refuse(end, "say what is expected: 'avsk run --words' lists the words");
    for (const Form &form : SessionForms()) {
        if (!words[first].quoted && (form.kind == StepKind::Expect) == expectation && form.name == words[first].text)
            return form;
    }
    Refuse(words[first].column, "unknown word '" + words[first].text + "': 'avsk run --words' lists the words");
}

// Checks the parameters from left to right; one that may be missing is passed over if the word is not of its kind.
void SessionParser::Fit(const Form &form, const std::vector<Word> &words, int end) const {
    std::size_t at = 0;
    std::string_view missed; // the last optional one that was passed over
    for (const Parameter &parameter : ParametersOf(form.parameters)) {
        const bool fits = at < words.size() && Fits(parameter.what, words[at]);
        if (!fits && !parameter.optional) {
            const std::string seen = at < words.size() ? "not '" + words[at].text + "'" : "but the line ends";
            Refuse(at < words.size() ? words[at].column : end,
                   NameOf(parameter.what) + " belongs here, " + seen + ": write '" + Usage(form) + "'");
        }
        if (!fits) {
            missed = parameter.what;
            continue;
        }
        ++at;
        while (parameter.repeated && at < words.size() && Fits(parameter.what, words[at]))
            ++at;
    }
    if (at < words.size())
        Refuse(words[at].column, "'" + words[at].text + "' does not belong here" +
                                     (missed.empty() ? "" : ", only " + NameOf(missed)) + ": write '" + Usage(form) +
                                     "'");
}

void SessionParser::CheckOrder(const Step &step, int column) {
    const Form &form = *step.form;
    if (form.kind == StepKind::SetUp && mBegun)
        Refuse(column,
               "'" + std::string(form.name) + "' belongs before the first step: the plugins are loaded by then");
    if (mUnloaded && !form.afterUnload)
        Refuse(column, "nothing can run here, the plugins are unloaded: move this before 'unload'");
    if (form.name == "nothing" && (!mUnloaded || step.negated))
        Refuse(column, "'expect nothing left' belongs behind 'unload'");
    if (form.name == "tidy" && !mUnloaded)
        Refuse(column, "'expect tidy' belongs behind 'unload'");
    mBegun = mBegun || form.kind != StepKind::SetUp;
    mUnloaded = mUnloaded || form.name == "unload";
}

void SessionParser::Read(std::string_view line, std::vector<Step> &steps) {
    ++mLine;
    std::vector<Word> words = Split(line);
    if (words.empty())
        return;
    const int end = static_cast<int>(line.find_last_not_of(" \t\r")) + 2;
    const int column = words[0].column;
    const bool expectation = !words[0].quoted && words[0].text == "expect";
    const bool negated = expectation && words.size() > 1 && !words[1].quoted && words[1].text == "no";
    const std::size_t first = expectation ? (negated ? 2 : 1) : 0;
    const Form &form = Find(words, first, expectation, end);
    const std::string_view shown = line.substr(static_cast<std::size_t>(column) - 1);
    words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(first) + 1);
    Fit(form, words, end);
    Step step{&form, mLine, std::string(shown.substr(0, shown.find_last_not_of(" \t\r") + 1)), negated,
              std::move(words)};
    if (form.parameters.starts_with("SLOT") && static_cast<int>(step.Count()) - 1 > CallLog::CountArguments(step[0]))
        Refuse(step.words.back().column,
               "too many arguments: " + step[0] + " has " + std::to_string(CallLog::CountArguments(step[0])));
    CheckOrder(step, column);
    steps.push_back(std::move(step));
}

} // namespace host
