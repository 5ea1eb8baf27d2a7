// kcodec2_spec explain: what a setting, a codec component or a perf resource code is.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Commands.h"
#include "Text.h"
#include "catalogue/Catalogue.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

void printLine(const char* title, const std::string& text) {
    if (!text.empty()) {
        std::printf("  %-9s %s\n", title, escaped(text).c_str());
    }
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text.empty() ? "all" : text;
}

std::string rangeOf(const Setting& setting) {
    if (setting.minimum && setting.maximum) {
        return std::to_string(*setting.minimum) + " to " + std::to_string(*setting.maximum);
    }
    if (setting.minimum) {
        return "from " + std::to_string(*setting.minimum);
    }
    return setting.maximum ? "up to " + std::to_string(*setting.maximum) : "";
}

void printValues(const char* title, const std::vector<CatalogueValue>& values) {
    for (const CatalogueValue& value : values) {
        std::string text = std::to_string(value.value) + "  " + value.meaning;
        text += value.isSupported ? "" : " (not supported)";
        if (value.neededBit) {
            text += " (only together with bit " + std::to_string(*value.neededBit) + ")";
        }
        printLine(title, text);
    }
}

void printSetting(const Setting& setting) {
    std::printf("%s\n", escaped(setting.name).c_str());
    printLine("meaning", setting.meaning);
    printLine("section", setting.section);
    printLine("type", setting.type);
    printLine("unit", setting.unit);
    printLine("range", rangeOf(setting));
    printValues("value", setting.values);
    printValues("bit", setting.bits);
    printLine("chips", joined(setting.chips));
    printLine("needs", setting.neededFeature);
    printLine("at most", setting.atMost);
}

int printUnknown(const Catalogue& catalogue, const std::string& wanted) {
    std::vector<std::string_view> names;
    for (const Setting& setting : catalogue.settings()) {
        names.emplace_back(setting.name);
    }
    for (const CodecComponent& component : catalogue.components()) {
        names.emplace_back(component.name);
    }
    const std::string near = nearest(wanted, names);
    std::fprintf(stderr, "kcodec2_spec: nothing is known about \"%s\".%s\n",
                 escaped(wanted).c_str(),
                 near.empty() ? "" : (" Did you mean " + escaped(near) + "?").c_str());
    return kExitFindings;
}

int explain(const std::string& name, const std::vector<std::string>& settingsFiles) {
    const std::optional<Catalogue> catalogue = loadCatalogue(settingsFiles);
    if (!catalogue) {
        return kExitUsage;
    }
    if (const Setting* const setting = catalogue->setting(name)) {
        printSetting(*setting);
        return kExitOk;
    }
    if (const CodecComponent* const component = catalogue->component(name)) {
        std::printf("%s\n", escaped(component->name).c_str());
        printLine("list", component->list);
        printLine("chips", joined(component->chips));
        return kExitOk;
    }
    const std::optional<uint32_t> word = toWord(name);
    for (const PerfResourceCode& code : catalogue->codes()) {
        if (word && code.code == *word) {
            std::printf("%s\n", hexadecimal(code.code).c_str());
            printLine("meaning", code.meaning);
            return kExitOk;
        }
    }
    return printUnknown(*catalogue, name);
}

}  // namespace

void addSettingsOption(CLI::App* command, std::vector<std::string>* files) {
    command->add_option("--settings", *files,
                        "A file in the form of the settings catalogue that adds to it; repeatable")
            ->type_name("FILE")
            ->allow_extra_args(false);
}

void addExplainCommand(CLI::App* app, int* exitCode) {
    struct Arguments {
        std::string name;
        std::vector<std::string> settingsFiles;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* const command = app->add_subcommand(
            "explain", "Tell what a setting, a codec component or a perf resource code is");
    command->add_option("NAME", arguments->name, "What to explain")->required();
    addSettingsOption(command, &arguments->settingsFiles);
    command->callback([=] { *exitCode = explain(arguments->name, arguments->settingsFiles); });
}

}  // namespace kc2::tool
