// kcodec2_spec defaults: a built-in document, to start a new one from.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
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

// Null where the word is not such a number.
const ChipDocument* documentOf(const std::string& number) {
    const auto row = std::find_if(
            std::begin(kChipDocuments), std::end(kChipDocuments),
            [&](const ChipDocument& one) { return number == std::to_string(one.number); });
    return row != std::end(kChipDocuments) ? row : nullptr;
}

std::string whyNotDefault(const std::string& word) {
    return documentOf(word) != nullptr
                   ? ""
                   : fmt::format("there is no built-in document {}: {}", word, chipsOfDefaults());
}

}  // namespace

void addDefaultsCommand(CLI::App* app) {
    struct Arguments {
        std::string number;
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
        // Without either, the one for chips without a document of their own.
        const ChipDocument& document = arguments->number.empty()
                                               ? chipDocumentFor(arguments->variant)
                                               : *documentOf(arguments->number);
        writeOut(document.text);
    });
}

}  // namespace kc2::tool
