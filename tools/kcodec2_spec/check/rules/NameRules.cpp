// Names of settings, and of entries in lists: in the wrong place, misspelt, or not fit to be seen.

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/OddCharacters.h"
#include "base/Text.h"
#include "base/Utf8.h"
#include "check/rules/DocumentNames.h"
#include "check/rules/Misspellings.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// --- Known settings ---

bool isTaken(const SpecDocument& content, SectionType type, const std::string& name) {
    switch (type) {
        case SectionType::Features:
            return content.features.count(name) != 0;
        case SectionType::Presets:
            return content.presets.count(name) != 0;
        default:
            return content.perfResourceValues.count(name) != 0;
    }
}

void checkMisplacedSettings(const CheckedDocument& checked, const KnownSettings& known,
                            const Emit& emit) {
    forEachSection(checked, [&](const Section& row, const OutlineNode& section) {
        for (const Setting& setting : known.catalogue.settings()) {
            if (!isOfNamedValues(row.type) || setting.section == *row.key ||
                !isTaken(checked.document.content, row.type, setting.name)) {
                continue;
            }
            if (const OutlineNode* const member = findMember(section, setting.name)) {
                emit(checked, member->name,
                     fmt::format("\"{}\" belongs in \"{}\": nobody asks for it in \"{}\"",
                                 setting.name, setting.section, *row.key));
            }
        }
    });
}

