// Reads the settings catalogue and what a vendor adds to it.

#include "catalogue/Catalogue.h"

#include <fmt/format.h>
#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <utility>

#include "base/Print.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "catalogue/CatalogueForm.h"
#include "document/Document.h"
#include "document/Source.h"
#include "targetspec/reading/Escaped.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

constexpr char kBuiltInPath[] = "built-in settings";

std::string inQuotes(const std::string& name) {
    return fmt::format("\"{}\"", escaped(name));
}

std::string suggestion(const std::string& name, const std::vector<std::string>& names) {
    const std::string near = nearest(name, names);
    return near.empty() ? "" : fmt::format(". Did you mean {}?", inQuotes(near));
}

// Reads entries, and keeps the first problem. What it returns after a problem is of no use.
class EntryReader {
public:
    EntryReader(const std::string& path, std::string_view text) : mSource(path, text) {}

    const std::string& problem() const { return mProblem; }
    std::string placeOf(const Json::Value& at) const {
        return mSource.placeOf(static_cast<size_t>(std::max<ptrdiff_t>(at.getOffsetStart(), 0)));
    }

    void fail(const Json::Value& at, const std::string& what) {
        if (mProblem.empty()) {
            mProblem = fmt::format("{}: {}", placeOf(at), what);
        }
    }

    // Whether `value` is an object of that kind, with no other members.
    bool isObject(const Json::Value& value, CatalogueKind kind) {
        if (!value.isObject()) {
            fail(value, "this must be an object");
            return false;
        }
        std::vector<std::string> known;
        for (const CatalogueMember& member : formOf(kind).members) {
            known.emplace_back(member.name);
        }
        for (const std::string& name : value.getMemberNames()) {
            if (std::find(known.begin(), known.end(), name) == known.end()) {
                fail(value[name], fmt::format("the catalogue has no member {} here{}",
                                              inQuotes(name), suggestion(name, known)));
                return false;
            }
        }
        return true;
    }

    std::string text(const Json::Value& entry, const char* member, bool isNeeded = true) {
        const Json::Value& value = entry[member];
        if (value.isString() && !value.asString().empty()) {
            return value.asString();
        }
        if (isNeeded || !value.isNull()) {
            fail(value.isNull() ? entry : value,
                 fmt::format("\"{}\" must be a text that is not empty", member));
        }
        return {};
    }

    // A text that is one of these.
    std::string word(const Json::Value& entry, const char* member,
                     const std::vector<std::string>& words) {
        std::string value = text(entry, member);
        if (std::find(words.begin(), words.end(), value) == words.end()) {
            fail(entry[member].isNull() ? entry : entry[member],
                 fmt::format("\"{}\" must be one of \"{}\"", member, joined(words, "\", \"")));
        }
        return value;
    }

    std::optional<int64_t> number(const Json::Value& entry, const char* member) {
        const Json::Value& value = entry[member];
        if (value.isInt64()) {
            return value.asInt64();
        }
        if (!value.isNull()) {
            fail(value, fmt::format("\"{}\" must be a whole number", member));
        }
        return std::nullopt;
    }

    bool flag(const Json::Value& entry, const char* member, bool otherwise) {
        const Json::Value& value = entry[member];
        if (!value.isNull() && !value.isBool()) {
            fail(value, fmt::format("\"{}\" must be true or false", member));
        }
        return value.isBool() ? value.asBool() : otherwise;
    }

    // The elements of a list that may be missing.
    const Json::Value& list(const Json::Value& entry, const char* member) {
        const Json::Value& value = entry[member];
        if (!value.isNull() && !value.isArray()) {
            fail(value, fmt::format("\"{}\" must be a list", member));
            return Json::Value::nullSingleton();
        }
        return value;
    }

    std::vector<std::string> chips(const Json::Value& entry) {
        const std::vector<std::string> known = chipNames();
        std::vector<std::string> names;
        for (const Json::Value& chip : list(entry, "chips")) {
            if (!chip.isString()) {
                fail(chip, "a chip must be a text");
                return {};
            }
            names.push_back(chip.asString());
            if (std::find(known.begin(), known.end(), names.back()) == known.end()) {
                fail(chip, fmt::format("there is no chip {}{}", inQuotes(names.back()),
                                       suggestion(names.back(), known)));
            }
        }
        return names;
    }

    std::vector<CatalogueValue> values(const Json::Value& entry, const char* member,
                                       CatalogueKind kind) {
        const char* const key = formOf(kind).members.front().name;
        std::vector<CatalogueValue> values;
        for (const Json::Value& value : list(entry, member)) {
            if (!isObject(value, kind)) {
                return {};
            }
            const std::optional<int64_t> one = number(value, key);
            if (!one) {
                fail(value, fmt::format("\"{}\" is missing", key));
                return {};
            }
            values.push_back({*one, text(value, "meaning"), flag(value, "supported", true),
                              number(value, "needs-bit")});
        }
        return values;
    }

private:
    Source mSource;
    std::string mProblem;
};

