// The tool's help and its words on wrong usage, fit for any terminal.

#include "commands/HelpText.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/Terminal.h"
#include "base/Text.h"
#include "commands/Commands.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// Where what follows of a line goes.
size_t hangingIndent(std::string_view line, size_t width) {
    const size_t start = std::min(line.find_first_not_of(' '), line.size());
    size_t indent = start == 0 ? 0 : start + 2;
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

size_t helpWidth() {
    constexpr size_t kUsual = 80;
    constexpr size_t kLeast = 20;
    const size_t width = terminalOf(STDOUT_FILENO).width;
    return width == 0 ? kUsual : std::max(width, kLeast);
}

class WrappingFormatter final : public CLI::Formatter {
public:
    explicit WrappingFormatter(size_t width) : mWidth(width) {
        constexpr size_t kWidest = 26;
        column_width(std::min(kWidest, width / 3));
    }

    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override {
        return wrapped(CLI::Formatter::make_help(app, std::move(name), mode), mWidth);
    }

private:
    size_t mWidth;
};

// The command or option that someone may have meant who wrote `word`.
std::string meantBy(const CLI::App& app, const std::string& word) {
    const std::vector<CLI::App*> given = app.get_subcommands();
    std::vector<std::string> names;
    if (word[0] != '-' && given.empty()) {
        for (const CLI::App* const command : app.get_subcommands(nullptr)) {
            names.push_back(command->get_name());
        }
    } else if (word[0] == '-') {
        for (const CLI::Option* const option :
             (given.empty() ? app : *given.front()).get_options()) {
            for (const std::string& name : option->get_lnames()) {
                names.push_back("--" + name);
            }
        }
    }
    return nearest(word.substr(0, word.find('=')), names);
}

}  // namespace

std::string wrapped(const std::string& text, size_t width) {
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        appendWrapped(line, width, &result);
    }
    return result;
}

void wrapHelp(CLI::App* app) {
    app->formatter(std::make_shared<WrappingFormatter>(helpWidth()));
    for (CLI::App* const command : app->get_subcommands(nullptr)) {
        wrapHelp(command);
    }
}

int explainUsage(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // The help or the version.
        std::ostringstream output;
        app.exit(error, output, output);
        std::fputs(output.str().c_str(), stdout);
        return kExitOk;
    }
    std::string what = error.what();
    for (const std::string& word : app.remaining(true)) {
        const std::string meant = word.empty() ? "" : meantBy(app, word);
        if (!meant.empty()) {
            what += ". Did you mean " + meant + "?";
            break;
        }
    }
    const std::vector<CLI::App*> given = app.get_subcommands();
    const std::string command = given.empty() ? "" : " " + given.front()->get_name();
    std::fprintf(stderr, "%s\n\"kcodec2_spec%s --help\" tells more\n", escaped(what).c_str(),
                 command.c_str());
    return kExitUsage;
}

}  // namespace kc2::tool
