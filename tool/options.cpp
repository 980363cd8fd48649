// SPDX-License-Identifier: MIT
#include "tool/options.h"

#include "include/vlt.h"
#include "tool/failure.h"

namespace tool {

Parameters Credentials::parameters(Access access) {
    const Parameters to_read{
        "--read-word", &read, "word that lets read (or $VLT_READ_WORD)", {.environment = "VLT_READ_WORD"}};
    return {access == Access::read ? to_read : Parameters(),
            {"--write-word", &write, "word that lets write (or $VLT_WRITE_WORD)", {.environment = "VLT_WRITE_WORD"}}};
}

Parameters PackageOptions::parameters(Access access) {
    return {{"PACKAGE", &path, "the package", {.required = true}}, options(access)};
}

Parameters PackageOptions::inspection() {
    return {{"PACKAGE", &path, "the package", {.required = true}}, place()};
}

Parameters PackageOptions::options(Access access) {
    return {words.parameters(access), place(), access == Access::write ? sync_option(sync) : Parameters()};
}

Parameters PackageOptions::place() {
    return {{"--encoding", &encoding, "code page of narrow names, such as CP932; UTF-8 if not given"},
            {"--offset", &offset, "where the package begins in its file, in bytes"},
            no_lock_option(no_lock)};
}

Parameters pattern_arguments(std::vector<std::string>& patterns) {
    return {"PATTERN", &patterns, "names, folders, or patterns with * ? [a-z]; all if not given"};
}

Parameters json_option(bool& json) {
    return {"--json", &json, "one JSON object a line"};
}

Parameters no_lock_option(bool& no_lock) {
    return {"--no-lock", &no_lock, "go ahead although another process uses the package"};
}

Parameters quiet_option(bool& quiet) {
    return {"-q,--quiet", &quiet, "show no progress"};
}

Parameters reverse_option(bool& reverse) {
    return {"-r,--reverse", &reverse, "the other way round"};
}

Parameters sync_option(bool& sync) {
    return {"--sync", &sync, "wait until everything is on the disk"};
}

void check_word(const std::string& word) {
    if (word.size() > VLT_CREDENTIAL_MAX) throw Failure("word", "too long; a word has up to 16 bytes");
}

}  // namespace tool
