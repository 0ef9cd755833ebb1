// Prints the table of forms; see Help.h. Called by `avsk run --words` and at
// the prompt.
#include "Help.h"

#include "Forms.h"
#include "ParameterKinds.h"

#include "Common/Columns.h"
#include "Common/NearestName.h"

#include <cstdio>
#include <vector>

namespace host {
namespace {

struct PromptWord {
    const char *word;
    const char *usage;
    const char *help;
};
constexpr PromptWord kPromptWords[] = {
    {"help", "help [WORD]", "at the prompt: lists all words, or explains one"},
    {"quit", "quit", "at the prompt: ends the session"},
};

void PrintRows(const std::vector<std::vector<std::string>> &rows) {
    constexpr std::size_t kWidest = 58;
    for (const std::string &line : AlignColumns(rows, {.widest = kWidest, .numbers = {}}))
        std::printf("%s\n", line.c_str());
}

void PrintParameters(const Form &form) {
    for (const Parameter &parameter : ParametersOf(form.parameters)) {
        const char *optional = parameter.optional ? "; optional" : "";
        const char *repeated = parameter.repeated ? "; can be repeated" : "";
        std::printf("    %-8s %s%s%s\n", std::string(parameter.kind ? parameter.kind->mark : "one of").c_str(),
                    parameter.Meaning().c_str(), optional, repeated);
    }
}

} // namespace

void PrintSessionWords() {
    std::vector<std::vector<std::string>> rows;
    for (const Form &form : SessionForms())
        rows.push_back({form.Usage(), std::string(form.help)});
    for (const PromptWord &word : kPromptWords)
        rows.push_back({word.usage, word.help});
    PrintRows(rows);
    std::fflush(stdout);
}

void PrintWord(const std::string &word) {
    std::vector<std::string> names{"expect"};
    std::vector<std::vector<std::string>> rows;
    bool found = false;
    for (const Form &form : SessionForms()) {
        names.emplace_back(form.word);
        if (word == "expect" && form.IsExpectation())
            rows.push_back({form.Usage(), std::string(form.help)});
        if (form.word != word)
            continue;
        found = true;
        std::printf("%s\n    %s\n", form.Usage().c_str(), std::string(form.help).c_str());
        PrintParameters(form);
    }
    for (const PromptWord &known : kPromptWords) {
        names.emplace_back(known.word);
        if (known.word == word)
            rows.push_back({known.usage, known.help});
    }
    PrintRows(rows);
    if (!found && rows.empty()) {
        const std::string nearest = DidYouMean(word, names);
        std::printf("no word '%s'%s\n", word.c_str(), nearest.empty() ? ": 'help' lists all words" : nearest.c_str());
    }
    std::fflush(stdout);
}

} // namespace host
