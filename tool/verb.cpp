// SPDX-License-Identifier: MIT
#include "tool/verb.h"

#include <algorithm>
#include <CLI/CLI.hpp>

namespace tool {

namespace {

std::function<int()>& chosen_body() {
    static std::function<int()> body;
    return body;
}

}  // namespace

Argument& Argument::required() {
    option_->required();
    return *this;
}

Argument& Argument::choices(std::vector<std::string> values) {
    option_->check(CLI::IsMember(std::move(values)));
    return *this;
}

Argument& Argument::non_negative() {
    option_->check(CLI::NonNegativeNumber);
    return *this;
}

Argument& Argument::each() {
    option_->expected(1)->allow_extra_args(false)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    return *this;
}

Argument& Argument::from_environment(const std::string& variable) {
    option_->envname(variable);
    return *this;
}

Argument Verb::add_option(const std::string& names, std::string& value, const std::string& text) {
    return Argument(app_->add_option(names, value, text));
}

Argument Verb::add_option(const std::string& names, std::vector<std::string>& values, const std::string& text) {
    return Argument(app_->add_option(names, values, text));
}

Argument Verb::add_option(const std::string& names, std::int64_t& value, const std::string& text) {
    return Argument(app_->add_option(names, value, text));
}

Argument Verb::add_option(const std::string& names, std::int32_t& value, const std::string& text) {
    return Argument(app_->add_option(names, value, text));
}

Argument Verb::add_flag(const std::string& names, bool& value, const std::string& text) {
    return Argument(app_->add_flag(names, value, text));
}

Verb Verb::add_verb(const std::string& name, const std::string& summary, const std::string& examples) {
    CLI::App* app = app_->add_subcommand(name, summary);
    std::string footer = "Examples:\n";
    for (std::size_t at = 0; at < examples.size();) {
        const std::size_t end = std::min(examples.find('\n', at), examples.size());
        footer += "  " + examples.substr(at, end - at) + "\n";
        at = end + 1;
    }
    footer.pop_back();
    app->footer(footer);
    return *app;
}

void Verb::on_run(std::function<int()> body) {
    app_->final_callback([body = std::move(body)] { chosen_body() = body; });
}

int Verb::run_chosen() {
    return chosen_body()();
}

}  // namespace tool
