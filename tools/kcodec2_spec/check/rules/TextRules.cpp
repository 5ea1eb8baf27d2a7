// Mistakes in the text of a document that the library's reader does not look for.

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Misspellings.h"
#include "check/rules/Rules.h"
#include "check/rules/WrongLevels.h"
#include "document/SyntaxHints.h"
#include "document/Tokens.h"

namespace kc2::tool {

namespace {

template <typename Visit>
void visitAll(const Node& node, const Visit& visit) {
    visit(node);
    for (const Node& child : node.children) {
        visitAll(child, visit);
    }
}

// Editors look for their schema here.
constexpr std::string_view kSchemaMember = "$schema";

// Whether a member has another finding.
using Covers = std::function<bool(const Node& member)>;

// The members of one object that the reader did not look up.
void reportUnknownMembers(const Document& document, const Node& object, std::string_view place,
                          const std::vector<std::string_view>& names, const KnownSettings& known,
                          const Covers& isReported, Report* report) {
    std::vector<Misspelling> others;
    std::vector<Misspelling> sections;  // A whole section is lost, so it is an error.
    const bool isVideo = &object == document.video();
    for (const Node& member : object.children) {
        const bool isUnknown = member.has(FindingKind::UnknownMember) ||
                               member.has(FindingKind::UnknownRootMember);
        if (!isUnknown || isReported(member) ||
            (&object == &document.tree.root && member.key == kSchemaMember)) {
            continue;
        }
        const std::string rightPlace = rightPlaceOf(member.key, known);
        std::string near = rightPlace.empty() ? nearest(member.key, names) : "";
        const std::string hint = !rightPlace.empty() ? fmt::format(". It belongs in {}", rightPlace)
                                 : near.empty()      ? ""
                                                     : fmt::format(". Did you mean \"{}\"?", near);
        (isVideo && !near.empty() ? sections : others)
                .push_back({member.name, std::move(near),
                            fmt::format("unknown member \"{}\" of {}, ignored{}", member.key, place,
                                        hint)});
    }
    const auto isPresent = [&](const std::string& near) {
        return findMember(object, near) != nullptr;
    };
    reportMisspellings("section-misspelt", document, std::move(sections), isPresent, report);
    reportMisspellings("unknown-member", document, std::move(others), isPresent, report);
}

std::vector<std::string_view> namesOf(std::span<const char* const* const> keys) {
    std::vector<std::string_view> names;
    for (const char* const* key : keys) {
        if (*key != nullptr) {
            names.emplace_back(*key);
        }
    }
    return names;
}

void checkUnknownMembers(const Document& document, const WrongLevels& levels,
                         const KnownSettings& known, Report* report) {
    const Node* const video = document.video();
    const InPlaceOfVideo other = video == nullptr ? inPlaceOfVideo(document) : InPlaceOfVideo();
    const Covers isReported = [&](const Node& member) {
        return levels.covers(member) || std::find(other.members.begin(), other.members.end(),
                                                  &member) != other.members.end();
    };
    reportUnknownMembers(document, document.tree.root, "the root", {targetSpecRoot}, known,
                         isReported, report);
    if (video == nullptr) {
        return;
    }
    std::vector<const char* const*> sections;
    for (const Section& row : kSections) {
        sections.push_back(row.key);
    }
    reportUnknownMembers(document, *video, fmt::format("\"{}\"", targetSpecRoot), namesOf(sections),
                         known, isReported, report);
    forEachSection(document, [&](const Section& row, const Node& section) {
        if (!fixedMembersOf(row.type).empty()) {
            reportUnknownMembers(document, section, fmt::format("\"{}\"", *row.key),
                                 namesOf(fixedMembersOf(row.type)), known, isReported, report);
        }
    });
}

// The reader uses one setting of each name: where it uses every member, no name is there twice. In
// large documents that saves a search.
bool hasEachNameOnce(const Document& document, const Node& object) {
    if (object.children.size() < 2) {
        return true;
    }
    bool isKeptWhole = false;
    forEachSection(document, [&](const Section& row, const Node& section) {
        isKeptWhole = isKeptWhole || (&section == &object && isOfNamedValues(row.type) &&
                                      std::all_of(object.children.begin(), object.children.end(),
                                                  [](const Node& one) { return one.isUsed(); }));
    });
    return isKeptWhole;
}

void checkDuplicateMembers(const Document& document, Report* report) {
    visitAll(document.tree.root, [&](const Node& object) {
        if (object.kind != '{' || hasEachNameOnce(document, object)) {
            return;
        }
        std::unordered_map<std::string_view, const Node*> last;
        for (const Node& member : object.children) {
            const Node*& earlier = last[member.key];
            if (earlier != nullptr) {
                report->add(
                        "duplicate-member", document, member.name,
                        fmt::format(
                                "duplicate member \"{}\"; this value is used, not the one at {}",
                                member.key, document.source.positionText(earlier->name.start)),
                        besides(document.source, earlier->name));
            }
            earlier = &member;
        }
    });
}

// A template's placeholder in a name, or in a string that the device uses.
void checkPlaceholders(const Document& document, Report* report) {
    const auto isPlaceholder = [](std::string_view text) {
        return text.find("${") != std::string_view::npos ||
               text.find("$(") != std::string_view::npos ||
               text.find("{{") != std::string_view::npos;
    };
    const std::string_view whole = document.source.text();
    if (!isPlaceholder(whole) && whole.find('\\') == std::string_view::npos) {
        return;  // As in most documents. An escape can hide one.
    }
    const auto check = [&](std::string_view text, Span span) {
        if (isPlaceholder(text)) {
            report->add("placeholder", document, span,
                        fmt::format("\"{}\" has a placeholder that nothing has replaced", text));
        }
    };
    visitAll(document.tree.root, [&](const Node& node) {
        check(node.key, node.name);
        if (node.isString() && node.isUsed()) {
            check(node.string, node.value);
        }
    });
}

void checkNumbers(const Document& document, Report* report) {
    visitAll(document.tree.root, [&](const Node& node) {
        if (!node.isNumber()) {
            return;
        }
        const auto add = [&](CheckId check, const char* message) {
            report->add(check, document, node.value, message);
        };
        const std::string_view text = document.source.textAt(node.value);
        const std::string_view digits = text.substr(node.kind == '-' ? 1 : 0, 2);
        if (digits.size() == 2 && digits[0] == '0' && isDigit(digits[1])) {
            add("leading-zero", "the leading zero does not make the number octal: it is decimal");
        }
        if (digits.empty() && document.isAccepted) {  // Else the root is the mistake.
            add("lone-minus", "a minus sign without digits is read as 0");
        }
        // Parsers and C++ libraries differ in how they read a number beyond the range of double.
        const NumberRange range = rangeOf(text);
        if (range == NumberRange::TooLarge) {
            add("number-too-large",
                "the number is too large for any parser: JsonCpp up to 1.9.5 rejects the whole "
                "document for it, and later releases skip the value");
        } else if (range == NumberRange::TooSmall) {
            add("number-too-small",
                "the number is too close to 0: every phone rejects the whole document for it, "
                "though this machine may read it");
        }
    });
}

// Whether a line begins with the mark of a merge that was not finished.
bool hasMergeMark(std::string_view text) {
    for (size_t line = 0; line < text.size();) {
        for (const std::string_view mark : {"<<<<<<<", "=======", ">>>>>>>", "|||||||"}) {
            if (text.substr(line).starts_with(mark)) {
                return true;
            }
        }
        line = std::min(text.find('\n', line), text.size() - 1) + 1;
    }
    return false;
}

// Whether a text begins with a document, which people separate by a comma or by a line "---".
bool hasDocument(std::string_view text) {
    const size_t first = text.find_first_not_of("-,; \t\r\n");
    return first != std::string_view::npos && (text[first] == '{' || text[first] == '[');
}

void checkWrongLevels(const Document& document, const WrongLevels& levels, Report* report) {
    for (const WrongLevels::Cause& cause : levels.causes()) {
        report->add(cause.isOfSections ? CheckId("wrong-level") : CheckId("unknown-member"),
                    document, cause.span, cause.message,
                    cause.related.limit == 0 ? FindingDetails()
                                             : besides(document.source, cause.related));
    }
}

void checkTrailingText(const Document& document, const WrongLevels& levels, Report* report) {
    const Span span = {document.tree.limit, document.source.text().size()};
    const std::string_view rest = std::string_view(document.parserText).substr(span.start);
    const bool isBracketLeft = levels.hasBracketLeft() &&
                               rest.find_first_not_of("}] \t\r\n") == std::string_view::npos;
    if (rest.empty() || isBracketLeft || levels.isRootClosedEarly()) {
        return;
    }
    if (hasMergeMark(rest)) {
        report->add("second-document", document, span,
                    "merge marks after the end of the document: the merge was not finished, and "
                    "the device reads only what is above");
    } else if (hasDocument(rest)) {
        report->add("second-document", document, span,
                    "a second document after the end of the first: the device reads only the "
                    "first");
    } else {
        report->add("trailing-text", document, span, "text after the end of the document, ignored");
    }
}

void checkControlCharacters(const Document& document, Report* report) {
    for (const Span& span : rawControlCharacters(document.parserText)) {
        const char c = document.source.text()[span.start];
        report->add("control-character", document, span,
                    std::string("a string has an unescaped ") +
                            (c == '\n' || c == '\r' ? "line break"
                             : c == '\t'            ? "tab"
                                                    : "control character") +
                            ": JsonCpp 1.9.7 and later reject the whole document for it. "
                            "Write an escape, such as \\n, or remove it");
    }
}

}  // namespace

void checkTexts(const Checked& checked, Report* report) {
    checked.forEachWritten([&](const Document& document) {
        if (!document.isJson()) {
            return;  // The syntax error is the finding.
        }
        const WrongLevels levels(document, checked.known);
        checkWrongLevels(document, levels, report);
        checkUnknownMembers(document, levels, checked.known, report);
        checkDuplicateMembers(document, report);
        checkPlaceholders(document, report);
        checkNumbers(document, report);
        if (document.isAccepted) {  // Else the root is the mistake.
            checkTrailingText(document, levels, report);
        }
        checkControlCharacters(document, report);
    });
}

}  // namespace kc2::tool
