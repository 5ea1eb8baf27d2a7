// The matrix as a table of the page.
#pragma once

#include <string>
#include <vector>

#include "report/CellFindings.h"
#include "report/Matrix.h"
#include "report/Page.h"

namespace kc2::tool {

std::string matrixTable(const PageContent& content, const std::vector<MatrixSection>& matrix,
                        const CellFindings& findings);

}  // namespace kc2::tool
