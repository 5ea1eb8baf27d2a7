// What kcodec2_spec explain knows about a name.

#include "commands/ExplainTopics.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

#include "base/Print.h"
#include "base/Text.h"
#include "catalogue/Explanation.h"
#include "catalogue/HeaderTexts.h"
#include "check/Checks.h"
#include "check/rules/Rules.h"
#include "commands/Commands.h"
#include "device/DevicePaths.h"
#include "log/LineMatch.h"
#include "log/LogLines.h"
#include "platform/FormatRows.h"
#include "targetspec/reading/BuiltInDocuments.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// An explanation is its title, then lines that begin with what they are about.
void printTitle(std::string_view name) {
    printOut("{}\n", escaped(name));
}

// Prints nothing for an empty text.
void printLine(std::string_view title, std::string_view text) {
    if (!text.empty()) {
        writeOut(formatted(Explanation::Line{std::string(title), std::string(text)}));
    }
}

// Prints what `explained` finds of that name, or returns false.
template <auto explained>
bool explainFound(const Catalogue& catalogue, const std::string& name) {
    const std::optional<Explanation> explanation = explained(catalogue, name);
    writeOut(explanation ? formatted(*explanation) : "");
    return explanation.has_value();
}

bool explainFormat(const Catalogue& /*catalogue*/, const std::string& name) {
    return printFormats(name);
}

void printCheck(const Check& check) {
    printLine("check", fmt::format("{}: {}", check.id, check.summary));
}

// Which checks report what a device skips for this reason.
void printChecksForReason(std::string_view reason) {
    for (const Check* const check : checksForReason(reason)) {
        printCheck(*check);
    }
}

// Why a value was skipped, as the device logs it.
bool explainReason(const Catalogue&, const std::string& name) {
    if (checksForReason(name).empty()) {
        return false;
    }
    const LogLine& line = logLine(LineId::Skipped);
    printTitle(name);
    printLine("log", fmt::format("a reason in \"{}\"", line.text));
    printLine("meaning", line.meaning);
    printLine("to do", line.advice);
    printChecksForReason(name);
    return true;
}

bool explainCheckGroup(const Catalogue&, const std::string& name) {
    const auto group = std::find_if(std::begin(kCheckGroups), std::end(kCheckGroups),
                                    [&](const CheckGroup& one) { return name == one.name; });
    if (group == std::end(kCheckGroups)) {
        return false;
    }
    printTitle(group->name);
    printLine("group", fmt::format("of checks: {}", group->title));
    for (const Check& check : kChecks) {
        if (isInGroup(check, group->name)) {
            printCheck(check);
        }
    }
    return true;
}

// How a load chooses a chip's document is what the header says about the function that does.
bool explainChip(const Catalogue& catalogue, const std::string& name) {
    const auto chip = std::find_if(
            std::begin(kChipDocuments), std::end(kChipDocuments),
            [&](const ChipDocument& row) { return *row.chip != '\0' && name == row.chip; });
    if (chip == std::end(kChipDocuments)) {
        return false;
    }
    printTitle(chip->chip);
    printLine("chip", fmt::format("built-in document {}; \"kcodec2_spec defaults {}\" prints it",
                                  chip->number, chip->number));
    for (const HeaderText* const text : headerTextsOf("getPrivateConfig")) {
        printLine("chosen", fmt::format("{}: {}", text->name, text->paragraphs.front().text));
    }
    const auto hasChip = [&](const std::vector<std::string>& chips) {
        return std::find(chips.begin(), chips.end(), name) != chips.end();
    };
    for (const Setting& setting : catalogue.settings()) {
        printLine("setting", hasChip(setting.chips) ? setting.name : "");
    }
    for (const CodecComponent& component : catalogue.components()) {
        printLine("component", hasChip(component.chips) ? component.name : "");
    }
    return true;
}

bool explainComponentVariant(const Catalogue& catalogue, const std::string& name) {
    if (std::find(std::begin(kComponentVariants), std::end(kComponentVariants), name) ==
        std::end(kComponentVariants)) {
        return false;
    }
    constexpr CheckId kWithoutBase = "variant-without-base";
    printTitle(name);
    printLine("ending", "marks a variant of the component without this ending");
    for (const CodecComponent& component : catalogue.components()) {
        printLine("component", component.name.ends_with(name) ? component.name : "");
    }
    printCheck(*kWithoutBase);
    return true;
}

void printHeaderText(const HeaderText& text) {
    printTitle(text.name);
    printLine("declared", text.declaration);
    for (const HeaderParagraph& paragraph : text.paragraphs) {
        printLine(paragraph.title, paragraph.text);
    }
}

