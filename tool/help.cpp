// SPDX-License-Identifier: MIT
// vlt help
#include <CLI/CLI.hpp>

#include "tool/program.h"

namespace tool {

namespace {

struct HelpOptions {
    std::vector<std::string> verb;

    Parameters parameters() { return {{"VERB", &verb, "the verb"}}; }
};

int help(Program& program, const HelpOptions& options) {
    CLI::App* app = &program.app();
    std::string path;
    for (const std::string& name : options.verb) {
        path += (path.empty() ? "" : " ") + app->get_name();
        const auto found = app->get_subcommands([&](CLI::App* verb) { return verb->check_name(name); });
        if (found.empty()) throw Failure(name, "no such verb; `vlt help` lists them");
        app = found.front();
    }
    program.out().bytes(app->help(path));
    return kDone;
}

}  // namespace

void add_help_verb(Program& program) {
    program.add_verb("help", "tells how a verb is used", help, R"(
        vlt help add
        vlt help)");
}

}  // namespace tool
