// What a document says that the library's reader does not look at.

#include <fmt/format.h>

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/Spelling.h"
#include "check/rules/Misspellings.h"
#include "document/SyntaxHints.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

template <typename Visit>
void visitAll(const OutlineNode& node, const Visit& visit) {
    visit(node);
    for (const OutlineNode& child : node.children) {
        visitAll(child, visit);
    }
}

// The names that the reader looks up in an object.
std::vector<std::string_view> knownMembers(bool isRoot, std::string_view section) {
    std::vector<std::string_view> names;
    const auto add = [&](const char* const* key) {
        if (*key != nullptr) {
            names.emplace_back(*key);
        }
    };
    if (isRoot) {
        add(&targetSpecRoot);
        return names;
    }
    for (const Section& row : kSections) {
        if (section.empty()) {
            add(row.key);
        } else if (*row.key != nullptr && section == *row.key) {
            for (const char* const* key : fixedMembersOf(row.type)) {
                add(key);
            }
        }
    }
    return names;
}

// Where a name belongs that is right elsewhere; empty when it is not.
std::string rightPlaceOf(const std::string& name, const KnownSettings& known) {
    const auto isKey = [&](const char* key) { return key != nullptr && name == key; };
    if (isKey(targetSpecRoot)) {
        return "the root";
    }
    for (const Section& row : kSections) {
        if (isKey(*row.key)) {
            return fmt::format("\"{}\"", targetSpecRoot);
        }
        for (const char* const* member : fixedMembersOf(row.type)) {
            if (isKey(*member)) {
                return fmt::format("\"{}\"", *row.key);
            }
        }
    }
    const Setting* const setting = known.catalogue.setting(name);
    return setting != nullptr ? fmt::format("\"{}\"", setting->section) : "";
}

// The members of one object that the reader did not look up.
void reportUnknownMembers(const CheckedDocument& checked, bool isRoot, const std::string& section,
                          const std::vector<const KeptFinding*>& unknown,
                          const KnownSettings& known, const Emit& emit) {
    const std::vector<std::string_view> names = knownMembers(isRoot, section);
    const OutlineNode* const object = isRoot ? &checked.outline.root
                                      : section.empty()
                                              ? findMember(checked.outline.root, targetSpecRoot)
                                              : checked.section(section.c_str());
    const std::string place =
            isRoot ? "the root"
                   : fmt::format("\"{}\"", section.empty() ? targetSpecRoot : section.c_str());
    std::vector<Misspelling> misspellings;
    for (const KeptFinding* const finding : unknown) {
        const std::string rightPlace = rightPlaceOf(finding->name, known);
        std::string near = rightPlace.empty() ? nearest(finding->name, names) : "";
        std::string hint = near.empty() ? "" : fmt::format(". Did you mean \"{}\"?", near);
        hint = rightPlace.empty() ? hint : fmt::format(". It belongs in {}", rightPlace);
        const OutlineNode* const member = findValueAt(checked.outline.root, finding->start);
        misspellings.push_back(
                {member != nullptr ? member->name : Span{finding->start, finding->limit},
                 std::move(near),
                 fmt::format("unknown member \"{}\" of {}, ignored{}", finding->name, place,
                             hint)});
    }
    emitMisspellings(
            checked, std::move(misspellings),
            [&](const std::string& near) {
                return object == nullptr || findMember(*object, near) != nullptr;
            },
            emit);
}

void checkUnknownMembers(const CheckedDocument& checked, const KnownSettings& known,
                         const Emit& emit) {
    std::map<std::pair<FindingKind, std::string>, std::vector<const KeptFinding*>> byObject;
    for (const KeptFinding& finding : checked.document.findings) {
        const bool isSchema =
                finding.kind == FindingKind::UnknownRootMember && finding.name == "$schema";
        if (rowOf(finding.kind).effect == Effect::Ignores && !isSchema) {  // Editors want that one.
            byObject[{finding.kind, finding.section}].push_back(&finding);
        }
    }
    for (const auto& [object, unknown] : byObject) {
        reportUnknownMembers(checked, object.first == FindingKind::UnknownRootMember, object.second,
                             unknown, known, emit);
    }
}

// Of settings the reader keeps one of each name: where it has kept as many as there are members, no
// name is there twice. In large documents that saves a search.
bool hasEachNameOnce(const CheckedDocument& checked, const OutlineNode& object) {
    const auto isKeptWhole = [&](const char* section, const auto& kept) {
        return kept.size() == object.children.size() && checked.section(section) == &object;
    };
    const SpecDocument& content = checked.document.content;
    return object.children.size() < 2 || isKeptWhole(targetSpecFeatures, content.features) ||
           isKeptWhole(targetSpecPresets, content.presets) ||
           isKeptWhole(targetSpecPerfResourceValues, content.perfResourceValues);
}

