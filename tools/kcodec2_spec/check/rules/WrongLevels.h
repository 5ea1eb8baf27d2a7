// Members that are right, but at a wrong level of their document: a bracket closes too early, or is
// missing, or there is one object too many.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "check/Checked.h"

namespace kc2::tool {

// Where a name belongs, in words, that is right elsewhere; empty when it is not.
std::string rightPlaceOf(std::string_view name, const KnownSettings& known);

class WrongLevels {
public:
    // One for each cause.
    struct Cause {
        Span span;
        std::string message;
        Span related;       // What is at the wrong level, where the span is a bracket; else empty.
        bool isOfSections;  // Whole sections are lost.
    };

    WrongLevels(const Document& document, const KnownSettings& known);

    const std::vector<Cause>& causes() const { return mCauses; }
    // Whether a cause is about this member, or about what the reader found there.
    bool covers(const Node& member) const { return mMembers.count(&member) != 0; }
    bool covers(const Verdict& verdict) const;
    // Whether brackets after the end of the document are left over from one that closes too early.
    bool hasBracketLeft() const { return mHasBracketLeft; }
    // Whether what is after the end of the document belongs in it.
    bool isRootClosedEarly() const { return mIsRootClosedEarly; }

private:
    using Members = std::vector<const Node*>;

    void lookAfterEnd(const Document& document);
    void lookAtRoot(const Document& document, const Node& video);
    void lookAtVideo(const Node& video);
    void lookForRuns(const Document& document, const Node& video, const KnownSettings& known);
    void lookIntoSections(const Document& document);
    void addEarlyBracket(const Source& source, const Node& closed, const Members& members,
                         bool isOfSections);
    void add(Span span, std::string message, const Members& members, bool isOfSections);

    std::vector<Cause> mCauses;
    std::unordered_set<const Node*> mMembers;
    std::vector<Span> mNested;  // Sections in other sections, in the order of the text.
    bool mHasBracketLeft = false;
    bool mIsRootClosedEarly = false;
};

// What is in place of "Video" in a document without one.
struct InPlaceOfVideo {
    std::string hint;   // What to do, as a sentence after another one; empty when nothing is there.
    Span span;          // Of the member that is meant; empty for the whole root.
    std::string meant;  // The right name, where only the name is wrong.
    std::vector<const Node*> members;
};
InPlaceOfVideo inPlaceOfVideo(const Document& document);

}  // namespace kc2::tool
