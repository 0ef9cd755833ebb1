// `avsk functions`: shows the documentation of the interface.
#include "Commands.h"
#include "Pager.h"

#include "Common/Columns.h"
#include "Common/NearestName.h"
#include "Common/UsageError.h"
#include "Reference/Reference.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {
namespace {

std::string ListFunctions() {
    std::string text;
    std::string_view header;
    std::vector<std::vector<std::string>> rows;
    const auto finish = [&] {
        if (rows.empty())
            return;
        text += (text.empty() ? "" : "\n") + std::string(header) + "\n";
        for (const std::string &line : AlignColumns(rows))
            text += "  " + line + "\n";
        rows.clear();
    };
    for (const ReferenceEntry &entry : ReferenceEntries()) {
        if (header != entry.header)
            finish();
        header = entry.header;
        rows.push_back({entry.name, SummaryOf(entry)});
    }
    finish();
    return text;
}

std::string DescribeFunction(const std::string &name) {
    const ReferenceEntry *entry = FindReference(name);
    if (!entry) {
        const std::string nearest = DidYouMean(name, ReferenceNames());
        throw UsageError("functions: nothing in the interface is called '" + name + "'" +
                         (nearest.empty() ? ": 'avsk functions' lists all names" : nearest));
    }
    return std::string(entry->name) + ": " + entry->kind + ", " + entry->header + "\n\n" + entry->declaration + "\n\n" +
           entry->documentation + "\n";
}

} // namespace

void AddFunctionsCommand(CLI::App &app, Job &job) {
    const auto name = std::make_shared<std::string>();
    CLI::App *command = app.add_subcommand("functions", "Shows the documentation of functions and callbacks.");
    command
        ->add_option("NAME", *name, "a function, callback type, entry point or host service; without it, a list of all")
        ->type_name("");
    command->footer(
        "The text is that of the public headers. Its last line, in brackets, says where the call is allowed;\n"
        "AVSK/AVSKTypes.h explains these tags. On a terminal the text goes through $PAGER, or less.\n\n"
        "Examples:\n  avsk functions AVSKCreateWindow\n  avsk functions AVPluginStart\n"
        "  avsk functions | grep -i menu\n\nExit status: 0, or 2 if nothing has this name.");
    command->callback([name, &job] {
        job = [name] {
            ShowInPager(name->empty() ? ListFunctions() : DescribeFunction(*name));
            return 0;
        };
    });
}

} // namespace host
