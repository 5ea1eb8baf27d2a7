// What a document says that the library's reader does not look at.

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Text.h"
#include "check/Mends.h"
#include "check/Rules.h"
#include "check/SyntaxHints.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

// Adds findings of one rule in one document.
class Emit {
public:
    Emit(const Rule& rule, const Source& source, Report* report)
        : mRule(rule), mSource(source), mReport(*report) {}

    void operator()(Span span, std::string message, FindingDetails details = {}) const {
        mReport.add(mRule, mSource, span, std::move(message), std::move(details));
    }

private:
    const Rule& mRule;
    const Source& mSource;
    Report& mReport;
};

struct DocumentRule {
    Rule rule;
    void (*check)(const CheckedDocument& document, const Emit& emit);
};

void visitAll(const OutlineNode& node, const std::function<void(const OutlineNode&)>& visit) {
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

// The members of one object that the reader did not look up. A mend must be certain: nobody can
// tell which one of two misspelt names is meant, or whether one is beside the right name.
void reportUnknownMembers(const CheckedDocument& checked, bool isRoot, const std::string& section,
                          const std::vector<const KeptFinding*>& unknown, const Emit& emit) {
    const std::vector<std::string_view> known = knownMembers(isRoot, section);
    const OutlineNode* const video = findMember(checked.outline.root, targetSpecRoot);
    const OutlineNode* const object = isRoot            ? &checked.outline.root
                                      : section.empty() ? video
                                                        : checked.section(section.c_str());
    const std::string place = isRoot            ? "the root"
                              : section.empty() ? fmt::format("\"{}\"", targetSpecRoot)
                                                : fmt::format("\"{}\"", section);
    std::map<std::string, std::vector<const KeptFinding*>> unknownByNear;
    for (const KeptFinding* const finding : unknown) {
        unknownByNear[nearest(finding->name, known)].push_back(finding);
    }
    for (const auto& [near, findings] : unknownByNear) {
        const bool isCertain = !near.empty() && findings.size() == 1 && object != nullptr &&
                               findMember(*object, near) == nullptr;
        for (const KeptFinding* const finding : findings) {
            const OutlineNode* const member = findValueAt(checked.outline.root, finding->start);
            const Span name =
                    member != nullptr ? member->name : Span{finding->start, finding->limit};
            emit(name,
                 fmt::format("unknown member \"{}\" of {}, ignored{}", finding->name, place,
                             near.empty() ? "" : fmt::format(". Did you mean \"{}\"?", near)),
                 {.related = {},
                  .fixes = isCertain ? renaming(checked.source.text(), name, near)
                                     : std::vector<Fix>()});
        }
    }
}

void checkUnknownMembers(const CheckedDocument& checked, const Emit& emit) {
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
                             unknown, emit);
    }
}

void checkDuplicateMembers(const CheckedDocument& checked, const Emit& emit) {
    visitAll(checked.outline.root, [&](const OutlineNode& object) {
        if (object.kind != '{') {
            return;
        }
        std::unordered_map<std::string_view, const OutlineNode*> last;
        for (const OutlineNode& member : object.children) {
            const OutlineNode*& earlier = last[member.key];
            if (earlier != nullptr) {
                emit(member.name,
                     fmt::format("duplicate member \"{}\"; this value is used, not the one at {}",
                                 member.key, checked.source.placeOf(earlier->name.start)),
                     {.related = {{&checked.source, earlier->name, ""}}, .fixes = {}});
            }
            earlier = &member;
        }
    });
}

void checkLeadingZeros(const CheckedDocument& checked, const Emit& emit) {
    visitAll(checked.outline.root, [&](const OutlineNode& node) {
        const std::string_view digits =
                checked.source.text().substr(node.value.start + (node.kind == '-' ? 1 : 0), 2);
        const bool isNumber =
                node.kind == '-' || std::isdigit(static_cast<unsigned char>(node.kind)) != 0;
        if (isNumber && digits.size() == 2 && digits[0] == '0' &&
            std::isdigit(static_cast<unsigned char>(digits[1])) != 0) {
            emit(node.value, "the leading zero does not make the number octal: it is decimal");
        }
    });
}

void checkLoneMinuses(const CheckedDocument& checked, const Emit& emit) {
    visitAll(checked.outline.root, [&](const OutlineNode& node) {
        if (node.kind == '-' && node.value.limit == node.value.start + 1) {
            emit(node.value, "a minus sign without digits counts as 0");
        }
    });
}

void checkTrailingText(const CheckedDocument& checked, const Emit& emit) {
    const std::string_view text = checked.source.text();
    if (checked.outline.limit < text.size()) {
        emit({checked.outline.limit, text.size()}, "text after the end of the document, ignored");
    }
}

void checkPerfWordPairs(const CheckedDocument& checked, const Emit& emit) {
    for (const KeptFinding* const taken : checked.takenIn(targetSpecPerfResourceValues)) {
        const auto words = checked.document.content.perfResourceValues.find(taken->name);
        if (words != checked.document.content.perfResourceValues.end() &&
            words->second.size() % 2 != 0) {
            emit({taken->start, taken->limit}, taken->name + " holds " +
                                                       std::to_string(words->second.size()) +
                                                       " words: a resource code lacks its value");
        }
    }
}

