// How kcodec2_spec diff reports what differs.

#include "commands/DiffOutput.h"

#include <fmt/format.h>
#include <json/value.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/JsonPrinter.h"
#include "base/Markdown.h"
#include "base/Print.h"
#include "base/Terminal.h"
#include "base/Text.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

const SnapshotEntry& entryOf(const Change& change) {
    return change.after != nullptr ? *change.after : *change.before;
}

// A text of the entry; where it differs, that of both sides.
std::string changedText(const Change& change, std::string SnapshotEntry::*text) {
    const std::string& after = entryOf(change).*text;
    const std::string& before = change.before != nullptr ? change.before->*text : after;
    return before == after ? after : fmt::format("{} -> {}", before, after);
}

// What a store that only keeps a name still decides: a later document cannot set the name any more.
std::string remarkOn(const DiffReport& report, const SectionChanges& section,
                     const Change& change) {
    if (section.after->form != SectionForm::Named ||
        (change.before != nullptr && change.after != nullptr)) {
        return std::string();
    }
    const bool isInA = change.before != nullptr;
    const Loaded& owner = isInA ? report.a : report.b;
    return entryOf(change).origin == owner.systemSpecOrigin
                   ? fmt::format("a private file could set it in {}, but not in {}",
                                 isInA ? "B" : "A", isInA ? "A" : "B")
                   : std::string();
}

// The line for a comparison without differences.
std::string withoutDifferences(const DiffReport& report) {
    return report.rejectedDocument() != nullptr
                   ? fmt::format(
                             "no difference in effect, but a device rejects the "
                             "document of {}",
                             report.rejectedDocument())
                   : "no difference in effect";
}

// --- Text ---------------------------------------------------------------------------------------

void printSide(const char* name, const Loaded& side, const Colours& colours) {
    printOut("{}{}  {}{}\n   system spec document  {}\n   private overlay       {}\n", colours.bold,
             name, escaped(side.title), colours.plain, escaped(side.systemSpec),
             escaped(side.overlay));
}

// Only one section has a meaning when it is empty, and it is the opposite of what an empty list
// suggests.
std::vector<std::string> whenEmpty(const SectionChanges& section) {
    std::vector<std::string> lines;
    for (const auto& [name, side] :
         {std::pair("A", section.before), std::pair("B", section.after)}) {
        if (*side->whenEmpty != '\0' && side->entries.empty()) {
            lines.push_back(fmt::format("{} has no entries{}", name, side->whenEmpty));
        }
    }
    return lines;
}

// What is below a change: the meaning of a setting that differs, and a remark on one that does not.
std::string noteOn(const DiffReport& report, const SectionChanges& section, const Change& change,
                   bool isSeen) {
    if (!isSeen) {
        return remarkOn(report, section, change);
    }
    const Setting* const setting = report.catalogue.setting(entryOf(change).name);
    return setting != nullptr ? setting->meaning : std::string();
}

void printSection(const DiffReport& report, const SectionChanges& section, bool isSeen,
                  const Colours& colours) {
    const char* const title = isSeen ? "" : "Stored differently, same answers: ";
    printOut("\n{}{}{} ({}){}\n", colours.bold, title, section.after->title, section.changes.size(),
             colours.plain);
    for (const std::string& line : whenEmpty(section)) {
        printOut("  {}\n", line);
    }
    const bool isList = section.after->form == SectionForm::List;
    const auto nameOf = [isList](const Change& change) {
        const size_t index = change.after != nullptr ? change.indexAfter : change.indexBefore;
        return fmt::format("{}{}", isList ? fmt::format("#{} ", index + 1) : "",
                           escaped(entryOf(change).name));
    };
    size_t nameWidth = 0;
    size_t valueWidth = 0;
    for (const Change& change : section.changes) {
        nameWidth = std::max(nameWidth, nameOf(change).size());
        valueWidth = std::max(valueWidth, changedText(change, &SnapshotEntry::text).size());
    }
    for (const Change& change : section.changes) {
        const auto [sign, colour] = change.after == nullptr    ? std::pair('-', colours.red)
                                    : change.before == nullptr ? std::pair('+', colours.green)
                                                               : std::pair('~', colours.yellow);
        printOut("  {}{} {}{}  {}{}{}\n", colour, sign, padded(nameOf(change), nameWidth),
                 colours.plain, padded(changedText(change, &SnapshotEntry::text), valueWidth),
                 valueWidth == 0 ? "" : "  ", changedText(change, &SnapshotEntry::origin));
        const std::string note = noteOn(report, section, change, isSeen);
        if (!note.empty()) {
            printOut("      {}{}{}\n", colours.faint, escaped(note), colours.plain);
        }
    }
}

// --- JSON ---------------------------------------------------------------------------------------