void checkDuplicateMembers(const CheckedDocument& checked, const KnownSettings& /*known*/,
                           const Emit& emit) {
    visitAll(checked.outline.root, [&](const OutlineNode& object) {
        if (object.kind != '{' || hasEachNameOnce(checked, object)) {
            return;
        }
        std::unordered_map<std::string_view, const OutlineNode*> last;
        for (const OutlineNode& member : object.children) {
            const OutlineNode*& earlier = last[member.key];
            if (earlier != nullptr) {
                emit(checked, member.name,
                     fmt::format("duplicate member \"{}\"; this value is used, not the one at {}",
                                 member.key, checked.source.placeOf(earlier->name.start)),
                     RelatedPlace{&checked.source, earlier->name, ""});
            }
            earlier = &member;
        }
    });
}

void checkLeadingZeros(const CheckedDocument& checked, const KnownSettings& /*known*/,
                       const Emit& emit) {
    visitAll(checked.outline.root, [&](const OutlineNode& node) {
        const std::string_view digits =
                checked.source.text().substr(node.value.start + (node.kind == '-' ? 1 : 0), 2);
        if (node.isNumber() && digits.size() == 2 && digits[0] == '0' &&
            std::isdigit(static_cast<unsigned char>(digits[1])) != 0) {
            emit(checked, node.value,
                 "the leading zero does not make the number octal: it is decimal");
        }
    });
}

void checkLoneMinuses(const CheckedDocument& checked, const KnownSettings& /*known*/,
                      const Emit& emit) {
    visitAll(checked.outline.root, [&](const OutlineNode& node) {
        if (node.kind == '-' && node.value.limit == node.value.start + 1) {
            emit(checked, node.value, "a minus sign without digits counts as 0");
        }
    });
}

void checkHugeNumbers(const CheckedDocument& checked, const KnownSettings& /*known*/,
                      const Emit& emit) {
    visitAll(checked.outline.root, [&](const OutlineNode& node) {
        const std::string_view text = node.isNumber() ? checked.source.textAt(node.value) : "";
        const bool mayBeHuge = text.size() > std::numeric_limits<double>::max_exponent10 ||
                               text.find_first_of("eE") != std::string_view::npos;
        if (mayBeHuge && std::isinf(std::strtod(std::string(text).c_str(), nullptr))) {
            emit(checked, node.value,
                 "the number is too large for any parser to hold: JsonCpp up to 1.9.5 rejects the "
                 "whole document for it");
        }
    });
}

void checkTrailingText(const CheckedDocument& checked, const KnownSettings& /*known*/,
                       const Emit& emit) {
    const std::string_view text = checked.source.text();
    if (checked.outline.limit < text.size()) {
        emit(checked, {checked.outline.limit, text.size()},
             "text after the end of the document, ignored");
    }
}

void checkControlCharacters(const CheckedDocument& checked, const KnownSettings& /*known*/,
                            const Emit& emit) {
    if (checked.outline.root.kind == '\0') {
        return;  // No JSON: the syntax error is the finding.
    }
    for (const Span& span : rawControlCharacters(checked.document.parserText)) {
        const char c = checked.source.text()[span.start];
        emit(checked, span,
             std::string("a string holds a ") +
                     (c == '\n' || c == '\r' ? "line break"
                      : c == '\t'            ? "tab"
                                             : "control character") +
                     " as it is: JsonCpp 1.9.8 and later reject the whole document for it. "
                     "Write an escape, such as \\n, or remove it");
    }
}

constexpr DocumentRule kDocumentRules[] = {
        {{"unknown-member", Severity::Warning,
          "a member that the device ignores, as misspelt ones are"},
         checkUnknownMembers},
        {{"duplicate-member", Severity::Warning, "a name that one object has twice"},
         checkDuplicateMembers},
        {{"leading-zero", Severity::Note, "a number with a leading zero, which is decimal"},
         checkLeadingZeros},
        {{"lone-minus", Severity::Warning, "a minus sign without digits, which counts as 0"},
         checkLoneMinuses},
        {{"number-too-large", Severity::Warning, "a number beyond what a parser can hold"},
         checkHugeNumbers},
        {{"control-character", Severity::Warning, "a raw line break or the like in a string"},
         checkControlCharacters},
        {{"trailing-text", Severity::Warning, "text after the document's end"}, checkTrailingText},
};

}  // namespace

void applyDocumentRules(const CheckedDocument& document, const KnownSettings& known,
                        Report* report) {
    applyRows(kDocumentRules, report, document, known);
}

std::vector<const Rule*> documentRules() {
    return rulesOf(kDocumentRules);
}

}  // namespace kc2::tool
