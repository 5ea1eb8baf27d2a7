// kcodec2_spec check: every mistake of a document, before it reaches a device.

#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/ExitCodes.h"
#include "check/CheckOptions.h"
#include "check/FixFiles.h"
#include "check/VariantReports.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "document/Mends.h"
#include "kc2/TargetSpecKeys.h"
#include "store/Load.h"
#include "store/TreeFiles.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kStandardInput = "-";

bool isJson(const Document& document) {
    for (const KeptFinding& finding : document.findings) {
        switch (finding.kind) {
            case FindingKind::TextTooLong:
            case FindingKind::TooManyValues:
            case FindingKind::NestingTooDeep:
            case FindingKind::SyntaxError:
                return false;
            default:
                break;
        }
    }
    return document.isReadable;
}

void checkTogether(const MergedDocuments& documents, const KnownSettings& known, Report* report) {
    applyMergeRules(documents, report);
    applyRowRules(documents, report);
    applyCodecMergeRules(documents, known, report);
    applyDependencyRules(documents, known, report);
}

// The text with all certain mends of what the check reports; nothing else is changed.
std::string mended(const Document& document, const CheckOptions& options) {
    constexpr int kMostRounds = 4;  // A text that the parser takes at last may have more to mend.
    std::string text = document.text;
    bool isAccepted = document.isAccepted;
    for (int round = 0; round < kMostRounds; ++round) {
        const CheckedDocument checked("", readDocument(document.origin, document.path, text));
        Report report(options.levels);
        checkDocument(checked, *options.known, &report);
        std::vector<Fix> fixes;
        for (const ReportEntry* const entry : report.inOrder()) {
            if (entry->details != nullptr) {
                fixes.insert(fixes.end(), entry->details->fixes.begin(),
                             entry->details->fixes.end());
            }
        }
        std::string next = withFixes(text, std::move(fixes));
        const bool isNextAccepted = next != text && readDocument("", "", next).isAccepted;
        if (next == text || (isAccepted && !isNextAccepted)) {
            break;
        }
        isAccepted = isNextAccepted;
        text = std::move(next);
    }
    return text;
}

// Mends a document of this machine, or shows how. Returns whether it could.
bool mendFile(const std::string& path, const Document& document, const CheckOptions& options) {
    const std::string after = mended(document, options);
    if (after == document.text) {
        return true;
    }
    std::string wrong = whyNotMendable(path, options.rootDirectory);
    if (wrong.empty() && options.fix == FixMode::Show) {
        printDiff(path, document.text, after);
        return true;
    }
    if (wrong.empty()) {
        wrong = replaceFile(path, document.text, after);
    }
    std::fprintf(stderr, "%s: %s\n", escaped(path).c_str(),
                 wrong.empty() ? "mended" : ("not mended: " + escaped(wrong)).c_str());
    return wrong.empty();
}

// Mends the documents that a load of the device reads.
bool mendLoad(const CheckOptions& options) {
    const Load load = walkLoad();
    bool isEachMended = true;
    for (const Document* const document : {&load.systemSpec, &load.overlay}) {
        if (!document->path.empty() && document->isReadable) {
            isEachMended &= mendFile(localPath(document->path), *document, options);
        }
    }
    return isEachMended;
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

int finish(Report* report, const CheckOptions& options) {
    report->addUnusedAllowances();
    if (options.fix != FixMode::Show) {  // Its diff is what was asked for.
        print(*report, options);
    }
    const bool isFailed = report->count(Severity::Error) != 0 ||
                          (options.warningsAreErrors && report->count(Severity::Warning) != 0);
    return isFailed ? kExitFindings : kExitOk;
}

// Documents are checked by themselves; for a tree there is an option.
std::string whyNotReadable(const std::string& path, const Document& document) {
    std::error_code error;
    return std::filesystem::is_directory(path, error)
                   ? "it is a directory. For a device tree write --rootdir " + path
                   : document.whyNotReadable;
}

// Checks one load; the report points into what it returns.
std::unique_ptr<CheckedLoad> checkLoad(const KnownSettings& known, Report* report) {
    Load load = walkLoad();
    const std::string specPath = load.hasSystemSpec() ? load.systemSpec.path : load.firstPath;
    std::unique_ptr<CheckedLoad> checked(new CheckedLoad{std::move(load),
                                                         {},
                                                         Source(localPath(specPath), ""),
                                                         Source(localPath(kPrivateConfig), ""),
                                                         {}});
    const auto add = [&](const Document& document) {
        const std::string path = document.path.empty() ? document.origin : localPath(document.path);
        checked->documents.push_back(std::make_unique<CheckedDocument>(path, document));
    };
    if (checked->load.hasSystemSpec()) {
        add(checked->load.systemSpec);
    }
    add(checked->load.overlay);

    applyLoadRules(*checked, report);
    applyTreeRules(checked.get(), report);
    for (const auto& document : checked->documents) {
        checkDocument(*document, known, report);
    }
    checkTogether(checked->documents, known, report);
    applyOverlayRules(*checked, report);
    return checked;
}

}  // namespace

