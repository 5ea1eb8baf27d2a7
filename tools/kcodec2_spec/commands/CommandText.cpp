// The commands and their options as plain values, for the manual page and the completions.

#include "commands/CommandText.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <sstream>

#include "base/Text.h"
#include "commands/HelpText.h"

namespace kc2::tool {

namespace {

// "text|json|sarif" is a list of words; "/PREFIX:DIR" and "NAME=VALUE" are not.
std::vector<std::string> choicesOf(const std::string& type) {
    std::vector<std::string> words;
    std::istringstream text(type);
    for (std::string word; std::getline(text, word, '|');) {
        words.push_back(word);
    }
    return words.size() > 1 ? words : std::vector<std::string>();
}

// Makes the words of --help, with functions that CLI::Formatter has for derived classes only.
class HelpWords final : public CLI::Formatter {
public:
    OptionText optionText(const CLI::Option& option) const {
        const bool isArgument = option.get_positional();
        OptionText text;
        for (const std::string& name : option.get_snames()) {
            text.names.push_back(fmt::format("-{}", name));
        }
        for (const std::string& name : option.get_lnames()) {
            text.names.push_back(fmt::format("--{}", name));
        }
        text.label = make_option_name(&option, isArgument);
        text.form = formOf(option);
        text.description = option.get_description();
        text.value = isArgument ? option.get_name(true) : option.get_type_name();
        text.isFlag = option.get_items_expected_max() == 0;
        text.choices = choicesOf(option.get_type_name());
        return text;
    }

    std::string usage(const CLI::App& app, const std::string& name) const {
        const std::string text = make_usage(&app, name);
        const std::string label = fmt::format("{}: ", get_label("Usage"));
        const size_t start = text.find(label);
        return start == std::string::npos ? text : text.substr(start + label.size());
    }
};

CommandText commandText(const CLI::App& app, bool isTool) {
    const HelpWords words;
    CommandText command;
    command.name = isTool ? "" : app.get_name();
    command.description = app.get_description();
    command.usage = words.usage(
            app, isTool ? app.get_name() : fmt::format("kcodec2_spec {}", app.get_name()));
    command.usage = withoutTrailing(command.usage, '\n');
    command.footer = app.get_footer();
    for (const CLI::Option* const option : app.get_options()) {
        if (option->get_group().empty()) {
            continue;  // --help leaves it out, too.
        }
        (option->get_positional() ? command.arguments : command.options)
                .push_back(words.optionText(*option));
    }
    return command;
}

}  // namespace

std::vector<CommandText> commandTexts(const CLI::App& app) {
    std::vector<CommandText> commands = {commandText(app, true)};
    for (const CLI::App* const command : app.get_subcommands(nullptr)) {
        commands.push_back(commandText(*command, false));
    }
    return commands;
}

}  // namespace kc2::tool
