// kcodec2_spec check: every mistake of a document, before it reaches a device.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "catalogue/KnownSettings.h"
#include "check/Checked.h"
#include "check/Checks.h"
#include "check/FixFiles.h"
#include "check/Report.h"
#include "check/output/Output.h"

namespace kc2::tool {

enum class FixMode { None, Write, Show };

enum class ReportFormat { Text, Json, Sarif };

struct CheckOptions {
    ReportFormat format = ReportFormat::Text;
    OutputOptions output;
    Levels levels;
    bool warningsAreErrors = false;
    FixMode fix = FixMode::None;
    std::shared_ptr<const KnownSettings> known;
    FixLimits fixLimits;
};

// Applies every rule. What is checked must outlive the report.
void check(const Checked& checked, Report* report);

// How often a text is checked anew: once the parser accepts it, there may be more to fix.
inline constexpr int kMostFixRounds = 16;

// The text with all safe fixes of what the check reports; nothing else is changed.
std::string withSafeFixes(const Document& document, const CheckOptions& options);

// These print the report and return the exit code.

// Checks documents one by one, as files of this machine.
int checkFiles(const std::vector<std::string>& paths, const CheckOptions& options);

// Checks the whole load of a device, across both of its documents.
int checkDevice(const CheckOptions& options);

// The same with each variant that the tree has a document for, and without one, in one report.
int checkEachVariant(const CheckOptions& options);

}  // namespace kc2::tool
