// Text -> SpecDocument, and what was found on the way.

#include "targetspec/SpecReader.h"

#include <json/reader.h>
#include <json/value.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>

#include "kc2/TargetSpecKeys.h"
#include "targetspec/TextLimits.h"

namespace kc2 {

namespace {

// Member `key` of `object`; null when there is none, also when `object` is no object.
const Json::Value* findMember(const Json::Value& object, const char* key) {
    if (key == nullptr || !object.isObject()) {
        return nullptr;
    }
    return object.find(key, key + std::strlen(key));
}

bool isObjectOrNull(const Json::Value& value) {
    return value.isObject() || value.isNull();
}

// The name of the member that an iterator over an object stands at.
std::string_view nameOf(const Json::Value::const_iterator& member) {
    const char* end = nullptr;
    const char* const name = member.memberName(&end);
    return {name, static_cast<size_t>(end - name)};
}

void add(std::list<std::string>& names, std::string_view name) {
    names.emplace_back(name);
}

void add(std::unordered_set<std::string>& names, std::string_view name) {
    names.emplace(name);
}

// The sections of one "Video" object, each read by the function of its name.
class SectionReader {
public:
    SectionReader(const Json::Value& video, SpecDocument* document, FindingSink& findings)
        : mDocument(*document), mFindings(findings) {
        mSections.reserve(video.size());
        const auto limit = video.end();
        for (auto section = video.begin(); section != limit; ++section) {
            mSections.push_back({nameOf(section), &*section});
        }
    }

    // In the order in which the device's log shows their findings.
    void readAll() {
        readFeatures();
        readPresets();
        readNimbraModeBitRateTable();
        readDolbyVision();
        readNames(targetSpecCodecPlugins, &mDocument.codecPlugins);
        readNames(targetSpecPreProcessingFilters, &mDocument.preprocessingFilters);
        readPerfResourceValues();
        readSupportedCodecs();
        readNames(targetSpecOptionalCodecs, &mDocument.supportedCodecs);
        readNames(targetSpecSupportedEncPostProcessingFilters, &mDocument.encPostProcessingFilters);
    }

private:
    void report(FindingKind kind, const Place& place, const Json::Value& value,
                int64_t converted = 0) {
        if (mFindings.hears(kind)) {
            mFindings.report({kind, place, static_cast<size_t>(value.getOffsetStart()),
                              static_cast<size_t>(value.getOffsetLimit()), converted,
                              std::string_view()});
        }
    }

    // A handful of names: comparing them takes less than the parser's lookup.
    const Json::Value* findSection(const char* key) const {
        for (const Section& section : mSections) {
            if (key != nullptr && section.name == key) {
                return section.value;
            }
        }
        return nullptr;
    }

    // The section `key` when it is one to take members of; null when it is absent or unusable.
    const Json::Value* findObjectSection(const char* key) {
        const Json::Value* const section = findSection(key);
        if (section != nullptr && !isObjectOrNull(*section)) {
            report(FindingKind::SectionNotObject, {.section = key}, *section);
            return nullptr;
        }
        return section;
    }

    // Calls visit(place, value) for each member of an object section, in ascending name order.
    template <typename Visit>
    void forEachMember(const char* key, Visit visit) {
        const Json::Value* const section = findObjectSection(key);
        if (section == nullptr || section->isNull()) {
            return;
        }
        const auto limit = section->end();
        for (auto member = section->begin(); member != limit; ++member) {
            visit(Place{.section = key, .name = nameOf(member)}, *member);
        }
    }

    // Calls visit(place, value) for each element of an array. An object is walked over its member
    // values in ascending name order; null and scalars hold no element.
    template <typename Visit>
    void forEachElement(Place place, const Json::Value& list, Visit visit) {
        if (list.isObject()) {
            report(FindingKind::ObjectAsArray, place, list);
        } else if (!list.isArray()) {
            if (!list.isNull()) {
                report(FindingKind::ListNotArray, place, list);
            }
            return;
        }
        for (const Json::Value& element : list) {
            ++place.index;
            visit(place, element);
        }
    }

