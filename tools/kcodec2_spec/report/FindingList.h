// The findings as lists of the page, the errors first.
#pragma once

#include <string>

#include "report/FindingRows.h"
#include "report/Page.h"

namespace kc2::tool {

std::string findingList(const PageContent& content, const FindingRows& findings);

}  // namespace kc2::tool
