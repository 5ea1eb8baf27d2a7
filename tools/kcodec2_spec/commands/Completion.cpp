// kcodec2_spec completion: what a shell offers while the tool's command line is typed.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/OptionValues.h"
#include "base/Print.h"
#include "base/Text.h"
#include "commands/Commands.h"
#include "commands/HelpText.h"

namespace kc2::tool {

namespace {

// What a shell offers for a value, as its functions have it.
struct ValueWords {
    const char* choices;  // With a place for them.
    const char* directory;
    const char* file;
    const char* other;
};

constexpr ValueWords kBashWords = {"-W '{}'", "-d", "-f", ""};
constexpr ValueWords kZshWords = {"({})", "_files -/", "_files", " "};

// "DIR", or the name of an argument.
std::string valueOf(const CLI::Option& option) {
    return option.get_positional() ? option.get_name(true) : option.get_type_name();
}

std::string wordsOf(const CLI::Option& option, const ValueWords& words) {
    // "text|json|sarif" is a list of words; "/PREFIX:DIR" and "NAME=VALUE" are not.
    const std::vector<std::string> choices = CLI::detail::split(option.get_type_name(), '|');
    if (choices.size() > 1) {
        return fmt::format(fmt::runtime(words.choices), joined(choices, " "));
    }
    constexpr std::string_view kFiles[] = {"FILE", "FILE.html", "A", "B"};
    const std::string value = valueOf(option);
    return value == "DIR" ? words.directory
           : std::find(std::begin(kFiles), std::end(kFiles), value) != std::end(kFiles)
                   ? words.file
                   : words.other;
}

// The first argument; null for a command without arguments.
const CLI::Option* argumentOf(const CLI::App& command) {
    const std::vector<const CLI::Option*> arguments = shownOptions(command, true);
    return arguments.empty() ? nullptr : arguments.front();
}

// --- bash ---------------------------------------------------------------------------------

constexpr char kBashStart[] =
        R"(# What bash offers for kcodec2_spec, as "kcodec2_spec completion bash" prints it.
_kcodec2_spec()
{
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command='' i
    local names='' words=()
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
)";

constexpr char kBashEnd[] = R"(    esac
    [[ $word != -* ]] || words=(-W "$names")
    [[ ${#words[@]} -eq 0 ]] || mapfile -t COMPREPLY < <(compgen "${words[@]}" -- "$word")
}
complete -o filenames -F _kcodec2_spec kcodec2_spec
)";

void printBash(const CLI::App& tool) {
    printOut("{}            {}) command=${{COMP_WORDS[i]}}; break ;;\n        esac\n    done\n",
             kBashStart, joined(commandNames(tool), "|"));
    std::string values;  // Of each option that has one.
    printOut("    case $command in\n");
    const auto printCommand = [&](const CLI::App& command, const std::string& name,
                                  const std::string& words) {
        std::vector<std::string> options;
        for (const CLI::Option* const option : shownOptions(command, false)) {
            const std::vector<std::string> names = namesOf(*option);
            options.insert(options.end(), names.begin(), names.end());
            if (!isFlag(*option)) {
                values += fmt::format("        {}:{}) words=({}); names= ;;\n", name,
                                      joined(names, fmt::format("|{}:", name)),
                                      wordsOf(*option, kBashWords));
            }
        }
        printOut("        '{}') names='{}'; words=({}) ;;\n", name, joined(options, " "), words);
    };
    printCommand(tool, "", fmt::format("-W '{}'", joined(commandNames(tool), " ")));
    for (const CLI::App* const command : tool.get_subcommands(nullptr)) {
        const CLI::Option* const argument = argumentOf(*command);
        printCommand(*command, command->get_name(),
                     argument != nullptr ? wordsOf(*argument, kBashWords) : "");
    }
    printOut("    esac\n    case $command:$before in\n{}{}", values, kBashEnd);
}

// --- zsh ----------------------------------------------------------------------------------

// A text for single quotes, with the characters of `special` escaped for zsh's functions.
std::string zshText(std::string_view text, std::string_view special) {
    std::string result;
    for (const char c : text) {
        result += c == '\''                                   ? "'\\''"
                  : special.find(c) != std::string_view::npos ? fmt::format("\\{}", c)
                                                              : std::string(1, c);
    }
    return result;
}

// The names of an option with its meaning: "--json[Print JSON, for scripts]".
std::vector<std::string> zshNames(const CLI::Option& option) {
    std::vector<std::string> names = namesOf(option);
    for (std::string& name : names) {
        name += fmt::format("[{}]", zshText(option.get_description(), "[]:\\"));
    }
    return names;
}

// A value with what zsh offers for it.
std::string zshValue(const CLI::Option& option) {
    return fmt::format(":{}:{}", zshText(valueOf(option), ":\\"), wordsOf(option, kZshWords));
}

void printZshCommand(const CLI::App& command) {
    printOut("                {})\n                    _arguments", command.get_name());
    for (const CLI::Option* const option : shownOptions(command, false)) {
        for (const std::string& name : zshNames(*option)) {
            printOut(" \\\n                        '*{}{}'", name,
                     isFlag(*option) ? "" : zshValue(*option));
        }
    }
    if (const CLI::Option* const argument = argumentOf(command)) {
        printOut(" \\\n                        '*{}'", zshValue(*argument));
    }
    printOut("\n                    ;;\n");
}

constexpr char kZshStart[] = R"(#compdef kcodec2_spec
# What zsh offers for kcodec2_spec, as "kcodec2_spec completion zsh" prints it.
_kcodec2_spec()
{
    local context state line
    typeset -A opt_args
    local -a commands
    commands=(
)";

constexpr char kZshMiddle[] = R"(    case $state in
        command) _describe command commands ;;
        rest)
            case $line[1] in
)";

constexpr char kZshEnd[] = R"(            esac
            ;;
    esac
}
if [ "$funcstack[1]" = _kcodec2_spec ]; then
    _kcodec2_spec "$@"
else
    compdef _kcodec2_spec kcodec2_spec
fi
)";

void printZsh(const CLI::App& tool) {
    const std::vector<const CLI::App*> commands = tool.get_subcommands(nullptr);
    writeOut(kZshStart);
    for (const CLI::App* const command : commands) {
        printOut("        '{}:{}'\n", command->get_name(),
                 zshText(command->get_description(), ":\\"));
    }
    printOut("    )\n    _arguments -C");
    for (const CLI::Option* const option : shownOptions(tool, false)) {
        for (const std::string& name : zshNames(*option)) {
            printOut(" '{}'", name);
        }
    }
    printOut(" '1:command:->command' '*::argument:->rest'\n{}", kZshMiddle);
    for (const CLI::App* const command : commands) {
        printZshCommand(*command);
    }
    writeOut(kZshEnd);
}

}  // namespace

void addCompletionCommand(CLI::App* app) {
    CLI::App* const command = app->add_subcommand("completion", "Print a shell completion script");
    command->footer(
            fmt::format("{}\n\nExample:\n  . <(kcodec2_spec completion bash)", kUsualExitCodes));
    const auto print = std::make_shared<void (*)(const CLI::App&)>();
    addChoice<void (*)(const CLI::App&)>(
            command, "SHELL", {{"bash", printBash}, {"zsh", printZsh}},
            [print](auto chosen) { *print = chosen; }, "The shell: bash or zsh")
            ->required();
    command->callback([=] { (*print)(*app); });
}

}  // namespace kc2::tool
