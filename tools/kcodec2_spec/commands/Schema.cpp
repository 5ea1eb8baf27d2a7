// kcodec2_spec schema: the JSON Schema of the documents, for editors.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/JsonPrinter.h"
#include "catalogue/Catalogue.h"
#include "catalogue/JsonSchema.h"
#include "commands/Commands.h"

namespace kc2::tool {

namespace {

int printSchema(const std::vector<std::string>& settingsFiles) {
    const std::optional<Catalogue> catalogue = loadCatalogue(settingsFiles);
    if (!catalogue) {
        return kExitUsage;
    }
    print(schemaOf(*catalogue));
    return kExitOk;
}

}  // namespace

void addSchemaCommand(CLI::App* app, int* exitCode) {
    CLI::App* const command = app->add_subcommand(
            "schema", "Print a JSON Schema of the documents, for editors (draft-07)");
    command->footer(
            fmt::format("An editor underlines only what check reports as a warning or an error.\n"
                        "\n"
                        "Example:\n"
                        "  kcodec2_spec schema > .vscode/kcodec2_spec.schema.json\n"
                        "\n"
                        "{}",
                        kExitCodesWithFile));
    auto settingsFiles = std::make_shared<std::vector<std::string>>();
    addSettingsOption(command, settingsFiles.get());
    command->callback([=] { *exitCode = printSchema(*settingsFiles); });
}

}  // namespace kc2::tool
