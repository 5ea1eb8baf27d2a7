// kcodec2_spec defaults: a built-in document, to start a new one from.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <string>

#include "base/Print.h"
#include "commands/Commands.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

namespace {

// The numbers of the built-in documents, with their chips.
std::string chipsOfDefaults() {
    std::map<int, std::string> chips;
    for (const ChipDocument& row : kChipDocuments) {
        std::string& names = chips[row.number];
        names.append(names.empty() ? "" : ", ");
        names.append(*row.chip != '\0' ? row.chip : "all others; the default");
    }
    std::string text;
    for (const auto& [number, names] : chips) {
        text += fmt::format("{}{} ({})", text.empty() ? "" : ", ", number, names);
    }
    return text;
}

// What is wrong with a word that is not such a number; empty when it is one.
std::string whyNotDefault(const std::string& word) {
    for (const ChipDocument& row : kChipDocuments) {
        if (word == std::to_string(row.number)) {
            return std::string();
        }
    }
    return fmt::format("there is no built-in document {}: {}", word, chipsOfDefaults());
}

int printDefault(int number) {
    for (const ChipDocument& row : kChipDocuments) {
        if (row.number == number) {
            writeOut(row.text);
            return kExitOk;
        }
    }
    return kExitUsage;
}

}  // namespace

void addDefaultsCommand(CLI::App* app, int* exitCode) {
    struct Arguments {
        int number = chipDocumentFor("").number;  // For chips without a document of their own.
        std::string variant;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* const command =
            app->add_subcommand("defaults", "Print a built-in document, to start a new one from");
    command->footer(kUsualExitCodes);
    CLI::Option* const number = command->add_option("NUMBER", arguments->number,
                                                    fmt::format("Which one: {}", chipsOfDefaults()))
                                        ->check(CLI::Validator(whyNotDefault, ""));
    command->add_option("--variant", arguments->variant,
                        "Print the one that a device of this target variant uses")
            ->type_name("NAME")
            ->excludes(number);
    command->callback([=] {
        *exitCode = printDefault(arguments->variant.empty()
                                         ? arguments->number
                                         : chipDocumentFor(arguments->variant).number);
    });
}

}  // namespace kc2::tool
