// The page of an image: its variants side by side, their bit rates, and the checker's findings.
#pragma once

#include <string>
#include <vector>

#include "catalogue/Catalogue.h"
#include "check/VariantReports.h"
#include "report/LoadColumns.h"

namespace kc2::tool {

struct PageContent {
    std::string device;  // For the heading: the root directory.
    CheckedVariants checked;
    Catalogue catalogue;
    std::vector<LoadColumn> columns = {};
    std::vector<size_t> columnOf = {};  // Of each variant.
};

// The complete page, which loads no other file.
std::string pageOf(const PageContent& content);

}  // namespace kc2::tool
