// Where every member and value of a document is in its text. The JSON parser keeps neither the
// places of member names nor the members that a later one of the same name replaces.
#pragma once

#include <cstddef>
#include <forward_list>
#include <string>
#include <string_view>
#include <vector>

#include "document/Source.h"

namespace kc2::tool {

// Keys and strings are views: a document may hold a hundred thousand, and hardly one has escapes.
struct OutlineNode {
    Span value;
    Span name;                          // Of a member, with its quotes.
    std::string_view key;               // Of a member, decoded.
    std::string_view string;            // Of a value that is a string, decoded.
    char kind;                          // The value's first character: '{', '[', '"', 't', '1' ...
    std::vector<OutlineNode> children;  // In the order of the text.

    bool isNumber() const { return kind == '-' || (kind >= '0' && kind <= '9'); }
};

struct Outline {
    OutlineNode root;
    size_t limit;  // Where the document ends: after the root value and the blanks behind it.
    std::forward_list<std::string> decoded;  // What has escapes in the text; nodes point to it.
};

// Outlines a text that the JSON parser has accepted, as makeFitForParser() leaves it. The outline
// points into it.
Outline outlineOf(std::string_view text);

// The last member of that name, which is the one that counts; null when there is none.
const OutlineNode* findMember(const OutlineNode& object, std::string_view key);

// The node whose value begins at that offset of the text; null when there is none.
const OutlineNode* findValueAt(const OutlineNode& root, size_t start);

}  // namespace kc2::tool
