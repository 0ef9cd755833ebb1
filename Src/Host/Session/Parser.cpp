// Splits a line into words and checks them against the table of forms; see
// Parser.h. What can be wrong with a line by itself is found here, before
// anything runs.
#include "Parser.h"

#include "Forms.h"
#include "ParameterKinds.h"

#include "Common/NearestName.h"
#include "Common/UsageError.h"
#include "Observing/CallLog.h"

#include <algorithm>

namespace host {
namespace {

constexpr const char *kBlanks = " \t\r";

bool IsBlank(char c) { return std::string_view(kBlanks).find(c) != std::string_view::npos; }

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
        if (line[at] == '"') {
            words.push_back(TakeQuoted(line, at));
            continue;
        }
        Word word{"", static_cast<int>(at) + 1, /*quoted=*/false};
        for (; at < line.size() && !IsBlank(line[at]); ++at) {
            if (line[at] == '"')
                Refuse(static_cast<int>(at) + 1, "a quote in the middle of a word: put the whole text in quotes");
            word.text += line[at];
        }
        words.push_back(word);
    }
}

// From the opening quote to the place after the closing one.
Word SessionParser::TakeQuoted(std::string_view line, std::size_t &at) const {
    static constexpr std::string_view kEscapes = "\"\\nt";
    static constexpr std::string_view kMeanings = "\"\\\n\t";
    Word word{"", static_cast<int>(at) + 1, /*quoted=*/true};
    for (++at;; ++at) {
        if (at >= line.size())
            Refuse(word.column, "this text does not end: close it with a quote");
        if (line[at] == '"')
            break;
        if (line[at] != '\\') {
            word.text += line[at];
            continue;
        }
        const std::size_t known = ++at < line.size() ? kEscapes.find(line[at]) : std::string_view::npos;
        if (known == std::string_view::npos)
            Refuse(static_cast<int>(at), R"(unknown escape: there are \" \\ \n and \t)");
        word.text += kMeanings[known];
    }
    if (++at < line.size() && !IsBlank(line[at]))
        Refuse(static_cast<int>(at) + 1, "put a blank after the text's closing quote");
    return word;
}

const Form &SessionParser::Find(const Word &wanted, bool expectation) {
    std::vector<std::string> names;
    const Form *other = nullptr; // a step where an expectation belongs, or the reverse
    for (const Form &form : SessionForms()) {
        const bool isWanted = !wanted.quoted && form.word == wanted.text;
        if (form.IsExpectation() != expectation)
            other = isWanted ? &form : other;
        else if (isWanted)
            return form;
        else
            names.emplace_back(form.word);
    }
    mUnsure = true;
    if (other)
        Refuse(wanted.column, "'" + wanted.text + "' is " + (expectation ? "no expectation" : "an expectation") +
                                  ": write '" + other->Usage() + "'");
    if (!expectation)
        names.emplace_back("expect");
    if (wanted.quoted && std::find(names.begin(), names.end(), wanted.text) != names.end())
        Refuse(wanted.column, "a text where a word is expected: write " + wanted.text + " without quotes");
    const std::string nearest = DidYouMean(wanted.text, names);
    Refuse(wanted.column,
           "unknown word '" + wanted.text + "'" + (nearest.empty() ? ": 'avsk run --words' lists the words" : nearest));
}

// Checks the parameters from left to right. An optional one is skipped if the word is not of its kind.
void SessionParser::CheckParameters(const Form &form, const std::vector<Word> &words, int end) const {
    std::size_t at = 0;
    std::string skipped;            // what the optional parameters at this place would have been
    std::vector<std::string> names; // that they accept
    for (const Parameter &parameter : ParametersOf(form.parameters)) {
        if (at < words.size() && parameter.Accepts(words[at])) {
            do
                ++at;
            while (parameter.repeated && at < words.size() && parameter.Accepts(words[at]));
            skipped.clear();
            names.clear();
        } else if (parameter.optional) {
            skipped += (skipped.empty() ? "" : " or ") + parameter.Meaning();
            const std::vector<std::string> more = parameter.Names();
            names.insert(names.end(), more.begin(), more.end());
        } else {
            const std::string found = at < words.size() ? "found '" + words[at].text + "'" : "but the line ends";
            Refuse(at < words.size() ? words[at].column : end,
                   "expected " + parameter.Meaning() + ", " + found + ": write '" + form.Usage() + "'" +
                       (at < words.size() ? DidYouMean(words[at].text, parameter.Names()) : ""));
        }
    }
    if (at < words.size())
        Refuse(words[at].column, (skipped.empty() ? "expected nothing more" : "expected " + skipped) + ", found '" +
                                     words[at].text + "': write '" + form.Usage() + "'" +
                                     DidYouMean(words[at].text, names));
}

void SessionParser::CheckOrder(const Form &form, bool negated, int column) {
    const auto has = [&form](FormFlags flag) { return (form.flags & flag) != 0; };
    const std::string word = (form.IsExpectation() ? "'expect " : "'") + std::string(form.word) + "'";
    if (negated && has(kNeverNegated))
        Refuse(column, "there is no 'expect no " + std::string(form.word) + "': write '" + form.Usage() + "'");
    if (form.IsSetUp() && mBegun)
        Refuse(column, word + " belongs before the first step: the plugins are loaded by then");
    if (mUnloaded && !has(kAlsoAfterUnload) && !has(kOnlyAfterUnload))
        Refuse(column, word + " needs loaded plugins: move it before 'unload'");
    if (!mUnloaded && !mUnsure && has(kOnlyAfterUnload))
        Refuse(column, word + " belongs after 'unload'");
    mBegun = mBegun || !form.IsSetUp();
    mUnloaded = mUnloaded || has(kUnloads);
}

std::optional<Step> SessionParser::Read(std::string_view line) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (++mLine == 1 && line.starts_with(kByteOrderMark))
        line.remove_prefix(kByteOrderMark.size());
    std::vector<Word> words = Split(line);
    if (words.empty())
        return std::nullopt;
    const int end = static_cast<int>(line.find_last_not_of(kBlanks)) + 2;
    const int column = words[0].column;
    const bool expectation = !words[0].quoted && words[0].text == "expect";
    const bool negated = expectation && words.size() > 1 && !words[1].quoted && words[1].text == "no";
    const std::size_t first = expectation ? (negated ? 2 : 1) : 0;
    if (first == words.size())
        Refuse(end, "expected a word after 'expect': 'avsk run --words' lists the words");
    const Form &form = Find(words[first], expectation);
    const std::string_view text = line.substr(static_cast<std::size_t>(column) - 1);
    words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(first) + 1);
    CheckOrder(form, negated, column);
    CheckParameters(form, words, end);
    Step step{&form, mLine, std::string(text.substr(0, text.find_last_not_of(kBlanks) + 1)), negated, std::move(words)};
    if (form.parameters.starts_with("SLOT") && static_cast<int>(step.Count()) - 1 > CallLog::CountArguments(step[0]))
        Refuse(step.words.back().column,
               "too many arguments: " + step[0] + " has " + std::to_string(CallLog::CountArguments(step[0])));
    return step;
}

} // namespace host
