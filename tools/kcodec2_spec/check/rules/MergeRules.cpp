// What the documents of a load result in together; a document alone is a load of one. Which value
// is used is found by comparing the store with the documents: no merge rule is repeated here.

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

namespace {

void checkListedTwice(const Checked& checked, const Section& row, Report* report) {
    std::unordered_map<std::string_view, const PlacedEntry<std::string>*> places;
    const auto entries = placedEntries(checked, *row.key, row.names);
    for (const PlacedEntry<std::string>& entry : entries) {
        const PlacedEntry<std::string>& earlier =
                *places.emplace(*entry.value, &entry).first->second;
        if (&earlier != &entry && !entry.document->isBuiltIn()) {
            const Source& source = earlier.document->source;
            report->add(
                    "listed-twice", *entry.document, entry.span,
                    fmt::format("\"{}\" is in {} already, from {}: the list keeps both",
                                *entry.value, *row.key,
                                source.placeSeenFrom(entry.document->source, earlier.span.start)),
                    besides(source, earlier.span));
        }
    }
}

void checkSeveralInOne(const Document& document, Report* report) {
    forEachEntry(document, isOfNames, [&](const DocumentName& name) {
        if (isSeveralInOne(name.text)) {
            report->add("entries-in-one", document, name.span,
                        fmt::format("\"{}\" is one entry with this name: write each entry in its "
                                    "own quotes",
                                    name.text));
        }
    });
}

// The members of a section that the device uses, by name.
std::unordered_map<std::string_view, const Node*> usedMembers(const Document& document,
                                                              const char* section) {
    std::unordered_map<std::string_view, const Node*> members;
    forEachUsed(document, section,
                [&](const Node& member) { members.emplace(member.key, &member); });
    return members;
}

// Reports each name that both documents set: to the same value, or one value has no effect.
template <typename Values>
void checkNamesOfBoth(const Checked& checked, const char* section, Values SpecDocument::*member,
                      Report* report) {
    const Document& first = *checked.documents[0];
    const Document& second = *checked.documents[1];
    const Values& whole = checked.whole().*member;
    const auto nodesOfFirst = usedMembers(first, section);
    forEachUsed(second, section, [&](const Node& node) {
        const auto other = nodesOfFirst.find(node.key);
        if (other == nodesOfFirst.end()) {
            return;
        }
        const std::string name(node.key);
        const Span place = other->second->value;
        const auto& before = (first.content.*member).at(name);
        const auto& after = (second.content.*member).at(name);
        if (before == after) {
            report->add("name-repeated", second, node.value,
                        fmt::format("{} is set to the same value at {}", name,
                                    first.source.placeSeenFrom(second.source, place.start)),
                        besides(first.source, place));
            return;
        }
        const bool isFirstUsed = whole.at(name) == before;
        const Document& loser = isFirstUsed ? second : first;
        const Document& winner = isFirstUsed ? first : second;
        const Span used = isFirstUsed ? place : node.value;
        report->add("name-without-effect", loser, isFirstUsed ? node.value : place,
                    fmt::format("{} has no effect here: the value at {} is used", name,
                                winner.source.placeSeenFrom(loser.source, used.start)),
                    besides(winner.source, used));
    });
}

std::string_view withoutBlanksAround(std::string_view text) {
    const size_t start = text.find_first_not_of(kJsonBlanks);
    return start == std::string_view::npos
                   ? std::string_view()
                   : text.substr(start, text.find_last_not_of(kJsonBlanks) + 1 - start);
}

// The library's text has a line break before it that its source file does not have.
bool isCopyOfBuiltIn(const Document& document) {
    const std::string_view text = withoutBlanksAround(document.text);
    return std::any_of(
            std::begin(kChipDocuments), std::end(kChipDocuments),
            [&](const ChipDocument& row) { return text == withoutBlanksAround(row.text); });
}

void checkSharedNames(const Checked& checked, Report* report) {
    if (!checked.hasWrittenOverlay() || isCopyOfBuiltIn(*checked.documents[1])) {
        return;  // A built-in document is there to fill the gaps.
    }
    forEachContainer([&](const char* const* key, auto member) {
        if constexpr (requires(SpecDocument content) { (content.*member).begin()->second; }) {
            checkNamesOfBoth(checked, *key, member, report);
        }
    });
}

void checkResetLevels(const Checked& checked, Report* report) {
    const Document& overlay = *checked.documents.back();
    std::vector<std::string> absent;
    for (const auto& [key, from, to, node] : changedLevels(checked)) {
        const std::string change = fmt::format("{} from {} to {}", key, from, to);
        if (node == nullptr) {
            absent.push_back(change);
        } else {
            report->add("levels-reset", overlay, node->value,
                        fmt::format("this document's \"{}\" changes {}", targetSpecDV, change));
        }
    }
    if (!absent.empty()) {
        report->add("levels-reset", overlay, overlay.section(targetSpecDV)->name,
                    fmt::format("this document's \"{}\" changes {}: a level that it does not have "
                                "becomes 0",
                                targetSpecDV, joined(absent, " and ")));
    }
}

}  // namespace

void checkMerging(const Checked& checked, Report* report) {
    checked.forEachWritten(
            [report](const Document& document) { checkSeveralInOne(document, report); });
    for (const Section& row : kSections) {
        if (row.type == SectionType::Names) {
            checkListedTwice(checked, row, report);
        }
    }
    checkSharedNames(checked, report);
    checkResetLevels(checked, report);
}

}  // namespace kc2::tool
