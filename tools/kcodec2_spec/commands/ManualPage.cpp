// kcodec2_spec man: the manual page, made from the texts of --help.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <sstream>
#include <string>
#include <string_view>

#include "base/Print.h"
#include "base/Text.h"
#include "commands/Commands.h"
#include "commands/HelpText.h"
#include "platform/Version.h"

namespace kc2::tool {

namespace {

// A text that roff prints unchanged: no escape, no request at the start of a line.
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

// Paragraphs; lines that begin with blanks are kept as they are.
void printParagraphs(const std::string& text) {
    std::istringstream lines(text);
    bool isExample = false;
    for (std::string line; std::getline(lines, line);) {
        const bool isIndented = line.rfind("  ", 0) == 0;
        if (isIndented != isExample) {
            writeOut(isIndented ? ".EX\n" : ".EE\n");
            isExample = isIndented;
        }
        printOut("{}\n", line.empty() ? ".PP" : plain(line));
    }
    writeOut(isExample ? ".EE\n" : "");
}

void printOptions(const CLI::App& command, bool arePositional) {
    for (const CLI::Option* const option : shownOptions(command, arePositional)) {
        printOut(".TP\n.B {}{}\n{}\n", plain(option->get_name(arePositional, !arePositional)),
                 plain(formOf(*option)), plain(option->get_description()));
    }
}

std::string usageOf(const CLI::App& command, const std::string& name) {
    const std::string usage = CLI::Formatter().make_usage(&command, name);
    return plain(withoutTrailing(usage.substr(usage.find(name)), '\n'));
}

void printCommand(const CLI::App& command) {
    printOut(".SS {}\n{}.\n.PP\n.B {}\n", plain(command.get_name()),
             plain(command.get_description()),
             usageOf(command, fmt::format("kcodec2_spec {}", command.get_name())));
    printOptions(command, true);
    printOptions(command, false);
    if (!command.get_footer().empty()) {
        writeOut(".PP\n");
        printParagraphs(command.get_footer());
    }
}

void printManual(const CLI::App& tool) {
    printOut(".TH KCODEC2_SPEC 1 \"\" \"kcodec2_spec {}\"\n", KC2_VERSION);
    writeOut(".SH NAME\nkcodec2_spec \\- shows and checks system spec documents\n");
    printOut(".SH SYNOPSIS\n.B {}\n.SH DESCRIPTION\n", usageOf(tool, tool.get_name()));
    printParagraphs(tool.get_description());
    writeOut(".SH OPTIONS\n");
    printOptions(tool, false);
    writeOut(".SH COMMANDS\n");
    for (const CLI::App* const command : tool.get_subcommands(nullptr)) {
        printCommand(*command);
    }
    writeOut(".SH EXIT STATUS\n");
    printParagraphs(tool.get_footer());
}

}  // namespace

void addManualCommand(CLI::App* app) {
    CLI::App* const command = app->add_subcommand("man", "Print the manual page");
    command->footer(kUsualExitCodes);
    command->callback([app] { printManual(*app); });
}

}  // namespace kc2::tool
