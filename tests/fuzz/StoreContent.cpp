// The content of a store, and the content that a document must result in.

#include "tests/fuzz/StoreContent.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "targetspec/TargetSpecInspector.h"
#include "targetspec/reading/Limits.h"

namespace kc2::fuzz {

namespace {

template <typename Names>
std::vector<std::string> toVector(const Names& names) {
    return std::vector<std::string>(names.begin(), names.end());
}

template <typename Values>
void append(Values* all, const Values& more) {
    all->insert(all->end(), more.begin(), more.end());
}

// The result of `convert`, or nothing when JsonCpp throws.
template <typename Convert>
auto attempt(Convert convert) -> std::optional<decltype(convert())> {
    try {
        return convert();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

// The text with a blank for each byte of a comment that ends; byte by byte, independently of the
// code that it is compared with.
std::string withoutComments(std::string_view text) {
    std::string plain(text);
    bool isInString = false;
    for (size_t at = 0; at < plain.size(); ++at) {
        if (isInString) {
            isInString = plain[at] != '"';
            at += plain[at] == '\\' ? 1 : 0;
        } else if (plain[at] == '"') {
            isInString = true;
        } else if (text.substr(at, 2) == "//") {
            for (; at < plain.size() && plain[at] != '\n' && plain[at] != '\r'; ++at) {
                plain[at] = ' ';
            }
        } else if (text.substr(at, 2) == "/*") {
            const size_t end = text.find("*/", at + 2);
            if (end == std::string_view::npos) {
                break;
            }
            plain.replace(at, end + 2 - at, end + 2 - at, ' ');
            at = end + 1;
        }
    }
    return plain;
}

// Deprecated in later JsonCpp releases; it defines what a document is.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

// The most containers open at once until the root ends. Whether the parser accepts more depends on
// its release; the library never does.
size_t nestingOf(std::string_view text) {
    size_t depth = 0;
    size_t deepest = 0;
    bool isInString = false;
    for (size_t at = 0; at < text.size(); ++at) {
        if (isInString) {
            isInString = text[at] != '"';
            at += text[at] == '\\' ? 1 : 0;
        } else if (text[at] == '"') {
            isInString = true;
        } else if (text[at] == '[' || text[at] == '{') {
            deepest = std::max(deepest, ++depth);
        } else if (text[at] == ']' || text[at] == '}') {
            if (depth <= 1) {
                break;
            }
            --depth;
        } else if (depth == 0 && text[at] == 'n') {
            break;  // A null root.
        }
    }
    return deepest;
}

std::optional<Json::Value> parse(std::string_view documentText) {
    const std::string text = withoutComments(documentText);
    if (nestingOf(text) > kMaxNesting) {
        return std::nullopt;
    }
    Json::Value root;
    const std::optional<bool> isValid = attempt([&] {
        return Json::Reader().parse(text.data(), text.data() + text.size(), root, false);
    });
    return isValid.value_or(false) ? std::optional(std::move(root)) : std::nullopt;
}

#pragma GCC diagnostic pop

// From JsonCpp 1.9.6 on, a number beyond the range of double.
bool isInfinite(const Json::Value& value) {
    return value.isDouble() && std::isinf(value.asDouble());
}

std::optional<uint32_t> hexadecimalWord(const Json::Value& value) {
    // Their texts "false" and "1e+9999" begin with digits.
    if (value.isBool() || isInfinite(value)) {
        return std::nullopt;
    }
    return attempt([&] {
        const long long word = std::stoll(value.asString(), nullptr, 16);
        if (word != static_cast<int32_t>(word)) {
            throw std::out_of_range("word");
        }
        return static_cast<uint32_t>(word);
    });
}

// One "Video" object, section by section.
class Expectation {
public:
    explicit Expectation(const Json::Value& video) : mVideo(video) {
        readMembers("Features", &mDocument.content.features, feature);
        readMembers("Presets", &mDocument.content.presets,
                    [](const Json::Value& value) { return value.asInt(); });
        readTable();
        readDolbyVision();
        readMembers("perf-resource-values", &mDocument.content.perfResourceValues, perfWords);
        for (const char* key : {"decoders", "encoders"}) {
            const std::vector<std::string> names = strings(objectSection("codecs-available")[key]);
            mDocument.content.supportedCodecs.insert(names.begin(), names.end());
        }
        if (!isObjectOrNull(mVideo["codecs-available"])) {
            --mDocument.warnings;  // Counted twice above.
        }
        const std::vector<std::string> optional = strings(mVideo["OptionalCodecs"]);
        mDocument.content.supportedCodecs.insert(optional.begin(), optional.end());
        mDocument.content.codecPlugins = strings(mVideo["KC2CodecPlugins"]);
        mDocument.content.preprocessingFilters = strings(mVideo["KC2PreProcessingFilters"]);
        mDocument.content.encPostProcessingFilters = strings(mVideo["KC2EncPostProcessingFilters"]);
    }

    ExpectedDocument take() { return std::move(mDocument); }

    static bool isObjectOrNull(const Json::Value& value) {
        return value.isObject() || value.isNull();
    }

private:
    const Json::Value& objectSection(const char* key) {
        static const Json::Value kEmpty(Json::objectValue);
        const Json::Value& section = mVideo[key];
        if (!isObjectOrNull(section)) {
            ++mDocument.warnings;
        }
        return section.isObject() ? section : kEmpty;
    }

    static std::vector<std::string> strings(const Json::Value& list) {
        std::vector<std::string> strings;
        for (const Json::Value& element : list) {
            if (element.isString()) {
                strings.push_back(element.asString());
            }
        }
        return strings;
    }

    // The members of a section whose values `convert` accepts without throwing.
    template <typename Value, typename Convert>
    void readMembers(const char* key, std::map<std::string, Value>* values, Convert convert) {
        const Json::Value& section = objectSection(key);
        for (const std::string& name : section.getMemberNames()) {
            if (const auto value = attempt([&] { return convert(section[name]); })) {
                values->emplace(name, *value);
            } else {
                ++mDocument.warnings;
            }
        }
    }

    static bool feature(const Json::Value& value) {
        if (isInfinite(value)) {
            throw std::out_of_range("feature");
        }
        return value.asBool();
    }

    void readTable() {
        for (const Json::Value& row : mVideo["NimbraModeBitrateTable"]) {
            const auto words = attempt([&] {
                std::vector<uint32_t> words;
                for (const int column : {0, 1, 2}) {
                    words.push_back(static_cast<uint32_t>(row[column].asInt()));
                }
                return words;
            });
            if (words && row.size() == 3) {
                mDocument.content.nimbraModeBitRateTable.push_back(*words);
            } else {
                ++mDocument.warnings;
            }
        }
    }

    int32_t tierLevel(const Json::Value& section, const char* key) {
        if (const auto level = attempt([&] { return section[key].asInt(); })) {
            return *level;
        }
        ++mDocument.warnings;
        return 0;
    }

    void readDolbyVision() {
        const Json::Value& section = objectSection("DolbyVision");
        for (const Json::Value& profile : section["profiles"]) {
            if (profile.isUInt()) {
                mDocument.content.dvProfiles.insert(profile.asUInt());
            }
        }
        mDocument.hasDolbyVision =
                mVideo.isMember("DolbyVision") && isObjectOrNull(mVideo["DolbyVision"]);
        mDocument.content.maxMainTierLevel = tierLevel(section, "max_main_tier_level");
        mDocument.content.maxHighTierLevel = tierLevel(section, "max_high_tier_level");
    }

    static std::vector<uint32_t> perfWords(const Json::Value& list) {
        std::vector<uint32_t> words;
        for (const Json::Value& element : list) {
            words.push_back(hexadecimalWord(element).value());  // Throws if there is none.
        }
        return words;
    }

    const Json::Value& mVideo;
    ExpectedDocument mDocument;
};

}  // namespace

StoreContent contentOf(const TargetSpec& spec) {
    using Inspector = TargetSpecInspector;
    StoreContent content;
    content.features = Inspector::features(spec);
    content.perfResourceValues = Inspector::perfResourceValues(spec);
    content.presets = Inspector::presets(spec);
    for (const NimbraBitRateEntry& row : Inspector::nimbraModeBitRateTable(spec)) {
        content.nimbraModeBitRateTable.push_back({row.low, row.high, row.bitRate});
    }
    content.codecPlugins = toVector(Inspector::codecPlugins(spec));
    content.dvProfiles = Inspector::dvConfigs(spec).profiles;
    content.maxMainTierLevel = Inspector::dvConfigs(spec).maxMainTierLevel;
    content.maxHighTierLevel = Inspector::dvConfigs(spec).maxHighTierLevel;
    content.preprocessingFilters = toVector(Inspector::preprocessingFilters(spec));
    content.supportedCodecs = Inspector::supportedCodecs(spec);
    content.encPostProcessingFilters = toVector(Inspector::encPostProcessingFilters(spec));
    return content;
}

std::optional<ExpectedDocument> expectedDocument(std::string_view text) {
    const std::optional<Json::Value> root = parse(text);
    if (!root || !Expectation::isObjectOrNull(*root)) {
        return std::nullopt;
    }
    const Json::Value& video = (*root)["Video"];
    if (!Expectation::isObjectOrNull(video)) {
        return std::nullopt;
    }
    return Expectation(video).take();
}

StoreContent merged(StoreContent store, const ExpectedDocument& document) {
    StoreContent added = document.content;
    store.features.merge(added.features);
    store.presets.merge(added.presets);
    store.perfResourceValues.merge(added.perfResourceValues);
    append(&store.nimbraModeBitRateTable, added.nimbraModeBitRateTable);
    append(&store.codecPlugins, added.codecPlugins);
    append(&store.preprocessingFilters, added.preprocessingFilters);
    append(&store.encPostProcessingFilters, added.encPostProcessingFilters);
    store.dvProfiles.merge(added.dvProfiles);
    store.supportedCodecs.merge(added.supportedCodecs);
    if (document.hasDolbyVision) {
        store.maxMainTierLevel = added.maxMainTierLevel;
        store.maxHighTierLevel = added.maxHighTierLevel;
    }
    return store;
}

}  // namespace kc2::fuzz
