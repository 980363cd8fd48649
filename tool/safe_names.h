// SPDX-License-Identifier: MIT
// Which stored names may become paths on the disk. A package may come from anybody.
#pragma once

#include <string>
#include <vector>

namespace tool {

enum class NameRules {
    everywhere,  // names that every system can have
    native       // names that this system can have
};

/// The parts of a name between '/' and '\', which both separate folders.
std::vector<std::string> parts_of_name(const std::string& name);

/// Why a name may not become a path; empty when it may.
std::string refusal_of(const std::string& name, NameRules rules);

/// A name like this one that may become a path.
std::string safe_name(const std::string& name);

/// Equal for names that some file systems cannot hold beside each other.
std::string case_folded(const std::string& name);

}  // namespace tool
