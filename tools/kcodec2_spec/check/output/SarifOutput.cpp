// A report in SARIF 2.1.0, which code scanners and review systems read.

#include <fmt/format.h>
#include <json/value.h>

#include <iterator>
#include <set>

#include "base/JsonPrinter.h"
#include "base/Print.h"
#include "base/Text.h"
#include "check/Checks.h"
#include "check/ChecksPage.h"
#include "check/output/Output.h"
#include "platform/Version.h"

namespace kc2::tool {

namespace {

Json::Value textOf(std::string_view text) {
    Json::Value json;
    json["text"] = reversible(text);
    return json;
}

Json::Value artifactOf(const Source& source) {
    Json::Value artifact;
    artifact["uri"] = uriOf(source.path());
    return artifact;
}

Json::Value locationOf(const Source& source, Span span) {
    Json::Value location;
    Json::Value& place = location["physicalLocation"];
    place["artifactLocation"] = artifactOf(source);
    place["region"] = regionOf(source, span, "startLine", "startColumn");
    return location;
}

Json::Value relatedLocations(const FindingDetails& details) {
    Json::Value locations(Json::arrayValue);
    for (const RelatedPlace& related : details.related) {
        Json::Value location = locationOf(*related.source, related.span);
        location["id"] = locations.size();
        if (!related.message.empty()) {
            location["message"] = textOf(related.message);
        }
        locations.append(std::move(location));
    }
    return locations;
}

// All changes together fix the finding, so they are one fix.
Json::Value fixOf(const Source& source, const FindingDetails& details) {
    Json::Value change;
    change["artifactLocation"] = artifactOf(source);
    for (const Fix& fix : details.fixes) {
        Json::Value replacement;
        replacement["deletedRegion"] = regionOf(source, fix.span, "startLine", "startColumn");
        if (!fix.replacement.empty()) {
            replacement["insertedContent"]["text"] = fix.replacement;
        }
        change["replacements"].append(std::move(replacement));
    }
    std::set<std::string> changes;
    for (const Fix& fix : details.fixes) {
        changes.insert(fix.what);
    }
    Json::Value json;
    json["description"] = textOf(joined({changes.begin(), changes.end()}, ", "));
    json["artifactChanges"].append(std::move(change));
    return json;
}

// The rules in the order of the table.
Json::Value rulesJson() {
    Json::Value rules(Json::arrayValue);
    for (const Check& check : kChecks) {
        Json::Value json;
        json["id"] = check.id;
        json["shortDescription"]["text"] = sentenceOf(check);
        json["fullDescription"]["text"] = fmt::format("{} {}", sentenceOf(check), check.meaning);
        json["help"]["text"] = check.fix;
        json["help"]["markdown"] = helpOf(check);
        json["defaultConfiguration"]["level"] = nameOf(check.severity);
        rules.append(std::move(json));
    }
    return rules;
}

Json::Value toSarif(const ReportEntry& entry) {
    Json::Value result;
    result["ruleId"] = entry.check->id;
    result["ruleIndex"] = static_cast<Json::UInt>(entry.check - std::begin(kChecks));
    result["level"] = nameOf(entry.severity);
    result["message"] = textOf(entry.message);
    result["locations"].append(locationOf(*entry.source, entry.span));
    if (entry.details != nullptr && !entry.details->related.empty()) {
        result["relatedLocations"] = relatedLocations(*entry.details);
    }
    if (entry.details != nullptr && !entry.details->fixes.empty()) {
        result["fixes"].append(fixOf(*entry.source, *entry.details));
    }
    return result;
}

}  // namespace

void printSarif(const Report& report, const OutputOptions& options) {
    Json::Value driver;
    driver["name"] = "kcodec2_spec";
    driver["version"] = KC2_VERSION;
    driver["rules"] = rulesJson();
    const JsonPrinter printer;
    printOut(
            "{{\"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\",\n"
            " \"version\": \"2.1.0\",\n \"runs\": [{{\"tool\": {{\"driver\": ");
    printer.print(driver);
    printOut("}},\n  \"columnKind\": \"unicodeCodePoints\",\n  \"results\": [");
    const char* separator = "\n   ";
    const std::vector<const ReportEntry*> shown = shownEntries(report, options);
    for (const ReportEntry* const entry : shown) {
        printOut("{}", separator);
        printer.print(toSarif(*entry));
        separator = ",\n   ";
    }
    printOut("],\n  \"properties\": {{\"notShown\": {}, \"loads\": ",
             report.count() - shown.size());
    printer.print(toJson(report.loads()));
    printOut("}}}}]}}\n");
}

}  // namespace kc2::tool
