// The names in a document, where they are: of its settings, and the entries of its lists.
#pragma once

#include <string>
#include <string_view>

#include "check/rules/Rules.h"
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

// Calls visit(section row, node of the section) for each section that the document has.
template <typename Visit>
void forEachSection(const CheckedDocument& checked, Visit visit) {
    for (const Section& row : kSections) {
        const OutlineNode* const node = *row.key != nullptr ? checked.section(*row.key) : nullptr;
        if (node != nullptr) {
            visit(row, *node);
        }
    }
}

// Calls visit(name) for each name of a setting.
template <typename Visit>
void forEachSettingName(const CheckedDocument& checked, Visit visit) {
    forEachSection(checked, [&](const Section& row, const OutlineNode& section) {
        if (isOfNamedValues(row.type) && section.kind == '{') {
            for (const OutlineNode& member : section.children) {
                visit(DocumentName{*row.key, "", member.key, member.name});
            }
        }
    });
}

// Calls visit(name) for each string in lists of names; with `isWanted`, in sections of such a type.
template <typename Visit>
void forEachEntry(const CheckedDocument& checked, bool (*isWanted)(SectionType), Visit visit) {
    const auto visitList = [&](const char* section, const char* list, const OutlineNode& node) {
        for (const OutlineNode& entry : node.children) {
            if (entry.kind == '"') {
                visit(DocumentName{section, list, entry.string, entry.value});
            }
        }
    };
    forEachSection(checked, [&](const Section& row, const OutlineNode& section) {
        if (!isWanted(row.type)) {
            return;
        }
        if (row.type != SectionType::CodecLists) {
            return visitList(*row.key, "", section);
        }
        for (const char* const* key : fixedMembersOf(row.type)) {
            const OutlineNode* const list = *key != nullptr ? findMember(section, *key) : nullptr;
            if (list != nullptr) {
                visitList(*row.key, *key, *list);
            }
        }
    });
}

}  // namespace kc2::tool
