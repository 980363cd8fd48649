// SPDX-License-Identifier: MIT
// vlt bom html
#include "tool/failure.h"
#include "tool/items.h"
#include "tool/new_file.h"
#include "tool/page/page.h"
#include "tool/page_data.h"

namespace tool {

namespace {

struct HtmlOptions {
    DatabaseOptions database;
    std::string output, title, largest = "2M";
    bool no_documents = false, force = false;

    Parameters parameters() {
        return {database.parameters(Access::read),
                {"-o,--output", &output, "the page to make", {.required = true}},
                {"--title", &title, "the heading of the page; the path of the database if not given"},
                {"--no-documents", &no_documents, "no documents inside the page"},
                {"--max-document", &largest, "the largest document inside the page; 2M if not given"},
                {"-f,--force", &force, "replace the file that stands there"}};
    }
};

/// Text between tags.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else
            result += c;
    }
    return result;
}

/// JSON inside a script element, where "</script>" would end it and "<!--" change how it is read.
std::string script_json(const Json& object) {
    const std::string text = object.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        if (c == '<')
            result += "\\u003c";
        else
            result += c;
    }
    return result;
}

std::string base64(std::string_view bytes) {
    static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 3; ++k)
            bits = bits << 8 | (i + k < bytes.size() ? static_cast<std::uint8_t>(bytes[i + k]) : 0u);
        for (std::size_t k = 0; k < 4; ++k) text += i + k > bytes.size() ? '=' : kDigits[bits >> (18 - 6 * k) & 63];
    }
    return text;
}

/// Writes the markup, with what its marks such as @STYLE@ stand for.
class PageWriter {
public:
    PageWriter(HostFile& file, const Database& db, const HtmlOptions& options)
        : file_(file), db_(db), options_(options) {}

    void write(const PageData& data) {
        std::string_view rest = page::markup;
        for (std::size_t mark; (mark = rest.find('@')) != rest.npos;) {
            const std::size_t end = rest.find('@', mark + 1);
            put(rest.substr(0, mark));
            put_mark(rest.substr(mark + 1, end - mark - 1), data);
            rest.remove_prefix(end + 1);
        }
        put(rest);
    }

private:
    void put(std::string_view text) { file_.write(text.data(), text.size()); }

    void put_mark(std::string_view mark, const PageData& data) {
        if (mark == "TITLE") put(escaped(options_.title.empty() ? db_.name() : options_.title));
        if (mark == "STYLE") put(page::style);
        if (mark == "SCRIPT") put(page::script);
        if (mark == "DATA") put(script_json(data.product));
        if (mark == "DOCUMENTS") put_documents(data);
    }

    void put_documents(const PageData& data) {
        const DatabaseFiles files = db_.files();
        for (std::size_t i = 0; i < data.documents.size(); ++i) {
            check_interrupt();
            put("<script type=\"text/plain\" id=\"" + document_id(i) + "\">");
            put(base64(files.read(data.documents[i])));
            put("</script>\n");
        }
    }

    HostFile& file_;
    const Database& db_;
    const HtmlOptions& options_;
};

int make_page(Program&, const HtmlOptions& options) {
    const Database db(options.database, Access::read);
    const Items items(db);
    const PageData data = page_data(items, {!options.no_documents, size_of_text(options.largest)});
    const fs::path target = path_of(options.output);
    if (!options.force && file_status(target).kind != FileStatus::Kind::missing)
        throw Failure(options.output, "exists already; give -f to replace it");
    NewFile page(target.parent_path());
    PageWriter(page.file(), db, options).write(data);
    page.move_to(target.filename().native(), options.force);
    return kDone;
}

}  // namespace

void add_bom_html_verb(Program& program) {
    program.add_verb("bom html", "a page to browse a product with, in one file for any browser", make_page, R"(
        vlt bom html examples/bicycle -o bicycle.html
        vlt bom html product.vlt -o product.html --title "City bicycle" --no-documents)");
}

}  // namespace tool
