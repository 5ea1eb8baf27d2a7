// Text -> SpecDocument, and what was found on the way.

#include "targetspec/SpecReader.h"

#include <json/reader.h>
#include <json/value.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <system_error>
#include <tuple>

#include "kc2/TargetSpecKeys.h"
#include "targetspec/ParserText.h"
#include "targetspec/Printable.h"

namespace kc2 {

namespace {

bool isObjectOrNull(const Json::Value& value) {
    return value.type() == Json::objectValue || value.type() == Json::nullValue;
}

// The name of the member that an iterator over an object stands at.
std::string_view nameOf(const Json::Value::const_iterator& member) {
    const char* end = nullptr;
    const char* const name = member.memberName(&end);
    return {name, static_cast<size_t>(end - name)};
}

// The member of an object that a key names.
struct Member {
    explicit Member(const char* name)
        : key(name != nullptr ? std::string_view(name) : std::string_view()) {}

    void takeIfNamed(std::string_view name, const Json::Value::const_iterator& member) {
        if (name == key && key.data() != nullptr) {
            value = &*member;
        }
    }

    std::string_view key;                // Without data when it is null: such a key names nothing.
    const Json::Value* value = nullptr;  // Null when the object has no such member.
};

// The members of the given keys, in their order; `object` is one, or null. One walk takes less than
// the parser's own lookups do: objects that are searched hold a handful of names.
template <typename... Keys>
std::array<Member, sizeof...(Keys)> findMembers(const Json::Value& object, Keys... keys) {
    std::array members = {Member(keys)...};
    const auto limit = object.end();
    for (auto member = object.begin(); member != limit; ++member) {
        const std::string_view name = nameOf(member);
        std::apply([&](auto&... found) { (found.takeIfNamed(name, member), ...); }, members);
    }
    return members;
}

void add(std::list<std::string>& names, std::string_view name) {
    names.emplace_back(name);
}

void add(std::unordered_set<std::string>& names, std::string_view name) {
    names.emplace(name);
}

struct HexadecimalText {
    uint32_t pattern;  // Of a number in the signed 32-bit range.
    bool isNegative;
    bool hasTail;  // Whether anything follows the digits.
};

// As strtol() reads it, but in every locale alike: white space, sign and 0x are optional; reading
// stops at the first character that is no digit.
std::optional<HexadecimalText> readHexadecimal(std::string_view text) {
    while (!text.empty() &&
           (text.front() == ' ' || (text.front() >= '\t' && text.front() <= '\r'))) {
        text.remove_prefix(1);
    }
    const bool isSigned = !text.empty() && (text.front() == '-' || text.front() == '+');
    const bool isMinus = isSigned && text.front() == '-';
    text.remove_prefix(isSigned ? 1 : 0);

    const char* const limit = text.data() + text.size();
    uint32_t magnitude = 0;
    const bool hasPrefix = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    std::from_chars_result read =
            std::from_chars(text.data() + (hasPrefix ? 2 : 0), limit, magnitude, 16);
    if (hasPrefix && read.ec == std::errc::invalid_argument) {
        read = {text.data() + 1, std::errc()};  // A 0 with a tail.
    }
    constexpr uint32_t kLargest = std::numeric_limits<int32_t>::max();
    if (read.ec != std::errc() || magnitude > kLargest + (isMinus ? 1 : 0)) {
        return std::nullopt;
    }
    return HexadecimalText{isMinus ? 0 - magnitude : magnitude, isMinus && magnitude != 0,
                           read.ptr != limit};
}

// The sections of one "Video" object, each read by a function of its own.
class SectionReader {
public:
    SectionReader(SpecDocument* document, FindingSink& findings)
        : mDocument(*document), mFindings(findings) {}

