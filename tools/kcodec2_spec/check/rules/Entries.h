// The entries of a document and their places: names of settings, entries of lists, rows.
#pragma once

#include <algorithm>
#include <iterator>
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

// What is between the commas, semicolons and blanks of a text; nothing where there are none.
inline std::vector<std::string_view> partsOf(std::string_view text) {
    constexpr std::string_view kBetween = " ,;";
    std::vector<std::string_view> parts;
    const auto has = [&](char c) { return text.find(c) != std::string_view::npos; };
    if (!std::any_of(kBetween.begin(), kBetween.end(), has)) {
        return parts;  // As nearly always, and this test is fast.
    }
    for (size_t at = 0; (at = text.find_first_not_of(kBetween, at)) != std::string_view::npos;) {
        const size_t end = std::min(text.find_first_of(kBetween, at), text.size());
        parts.push_back(text.substr(at, end - at));
        at = end;
    }
    return parts;
}

// Whether a string looks like several entries of a list: "liba.so, libb.so". A blank may be in one
// name, unless it is between file names.
inline bool isSeveralInOne(std::string_view text) {
    const std::vector<std::string_view> parts = partsOf(text);
    const auto hasPoint = [](std::string_view part) {
        return part.find('.') != std::string_view::npos;
    };
    return parts.size() > 1 && (text.find_first_of(",;") != std::string_view::npos ||
                                std::all_of(parts.begin(), parts.end(), hasPoint));
}

// Whether a perf word looks like several: "0x40800000, 0x5DC".
inline bool isSeveralWords(std::string_view text) {
    const std::vector<std::string_view> parts = partsOf(text);
    const auto isWord = [](std::string_view part) {
        part.remove_prefix(part.starts_with("0x") || part.starts_with("0X") ? 2 : 0);
        return !part.empty() &&
               part.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
    };
    return parts.size() > 1 && std::all_of(parts.begin(), parts.end(), isWord);
}

// The section of that key; null when there is none.
inline const Section* sectionOf(std::string_view key) {
    const auto row = std::find_if(std::begin(kSections), std::end(kSections), [&](const auto& one) {
        return *one.key != nullptr && key == *one.key;
    });
    return row != std::end(kSections) ? &*row : nullptr;
}

// Whether a setting is for a phone that is being debugged.
inline bool isDebugName(std::string_view name) {
    return name.starts_with("debug_");
}

// A name in a section of named values; null when the document does not have it.
inline const Node* memberOf(const Document& document, const std::string& section,
                            const std::string& name) {
    const Node* const node = document.section(section);
    return node != nullptr ? findMember(*node, name) : nullptr;
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

// Calls visit(element) for each element or member of a section that the device uses, in the order
// of the text.
template <typename Visit>
void forEachUsed(const Document& document, const char* section, Visit visit) {
    const Node* const whole = document.section(section);
    if (whole == nullptr) {
        return;
    }
    for (const Node& element : whole->children) {
        if (element.isUsed()) {
            visit(element);
        }
    }
}

// The elements of a list that the device uses, in the order in which it reads them: an object in
// place of an array is read in the order of its names.
inline std::vector<const Node*> usedElements(const Document& document, const char* section) {
    std::vector<const Node*> used;
    forEachUsed(document, section, [&](const Node& element) { used.push_back(&element); });
    const Node* const list = document.section(section);
    if (list != nullptr && list->isObject()) {
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
