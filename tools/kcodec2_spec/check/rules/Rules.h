// The rules of the checker. Each looks at the documents of a check, together or one by one, and
// reports what it finds; CheckRows.h has the texts and the severity of each check. To add a check,
// add its row there and its code to the file that fits.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "check/CheckRows.h"
#include "check/Checked.h"
#include "check/Report.h"

namespace kc2::tool {

using Rule = void (*)(const Checked& checked, Report* report);

void checkLoads(const Checked& checked, Report* report);      // Which documents a load reads.
void checkReading(const Checked& checked, Report* report);    // What the reader found.
void checkTexts(const Checked& checked, Report* report);      // What the reader does not look at.
void checkNames(const Checked& checked, Report* report);      // Of settings and list entries.
void checkTreeNames(const Checked& checked, Report* report);  // Other documents' spelling.
void checkCodecs(const Checked& checked, Report* report);     // Codec components.
void checkValues(const Checked& checked, Report* report);     // Presets, and empty sections.
void checkPerfWords(const Checked& checked, Report* report);  // Perf-lock words.
void checkBuiltIns(const Checked& checked, Report* report);   // Other chips', debug settings.
void checkMerging(const Checked& checked, Report* report);    // What documents result in.
void checkBitRates(const Checked& checked, Report* report);   // Rows of the bit-rate table.
void checkOverlays(const Checked& checked, Report* report);   // What the second document adds.

// Files of the tree that look like documents, but that no load reads: once for all loads.
void checkTreeFiles(std::span<const Load> loads, Report* report);

// The checks that report what the device logs as skipped for this reason.
std::vector<const Check*> checksForReason(std::string_view reason);

// In the order in which findings at one place are reported.
inline constexpr Rule kRules[] = {checkLoads,     checkReading, checkTexts,    checkNames,
                                  checkTreeNames, checkCodecs,  checkValues,   checkPerfWords,
                                  checkBuiltIns,  checkMerging, checkBitRates, checkOverlays};

}  // namespace kc2::tool
