// kcodec2_spec check: every mistake of a document, before it reaches a device.

#include "check/Check.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/ExitCodes.h"
#include "base/Print.h"
#include "check/FixFiles.h"
#include "check/VariantReports.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kStandardInput = "-";

// Fixes documents of this machine, or shows how, each once: variants may share them.
class Fixer {
public:
    explicit Fixer(const CheckOptions& options) : mOptions(options) {}

    void fix(const std::string& path, const Document& document) {
        std::error_code error;
        if (!document.isReadable || !mFixed.insert(fs::weakly_canonical(path, error)).second) {
            return;
        }
        const std::string after = withSafeFixes(document, mOptions);
        if (after == document.text) {
            return;
        }
        std::string wrong = whyNotFixable(path, mOptions.fixLimits);
        if (wrong.empty() && mOptions.fix == FixMode::Show) {
            return printDiff(path, document.text, after);
        }
        if (wrong.empty()) {
            wrong = replaceFile(path, document.text, after, mOptions.fixLimits.isForced);
        }
        mIsEachFixed = mIsEachFixed && wrong.empty();
        printError("{}: {}", escaped(path),
                   wrong.empty() ? "fixed" : fmt::format("not fixed: {}", escaped(wrong)));
    }

    // The documents that a load of the device reads.
    void fixLoad() {
        const Load load = readLoad();
        for (const Document* const document : {load.systemSpec.get(), load.overlay.get()}) {
            if (document != nullptr && !document->isBuiltIn()) {
                fix(localPath(document->path), *document);
            }
        }
    }

    bool isEachFixed() const { return mIsEachFixed; }

private:
    const CheckOptions& mOptions;
    std::set<fs::path> mFixed;
    bool mIsEachFixed = true;
};

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
    return fs::is_directory(path, error)
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
    const Document* current = &document;
    std::unique_ptr<Document> fixed;
    for (int round = 0; round < kMostFixRounds; ++round) {
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
    Fixer fixer(options);
    for (const std::string& path : paths) {
        if (options.fix != FixMode::None) {
            fixer.fix(path, *readDocumentFile(path));
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
    return isEachReadable && fixer.isEachFixed() ? exitCode : kExitUsage;
}

int checkDevice(const CheckOptions& options) {
    Fixer fixer(options);
    if (options.fix != FixMode::None) {
        fixer.fixLoad();
    }
    Report report(options.levels);
    const Load load = readLoad();
    check(Checked(load, *options.known), &report);
    checkTreeFiles({&load, 1}, &report);
    const int exitCode = finish(report, options);
    return fixer.isEachFixed() ? exitCode : kExitUsage;
}

int checkEachVariant(const CheckOptions& options) {
    Fixer fixer(options);
    if (options.fix != FixMode::None) {
        for (const std::string& variant : variantsToCheck()) {
            playVariant(variant);
            fixer.fixLoad();
        }
    }
    const CheckedVariants checked =
            checkVariants(variantsToCheck(), options.levels, *options.known);
    const int exitCode = finish(checked.report, options);
    return fixer.isEachFixed() ? exitCode : kExitUsage;
}

}  // namespace kc2::tool
