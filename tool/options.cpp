// SPDX-License-Identifier: MIT
#include "tool/options.h"

#include "include/vlt.h"
#include "tool/failure.h"

namespace tool {

void Credentials::declare(Verb verb, Access access) {
    if (access == Access::read)
        verb.add_option("--read-word", read, "word that lets read (or $VLT_READ_WORD)")
            .from_environment("VLT_READ_WORD");
    verb.add_option("--write-word", write, "word that lets write (or $VLT_WRITE_WORD)")
        .from_environment("VLT_WRITE_WORD");
}

void PackageOptions::declare(Verb verb, Access access) {
    verb.add_option("PACKAGE", path, "the package").required();
    declare_options(verb, access);
}

void PackageOptions::declare_inspection(Verb verb) {
    verb.add_option("PACKAGE", path, "the package").required();
    declare_place(verb);
}

void PackageOptions::declare_options(Verb verb, Access access) {
    words.declare(verb, access);
    declare_place(verb);
    if (access == Access::write) verb.add_flag("--sync", sync, "wait until everything is on the disk");
}

void PackageOptions::declare_place(Verb verb) {
    verb.add_option("--encoding", encoding, "code page of narrow names, such as CP932; UTF-8 if not given");
    verb.add_option("--offset", offset, "where the package begins in its file, in bytes").non_negative();
    verb.add_flag("--no-lock", no_lock, "go ahead although another process uses the package");
}

void ListingOptions::declare_json(Verb verb) {
    verb.add_flag("--json", json, "one JSON object a line");
}

void ListingOptions::declare_zero(Verb verb) {
    verb.add_flag("-0,--null", zero, "names alone, a zero byte behind each");
}

void declare_quiet(Verb verb, bool& quiet) {
    verb.add_flag("-q,--quiet", quiet, "show no progress");
}

void check_word(const std::string& word) {
    if (word.size() > VLT_CREDENTIAL_MAX) throw Failure("word", "too long; a word has up to 16 bytes");
}

}  // namespace tool
