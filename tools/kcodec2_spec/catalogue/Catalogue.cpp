// Reads the settings catalogue and what a vendor adds to it.

#include "catalogue/Catalogue.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <utility>

#include "base/Text.h"
#include "document/Document.h"
#include "document/Source.h"
#include "targetspec/reading/Escaped.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

constexpr char kBuiltInPath[] = "built-in settings:";

// Reads entries, and keeps the first thing that is wrong. After that it answers with nothing.
class EntryReader {
public:
    EntryReader(const std::string& path, std::string_view text) : mSource(path, text) {}

    const std::string& problem() const { return mProblem; }
    std::string placeOf(const Json::Value& at) const {
        return mSource.placeOf(static_cast<size_t>(std::max<ptrdiff_t>(at.getOffsetStart(), 0)));
    }

    void fail(const Json::Value& at, const std::string& what) { failAt(placeOf(at), what); }
    void failAt(const std::string& place, const std::string& what) {
        if (mProblem.empty()) {
            mProblem = place + ": " + what;
        }
    }

    // Whether `value` is an object with no other members than these.
    bool isObject(const Json::Value& value, std::initializer_list<const char*> known) {
        if (!value.isObject()) {
            fail(value, "this must be an object");
            return false;
        }
        for (const std::string& name : value.getMemberNames()) {
            if (std::find(known.begin(), known.end(), name) == known.end()) {
                fail(value[name], "the catalogue has no member \"" + escaped(name) + "\" here");
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
                 std::string("\"") + member + "\" must be a text that is not empty");
        }
        return {};
    }

    // A text that is one of these.
    std::string word(const Json::Value& entry, const char* member,
                     const std::vector<std::string>& words) {
        std::string value = text(entry, member);
        if (std::find(words.begin(), words.end(), value) == words.end()) {
            std::string list;
            for (const std::string& one : words) {
                list += (list.empty() ? "\"" : ", \"") + one + "\"";
            }
            fail(entry[member].isNull() ? entry : entry[member],
                 std::string("\"") + member + "\" must be one of " + list);
        }
        return value;
    }

    std::optional<int64_t> number(const Json::Value& entry, const char* member) {
        const Json::Value& value = entry[member];
        if (value.isInt64()) {
            return value.asInt64();
        }
        if (!value.isNull()) {
            fail(value, std::string("\"") + member + "\" must be a whole number");
        }
        return std::nullopt;
    }

    bool flag(const Json::Value& entry, const char* member, bool otherwise) {
        const Json::Value& value = entry[member];
        if (!value.isNull() && !value.isBool()) {
            fail(value, std::string("\"") + member + "\" must be true or false");
        }
        return value.isBool() ? value.asBool() : otherwise;
    }

    // The elements of a list that may be missing.
    const Json::Value& list(const Json::Value& entry, const char* member) {
        const Json::Value& value = entry[member];
        if (!value.isNull() && !value.isArray()) {
            fail(value, std::string("\"") + member + "\" must be a list");
            return Json::Value::nullSingleton();
        }
        return value;
    }

    std::vector<std::string> chips(const Json::Value& entry) {
        std::vector<std::string> names;
        for (const Json::Value& chip : list(entry, "chips")) {
            if (!chip.isString()) {
                fail(chip, "a chip must be a text");
                return {};
            }
            names.push_back(chip.asString());
        }
        return names;
    }

