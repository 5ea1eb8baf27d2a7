// What a name in a document is, line by line, in the words that every command uses.

#include "catalogue/Explanation.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/Text.h"
#include "catalogue/BuiltInValues.h"
#include "catalogue/SectionTexts.h"
#include "catalogue/SettingText.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

std::string lineOfValue(const CatalogueValue& value) {
    return fmt::format("{}  {}", value.value, meaningOf(value));
}

void addEach(const char* title, const std::vector<CatalogueValue>& values,
             Explanation* explanation) {
    for (const CatalogueValue& value : values) {
        explanation->add(title, lineOfValue(value));
    }
}

}  // namespace

void Explanation::add(std::string title, std::string text) {
    if (!text.empty()) {
        lines.push_back({std::move(title), std::move(text)});
    }
}

std::string formatted(const Explanation::Line& line) {
    return fmt::format("  {:9} {}\n", line.title, escaped(line.text));
}

std::string formatted(const Explanation& explanation) {
    std::string text = fmt::format("{}\n", escaped(explanation.name));
    for (const Explanation::Line& line : explanation.lines) {
        text += formatted(line);
    }
    return text;
}

std::optional<Explanation> explainedSetting(const Catalogue& catalogue, std::string_view name) {
    const Setting* const setting = catalogue.setting(name);
    if (setting == nullptr) {
        return std::nullopt;
    }
    Explanation explanation = {setting->name, {}};
    explanation.add("meaning", setting->meaning);
    explanation.add("section", setting->section);
    explanation.add("type", setting->type);
    explanation.add("unit", setting->unit);
    explanation.add("range", rangeOf(*setting));
    addEach("value", setting->values, &explanation);
    addEach("bit", setting->bits, &explanation);
    explanation.add("chips", chipsOf(setting->chips));
    for (const BuiltInValue& one : builtInValuesOf(*setting)) {
        explanation.add("built-in", fmt::format("{} ({}, document {})", writtenValue(one.value),
                                                one.chips, one.number));
    }
    explanation.add("needs", setting->neededFeature);
    explanation.add("at most", setting->atMost);
    return explanation;
}

std::optional<Explanation> explainedSection(const Catalogue& catalogue, const std::string& name) {
    const std::string meaning = meaningOfSection(name);
    if (meaning.empty()) {
        return std::nullopt;
    }
    Explanation explanation = {name, {}};
    explanation.add("meaning", meaning);
    for (const Setting& setting : catalogue.settings()) {
        explanation.add("setting", setting.section == name ? setting.name : "");
    }
    return explanation;
}

std::optional<Explanation> explainedComponent(const Catalogue& catalogue, std::string_view name) {
    const CodecComponent* const component = catalogue.component(name);
    if (component == nullptr) {
        return std::nullopt;
    }
    Explanation explanation = {component->name, {}};
    explanation.add("list", component->list);
    explanation.add("chips", chipsOf(component->chips));
    return explanation;
}

std::optional<Explanation> explainedCode(const Catalogue& catalogue, const std::string& code) {
    const std::optional<uint32_t> word = toWord(code);
    const auto& codes = catalogue.codes();
    const auto found = std::find_if(codes.begin(), codes.end(), [&](const PerfResourceCode& one) {
        return word && one.code == *word;
    });
    if (found == codes.end()) {
        return std::nullopt;
    }
    Explanation explanation = {hexadecimal(found->code), {}};
    explanation.add("meaning", found->meaning);
    return explanation;
}

Explanation explainedValue(const Setting& setting, int64_t value) {
    Explanation explanation = {std::to_string(value), {}};
    for (const CatalogueValue& one : setting.values) {
        explanation.add("value", one.value == value ? lineOfValue(one) : "");
    }
    for (const CatalogueValue& bit : setting.bits) {
        explanation.add("bit", (value & bit.value) != 0 ? lineOfValue(bit) : "");
    }
    return explanation;
}

}  // namespace kc2::tool
