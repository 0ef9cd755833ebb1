// `avsk --option-table`: prints all commands with their options as JSON. The build
// makes the manual pages and the completion of shells from it (CMake/make-pages).
#include "Commands.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

namespace host {
namespace {

using nlohmann::ordered_json;

ordered_json TableOf(const CLI::Option &option) {
    ordered_json names = ordered_json::array();
    for (const std::string &name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string &name : option.get_lnames())
        names.push_back("--" + name);
    return {{"names", names},
            {"positional", option.get_positional() ? option.get_name(/*positional=*/true) : ""},
            {"value", option.get_items_expected_max() == 0 ? "" : option.get_type_name()},
            {"default", option.get_default_str()},
            {"group", option.get_group()},
            {"help", option.get_description()}};
}

ordered_json TableOf(const CLI::App &command) {
    ordered_json options = ordered_json::array();
    for (const CLI::Option *option : command.get_options()) {
        if (!option->get_group().empty()) // without a group it is hidden
            options.push_back(TableOf(*option));
    }
    ordered_json commands = ordered_json::array();
    for (const CLI::App *inner : command.get_subcommands([](const CLI::App * /*any*/) { return true; })) {
        if (!inner->get_group().empty())
            commands.push_back(TableOf(*inner));
    }
    return {{"name", command.get_name()},
            {"description", command.get_description()},
            {"footer", command.get_footer()},
            {"options", options},
            {"commands", commands}};
}

} // namespace

void AddOptionTable(CLI::App &app) {
    app.add_flag_callback("--option-table",
                          [&app] {
                              std::puts(TableOf(app).dump(2).c_str());
                              throw CLI::Success();
                          })
        ->group("");
}

} // namespace host
