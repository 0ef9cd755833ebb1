// The language of sessions as a table: one row for each word, with its
// parameters, its help and its function. To add a word, add a row to the table
// at the end of SetUp.cpp, Steps.cpp or Expectations.cpp, and its function
// there. The parser, the help and the completion read the table.
#ifndef AVSK_HOST_SESSION_FORMS_H
#define AVSK_HOST_SESSION_FORMS_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace host {

class SessionRunner;
class SetUp;
struct Step;

// What an expectation found.
struct Outcome {
    enum class Answer : std::uint8_t {
        Yes,
        No,
        Unknown, // fails 'expect' and 'expect no'
    };
    Answer answer;
    std::string seen; // for the message of a failure

    Outcome(bool holds, std::string what) : answer(holds ? Answer::Yes : Answer::No), seen(std::move(what)) {}
    static Outcome Unknown(std::string why);
};

// Why a step failed; empty if it did not.
struct Failure {
    std::string why;
    int column = 0; // of the faulty word; 0 if no single word is faulty

    Failure() = default;
    Failure(std::string text) : why(std::move(text)) {}
    Failure(const char *text) : why(text) {}
    Failure(std::string text, int at) : why(std::move(text)), column(at) {}
};

using SetUpFunction = Failure(SetUp &setUp, const Step &step);
using StepFunction = Failure(SessionRunner &run, const Step &step);
using ExpectFunction = Outcome(SessionRunner &run, const Step &step);

// Where a word may stand. Set-up comes before the first step. All other words
// need loaded plugins unless they say otherwise.
enum FormFlags : std::uint8_t {
    kAlsoAfterUnload = 1,
    kOnlyAfterUnload = 2,
    kUnloads = 4,
    kNeverNegated = 8, // there is no 'expect no'
};

// The parameters are separated by blanks:
//
//     NAME COUNT ...   a value of that kind, see ParameterKinds.cpp
//     a|b              one of these words
//     [..]             optional
//     ..+              can be repeated
struct Form {
    template <typename Function>
    constexpr Form(std::string_view formWord, std::string_view formParameters, std::string_view formHelp,
                   Function &formFunction, unsigned formFlags = 0)
        : word(formWord), parameters(formParameters), help(formHelp), function(&formFunction), flags(formFlags) {}

    std::string_view word; // the first, or the one after "expect" or "expect no"
    std::string_view parameters;
    std::string_view help;
    std::variant<SetUpFunction *, StepFunction *, ExpectFunction *> function; // never null
    unsigned flags;

    bool IsSetUp() const { return std::holds_alternative<SetUpFunction *>(function); }
    bool IsExpectation() const { return std::holds_alternative<ExpectFunction *>(function); }
    // "expect [no] view tower|chase|cockpit"
    std::string Usage() const;
};

std::span<const Form> SetUpForms();
std::span<const Form> StepForms();
std::span<const Form> ExpectationForms();

// All of them.
const std::vector<Form> &SessionForms();

} // namespace host

#endif
