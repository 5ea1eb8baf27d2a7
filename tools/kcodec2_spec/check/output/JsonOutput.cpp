// A report for scripts and editors. docs/tool.md describes it.

#include <json/value.h>

#include "base/JsonPrinter.h"
#include "base/Print.h"
#include "check/output/Output.h"

namespace kc2::tool {

namespace {

constexpr int kFormatVersion = 2;  // Raised by each change that readers must know about.

Json::Value toJson(const Source& source, Span span) {
    Json::Value json = regionOf(source, span, "line", "column");
    json["path"] = reversible(source.path());
    return json;
}

Json::Value toJson(const ReportEntry& entry) {
    Json::Value json = toJson(*entry.source, entry.span);
    json["severity"] = nameOf(entry.severity);
    json["id"] = entry.check->id;
    json["message"] = reversible(entry.message);
    if (entry.details == nullptr) {
        return json;
    }
    for (const RelatedPlace& related : entry.details->related) {
        Json::Value& place = json["related"].append(toJson(*related.source, related.span));
        if (!related.message.empty()) {
            place["message"] = reversible(related.message);
        }
    }
    for (const Fix& fix : entry.details->fixes) {
        Json::Value& change = json["fixes"].append(toJson(*entry.source, fix.span));
        change["replacement"] = reversible(fix.replacement);
        change["what"] = reversible(fix.what);
    }
    return json;
}

}  // namespace

void printJson(const Report& report, const OutputOptions& options) {
    const std::vector<const ReportEntry*> shown = shownEntries(report, options);
    Json::Value counts;
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
        counts[nameOf(severity)] = Json::UInt64(report.count(severity));
    }
    const JsonPrinter printer;
    printOut("{{\"version\": {}, \"counts\": ", kFormatVersion);
    printer.print(counts);
    printOut(", \"notShown\": {},\n \"loads\": ", report.count() - shown.size());
    printer.print(toJson(report.loads()));
    printOut(",\n \"findings\": [");
    const char* separator = "\n  ";
    for (const ReportEntry* const entry : shown) {  // One by one: there may be a million.
        printOut("{}", separator);
        printer.print(toJson(*entry));
        separator = ",\n  ";
    }
    printOut("{}\n", shown.empty() ? "]}" : "\n]}");
}

}  // namespace kc2::tool