void checkMisspeltSettings(const CheckedDocument& checked, const KnownSettings& known,
                           const Emit& emit) {
    std::vector<Misspelling> misspelt;
    std::unordered_set<std::string> there;
    forEachSettingName(checked, [&](const DocumentName& name) {
        const auto [meant, isExact] = known.settings.find(name.text, name.section);
        if (meant == nullptr) {
            return;
        }
        if (isExact) {
            there.insert(meant->name);
            return;
        }
        const bool isElsewhere = meant->group != name.section;
        misspelt.push_back(
                {name.span, isElsewhere ? "" : meant->name,
                 fmt::format("\"{}\" is not a known setting. Did you mean \"{}\"{}?", name.text,
                             meant->name,
                             isElsewhere ? fmt::format(", which belongs in \"{}\"", meant->group)
                                         : "")});
    });
    emitMisspellings(
            checked, std::move(misspelt),
            [&](const std::string& meant) { return there.count(meant) != 0; }, emit);
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

bool isNamesOrCodecs(SectionType type) {
    return type == SectionType::Names || isOfCodecs(type);
}

void checkCaseTwins(const CheckedDocument& checked, const KnownSettings& known, const Emit& emit) {
    CaseTwins settings;
    CaseTwins entries;
    forEachSettingName(checked, [&](const DocumentName& name) { settings.look(name); });
    forEachEntry(checked, isNamesOrCodecs, [&](const DocumentName& name) { entries.look(name); });
    const auto report = [&](CaseTwins* twins, const NearNames& names, const DocumentName& name) {
        const DocumentName* const earlier = twins->earlier(name);
        // Where one of the two is a known name, the other one is misspelt, and that is reported.
        if (earlier != nullptr && names.find(name.text, "").entry == nullptr) {
            emit(checked, name.span,
                 fmt::format(
                         "\"{}\" differs in case alone from the name at {}: these are two names",
                         name.text, checked.source.placeOf(earlier->span.start)),
                 RelatedPlace{&checked.source, earlier->span, ""});
        }
    };
    if (!settings.isIdle()) {
        forEachSettingName(checked, [&](const DocumentName& name) {
            report(&settings, known.settings, name);
        });
    }
    if (!entries.isIdle()) {
        forEachEntry(checked, isNamesOrCodecs,
                     [&](const DocumentName& name) { report(&entries, known.components, name); });
    }
}

// Calls visit(name) for each name that both maps have.
template <typename A, typename B, typename Visit>
void forEachCommonName(const A& a, const B& b, Visit visit) {
    auto left = a.begin();
    auto right = b.begin();
    while (left != a.end() && right != b.end()) {
        const int order = left->first.compare(right->first);
        if (order == 0) {
            visit(left->first);
        }
        left = order <= 0 ? std::next(left) : left;
        right = order >= 0 ? std::next(right) : right;
    }
}

void checkTwoSections(const CheckedDocument& checked, const KnownSettings& known,
                      const Emit& emit) {
    const SpecDocument& content = checked.document.content;
    std::unordered_set<std::string_view> common;
    const auto add = [&](const std::string& name) {
        if (known.catalogue.setting(name) == nullptr) {  // That one is in a wrong section.
            common.insert(name);
        }
    };
    forEachCommonName(content.features, content.presets, add);
    forEachCommonName(content.features, content.perfResourceValues, add);
    forEachCommonName(content.presets, content.perfResourceValues, add);
    if (common.empty()) {
        return;
    }
    std::unordered_map<std::string_view, DocumentName> first;
    forEachSettingName(checked, [&](const DocumentName& name) {
        if (common.count(name.text) != 0) {
            const auto [found, isNew] = first.emplace(name.text, name);
            if (!isNew && found->second.section != name.section) {
                emit(checked, name.span,
                     fmt::format("\"{}\" is in \"{}\", too: each section has names for itself",
                                 name.text, found->second.section),
                     RelatedPlace{&checked.source, found->second.span, ""});
            }
        }
    });
}

// --- What a name is made of ---

template <typename Visit>
void forEachName(const CheckedDocument& checked, Visit visit) {
    forEachSettingName(checked, visit);
    forEachEntry(checked, isNamesOrCodecs, visit);
}

void checkEmptyNames(const CheckedDocument& checked, const KnownSettings& /*known*/,
                     const Emit& emit) {
    forEachName(checked, [&](const DocumentName& name) {
        if (name.text.empty()) {
            emit(checked, name.span,
                 fmt::format("an empty name in \"{}\": the device keeps it, and nobody asks for it",
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

void checkOddNames(const CheckedDocument& checked, const KnownSettings& known, const Emit& emit) {
    forEachName(checked, [&](const DocumentName& name) {
        const std::string odd = oddIn(name.text);
        if (odd.empty()) {
            return;
        }
        const std::string_view quoted = checked.source.textAt(name.span);
        const bool hasRaw =
                std::any_of(quoted.begin(), quoted.end(), [](unsigned char c) { return c < 0x20; });
        const NearNames& names = *name.list != '\0' || name.section == targetSpecOptionalCodecs
                                         ? known.components
                                         : known.settings;
        // What control-character says of the string, or the misspelt known name, is the mistake.
        if (!hasRaw && names.find(name.text, name.section).entry == nullptr) {
            emit(checked, name.span,
                 fmt::format("the name holds {}: names are compared byte by byte", odd));
        }
    });
}

constexpr DocumentRule kNameRules[] = {
        {{"setting-misplaced", Severity::Warning, "a known setting in another section than its"},
         checkMisplacedSettings},
        {{"name-misspelt", Severity::Warning, "a setting that is nearly a known one"},
         checkMisspeltSettings},
        {{"name-case", Severity::Warning, "two names that differ in case alone"}, checkCaseTwins},
        {{"name-in-two-sections", Severity::Note, "a name that is set in two sections"},
         checkTwoSections},
        {{"name-empty", Severity::Warning, "an empty name, or an empty entry in a list"},
         checkEmptyNames},
        {{"name-characters", Severity::Warning,
          "a name with odd blanks, control or invisible characters, or bytes that are not UTF-8"},
         checkOddNames},
};

}  // namespace

void applyNameRules(const CheckedDocument& document, const KnownSettings& known, Report* report) {
    applyRows(kNameRules, report, document, known);
}

std::vector<const Rule*> nameRules() {
    return rulesOf(kNameRules);
}

}  // namespace kc2::tool
