// What every format of a report needs: which findings are shown, and any bytes as text.

#include "check/output/Output.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/Spelling.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

std::vector<const ReportEntry*> shownEntries(const Report& report, const OutputOptions& options) {
    std::vector<const ReportEntry*> entries = report.inOrder();
    if (options.mostFindings == 0 || entries.size() <= options.mostFindings) {
        return entries;
    }
    size_t room[3] = {};  // By severity.
    size_t left = options.mostFindings;
    for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
        size_t& own = room[static_cast<size_t>(severity)];
        own = std::min(left, report.count(severity));
        left -= own;
    }
    std::vector<const ReportEntry*> shown;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(shown),
                 [&](const ReportEntry* entry) {
                     size_t& own = room[static_cast<size_t>(entry->severity)];
                     return own != 0 && own-- != 0;
                 });
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
