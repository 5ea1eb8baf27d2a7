// Names of settings, and of entries in lists: in the wrong place, misspelt, or not fit to be seen.

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/NearNames.h"
#include "base/OddCharacters.h"
#include "base/Text.h"
#include "base/Utf8.h"
#include "check/rules/Entries.h"
#include "check/rules/Misspellings.h"
#include "check/rules/Rules.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// --- Known settings ---

void checkMisplacedSettings(const Document& document, const KnownSettings& known, Report* report) {
    forEachSection(document, [&](const Section& row, const Node& section) {
        for (const Setting& setting : known.catalogue.settings()) {
            if (!isOfNamedValues(row.type) || setting.section == *row.key) {
                continue;
            }
            const Node* const member = findMember(section, setting.name);
            if (member != nullptr && member->isUsed()) {
                report->add("setting-misplaced", document, member->name,
                            fmt::format("\"{}\" belongs in \"{}\": in \"{}\" it has no effect",
                                        setting.name, setting.section, *row.key));
            }
        }
    });
}

// Names that begin as the store's own settings do, but that are like no known one: reported once,
// as a document may have many.
void reportUnknownPrivateNames(const Document& document, const std::vector<DocumentName>& names,
                               const NearNames& known, Report* report) {
    constexpr size_t kShown = 5;
    if (names.empty()) {
        return;
    }
    std::vector<std::string> shown;
    for (size_t i = 0; i < std::min(names.size(), kShown); ++i) {
        const NearNames::Entry* const near = known.closest(names[i].text);
        shown.push_back(fmt::format(
                "\"{}\" ({})", names[i].text,
                near != nullptr ? fmt::format("nearest: \"{}\"", near->name) : "nothing similar"));
    }
    report->add(
            "private-name-unknown", document, names.front().span,
            fmt::format("{} not known: {}{}",
                        names.size() == 1 ? "1 private setting is"
                                          : fmt::format("{} private settings are", names.size()),
                        joined(shown, ", "), names.size() > kShown ? ", ..." : ""));
}

void checkMisspeltSettings(const Document& document, const KnownSettings& known, Report* report) {
    std::vector<Misspelling> misspelt;
    std::unordered_set<std::string> present;
    std::vector<DocumentName> unknown;
    forEachSettingName(document, [&](const DocumentName& name) {
        const NearNames::Match match = known.settings.find(name.text, name.section);
        if (match.entry == nullptr) {
            if (hasPrivatePrefix(name.text)) {
                unknown.push_back(name);
            }
            return;
        }
        if (match.isExact) {
            present.insert(match.entry->name);
            return;
        }
        const bool isElsewhere = match.entry->group != name.section;
        misspelt.push_back({name.span, isElsewhere ? "" : match.entry->name,
                            fmt::format("\"{}\" is not a known setting. Did you mean {}{}?",
                                        name.text, meantBy(match),
                                        isElsewhere ? fmt::format(", which belongs in \"{}\"",
                                                                  match.entry->group)
                                                    : ""),
                            match.isCertain});
    });
    reportMisspellings(
            "name-misspelt", document, std::move(misspelt),
            [&](const std::string& meant) { return present.count(meant) != 0; }, report);
    reportUnknownPrivateNames(document, unknown, known.settings, report);
}

// --- Names beside each other ---

