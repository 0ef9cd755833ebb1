// Reads and writes the options as text; see ObserveVariable.h. The observed program
// reads what the command has written.
#include "ObserveVariable.h"

#include "Common/UsageError.h"
#include "Observing/ObservingFlags.h"

#include <array>
#include <charconv>
#include <string_view>

namespace host {
namespace {

// In quotes of a kind that the text does not contain.
std::string Quote(const std::string &text) {
    for (const char quote : {'"', '\'', '`'}) {
        if (text.find(quote) == std::string::npos)
            return quote + text + quote;
    }
    throw UsageError("'" + text + "' contains three kinds of quotes, so it cannot stand in " + kObserveVariable +
                     ": use another name");
}

std::string Number(double number) {
    std::array<char, 32> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr};
}

} // namespace

void AddExecOptions(CLI::App &command, ObservingOptions &options) {
    AddObservingOptions(command, options);
    command.add_option("--report", options.report, "write the reports to this file instead of standard error")
        ->type_name("FILE")
        ->group("Observing");
}

ObservingOptions ReadObserveVariable(const std::string &value) {
    ObservingOptions options;
    CLI::App parser;
    parser.set_help_flag();
    AddExecOptions(parser, options);
    try {
        parser.parse(value);
    } catch (const CLI::ParseError &error) {
        throw UsageError(std::string(kObserveVariable) + ": " + error.what() +
                         " It takes the options of 'avsk exec'; 'avsk exec --help' lists them");
    }
    return options;
}

std::string WriteObserveVariable(const ObservingOptions &options) {
    std::string value;
    const auto add = [&value](const std::string &option, const std::string &argument = "") {
        value += (value.empty() ? "" : " ") + option + (argument.empty() ? "" : " " + argument);
    };
    if (!options.trace.file.empty())
        add("--trace", Quote(options.trace.file));
    for (const std::string &plugin : options.trace.plugins)
        add("--trace-plugin", Quote(plugin));
    for (const std::string &function : options.trace.functions)
        add("--trace-function", Quote(function));
    if (options.check)
        add("--check");
    if (options.owners)
        add("--ps");
    if (options.profile)
        add("--profile");
    if (options.budget > 0)
        add("--budget", Number(options.budget));
    if (options.timeout > 0)
        add("--timeout", Number(options.timeout));
    if (!options.report.empty())
        add("--report", Quote(options.report));
    return value;
}

} // namespace host