// Read once: every checked document is compared with all of them, section by section.
const std::vector<Document>& builtInDocuments() {
    static const std::vector<Document> documents = [] {
        std::vector<Document> read;
        for (const ChipDocument& row : kChipDocuments) {
            read.push_back(readDocument("", "", row.text));
        }
        return read;
    }();
    return documents;
}

// The names that the built-in documents set in a section: those that components of this platform
// ask for, as far as this library knows them.
template <typename Map>
std::set<std::string> builtInNames(Map SpecDocument::*section) {
    std::set<std::string> names;
    for (const Document& document : builtInDocuments()) {
        for (const auto& [name, value] : document.content.*section) {
            names.insert(name);
        }
    }
    return names;
}

struct MisspeltName {
    const KeptFinding* taken;
    std::string near;
};

void emitMisspeltNames(const CheckedDocument& checked, const OutlineNode* section,
                       const std::vector<MisspeltName>& misspelt, const Emit& emit) {
    if (misspelt.empty() || section == nullptr) {
        return;
    }
    std::unordered_map<std::string_view, Span> members;
    for (const OutlineNode& member : section->children) {
        members[member.key] = member.name;
    }
    std::unordered_map<std::string_view, size_t> meant;
    for (const MisspeltName& name : misspelt) {
        ++meant[name.near];
    }
    for (const auto& [taken, near] : misspelt) {
        const auto member = members.find(taken->name);
        const bool isCertain =
                members.count(near) == 0 && meant[near] == 1 && member != members.end();
        emit({taken->start, taken->limit},
             taken->name + " is in no built-in document. Did you mean " + near + "?",
             {.related = {},
              .fixes = isCertain ? renaming(checked.source.text(), member->second, near)
                                 : std::vector<Fix>()});
    }
}

void checkMisspeltNames(const CheckedDocument& checked, const Emit& emit) {
    constexpr size_t kMostMistakes = 2;
    const auto inSection = [&](const char* section, auto member) {
        const std::set<std::string> known = builtInNames(member);
        std::vector<MisspeltName> misspelt;
        for (const KeptFinding* const taken : checked.takenIn(section)) {
            if (known.count(taken->name) == 0) {
                std::string near = nearest(taken->name, known, kMostMistakes);
                if (!near.empty()) {
                    misspelt.push_back({taken, std::move(near)});
                }
            }
        }
        emitMisspeltNames(checked, checked.section(section), misspelt, emit);
    };
    inSection(targetSpecFeatures, &SpecDocument::features);
    inSection(targetSpecPresets, &SpecDocument::presets);
    inSection(targetSpecPerfResourceValues, &SpecDocument::perfResourceValues);
}

// c2.<vendor>.<codec>.<decoder or encoder>, and what distinguishes components of one codec.
bool hasFormOfComponent(std::string_view name) {
    std::vector<std::string_view> parts;
    for (size_t start = 0; start <= name.size();) {
        const size_t end = std::min(name.find('.', start), name.size());
        parts.push_back(name.substr(start, end - start));
        start = end + 1;
    }
    for (const std::string_view part : parts) {
        if (part.empty() || part.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_-") !=
                                    std::string_view::npos) {
            return false;
        }
    }
    return parts.size() >= 4 && parts[0] == "c2" &&
           (parts[3] == "decoder" || parts[3] == "encoder");
}

void checkCodecNames(const CheckedDocument& checked, const Emit& emit) {
    const auto checkList = [&](const char* section, const char* name) {
        for (const KeptFinding* const taken : checked.takenIn(section, name)) {
            const std::string_view quoted =
                    checked.source.text().substr(taken->start, taken->limit - taken->start);
            if (quoted.size() >= 2 && !hasFormOfComponent(quoted.substr(1, quoted.size() - 2))) {
                emit({taken->start, taken->limit},
                     "not of the form of a component name, such as c2.kvx.avc.decoder.secure");
            }
        }
    };
    checkList(targetSpecSupportedCodecs, targetSpecAvailableDecoders);
    checkList(targetSpecSupportedCodecs, targetSpecAvailableEncoders);
    checkList(targetSpecOptionalCodecs, "");
}

void checkControlCharacters(const CheckedDocument& checked, const Emit& emit) {
    if (checked.outline.root.kind == '\0') {
        return;  // No JSON: the syntax error is the finding.
    }
    for (const Span& span : rawControlCharacters(checked.document.parserText)) {
        const char c = checked.source.text()[span.start];
        emit(span, std::string("a string holds a ") +
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
        {{"control-character", Severity::Warning, "a raw line break or the like in a string"},
         checkControlCharacters},
        {{"trailing-text", Severity::Warning, "text after the document's end"}, checkTrailingText},
        {{"perf-odd-length", Severity::Warning, "perf words that do not come in pairs"},
         checkPerfWordPairs},
        {{"name-misspelt", Severity::Note, "a setting one or two letters from a built-in one"},
         checkMisspeltNames},
        {{"codec-name-form", Severity::Note, "a codec name unlike that of a component"},
         checkCodecNames},
};

}  // namespace

void applyDocumentRules(const CheckedDocument& document, Report* report) {
    for (const DocumentRule& row : kDocumentRules) {
        row.check(document, Emit(row.rule, document.source, report));
    }
}

std::vector<const Rule*> documentRules() {
    return rulesOf(kDocumentRules);
}

}  // namespace kc2::tool
