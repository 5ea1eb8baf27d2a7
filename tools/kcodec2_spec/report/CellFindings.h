// Which findings are about an entry of a store: where the matrix shows it, it links to them.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report/FindingList.h"
#include "report/Page.h"

namespace kc2::tool {

// A finding about an entry.
struct CellFinding {
    size_t row;  // Of the page's list of findings.
    Severity severity;
    std::set<size_t> columns;  // Whose loads have it.
};

class CellFindings {
public:
    CellFindings(const PageContent& content, const FindingRows& findings);

    // Those about the entry of that name, the worst first.
    const std::vector<CellFinding>& of(const SnapshotSection& section, std::string_view name) const;

private:
    // By the key of the section and the entry's name; without the key for one in a list of
    // components that is part of another section.
    std::map<std::pair<std::string_view, std::string>, std::vector<CellFinding>> mFindings;
};

}  // namespace kc2::tool
