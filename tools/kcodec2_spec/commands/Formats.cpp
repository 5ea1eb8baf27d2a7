// kcodec2_spec formats: the pixel formats of the video core.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "base/Print.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "commands/Commands.h"
#include "platform/FormatRows.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

std::string planesOf(const Platform::FormatRow& row) {
    std::string text;
    for (const Platform::TamraBufferLayout::PlaneID plane : row.planes) {
        text.append(text.empty() ? "" : " ").append(Platform::planeName(plane));
    }
    return text;
}

int printUnknown(const std::string& wanted) {
    std::vector<std::string_view> names;
    for (const Platform::FormatRow& row : Platform::kFormatRows) {
        names.emplace_back(row.name);
    }
    std::string near = nearest(wanted, names);
    if (near.empty() && !toWord(wanted)) {  // A part of a name, such as nv12?
        const auto whole = std::find_if(names.begin(), names.end(), [&](std::string_view name) {
            return inSmallLetters(name).find(inSmallLetters(wanted)) != std::string::npos;
        });
        near = whole != names.end() ? *whole : near;
    }
    printError("{} is not a pixel format of the video core.{}", escaped(wanted),
               near.empty() ? " \"kcodec2_spec formats\" lists them."
                            : fmt::format(" Did you mean {}?", near));
    return kExitFindings;
}

// The case of a name is ignored.
bool isMeant(const Platform::FormatRow& row, const std::string& wanted) {
    return editDistance(wanted, row.name, 0) == 0 || toWord(wanted) == *row.format;
}

}  // namespace

bool printFormats(const std::string& wanted) {
    bool isFound = false;
    for (const Platform::FormatRow& row : Platform::kFormatRows) {
        if (!wanted.empty() && !isMeant(row, wanted)) {
            continue;
        }
        if (!isFound) {
            printOut("{:25} {:10}  {:>10}  {:6}  {}\n", "NAME", "VALUE", "DECIMAL", "NUMBER",
                     "PLANES");
        }
        printOut("{:25} {:10}  {:>10}  {:<6}  {}\n", row.name, hexadecimal(*row.format),
                 *row.format, row.colorFormat, planesOf(row));
        isFound = true;
    }
    return isFound;
}

void addFormatsCommand(CLI::App* app, int* exitCode) {
    const auto format = std::make_shared<std::string>();
    CLI::App* const command = app->add_subcommand(
            "formats", "Print the pixel formats: name, value, colour-format number, planes");
    command->footer(
            "Exit codes: 0 fine; 1 FORMAT is not a pixel format; 2 wrong usage, or output that "
            "cannot be written.");
    command->add_option("FORMAT", *format,
                        "Print only this one: its name, or its value in hexadecimal (0x...) or "
                        "decimal, as in a log line");
    command->callback([=] { *exitCode = printFormats(*format) ? kExitOk : printUnknown(*format); });
}

}  // namespace kc2::tool
