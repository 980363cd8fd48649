// SPDX-License-Identifier: MIT
// What builds that check derived structures compare the indexes with; other builds do nothing here.
#pragma once

#include <cstdint>

#include "base/check.h"
#include "offline/tables/index_search.h"

namespace vlt {

/// Comparator for KArray_SearchRange, over a text and an entry of an index, with an IndexContext.
int KOfflineTable_CompareKey(const void* key, const void* entry, void* context);

namespace plain_truth {

void note_entries(std::int32_t* index);
void check_exact(const IndexContext& context);
void check_found(const IndexContext& context, std::int32_t* index, const char* key, const IndexMatches& found);

}  // namespace plain_truth

/// Notes the entries as the library leaves them: once a caller has written over them they are not compared, until the
/// next change that the library makes.
inline void note_entries(std::int32_t* index) {
    if (check_derived) plain_truth::note_entries(index);
}

/// Compares an index that claims to be exact with the plain sort.
inline void check_exact(const IndexContext& context) {
    if (check_derived) plain_truth::check_exact(context);
}

/// Compares what was found with what the plain search finds.
inline void check_found(const IndexContext& context, std::int32_t* index, const char* key,
                        const IndexMatches& found) {
    if (check_derived) plain_truth::check_found(context, index, key, found);
}

}  // namespace vlt