Json::Value toJson(const SnapshotEntry* entry, size_t index, bool isList) {
    Json::Value json;
    if (entry != nullptr) {
        json["value"] = entry->value;
        json["from"] = entry->origin;
        if (isList) {
            json["index"] = Json::UInt64(index);
        }
    }
    return json;
}

Json::Value toJson(const Loaded& side) {
    Json::Value json;
    json["title"] = side.title;
    json["systemSpec"] = side.systemSpec;
    json["overlay"] = side.overlay;
    json["isRejected"] = side.isRejected;
    return json;
}

Json::Value toJson(const DiffReport& report, const std::vector<SectionChanges>& differences,
                   bool isSeen) {
    Json::Value array = Json::arrayValue;
    for (const SectionChanges& section : differences) {
        const bool isList = section.after->form == SectionForm::List;
        for (const Change& change : section.changes) {
            const std::string note = noteOn(report, section, change, isSeen);
            Json::Value json;
            json["section"] = section.after->key;
            json["name"] = entryOf(change).name;
            json["old"] = toJson(change.before, change.indexBefore, isList);
            json["new"] = toJson(change.after, change.indexAfter, isList);
            json[isSeen ? "meaning" : "remark"] = note.empty() ? Json::Value() : Json::Value(note);
            array.append(json);
        }
    }
    return array;
}

// --- Markdown -----------------------------------------------------------------------------------

// One side of a change, in a cell: its value, or for an entry without one, its place.
std::string cellOf(const SnapshotEntry* entry, size_t index, bool isList) {
    if (entry == nullptr) {
        return "absent";
    }
    const std::string place = isList ? fmt::format("#{}", index + 1) : "listed";
    return entry->text.empty() ? place
           : isList            ? fmt::format("{} ({})", entry->text, place)
                               : entry->text;
}

void printMarkdownTable(const DiffReport& report, const std::vector<SectionChanges>& differences,
                        bool isSeen) {
    printOut("\n| Section | Name | A | B | From | {} |\n|---|---|---|---|---|---|\n",
             isSeen ? "Meaning" : "Remark");
    for (const SectionChanges& section : differences) {
        const bool isList = section.after->form == SectionForm::List;
        for (const Change& change : section.changes) {
            printOut("| {} | {} | {} | {} | {} | {} |\n", section.after->title,
                     markdownCode(entryOf(change).name),
                     markdownText(cellOf(change.before, change.indexBefore, isList)),
                     markdownText(cellOf(change.after, change.indexAfter, isList)),
                     markdownText(changedText(change, &SnapshotEntry::origin)),
                     markdownText(noteOn(report, section, change, isSeen)));
        }
    }
    for (const SectionChanges& section : differences) {
        for (const std::string& line : whenEmpty(section)) {
            printOut("\n{}: {}\n", section.after->title, line);
        }
    }
}

}  // namespace

const char* DiffReport::rejectedDocument() const {
    if ((a.isTree || !a.isRejected) == (b.isTree || !b.isRejected)) {
        return nullptr;
    }
    return a.isRejected && !a.isTree ? "A" : "B";
}

void printDiffText(const DiffReport& report) {
    const Colours colours = coloursOf(terminalOf(STDOUT_FILENO));
    printSide("A", report.a, colours);
    printSide("B", report.b, colours);
    for (const SectionChanges& section : report.differences.seen) {
        printSection(report, section, true, colours);
    }
    for (const SectionChanges& section : report.differences.unseen) {
        printSection(report, section, false, colours);
    }
    if (report.differences.seen.empty()) {
        printOut("\n{}\n", withoutDifferences(report));
    }
}

void printDiffJson(const DiffReport& report) {
    Json::Value root;
    root["a"] = toJson(report.a);
    root["b"] = toJson(report.b);
    root["differences"] = toJson(report, report.differences.seen, true);
    root["sameAnswers"] = toJson(report, report.differences.unseen, false);
    print(root);
}

void printDiffMarkdown(const DiffReport& report) {
    size_t count = 0;
    for (const SectionChanges& section : report.differences.seen) {
        count += section.changes.size();
    }
    printOut("**{}**\n\n", count == 0 ? withoutDifferences(report)
                                      : fmt::format("{} in effect", counted(count, "difference")));
    for (const auto& [name, side] : {std::pair("A", &report.a), std::pair("B", &report.b)}) {
        printOut("- {}: {}, system spec document {}, private overlay {}\n", name,
                 markdownCode(side->title), markdownCode(side->systemSpec),
                 markdownCode(side->overlay));
    }
    if (count != 0) {
        printMarkdownTable(report, report.differences.seen, true);
    }
    if (!report.differences.unseen.empty()) {
        writeOut("\nStored differently, same answers:\n");
        printMarkdownTable(report, report.differences.unseen, false);
    }
}

}  // namespace kc2::tool
