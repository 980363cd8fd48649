// SPDX-License-Identifier: MIT
#include "tool/program.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <sstream>

namespace tool {

namespace {

/// The arguments cannot be understood: a failure like others, told by the verb that they are meant for.
Failure usage_failure(const CLI::App& app, const CLI::ParseError& error) {
    std::string text =
        app.get_subcommands().empty() && error.get_name() == "RequiredError" ? "no verb is given" : error.what();
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::string verb;
    for (const CLI::App* at = &app; !at->get_subcommands().empty();) {
        at = at->get_subcommands().front();
        verb += " " + at->get_name();
    }
    return Failure(verb.empty() ? "usage" : verb.substr(1), text + "; `vlt help" + verb + "` tells how it is used");
}

/// A text with each of its lines on a new one, indented by two.
std::string in_lines(const std::string& text) {
    std::istringstream from(text);
    std::string all, line;
    while (from >> std::ws && std::getline(from, line)) all += "\n  " + line;
    return all;
}

}  // namespace

Program::Program()
    : app_(
          std::make_unique<CLI::App>("Looks into packages of stored files, fills, checks and rescues them.", "vlt")) {
    app_->allow_windows_style_options(false);  // "/" starts a path
    app_->require_subcommand(1);
    app_->set_version_flag("--version", "vlt " VLT_VERSION, "print the version");
    app_->footer(
        "`vlt help VERB` tells more, with examples. Exit status: 0 done, 1 findings or differences,\n"
        "2 failure or bad usage, 130 interrupted.");
    app_->get_formatter()->column_width(34);
}

Program::~Program() = default;

void Program::add_group(const std::string& name, const std::string& summary) {
    app_->add_subcommand(name, summary)->require_subcommand(1);
}

void Program::declare(const std::string& name, const std::string& summary, const std::string& examples,
                      const Parameters& parameters, std::function<int()> body) {
    const std::size_t blank = name.find(' ');
    CLI::App* group = blank == std::string::npos ? app_.get() : app_->get_subcommand(name.substr(0, blank));
    CLI::App* verb = group->add_subcommand(name.substr(blank + 1), summary);  // npos + 1 is 0
    verb->footer("Examples:" + in_lines(examples));
    parameters.declare(*verb);
    verb->final_callback([this, body = std::move(body)] { chosen_ = body; });
}

bool Program::parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());
    try {
        app_->parse(std::move(arguments));
        return true;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) throw usage_failure(*app_, error);
        std::ostringstream text;
        app_->exit(error, text, text);
        out_.bytes(text.str());
        return false;
    }
}

int Program::run(std::vector<std::string> arguments) {
    try {
        const int status = parse(std::move(arguments)) ? chosen_() : kDone;
        out_.flush();
        return status;
    } catch (const Interrupted&) {
        warn("interrupted");
        return kInterrupted;
    } catch (const std::bad_alloc&) {
        warn("out of memory");
    } catch (const std::exception& error) {
        warn(error.what());
    }
    return kFailed;
}

}  // namespace tool
