// What the library's reader found about a value, kept after the reading.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "targetspec/reading/Findings.h"

namespace kc2::tool {

struct Verdict {
    FindingKind kind;
    int index;     // Element of the section or of the member; -1 for neither.
    size_t start;  // Bytes of the text that it is about: [start, limit).
    size_t limit;
    int64_t converted;         // What the value became, where it is not used as written.
    std::string_view section;  // Its key; empty outside the sections.
    std::string name;  // The member's; empty for what is used as it is: its node has the name.
};

}  // namespace kc2::tool
