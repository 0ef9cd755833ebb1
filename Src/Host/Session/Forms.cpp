// Joins the tables of words in the order in which `avsk run --words` lists
// them; see Forms.h.
#include "Forms.h"

#include <utility>

namespace host {

Outcome Outcome::Unknown(std::string why) {
    Outcome outcome(false, std::move(why));
    outcome.answer = Answer::Unknown;
    return outcome;
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

} // namespace host
