// How the findings of a report are printed: for people, for scripts, for code scanners.
#pragma once

#include <json/value.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check/Report.h"

namespace kc2::tool {

struct OutputOptions {
    // At most so many, the most severe ones; 0: all of them. Not set: all of them, but in a text
    // for people a hundred for each document.
    std::optional<size_t> mostFindings;
};

void printText(const Report& report, const OutputOptions& options);
void printJson(const Report& report, const OutputOptions& options);
void printSarif(const Report& report, const OutputOptions& options);

// Which documents each load reads, and why, for scripts.
Json::Value toJson(const std::vector<LoadFacts>& loads);

// Where a span is; `line` and `column` are the keys of its start.
Json::Value regionOf(const Source& source, Span span, const char* line, const char* column);

// The entries to show: at most so many, the most severe ones, in the report's order.
std::vector<const ReportEntry*> shownEntries(const Report& report, const OutputOptions& options);

// The same with at most so many for each document.
std::vector<const ReportEntry*> shownOfEachDocument(const Report& report, size_t most);

// `bytes` as UTF-8 that can be converted back: a byte that is not part of a printable UTF-8
// character is written \xNN, and a backslash is doubled, so that no two texts become one.
std::string reversible(std::string_view bytes);

// `path` as a URI reference, with %NN for every byte that a URI does not allow.
std::string uriOf(std::string_view path);

}  // namespace kc2::tool
