// Values that the settings catalogue does not allow, settings that need others, and what is empty.

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "check/rules/DocumentNames.h"
#include "check/rules/Emit.h"

namespace kc2::tool {

namespace {

const OutlineNode* memberOf(const CheckedDocument& checked, const std::string& section,
                            const std::string& name) {
    const OutlineNode* const node = checked.section(section.c_str());
    return node != nullptr ? findMember(*node, name) : nullptr;
}

// --- Values in the catalogue's terms ---

// Calls visit(setting, value) for each preset of the catalogue that the document sets.
template <typename Visit>
void forEachKnownPreset(const CheckedDocument& checked, const KnownSettings& known, Visit visit) {
    const auto& presets = checked.document.content.presets;
    for (const Setting& setting : known.catalogue.settings()) {
        const auto preset =
                setting.section == targetSpecPresets ? presets.find(setting.name) : presets.end();
        if (preset != presets.end()) {
            visit(setting, int64_t{preset->second});
        }
    }
}

// Adds a finding at the value of a preset, unless the reader has changed it: that is the mistake.
void emitAtValue(const CheckedDocument& checked, const Setting& setting, std::string message,
                 const Emit& emit) {
    const OutlineNode* const member = memberOf(checked, setting.section, setting.name);
    if (member != nullptr && member->isNumber()) {
        emit(checked, member->value, std::move(message));
    }
}

void checkRanges(const CheckedDocument& checked, const KnownSettings& known, const Emit& emit) {
    forEachKnownPreset(checked, known, [&](const Setting& setting, int64_t value) {
        const bool isBelow = setting.minimum && value < *setting.minimum;
        const bool isAbove = setting.maximum && value > *setting.maximum;
        if (isBelow || isAbove) {
            emitAtValue(checked, setting,
                        fmt::format("{} is {} {}, the {} of \"{}\" ({})", value,
                                    isBelow ? "below" : "above",
                                    isBelow ? *setting.minimum : *setting.maximum,
                                    isBelow ? "lowest value" : "highest value", setting.name,
                                    setting.meaning),
                        emit);
        }
    });
}

std::string listOf(const std::vector<CatalogueValue>& values) {
    std::string list;
    for (const CatalogueValue& value : values) {
        list += fmt::format("{}{} {}", list.empty() ? "" : ", ", value.value, value.meaning);
    }
    return list;
}

const CatalogueValue* findValue(const std::vector<CatalogueValue>& values, int64_t value) {
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const CatalogueValue& one) { return one.value == value; });
    return found != values.end() ? &*found : nullptr;
}

void checkListedValues(const CheckedDocument& checked, const KnownSettings& known,
                       const Emit& emit) {
    forEachKnownPreset(checked, known, [&](const Setting& setting, int64_t value) {
        if (setting.hasOnlyValues && findValue(setting.values, value) == nullptr) {
            emitAtValue(checked, setting,
                        fmt::format("{} is not a value of \"{}\" ({}): {}", value, setting.name,
                                    setting.meaning, listOf(setting.values)),
                        emit);
        }
        int64_t rest = value;
        for (const CatalogueValue& bit : setting.bits) {
            rest &= ~bit.value;
        }
        if (!setting.bits.empty() && rest != 0) {
            emitAtValue(checked, setting,
                        fmt::format("{} has other bits than \"{}\" ({}): its bits are {}", value,
                                    setting.name, setting.meaning, listOf(setting.bits)),
                        emit);
        }
    });
}

void checkSupport(const CheckedDocument& checked, const KnownSettings& known, const Emit& emit) {
    forEachKnownPreset(checked, known, [&](const Setting& setting, int64_t value) {
        const CatalogueValue* unsupported = findValue(setting.values, value);
        for (const CatalogueValue& bit : setting.bits) {
            unsupported = !bit.isSupported && (value & bit.value) != 0 ? &bit : unsupported;
        }
        if (unsupported != nullptr && !unsupported->isSupported) {
            emitAtValue(checked, setting,
                        fmt::format("{} of \"{}\" ({}) is not supported", unsupported->value,
                                    setting.name, unsupported->meaning),
                        emit);
        }
    });
}

void checkNeededBits(const CheckedDocument& checked, const KnownSettings& known, const Emit& emit) {
    forEachKnownPreset(checked, known, [&](const Setting& setting, int64_t value) {
        for (const CatalogueValue& bit : setting.bits) {
            if ((value & bit.value) != 0 && bit.neededBit && (value & *bit.neededBit) == 0) {
                emitAtValue(checked, setting,
                            fmt::format("bit {} of \"{}\" ({}) counts only together with bit {}",
                                        bit.value, setting.name, bit.meaning, *bit.neededBit),
                            emit);
            }
        }
    });
}

