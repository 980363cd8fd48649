// SPDX-License-Identifier: MIT
// A product as its page holds it: one object of columns, which the scripts in page/ read, and the documents.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tool/items.h"

namespace tool {

struct PageData {  // NOLINT(bugprone-exception-escape): JSON moves without throwing
    Json product;
    std::vector<Document> documents;  // those inside the page, in the order of their numbers
};

/// Which documents come into the page.
struct PageDocuments {
    bool wanted = true;
    std::int64_t largest = 0;  // in bytes
};

/// Throws `Failure`.
PageData page_data(const Items& items, const PageDocuments& documents);

/// The id of the element that holds a document.
std::string document_id(std::size_t number);

}  // namespace tool
