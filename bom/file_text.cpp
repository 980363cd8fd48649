// SPDX-License-Identifier: MIT
#include "bom/file_text.h"

#include <algorithm>
#include <array>

#include "bom/text.h"
#include "include/offline.h"

namespace bom {

const std::array<const char*, 6> kTableNames = {"BITM", "BBOM", "BDWG", "BITDWG", "BCAPP", "BITCAP"};
const std::array<const char*, 6> kTableFiles = {"bitm.txt",   "bbom.txt",  "bdwg.txt",
                                                "bitdwg.txt", "bcapp.txt", "bitcap.txt"};

namespace {

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == text.npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

void check_mark(const std::string& file, std::string_view text, Findings& findings) {
    if (!text.starts_with("\xEF\xBB\xBF") && !text.starts_with("\xFF\xFE") && !text.starts_with("\xFE\xFF")) return;
    findings.push_back({"byte-order-mark",
                        "begins with a byte order mark, which becomes part of the first value; "
                        "save the file without one, in the code page of the database",
                        file, 1});
}

/// Lines that begin with a level, such as `1.1, field, NID`. Only the difference of the levels of two lines counts.
class SchemaReader {
public:
    Schema read(std::string_view text) {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find("\r\n"), text.size());
            take_line(text.substr(0, end));
            text.remove_prefix(std::min(end + 2, text.size()));
        }
        return std::move(schema_);
    }

private:
    void take_line(std::string_view line) {
        line = line.substr(0, line.find("//"));
        const std::string level = next_word(line);
        if (level.empty()) return;
        const auto points = std::count(level.begin(), level.end(), '.');
        depth_ = is_first_ ? 0 : std::max<std::ptrdiff_t>(depth_ + points - points_, 0);
        is_first_ = false, points_ = points;
        if (depth_ == 0) return take_section(line);
        if (nested_depth_ < 0 || depth_ < nested_depth_) nested_depth_ = depth_;
        if (depth_ == nested_depth_ && section_ != Section::kOther) take_entry(line);
    }

    void take_section(std::string_view line) {
        const std::string word = next_word(line);
        nested_depth_ = -1;
        table_ = schema_.is_declared.size();
        section_ = word == "table" ? Section::kTable : word == "ini" ? Section::kSettings : Section::kOther;
        if (section_ != Section::kTable) return;
        const std::string name = next_word(line);
        for (table_ = 0; table_ < kTableNames.size() && folded(kTableNames[table_]) != name;) ++table_;
        if (table_ < kTableNames.size()) schema_.is_declared[table_] = true;
    }

    void take_entry(std::string_view line) {
        const std::string word = next_word(line);
        if (section_ == Section::kSettings && word == "root") schema_.root = trimmed(line.substr(0, line.find(',')));
        if (table_ == kTableNames.size() || word != "field" || next_word(line).empty()) return;
        ++schema_.field_count[table_];
    }

    /// Takes the text up to the next comma off, folded.
    static std::string next_word(std::string_view& line) {
        const std::size_t comma = line.find(',');
        const std::string word(trimmed(line.substr(0, comma)));
        line = comma == line.npos ? std::string_view() : line.substr(comma + 1);
        return folded(word.c_str());
    }

    enum class Section { kOther, kTable, kSettings };

    Schema schema_;
    Section section_ = Section::kOther;
    std::size_t table_ = kTableNames.size();
    std::ptrdiff_t depth_ = 0, points_ = 0;
    std::ptrdiff_t nested_depth_ = -1;  // of the entries of the section
    bool is_first_ = true;
};

/// The lines of a data file, each told apart into the values that a load sees.
class DataReader {
public:
    DataReader(const std::string& file, const DataForm& form, Findings& findings)
        : file_(file), form_(form), findings_(findings) {
        for (const char c : std::string_view("\r\n/\"\\")) special_[static_cast<unsigned char>(c)] = true;
        if (!form.separator.empty()) special_[static_cast<unsigned char>(form.separator[0])] = true;
    }

