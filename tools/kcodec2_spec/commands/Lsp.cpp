// kcodec2_spec lsp: the checker in an editor.

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "base/DeviceOptions.h"
#include "commands/Commands.h"
#include "editor/Serve.h"

namespace kc2::tool {

namespace {

struct LspArguments {
    std::vector<std::string> settingsFiles;
    std::string root;
};

}  // namespace

void addLspCommand(CLI::App* app, int* exitCode) {
    CLI::App* const command = app->add_subcommand(
            "lsp", "Serve an editor: findings, fixes, meanings and names while you write");
    command->footer(
            "The editor starts it, and both talk over standard input and output (Language Server "
            "Protocol 3.17). docs/editors.md shows what to write into an editor's settings.\n"
            "\n"
            "A document at a path that a load reads, such as "
            "DIR/vendor/etc/media/video_system_specs.json, is checked with the loads that read "
            "it, as by check --all-variants. Any other is checked alone.\n"
            "\n"
            "Exit codes: 0 fine; 1 the editor sent \"exit\" without \"shutdown\"; 2 wrong usage, a "
            "FILE that cannot be read, input that breaks the protocol or ends without \"exit\", or "
            "output that cannot be written.");
    const auto arguments = std::make_shared<LspArguments>();
    addSettingsOption(command, &arguments->settingsFiles);
    if (canPlayDevices()) {
        command->add_option("--rootdir", arguments->root,
                            "Root of the device's file system, for the documents in it")
                ->type_name("DIR")
                ->check(CLI::Validator(CLI::ExistingDirectory).description(""))
                ->group(kDeviceGroup);
    }
    command->callback([=] {
        *exitCode = serveEditor(
                std::make_shared<KnownSettings>(catalogueWith(arguments->settingsFiles)),
                arguments->root);
    });
}

}  // namespace kc2::tool
