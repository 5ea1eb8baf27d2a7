// The entries of a document and their places: names of settings, entries of lists, rows.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "check/Checked.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

struct DocumentName {
    const char* section;
    const char* list;  // "decoders" or "encoders" in the section of codec lists, else empty.
    std::string_view text;
    Span span;  // With its quotes.
};

inline bool isOfNamedValues(SectionType type) {
    return type == SectionType::Features || type == SectionType::Presets ||
           type == SectionType::PerfResourceValues;
}

inline bool isOfCodecs(SectionType type) {
    return type == SectionType::CodecLists || type == SectionType::CodecNames;
}

inline bool isOfNames(SectionType type) {
    return type == SectionType::Names || isOfCodecs(type);
}

// Whether a string looks like several entries of a list: "liba.so, libb.so".
inline bool isSeveralInOne(std::string_view text) {
    constexpr std::string_view kBlanks = " \t";
    constexpr std::string_view kBetween = " \t,;";
    const size_t first = text.find_first_not_of(kBlanks);
    const size_t end = std::min(text.find_first_of(kBetween, first), text.size());
    return text.find_first_not_of(kBetween, end) != std::string_view::npos;
}

// Calls visit(section row, node of the section) for each section that the document has.
template <typename Visit>
void forEachSection(const Document& document, Visit visit) {
    for (const Section& row : kSections) {
        const Node* const node = *row.key != nullptr ? document.section(*row.key) : nullptr;
        if (node != nullptr) {
            visit(row, *node);
        }
    }
}

// Calls visit(name) for each name of a setting.
template <typename Visit>
void forEachSettingName(const Document& document, Visit visit) {
    forEachSection(document, [&](const Section& row, const Node& section) {
        if (isOfNamedValues(row.type) && section.isObject()) {
            for (const Node& member : section.children) {
                visit(DocumentName{*row.key, "", member.key, member.name});
            }
        }
    });
}

// Calls visit(name) for each string in lists of names; with `isWanted`, in sections of such a type.
template <typename Visit>
void forEachEntry(const Document& document, bool (*isWanted)(SectionType), Visit visit) {
    const auto visitList = [&](const char* section, const char* list, const Node& node) {
        for (const Node& entry : node.children) {
            if (entry.isString()) {
                visit(DocumentName{section, list, entry.string, entry.value});
            }
        }
    };
    forEachSection(document, [&](const Section& row, const Node& section) {
        if (!isWanted(row.type)) {
            return;
        }
        if (row.type != SectionType::CodecLists) {
            return visitList(*row.key, "", section);
        }
        for (const char* const* key : fixedMembersOf(row.type)) {
            const Node* const list = *key != nullptr ? findMember(section, *key) : nullptr;
            if (list != nullptr) {
                visitList(*row.key, *key, *list);
            }
        }
    });
}

// The elements of a list that the device uses, in the order in which it reads them: an object in
// place of an array is read in the order of its names.
inline std::vector<const Node*> usedElements(const Document& document, const char* section) {
    std::vector<const Node*> used;
    const Node* const list = document.section(section);
    if (list == nullptr) {
        return used;
    }
    for (const Node& element : list->children) {
        if (element.isUsed()) {
            used.push_back(&element);
        }
    }
    if (list->isObject()) {
        std::sort(used.begin(), used.end(),
                  [](const Node* a, const Node* b) { return a->key < b->key; });
    }
    return used;
}

// An entry that the store has in a list, and where it was written.
template <typename Value>
struct PlacedEntry {
    const Value* value;
    const Document* document;
    Span span;
};

// All entries of a list of the store, in its order, with the document that each came from.
template <typename List>
std::vector<PlacedEntry<typename List::value_type>> placedEntries(const Checked& checked,
                                                                  const char* section,
                                                                  List SpecDocument::*member) {
    std::vector<PlacedEntry<typename List::value_type>> entries;
    const List& whole = checked.whole().*member;
    const std::vector<bool> isOfFirst = keptEntries(checked.before().*member, whole);
    const Document* const documents[] = {checked.documents.front(), checked.documents.back()};
    const std::vector<const Node*> nodes[] = {usedElements(*documents[0], section),
                                              usedElements(*documents[1], section)};
    size_t next[] = {0, 0};
    size_t at = 0;
    for (const auto& value : whole) {
        const size_t from = isOfFirst[at++] ? 0 : 1;
        if (next[from] < nodes[from].size()) {
            entries.push_back({&value, documents[from], nodes[from][next[from]++]->value});
        }
    }
    return entries;
}

}  // namespace kc2::tool
