// Names of settings, and of entries in lists: in the wrong place, misspelt, or not fit to be seen.

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/NearNames.h"
#include "base/OddCharacters.h"
#include "base/Spelling.h"
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
class UnknownPrivateNames {
public:
    void add(const DocumentName& name) {
        if (hasPrivatePrefix(name.text)) {
            ++mCount;
            if (mFirst.size() < kShown) {
                mFirst.push_back(name);
            }
        }
    }

    void addTo(const Document& document, const NearNames& known, Report* report) const {
        if (mCount == 0) {
            return;
        }
        std::vector<std::string> shown;
        for (const DocumentName& name : mFirst) {
            const NearNames::Entry* const near = known.closest(name.text);
            shown.push_back(fmt::format("\"{}\" ({})", name.text,
                                        near != nullptr ? fmt::format("nearest: \"{}\"", near->name)
                                                        : "nothing similar"));
        }
        report->add("private-name-unknown", document, mFirst.front().span,
                    fmt::format("{} not known: {}{}",
                                mCount == 1 ? "1 private setting is"
                                            : fmt::format("{} private settings are", mCount),
                                joined(shown, ", "), mCount > kShown ? ", ..." : ""));
    }

private:
    static constexpr size_t kShown = 5;

    std::vector<DocumentName> mFirst;
    size_t mCount = 0;
};

void checkMisspeltSettings(const Document& document, const KnownSettings& known, Report* report) {
    std::vector<Misspelling> misspelt;
    std::unordered_set<std::string> present;
    UnknownPrivateNames unknown;
    forEachSettingName(document, [&](const DocumentName& name) {
        const NearNames::Match match = known.settings.find(name.text, name.section);
        if (match.entry == nullptr) {
            unknown.add(name);
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
    unknown.addTo(document, known.settings, report);
}

// --- Names beside each other ---

bool hasCapital(std::string_view name) {
    return std::any_of(name.begin(), name.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

// Names of one kind, in the order of the text; only those with a capital letter are remembered, and
// then those that they may be taken for: most documents have few.
class CaseTwins {
public:
    void look(const DocumentName& name) {
        if (hasCapital(name.text)) {
            mSmall.insert(inSmallLetters(name.text));
        }
    }

    bool isIdle() const { return mSmall.empty(); }

    // The earlier name that differs from this one in case alone; null when there is none.
    const DocumentName* earlier(const DocumentName& name) {
        const auto small = mSmall.find(inSmallLetters(name.text));
        if (small == mSmall.end()) {
            return nullptr;
        }
        const auto [found, isNew] = mFirst.emplace(*small, std::pair(std::string(name.text), name));
        return !isNew && found->second.first != name.text ? &found->second.second : nullptr;
    }

private:
    std::unordered_set<std::string> mSmall;
    std::unordered_map<std::string, std::pair<std::string, DocumentName>> mFirst;
};

void checkCaseTwins(const Document& document, const KnownSettings& known, Report* report) {
    CaseTwins settings;
    CaseTwins entries;
    forEachSettingName(document, [&](const DocumentName& name) { settings.look(name); });
    forEachEntry(document, isOfNames, [&](const DocumentName& name) { entries.look(name); });
    const auto check = [&](CaseTwins* twins, const NearNames& names, const DocumentName& name) {
        const DocumentName* const earlier = twins->earlier(name);
        // Where one of the two is a known name, the other one is misspelt, and that is reported.
        if (earlier != nullptr && names.find(name.text, "").entry == nullptr) {
            report->add(
                    "name-case", document, name.span,
                    fmt::format(
                            "\"{}\" differs only in case from the name at {}: these are two names",
                            name.text, document.source.positionText(earlier->span.start)),
                    besides(document.source, earlier->span));
        }
    };
    if (!settings.isIdle()) {
        forEachSettingName(document, [&](const DocumentName& name) {
            check(&settings, known.settings, name);
        });
    }
    if (!entries.isIdle()) {
        forEachEntry(document, isOfNames,
                     [&](const DocumentName& name) { check(&entries, known.components, name); });
    }
}

// The names that more than one section of named values sets.
std::unordered_set<std::string_view> namesInTwoSections(const SpecDocument& content) {
    std::unordered_set<std::string_view> names;
    std::vector<std::string_view> sorted;  // Of the sections so far.
    const auto add = [&](const auto& values) {
        if constexpr (requires { values.begin()->second; }) {
            std::vector<std::string_view> own;
            for (const auto& [name, value] : values) {
                own.push_back(name);
            }
            std::vector<std::string_view> common;
            std::set_intersection(sorted.begin(), sorted.end(), own.begin(), own.end(),
                                  std::back_inserter(common));
            names.insert(common.begin(), common.end());
            std::vector<std::string_view> all;
            std::set_union(sorted.begin(), sorted.end(), own.begin(), own.end(),
                           std::back_inserter(all));
            sorted = std::move(all);
        }
    };
    forEachContainer([&](const char* const* /*key*/, auto member) { add(content.*member); });
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

template <typename Visit>
void forEachName(const Document& document, Visit visit) {
    forEachSettingName(document, visit);
    forEachEntry(document, isOfNames, visit);
}

void checkEmptyNames(const Document& document, Report* report) {
    forEachName(document, [&](const DocumentName& name) {
        if (name.text.empty()) {
            report->add(
                    "name-empty", document, name.span,
                    fmt::format(
                            "an empty name in \"{}\": the device keeps it, and nothing reads it",
                            name.section));
        }
    });
}

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

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
    const bool hasBlank = !name.empty() && (isBlank(name.front()) || isBlank(name.back()));
    return hasBlank ? "a blank at its start or end" : "";
}

void checkOddNames(const Document& document, const KnownSettings& known, Report* report) {
    forEachName(document, [&](const DocumentName& name) {
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
    });
}

}  // namespace

void checkNames(const Checked& checked, Report* report) {
    checked.forEachWritten([&](const Document& document) {
        checkMisplacedSettings(document, checked.known, report);
        checkMisspeltSettings(document, checked.known, report);
        checkCaseTwins(document, checked.known, report);
        checkTwoSections(document, checked.known, report);
        checkEmptyNames(document, report);
        checkOddNames(document, checked.known, report);
    });
}

}  // namespace kc2::tool
