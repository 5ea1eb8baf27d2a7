// How kcodec2_spec diff reports what differs.
#pragma once

#include "catalogue/Catalogue.h"
#include "commands/DiffSide.h"
#include "store/Answers.h"

namespace kc2::tool {

struct DiffReport {
    const Loaded& a;
    const Loaded& b;
    AnsweredDifferences differences;
    const Catalogue& catalogue;

    // "A" or "B" where a device rejects that document and accepts the other one; else null.
    const char* rejectedDocument() const;
};

void printDiffText(const DiffReport& report);
void printDiffJson(const DiffReport& report);
void printDiffMarkdown(const DiffReport& report);

}  // namespace kc2::tool
