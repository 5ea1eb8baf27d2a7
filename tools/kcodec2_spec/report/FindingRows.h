// The findings of a report as a page lists them: the worst first, equal ones once.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "check/Report.h"

namespace kc2::tool {

struct FindingRow {
    Severity severity;
    std::vector<const ReportEntry*> entries;  // Equal ones, in the report's order; at least one.
};

struct FindingRows {
    std::vector<FindingRow> rows;
    size_t notShown = 0;  // Findings that are in no row.
};

// Notes are equal when they have the same words. Errors and warnings must also be in equal lines at
// the same place of their documents: each of them is to be fixed.
FindingRows findingRowsOf(const Report& report, size_t mostRows);

// The message without the names of the variants that have the finding.
std::string_view ownMessageOf(const ReportEntry& entry);

// Of which of the report's loads it is; none for a finding about the tree's files.
const std::vector<size_t>& loadsOf(const ReportEntry& entry);

// The line that it is in, with marks under what is wrong; empty for one about a whole file.
std::string excerptOf(const ReportEntry& entry);

}  // namespace kc2::tool
