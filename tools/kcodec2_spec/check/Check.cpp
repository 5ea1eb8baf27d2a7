// kcodec2_spec check: every mistake of a document, before it reaches a device.

#include "check/Check.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/ExitCodes.h"
#include "base/Print.h"
#include "base/Spelling.h"
#include "check/FixFiles.h"
#include "check/VariantReports.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kStandardInput = "-";

// Fixes a document of this machine, or shows how. Returns whether it could.
bool fixFile(const std::string& path, const Document& document, const CheckOptions& options) {
    const std::string after = withSafeFixes(document, options);
    if (after == document.text) {
        return true;
    }
    std::string wrong = whyNotFixable(path, options.rootDirectory);
    if (wrong.empty() && options.fix == FixMode::Show) {
        printDiff(path, document.text, after);
        return true;
    }
    if (wrong.empty()) {
        wrong = replaceFile(path, document.text, after);
    }
    printError("{}: {}", escaped(path),
               wrong.empty() ? "fixed" : fmt::format("not fixed: {}", escaped(wrong)));
    return wrong.empty();
}

// Fixes the documents that a load of the device reads.
bool fixLoad(const CheckOptions& options) {
    const Load load = readLoad();
    bool isEachFixed = true;
    for (const Document* const document : {load.systemSpec.get(), load.overlay.get()}) {
        if (document != nullptr && !document->isBuiltIn() && document->isReadable) {
            isEachFixed &= fixFile(localPath(document->path), *document, options);
        }
    }
    return isEachFixed;
}

void print(const Report& report, const CheckOptions& options) {
    switch (options.format) {
        case ReportFormat::Text:
            return printText(report, options.output);
        case ReportFormat::Json:
            return printJson(report, options.output);
        case ReportFormat::Sarif:
            return printSarif(report, options.output);
    }
}

int finish(const Report& report, const CheckOptions& options) {
    if (options.fix != FixMode::Show) {  // Its diff is what was asked for.
        print(report, options);
    }
    const bool isFailed = report.count(Severity::Error) != 0 ||
                          (options.warningsAreErrors && report.count(Severity::Warning) != 0);
    return isFailed ? kExitFindings : kExitOk;
}

// FILE is a document; a device tree has its own option.
std::string whyNotReadable(const std::string& path, const Document& document) {
    std::error_code error;
    return std::filesystem::is_directory(path, error)
                   ? fmt::format("it is a directory. For a device tree write --rootdir {}", path)
                   : document.whyNotReadable;
}

std::unique_ptr<Document> readFile(const std::string& path) {
    return path == kStandardInput ? readDocumentFile("/dev/stdin", "standard input")
                                  : readDocumentFile(path);
}

}  // namespace

void check(const Checked& checked, Report* report) {
    for (const Document* const document : checked.documents) {
        report->addSource(document->source);
        if (document->isJson()) {
            report->readSuppressions(*document);
        }
    }
    for (const Rule rule : kRules) {
        rule(checked, report);
    }
    report->addUnusedSuppressions();
}

std::string withSafeFixes(const Document& document, const CheckOptions& options) {
    constexpr int kMostRounds = 4;  // Once the parser accepts a text, there may be more to fix.
    const Document* current = &document;
    std::unique_ptr<Document> fixed;
    for (int round = 0; round < kMostRounds; ++round) {
        Report report(options.levels);
        check(Checked(*current, *options.known), &report);
        std::vector<Fix> fixes;
        for (const ReportEntry* const entry : report.inOrder()) {
            if (entry->details != nullptr) {
                fixes.insert(fixes.end(), entry->details->fixes.begin(),
                             entry->details->fixes.end());
            }
        }
        if (fixes.empty()) {
            break;
        }
        auto next = std::make_unique<Document>(DocumentId{document.origin, document.path},
                                               withFixes(current->text, std::move(fixes)));
        if (next->text == current->text || (current->isAccepted && !next->isAccepted)) {
            break;
        }
        fixed = std::move(next);
        current = fixed.get();
    }
    return current->text;
}

int checkFiles(const std::vector<std::string>& paths, const CheckOptions& options) {
    Report report(options.levels);
    std::vector<std::unique_ptr<Document>> documents;  // The report points into these.
    bool isEachReadable = true;
    bool isEachFixed = true;
    for (const std::string& path : paths) {
        if (options.fix != FixMode::None) {
            const std::unique_ptr<Document> document = readDocumentFile(path);
            isEachFixed &= !document->isReadable || fixFile(path, *document, options);
        }
        const Document& document = *documents.emplace_back(readFile(path));
        if (!document.isReadable) {
            report.addForFile(
                    "unreadable", document.source.path(),
                    fmt::format("the file cannot be read: {}", whyNotReadable(path, document)));
            isEachReadable = false;
            continue;
        }
        check(Checked(document, *options.known), &report);
    }
    const int exitCode = finish(report, options);
    return isEachReadable && isEachFixed ? exitCode : kExitUsage;
}

int checkDevice(const CheckOptions& options) {
    const bool isFixed = options.fix == FixMode::None || fixLoad(options);
    Report report(options.levels);
    const Load load = readLoad();
    check(Checked(load, *options.known), &report);
    checkTreeFiles(&report);
    const int exitCode = finish(report, options);
    return isFixed ? exitCode : kExitUsage;
}

int checkEachVariant(const CheckOptions& options) {
    const CheckedVariants checked = checkAllVariants(options.levels, *options.known);
    return finish(checked.report, options);
}

}  // namespace kc2::tool