// --- How a value is written ---

bool isWholeReal(std::string_view number) {
    return !number.empty() && number.find_first_of(".eE") != std::string_view::npos;
}

// Where the values are that the reader has taken, and where those are that it has more to say of.
struct Reported {
    explicit Reported(const CheckedDocument& checked) {
        for (const KeptFinding& finding : checked.document.findings) {
            (finding.kind == FindingKind::Taken ? taken : others).insert(finding.start);
        }
    }

    bool isTaken(const OutlineNode& node) const { return taken.count(node.value.start) != 0; }
    bool hasOther(const OutlineNode& node) const { return others.count(node.value.start) != 0; }

    std::unordered_set<size_t> taken;
    std::unordered_set<size_t> others;
};

// JsonCpp keeps a number with a point or an exponent as a real; a whole one converts without loss.
void checkWholeReals(const CheckedDocument& checked, const KnownSettings& /*known*/,
                     const Emit& emit) {
    std::optional<Reported> reported;  // Hardly any document has a real number.
    // `whole` is what the device takes whole: the number itself, or its row.
    const auto checkNumber = [&](const OutlineNode& node, const OutlineNode& whole) {
        const std::string_view text = checked.source.textAt(node.value);
        if (!node.isNumber() || !isWholeReal(text)) {
            return;
        }
        if (!reported) {
            reported.emplace(checked);
        }
        if (reported->isTaken(whole) && !reported->hasOther(node)) {
            emit(checked, node.value,
                 fmt::format(
                         "{} is a real number; the device takes it as {}", text,
                         static_cast<int64_t>(std::strtod(std::string(text).c_str(), nullptr))));
        }
    };
    forEachSection(checked, [&](const Section& row, const OutlineNode& section) {
        const bool isTable = row.type == SectionType::BitRateRows;
        if (!isTable && row.type != SectionType::Presets && row.type != SectionType::DolbyVision) {
            return;
        }
        for (const OutlineNode& child : section.children) {
            checkNumber(child, child);
            for (const OutlineNode& element : child.children) {
                checkNumber(element, isTable ? child : element);
            }
        }
    });
}

// --- What is there and holds nothing ---

bool isNull(const OutlineNode& node) {
    return node.kind == 'n';
}

bool isEmptyContainer(const OutlineNode& node) {
    return (node.kind == '{' || node.kind == '[') && node.children.empty();
}

void checkEmptyVideo(const CheckedDocument& checked, const KnownSettings& /*known*/,
                     const Emit& emit) {
    const OutlineNode* const video = findMember(checked.outline.root, targetSpecRoot);
    if (video != nullptr && checked.document.isAccepted &&
        (isNull(*video) || isEmptyContainer(*video))) {
        emit(checked, video->name,
             fmt::format("\"{}\" is {}: the document sets nothing", targetSpecRoot,
                         isNull(*video) ? "null" : "empty"));
    }
}

// "DolbyVision" is left to the reader's finding: its levels become 0.
template <typename Visit>
void forEachSectionWithoutLevels(const CheckedDocument& checked, Visit visit) {
    forEachSection(checked, [&](const Section& row, const OutlineNode& section) {
        if (row.type != SectionType::DolbyVision) {
            visit(row, section);
        }
    });
}

void checkNullSections(const CheckedDocument& checked, const KnownSettings& /*known*/,
                       const Emit& emit) {
    forEachSectionWithoutLevels(checked, [&](const Section& row, const OutlineNode& section) {
        if (isNull(section)) {
            emit(checked, section.name,
                 fmt::format("\"{}\" is null, which counts as an empty section", *row.key));
        }
    });
}

void checkEmptySections(const CheckedDocument& checked, const KnownSettings& /*known*/,
                        const Emit& emit) {
    const auto isReported = [&checked](const OutlineNode& section) {
        const auto& findings = checked.document.findings;
        return std::any_of(findings.begin(), findings.end(), [&](const KeptFinding& finding) {
            return finding.start == section.value.start;
        });
    };
    forEachSectionWithoutLevels(checked, [&](const Section& row, const OutlineNode& section) {
        // Codec sections that name no component have a finding that says what it comes to.
        const bool isEveryCodec =
                isOfCodecs(row.type) && checked.document.content.supportedCodecs.empty();
        if (isEmptyContainer(section) && !isEveryCodec && !isReported(section)) {
            emit(checked, section.name, fmt::format("\"{}\" is empty", *row.key));
        }
    });
}

