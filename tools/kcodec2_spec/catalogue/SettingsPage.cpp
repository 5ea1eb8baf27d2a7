// The page docs/settings.md: the catalogue as tables.

#include "catalogue/SettingsPage.h"

#include <fmt/format.h>

#include <string>
#include <vector>

#include "base/Text.h"
#include "catalogue/CatalogueForm.h"
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
        "The settings, codec components and perf resource codes that the tool knows.\n"
        "`kcodec2_spec explain NAME` explains one of them, and `kcodec2_spec check` compares "
        "names\n"
        "and values in documents with them. [A file of your own](#a-settings-file-of-your-own) "
        "adds\n"
        "to them.\n"
        "\n"
        "`private_` and `debug_private_` begin the names of the store's own settings. `check` "
        "reports\n"
        "those of a document that are not here with one note, and one that is nearly here with a\n"
        "warning. All other names are free: use them for settings of your own.\n";

constexpr char kOwnFile[] =
        "\n## A settings file of your own\n"
        "\n"
        "`--settings FILE` adds a vendor's settings, components and codes to these; `check`,\n"
        "`explain`, `diff`, `report`, `schema` and `lsp` have the option, and it may be repeated.\n"
        "`tools/kcodec2_spec/catalogue/settings.json` has the same form. The tool refuses a file\n"
        "that has a mistake, defines a known name again, or refers to a name that neither it nor\n"
        "an earlier file defines, and prints the place.\n";

constexpr char kExample[] = R"(
An example:

```json
{
    "settings": [
        {"name": "vendor_zoom", "section": "Features", "type": "boolean",
         "meaning": "digital zoom"},
        {"name": "vendor_zoom_max", "section": "Presets", "type": "integer",
         "meaning": "highest zoom factor", "unit": "percent",
         "minimum": 100, "maximum": 800, "needs-feature": "vendor_zoom"},
        {"name": "vendor_zoom_start", "section": "Presets", "type": "integer",
         "meaning": "zoom factor when a session starts", "at-most": "vendor_zoom_max"},
        {"name": "vendor_zoom_steps", "section": "Presets", "type": "integer",
         "meaning": "steps of three cameras, a byte for each", "minimum": 0,
         "maximum": 16777215, "maximum-of-byte": 20},
        {"name": "vendor_zoom_filter", "section": "Presets", "type": "integer",
         "meaning": "scaling filter", "chips": ["orvelle", "other"],
         "values": [{"value": 0, "meaning": "bilinear"},
                    {"value": 1, "meaning": "bicubic", "supported": false}],
         "only-values": true},
        {"name": "vendor_zoom_planes", "section": "Presets", "type": "integer",
         "meaning": "planes that are scaled",
         "bits": [{"bit": 1, "meaning": "Y"},
                  {"bit": 2, "meaning": "UV", "needs-bit": 1}]},
        {"name": "vendor_zoom_perf", "section": "perf-resource-values", "type": "words",
         "meaning": "performance lock while zooming"}
    ],
    "codec-components": [
        {"name": "c2.vendor.avs2.decoder", "list": "decoders", "chips": ["brel"]}
    ],
    "perf-resource-codes": [
        {"code": "0x40C10000", "meaning": "cores that zooming may use"}
    ]
}
```
)";

// Fit for the cell of a table.
std::string cell(const std::string& text) {
    std::string shown;
    for (const char c : escaped(text)) {
        shown.append(c == '|' ? "\\" : "").append(1, c);
    }
    return shown;
}

// Everything that a value must satisfy, in one cell.
std::string limitsOf(const Setting& setting) {
    std::vector<std::string> limits;
    if (const std::string range = rangeOf(setting); !range.empty()) {
        limits.push_back(range);
    }
    for (const CatalogueValue& value : setting.values) {
        limits.push_back(fmt::format("{}: {}", value.value, meaningOf(value)));
    }
    for (const CatalogueValue& bit : setting.bits) {
        limits.push_back(fmt::format("bit {:#x}: {}", bit.value, meaningOf(bit)));
    }
    if (!setting.atMost.empty()) {
        limits.push_back(fmt::format("not above `{}`", setting.atMost));
    }
    if (!setting.neededFeature.empty()) {
        limits.push_back(fmt::format("has an effect only while `{}` is on", setting.neededFeature));
    }
    return joined(limits, "; ");
}

void addSection(const Catalogue& catalogue, const std::string& section, std::string* page) {
    std::string rows;
    for (const Setting& setting : catalogue.settings()) {
        if (setting.section == section) {
            const std::string unit =
                    setting.unit.empty() ? "" : fmt::format(", in {}", setting.unit);
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

std::string ownFile() {
    std::string text = kOwnFile;
    for (const CatalogueObject& object : catalogueForm()) {
        text += fmt::format("\n### {}\n\n| Member | Value | Meaning |\n|---|---|---|\n",
                            object.title);
        for (const CatalogueMember& member : object.members) {
            text += fmt::format("| `{}`{} | {} | {} |\n", member.name,
                                member.isNeeded ? ", required" : "", member.value, member.meaning);
        }
    }
    return text + kExample;
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
    return page + ownFile();
}

}  // namespace kc2::tool
