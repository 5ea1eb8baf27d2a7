// Which built-in document serves which chip.

#include "targetspec/DefaultDocuments.h"

namespace kc2 {

namespace {

struct ChipDocument {
    const char* chip;  // Code name to find in the path; the first row that is found wins.
    const char* document;
};

constexpr ChipDocument kChipDocuments[] = {
        {"brel", kDefaultDocument1},
        {"mirt", kDefaultDocument1},
        {"orvelle", kDefaultDocument2},
};

}  // namespace

const char* defaultDocumentFor(const std::string& specPath) {
    for (const ChipDocument& row : kChipDocuments) {
        if (specPath.find(row.chip) != std::string::npos) {
            return row.document;
        }
    }
    return kDefaultDocument3;
}

}  // namespace kc2