// A name of the exported headers; of a plane also which formats have it.
bool explainDeclaration(const Catalogue&, const std::string& name) {
    const std::vector<const HeaderText*> texts = headerTextsOf(name);
    for (const HeaderText* const text : texts) {
        printHeaderText(*text);
        for (const Platform::FormatRow& row : Platform::kFormatRows) {
            const bool hasPlane =
                    std::any_of(row.planes.begin(), row.planes.end(),
                                [&](const Platform::TamraBufferLayout::PlaneID plane) {
                                    return text->name == Platform::planeName(plane);
                                });
            printLine("format", hasPlane ? row.name : "");
        }
    }
    return !texts.empty();
}

void printMentions(const std::string& term) {
    printTitle(term);
    for (const HeaderMention& mention : headerMentionsOf(term)) {
        printLine("see", fmt::format("{}: {}", mention.text->name, mention.paragraph->text));
    }
}

std::string_view lastPartOf(std::string_view path) {
    return path.substr(path.rfind('/') == std::string_view::npos ? 0 : path.rfind('/') + 1);
}

// The property and the files of the device that a load depends on, with or without their directory.
constexpr const char* kDeviceNames[] = {kVariantProperty, kFallbackSystemSpec, kPrivateConfig,
                                        kCodecTestTool};

bool explainDeviceName(const Catalogue&, const std::string& name) {
    for (const std::string known : kDeviceNames) {
        if (name == known || lastPartOf(name) == lastPartOf(known)) {
            printMentions(name == known ? known : std::string(lastPartOf(known)));
            return true;
        }
    }
    return false;
}

// A number that the library returns, such as 0xFFFFFFFF, also written as -1.
bool explainReturnedNumber(const Catalogue&, const std::string& name) {
    const std::optional<uint32_t> word = toWord(name);
    if (!word || headerMentionsOf(hexadecimal(*word)).empty()) {
        return false;
    }
    printMentions(hexadecimal(*word));
    return true;
}

// A document, whose lines keep their places below each other.
void printDocument(const char* title, std::string_view document) {
    for (size_t start = 0; start < document.size();) {
        const size_t limit = std::min(document.find('\n', start), document.size());
        printLine(start == 0 ? title : "", document.substr(start, limit - start));
        start = limit + 1;
    }
}

bool explainCheck(const Catalogue&, const std::string& name) {
    const Check* const check = findCheck(name);
    if (check == nullptr) {
        return false;
    }
    printTitle(check->id);
    printLine("finds", check->summary);
    printLine("meaning", check->meaning);
    printLine("fix", check->fix);
    printDocument("example", check->mistake);
    printDocument("fixed", check->fixed);
    printLine("example",
              *check->whyNoExample != '\0' ? fmt::format("none: {}", check->whyNoExample) : "");
    printLine("severity",
              fmt::format("{}{}", nameOf(check->severity), check->isRejection ? ", always" : ""));
    for (const CheckGroup& group : kCheckGroups) {
        if (isInGroup(*check, group.name)) {
            printLine("group", fmt::format("{}: {}", group.name, group.title));
        }
    }
    return true;
}

void printLogLine(const LogLine& line) {
    printTitle(line.text);
    printLine("log", fmt::format("{} {}, {}", letterOf(line.priority), line.tag, line.step));
    printLine("written", line.gate == 0 ? "always"
                                        : fmt::format("if the level word has a bit of {}",
                                                      hexadecimal(line.gate)));
    printLine("meaning", line.meaning);
    printLine("to do", std::string_view(line.advice) == "-" ? "" : line.advice);
}

bool explainLogText(const Catalogue& catalogue, const std::string& text) {
    const AskedText asked = matchAsked(text);
    for (const LogLine* const line : asked.rows) {
        printLogLine(*line);
    }
    printLine("values", joined(asked.values, ", "));
    for (const std::string& value : asked.values) {
        printChecksForReason(value);
    }
    const bool isSetting =
            !asked.setting.empty() && explainFound<explainedSetting>(catalogue, asked.setting);
    return !asked.rows.empty() || isSetting;
}

// A new topic is a function above and a row here.
constexpr bool (*kTopics[])(const Catalogue&, const std::string&) = {
        explainFound<explainedSetting>,
        explainFound<explainedSection>,
        explainFound<explainedComponent>,
        explainFound<explainedCode>,
        explainFormat,
        explainCheck,
        explainReason,
        explainCheckGroup,
        explainChip,
        explainComponentVariant,
        explainDeclaration,
        explainDeviceName,
        explainReturnedNumber,
        explainLogText,
};

}  // namespace

bool explainTopic(const Catalogue& catalogue, const std::string& name) {
    return std::any_of(std::begin(kTopics), std::end(kTopics),
                       [&](const auto& topic) { return topic(catalogue, name); });
}

}  // namespace kc2::tool
