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
#include "commands/CommandText.h"
#include "commands/Commands.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kBash = "bash";
constexpr std::string_view kZsh = "zsh";

bool isDirectory(const OptionText& option) {
    return option.value == "DIR";
}

// Whether the value is a file.
bool isFile(const OptionText& option) {
    constexpr std::string_view kFiles[] = {"FILE", "FILE.html", "A", "B"};
    return std::find(std::begin(kFiles), std::end(kFiles), option.value) != std::end(kFiles);
}

std::vector<std::string> namesOf(const std::vector<OptionText>& options) {
    std::vector<std::string> names;
    for (const OptionText& option : options) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return names;
}

// --- bash ---------------------------------------------------------------------------------

// How bash gets the values of `option`; empty where they are not known.
std::string bashWords(const OptionText& option) {
    if (!option.choices.empty()) {
        return fmt::format("-W '{}'", joined(option.choices, " "));
    }
    return isDirectory(option) ? "-d" : isFile(option) ? "-f" : "";
}

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

// The values of each option that has one.
void printBashValues(const CommandText& command) {
    for (const OptionText& option : command.options) {
        if (option.isFlag) {
            continue;
        }
        std::string patterns;
        for (const std::string& name : option.names) {
            patterns += fmt::format("{}{}:{}", patterns.empty() ? "" : "|", command.name, name);
        }
        printOut("        {}) words=({}); names= ;;\n", patterns, bashWords(option));
    }
}

int printBash(const std::vector<CommandText>& commands) {
    std::vector<std::string> names;
    for (size_t i = 1; i < commands.size(); ++i) {
        names.push_back(commands[i].name);
    }
    printOut("{}            {}) command=${{COMP_WORDS[i]}}; break ;;\n        esac\n    done\n",
             kBashStart, joined(names, "|"));
    printOut("    case $command in\n");
    for (const CommandText& command : commands) {
        const std::string words = command.name.empty() ? fmt::format("-W '{}'", joined(names, " "))
                                  : command.arguments.empty()
                                          ? ""
                                          : bashWords(command.arguments.front());
        printOut("        '{}') names='{}'; words=({}) ;;\n", command.name,
                 joined(namesOf(command.options), " "), words);
    }
    printOut("    esac\n    case $command:$before in\n");
    for (const CommandText& command : commands) {
        printBashValues(command);
    }
    writeOut(kBashEnd);
    return kExitOk;
}

// --- zsh ----------------------------------------------------------------------------------

// A text for single quotes, with the characters of `special` escaped for zsh's functions.
std::string zshText(std::string_view text, std::string_view special) {
    std::string result;
    for (const char c : text) {
        if (c == '\'') {
            result += "'\\''";
        } else {
            result += special.find(c) != std::string_view::npos ? fmt::format("\\{}", c)
                                                                : std::string(1, c);
        }
    }
    return result;
}

std::string zshAction(const OptionText& option) {
    if (!option.choices.empty()) {
        return fmt::format("({})", joined(option.choices, " "));
    }
    return isDirectory(option) ? "_files -/" : isFile(option) ? "_files" : " ";
}

void printZshCommand(const CommandText& command) {
    printOut("                {})\n                    _arguments", command.name);
    for (const OptionText& option : command.options) {
        const std::string value =
                option.isFlag
                        ? ""
                        : fmt::format(":{}:{}", zshText(option.value, ":\\"), zshAction(option));
        for (const std::string& name : option.names) {
            printOut(" \\\n                        '*{}[{}]{}'", name,
                     zshText(option.description, "[]:\\"), value);
        }
    }
    if (!command.arguments.empty()) {
        const OptionText& argument = command.arguments.front();
        printOut(" \\\n                        '*:{}:{}'", zshText(argument.value, ":\\"),
                 zshAction(argument));
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

int printZsh(const std::vector<CommandText>& commands) {
    writeOut(kZshStart);
    for (size_t i = 1; i < commands.size(); ++i) {
        printOut("        '{}:{}'\n", commands[i].name, zshText(commands[i].description, ":\\"));
    }
    printOut("    )\n    _arguments -C");
    for (const OptionText& option : commands.front().options) {
        for (const std::string& name : option.names) {
            printOut(" '{}[{}]'", name, zshText(option.description, "[]:\\"));
        }
    }
    printOut(" '1:command:->command' '*::argument:->rest'\n{}", kZshMiddle);
    for (size_t i = 1; i < commands.size(); ++i) {
        printZshCommand(commands[i]);
    }
    writeOut(kZshEnd);
    return kExitOk;
}

}  // namespace

void addCompletionCommand(CLI::App* app, int* exitCode) {
    CLI::App* const command = app->add_subcommand("completion", "Print a shell completion script");
    command->footer(
            fmt::format("{}\n\nExample:\n  . <(kcodec2_spec completion bash)", kUsualExitCodes));
    const auto shell = std::make_shared<std::string>();
    command->add_option("SHELL", *shell, "The shell: bash or zsh")
            ->required()
            ->type_name(fmt::format("{}|{}", kBash, kZsh))
            ->check(CLI::Validator(
                    [](const std::string& name) {
                        return whyNotOneOf({std::string(kBash), std::string(kZsh)}, name);
                    },
                    ""));
    command->callback(
            [=] { *exitCode = (*shell == kZsh ? printZsh : printBash)(commandTexts(*app)); });
}

}  // namespace kc2::tool
