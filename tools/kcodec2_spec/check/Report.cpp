// What a check found: the findings of a run, each with its place and what goes with it.

#include "check/Report.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace kc2::tool {

const char* nameOf(Severity severity) {
    switch (severity) {
        case Severity::Note:
            return "note";
        case Severity::Warning:
            return "warning";
        case Severity::Error:
            return "error";
    }
    return "";
}

void Report::add(const Rule& rule, const Source& source, Span span, std::string message,
                 FindingDetails details) {
    const bool isPlain = details.related.empty() && details.fixes.empty();
    add({&rule, &source, span, std::move(message), rule.severity, false,
         isPlain ? nullptr : std::make_unique<FindingDetails>(std::move(details))});
}

void Report::addForFile(const Rule& rule, const Source& source, std::string message) {
    add({&rule, &source, Span(), std::move(message), rule.severity, true, nullptr});
}

void Report::add(ReportEntry entry) {
    const auto allowances = mAllowances.find(entry.source);
    if (allowances != mAllowances.end() &&
        allowances->second.allows(*entry.rule, entry.span.start)) {
        return;  // Before the options: a comment is not idle because a check is left out.
    }
    const std::optional<Severity> severity = mLevels.of(*entry.rule);
    if (!severity) {
        return;
    }
    entry.severity = *severity;
    mSources.emplace(entry.source, mSources.size());
    ++mCounts[static_cast<size_t>(*severity)];
    mEntries.push_back(std::move(entry));
}

void Report::heedAllowances(const Source& source, const std::vector<Span>& comments) {
    Allowances allowances(source, comments);
    if (!allowances.isEmpty()) {
        mAllowances.emplace(&source, std::move(allowances));
    }
}

void Report::addUnusedAllowances() {
    for (auto& [source, allowances] : std::exchange(mAllowances, {})) {
        for (const Allowances::Unused& unused : allowances.unused()) {
            add(kAllowsNothing, *source, unused.span, unused.message);
        }
    }
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
