// SPDX-License-Identifier: MIT
#include "tool/parameters.h"

#include <CLI/CLI.hpp>
#include <type_traits>

namespace tool {

namespace {

CLI::Option* add(CLI::App& verb, const Parameter& parameter, bool& value) {
    return verb.add_flag(parameter.names, value, parameter.text);
}

template <typename Value>
CLI::Option* add(CLI::App& verb, const Parameter& parameter, Value& value) {
    CLI::Option* option = verb.add_option(parameter.names, value, parameter.text);
    if constexpr (std::is_integral_v<Value>) option->check(CLI::NonNegativeNumber);
    // An argument may follow the value of an option.
    if (std::is_class_v<Value> && !std::is_same_v<Value, std::string> && !option->get_positional())
        option->expected(1)->allow_extra_args(false)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    return option;
}

}  // namespace

Parameters::Parameters(std::string names, Target target, std::string text, Rule rule)
    : list_{{std::move(names), target, std::move(text), std::move(rule)}} {}

Parameters::Parameters(std::initializer_list<Parameters> parts) {
    for (const Parameters& part : parts) list_.insert(list_.end(), part.list_.begin(), part.list_.end());
}

void Parameters::declare(CLI::App& verb) const {
    for (const Parameter& parameter : list_) {
        CLI::Option* option = std::visit([&](auto* value) { return add(verb, parameter, *value); }, parameter.target);
        option->required(parameter.rule.required);
        if (!parameter.rule.choices.empty()) option->check(CLI::IsMember(parameter.rule.choices));
        if (!parameter.rule.environment.empty()) option->envname(parameter.rule.environment);
    }
}

}  // namespace tool
