// SPDX-License-Identifier: MIT
#include "exchange/flat_cycles.h"

#include <algorithm>

namespace exchange {

namespace {

using Lines = std::vector<std::vector<const FlatLine*>>;

/// Items from which every path ends: what remains when items without remaining children are taken away again and
/// again.
std::vector<bool> ending_items(const FlatBom& bom, const Lines& parents, const Lines& children) {
    std::vector<std::size_t> open(bom.items.size()), ready;
    std::vector<bool> ends(bom.items.size());
    for (std::size_t item = 0; item < open.size(); ++item)
        if ((open[item] = children[item].size()) == 0) ready.push_back(item);
    while (!ready.empty()) {
        const std::size_t item = ready.back();
        ready.pop_back();
        ends[item] = true;
        for (const FlatLine* line : parents[item])
            if (--open[line->parent] == 0) ready.push_back(line->parent);
    }
    return ends;
}

void note_path(FlatBom& bom, const std::vector<const FlatLine*>& path) {
    std::string text = "a cycle: " + bom.items[path.front()->parent].code;
    for (const FlatLine* line : path) text += " > " + bom.items[line->child].code;
    bom.findings.push_back(
        {false, path.back()->line, "cycle", bom.items[path.front()->parent].code, {}, {}, {}, std::move(text)});
}

}  // namespace

/// From an item that does not end, the first line to another such one leads on for ever: it comes back to an item of
/// the path, or into a path that was walked before.
void note_cycles(FlatBom& bom) {
    Lines parents(bom.items.size()), children(bom.items.size());
    for (const FlatLine& line : bom.lines) {
        children[line.parent].push_back(&line);
        parents[line.child].push_back(&line);
    }
    const std::vector<bool> ends = ending_items(bom, parents, children);
    std::vector<std::size_t> walk(bom.items.size());  // the number of the walk that passed an item
    for (std::size_t start = 0; start < bom.items.size(); ++start) {
        std::vector<const FlatLine*> path;
        std::size_t item = start;
        while (!ends[item] && walk[item] == 0) {
            walk[item] = start + 1;
            path.push_back(*std::find_if(children[item].begin(), children[item].end(),
                                         [&](const FlatLine* line) { return !ends[line->child]; }));
            item = path.back()->child;
        }
        if (path.empty() || walk[item] != start + 1) continue;
        const auto first =
            std::find_if(path.begin(), path.end(), [&](const FlatLine* line) { return line->parent == item; });
        note_path(bom, {first, path.end()});
    }
}

}  // namespace exchange
