// The line that a finding is in, with a mark under what is wrong.
#pragma once

#include <cstddef>
#include <string>

#include "document/Source.h"

namespace kc2::tool {

// The line that the span starts in, and a caret with tildes under the span, each line indented for
// a report. A line of more than `width` columns, the margin included, is cut around the span.
std::string excerptOf(const Source& source, Span span, size_t width);

}  // namespace kc2::tool
