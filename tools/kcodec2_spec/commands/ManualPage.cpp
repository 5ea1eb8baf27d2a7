// kcodec2_spec man: the manual page, made from the texts of --help.

#include <CLI/CLI.hpp>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/Print.h"
#include "commands/CommandText.h"
#include "commands/Commands.h"
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

void printOptions(const std::vector<OptionText>& options) {
    for (const OptionText& option : options) {
        printOut(".TP\n.B {}{}\n{}\n", plain(option.label), plain(option.form),
                 plain(option.description));
    }
}

void printCommand(const CommandText& command) {
    printOut(".SS {}\n{}.\n.PP\n.B {}\n", plain(command.name), plain(command.description),
             plain(command.usage));
    printOptions(command.arguments);
    printOptions(command.options);
    if (!command.footer.empty()) {
        writeOut(".PP\n");
        printParagraphs(command.footer);
    }
}

int printManual(const CLI::App& app) {
    const std::vector<CommandText> commands = commandTexts(app);
    const CommandText& tool = commands.front();
    printOut(".TH KCODEC2_SPEC 1 \"\" \"kcodec2_spec {}\"\n", KC2_VERSION);
    writeOut(".SH NAME\nkcodec2_spec \\- shows and checks system spec documents\n");
    printOut(".SH SYNOPSIS\n.B {}\n.SH DESCRIPTION\n", plain(tool.usage));
    printParagraphs(tool.description);
    writeOut(".SH OPTIONS\n");
    printOptions(tool.options);
    writeOut(".SH COMMANDS\n");
    for (size_t i = 1; i < commands.size(); ++i) {
        printCommand(commands[i]);
    }
    writeOut(".SH EXIT STATUS\n");
    printParagraphs(tool.footer);
    return kExitOk;
}

}  // namespace

void addManualCommand(CLI::App* app, int* exitCode) {
    CLI::App* const command = app->add_subcommand("man", "Print the manual page");
    command->footer(kUsualExitCodes);
    command->callback([=] { *exitCode = printManual(*app); });
}

}  // namespace kc2::tool
