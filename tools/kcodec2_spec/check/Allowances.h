// Comments in a document that allow a finding: "// kcodec2_spec: allow ID".
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "check/Rule.h"
#include "document/Source.h"

namespace kc2::tool {

// A comment behind something allows findings on its line; one alone on a line allows those on
// the next line that holds more than comments.
class Allowances {
public:
    // Reads the comments of a text, in its order.
    Allowances(const Source& source, const std::vector<Span>& comments);

    // Whether the text has any.
    bool isEmpty() const { return mByPlace.empty() && mMistakes.empty(); }

    // Whether a comment allows a finding of the rule at this offset.
    bool allows(const Rule& rule, size_t offset);

    // The comments, or ids in them, that allow nothing: where and why.
    struct Unused {
        Span span;
        std::string message;
    };
    std::vector<Unused> unused() const;

private:
    struct Allowance {
        Span span;
        bool isUsed;
    };

    void readComment(Span comment, size_t line);
    void addId(Span span, size_t line);
    std::string_view textOf(Span span) const;

    const Source* mSource;
    std::map<std::pair<size_t, std::string_view>, Allowance> mByPlace;  // By line and id.
    std::vector<Unused> mMistakes;  // What can never allow anything.
};

// Comments that allow nothing.
std::vector<const Rule*> allowanceRules();
extern const Rule kAllowsNothing;

}  // namespace kc2::tool
