// SPDX-License-Identifier: MIT
// A table beside an index that is searched often: from a value to its entries. It is made for the entries as they are
// and dropped whenever they change. What a search costs is bounded whatever the values are.
#pragma once

#include <cstdint>

#include "offline/tables/index_search.h"

namespace vlt {

/// Made for a current index, null when memory runs out or, with `refused` set, when its values collide too often.
SearchAid* search_aid_make(const IndexContext& context, const std::int32_t* index, const IndexHead& head,
                           bool* refused);

void search_aid_free(SearchAid* aid);

IndexMatches search_aid_find(const SearchAid& aid, const IndexContext& context, const std::int32_t* index,
                             const char* key);

}  // namespace vlt
