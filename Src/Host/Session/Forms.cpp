// Joins the tables of words in the order in which `avsk run --words` lists
// them; see Forms.h.
#include "Forms.h"

#include <cstdio>
#include <utility>

namespace host {

Finding Finding::Unknown(std::string why) {
    Finding finding(false, std::move(why));
    finding.answer = Answer::Unknown;
    return finding;
}

std::string Form::Usage() const {
    std::string usage = !IsExpectation() ? "" : (flags & kNeverNegated) != 0 ? "expect " : "expect [no] ";
    usage += word;
    return parameters.empty() ? usage : usage + " " + std::string(parameters);
}

const std::vector<Form> &SessionForms() {
    static const std::vector<Form> forms = [] {
        std::vector<Form> all;
        for (const std::span<const Form> table : {SetUpForms(), StepForms(), ExpectationForms()})
            all.insert(all.end(), table.begin(), table.end());
        return all;
    }();
    return forms;
}

void PrintSessionWords() {
    for (const Form &form : SessionForms())
        std::printf("%-58s %s\n", form.Usage().c_str(), std::string(form.help).c_str());
    std::fflush(stdout);
}

} // namespace host
