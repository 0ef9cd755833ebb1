// Prints the table of forms; see Help.h. Called by `avsk run --words` and at
// the prompt.
#include "Help.h"

#include "Forms.h"
#include "ParameterKinds.h"

#include "Common/NearestName.h"

#include <cstdio>
#include <vector>

namespace host {
namespace {

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
    for (const Form &form : SessionForms())
        std::printf("%-58s %s\n", form.Usage().c_str(), std::string(form.help).c_str());
    std::fflush(stdout);
}

void PrintWord(const std::string &word) {
    std::vector<std::string> names;
    bool found = false;
    for (const Form &form : SessionForms()) {
        names.emplace_back(form.word);
        if (form.word != word)
            continue;
        found = true;
        std::printf("%s\n    %s\n", form.Usage().c_str(), std::string(form.help).c_str());
        PrintParameters(form);
    }
    if (!found) {
        const std::string nearest = DidYouMean(word, names);
        std::printf("no word '%s'%s\n", word.c_str(), nearest.empty() ? ": 'help' lists all words" : nearest.c_str());
    }
    std::fflush(stdout);
}

} // namespace host
