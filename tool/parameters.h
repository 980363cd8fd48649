// SPDX-License-Identifier: MIT
// What a verb is given on the command line, as a table. Hides the library that understands arguments, whose headers
// take long to compile.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <variant>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace tool {

/// Where a value goes. A flag takes none, a number must not be negative. A list takes any number of arguments, or one
/// value each time its option is given.
using Target = std::variant<bool*, std::string*, std::vector<std::string>*, std::int64_t*, std::int32_t*>;

struct Rule {
    bool required = false;
    std::vector<std::string> choices = {};  // any value if there are none
    std::string environment = {};           // the variable that gives the value if the command line does not
};

/// An option, named "-l,--long", or an argument, named "PACKAGE".
struct Parameter {
    std::string names;
    Target target;
    std::string text;
    Rule rule;
};

/// Parameters in the order of the help. One row is written as a list of its columns, and lists may stand among rows.
class Parameters {
public:
    Parameters() = default;
    Parameters(std::string names, Target target, std::string text, Rule rule = {});
    Parameters(std::initializer_list<Parameters> parts);

    void declare(CLI::App& verb) const;

private:
    std::vector<Parameter> list_;
};

}  // namespace tool