    // Adds the strings of an array to `names`, a list or a set.
    template <typename Names>
    void readNamesOf(const Place& place, const Json::Value& list, Names* names) {
        forEachElement(place, list, [&](const Place& at, const Json::Value& element) {
            const char* name = nullptr;
            const char* end = nullptr;
            if (element.getString(&name, &end)) {
                add(*names, {name, static_cast<size_t>(end - name)});
                report(FindingKind::Taken, at, element);
            } else {
                report(FindingKind::ElementNotString, at, element);
            }
        });
    }

    template <typename Names>
    void readNames(const char* key, Names* names) {
        if (const Json::Value* const section = findSection(key)) {
            readNamesOf({.section = key}, *section, names);
        }
    }

    std::optional<bool> toBoolean(const Place& place, const Json::Value& value) {
        switch (value.type()) {
            case Json::booleanValue:
                break;
            case Json::nullValue:
                report(FindingKind::NullAsFalse, place, value);
                break;
            case Json::intValue:
            case Json::uintValue:
            case Json::realValue:
                report(FindingKind::NumberAsBoolean, place, value, value.asBool() ? 1 : 0);
                break;
            default:
                return std::nullopt;
        }
        return value.asBool();
    }

    std::optional<int32_t> toInteger(const Place& place, const Json::Value& value) {
        switch (value.type()) {
            case Json::nullValue:
                report(FindingKind::NullAsZero, place, value);
                return value.asInt();
            case Json::booleanValue:
                report(FindingKind::BooleanAsInteger, place, value, value.asInt());
                return value.asInt();
            case Json::intValue: {
                const Json::LargestInt integer = value.asLargestInt();
                if (integer != static_cast<int32_t>(integer)) {
                    return std::nullopt;
                }
                return static_cast<int32_t>(integer);
            }
            case Json::uintValue:
                return value.isInt() ? std::optional<int32_t>(value.asInt()) : std::nullopt;
            case Json::realValue: {
                const double real = value.asDouble();
                if (!(real >= std::numeric_limits<int32_t>::min() &&
                      real <= std::numeric_limits<int32_t>::max())) {
                    return std::nullopt;
                }
                if (real != std::trunc(real)) {
                    report(FindingKind::RealTruncated, place, value, value.asInt());
                }
                return value.asInt();
            }
            default:
                return std::nullopt;
        }
    }

    // An integer that the store keeps as its unsigned 32-bit pattern.
    std::optional<uint32_t> toUnsignedPattern(const Place& place, const Json::Value& value) {
        const std::optional<int32_t> integer = toInteger(place, value);
        if (!integer) {
            return std::nullopt;
        }
        const auto pattern = static_cast<uint32_t>(*integer);
        if (*integer < 0) {
            report(FindingKind::NegativeAsUnsigned, place, value, pattern);
        }
        return pattern;
    }

    // Hexadecimal text: white space, sign and 0x are optional; reading stops at the first character
    // that is no hexadecimal digit. A number is read through its decimal text.
    std::optional<uint32_t> toPerfWord(const Place& place, const Json::Value& value) {
        std::string number;
        const char* text = nullptr;
        const char* limit = nullptr;
        if (value.isNumeric()) {
            number = value.asString();
            text = number.data();
            limit = text + number.size();
        } else if (!value.getString(&text, &limit)) {
            return std::nullopt;
        }
        char* end = nullptr;
        errno = 0;
        const long long word = std::strtoll(text, &end, 16);
        if (end == text || errno == ERANGE || word < std::numeric_limits<int32_t>::min() ||
            word > std::numeric_limits<int32_t>::max()) {
            return std::nullopt;
        }
        const auto pattern = static_cast<uint32_t>(word);
        if (!number.empty()) {
            report(FindingKind::PerfWordUnquoted, place, value, pattern);
        }
        if (end != limit) {
            report(FindingKind::PerfWordTail, place, value, pattern);
        }
        if (word < 0) {
            report(FindingKind::NegativeAsUnsigned, place, value, pattern);
        }
        return pattern;
    }

