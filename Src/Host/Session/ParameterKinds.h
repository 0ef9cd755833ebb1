// The kinds of parameters that the words of a session take.
#ifndef AVSK_HOST_SESSION_PARAMETER_KINDS_H
#define AVSK_HOST_SESSION_PARAMETER_KINDS_H

#include "Step.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

struct ParameterKind {
    std::string_view mark; // in a form's parameters
    bool (*accepts)(const Word &word);
    std::string_view meaning; // for a reader
};

// One parameter of a form.
struct Parameter {
    const ParameterKind *kind; // null: one of the choices
    std::string_view choices;  // a|b
    bool optional;
    bool repeated;

    bool Accepts(const Word &word) const;
    std::string Meaning() const;
};

// Reads the parameters of a form.
std::vector<Parameter> ParametersOf(std::string_view parameters);

} // namespace host

#endif
