// Text -> SpecDocument, and findings about it.

#include "targetspec/reading/SpecReader.h"

#include <json/reader.h>
#include <json/value.h>

#include <array>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "targetspec/reading/JsonValues.h"
#include "targetspec/reading/Sections.h"

namespace kc2 {

namespace {

Finding findingAbout(FindingKind kind, const Json::Value& value) {
    return {.kind = kind,
            .start = static_cast<size_t>(value.getOffsetStart()),
            .limit = static_cast<size_t>(value.getOffsetLimit())};
}

// The member of an object that a key names.
struct Member {
    const Json::Value* value = nullptr;  // Null if the object has no such member.
    std::string_view key;

    Member() = default;
    // A null key names no member, not even one whose name is empty.
    explicit Member(const char* name) : key(name != nullptr ? name : std::string_view()) {}

    bool isNamed(std::string_view name) const { return name == key && key.data() != nullptr; }
};

// Calls visit(iterator) for each member of an object or element of an array. Counting them costs
// less than comparing with the parser's end(), and saves the step after the last one.
template <typename Visit>
void forEachValue(const Json::Value& container, Visit visit) {
    auto value = container.begin();
    for (Json::ArrayIndex left = container.size(); left > 0; --left) {
        visit(value);
        if (left > 1) {
            ++value;
        }
    }
}

void add(std::list<std::string>& names, std::string_view name) {
    names.emplace_back(name);
}

void add(std::unordered_set<std::string>& names, std::string_view name) {
    names.emplace(name);
}

// The sections of one "Video" object, each type of section read by its own function.
class SectionReader {
public:
    SectionReader(SpecDocument* document, FindingSink& findings)
        : mDocument(*document), mFindings(findings) {}

    void readAll(const Json::Value& video) {
        std::array<Member, std::size(kSections)> members = {};
        for (size_t i = 0; i < members.size(); ++i) {
            members[i] = Member(*kSections[i].key);
        }
        findMembers({}, video, &members);
        for (size_t i = 0; i < members.size(); ++i) {
            if (members[i].value != nullptr) {
                read(kSections[i], members[i]);
            }
        }
    }

private:
    void read(const Section& section, const Member& member) {
        switch (section.type) {
            case SectionType::Features:
                return readMap(member, &mDocument.features, toBoolean,
                               FindingKind::FeatureNotBoolean);
            case SectionType::Presets:
                return readMap(member, &mDocument.presets, toInteger,
                               FindingKind::PresetNotInteger);
            case SectionType::BitRateRows:
                return readBitRateRows(member);
            case SectionType::DolbyVision:
                return readDolbyVision(member);
            case SectionType::Names:
                return readNames({.section = member.key}, member, &(mDocument.*section.names));
            case SectionType::PerfResourceValues:
                return readPerfResourceValues(member);
            case SectionType::CodecLists:
                return readCodecLists(member);
            case SectionType::CodecNames:
                return readNames({.section = member.key}, member, &mDocument.supportedCodecs);
        }
    }

    void report(FindingKind kind, const Place& place, const Json::Value& value,
                int64_t converted = 0) {
        if (mFindings.wants(rowOf(kind).effect)) {
            Finding finding = findingAbout(kind, value);
            finding.place = place;
            finding.converted = converted;
            mFindings.report(finding);
        }
    }

    // The result of a conversion, whose changes are reported.
    template <typename T>
    std::optional<T> take(const Converted<T>& converted, const Place& place,
                          const Json::Value& value) {
        for (const Changes::Change& change : converted.changes) {
            report(change.kind, place, value, change.result);
        }
        return converted.value;
    }

    // Finds the members that the keys name. One pass costs less than the parser's own lookups: the
    // objects that are searched have a handful of names.
    template <size_t kCount>
    void findMembers(std::string_view section, const Json::Value& object,
                     std::array<Member, kCount>* members) {
        forEachValue(object, [&](const auto& entry) {
            const std::string_view name = nameOf(entry);
            const Json::Value& value = *entry;
            bool isKnown = false;
            for (Member& member : *members) {
                if (member.isNamed(name)) {
                    member.value = &value;
                    isKnown = true;
                }
            }
            if (!isKnown) {
                report(FindingKind::UnknownMember, {.section = section, .name = name}, value);
            }
        });
    }

    // The same for a section whose members have fixed names.
    template <size_t kCount>
    std::array<Member, kCount> fixedMembers(const Member& section,
                                            const char* const* const (&keys)[kCount]) {
        std::array<Member, kCount> members = {};
        for (size_t i = 0; i < kCount; ++i) {
            members[i] = Member(*keys[i]);
        }
        findMembers(section.key, *section.value, &members);
        return members;
    }

    // Whether the section may have members. A null one exists, but has none.
    bool isObjectSection(const Member& section) {
        if (!isObjectOrNull(*section.value)) {
            report(FindingKind::SectionNotObject, {.section = section.key}, *section.value);
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
        forEachValue(*section.value, [&](const auto& member) {
            visit(Place{.section = section.key, .name = nameOf(member)}, *member);
        });
    }

    // Calls visit(place, value) for each element of an array. Of an object, the member values are
    // used, in ascending name order; null and scalars have no elements.
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
        forEachValue(list, [&](const auto& element) {
            ++place.index;
            visit(place, *element);
        });
    }

    // Adds the strings of an array to `names`, a list or a set.
    template <typename Names>
    void readNames(const Place& place, const Member& list, Names* names) {
        forEachElement(place, *list.value, [&](const Place& at, const Json::Value& element) {
            if (const std::optional<std::string_view> name = toText(element)) {
                add(*names, *name);
                report(FindingKind::Taken, at, element);
            } else {
                report(FindingKind::ElementNotString, at, element);
            }
        });
    }