    std::vector<std::uint32_t> read(std::string_view text) {
        while (!text.empty()) {
            ++line_;
            const std::size_t end = look(text);
            take(text.substr(0, end));
            const bool pair = text.substr(std::min(end, text.size())).starts_with("\r\n");
            text.remove_prefix(std::min(text.size(), end + (pair ? 2 : 1)));
        }
        return std::move(records_);
    }

private:
    /// Notes what the line holds, and returns its length.
    std::size_t look(std::string_view text) {
        separators_ = 0;
        has_slashes_ = has_quotes_ = has_escapes_ = false;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const char c = text[i];
            if (!special_[static_cast<unsigned char>(c)]) continue;
            if (c == '\r' || c == '\n') return i;
            has_slashes_ = has_slashes_ || (c == '/' && i > 0 && text[i - 1] == '/');
            has_quotes_ = has_quotes_ || c == '"';
            has_escapes_ = has_escapes_ || c == '\\';
            separators_ += c == form_.separator[0];
        }
        return text.size();
    }

    void take(std::string_view line) {
        const std::size_t comment = has_slashes_ ? line.rfind("//") : line.npos;
        const std::string_view kept = trimmed(line.substr(0, comment));
        if (kept.empty()) return;
        records_.push_back(line_);
        if (comment != line.npos) {
            report("comment", "the line ends at //; what follows is no part of any value", line, kept);
        }
        if (separators_ >= form_.fields || has_quotes_ || has_escapes_) check_values(kept);
    }

    void check_values(std::string_view rest) {
        bool is_quoted = false;
        for (std::int32_t field = 0;; ++field) {
            const std::size_t end = rest.find(form_.separator);
            const std::string_view value = trimmed(rest.substr(0, end));
            if (field >= form_.fields && !trimmed(rest).empty()) {
                return report("surplus-value",
                              "the line has more values than the table has fields; the separator "
                              "inside a value breaks it",
                              trimmed(rest), "");
            }
            check_value(value, is_quoted);
            if (end == rest.npos) return;
            rest.remove_prefix(end + form_.separator.size());
        }
    }

    void check_value(std::string_view value, bool& is_quoted) {
        if (value.starts_with('"') && !is_quoted) {
            is_quoted = true;
            report("csv-quotes", "a value begins with a quote, as in CSV files; here quotes are part of the value",
                   value, value);
        }
        if (!has_escapes_ || value.find('\\') == value.npos) return;
        std::string text(value), plain(value.size() + 1, '\0');
        if (KOfflineDb_StrSwap(text.c_str(), plain.data(), static_cast<std::int32_t>(plain.size()), 0)) return;
        report("bad-escape", "a backslash is followed by none of c t r n / \\; the value ends there", value,
               plain.c_str());
    }

    void report(const char* kind, const char* text, std::string_view before, std::string_view after) {
        findings_.push_back({kind, text, file_, line_, "", "", std::string(before), std::string(after)});
    }

    const std::string& file_;
    const DataForm& form_;
    Findings& findings_;
    std::array<bool, 256> special_{};
    std::vector<std::uint32_t> records_;  // lines by record
    std::uint32_t line_ = 0;
    std::int32_t separators_ = 0;  // in the line; an upper bound where a separator has several characters
    bool has_slashes_ = false, has_quotes_ = false, has_escapes_ = false;
};

}  // namespace

Schema read_schema(std::string_view text) {
    return SchemaReader().read(text);
}

void check_schema(const std::string& file, std::string_view text, Findings& findings) {
    check_mark(file, text, findings);
    std::uint32_t line = 1;
    for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos; ++at, ++line) {
        if (at > 0 && text[at - 1] == '\r') continue;
        findings.push_back({"lf-schema",
                            "the line does not end with CR LF: the lines from here to the next CR LF are "
                            "read as one; convert the file to CR LF line ends",
                            file, line});
        return;
    }
}

std::vector<std::uint32_t> check_data(const std::string& file, std::string_view text, const DataForm& form,
                                      Findings& findings) {
    check_mark(file, text, findings);
    const std::size_t end = text.find('\0');
    if (end != text.npos && end + 1 < text.size()) {
        const auto line = static_cast<std::uint32_t>(
            std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), '\n') + 1);
        findings.push_back(
            {"zero-byte", "a zero byte ends the file for a load; what follows is not read", file, line});
    }
    return DataReader(file, form, findings).read(text.substr(0, end));
}

}  // namespace bom
