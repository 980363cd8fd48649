// SPDX-License-Identifier: MIT
// A table beside an index that is searched often: from a value to its first entry, and which entries repeat the value
// of the one before. It is made for the entries as they are and dropped whenever they change.
#pragma once

#include <cstdint>

#include "offline/tables/index.h"

/// Made for a current index, null when memory runs out.
SearchAid* search_aid_make(const IndexContext& context, const std::int32_t* index, const IndexHead& head);

void search_aid_free(SearchAid* aid);

IndexMatches search_aid_find(const SearchAid* aid, const IndexContext& context, const std::int32_t* index,
                             const char* key, std::int32_t* single);
