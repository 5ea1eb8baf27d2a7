// Where every member and value of a document is in its text. The JSON parser keeps neither the
// places of member names nor the members that a later one of the same name replaces.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "check/Source.h"

namespace kc2::tool {

struct OutlineNode {
    Span value;
    Span name;                          // Of a member, with its quotes.
    std::string key;                    // Of a member, decoded.
    char kind;                          // The value's first character: '{', '[', '"', 't', '1' ...
    std::vector<OutlineNode> children;  // In the order of the text.

    bool isNumber() const { return kind == '-' || (kind >= '0' && kind <= '9'); }
};

struct Outline {
    OutlineNode root;
    size_t limit;  // Where the document ends: after the root value and the blanks behind it.
};

// Outlines a text that the JSON parser has accepted, as makeFitForParser() leaves it.
Outline outlineOf(std::string_view text);

// The string that the text between two quotes, with them, says.
std::string decodedString(std::string_view quoted);

// The last member of that name, which is the one that counts; null when there is none.
const OutlineNode* findMember(const OutlineNode& object, std::string_view key);

// The node whose value begins at that offset of the text; null when there is none.
const OutlineNode* findValueAt(const OutlineNode& root, size_t start);

}  // namespace kc2::tool
