// The page docs/settings.md: the catalogue as tables.

#include "catalogue/SettingsPage.h"

#include <fmt/format.h>

#include <string>
#include <vector>

#include "base/Text.h"
#include "catalogue/SettingText.h"
#include "targetspec/reading/Escaped.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

constexpr char kIntroduction[] =
        "# The settings\n"
        "\n"
        "<!-- Written by \"kcodec2_spec explain --markdown\" from the settings catalogue. -->\n"
        "\n"
        "What is known of settings, codec components and perf resource codes. Names are free: one\n"
        "that is not here is not a mistake. `kcodec2_spec explain NAME` prints one of them, and\n"
        "`kcodec2_spec check` looks at their names and values. `--settings FILE` adds a vendor's\n"
        "own to both; FILE has the form of `tools/kcodec2_spec/catalogue/settings.json`.\n";

// Fit for the cell of a table.
std::string cell(const std::string& text) {
    std::string shown;
    for (const char c : escaped(text)) {
        shown += c == '|' ? "\\|" : std::string(1, c);
    }
    return shown;
}

void addSentence(std::string* text, const std::string& sentence) {
    *text += (text->empty() ? "" : "; ") + sentence;
}

void addValues(std::string* text, const std::vector<CatalogueValue>& values, const char* kind) {
    for (const CatalogueValue& value : values) {
        addSentence(text, fmt::format("{}{}: {}", kind, value.value, meaningOf(value)));
    }
}

// Everything that a value must keep to, in one cell.
std::string limitsOf(const Setting& setting) {
    std::string text = rangeOf(setting);
    addValues(&text, setting.values, "");
    addValues(&text, setting.bits, "bit ");
    if (!setting.atMost.empty()) {
        addSentence(&text, "not above `" + setting.atMost + "`");
    }
    if (!setting.neededFeature.empty()) {
        addSentence(&text, "only while the feature `" + setting.neededFeature + "` is true");
    }
    return text;
}

void addSection(const Catalogue& catalogue, const std::string& section, std::string* page) {
    std::string rows;
    for (const Setting& setting : catalogue.settings()) {
        if (setting.section == section) {
            const std::string unit = setting.unit.empty() ? "" : ", in " + setting.unit;
            rows += fmt::format("| `{}` | {} | {} | {} |\n", cell(setting.name),
                                cell(setting.meaning + unit), cell(limitsOf(setting)),
                                cell(chipsOf(setting.chips)));
        }
    }
    if (!rows.empty()) {
        *page +=
                fmt::format("\n## {}\n\n| Name | Meaning | Values | Chips |\n|---|---|---|---|\n{}",
                            section, rows);
    }
}

}  // namespace

std::string settingsPage(const Catalogue& catalogue) {
    std::string page = kIntroduction;
    for (const Section& row : kSections) {
        addSection(catalogue, *row.key, &page);
    }
    page += "\n## Perf resource codes\n\n| Code | Meaning |\n|---|---|\n";
    for (const PerfResourceCode& code : catalogue.codes()) {
        page += fmt::format("| `{}` | {} |\n", hexadecimal(code.code), cell(code.meaning));
    }
    page += "\n## Codec components\n\n| Name | List | Chips |\n|---|---|---|\n";
    for (const CodecComponent& component : catalogue.components()) {
        page += fmt::format("| `{}` | {} | {} |\n", cell(component.name), component.list,
                            cell(chipsOf(component.chips)));
    }
    return page;
}

}  // namespace kc2::tool
