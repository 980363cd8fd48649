// SPDX-License-Identifier: MIT
// vlt bom graph
#include "bom/product.h"
#include "tool/failure.h"
#include "tool/items.h"

namespace tool {

namespace {

struct GraphOptions {
    DatabaseOptions database;
    std::string code;
    bool dot = false, mermaid = false;

    Parameters parameters() {
        return {database.parameters(Access::read),
                {"CODE", &code, "the item to begin with; the root item, or all tops, if not given"},
                {"--mermaid", &mermaid, "for Mermaid"},
                {"--dot", &dot, "for Graphviz; so it is if not given"}};
    }
};

/// A language that draws graphs: a node an item, an arrow a line.
class Drawing {
public:
    explicit Drawing(Output& out) : out_(out) {}
    virtual ~Drawing() = default;
    virtual void begin() = 0;
    virtual void end() = 0;
    virtual void node(const std::string& id, const std::string& code, const std::string& name) = 0;
    virtual void arrow(const std::string& from, const std::string& to, const std::string& quantity) = 0;

protected:
    Output& out_;
};

class DotDrawing : public Drawing {
public:
    using Drawing::Drawing;
    void begin() override {
        out_.line("digraph product {");
        out_.line("    node [shape=box, fontname=\"sans-serif\"]; edge [fontname=\"sans-serif\"];");
    }
    void end() override { out_.line("}"); }
    void node(const std::string& id, const std::string& code, const std::string& name) override {
        out_.line("    " + id + " [label=\"" + escaped(code) + (name.empty() ? "" : "\\n" + escaped(name)) + "\"];");
    }
    void arrow(const std::string& from, const std::string& to, const std::string& quantity) override {
        out_.line("    " + from + " -> " + to + " [label=\"" + escaped(quantity) + "\"];");
    }

private:
    static std::string escaped(const std::string& text) {
        std::string result;
        for (const char c : text) {
            if (c == '"' || c == '\\') result += '\\';
            result += c;
        }
        return result;
    }
};

class MermaidDrawing : public Drawing {
public:
    using Drawing::Drawing;
    void begin() override { out_.line("flowchart TD"); }
    void end() override {}
    void node(const std::string& id, const std::string& code, const std::string& name) override {
        out_.line("    " + id + "[\"" + escaped(code) + (name.empty() ? "" : "<br>" + escaped(name)) + "\"]");
    }
    void arrow(const std::string& from, const std::string& to, const std::string& quantity) override {
        out_.line("    " + from + (quantity.empty() ? " --> " : " -->|\"" + escaped(quantity) + "\"| ") + to);
    }

private:
    /// All that means something there as the number of the character.
    static std::string escaped(const std::string& text) {
        std::string result;
        for (const char c : text) {
            const bool plain = (c & 0x80) || c == ' ' || c == '-' || c == '.' || c == ',' || (c >= '0' && c <= '9') ||
                               (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
            result += plain ? std::string(1, c) : "#" + std::to_string(c) + ";";
        }
        return result;
    }
};

void draw(const Items& items, const bom::Product& product, Drawing& drawing) {
    const bom::Graph& graph = items.graph();
    drawing.begin();
    for (const bom::Item item : product.items()) {
        drawing.node("i" + std::to_string(item), items.label(item), items.name(item));
    }
    for (const bom::Item item : product.items()) {
        for (const bom::Line line : graph.children(item)) {
            const bool is_item = graph.child(line) != bom::kNone;
            const std::string to = is_item ? "i" + std::to_string(graph.child(line)) : "none" + std::to_string(line);
            if (!is_item) drawing.node(to, items.child_label(line), "");
            drawing.arrow("i" + std::to_string(item), to, items.quantity_text(line));
        }
    }
    drawing.end();
}

int print_graph(Program& program, const GraphOptions& options) {
    const Database db(options.database, Access::read);
    const Items items(db);
    const bom::Product product(items.graph(), items.tops(options.code));
    if (options.mermaid) {
        MermaidDrawing drawing(program.out());
        draw(items, product, drawing);
    } else {
        DotDrawing drawing(program.out());
        draw(items, product, drawing);
    }
    return kDone;
}

}  // namespace

void add_bom_graph_verb(Program& program) {
    program.add_verb("bom graph", "a product as a graph for Graphviz or Mermaid, each part once", print_graph, R"(
        vlt bom graph examples/bicycle | dot -Tsvg > bicycle.svg
        vlt bom graph product.vlt WH-200 --mermaid)");
}

}  // namespace tool