constexpr DocumentRule kValueRules[] = {
        {{"value-range", Severity::Warning, "a preset below or above what it may be"}, checkRanges},
        {{"value-unknown", Severity::Warning, "a preset with a value or a bit that does not exist"},
         checkListedValues},
        {{"value-unsupported", Severity::Warning, "a preset with a value that is not supported"},
         checkSupport},
        {{"bit-without-other", Severity::Warning, "a bit that counts only together with another"},
         checkNeededBits},
        {{"real-number", Severity::Note, "a whole number with a point or an exponent"},
         checkWholeReals},
        {{"video-empty", Severity::Warning, "a \"Video\" that is null or empty"}, checkEmptyVideo},
        {{"section-null", Severity::Warning, "a section that is null"}, checkNullSections},
        {{"section-empty", Severity::Note, "a section that holds nothing"}, checkEmptySections},
};

// --- Settings that need others, in the whole load ---

// The first document that sets the name, which is the one that counts; null when none does.
template <typename Map>
const CheckedDocument* firstWith(const MergedDocuments& documents, Map SpecDocument::*map,
                                 const std::string& name) {
    for (const auto& document : documents) {
        if ((document->document.content.*map).count(name) != 0) {
            return document.get();
        }
    }
    return nullptr;
}

bool isWritten(const CheckedDocument& checked) {
    return !checked.document.path.empty();  // Else it is a built-in document.
}

bool isFeatureOn(const MergedDocuments& documents, const std::string& name) {
    const CheckedDocument* const setter = firstWith(documents, &SpecDocument::features, name);
    return setter != nullptr && setter->document.content.features.at(name);
}

void checkNeededFeatures(const MergedDocuments& documents, const KnownSettings& known,
                         const Emit& emit) {
    for (const Setting& setting : known.catalogue.settings()) {
        const CheckedDocument* const setter =
                setting.neededFeature.empty()
                        ? nullptr
                        : firstWith(documents, &SpecDocument::presets, setting.name);
        if (setter == nullptr || !isWritten(*setter) ||
            setter->document.content.presets.at(setting.name) == 0 ||
            isFeatureOn(documents, setting.neededFeature)) {
            continue;
        }
        const CheckedDocument* const feature =
                firstWith(documents, &SpecDocument::features, setting.neededFeature);
        if (feature != nullptr || documents.size() > 1 || !isPrivateFile(*setter)) {
            emitAtValue(*setter, setting,
                        fmt::format("\"{}\" has an effect only while the feature \"{}\" is true, "
                                    "and that is {}",
                                    setting.name, setting.neededFeature,
                                    feature != nullptr ? "false" : "not set"),
                        emit);
        }
    }
}

void checkOrder(const MergedDocuments& documents, const KnownSettings& known, const Emit& emit) {
    for (const Setting& setting : known.catalogue.settings()) {
        const Setting* const most =
                setting.atMost.empty() ? nullptr : known.catalogue.setting(setting.atMost);
        if (most == nullptr) {
            continue;
        }
        const auto* const setter = firstWith(documents, &SpecDocument::presets, setting.name);
        const auto* const other = firstWith(documents, &SpecDocument::presets, most->name);
        if (setter == nullptr || other == nullptr) {
            continue;
        }
        const int32_t value = setter->document.content.presets.at(setting.name);
        const int32_t limit = other->document.content.presets.at(most->name);
        if (value > limit) {
            const bool isHere = isWritten(*setter);
            emitAtValue(isHere ? *setter : *other, isHere ? setting : *most,
                        fmt::format("\"{}\" is {}, which is above \"{}\", {}", setting.name, value,
                                    most->name, limit),
                        emit);
        }
    }
}

constexpr DocumentsRule kDependencyRules[] = {
        {{"feature-needed", Severity::Warning, "a preset whose feature is not on"},
         checkNeededFeatures},
        {{"above-other", Severity::Warning, "a preset above the one that limits it"}, checkOrder},
};

}  // namespace

void applyValueRules(const CheckedDocument& document, const KnownSettings& known, Report* report) {
    applyRows(kValueRules, report, document, known);
}

void applyDependencyRules(const MergedDocuments& documents, const KnownSettings& known,
                          Report* report) {
    applyRows(kDependencyRules, report, documents, known);
}

std::vector<const Rule*> valueRules() {
    return rulesOf(kValueRules);
}

std::vector<const Rule*> dependencyRules() {
    return rulesOf(kDependencyRules);
}

}  // namespace kc2::tool
