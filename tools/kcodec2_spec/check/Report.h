// What a check found: the findings of a run, each with its place and what goes with it.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "check/Allowances.h"
#include "check/Levels.h"
#include "check/Rule.h"
#include "document/Fix.h"
#include "document/Source.h"

namespace kc2::tool {

// What goes with a finding beside its place and message. Most have nothing.
struct FindingDetails {
    std::vector<RelatedPlace> related;
    std::vector<Fix> fixes;  // All of them together mend it.
};

struct ReportEntry {
    const Rule* rule;
    const Source* source;
    Span span;
    std::string message;
    Severity severity;
    bool isForFile;
    std::unique_ptr<FindingDetails> details;  // Null when there are none.
};

class Report {
public:
    explicit Report(Levels levels) : mLevels(std::move(levels)) {}

    // A finding at a place. The rule and the sources must outlive the report. Rules put in names
    // and values as they are; what prints the report makes them fit for where it goes.
    void add(const Rule& rule, const Source& source, Span span, std::string message,
             FindingDetails details = {});

    // A finding about a whole file: it is at 1:1 and shows no line.
    void addForFile(const Rule& rule, const Source& source, std::string message);

    // Heeds the comments in this source that allow findings: call it before the source's findings
    // are added, and addUnusedAllowances() once after all of them.
    void heedAllowances(const Source& source, const std::vector<Span>& comments);
    void addUnusedAllowances();

    // Everything, source by source in the order in which they were first named, and in the order of
    // the text within each.
    std::vector<const ReportEntry*> inOrder() const;

    size_t count(Severity severity) const { return mCounts[static_cast<size_t>(severity)]; }
    size_t count() const { return mEntries.size(); }

private:
    void add(ReportEntry entry);

    Levels mLevels;
    std::map<const Source*, size_t> mSources;  // With their ranks.
    std::map<const Source*, Allowances> mAllowances;
    std::vector<ReportEntry> mEntries;
    size_t mCounts[3] = {};  // By severity.
};

}  // namespace kc2::tool
