// kcodec2_spec schema: the JSON Schema of the documents, for editors.

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "base/JsonPrinter.h"
#include "catalogue/JsonSchema.h"
#include "commands/Commands.h"

namespace kc2::tool {

void addSchemaCommand(CLI::App* app) {
    CLI::App* const command = app->add_subcommand(
            "schema", "Print a JSON Schema of the documents, for editors (draft-07)");
    command->footer(
            "An editor underlines only what check reports as a warning or an error.\n"
            "\n"
            "Example:\n"
            "  kcodec2_spec schema > .vscode/kcodec2_spec.schema.json\n"
            "\n"
            "Exit codes: 0 fine; 2 wrong usage, a FILE that cannot be read, or output that cannot "
            "be written.");
    const auto settingsFiles = std::make_shared<std::vector<std::string>>();
    addSettingsOption(command, settingsFiles.get());
    command->callback([=] { print(schemaOf(catalogueWith(*settingsFiles))); });
}

}  // namespace kc2::tool
