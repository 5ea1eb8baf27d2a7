// The columns of the page: variants whose loads are equal share one.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "check/VariantReports.h"
#include "report/StepChart.h"
#include "store/StoreSnapshot.h"

namespace kc2::tool {

using Snapshot = std::vector<SnapshotSection>;

struct LoadColumn {
    std::vector<size_t> variants;  // Of the checked ones, in their order; at least one.
    Snapshot snapshot;
    Steps steps;
};

// Loads the device under each of the variants. Loads are equal when each entry has the same value
// from the same kind of document, and the overlay is the same one. `columnOf`, empty before, gets
// the column of each variant.
std::vector<LoadColumn> columnsOf(const CheckedVariants& checked, std::vector<size_t>* columnOf);

// "no variant", "_x" or "12 variants", with no name in it that is not escaped for a page.
std::string variantForPage(const CheckedVariants& checked, size_t variant);
std::string titleForPage(const CheckedVariants& checked, const LoadColumn& column);

// `text` with "<variant>" in place of the variant in each path that the variant selects.
std::string withAnyVariant(std::string text, const std::string& variant);

}  // namespace kc2::tool
