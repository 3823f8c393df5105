#pragma once

#include "apps/program/report.h"

#include <nlohmann/json.hpp>

namespace tandolin::program {

using Json = nlohmann::ordered_json;

/// The text, or null for an empty one.
Json orNull(const std::string& text);

/// The rows of "errors" in every document.
Json failureRows(const std::vector<ReportedFailure>& failures);

/// One document on one line.
void writeDocument(std::ostream& out, const Json& document);

} // namespace tandolin::program
