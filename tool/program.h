// SPDX-License-Identifier: MIT
// The program: its verbs, and what they write to. Each verb, or two that belong together, has a file of its own and
// one function that adds it; main.cpp calls these functions and knows nothing else of the verbs.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tool/failure.h"
#include "tool/options.h"
#include "tool/output.h"

namespace tool {

class Program {
public:
    Program();
    ~Program();

    /// Declares a verb. Its options tell their parameters, `body` what it does and the exit status; the examples, a
    /// line each, are printed under its help. The name of a verb in a group begins with the group's: "db info".
    template <typename Options>
    void add_verb(const std::string& name, const std::string& summary, int (*body)(Program&, const Options&),
                  const std::string& examples) {
        auto options = std::make_shared<Options>();
        declare(name, summary, examples, options->parameters(), [=, this] { return body(*this, *options); });
    }
    /// Declares a verb that consists of verbs, such as `vlt db`, before those.
    void add_group(const std::string& name, const std::string& summary);

    /// Understands the arguments and runs the verb that they name.
    int run(std::vector<std::string> arguments);

    CLI::App& app() { return *app_; }
    Output& out() { return out_; }

private:
    void declare(const std::string& name, const std::string& summary, const std::string& examples,
                 const Parameters& parameters, std::function<int()> body);
    /// False when the arguments asked for help or the version, which is printed.
    bool parse(std::vector<std::string> arguments);

    std::unique_ptr<CLI::App> app_;
    std::function<int()> chosen_;  // the body of the verb that the arguments name
    Output out_;
};

// The verbs.
void add_create_verb(Program& program);
void add_ls_verb(Program& program);
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
void add_db_info_verb(Program& program);
void add_db_table_verb(Program& program);
void add_db_show_verb(Program& program);
void add_db_check_verb(Program& program);
void add_db_export_verb(Program& program);
void add_db_import_verb(Program& program);
void add_db_pack_verbs(Program& program);
void add_db_edit_verb(Program& program);
void add_bom_tree_verb(Program& program);
void add_bom_flat_verb(Program& program);
void add_bom_where_used_verb(Program& program);
void add_bom_sum_verb(Program& program);
void add_bom_diff_verb(Program& program);
void add_bom_graph_verb(Program& program);
void add_bom_html_verb(Program& program);
void add_help_verb(Program& program);

}  // namespace tool
