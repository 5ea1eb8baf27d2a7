// The system spec document of a load beside the built-in documents: what belongs to another chip,
// and debug settings.

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"
#include "catalogue/BuiltInValues.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"
#include "device/DevicePaths.h"

namespace kc2::tool {

namespace {

// --- A document of another chip ---

// How much of a document is as in the built-in document of another chip.
struct Likeness {
    size_t all = 0;          // Named values and components of the document.
    size_t same = 0;         // As in the other chip's built-in document.
    size_t onlyAsOther = 0;  // The same, and not as in the own chip's.
    size_t onlyAsOwn = 0;
    size_t foreign = 0;  // Of onlyAsOther: the own chip's document does not have the name.
    size_t allOfOther = 0;

    void add(bool isAsOther, bool isAsOwn, bool isForeign) {
        ++all;
        same += isAsOther ? 1 : 0;
        onlyAsOther += isAsOther && !isAsOwn ? 1 : 0;
        onlyAsOwn += isAsOwn && !isAsOther ? 1 : 0;
        foreign += isAsOther && isForeign ? 1 : 0;
    }

    bool isWhole() const { return same == all && all == allOfOther; }

    // A target may have values that happen to be another chip's: without names that the own chip's
    // document does not have they are no proof.
    bool isMost() const {
        constexpr size_t kManyForeign = 3;
        constexpr size_t kMany = 4;
        return same > all / 2 && onlyAsOther > onlyAsOwn &&
               (foreign >= kManyForeign || (foreign > 0 && onlyAsOther >= kMany));
    }
};

const std::string& keyOf(const std::string& name) {
    return name;
}
template <typename Value>
const std::string& keyOf(const std::pair<const std::string, Value>& setting) {
    return setting.first;
}

// Of the named values and of the components: no built-in document has lists, rows or profiles.
Likeness likenessOf(const SpecDocument& content, const SpecDocument& other,
                    const SpecDocument& own) {
    Likeness likeness;
    forEachContainer([&](const char* const* /*key*/, auto member) {
        if constexpr (requires { (content.*member).find(std::string()); }) {
            const auto isAs = [member](const auto& entry, const SpecDocument& document) {
                const auto found = (document.*member).find(keyOf(entry));
                return found != (document.*member).end() && *found == entry;
            };
            for (const auto& entry : content.*member) {
                likeness.add(isAs(entry, other), isAs(entry, own),
                             !(own.*member).contains(keyOf(entry)));
            }
            likeness.allOfOther += (other.*member).size();
        }
    });
    return likeness;
}

const BuiltInDocument& builtInOf(const Load& load) {
    return *std::find_if(
            builtInDocuments().begin(), builtInDocuments().end(),
            [&](const BuiltInDocument& one) { return one.number == load.chip->number; });
}

std::string chipInPath(const Load& load) {
    return *load.chip->chip == '\0' ? "names no chip"
                                    : fmt::format("contains \"{}\"", load.chip->chip);
}

// The other chip's built-in document that most of this one is from; null when there is none.
const BuiltInDocument* originOf(const SpecDocument& content, const BuiltInDocument& own,
                                bool* isWhole) {
    const BuiltInDocument* origin = nullptr;
    size_t most = 0;
    for (const BuiltInDocument& other : builtInDocuments()) {
        const Likeness likeness = likenessOf(content, other.content, own.content);
        if (other.number != own.number && likeness.same > most &&
            (likeness.isWhole() || likeness.isMost())) {
            most = likeness.same;
            origin = &other;
            *isWhole = likeness.isWhole();
        }
    }
    return origin;
}

// Returns whether the document is another chip's, which is then the finding.
bool checkDocumentOfOtherChip(const Load& load, Report* report) {
    const Document& document = *load.systemSpec;
    const BuiltInDocument& own = builtInOf(load);
    bool isWhole = false;
    const BuiltInDocument* const origin = originOf(document.content, own, &isWhole);
    if (origin == nullptr) {
        return false;
    }
    // Without a variant the path cannot name a chip, so the document may be as it must be.
    const CheckId check = load.isVariantSet() ? CheckId("document-of-other-chip")
                                              : CheckId("setting-of-other-chip");
    report->addForFile(
            check, document.source.path(),
            fmt::format("{} built-in document {} ({}), but its path {} and selects "
                        "built-in document {} ({})",
                        isWhole ? "this document is as" : "most of this document is as in",
                        origin->number, origin->chips, chipInPath(load), own.number, own.chips));
    return true;
}

// --- Single settings of another chip ---

bool isForChip(const std::vector<std::string>& chips, std::string_view chip) {
    return chips.empty() ||
           std::find(chips.begin(), chips.end(), chip.empty() ? kOtherChip : chip) != chips.end();
}

void reportOfOtherChip(const Document& document, Span span, std::string_view name,
                       const std::vector<std::string>& chips, const Load& load, Report* report) {
    report->add("setting-of-other-chip", document, span,
                fmt::format("\"{}\" is for {}, but the path of this document {}", name,
                            joined(chips, ", "), chipInPath(load)));
}

// The resource codes that a document uses for one use case.
std::set<uint32_t> codesIn(const SpecDocument& content, const std::string& name) {
    std::set<uint32_t> codes;
    const auto words = content.perfResourceValues.find(name);
    const size_t count = words != content.perfResourceValues.end() ? words->second.size() : 0;
    for (size_t i = 0; i < count; i += 2) {
        codes.insert(words->second[i]);
    }
    return codes;
}

void checkCodes(const Document& document, const Node& words, const std::string& name,
                const Load& load, Report* report) {
    const auto stored = document.content.perfResourceValues.find(name);
    if (stored == document.content.perfResourceValues.end() || !words.isArray() ||
        stored->second.size() != words.children.size()) {
        return;
    }
    const std::set<uint32_t> own = codesIn(builtInOf(load).content, name);
    for (size_t i = 0; i < words.children.size(); i += 2) {
        const uint32_t code = stored->second[i];
        const auto user = std::find_if(builtInDocuments().begin(), builtInDocuments().end(),
                                       [&](const BuiltInDocument& other) {
                                           return codesIn(other.content, name).contains(code);
                                       });
        if (!own.contains(code) && user != builtInDocuments().end()) {
            reportOfOtherChip(document, words.children[i].value, hexadecimal(code), {user->chips},
                              load, report);
        }
    }
}

void checkSettingsOfOtherChips(const Load& load, const KnownSettings& known, Report* report) {
    const Document& document = *load.systemSpec;
    const std::string_view chip = load.chip->chip;
    for (const Setting& setting : known.catalogue.settings()) {
        const Node* const member = memberOf(document, setting.section, setting.name);
        if (member == nullptr) {
            continue;
        }
        if (!isForChip(setting.chips, chip)) {
            reportOfOtherChip(document, member->name, setting.name, setting.chips, load, report);
        } else if (setting.section == targetSpecPerfResourceValues) {
            checkCodes(document, *member, setting.name, load, report);
        }
    }
    forEachEntry(document, isOfCodecs, [&](const DocumentName& name) {
        const CodecComponent* const component = known.catalogue.component(name.text);
        if (component != nullptr && !isForChip(component->chips, chip)) {
            reportOfOtherChip(document, name.span, name.text, component->chips, load, report);
        }
    });
}

// --- Debug settings ---

// By its place in the load, or by its name.
const Document* systemSpecOf(const Checked& checked) {
    const Document* const document =
            checked.isAlone() ? checked.documents.front() : checked.load->systemSpec.get();
    const bool isNamed = document != nullptr && ("/" + document->path).ends_with(kSystemSpecName);
    return isNamed || !checked.isAlone() ? document : nullptr;
}

Json::Value builtInValueOf(const Setting& setting, const Load* load) {
    for (const BuiltInValue& value : builtInValuesOf(setting)) {
        if (load == nullptr || value.number == load->chip->number) {
            return value.value;
        }
    }
    return Json::Value();
}

bool isOff(const Json::Value& value) {
    return (value.isBool() && !value.asBool()) || (value.isInt() && value.asInt() == 0);
}

void checkDebugSettings(const Checked& checked, Report* report) {
    const Document* const document = systemSpecOf(checked);
    if (document == nullptr) {
        return;
    }
    for (const Setting& setting : checked.known.catalogue.settings()) {
        const Json::Value value = settingIn(document->content, setting.section, setting.name);
        const Json::Value builtIn = builtInValueOf(setting, checked.load);
        const bool isChanged = builtIn.isNull() ? !isOff(value) : value != builtIn;
        const Node* const member = memberOf(*document, setting.section, setting.name);
        if (!isDebugName(setting.name) || value.isNull() || !isChanged || member == nullptr) {
            continue;
        }
        report->add("debug-setting", *document, member->name,
                    fmt::format("\"{}\" is {} here, for every phone, and {} in the built-in "
                                "document: a debug setting belongs in the private file of the "
                                "phone that is being debugged",
                                setting.name, writtenValue(value), writtenValue(builtIn)));
    }
}

}  // namespace

void checkBuiltIns(const Checked& checked, Report* report) {
    checkDebugSettings(checked, report);
    if (checked.isAlone() || !checked.load->hasFirstDocument()) {
        return;  // The fallback is for every chip.
    }
    if (!checkDocumentOfOtherChip(*checked.load, report)) {
        checkSettingsOfOtherChips(*checked.load, checked.known, report);
    }
}

}  // namespace kc2::tool
