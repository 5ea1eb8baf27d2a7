// A report in SARIF 2.1.0, which code scanners and review systems read.

#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include "base/JsonPrinter.h"
#include "check/output/Output.h"
#include "platform/Version.h"

namespace kc2::tool {

namespace {

Json::Value textOf(std::string_view text) {
    Json::Value json;
    json["text"] = reversible(text);
    return json;
}

Json::Value regionOf(const Source& source, Span span) {
    const Source::Position start = source.positionOf(span.start);
    const Source::Position end = source.positionOf(std::max(span.start, span.limit));
    Json::Value region;
    region["startLine"] = Json::UInt64(start.line);
    region["startColumn"] = Json::UInt64(start.column);
    region["endLine"] = Json::UInt64(end.line);
    region["endColumn"] = Json::UInt64(end.column);
    return region;
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
    place["region"] = regionOf(source, span);
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

// All changes together mend the finding, so they are one fix.
Json::Value fixOf(const Source& source, const FindingDetails& details) {
    Json::Value change;
    change["artifactLocation"] = artifactOf(source);
    for (const Fix& fix : details.fixes) {
        Json::Value replacement;
        replacement["deletedRegion"] = regionOf(source, fix.span);
        if (!fix.replacement.empty()) {
            replacement["insertedContent"]["text"] = fix.replacement;
        }
        change["replacements"].append(std::move(replacement));
    }
    Json::Value json;
    std::set<std::string> changes;
    for (const Fix& fix : details.fixes) {
        changes.insert(fix.what);
    }
    std::string description;
    for (const std::string& what : changes) {
        description += (description.empty() ? "" : ", ") + what;
    }
    json["description"] = textOf(description);
    json["artifactChanges"].append(std::move(change));
    return json;
}

// The rules in the order of the tables, with their ranks.
class RuleIndex {
public:
    RuleIndex() {
        for (const RuleGroup& group : ruleGroups()) {
            for (const Rule* const rule : group.rules) {
                const auto rank = static_cast<Json::UInt>(mRanks.size());
                if (mRanks.emplace(rule->id, rank).second) {
                    Json::Value json;
                    json["id"] = rule->id;
                    json["shortDescription"] = textOf(rule->summary);
                    json["defaultConfiguration"]["level"] = nameOf(rule->severity);
                    mRules.append(std::move(json));
                }
            }
        }
    }

    const Json::Value& rules() const { return mRules; }
    Json::UInt rankOf(const Rule& rule) const { return mRanks.at(rule.id); }

private:
    std::map<std::string_view, Json::UInt> mRanks;
    Json::Value mRules{Json::arrayValue};
};

Json::Value toSarif(const ReportEntry& entry, const RuleIndex& rules) {
    Json::Value result;
    result["ruleId"] = entry.rule->id;
    result["ruleIndex"] = rules.rankOf(*entry.rule);
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
    const RuleIndex rules;
    Json::Value driver;
    driver["name"] = "kcodec2_spec";
    driver["version"] = KC2_VERSION;
    driver["rules"] = rules.rules();
    const JsonPrinter printer;
    std::fputs(
            "{\"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\",\n"
            " \"version\": \"2.1.0\",\n \"runs\": [{\"tool\": {\"driver\": ",
            stdout);
    printer.print(driver);
    std::fputs("},\n  \"columnKind\": \"unicodeCodePoints\",\n  \"results\": [", stdout);
    const char* separator = "\n   ";
    const std::vector<const ReportEntry*> shown = shownEntries(report, options);
    for (const ReportEntry* const entry : shown) {
        std::fputs(separator, stdout);
        printer.print(toSarif(*entry, rules));
        separator = ",\n   ";
    }
    std::printf("],\n  \"properties\": {\"notShown\": %zu}}]}\n", report.count() - shown.size());
}

}  // namespace kc2::tool
