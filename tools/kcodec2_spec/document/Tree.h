// The one tree of a document: where every member and value is in the text, what the reader said
// about it, and what is wrong with a text that the parser rejects.
#pragma once

#include <algorithm>
#include <cstddef>
#include <forward_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "document/Source.h"
#include "document/SyntaxHints.h"
#include "document/Verdict.h"

namespace kc2::tool {

// Keys and strings are views: a document may have a hundred thousand, and hardly one has escapes.
struct Node {
    Span value;
    Span name;                          // Of a member, with its quotes.
    std::string_view key;               // Of a member, decoded.
    std::string_view string;            // Of a value that is a string, decoded.
    char kind = '\0';                   // The value's first character: '{', '[', '"', 't', '1' ...
    std::vector<Node> children;         // In the order of the text.
    std::span<const Verdict> verdicts;  // None for a member that a later one of its name replaces.

    bool isObject() const { return kind == '{'; }
    bool isArray() const { return kind == '['; }
    bool isString() const { return kind == '"'; }
    bool isNull() const { return kind == 'n'; }
    bool isNumber() const { return kind == '-' || (kind >= '0' && kind <= '9'); }

    bool has(FindingKind verdict) const {
        return std::any_of(verdicts.begin(), verdicts.end(),
                           [verdict](const Verdict& one) { return one.kind == verdict; });
    }
    // Whether the store has what this value says, changed or not.
    bool isUsed() const { return has(FindingKind::Taken); }
};

struct Tree {
    Node root;
    size_t limit = 0;  // Where the document ends: after the root value and its blanks.
    std::vector<SyntaxHint> errors;          // Of a text that the parser rejects, in its order.
    std::forward_list<std::string> decoded;  // What has escapes in the text; nodes point to it.
};

// The tree of a text as makeFitForParser() leaves it; it points into the text. Of a text that the
// parser accepts, it has the parser's members and values, and those that later ones replace.
Tree treeOf(std::string_view text);

// The same of a text that the parser rejects. Reading goes on after an error that has one certain
// fix, as if that were made; the tree ends at the first error without one. `source` is the text
// with its comments; `rejectedAt` is where the parser rejects it, or its end where the parser gives
// no place.
Tree treeOfRejected(const Source& source, std::string_view text, size_t rejectedAt);

// Gives each node the verdicts about its value; they are sorted by their places.
void joinVerdicts(Node* root, std::span<const Verdict> verdicts);

// The last member of that name, which is the one that is used; null when there is none.
const Node* findMember(const Node& object, std::string_view key);

// The node whose value begins at that offset of the text; null when there is none.
const Node* findValueAt(const Node& root, size_t start);

}  // namespace kc2::tool
