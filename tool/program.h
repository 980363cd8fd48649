// SPDX-License-Identifier: MIT
// The program: its verbs, and what they write to. Each family of verbs has a file of its own and one function that
// adds them; main.cpp calls these functions and knows nothing else of the verbs.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tool/failure.h"
#include "tool/options.h"
#include "tool/output.h"
#include "tool/verb.h"

namespace tool {

class Program {
public:
    Program();
    ~Program();

    /// Declares a verb; the caller adds its arguments and says what it does. `examples` are printed under its help.
    Verb add_verb(const std::string& name, const std::string& summary, const std::string& examples);
    /// Declares a verb that consists of verbs, such as `vlt db`.
    Verb add_group(const std::string& name, const std::string& summary);

    /// What a verb does, given its options; its result is the exit status.
    template <typename Options>
    void on_run(Verb verb, std::shared_ptr<Options> options, int (*body)(Program&, const Options&)) {
        verb.on_run([=, this] { return body(*this, *options); });
    }

    /// Understands the arguments and runs the verb that they name.
    int run(std::vector<std::string> arguments);

    CLI::App& app() { return *app_; }
    Output& out() { return out_; }

private:
    /// False when the arguments asked for help or the version, which is printed.
    bool parse(std::vector<std::string> arguments);

    std::unique_ptr<CLI::App> app_;
    Output out_;
};

// The families of verbs.
void add_help_verbs(Program& program);
void add_create_verb(Program& program);
void add_listing_verbs(Program& program);
void add_add_verb(Program& program);
void add_extract_verbs(Program& program);
void add_change_verbs(Program& program);
void add_compact_verb(Program& program);
void add_diff_verb(Program& program);
void add_info_verb(Program& program);
void add_check_verb(Program& program);
void add_dump_verb(Program& program);
void add_sum_verbs(Program& program);
void add_salvage_verb(Program& program);
void add_mount_verb(Program& program);
void add_db_verbs(Program& program);
void add_bom_verbs(Program& program);

}  // namespace tool
