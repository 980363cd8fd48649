// SPDX-License-Identifier: MIT
// Options that many verbs share.
#pragma once

#include <cstdint>
#include <string>

#include "tool/verb.h"

namespace tool {

enum class Access { read, write };

/// The words that grant access to a package.
struct Credentials {
    std::string read, write;

    /// Declares the options. Words that are not given come from VLT_READ_WORD and VLT_WRITE_WORD.
    void declare(Verb verb, Access access);
};

/// A package on the command line.
struct PackageOptions {
    std::string path;
    Credentials words;
    std::string encoding;
    std::int64_t offset = 0;
    bool no_lock = false, sync = false;

    /// Declares `PACKAGE` and the options.
    void declare(Verb verb, Access access);
    /// The same without words, for verbs that look at the bytes and ask for none.
    void declare_inspection(Verb verb);
    /// The options without the argument, for verbs that take packages in several places.
    void declare_options(Verb verb, Access access);
    /// `--encoding`, `--offset` and `--no-lock` alone.
    void declare_place(Verb verb);
};

/// How a listing is written.
struct ListingOptions {
    bool json = false;
    bool zero = false;  ///< names alone, each with a zero byte behind it

    void declare_json(Verb verb);
    void declare_zero(Verb verb);
};

void declare_quiet(Verb verb, bool& quiet);

/// What a word may be: up to 16 bytes. Fails with `Failure`.
void check_word(const std::string& word);

}  // namespace tool