bool hasCapital(std::string_view name) {
    return std::any_of(name.begin(), name.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

// Looks at the names of one kind, which forEach(visit) visits in the order of the text. Only those
// that a name with a capital letter may be taken for are remembered: most documents have few.
template <typename ForEach>
void checkCaseTwins(const Document& document, const NearNames& known, ForEach forEach,
                    Report* report) {
    std::unordered_set<std::string> small;
    forEach([&](const DocumentName& name) {
        if (hasCapital(name.text)) {
            small.insert(inSmallLetters(name.text));
        }
    });
    if (small.empty()) {
        return;
    }
    std::unordered_map<std::string, DocumentName> first;
    forEach([&](const DocumentName& name) {
        std::string letters = inSmallLetters(name.text);
        if (small.count(letters) == 0) {
            return;
        }
        const DocumentName& earlier = first.emplace(std::move(letters), name).first->second;
        // Where one of the two is a known name, the other one is misspelt, and that is reported.
        if (earlier.text != name.text && known.find(name.text, "").entry == nullptr) {
            report->add(
                    "name-case", document, name.span,
                    fmt::format(
                            "\"{}\" differs only in case from the name at {}: these are two names",
                            name.text, document.source.positionText(earlier.span.start)),
                    besides(document.source, earlier.span));
        }
    });
}

// The names that more than one section of named values sets.
std::unordered_set<std::string_view> namesInTwoSections(const SpecDocument& content) {
    std::vector<std::string_view> all;  // Sorted, as the names of each section are.
    forEachContainer([&](const char* const* /*key*/, auto member) {
        if constexpr (requires { (content.*member).begin()->second; }) {
            const auto before = static_cast<ptrdiff_t>(all.size());
            for (const auto& [name, value] : content.*member) {
                all.push_back(name);
            }
            std::inplace_merge(all.begin(), all.begin() + before, all.end());
        }
    });
    std::unordered_set<std::string_view> names;
    for (auto at = all.begin(); (at = std::adjacent_find(at, all.end())) != all.end(); ++at) {
        names.insert(*at);
    }
    return names;
}

void checkTwoSections(const Document& document, const KnownSettings& known, Report* report) {
    const std::unordered_set<std::string_view> common = namesInTwoSections(document.content);
    if (common.empty()) {
        return;
    }
    std::unordered_map<std::string_view, DocumentName> first;
    forEachSettingName(document, [&](const DocumentName& name) {
        // A known setting is in a wrong section, and that is reported.
        if (common.count(name.text) == 0 || known.catalogue.setting(name.text) != nullptr) {
            return;
        }
        const auto [found, isNew] = first.emplace(name.text, name);
        if (!isNew && found->second.section != name.section) {
            report->add("name-in-two-sections", document, name.span,
                        fmt::format("\"{}\" is in \"{}\", too: each section has its own names",
                                    name.text, found->second.section),
                        besides(document.source, found->second.span));
        }
    });
}

// --- What a name is made of ---

// What is odd in a name; empty when nothing is.
std::string oddIn(std::string_view name) {
    const bool isPlain =
            std::all_of(name.begin(), name.end(), [](char c) { return c > 0x1F && c < 0x7F; });
    for (size_t at = isPlain ? name.size() : 0; at < name.size();) {
        const size_t length = utf8Length(name.substr(at));
        if (length == 0) {
            return "bytes that are not UTF-8";
        }
        const char32_t character = codePointOf(name.substr(at, length));
        const OddCharacter* const odd = oddCharacter(character);
        if (plainLength(name.substr(at)) == 0 || (odd != nullptr && odd->isBlank)) {
            return fmt::format("{} (U+{:04X})", odd != nullptr ? odd->name : "a control character",
                               static_cast<uint32_t>(character));
        }
        at += length;
    }
    return name.starts_with(' ') || name.ends_with(' ') ? "a blank at its start or end" : "";
}

void checkCharacters(const Document& document, const DocumentName& name, const KnownSettings& known,
                     Report* report) {
    if (name.text.empty()) {
        report->add(
                "name-empty", document, name.span,
                fmt::format("an empty name in \"{}\": the device keeps it, and nothing reads it",
                            name.section));
    }
    const std::string odd = oddIn(name.text);
    if (odd.empty()) {
        return;
    }
    const std::string_view quoted = document.source.textAt(name.span);
    const bool hasRaw =
            std::any_of(quoted.begin(), quoted.end(), [](unsigned char c) { return c < 0x20; });
    const NearNames& names = *name.list != '\0' || name.section == targetSpecOptionalCodecs
                                     ? known.components
                                     : known.settings;
    // Otherwise control-character, or the misspelt known name, is reported.
    if (!hasRaw && names.find(name.text, name.section).entry == nullptr) {
        report->add("name-characters", document, name.span,
                    fmt::format("the name has {}: names are compared byte by byte", odd));
    }
}

}  // namespace

void checkNames(const Checked& checked, Report* report) {
    const KnownSettings& known = checked.known;
    checked.forEachWritten([&](const Document& document) {
        const auto forEachSetting = [&](auto visit) { forEachSettingName(document, visit); };
        const auto forEachOfLists = [&](auto visit) { forEachEntry(document, isOfNames, visit); };
        const auto checkName = [&](const DocumentName& name) {
            checkCharacters(document, name, known, report);
        };
        checkMisplacedSettings(document, known, report);
        checkMisspeltSettings(document, known, report);
        checkCaseTwins(document, known.settings, forEachSetting, report);
        checkCaseTwins(document, known.components, forEachOfLists, report);
        checkTwoSections(document, known, report);
        forEachSetting(checkName);
        forEachOfLists(checkName);
    });
}

}  // namespace kc2::tool
