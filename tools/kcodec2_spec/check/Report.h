// What a check found: the findings of a run, each with its place, related places and fixes.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "check/Checks.h"
#include "check/Suppressions.h"
#include "document/Document.h"
#include "document/Fix.h"
#include "document/Source.h"

namespace kc2::tool {

// What a finding may have besides its place and message. Most have neither.
struct FindingDetails {
    std::vector<RelatedPlace> related = {};
    std::vector<Fix> fixes = {};  // All of them together fix it.
    // In a report for several variants: which of its loads have the finding, and how much of the
    // message is before the variants' names.
    std::vector<size_t> loads = {};
    size_t ownMessage = 0;
};

// A second place, which the finding's message names.
inline FindingDetails besides(const Source& source, Span span) {
    return {.related = {{&source, span, ""}}};
}

struct ReportEntry {
    const Check* check;
    const Source* source;
    Span span;
    std::string message;
    Severity severity;
    bool isForFile;
    std::unique_ptr<FindingDetails> details;  // Null when there are none.
};

// Whether its findings are about comments that suppress nothing.
bool isUnusedSuppression(const Check& check);

// Which documents a load reads, and why.
struct LoadFacts {
    struct Fact {
        std::string path;  // As it is shown.
        std::string reason;
    };
    std::string variant;
    Fact systemSpec;
    Fact overlay;
};

class Report {
public:
    explicit Report(Levels levels) : mLevels(std::move(levels)) {}

    // Sources are reported in the order in which they are first named, here or by a finding. They
    // must outlive the report.
    void addSource(const Source& source);
    // The same for a file whose text was not read.
    void addFile(const std::string& shownPath) { sourceOf(shownPath); }

    // A finding at a place. Rules put in names and values as they are; what prints the report makes
    // them fit for where it goes.
    void add(CheckId check, const Source& source, Span span, std::string message,
             FindingDetails details = {});
    void add(CheckId check, const Document& document, Span span, std::string message,
             FindingDetails details = {}) {
        add(check, document.source, span, std::move(message), std::move(details));
    }

    // A finding about a whole file: it is at 1:1 and shows no line.
    void addForFile(CheckId check, const std::string& shownPath, std::string message,
                    FindingDetails details = {});

    // Reads the comments in this document that suppress findings: call it before the document's
    // findings are added, and addUnusedSuppressions() once after all of them.
    void readSuppressions(const Document& document);
    void addUnusedSuppressions();

    void addLoad(LoadFacts facts) { mLoads.push_back(std::move(facts)); }
    const std::vector<LoadFacts>& loads() const { return mLoads; }

    // Everything, source by source, and in the order of the text within each.
    std::vector<const ReportEntry*> inOrder() const;

    size_t count(Severity severity) const { return mCounts[static_cast<size_t>(severity)]; }
    size_t count() const { return mEntries.size(); }

private:
    void add(ReportEntry entry, FindingDetails details);
    const Source& sourceOf(const std::string& shownPath);

    Levels mLevels;
    std::vector<LoadFacts> mLoads;
    std::map<const Source*, size_t> mSources;  // With their ranks.
    std::unordered_map<std::string_view, const Source*> mByPath;
    std::vector<std::unique_ptr<Source>> mFiles;  // Those that the report has made.
    std::map<const Source*, Suppressions> mSuppressions;
    std::vector<ReportEntry> mEntries;
    size_t mCounts[3] = {};  // By severity.
};

}  // namespace kc2::tool