    void readFeatures() {
        forEachMember(targetSpecFeatures, [&](const Place& place, const Json::Value& value) {
            if (const std::optional<bool> isOn = toBoolean(place, value)) {
                mDocument.features.emplace_hint(mDocument.features.end(), place.name, *isOn);
                report(FindingKind::Taken, place, value);
            } else {
                report(FindingKind::FeatureNotBoolean, place, value);
            }
        });
    }

    void readPresets() {
        forEachMember(targetSpecPresets, [&](const Place& place, const Json::Value& value) {
            if (const std::optional<int32_t> preset = toInteger(place, value)) {
                mDocument.presets.emplace_hint(mDocument.presets.end(), place.name, *preset);
                report(FindingKind::Taken, place, value);
            } else {
                report(FindingKind::PresetNotInteger, place, value);
            }
        });
    }

    // A row of three values; none when a value is bad. The first bad one is reported.
    std::optional<NimbraBitRateEntry> toBitRateEntry(const Place& place, const Json::Value& row) {
        NimbraBitRateEntry entry = {};
        auto value = row.begin();
        for (uint32_t* const field : {&entry.low, &entry.high, &entry.bitRate}) {
            const std::optional<uint32_t> pattern = toUnsignedPattern(place, *value);
            if (!pattern) {
                report(FindingKind::RowValueNotInteger, place, *value);
                return std::nullopt;
            }
            *field = *pattern;
            ++value;
        }
        return entry;
    }

    void readNimbraModeBitRateTable() {
        const char* const key = targetSpecNimbraModeBitRate;
        const Json::Value* const table = findSection(key);
        if (table == nullptr) {
            return;
        }
        forEachElement({.section = key}, *table, [&](const Place& place, const Json::Value& row) {
            if (row.size() != 3) {
                report(FindingKind::RowSizeNotThree, place, row);
            } else if (!row.isArray()) {
                report(FindingKind::RowNotArray, place, row);
            } else if (const auto entry = toBitRateEntry(place, row)) {
                mDocument.nimbraModeBitRateTable.push_back(*entry);
                report(FindingKind::Taken, place, row);
            }
        });
    }

    int32_t readTierLevel(const Json::Value& section, const char* key) {
        const Place place = {.section = targetSpecDV, .name = key != nullptr ? key : ""};
        const Json::Value* const level = findMember(section, key);
        if (level == nullptr) {
            report(FindingKind::TierLevelAbsent, place, section);
            return 0;
        }
        const std::optional<int32_t> value = toInteger(place, *level);
        report(value ? FindingKind::Taken : FindingKind::TierLevelNotInteger, place, *level);
        return value.value_or(0);
    }

    void readDolbyVision() {
        const Json::Value* const section = findObjectSection(targetSpecDV);
        if (section == nullptr) {
            return;
        }
        if (const Json::Value* const profiles = findMember(*section, targetSpecDVProfiles)) {
            forEachElement({.section = targetSpecDV, .name = targetSpecDVProfiles}, *profiles,
                           [&](const Place& place, const Json::Value& profile) {
                               if (profile.isUInt()) {
                                   mDocument.dvProfiles.insert(profile.asUInt());
                                   report(FindingKind::Taken, place, profile);
                               } else {
                                   report(FindingKind::ProfileNotUnsigned, place, profile);
                               }
                           });
        }
        TierLevels& levels = mDocument.dvTierLevels.emplace();
        levels.main = readTierLevel(*section, targetSpecDVMaxMainTierLevel);
        levels.high = readTierLevel(*section, targetSpecDVMaxHighTierLevel);
    }

