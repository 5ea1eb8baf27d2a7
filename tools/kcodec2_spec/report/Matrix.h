// Stores side by side: a row for each entry that one of the stores has, a column for each store.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "report/FindingList.h"
#include "report/Page.h"
#include "store/StoreSnapshot.h"

namespace kc2::tool {

struct MatrixCell {
    size_t column;
    const SnapshotEntry* entry = nullptr;  // Null when the store does not have it.
    size_t index = 0;                      // In its section; components see it in a list.
    bool isDifferent = false;              // From the first column.
};

// With a thousand variants, most cells would say "not there, as in the first column". They are left
// out.
struct MatrixRow {
    std::string_view name;
    std::vector<MatrixCell> cells;  // By column.
    bool isDifferent = false;       // In one of the columns at least.
};

struct MatrixSection {
    const SnapshotSection* section;  // Of the first column, for its title and form.
    std::vector<MatrixRow> rows;
    size_t differences = 0;  // Rows that differ.
};

// `columns` must not be empty, and must outlive the result.
std::vector<MatrixSection> matrixOf(const std::vector<LoadColumn>& columns);

// The matrix as a table of the page, with links to the findings.
std::string matrixTable(const PageContent& content, const std::vector<MatrixSection>& matrix,
                        const FindingRows& findings);

}  // namespace kc2::tool