// The type of the settings in a section of this type; null where a section has no named settings.
const char* typeOf(SectionType section) {
    switch (section) {
        case SectionType::Features:
            return "boolean";
        case SectionType::Presets:
            return "integer";
        case SectionType::PerfResourceValues:
            return "words";
        default:
            return nullptr;
    }
}

std::string typeIn(const std::string& section) {
    for (const Section& row : kSections) {
        if (section == *row.key && typeOf(row.type) != nullptr) {
            return typeOf(row.type);
        }
    }
    return {};
}

Setting readSetting(EntryReader& reader, const Json::Value& entry) {
    Setting setting;
    if (!reader.isObject(entry, CatalogueKind::Setting)) {
        return setting;
    }
    setting.name = reader.text(entry, "name");
    setting.section = reader.word(entry, "section", settingSections());
    setting.type = reader.word(entry, "type", settingTypes());
    setting.meaning = reader.text(entry, "meaning");
    setting.unit = reader.text(entry, "unit", false);
    setting.minimum = reader.number(entry, "minimum");
    setting.maximum = reader.number(entry, "maximum");
    setting.maximumOfByte = reader.number(entry, "maximum-of-byte");
    setting.values = reader.values(entry, "values", CatalogueKind::Value);
    setting.hasOnlyValues = reader.flag(entry, "only-values", false);
    setting.bits = reader.values(entry, "bits", CatalogueKind::Bit);
    setting.chips = reader.chips(entry);
    setting.neededFeature = reader.text(entry, "needs-feature", false);
    setting.atMost = reader.text(entry, "at-most", false);
    setting.place = reader.placeOf(entry);
    if (setting.minimum && setting.maximum && *setting.minimum > *setting.maximum) {
        reader.fail(entry["minimum"], "\"minimum\" is above \"maximum\"");
    }
    const std::string type = typeIn(setting.section);
    if (setting.type != type) {
        reader.fail(entry["type"],
                    fmt::format("the type in \"{}\" must be \"{}\"", setting.section, type));
    }
    for (const char* const member :
         {"minimum", "maximum", "maximum-of-byte", "values", "only-values", "bits", "at-most"}) {
        if (type != typeOf(SectionType::Presets) && entry.isMember(member)) {
            reader.fail(entry[member], fmt::format("\"{}\" is for integers only", member));
        }
    }
    return setting;
}

CodecComponent readComponent(EntryReader& reader, const Json::Value& entry) {
    if (!reader.isObject(entry, CatalogueKind::Component)) {
        return {};
    }
    return {reader.text(entry, "name"),
            reader.word(entry, "list", {targetSpecAvailableDecoders, targetSpecAvailableEncoders}),
            reader.chips(entry), reader.placeOf(entry)};
}

PerfResourceCode readCode(EntryReader& reader, const Json::Value& entry) {
    if (!reader.isObject(entry, CatalogueKind::Code)) {
        return {};
    }
    const std::optional<uint32_t> code = toWord(reader.text(entry, "code"));
    if (!code) {
        reader.fail(entry, "\"code\" must be a 32-bit word such as \"0x40800000\"");
    }
    return {code.value_or(0), reader.text(entry, "meaning"), reader.placeOf(entry)};
}

std::string shownKey(const std::string& name) {
    return inQuotes(name);
}
std::string shownKey(uint32_t code) {
    return hexadecimal(code);
}

// Reads each of `list` into `entries`; a name that is there already is a mistake.
template <typename Entry, typename Key>
void addEach(EntryReader& reader, const Json::Value& list,
             Entry (*read)(EntryReader&, const Json::Value&), Key Entry::*key,
             std::vector<Entry>* entries) {
    for (const Json::Value& element : list) {
        Entry entry = read(reader, element);
        if (!reader.problem().empty()) {
            return;
        }
        const auto known = std::find_if(entries->begin(), entries->end(),
                                        [&](const Entry& one) { return one.*key == entry.*key; });
        entry.definition = element.toStyledString();
        if (known != entries->end() && known->definition == entry.definition &&
            !known->place.starts_with(kBuiltInPath + std::string(":"))) {
            continue;  // Two files may have the same entry.
        }
        if (known != entries->end()) {
            reader.fail(element, fmt::format("{} is defined already, at {}", shownKey(entry.*key),
                                             known->place));
            return;
        }
        entries->push_back(std::move(entry));
    }
}

