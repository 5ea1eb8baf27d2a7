// Help and messages about wrong usage, wrapped for the terminal.

#include "commands/HelpText.h"

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "base/Print.h"
#include "base/Spelling.h"
#include "base/Terminal.h"
#include "base/Text.h"
#include "commands/Commands.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// The indentation of what follows the first part of a line.
size_t hangingIndent(std::string_view line, size_t width) {
    const size_t start = std::min(line.find_first_not_of(' '), line.size());
    constexpr size_t kColumn = 8;  // Text that begins further to the right is in a column.
    size_t indent = start == 0 || start >= kColumn ? start : start + 2;
    const size_t gap = line.rfind("  ");
    if (gap != std::string_view::npos && gap >= start) {
        indent = std::min(line.find_first_not_of(' ', gap), line.size());
    }
    return indent <= width / 2 ? indent : std::min(start + 2, width / 2);
}

void appendWrapped(std::string_view line, size_t width, std::string* text) {
    const size_t indent = hangingIndent(line, width);
    std::string rest(line);
    while (rest.size() > width) {
        const size_t start = std::max(std::min(rest.find_first_not_of(' '), rest.size()), indent);
        size_t end = rest.rfind(' ', width);
        if (end == std::string::npos || end <= start) {
            end = rest.find(' ', start);  // A word that is wider.
        }
        const size_t next = rest.find_first_not_of(' ', end);
        if (end == std::string::npos || next == std::string::npos) {
            break;
        }
        text->append(withoutTrailing(std::string_view(rest).substr(0, end), ' ')).append("\n");
        rest = std::string(indent, ' ').append(rest, next);
    }
    text->append(rest).append("\n");
}

// `text` with its lines wrapped at `width` columns. The rest of a line is indented like the text
// after its last gap of two blanks or more, which is the description of an option, or like the line
// itself; where that is indented a little, by two columns more.
std::string wrapped(const std::string& text, size_t width) {
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        appendWrapped(line, width, &result);
    }
    return result;
}

size_t helpWidth() {
    constexpr size_t kUsual = 80;
    constexpr size_t kLeast = 20;
    const size_t width = terminalOf(STDOUT_FILENO).width;
    return width == 0 ? kUsual : std::max(width, kLeast);
}

class WrappingFormatter final : public CLI::Formatter {
public:
    explicit WrappingFormatter(size_t width) : mWidth(width) {
        constexpr size_t kWidest = 28;  // "--property-a NAME=VALUE" and a gap fit into it.
        column_width(std::min(kWidest, width * 3 / 8));
    }

    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override {
        return wrapped(CLI::Formatter::make_help(app, std::move(name), mode), mWidth);
    }

    std::string make_option_opts(const CLI::Option* option) const override {
        return formOf(*option);
    }

private:
    size_t mWidth;
};

const CLI::App& givenCommand(const CLI::App& app) {
    const std::vector<CLI::App*> given = app.get_subcommands();
    return given.empty() ? app : *given.front();
}

bool isOption(const std::string& word) {
    return word.starts_with("-");
}

std::string suggestion(const std::string& word) {
    return word.empty() ? "" : fmt::format(". Did you mean {}?", word);
}

std::string nearOption(const CLI::App& command, const std::string& word) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back(fmt::format("--{}", name));
        }
    }
    return nearest(word.substr(0, word.find('=')), names);
}

// What to do with a file or directory that a command has no argument for.
std::string pathHint(const CLI::App& command, const std::string& word) {
    std::error_code error;
    if (command.get_option_no_throw("--rootdir") == nullptr ||
        !std::filesystem::exists(word, error)) {
        return std::string();
    }
    if (std::filesystem::is_directory(word, error)) {
        return suggestion(fmt::format("--rootdir {}", escaped(word)));
    }
    return fmt::format(
            ". {} loads a whole device: name its root with --rootdir DIR. check FILE checks one "
            "document",
            command.get_name());
}

std::string describeUnknownCommand(const CLI::App& app, const std::string& word) {
    const std::vector<std::string> names = commandNames(app);
    return fmt::format("there is no command {}{}\nThe commands are {}.", escaped(word),
                       suggestion(nearest(word, names)), joined(names, ", "));
}

