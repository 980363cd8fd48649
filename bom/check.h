// SPDX-License-Identifier: MIT
// What is wrong with a loaded database.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "bom/file_text.h"
#include "bom/finding.h"
#include "bom/graph.h"

namespace bom {

/// By table, the line of each record in its file; empty where that is not known.
using RecordLines = std::array<std::vector<std::uint32_t>, 6>;

/// A root code that no item has.
void check_root(KOfflineDb* db, const Schema& schema, Findings& findings);

/// NIDs and codes that occur twice, links to records that are not there, quantities that are no numbers, values that
/// a save would break.
void check_tables(KOfflineDb* db, const Graph& graph, const RecordLines& lines, Findings& findings);

/// Cycles, and items that no top leads to.
void check_structure(KOfflineDb* db, const Graph& graph, const RecordLines& lines, Findings& findings);

/// Documents that drawings and process plans name and that are not among those stored, and the other way round. Only
/// the last component of a name counts.
void check_documents(KOfflineDb* db, const std::vector<std::string>& stored, const RecordLines& lines,
                     Findings& findings);

/// The last component of a document's name.
std::string document_name(const std::string& path);

}  // namespace bom