    // Adds the members whose values convert() accepts to `values`; any other one is a finding.
    template <typename Map, typename Convert>
    void readMap(const Member& section, Map* values, Convert convert, FindingKind ifNot) {
        forEachMember(section, [&](const Place& place, const Json::Value& value) {
            if (const auto converted = take(convert(value), place, value)) {
                values->emplace_hint(values->end(), place.name, *converted);
                report(FindingKind::Taken, place, value);
            } else {
                report(ifNot, place, value);
            }
        });
    }

    // A row of three values; none if a value is bad. The first bad one is reported.
    std::optional<NimbraBitRateEntry> toBitRateEntry(const Place& place, const Json::Value& row) {
        NimbraBitRateEntry entry = {};
        auto value = row.begin();
        for (uint32_t* const field : {&entry.low, &entry.high, &entry.bitRate}) {
            const std::optional<uint32_t> pattern = take(toUnsignedPattern(*value), place, *value);
            if (!pattern) {
                report(FindingKind::RowValueNotInteger, place, *value);
                return std::nullopt;
            }
            *field = *pattern;
            ++value;
        }
        return entry;
    }

    void readBitRateRows(const Member& section) {
        mDocument.nimbraModeBitRateTable.reserve(section.value->size());
        const Place place = {.section = section.key};
        forEachElement(place, *section.value, [&](const Place& at, const Json::Value& row) {
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

    void readProfiles(const Place& place, const Json::Value& list) {
        forEachElement(place, list, [&](const Place& at, const Json::Value& profile) {
            if (profile.isUInt()) {
                mDocument.dvProfiles.insert(profile.asUInt());
                report(FindingKind::Taken, at, profile);
            } else {
                report(FindingKind::ProfileNotUnsigned, at, profile);
            }
        });
    }

    int32_t readTierLevel(const Member& section, const Member& level) {
        const Place place = {.section = section.key, .name = level.key};
        if (level.value == nullptr) {
            report(FindingKind::TierLevelAbsent, place, *section.value);
            return 0;
        }
        const auto value = take(toInteger(*level.value), place, *level.value);
        report(value ? FindingKind::Taken : FindingKind::TierLevelNotInteger, place, *level.value);
        return value.value_or(0);
    }

    void readDolbyVision(const Member& section) {
        if (!isObjectSection(section)) {
            return;
        }
        const auto [profiles, mainTier, highTier] = fixedMembers(section, kDolbyVisionMembers);
        if (profiles.value != nullptr) {
            readProfiles({.section = section.key, .name = profiles.key}, *profiles.value);
        }
        TierLevels& levels = mDocument.dvTierLevels.emplace();
        levels.main = readTierLevel(section, mainTier);
        levels.high = readTierLevel(section, highTier);
    }

    // The words of one use case; false if an element is bad. The first bad one is reported.
    bool readPerfWords(const Place& place, const Json::Value& list, std::vector<uint32_t>* words) {
        words->reserve(list.size());
        bool isComplete = true;
        forEachElement(place, list, [&](const Place& at, const Json::Value& element) {
            if (!isComplete) {
                return;
            }
            if (const std::optional<uint32_t> word = take(toPerfWord(element), at, element)) {
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

    void readCodecLists(const Member& section) {
        if (!isObjectSection(section)) {
            return;
        }
        for (const Member& names : fixedMembers(section, kCodecListMembers)) {
            if (names.value != nullptr) {
                readNames({.section = section.key, .name = names.key}, names,
                          &mDocument.supportedCodecs);
            }
        }
    }

    SpecDocument& mDocument;
    FindingSink& mFindings;
};

// Later JsonCpp releases deprecate Json::Reader for a stricter one, which rejects leading zeros;
// real documents contain them.
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

// The "Video" object of a document; null if it has none.
const Json::Value* findVideo(const Json::Value& root, FindingSink& findings) {
    const Member video(targetSpecRoot);
    const Json::Value* found = nullptr;
    forEachValue(root, [&](const auto& member) {
        if (video.isNamed(nameOf(member))) {
            found = &*member;
        } else if (findings.wants(Effect::Ignores)) {
            Finding finding = findingAbout(FindingKind::UnknownRootMember, *member);
            finding.place.name = nameOf(member);
            findings.report(finding);
        }
    });
    if (found == nullptr && findings.wants(Effect::SkipsSilently)) {
        findings.report(findingAbout(FindingKind::NoVideo, root));
    }
    return found;
}

}  // namespace

bool readSpecDocument(std::span<char> text, SpecDocument* document, FindingSink& findings,
                      std::vector<TextRange>* comments) {
    if (const std::optional<LimitBreach> breach = makeFitForParser(text, comments)) {
        findings.report(
                {.kind = breach->kind, .start = breach->offset, .limit = breach->offset + 1});
        return false;
    }
    Json::Value root;
    if (!parse({text.data(), text.size()}, &root, findings)) {
        return false;
    }
    if (!isObjectOrNull(root)) {
        findings.report(findingAbout(FindingKind::RootNotObject, root));
        return false;
    }
    const Json::Value* const video = findVideo(root, findings);
    if (video == nullptr) {
        return true;
    }
    if (!isObjectOrNull(*video)) {
        findings.report(findingAbout(FindingKind::VideoNotObject, *video));
        return false;
    }
    SectionReader(document, findings).readAll(*video);
    return true;
}

}  // namespace kc2
