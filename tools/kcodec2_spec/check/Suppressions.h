// Comments in a document that suppress findings: "// kcodec2_spec: allow ID".
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "check/Checks.h"
#include "document/Source.h"

namespace kc2::tool {

// A comment after something suppresses findings on its line; one alone on a line suppresses those
// on the next line that has more than comments. ID is a check, or a group of checks.
class Suppressions {
public:
    // Reads the comments of a text, in its order.
    Suppressions(const Source& source, const std::vector<Span>& comments);

    // Whether the text has any.
    bool isEmpty() const { return mByPlace.empty() && mMistakes.empty(); }

    // Whether a comment suppresses a finding of the check at this offset.
    bool suppress(const Check& check, size_t offset);

    // The comments, or ids in them, that suppress nothing: where and why.
    struct Unused {
        Span span;
        std::string message;
    };
    std::vector<Unused> unused() const;

private:
    struct Suppression {
        Span span;
        bool isUsed;
    };

    void readComment(Span comment, size_t line);
    void addId(Span span, size_t line);

    const Source* mSource;
    std::map<std::pair<size_t, std::string_view>, Suppression> mByPlace;  // By line and id.
    std::vector<Unused> mMistakes;  // What can never suppress anything.
};

}  // namespace kc2::tool