    // In the order in which the device's log shows their findings.
    void readAll(const Json::Value& video) {
        const auto [features, presets, bitRateTable, dolbyVision, plugins, preprocessingFilters,
                    perfResourceValues, codecs, optionalCodecs, encPostProcessingFilters] =
                findMembers(video, targetSpecFeatures, targetSpecPresets,
                            targetSpecNimbraModeBitRate, targetSpecDV, targetSpecCodecPlugins,
                            targetSpecPreProcessingFilters, targetSpecPerfResourceValues,
                            targetSpecSupportedCodecs, targetSpecOptionalCodecs,
                            targetSpecSupportedEncPostProcessingFilters);
        readFeatures(features);
        readPresets(presets);
        readNimbraModeBitRateTable(bitRateTable);
        readDolbyVision(dolbyVision);
        readNames(plugins, &mDocument.codecPlugins);
        readNames(preprocessingFilters, &mDocument.preprocessingFilters);
        readPerfResourceValues(perfResourceValues);
        readSupportedCodecs(codecs);
        readNames(optionalCodecs, &mDocument.supportedCodecs);
        readNames(encPostProcessingFilters, &mDocument.encPostProcessingFilters);
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

    // Whether it is a section to take members of. A null one holds none, but is there.
    bool isObjectSection(const Member& section) {
        if (section.value == nullptr) {
            return false;
        }
        if (!isObjectOrNull(*section.value)) {
            report(FindingKind::SectionNotObject, {.section = section.key.data()}, *section.value);
            return false;
        }
        return true;
    }

    // Calls visit(place, value) for each member of an object section, in ascending name order.
    template <typename Visit>
    void forEachMember(const Member& section, Visit visit) {
        if (!isObjectSection(section)) {
            return;
        }
        const auto limit = section.value->end();
        for (auto member = section.value->begin(); member != limit; ++member) {
            visit(Place{.section = section.key.data(), .name = nameOf(member)}, *member);
        }
    }

    // Calls visit(place, value) for each element of an array. An object is walked over its member
    // values in ascending name order; null and scalars hold no element.
    template <typename Visit>
    void forEachElement(Place place, const Json::Value& list, Visit visit) {
        switch (list.type()) {
            case Json::arrayValue:
                break;
            case Json::objectValue:
                report(FindingKind::ObjectAsArray, place, list);
                break;
            case Json::nullValue:
                return;
            default:
                report(FindingKind::ListNotArray, place, list);
                return;
        }
        for (const Json::Value& element : list) {
            ++place.index;
            visit(place, element);
        }
    }

    // Adds the strings of an array to `names`, a list or a set.
    template <typename Names>
    void readNames(const Place& place, const Json::Value& list, Names* names) {
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
    void readNames(const Member& section, Names* names) {
        if (section.value != nullptr) {
            readNames({.section = section.key.data()}, *section.value, names);
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

    // A number in the signed 32-bit range, or what counts as one.
    std::optional<int32_t> toInteger(const Place& place, const Json::Value& value) {
        if (value.type() != Json::intValue) {
            return toIntegerFromOther(place, value);
        }
        const Json::LargestInt integer = value.asLargestInt();
        const auto inRange = static_cast<int32_t>(integer);
        return integer == inRange ? std::optional(inRange) : std::nullopt;
    }

    // The same for what the parser does not hold as a signed integer, as it holds nearly all.
    [[gnu::noinline]] std::optional<int32_t> toIntegerFromOther(const Place& place,
                                                                const Json::Value& value) {
        switch (value.type()) {
            case Json::nullValue:
                report(FindingKind::NullAsZero, place, value);
                return value.asInt();
            case Json::booleanValue:
                report(FindingKind::BooleanAsInteger, place, value, value.asInt());
                return value.asInt();
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

    // A hexadecimal string in the signed 32-bit range, or a number, read through its decimal text.
    std::optional<uint32_t> toPerfWord(const Place& place, const Json::Value& value) {
        std::string number;
        const char* text = nullptr;
        const char* limit = nullptr;
        if (!value.getString(&text, &limit)) {
            if (!value.isNumeric()) {
                return std::nullopt;
            }
            number = value.asString();
            text = number.data();
            limit = text + number.size();
        }
        const std::optional<HexadecimalText> word =
                readHexadecimal({text, static_cast<size_t>(limit - text)});
        if (!word) {
            return std::nullopt;
        }
        if (!number.empty()) {
            report(FindingKind::PerfWordUnquoted, place, value, word->pattern);
        }
        if (word->hasTail) {
            report(FindingKind::PerfWordTail, place, value, word->pattern);
        }
        if (word->isNegative) {
            report(FindingKind::NegativeAsUnsigned, place, value, word->pattern);
        }
        return word->pattern;
    }

    void readFeatures(const Member& section) {
        forEachMember(section, [&](const Place& place, const Json::Value& value) {
            if (const std::optional<bool> isOn = toBoolean(place, value)) {
                mDocument.features.emplace_hint(mDocument.features.end(), place.name, *isOn);
                report(FindingKind::Taken, place, value);
            } else {
                report(FindingKind::FeatureNotBoolean, place, value);
            }
        });
    }

    void readPresets(const Member& section) {
        forEachMember(section, [&](const Place& place, const Json::Value& value) {
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

    void readNimbraModeBitRateTable(const Member& section) {
        if (section.value == nullptr) {
            return;
        }
        const Json::Value& table = *section.value;
        mDocument.nimbraModeBitRateTable.reserve(table.size());
        const Place place = {.section = section.key.data()};
        forEachElement(place, table, [&](const Place& at, const Json::Value& row) {
            if (row.size() != 3) {
                report(FindingKind::RowSizeNotThree, at, row);
            } else if (!row.isArray()) {
                report(FindingKind::RowNotArray, at, row);
            } else if (const auto entry = toBitRateEntry(at, row)) {
                mDocument.nimbraModeBitRateTable.push_back(*entry);
                report(FindingKind::Taken, at, row);
            }
        });
    }

    int32_t readTierLevel(const Member& section, const Member& level) {
        const Place place = {.section = section.key.data(), .name = level.key};
        if (level.value == nullptr) {
            report(FindingKind::TierLevelAbsent, place, *section.value);
            return 0;
        }
        const std::optional<int32_t> value = toInteger(place, *level.value);
        report(value ? FindingKind::Taken : FindingKind::TierLevelNotInteger, place, *level.value);
        return value.value_or(0);
    }

    void readDolbyVision(const Member& section) {
        if (!isObjectSection(section)) {
            return;
        }
        const auto [profiles, mainTierLevel, highTierLevel] =
                findMembers(*section.value, targetSpecDVProfiles, targetSpecDVMaxMainTierLevel,
                            targetSpecDVMaxHighTierLevel);
        if (profiles.value != nullptr) {
            const Place place = {.section = section.key.data(), .name = profiles.key};
            forEachElement(place, *profiles.value,
                           [&](const Place& at, const Json::Value& profile) {
                               if (profile.isUInt()) {
                                   mDocument.dvProfiles.insert(profile.asUInt());
                                   report(FindingKind::Taken, at, profile);
                               } else {
                                   report(FindingKind::ProfileNotUnsigned, at, profile);
                               }
                           });
        }
        TierLevels& levels = mDocument.dvTierLevels.emplace();
        levels.main = readTierLevel(section, mainTierLevel);
        levels.high = readTierLevel(section, highTierLevel);
    }

    // The words of one use case; false when an element is bad. The first bad one is reported.
    bool readPerfWords(const Place& place, const Json::Value& list, std::vector<uint32_t>* words) {
        words->reserve(list.size());
        bool isComplete = true;
        forEachElement(place, list, [&](const Place& at, const Json::Value& element) {
            if (!isComplete) {
                return;
            }
            if (const std::optional<uint32_t> word = toPerfWord(at, element)) {
                words->push_back(*word);
            } else {
                isComplete = false;
                report(FindingKind::PerfWordNotHexadecimal, at, element);
            }
        });
        return isComplete;
    }

    void readPerfResourceValues(const Member& section) {
        auto& values = mDocument.perfResourceValues;
        forEachMember(section, [&](const Place& place, const Json::Value& list) {
            std::vector<uint32_t> words;
            if (readPerfWords(place, list, &words)) {
                values.emplace_hint(values.end(), place.name, std::move(words));
                report(FindingKind::Taken, place, list);
            }
        });
    }

    void readSupportedCodecs(const Member& section) {
        if (!isObjectSection(section)) {
            return;
        }
        for (const Member& names : findMembers(*section.value, targetSpecAvailableDecoders,
                                               targetSpecAvailableEncoders)) {
            if (names.value != nullptr) {
                readNames({.section = section.key.data(), .name = names.key}, *names.value,
                          &mDocument.supportedCodecs);
            }
        }
    }

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
    // The log cuts a line after a thousand bytes, and what is wrong stands behind the place.
    constexpr size_t kMostNameBytes = 200;
    std::string text = targetSpecRoot != nullptr ? targetSpecRoot : "";
    if (section != nullptr) {
        text.append("/").append(section);
    }
    if (!name.empty()) {
        text.append("/").append(printable(name.substr(0, kMostNameBytes)));
        text.append(name.size() > kMostNameBytes ? "..." : "");
    }
    if (index >= 0) {
        text.append("[").append(std::to_string(index)).append("]");
    }
    return text;
}

bool readSpecDocument(std::span<char> text, SpecDocument* document, FindingSink& findings) {
    if (const std::optional<LimitBreach> breach = makeFitForParser(text)) {
        findings.report(
                {.kind = breach->kind, .start = breach->offset, .limit = breach->offset + 1});
        return false;
    }
    Json::Value root;
    if (!parse({text.data(), text.size()}, &root, findings)) {
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
    const Json::Value* const video = findMembers(root, targetSpecRoot)[0].value;
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
    SectionReader(document, findings).readAll(*video);
    return true;
}

}  // namespace kc2
