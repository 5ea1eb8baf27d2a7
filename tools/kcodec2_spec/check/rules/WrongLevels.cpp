// Members that are right, but at a wrong level of their document.

#include "check/rules/WrongLevels.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Entries.h"
#include "document/Tokens.h"

namespace kc2::tool {

namespace {

bool isContainerNode(const Node& node) {
    return node.isObject() || node.isArray();
}

bool hasSections(const Node& object) {
    return object.isObject() &&
           std::any_of(object.children.begin(), object.children.end(), [](const Node& member) {
               return isContainerNode(member) && sectionOf(member.key) != nullptr;
           });
}

// "a", "a" and "b", "a" and 2 more.
std::string namesOfMembers(const std::vector<const Node*>& members) {
    const std::string first = fmt::format("\"{}\"", members.front()->key);
    return members.size() == 1   ? first
           : members.size() == 2 ? fmt::format("{} and \"{}\"", first, members.back()->key)
                                 : fmt::format("{} and {} more", first, members.size() - 1);
}

// "belongs" or "belong", and so on.
const char* verbFor(const std::vector<const Node*>& members, const char* one, const char* more) {
    return members.size() == 1 ? one : more;
}

// Whether a value may be one of this section.
bool hasTypeOf(const Node& value, SectionType section) {
    return section == SectionType::Features ? value.kind == 't' || value.kind == 'f'
           : section == SectionType::Presets
                   ? value.isNumber()
                   : section == SectionType::PerfResourceValues && value.isArray();
}

// The column of a name that is the first in its line; 0 for another one.
size_t indentationOf(const Source& source, Span name) {
    const Span line = source.line(source.lineOf(name.start));
    const std::string_view before = source.textAt({line.start, name.start});
    return before.find_first_not_of(kJsonBlanks) == std::string_view::npos
                   ? source.positionOf(name.start).column
                   : 0;
}

// Whether a member is indented as beside the other one, or less: then it is there on purpose.
bool isBeside(const Source& source, const Node& member, const Node& other) {
    const size_t indentation = indentationOf(source, member.name);
    return indentation != 0 && indentation <= indentationOf(source, other.name);
}

// Whether a member is indented as inside the other one.
bool isIndentedInto(const Source& source, const Node& member, const Node& other) {
    const size_t outer = indentationOf(source, other.name);
    return outer != 0 && indentationOf(source, member.name) > outer;
}

// Whether an unknown member of "Video" may be a member of that section.
bool mayBeIn(const Node& section, const Node& member, const KnownSettings& known) {
    const bool hasType = hasTypeOf(member, sectionOf(section.key)->type);
    const std::string place = rightPlaceOf(member.key, known);
    return place.empty() ? hasType : place == fmt::format("\"{}\"", section.key);
}

}  // namespace

std::string rightPlaceOf(std::string_view name, const KnownSettings& known) {
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

WrongLevels::WrongLevels(const Document& document, const KnownSettings& known) {
    const Node* const video = document.video();
    if (video == nullptr || !video->isObject()) {
        return;
    }
    lookAtVideo(*video);
    lookForRuns(document, *video, known);
    lookAtRoot(document, *video);
    lookAfterEnd(document);
    lookIntoSections(document);
}

bool WrongLevels::covers(const Verdict& verdict) const {
    const auto after =
            std::upper_bound(mNested.begin(), mNested.end(), verdict.start,
                             [](size_t start, const Span& nested) { return start < nested.start; });
    return after != mNested.begin() && verdict.start < std::prev(after)->limit;
}

void WrongLevels::add(Span span, std::string message, const Members& members, bool isOfSections) {
    const bool isElsewhere = span.start != members.front()->name.start;
    mCauses.push_back(
            {span, std::move(message), isElsewhere ? members.front()->name : Span(), isOfSections});
    mMembers.insert(members.begin(), members.end());
}

void WrongLevels::addEarlyBracket(const Source& source, const Node& closed, const Members& members,
                                  bool isOfSections) {
    const char* const verb = verbFor(members, "belongs", "belong");
    if (isBeside(source, *members.front(), closed)) {
        add(members.front()->name,
            fmt::format("{} {} in \"{}\": here {} ignored", namesOfMembers(members), verb,
                        closed.key, verbFor(members, "it is", "they are")),
            members, isOfSections);
        return;
    }
    mHasBracketLeft = true;
    add({closed.value.limit - 1, closed.value.limit},
        fmt::format("this bracket closes \"{}\" too early: {} {} in it, and {} ignored", closed.key,
                    namesOfMembers(members), verb, verbFor(members, "is", "are")),
        members, isOfSections);
}

void WrongLevels::lookAtRoot(const Document& document, const Node& video) {
    Members before;
    Members after;
    for (const Node& member : document.tree.root.children) {
        if (sectionOf(member.key) != nullptr) {
            (member.name.start < video.name.start ? before : after).push_back(&member);
        }
    }
    if (!before.empty()) {
        add(before.front()->name,
            fmt::format("{} {} in \"{}\": in the root {} ignored", namesOfMembers(before),
                        verbFor(before, "belongs", "belong"), targetSpecRoot,
                        verbFor(before, "it is", "they are")),
            before, true);
    }
    if (!after.empty() && mHasBracketLeft) {
        mMembers.insert(after.begin(), after.end());  // The bracket of a section is too early.
        mCauses.back().isOfSections = true;
    } else if (!after.empty()) {
        addEarlyBracket(document.source, video, after, true);
    }
}

// A comma and a section after the end: two brackets too many before them.
void WrongLevels::lookAfterEnd(const Document& document) {
    Tokenizer tokens(document.parserText, document.tree.limit);
    const Token comma = tokens.next();
    const Token name = tokens.next();
    const std::string_view quoted = document.source.textAt(name.span);
    if (comma.kind != ',' || name.kind != Token::kString || !name.isWhole ||
        sectionOf(quoted.substr(1, quoted.size() - 2)) == nullptr) {
        return;
    }
    mIsRootClosedEarly = true;
    const size_t limit = document.tree.root.value.limit;
    mCauses.push_back({{limit - 1, limit},
                       fmt::format("this bracket closes the document too early: {} and what "
                                   "follows it are ignored",
                                   quoted),
                       name.span,
                       true});
}

void WrongLevels::lookAtVideo(const Node& video) {
    for (const Node& member : video.children) {
        if (member.has(FindingKind::UnknownMember) && hasSections(member)) {
            add(member.name,
                fmt::format("the object \"{}\" is one too many: its members belong in the \"{}\" "
                            "around it, and are ignored",
                            member.key, targetSpecRoot),
                {&member}, true);
        }
    }
}

// Members of "Video" after a section that they are members of.
void WrongLevels::lookForRuns(const Document& document, const Node& video,
                              const KnownSettings& known) {
    const Node* section = nullptr;
    Members run;
    const auto finish = [&] {
        // One member with an unknown name may be anything, unless its indentation says what.
        if (run.size() > 1 ||
            (!run.empty() && (!rightPlaceOf(run.front()->key, known).empty() ||
                              isIndentedInto(document.source, *run.front(), *section)))) {
            addEarlyBracket(document.source, *section, run, false);
        }
        run.clear();
    };
    for (const Node& member : video.children) {
        const Section* const row = sectionOf(member.key);
        if (row != nullptr) {
            finish();
            section = member.isObject() ? &member : nullptr;
        } else if (section != nullptr && member.has(FindingKind::UnknownMember) &&
                   !covers(member) && mayBeIn(*section, member, known)) {
            run.push_back(&member);
        }
    }
    finish();
}

void WrongLevels::lookIntoSections(const Document& document) {
    forEachSection(document, [&](const Section& row, const Node& section) {
        Members nested;
        for (const Node& member : section.children) {
            if (section.isObject() && isContainerNode(member) && sectionOf(member.key) != nullptr) {
                nested.push_back(&member);
                mNested.push_back(member.value);
            }
        }
        if (!nested.empty()) {
            add(nested.front()->name,
                fmt::format("{} {} in \"{}\", but {} inside \"{}\", and {} not read as {}: a "
                            "bracket that closes \"{}\" is missing before \"{}\"",
                            namesOfMembers(nested), verbFor(nested, "belongs", "belong"),
                            targetSpecRoot, verbFor(nested, "is", "are"), *row.key,
                            verbFor(nested, "is", "are"), verbFor(nested, "a section", "sections"),
                            *row.key, nested.front()->key),
                nested, true);
        }
    });
    std::sort(mNested.begin(), mNested.end(),
              [](const Span& a, const Span& b) { return a.start < b.start; });
}

namespace {

// A member of the root whose name is nearly "Video", if it is the only one.
const Node* misspeltVideo(const Node& root) {
    const std::string_view names[] = {targetSpecRoot};
    const Node* found = nullptr;
    for (const Node& member : root.children) {
        if (!nearest(member.key, names).empty()) {
            if (found != nullptr) {
                return nullptr;
            }
            found = &member;
        }
    }
    return found;
}

}  // namespace

InPlaceOfVideo inPlaceOfVideo(const Document& document) {
    const Node& root = document.tree.root;
    std::vector<const Node*> sections;
    for (const Node& member : root.children) {
        if (sectionOf(member.key) != nullptr) {
            sections.push_back(&member);
        }
    }
    if (!sections.empty()) {
        return {fmt::format(". {} {} in it: write {{\"{}\": {{...}}}} around {}",
                            namesOfMembers(sections), verbFor(sections, "belongs", "belong"),
                            targetSpecRoot, verbFor(sections, "it", "them")),
                Span(), "", sections};
    }
    if (const Node* const misspelt = misspeltVideo(root)) {
        return {fmt::format(". Did you mean \"{}\"?", targetSpecRoot),
                misspelt->name,
                misspelt->isObject() ? targetSpecRoot : "",  // With another value it is rejected.
                {misspelt}};
    }
    for (const Node& member : root.children) {
        if (findMember(member, targetSpecRoot) != nullptr) {
            return {fmt::format(". The object \"{}\" around it is one too many", member.key),
                    member.name,
                    "",
                    {&member}};
        }
        if (hasSections(member)) {
            return {fmt::format(". The sections are in \"{}\": it must be called \"{}\"",
                                member.key, targetSpecRoot),
                    member.name,
                    "",
                    {&member}};
        }
    }
    return {};
}

}  // namespace kc2::tool
