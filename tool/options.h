// SPDX-License-Identifier: MIT
// Options that many verbs share.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tool/parameters.h"

namespace tool {

enum class Access { read, write };

/// The words that grant access to a package.
struct Credentials {
    std::string read, write;

    /// Words that are not given come from VLT_READ_WORD and VLT_WRITE_WORD.
    Parameters parameters(Access access);
};

/// A package on the command line.
struct PackageOptions {
    std::string path;
    Credentials words;
    std::string encoding;
    std::int64_t offset = 0;
    bool no_lock = false, sync = false;

    /// `PACKAGE` and the options.
    Parameters parameters(Access access);
    /// The same without words, for verbs that look at the bytes and ask for none.
    Parameters inspection();
    /// The options without the argument, for verbs that take packages in several places.
    Parameters options(Access access);
    /// `--encoding`, `--offset` and `--no-lock` alone.
    Parameters place();
};

/// `PATTERN`, any number of times.
Parameters pattern_arguments(std::vector<std::string>& patterns);

// Options that say the same wherever they are.
Parameters json_option(bool& json);
Parameters no_lock_option(bool& no_lock);
Parameters quiet_option(bool& quiet);
Parameters reverse_option(bool& reverse);
Parameters sync_option(bool& sync);

/// What a word may be: up to 16 bytes. Fails with `Failure`.
void check_word(const std::string& word);

}  // namespace tool
