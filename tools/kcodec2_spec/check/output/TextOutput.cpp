// A report for people: a place, what is wrong, and the line that it is in.

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <tuple>

#include "base/Terminal.h"
#include "base/Text.h"
#include "check/output/Excerpt.h"
#include "check/output/Output.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr size_t kWidthOfFiles = 109;  // For lines of 100 columns behind the margin.
constexpr size_t kMostUnsummed = 100;  // Findings that one can look through.

const char* colourOf(Severity severity, const Colours& colours) {
    return severity == Severity::Error     ? colours.red
           : severity == Severity::Warning ? colours.magenta
                                           : colours.cyan;
}

void printEntry(const ReportEntry& entry, const Colours& colours, size_t width) {
    std::printf("%s%s: %s%s:%s %s [%s]\n", colours.bold,
                escaped(entry.source->placeOf(entry.span.start)).c_str(),
                colourOf(entry.severity, colours), nameOf(entry.severity), colours.plain,
                escaped(entry.message).c_str(), entry.rule->id);
    if (!entry.isForFile) {
        std::fputs(excerptOf(*entry.source, entry.span, width).c_str(), stdout);
    }
    if (entry.details == nullptr) {
        return;
    }
    for (const RelatedPlace& related : entry.details->related) {
        if (!related.message.empty()) {  // Otherwise the finding's message names the place.
            std::printf("    %s: %s\n",
                        escaped(related.source->placeOf(related.span.start)).c_str(),
                        escaped(related.message).c_str());
        }
    }
    std::map<std::string, size_t> changes;
    for (const Fix& fix : entry.details->fixes) {
        ++changes[fix.what];
    }
    for (const auto& [what, places] : changes) {
        std::printf("    --fix would %s%s\n", escaped(what).c_str(),
                    places == 1 ? "" : (" (" + counted(places, "place") + ")").c_str());
    }
}

// A line for each check, the most severe and the most frequent first.
void printSummary(const Report& report) {
    std::map<const Rule*, std::pair<Severity, size_t>> counts;
    for (const ReportEntry* const entry : report.inOrder()) {
        auto& [severity, count] = counts[entry->rule];
        severity = entry->severity;
        ++count;
    }
    std::vector<std::tuple<Severity, size_t, const char*>> rows;
    for (const auto& [rule, count] : counts) {
        rows.emplace_back(count.first, count.second, rule->id);
    }
    std::sort(rows.rbegin(), rows.rend());
    for (const auto& [severity, count, id] : rows) {
        std::printf("%8zu  %-8s %s\n", count, nameOf(severity), id);
    }
}

}  // namespace

void printText(const Report& report, const OutputOptions& options) {
    const Terminal terminal = terminalOf(STDOUT_FILENO);
    const Colours colours = coloursOf(terminal);
    const std::vector<const ReportEntry*> shown = shownEntries(report, options);
    for (const ReportEntry* const entry : shown) {
        printEntry(*entry, colours, terminal.width != 0 ? terminal.width : kWidthOfFiles);
    }
    if (report.count() > kMostUnsummed || shown.size() < report.count()) {
        printSummary(report);
    }
    if (shown.size() < report.count()) {
        std::printf("%s not shown (--max-findings)\n",
                    counted(report.count() - shown.size(), "finding").c_str());
    }
    std::printf("%s, %s, %s\n", counted(report.count(Severity::Error), "error").c_str(),
                counted(report.count(Severity::Warning), "warning").c_str(),
                counted(report.count(Severity::Note), "note").c_str());
}

}  // namespace kc2::tool