// What is wrong with words that nothing accepts, in the order of the command line.
std::string describeExtras(const CLI::App& app) {
    const std::vector<std::string> words = app.remaining(true);
    const CLI::App& command = givenCommand(app);
    if (&command == &app && !words.empty() && !isOption(words.front())) {
        return describeUnknownCommand(app, words.front());
    }
    std::string hint;
    for (const std::string& word : words) {
        if (hint.empty() && !word.empty()) {
            hint = isOption(word) ? suggestion(nearOption(command, word)) : pathHint(command, word);
        }
    }
    return fmt::format("not expected: {}{}", escaped(joined(words, " ")), hint);
}

// CLI11's texts for the wrong number of values: "--format: 1 required NAME missing", "--log: At
// Most 1 required but received 2", "json was given a disallowed flag override".
std::string describeMismatch(const std::string& what) {
    const std::string name = what.substr(0, what.find_first_of(": "));
    const std::string lower = inSmallLetters(what);
    if (lower.find("flag override") != std::string::npos) {
        return fmt::format("{}{} accepts no value", isOption(name) ? "" : "--", name);
    }
    constexpr std::string_view kMost = "at most ";
    if (const size_t most = lower.find(kMost); most != std::string::npos) {
        const std::string count = lower.substr(most + kMost.size());
        return count.starts_with("1 ") ? fmt::format("{} can be given only once", name)
                                       : fmt::format("{} accepts at most {} values", name,
                                                     count.substr(0, count.find(' ')));
    }
    constexpr std::string_view kRequired = " required ";
    constexpr std::string_view kMissing = " missing";
    const size_t form = what.find(kRequired);
    if (form != std::string::npos && what.ends_with(kMissing)) {
        const size_t start = form + kRequired.size();
        return fmt::format("{} needs a value: {}", name,
                           what.substr(start, what.size() - kMissing.size() - start));
    }
    return what;
}

// What is wrong, with nothing that a terminal must not get.
std::string describe(const CLI::App& app, const CLI::ParseError& error) {
    const auto kind = static_cast<CLI::ExitCodes>(error.get_exit_code());
    const std::string what = escaped(error.what());
    if (kind == CLI::ExitCodes::ExtrasError) {
        return describeExtras(app);
    }
    if (kind == CLI::ExitCodes::ArgumentMismatch) {
        return describeMismatch(what);
    }
    constexpr std::string_view kExcludes = " excludes ";
    const size_t excludes = what.find(kExcludes);
    if (kind == CLI::ExitCodes::ExcludesError && excludes != std::string::npos) {
        return fmt::format("{} and {} cannot be used together", what.substr(0, excludes),
                           what.substr(excludes + kExcludes.size()));
    }
    return what;
}

}  // namespace

std::string formOf(const CLI::Option& option) {
    if (option.get_positional()) {
        return option.get_expected_max() > 1 ? " ..." : "";
    }
    return isFlag(option) ? ""
                          : fmt::format(" {}{}", option.get_type_name(),
                                        option.get_required() ? " REQUIRED" : "");
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    return CLI::detail::split(option.get_name(false, true), ',');
}

bool isFlag(const CLI::Option& option) {
    return option.get_items_expected_max() == 0;
}

std::vector<const CLI::Option*> shownOptions(const CLI::App& command, bool arePositional) {
    return command.get_options([arePositional](const CLI::Option* option) {
        return option->get_positional() == arePositional && !option->get_group().empty();
    });
}

void prepareHelp(CLI::App* app) {
    app->formatter(std::make_shared<WrappingFormatter>(helpWidth()));
    for (CLI::Option* const option : app->get_options()) {
        if (isFlag(*option)) {
            option->disable_flag_override();  // --werror=no would otherwise be accepted.
        }
    }
    for (CLI::App* const command : app->get_subcommands(nullptr)) {
        prepareHelp(command);
    }
}

std::vector<std::string> commandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands(nullptr)) {
        names.push_back(command->get_name());
    }
    return names;
}

int explainUsage(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // The help or the version.
        std::ostringstream output;
        app.exit(error, output, output);
        writeOut(output.str());
        return kExitOk;
    }
    const std::vector<CLI::App*> given = app.get_subcommands();
    printError("{}\nSee \"kcodec2_spec{}{} --help\".", describe(app, error),
               given.empty() ? "" : " ", given.empty() ? "" : given.front()->get_name());
    return kExitUsage;
}

}  // namespace kc2::tool
