// SPDX-License-Identifier: MIT
// A verb on the command line. Hides the library that understands arguments, whose headers take long to compile.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

/// An argument or option that a verb has.
class Argument {
public:
    explicit Argument(CLI::Option* option) : option_(option) {}
    Argument& required();
    Argument& choices(std::vector<std::string> values);
    Argument& non_negative();
    /// A list takes one value each time it is given, so that an argument may follow it.
    Argument& each();
    /// Where the value comes from if it is not given.
    Argument& from_environment(const std::string& variable);

private:
    CLI::Option* option_;
};

class Verb {
public:
    Verb(CLI::App& app) : app_(&app) {}
    operator CLI::App&() const { return *app_; }

    /// Options are named "-l,--long", arguments "PACKAGE". A list takes any number of arguments.
    Argument add_option(const std::string& names, std::string& value, const std::string& text);
    Argument add_option(const std::string& names, std::vector<std::string>& values, const std::string& text);
    Argument add_option(const std::string& names, std::int64_t& value, const std::string& text);
    Argument add_option(const std::string& names, std::int32_t& value, const std::string& text);
    Argument add_flag(const std::string& names, bool& value, const std::string& text);

    /// A verb of this one, such as `info` of `vlt db`.
    Verb add_verb(const std::string& name, const std::string& summary, const std::string& examples);

    /// What the verb does; its result is the exit status.
    void on_run(std::function<int()> body);

    /// Runs the verb that the arguments named.
    static int run_chosen();

private:
    CLI::App* app_;
};

}  // namespace tool
