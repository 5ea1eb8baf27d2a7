// What the check command is asked to do.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "catalogue/KnownSettings.h"
#include "check/Levels.h"
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
    std::string rootDirectory;  // What is outside of it is not mended; empty when there is none.
};

// Checks documents one by one, as files of this machine.
int checkFiles(const std::vector<std::string>& paths, const CheckOptions& options);

// Checks the whole load of a device, across both of its documents.
int checkDevice(const CheckOptions& options);

// The same with each variant that the tree has a document for, and without one, in one report.
int checkEachVariant(const CheckOptions& options);

// Prints the checks, group by group: id, severity, what it is about.
int listChecks(const CheckOptions& options);

}  // namespace kc2::tool
