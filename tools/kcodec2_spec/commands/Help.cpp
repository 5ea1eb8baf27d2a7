// kcodec2_spec help: what --help prints, for those who try this first.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "base/OptionValues.h"
#include "base/Print.h"
#include "commands/Commands.h"
#include "commands/HelpText.h"

namespace kc2::tool {

void addHelpCommand(CLI::App* app) {
    CLI::App* const command =
            app->add_subcommand("help", "Print this help, or the help of a command");
    command->footer(kUsualExitCodes);
    const auto wanted = std::make_shared<std::string>();
    command->add_option("COMMAND", *wanted, "The command to describe")
            ->check(CLI::Validator(
                    [app](const std::string& name) {
                        return whyNotOneOf(commandNames(*app), name);
                    },
                    ""));
    command->callback([=] {
        const CLI::App* const subject = wanted->empty() ? app : app->get_subcommand(*wanted);
        const std::string name =
                fmt::format("{}{}{}", app->get_name(), wanted->empty() ? "" : " ", *wanted);
        writeOut(app->get_formatter()->make_help(subject, name, CLI::AppFormatMode::Normal));
    });
}

}  // namespace kc2::tool
