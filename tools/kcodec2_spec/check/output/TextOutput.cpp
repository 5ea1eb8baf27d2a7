// A report for people: a place, what is wrong, and the line that it is in.

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Print.h"
#include "base/Terminal.h"
#include "base/Text.h"
#include "check/output/Excerpt.h"
#include "check/output/Output.h"
#include "device/DevicePaths.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr size_t kWidthOfFiles = 109;  // For lines of 100 columns after the margin.
constexpr size_t kMostUnsummed = 100;  // Findings that one can look through, of a document too.

const char* colourOf(Severity severity, const Colours& colours) {
    return severity == Severity::Error     ? colours.red
           : severity == Severity::Warning ? colours.magenta
                                           : colours.cyan;
}

void printEntry(const ReportEntry& entry, const Colours& colours, size_t width) {
    printOut("{}{}: {}{}:{} {} [{}]\n", colours.bold,
             escaped(entry.source->placeOf(entry.span.start)), colourOf(entry.severity, colours),
             nameOf(entry.severity), colours.plain, escaped(entry.message), entry.check->id);
    if (!entry.isForFile) {
        printOut("{}", excerptOf(*entry.source, entry.span, width));
    }
    if (entry.details == nullptr) {
        return;
    }
    for (const RelatedPlace& related : entry.details->related) {
        if (!related.message.empty()) {  // Otherwise the finding's message names the place.
            printOut("    {}: {}\n",
                     escaped(related.source->placeSeenFrom(*entry.source, related.span.start)),
                     escaped(related.message));
        }
    }
    std::map<std::string, size_t> changes;
    for (const Fix& fix : entry.details->fixes) {
        ++changes[fix.what];
    }
    for (const auto& [what, places] : changes) {
        printOut("    --fix would {}{}\n", escaped(what),
                 places == 1 ? "" : fmt::format(" ({})", counted(places, "place")));
    }
}

// A line for each check, the most severe and the most frequent first, equal ones by their names.
void printSummary(const Report& report) {
    std::map<std::string_view, std::pair<Severity, size_t>> counts;
    for (const ReportEntry* const entry : report.inOrder()) {
        auto& [severity, count] = counts[entry->check->id];
        severity = entry->severity;
        ++count;
    }
    std::vector<std::pair<std::string_view, std::pair<Severity, size_t>>> rows(counts.begin(),
                                                                               counts.end());
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    for (const auto& [id, row] : rows) {
        printOut("{:8}  {:8} {}\n", row.second, nameOf(row.first), id);
    }
}

// Which documents each load reads, and why. With one load, its variant is in the reason.
void printLoads(const std::vector<LoadFacts>& loads) {
    for (const LoadFacts& load : loads) {
        if (loads.size() > 1) {
            printOut("{}:\n", load.variant == kDefaultVariant
                                      ? "No variant"
                                      : fmt::format("Variant \"{}\"", escaped(load.variant)));
        }
        for (const auto& [title, fact] : {std::pair("System spec document", &load.systemSpec),
                                          std::pair("Private overlay", &load.overlay)}) {
            printOut("{}{:20}  {}: {}\n", loads.size() > 1 ? "  " : "", title, escaped(fact->path),
                     escaped(fact->reason));
        }
    }
}

}  // namespace

void printText(const Report& report, const OutputOptions& options) {
    printLoads(report.loads());
    const Terminal terminal = terminalOf(STDOUT_FILENO);
    const Colours colours = coloursOf(terminal);
    const std::vector<const ReportEntry*> shown =
            options.mostFindings ? shownEntries(report, options)
                                 : shownOfEachDocument(report, kMostUnsummed);
    for (const ReportEntry* const entry : shown) {
        printEntry(*entry, colours, terminal.width != 0 ? terminal.width : kWidthOfFiles);
    }
    if (report.count() > kMostUnsummed || shown.size() < report.count()) {
        printSummary(report);
    }
    if (shown.size() < report.count()) {
        printOut("{} not shown; --max-findings 0 prints all\n",
                 counted(report.count() - shown.size(), "finding"));
    }
    printOut("{}, {}, {}\n", counted(report.count(Severity::Error), "error"),
             counted(report.count(Severity::Warning), "warning"),
             counted(report.count(Severity::Note), "note"));
}

}  // namespace kc2::tool
