// SPDX-License-Identifier: MIT
// How a verb ends when it cannot do what was asked, and the exit status of the program.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tool {

enum ExitStatus : int {
    kDone = 0,
    kFindings = 1,  // something was found, differs, or was left out
    kFailed = 2,    // failure, or bad usage
    kInterrupted = 130
};

/// Ends the program with one line on stderr, `vlt: SUBJECT: TEXT`, and status 2. The text says what, and what to do.
class Failure : public std::runtime_error {
public:
    Failure(const std::string& subject, const std::string& text) : std::runtime_error(subject + ": " + text) {}
};

/// A stored file cannot be read; others can.
class StoredFailure : public Failure {
public:
    using Failure::Failure;
};

/// Ends the program with status 130: the user pressed Ctrl-C.
class Interrupted : public std::exception {};

/// Throws `Interrupted` when the user pressed Ctrl-C. Long work asks between two pieces.
void check_interrupt();
void catch_interrupts();

/// Prints `vlt: TEXT` on stderr.
void warn(const std::string& text);

// What the library's codes mean, and what to do.
std::string open_error_text(std::int32_t code);
std::string file_error_text(std::uint32_t code);
std::string database_error_text(std::int32_t code, const std::string& detail);

}  // namespace tool
