// What is at a place of a document, by the tokens before it. Unlike the tree, it serves a text that
// is being written, whatever is wrong with it.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "document/Source.h"

namespace kc2::tool {

struct Cursor {
    enum class Role { None, Name, Value };

    // A member, or an element of a list.
    struct Step {
        bool isElement;
        std::string key;  // Of a member, as it is written.
        size_t index;     // Of an element.
    };

    Role role = Role::None;
    std::vector<Step> path;     // From the root to what the value or the name is in, or is.
    Span token;                 // That the place is in; empty at the place when it is in none.
    std::string word;           // The token's text, without quotes.
    bool hasColon = false;      // After a name.
    bool isBeforeMore = false;  // More members or elements follow, without a comma.
    std::set<std::string> neighbours;  // Other names in the object, other texts in the list.

    // The key of the step at that depth; empty where there is none.
    std::string_view key(size_t depth) const {
        return depth < path.size() ? std::string_view(path[depth].key) : std::string_view();
    }
};

// `text` is as makeFitForParser() leaves it. The last step of the path is the name or value itself.
// While typing, a name or an element that begins at the place is after it.
enum class CursorUse { Pointing, Typing };
Cursor cursorAt(std::string_view text, size_t offset, CursorUse use);

}  // namespace kc2::tool
