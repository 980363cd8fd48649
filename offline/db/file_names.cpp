// SPDX-License-Identifier: MIT
#include "offline/db/file_names.h"

#include <cstring>

#include "offline/tables/text.h"

namespace vlt {

namespace {

/// Appends as much of `text` as fits; false when a part was left out.
bool append(char* name, const char* text) {
    const std::size_t used = std::strlen(name);
    return text_copy_cut(name + used, kFileNameSize - used, text);
}

}  // namespace

const char* last_component(const char* path) {
    const char* name = path;
    while (*path) {
        const bool separates = *path == '\\' || *path == '/';
        path = KText_NextChar(path);
        if (separates) name = path;
    }
    return name;
}

bool form_file_name(const char* path, const char* file, char* name) {
    name[0] = 0;
    const bool whole = append(name, path ? path : "");
    KText_Trim(name, " \t", " \t");
    const bool empty = name[0] == 0;
    const bool separated = empty || *last_component(name) != 0 ? append(name, "\\") : true;
    return append(name, file) && whole && separated && !empty;
}

}  // namespace vlt
