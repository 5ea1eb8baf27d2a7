// Values that the settings catalogue does not allow, settings that need others, empty sections.

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "check/rules/Entries.h"
#include "check/rules/Rules.h"
#include "document/Tokens.h"

namespace kc2::tool {

namespace {

// --- Values in the catalogue's terms ---

// Adds a finding at the value of a preset, unless the reader has changed it: that is the mistake.
void reportAtValue(CheckId check, const Document& document, const Setting& setting,
                   std::string message, Report* report) {
    const Node* const member = memberOf(document, setting.section, setting.name);
    if (member != nullptr && member->isNumber()) {
        report->add(check, document, member->value, std::move(message));
    }
}

// A value of several bytes, each with its own limit, such as the QPs of three kinds of frames.
void checkBytes(const Document& document, const Setting& setting, int64_t value, Report* report) {
    constexpr int kBits = 8;
    for (int64_t rest = setting.maximumOfByte ? value : 0, byte = 0; rest > 0;
         ++byte, rest >>= kBits) {
        const int64_t one = rest & 0xFF;
        if (one > *setting.maximumOfByte) {
            reportAtValue("value-range", document, setting,
                          fmt::format("byte {} of {} (0x{:08X}) is {}, above {}, the highest value "
                                      "of a byte of \"{}\" ({})",
                                      byte, value, value, one, *setting.maximumOfByte, setting.name,
                                      setting.meaning),
                          report);
            return;
        }
    }
}

void checkRange(const Document& document, const Setting& setting, int64_t value, Report* report) {
    const bool isBelow = setting.minimum && value < *setting.minimum;
    const bool isAbove = setting.maximum && value > *setting.maximum;
    if (isBelow || isAbove) {
        reportAtValue("value-range", document, setting,
                      fmt::format("{} is {} {}, the {} of \"{}\" ({})", value,
                                  isBelow ? "below" : "above",
                                  isBelow ? *setting.minimum : *setting.maximum,
                                  isBelow ? "lowest value" : "highest value", setting.name,
                                  setting.meaning),
                      report);
    } else {
        checkBytes(document, setting, value, report);
    }
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

void checkListed(const Document& document, const Setting& setting, int64_t value, Report* report) {
    if (setting.hasOnlyValues && findValue(setting.values, value) == nullptr) {
        reportAtValue("value-unknown", document, setting,
                      fmt::format("{} is not a value of \"{}\" ({}): {}", value, setting.name,
                                  setting.meaning, listOf(setting.values)),
                      report);
    }
    int64_t rest = value;
    for (const CatalogueValue& bit : setting.bits) {
        rest &= ~bit.value;
    }
    if (!setting.bits.empty() && rest != 0) {
        reportAtValue("value-unknown", document, setting,
                      fmt::format("{} has other bits than \"{}\" ({}): its bits are {}", value,
                                  setting.name, setting.meaning, listOf(setting.bits)),
                      report);
    }
}

void checkSupport(const Document& document, const Setting& setting, int64_t value, Report* report) {
    const CatalogueValue* unsupported = findValue(setting.values, value);
    for (const CatalogueValue& bit : setting.bits) {
        unsupported = !bit.isSupported && (value & bit.value) != 0 ? &bit : unsupported;
    }
    if (unsupported != nullptr && !unsupported->isSupported) {
        reportAtValue("value-unsupported", document, setting,
                      fmt::format("{} of \"{}\" ({}) is not supported", unsupported->value,
                                  setting.name, unsupported->meaning),
                      report);
    }
}

void checkNeededBits(const Document& document, const Setting& setting, int64_t value,
                     Report* report) {
    for (const CatalogueValue& bit : setting.bits) {
        if ((value & bit.value) != 0 && bit.neededBit && (value & *bit.neededBit) == 0) {
            reportAtValue("bit-without-other", document, setting,
                          fmt::format("bit {} of \"{}\" ({}) is used only together with bit {}",
                                      bit.value, setting.name, bit.meaning, *bit.neededBit),
                          report);
        }
    }
}

void checkPresets(const Document& document, const Catalogue& catalogue, Report* report) {
    const auto& presets = document.content.presets;
    for (const Setting& setting : catalogue.settings()) {
        const auto preset =
                setting.section == targetSpecPresets ? presets.find(setting.name) : presets.end();
        if (preset != presets.end()) {
            const int64_t value = preset->second;
            checkRange(document, setting, value, report);
            checkListed(document, setting, value, report);
            checkSupport(document, setting, value, report);
            checkNeededBits(document, setting, value, report);
        }
    }
}

// --- How a value is written ---

bool isWholeReal(std::string_view number) {
    return !number.empty() && number.find_first_of(".eE") != std::string_view::npos;
}

// JsonCpp keeps a number with a point or an exponent as a real; a whole one converts without loss.
void checkWholeReals(const Document& document, Report* report) {
    // `whole` is what the device uses as a whole: the number itself, or its row.
    const auto checkNumber = [&](const Node& node, const Node& whole) {
        const std::string_view text = document.source.textAt(node.value);
        const bool isChanged = std::any_of(
                node.verdicts.begin(), node.verdicts.end(),
                [](const Verdict& verdict) { return verdict.kind != FindingKind::Taken; });
        if (node.isNumber() && isWholeReal(text) && whole.isUsed() && !isChanged &&
            rangeOf(text) == NumberRange::Normal) {
            report->add("real-number", document, node.value,
                        fmt::format("{} is a real number; the device uses it as {}", text,
                                    static_cast<int64_t>(
                                            std::strtod(std::string(text).c_str(), nullptr))));
        }
    };
    forEachSection(document, [&](const Section& row, const Node& section) {
        const bool isTable = row.type == SectionType::BitRateRows;
        if (!isTable && row.type != SectionType::Presets && row.type != SectionType::DolbyVision) {
            return;
        }
        for (const Node& child : section.children) {
            checkNumber(child, child);
            for (const Node& element : child.children) {
                checkNumber(element, isTable ? child : element);
            }
        }
    });
}

// --- What is there and empty ---

bool isEmptyContainer(const Node& node) {
    return (node.isObject() || node.isArray()) && node.children.empty();
}

void checkEmptyVideo(const Document& document, Report* report) {
    const Node* const video = document.video();
    if (video == nullptr || !document.isAccepted ||
        (!video->isNull() && !isEmptyContainer(*video))) {
        return;
    }
    const bool isPrivate = isPrivateFile(document);
    report->add(isPrivate ? CheckId("private-file-empty") : CheckId("video-empty"), document,
                video->name,
                fmt::format("\"{}\" is {}: {}", targetSpecRoot, video->isNull() ? "null" : "empty",
                            isPrivate ? "the file sets nothing, and while it is there, no built-in "
                                        "document is read"
                                      : "the document sets nothing"));
}

void checkEmptySections(const Document& document, Report* report) {
    forEachSection(document, [&](const Section& row, const Node& section) {
        if (row.type == SectionType::DolbyVision) {
            return;  // Left to the reader's finding: its levels become 0.
        }
        // Codec sections that name no component have a finding that says what that means.
        const bool isEveryCodec = isOfCodecs(row.type) && document.content.supportedCodecs.empty();
        if (section.isNull()) {
            report->add(
                    "section-null", document, section.name,
                    fmt::format("\"{}\" is null, which is the same as an empty section", *row.key));
        } else if (isEmptyContainer(section) && !isEveryCodec && section.verdicts.empty()) {
            report->add("section-empty", document, section.name,
                        fmt::format("\"{}\" is empty", *row.key));
        }
    });
}

// --- Settings that need others, in the merged store ---

// The document that the store's value of the preset comes from; null when there is none.
const Document* setterOf(const Checked& checked, const std::string& name) {
    const auto& presets = checked.whole().presets;
    const auto used = presets.find(name);
    for (const Document* const document : checked.documents) {
        const auto own = document->content.presets.find(name);
        if (used != presets.end() && own != document->content.presets.end() &&
            own->second == used->second) {
            return document;
        }
    }
    return nullptr;
}

void checkNeededFeatures(const Checked& checked, Report* report) {
    const SpecDocument& store = checked.whole();
    for (const Setting& setting : checked.known.catalogue.settings()) {
        const auto preset = setting.neededFeature.empty() ? store.presets.end()
                                                          : store.presets.find(setting.name);
        const auto feature = store.features.find(setting.neededFeature);
        const bool isSet = feature != store.features.end();
        if (preset == store.presets.end() || preset->second == 0 || (isSet && feature->second)) {
            continue;
        }
        const Document* const setter = setterOf(checked, setting.name);
        const bool isKnown = isSet || !checked.isAlone() || !isPrivateFile(*setter);
        if (!setter->isBuiltIn() && isKnown) {
            reportAtValue(
                    "feature-needed", *setter, setting,
                    fmt::format("\"{}\" has an effect only while the feature \"{}\" is true, "
                                "and that is {}",
                                setting.name, setting.neededFeature, isSet ? "false" : "not set"),
                    report);
        }
    }
}

void checkOrder(const Checked& checked, Report* report) {
    const SpecDocument& store = checked.whole();
    for (const Setting& setting : checked.known.catalogue.settings()) {
        const Setting* const most =
                setting.atMost.empty() ? nullptr : checked.known.catalogue.setting(setting.atMost);
        const auto value = store.presets.find(setting.name);
        const auto limit = most != nullptr ? store.presets.find(most->name) : store.presets.end();
        if (value == store.presets.end() || limit == store.presets.end() ||
            value->second <= limit->second) {
            continue;
        }
        const Document& setter = *setterOf(checked, setting.name);
        const bool isHere = !setter.isBuiltIn();
        reportAtValue("above-other", isHere ? setter : *setterOf(checked, most->name),
                      isHere ? setting : *most,
                      fmt::format("\"{}\" is {}, which is above \"{}\", {}", setting.name,
                                  value->second, most->name, limit->second),
                      report);
    }
}

}  // namespace

void checkValues(const Checked& checked, Report* report) {
    checked.forEachWritten([&](const Document& document) {
        checkPresets(document, checked.known.catalogue, report);
        checkWholeReals(document, report);
        checkEmptyVideo(document, report);
        checkEmptySections(document, report);
    });
    checkNeededFeatures(checked, report);
    checkOrder(checked, report);
}

}  // namespace kc2::tool
