// Which built-in document serves which chip.

#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2 {

const ChipDocument& chipDocumentFor(const std::string& specPath) {
    const ChipDocument* row = kChipDocuments;
    while (specPath.find(row->chip) == std::string::npos) {
        ++row;  // Ends at the last row: every path contains the empty name.
    }
    return *row;
}

}  // namespace kc2
