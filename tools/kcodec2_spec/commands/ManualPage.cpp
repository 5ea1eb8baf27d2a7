// kcodec2_spec man: the manual page, made from what --help shows.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "commands/CommandText.h"
#include "commands/Commands.h"
#include "platform/Version.h"

namespace kc2::tool {

namespace {

// A text that roff shows as it is: no escape, no request at the start of a line.
std::string plain(std::string_view text) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (i == 0 && (c == '.' || c == '\'')) {
            result += "\\&";
        }
        if (c == '\\') {
            result += "\\e";
        } else if (c == '-') {
            result += "\\-";
        } else if (c == '\'') {
            result += "\\(aq";
        } else {
            result += c;
        }
    }
    return result;
}

// Paragraphs; lines that begin with blanks are shown as they are.
void printParagraphs(const std::string& text) {
    std::istringstream lines(text);
    bool isExample = false;
    for (std::string line; std::getline(lines, line);) {
        const bool isIndented = line.rfind("  ", 0) == 0;
        if (isIndented != isExample) {
            std::puts(isIndented ? ".EX" : ".EE");
            isExample = isIndented;
        }
        std::puts(line.empty() ? ".PP" : plain(line).c_str());
    }
    std::fputs(isExample ? ".EE\n" : "", stdout);
}

void printOptions(const std::vector<OptionText>& options) {
    for (const OptionText& option : options) {
        std::printf(".TP\n.B %s\n%s\n", plain(option.label + option.form).c_str(),
                    plain(option.description).c_str());
    }
}

void printCommand(const CommandText& command) {
    std::printf(".SS %s\n%s.\n.PP\n.B %s\n", plain(command.name).c_str(),
                plain(command.description).c_str(), plain(command.usage).c_str());
    printOptions(command.arguments);
    printOptions(command.options);
    if (!command.footer.empty()) {
        std::puts(".PP");
        printParagraphs(command.footer);
    }
}

int printManual(const CLI::App& app) {
    const std::vector<CommandText> commands = commandTexts(app);
    const CommandText& tool = commands.front();
    std::puts(".TH KCODEC2_SPEC 1 \"\" \"kcodec2_spec " KC2_VERSION "\"");
    std::puts(".SH NAME\nkcodec2_spec \\- shows and checks system spec documents");
    std::printf(".SH SYNOPSIS\n.B %s\n", plain(tool.usage).c_str());
    std::puts(".SH DESCRIPTION");
    printParagraphs(tool.description);
    std::puts(".SH OPTIONS");
    printOptions(tool.options);
    std::puts(".SH COMMANDS");
    for (size_t i = 1; i < commands.size(); ++i) {
        printCommand(commands[i]);
    }
    std::puts(".SH EXIT STATUS");
    printParagraphs(tool.footer);
    return kExitOk;
}

}  // namespace

void addManualCommand(CLI::App* app, int* exitCode) {
    app->add_subcommand("man", "Print the manual page")->callback([=] {
        *exitCode = printManual(*app);
    });
}

}  // namespace kc2::tool
