// What a check found: the findings of a run, each with its place, related places and fixes.

#include "check/Report.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace kc2::tool {

void Report::addSource(const Source& source) {
    mSources.emplace(&source, mSources.size());
    mByPath.emplace(source.path(), &source);
}

const Source& Report::sourceOf(const std::string& shownPath) {
    const auto known = mByPath.find(shownPath);
    if (known != mByPath.end()) {
        return *known->second;
    }
    const Source& file = *mFiles.emplace_back(std::make_unique<Source>(shownPath, ""));
    addSource(file);
    return file;
}

void Report::add(CheckId check, const Source& source, Span span, std::string message,
                 FindingDetails details) {
    add({&*check, &source, span, std::move(message), check->severity, false, nullptr},
        std::move(details));
}

void Report::addForFile(CheckId check, const std::string& shownPath, std::string message,
                        FindingDetails details) {
    add({&*check, &sourceOf(shownPath), Span(), std::move(message), check->severity, true, nullptr},
        std::move(details));
}

void Report::add(ReportEntry entry, FindingDetails details) {
    const auto suppressions = mSuppressions.find(entry.source);
    if (suppressions != mSuppressions.end() && !entry.isForFile &&
        suppressions->second.suppress(*entry.check, entry.span.start)) {
        return;  // Before the options: a comment is used even if its check is left out.
    }
    const std::optional<Severity> severity = mLevels.of(*entry.check);
    if (!severity) {
        return;
    }
    entry.severity = *severity;
    if (!details.related.empty() || !details.fixes.empty() || !details.loads.empty()) {
        entry.details = std::make_unique<FindingDetails>(std::move(details));
    }
    addSource(*entry.source);
    ++mCounts[static_cast<size_t>(*severity)];
    mEntries.push_back(std::move(entry));
}

void Report::readSuppressions(const Document& document) {
    Suppressions suppressions(document.source, document.comments);
    if (!suppressions.isEmpty()) {
        mSuppressions.emplace(&document.source, std::move(suppressions));
    }
}

void Report::addUnusedSuppressions() {
    for (auto& [source, suppressions] : std::exchange(mSuppressions, {})) {
        for (const Suppressions::Unused& unused : suppressions.unused()) {
            add("allows-nothing", *source, unused.span, unused.message);
        }
    }
}

bool isUnusedSuppression(const Check& check) {
    return &check == &*CheckId("allows-nothing");
}

std::vector<const ReportEntry*> Report::inOrder() const {
    std::vector<const ReportEntry*> entries;
    entries.reserve(mEntries.size());
    for (const ReportEntry& entry : mEntries) {
        entries.push_back(&entry);
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [&](const ReportEntry* a, const ReportEntry* b) {
                         return std::tuple(mSources.at(a->source), !a->isForFile, a->span.start) <
                                std::tuple(mSources.at(b->source), !b->isForFile, b->span.start);
                     });
    return entries;
}

}  // namespace kc2::tool
