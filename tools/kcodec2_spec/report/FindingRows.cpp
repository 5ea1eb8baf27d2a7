// The findings of a report as a page lists them: the worst first, equal ones once.

#include "report/FindingRows.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>

#include "check/output/Excerpt.h"

namespace kc2::tool {

namespace {

constexpr size_t kExcerptColumns = 100;

// What equal findings have in common, but for their lines.
std::string commonTextOf(const ReportEntry& entry) {
    const std::string text = fmt::format("{}\n{}", entry.check->id, ownMessageOf(entry));
    if (entry.severity == Severity::Note) {
        return text;
    }
    const Source::Position position = entry.source->positionOf(entry.span.start);
    return fmt::format("{}:{} {}", position.line, position.column, text);
}

bool isInEqualLine(const ReportEntry& a, const ReportEntry& b) {
    return a.severity == Severity::Note ||
           (a.isForFile == b.isForFile && excerptOf(a) == excerptOf(b));
}

}  // namespace

FindingRows findingRowsOf(const Report& report, size_t mostRows) {
    FindingRows result;
    std::vector<const ReportEntry*> entries = report.inOrder();
    const auto severityOf = [](const ReportEntry* entry) {
        return -static_cast<int>(entry->severity);
    };
    std::stable_sort(entries.begin(), entries.end(),
                     [&](const auto* a, const auto* b) { return severityOf(a) < severityOf(b); });
    std::unordered_map<std::string, size_t> places;
    for (const ReportEntry* const entry : entries) {
        std::string text = commonTextOf(*entry);
        const auto known = places.find(text);
        if (known != places.end() &&
            isInEqualLine(*result.rows[known->second].entries[0], *entry)) {
            result.rows[known->second].entries.push_back(entry);
        } else if (result.rows.size() < mostRows) {
            places.emplace(std::move(text), result.rows.size());
            result.rows.push_back({entry->severity, {entry}});
        } else {
            ++result.notShown;
        }
    }
    return result;
}

std::string_view ownMessageOf(const ReportEntry& entry) {
    const std::string_view message = entry.message;
    return entry.details == nullptr || entry.details->loads.empty()
                   ? message
                   : message.substr(0, entry.details->ownMessage);
}

const std::vector<size_t>& loadsOf(const ReportEntry& entry) {
    static const std::vector<size_t> kNone;
    return entry.details != nullptr ? entry.details->loads : kNone;
}

std::string excerptOf(const ReportEntry& entry) {
    return entry.isForFile ? std::string() : excerptOf(*entry.source, entry.span, kExcerptColumns);
}

}  // namespace kc2::tool
