// What every format of a report needs: which findings are shown, and any bytes as text.

#include "check/output/Output.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

using Entries = std::vector<const ReportEntry*>;

// Adds at most so many of `entries`, the most severe ones.
void addMostSevere(const Entries& entries, size_t most, Entries* shown) {
    size_t room[3] = {};  // By severity.
    for (const ReportEntry* const entry : entries) {
        ++room[static_cast<size_t>(entry->severity)];
    }
    size_t left = most;
    for (size_t severity = std::size(room); severity > 0; --severity) {
        size_t& own = room[severity - 1];
        own = std::min(own, left);
        left -= own;
    }
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(*shown),
                 [&](const ReportEntry* entry) {
                     size_t& own = room[static_cast<size_t>(entry->severity)];
                     return own != 0 && own-- != 0;
                 });
}

}  // namespace

std::vector<const ReportEntry*> shownEntries(const Report& report, const OutputOptions& options) {
    Entries entries = report.inOrder();
    const size_t most = options.mostFindings.value_or(0);
    if (most == 0 || entries.size() <= most) {
        return entries;
    }
    Entries shown;
    addMostSevere(entries, most, &shown);
    return shown;
}

std::vector<const ReportEntry*> shownOfEachDocument(const Report& report, size_t most) {
    const Entries entries = report.inOrder();
    Entries shown;
    for (auto first = entries.begin(); first != entries.end();) {
        const auto end = std::find_if(first, entries.end(), [first](const ReportEntry* entry) {
            return entry->source != (*first)->source;
        });
        addMostSevere({first, end}, most, &shown);
        first = end;
    }
    return shown;
}

Json::Value toJson(const std::vector<LoadFacts>& loads) {
    const auto factToJson = [](const LoadFacts::Fact& fact) {
        Json::Value json;
        json["path"] = reversible(fact.path);
        json["reason"] = reversible(fact.reason);
        return json;
    };
    Json::Value list(Json::arrayValue);
    for (const LoadFacts& load : loads) {
        Json::Value json;
        json["variant"] = reversible(load.variant);
        json["systemSpec"] = factToJson(load.systemSpec);
        json["overlay"] = factToJson(load.overlay);
        list.append(std::move(json));
    }
    return list;
}

Json::Value regionOf(const Source& source, Span span, const char* line, const char* column) {
    const Source::Position start = source.positionOf(span.start);
    const Source::Position end = source.positionOf(std::max(span.start, span.limit));
    Json::Value region;
    region[line] = Json::UInt64(start.line);
    region[column] = Json::UInt64(start.column);
    region["endLine"] = Json::UInt64(end.line);
    region["endColumn"] = Json::UInt64(end.column);
    return region;
}

std::string reversible(std::string_view bytes) {
    std::string text;
    for (size_t end = bytes.find('\\'); end != std::string_view::npos; end = bytes.find('\\')) {
        text += escaped(bytes.substr(0, end)) + "\\\\";
        bytes.remove_prefix(end + 1);
    }
    return text + escaped(bytes);
}

std::string uriOf(std::string_view path) {
    constexpr std::string_view kAsTheyAre =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri = path.substr(0, 1) == "/" ? "file://" : "";
    for (const char c : path) {
        if (kAsTheyAre.find(c) != std::string_view::npos) {
            uri += c;
            continue;
        }
        uri += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
    return uri;
}

}  // namespace kc2::tool