    // The words of one use case; none when an element is bad. The first bad one is reported.
    std::optional<std::vector<uint32_t>> toPerfWords(const Place& place, const Json::Value& list) {
        std::vector<uint32_t> words;
        words.reserve(list.size());
        bool isComplete = true;
        forEachElement(place, list, [&](const Place& at, const Json::Value& element) {
            if (!isComplete) {
                return;
            }
            if (const std::optional<uint32_t> word = toPerfWord(at, element)) {
                words.push_back(*word);
            } else {
                isComplete = false;
                report(FindingKind::PerfWordNotHexadecimal, at, element);
            }
        });
        return isComplete ? std::optional(std::move(words)) : std::nullopt;
    }

    void readPerfResourceValues() {
        auto& values = mDocument.perfResourceValues;
        forEachMember(targetSpecPerfResourceValues,
                      [&](const Place& place, const Json::Value& list) {
                          if (auto words = toPerfWords(place, list)) {
                              values.emplace_hint(values.end(), place.name, std::move(*words));
                              report(FindingKind::Taken, place, list);
                          }
                      });
    }

    void readSupportedCodecs() {
        const Json::Value* const section = findObjectSection(targetSpecSupportedCodecs);
        if (section == nullptr) {
            return;
        }
        for (const char* key : {targetSpecAvailableDecoders, targetSpecAvailableEncoders}) {
            if (const Json::Value* const names = findMember(*section, key)) {
                readNamesOf({.section = targetSpecSupportedCodecs, .name = key}, *names,
                            &mDocument.supportedCodecs);
            }
        }
    }

    struct Section {
        std::string_view name;
        const Json::Value* value;
    };

    std::vector<Section> mSections;  // The members of "Video".
    SpecDocument& mDocument;
    FindingSink& mFindings;
};

// Later JsonCpp releases deprecate Json::Reader for a reader that is stricter: it takes no leading
// zeros, which the documents in the field contain.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

bool parse(std::string_view text, Json::Value* root, FindingSink& findings) {
    Json::Reader reader;
    constexpr bool kCollectComments = false;
    if (reader.parse(text.data(), text.data() + text.size(), *root, kCollectComments)) {
        return true;
    }
    const auto errors = reader.getStructuredErrors();
    Finding finding = {.kind = FindingKind::SyntaxError};
    if (!errors.empty()) {
        finding.start = static_cast<size_t>(errors.front().offset_start);
        finding.limit = static_cast<size_t>(errors.front().offset_limit);
        finding.detail = errors.front().message;
    }
    findings.report(finding);
    return false;
}

#pragma GCC diagnostic pop

}  // namespace

std::string Place::toString() const {
    std::string text = targetSpecRoot != nullptr ? targetSpecRoot : "";
    if (section != nullptr) {
        text.append("/").append(section);
    }
    if (!name.empty()) {
        text.append("/").append(name);
    }
    if (index >= 0) {
        text.append("[").append(std::to_string(index)).append("]");
    }
    return text;
}

bool readSpecDocument(std::string_view text, SpecDocument* document, FindingSink& findings) {
    *document = SpecDocument();
    if (const std::optional<LimitBreach> breach = findLimitBreach(text)) {
        findings.report(
                {.kind = breach->kind, .start = breach->offset, .limit = breach->offset + 1});
        return false;
    }
    Json::Value root;
    if (!parse(text, &root, findings)) {
        return false;
    }
    const auto extent = [](FindingKind kind, const Json::Value& value) {
        return Finding{.kind = kind,
                       .start = static_cast<size_t>(value.getOffsetStart()),
                       .limit = static_cast<size_t>(value.getOffsetLimit())};
    };
    if (!isObjectOrNull(root)) {
        findings.report(extent(FindingKind::RootNotObject, root));
        return false;
    }
    const Json::Value* const video = findMember(root, targetSpecRoot);
    if (video == nullptr) {
        if (findings.hears(FindingKind::NoVideo)) {
            findings.report(extent(FindingKind::NoVideo, root));
        }
        return true;
    }
    if (!isObjectOrNull(*video)) {
        findings.report(extent(FindingKind::VideoNotObject, *video));
        return false;
    }
    SectionReader(*video, document, findings).readAll();
    return true;
}

}  // namespace kc2