// The member must name another setting, of that section: a reference to nothing would silently
// switch off the check that it is for. Called once all settings of the file are known.
void checkName(EntryReader& reader, const Catalogue& catalogue, const Json::Value& entry,
               const char* member, const std::string& section) {
    const Json::Value& value = entry[member];
    if (value.isNull()) {
        return;
    }
    const std::string name = value.asString();
    const Setting* const setting = catalogue.setting(name);
    if (name == entry["name"].asString()) {
        reader.fail(value, fmt::format("\"{}\" names the setting itself", member));
    } else if (setting == nullptr) {
        std::vector<std::string> names;
        for (const Setting& one : catalogue.settings()) {
            if (one.section == section) {
                names.push_back(one.name);
            }
        }
        reader.fail(value, fmt::format("there is no setting {}{}", inQuotes(name),
                                       suggestion(name, names)));
    } else if (setting->section != section) {
        reader.fail(value, fmt::format("\"{}\" must name a setting in \"{}\": {} is in \"{}\"",
                                       member, section, inQuotes(name), setting->section));
    }
}

// What a bit needs must be another one of the same setting.
void checkBits(EntryReader& reader, const Json::Value& bits) {
    for (const Json::Value& bit : bits) {
        const Json::Value& needed = bit["needs-bit"];
        const bool isOther = std::any_of(bits.begin(), bits.end(), [&](const auto& other) {
            return other["bit"] == needed && needed != bit["bit"];
        });
        if (!needed.isNull() && !isOther) {
            reader.fail(needed, "\"needs-bit\" must be another bit of this setting");
        }
    }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
// Json::Reader, because it gives the offset of a mistake; JsonCpp's newer reader gives only a text.
std::string parse(const std::string& path, std::string text, Json::Value* root) {
    const Source source(path, text);
    std::string forParser = text;
    if (const auto breach = makeFitForParser(forParser)) {
        return fmt::format("{}: the text is longer or nested deeper than the reader accepts",
                           source.placeOf(breach->offset));
    }
    Json::Reader reader(Json::Features::strictMode());
    if (reader.parse(forParser, *root, false)) {
        return {};
    }
    const auto errors = reader.getStructuredErrors();
    return fmt::format(
            "{}: {}",
            source.placeOf(errors.empty() ? 0 : static_cast<size_t>(errors[0].offset_start)),
            errors.empty() ? "not JSON" : escaped(errors[0].message));
}
#pragma GCC diagnostic pop

}  // namespace

std::string Catalogue::add(const std::string& path, std::string text) {
    Json::Value root;
    std::string problem = parse(path, text, &root);
    if (!problem.empty()) {
        return problem;
    }
    EntryReader reader(path, text);
    if (reader.isObject(root, CatalogueKind::File)) {
        addEach(reader, reader.list(root, "settings"), readSetting, &Setting::name, &mSettings);
        addEach(reader, reader.list(root, "codec-components"), readComponent, &CodecComponent::name,
                &mComponents);
        addEach(reader, reader.list(root, "perf-resource-codes"), readCode, &PerfResourceCode::code,
                &mCodes);
    }
    if (reader.problem().empty()) {
        for (const Json::Value& entry : root["settings"]) {
            checkName(reader, *this, entry, "needs-feature", targetSpecFeatures);
            checkName(reader, *this, entry, "at-most", targetSpecPresets);
            checkBits(reader, entry["bits"]);
        }
    }
    return reader.problem();
}

const Setting* Catalogue::setting(std::string_view name) const {
    const auto found = std::find_if(mSettings.begin(), mSettings.end(),
                                    [&](const Setting& one) { return one.name == name; });
    return found != mSettings.end() ? &*found : nullptr;
}

const CodecComponent* Catalogue::component(std::string_view name) const {
    const auto found = std::find_if(mComponents.begin(), mComponents.end(),
                                    [&](const CodecComponent& one) { return one.name == name; });
    return found != mComponents.end() ? &*found : nullptr;
}

std::optional<Catalogue> loadCatalogue(const std::vector<std::string>& paths) {
    Catalogue catalogue;
    std::string problem = catalogue.add(kBuiltInPath, kSettingsCatalogue);
    for (const std::string& path : paths) {
        if (!problem.empty()) {
            break;
        }
        const std::unique_ptr<Document> file = readDocumentFile(path);
        problem = file->isReadable ? catalogue.add(escaped(path), file->text)
                                   : escaped(path) + ": " + file->whyNotReadable;
    }
    if (problem.empty()) {
        return catalogue;
    }
    writeError(problem);
    return std::nullopt;
}

std::vector<std::string> settingSections() {
    std::vector<std::string> sections;
    for (const Section& row : kSections) {
        if (typeOf(row.type) != nullptr) {
            sections.emplace_back(*row.key);
        }
    }
    return sections;
}

std::vector<std::string> settingTypes() {
    std::vector<std::string> types;
    for (const std::string& section : settingSections()) {
        types.push_back(typeIn(section));
    }
    return types;
}

}  // namespace kc2::tool