void checkDocument(const CheckedDocument& document, const KnownSettings& known, Report* report) {
    if (document.document.isReadable) {
        if (isJson(document.document)) {
            report->heedAllowances(document.source, document.document.comments);
        }
        applyReaderRules(document, known, report);
        if (!document.document.path.empty()) {  // Nobody here can change a built-in document.
            applyDocumentRules(document, known, report);
            applyNameRules(document, known, report);
            applyCodecRules(document, known, report);
            applyValueRules(document, known, report);
            applyPerfRules(document, known, report);
        }
    }
}

CheckedDocument::CheckedDocument(std::string shownPath, Document read)
    : document(std::move(read)),
      source(std::move(shownPath), document.text),
      outline(isJson(document) ? outlineOf(document.parserText)
                               : Outline{OutlineNode(), document.text.size(), {}}) {}

std::vector<const KeptFinding*> CheckedDocument::takenIn(const char* section,
                                                         const char* name) const {
    std::vector<const KeptFinding*> taken;
    for (const KeptFinding& finding : document.findings) {
        if (finding.kind == FindingKind::Taken && finding.section == section &&
            (*name == '\0' || finding.name == name)) {
            taken.push_back(&finding);
        }
    }
    return taken;
}

const OutlineNode* CheckedDocument::section(const char* key) const {
    const OutlineNode* const video = findMember(outline.root, targetSpecRoot);
    return video != nullptr ? findMember(*video, key) : nullptr;
}

bool isPrivateFile(const CheckedDocument& document) {
    const std::string_view path = document.document.path;
    const std::string_view name = std::string_view(kPrivateConfig);
    const std::string_view file = name.substr(name.rfind('/') + 1);
    return path == file || path.ends_with("/" + std::string(file));
}

int checkFiles(const std::vector<std::string>& paths, const CheckOptions& options) {
    Report report(options.levels);
    std::vector<MergedDocuments> checked;  // The report points into these.
    bool isEachReadable = true;
    bool isEachMended = true;
    for (const std::string& path : paths) {
        if (options.fix != FixMode::None) {
            const Document document = readDocumentFile(path);
            isEachMended &= !document.isReadable || mendFile(path, document, options);
        }
        MergedDocuments& alone = checked.emplace_back();
        alone.push_back(path == kStandardInput
                                ? std::make_unique<CheckedDocument>("standard input",
                                                                    readDocumentFile("/dev/stdin"))
                                : std::make_unique<CheckedDocument>(path, readDocumentFile(path)));
        const CheckedDocument& document = *alone.front();
        if (!document.document.isReadable) {
            report.addForFile(
                    kUnreadable, document.source,
                    "the file cannot be read: " + whyNotReadable(path, document.document));
            isEachReadable = false;
            continue;
        }
        checkDocument(document, *options.known, &report);
        checkTogether(alone, *options.known, &report);
    }
    const int exitCode = finish(&report, options);
    return isEachReadable && isEachMended ? exitCode : kExitUsage;
}

int checkDevice(const CheckOptions& options) {
    const bool isMended = options.fix == FixMode::None || mendLoad(options);
    Report report(options.levels);
    const std::unique_ptr<CheckedLoad> checked = checkLoad(*options.known, &report);
    const int exitCode = finish(&report, options);
    return isMended ? exitCode : kExitUsage;
}

CheckedVariants checkVariants(std::vector<std::string> variants, const Levels& levels,
                              const KnownSettings& known) {
    CheckedVariants checked = {std::move(variants), {}, Report(levels)};
    VariantReports reports;
    for (const std::string& variant : checked.variants) {
        playVariant(variant);
        Report report(levels);
        checked.loads.push_back(checkLoad(known, &report));
        report.addUnusedAllowances();
        reports.add(variant, report, *checked.loads.back());
    }
    reports.addTo(&checked.report);
    return checked;
}

int checkEachVariant(const CheckOptions& options) {
    std::set<std::string> variants = variantsInTree();
    variants.insert(kDefaultVariant);
    CheckedVariants checked =
            checkVariants({variants.begin(), variants.end()}, options.levels, *options.known);
    return finish(&checked.report, options);
}

}  // namespace kc2::tool