    std::vector<CatalogueValue> values(const Json::Value& entry, const char* member,
                                       const char* key) {
        std::vector<CatalogueValue> values;
        for (const Json::Value& value : list(entry, member)) {
            if (!isObject(value, {key, "meaning", "supported", "needs-bit"})) {
                return {};
            }
            const std::optional<int64_t> one = number(value, key);
            if (!one) {
                fail(value, std::string("\"") + key + "\" is missing");
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

// What settings in a section of this type hold; null where a section has no named settings.
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
    if (!reader.isObject(entry,
                         {"name", "section", "type", "meaning", "unit", "minimum", "maximum",
                          "values", "only-values", "bits", "chips", "needs-feature", "at-most"})) {
        return setting;
    }
    setting.name = reader.text(entry, "name");
    std::vector<std::string> sections;
    std::vector<std::string> types;
    for (const Section& row : kSections) {
        if (typeOf(row.type) != nullptr) {
            sections.emplace_back(*row.key);
            types.emplace_back(typeOf(row.type));
        }
    }
    setting.section = reader.word(entry, "section", sections);
    setting.type = reader.word(entry, "type", types);
    setting.meaning = reader.text(entry, "meaning");
    setting.unit = reader.text(entry, "unit", false);
    setting.minimum = reader.number(entry, "minimum");
    setting.maximum = reader.number(entry, "maximum");
    setting.values = reader.values(entry, "values", "value");
    setting.hasOnlyValues = reader.flag(entry, "only-values", false);
    setting.bits = reader.values(entry, "bits", "bit");
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
                    "the type in \"" + setting.section + "\" must be \"" + type + "\"");
    }
    return setting;
}

CodecComponent readComponent(EntryReader& reader, const Json::Value& entry) {
    if (!reader.isObject(entry, {"name", "list", "chips"})) {
        return {};
    }
    return {reader.text(entry, "name"),
            reader.word(entry, "list", {targetSpecAvailableDecoders, targetSpecAvailableEncoders}),
            reader.chips(entry), reader.placeOf(entry)};
}

PerfResourceCode readCode(EntryReader& reader, const Json::Value& entry) {
    if (!reader.isObject(entry, {"code", "meaning"})) {
        return {};
    }
    const std::optional<uint32_t> code = toWord(reader.text(entry, "code"));
    if (!code) {
        reader.fail(entry, "\"code\" must be a 32-bit word such as \"0x40800000\"");
    }
    return {code.value_or(0), reader.text(entry, "meaning"), reader.placeOf(entry)};
}

std::string shownKey(const std::string& name) {
    return "\"" + escaped(name) + "\"";
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
            known->place.rfind(kBuiltInPath, 0) != 0) {
            continue;  // Two files may say the same.
        }
        if (known != entries->end()) {
            reader.fail(element, shownKey(entry.*key) + " is defined already, at " + known->place);
            return;
        }
        entries->push_back(std::move(entry));
    }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
// Json::Reader, because it tells the offset of a mistake; JsonCpp's newer reader only a text.
std::string parse(const std::string& path, std::string text, Json::Value* root) {
    const Source source(path, text);
    std::string forParser = text;
    if (const auto breach = makeFitForParser(forParser)) {
        return source.placeOf(breach->offset) +
               ": the text is longer or nested deeper than the "
               "reader accepts";
    }
    Json::Reader reader(Json::Features::strictMode());
    if (reader.parse(forParser, *root, false)) {
        return {};
    }
    const auto errors = reader.getStructuredErrors();
    return source.placeOf(errors.empty() ? 0 : static_cast<size_t>(errors[0].offset_start)) + ": " +
           (errors.empty() ? "not JSON" : escaped(errors[0].message));
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
    if (reader.isObject(root, {"settings", "codec-components", "perf-resource-codes"})) {
        addEach(reader, reader.list(root, "settings"), readSetting, &Setting::name, &mSettings);
        addEach(reader, reader.list(root, "codec-components"), readComponent, &CodecComponent::name,
                &mComponents);
        addEach(reader, reader.list(root, "perf-resource-codes"), readCode, &PerfResourceCode::code,
                &mCodes);
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
    std::string problem = catalogue.add("built-in settings", kSettingsCatalogue);
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
    std::fprintf(stderr, "kcodec2_spec: %s\n", problem.c_str());
    return std::nullopt;
}

}  // namespace kc2::tool
