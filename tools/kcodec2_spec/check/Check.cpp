// kcodec2_spec check: every mistake of a document, before it reaches a device.

#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "Documents.h"
#include "check/CheckOptions.h"
#include "check/Rules.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/DeviceFile.h"
#include "targetspec/DevicePaths.h"

namespace kc2::tool {

namespace {

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

void checkDocument(const CheckedDocument& document, Report* report) {
    if (document.document.isReadable) {
        if (isJson(document.document)) {
            report->heedAllowances(document.source);
        }
        applyReaderRules(document, report);
        if (!document.document.path.empty()) {  // Nobody here can change a built-in document.
            applyDocumentRules(document, report);
        }
    }
}

int finish(Report* report, const CheckOptions& options) {
    report->addUnusedAllowances();
    switch (options.format) {
        case ReportFormat::Text:
            printText(*report, options.output);
            break;
        case ReportFormat::Json:
            printJson(*report, options.output);
            break;
        case ReportFormat::Sarif:
            printSarif(*report, options.output);
            break;
    }
    const bool isFailed = report->count(Severity::Error) != 0 ||
                          (options.warningsAreErrors && report->count(Severity::Warning) != 0);
    return isFailed ? kExitFindings : kExitOk;
}

}  // namespace

CheckedDocument::CheckedDocument(std::string shownPath, Document read)
    : document(std::move(read)),
      source(std::move(shownPath), document.text),
      outline(isJson(document) ? outlineOf(document.parserText)
                               : Outline{OutlineNode(), document.text.size()}) {}

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

int checkFiles(const std::vector<std::string>& paths, const CheckOptions& options) {
    Report report(options.levels);
    std::vector<MergedDocuments> checked;  // The report points into these.
    bool isEachReadable = true;
    for (const std::string& path : paths) {
        MergedDocuments& alone = checked.emplace_back();
        alone.push_back(std::make_unique<CheckedDocument>(path, readDocumentFile(path)));
        const CheckedDocument& document = *alone.front();
        if (!document.document.isReadable) {
            report.addForFile(kUnreadable, document.source,
                              "the file cannot be read: " + document.document.whyNotReadable);
            isEachReadable = false;
            continue;
        }
        checkDocument(document, &report);
        applyMergeRules(alone, &report);
    }
    const int exitCode = finish(&report, options);
    return isEachReadable ? exitCode : kExitUsage;
}

int checkDevice(const CheckOptions& options) {
    Report report(options.levels);
    Load load = walkLoad();
    const std::string specPath = load.hasSystemSpec() ? load.systemSpec.path : load.firstPath;
    CheckedLoad checked = {std::move(load),
                           {},
                           Source(deviceFile(specPath), ""),
                           Source(deviceFile(kPrivateConfig), "")};
    const auto add = [&](const Document& document) {
        const std::string path =
                document.path.empty() ? document.origin : deviceFile(document.path);
        checked.documents.push_back(std::make_unique<CheckedDocument>(path, document));
    };
    if (checked.load.hasSystemSpec()) {
        add(checked.load.systemSpec);
    }
    add(checked.load.overlay);

    applyLoadRules(checked, &report);
    for (const auto& document : checked.documents) {
        checkDocument(*document, &report);
    }
    applyMergeRules(checked.documents, &report);
    return finish(&report, options);
}

}  // namespace kc2::tool
