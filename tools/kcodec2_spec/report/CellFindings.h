// Which findings are about an entry of a store: where the matrix shows it, it links to them.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "report/FindingRows.h"
#include "report/LoadColumns.h"

namespace kc2::tool {

// A finding about an entry.
struct CellFinding {
    size_t row;  // Of the page's list of findings.
    Severity severity;
    std::vector<size_t> columns;  // Whose loads have it, sorted.
};

class CellFindings {
public:
    CellFindings(const CheckedVariants& checked, const std::vector<LoadColumn>& columns,
                 const FindingRows& findings);

    // Those about the entry of that name, the worst first.
    const std::vector<CellFinding>& of(const SnapshotSection& section, std::string_view name) const;

private:
    // An entry's name with the key of its section; without the key for one in a list of components
    // that is part of another section.
    using Name = std::pair<std::string_view, std::string>;

    static std::vector<Name> namesAt(const Document& document, size_t start);
    void add(const ReportEntry& entry, const Document& document, size_t row);

    std::vector<size_t> mColumnOf;  // By load.
    std::map<Name, std::vector<CellFinding>, std::less<>> mFindings;
};

}  // namespace kc2::tool
