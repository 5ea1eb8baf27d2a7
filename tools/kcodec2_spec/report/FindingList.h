// The findings of a report as a page lists them: the worst first, equal ones once.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "check/Report.h"
#include "report/Page.h"

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

// Of which of the report's loads it is; none for a finding about the tree's files.
const std::vector<size_t>& loadsOf(const ReportEntry& entry);

// A list for each severity.
std::string findingList(const PageContent& content, const FindingRows& findings);

}  // namespace kc2::tool
