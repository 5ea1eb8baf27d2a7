// What each section of a document is for, in words, and how what it gives is shown.
#pragma once

#include <string>
#include <string_view>

namespace kc2::tool {

struct SectionText {
    const char* const* key;  // Of the section, or of a member with a fixed name.
    const char* meaning;
    // Of what the store has from it; empty for a key whose values are part of another's.
    const char* title = "";
    const char* jsonKey = "";    // In JSON output.
    const char* whenEmpty = "";  // What it means for components that there are no entries.
};

// The texts of this key; null when there are none. They are in one array, in the order in which
// what the sections give is shown.
const SectionText* textOfSection(std::string_view key);

// What the section or member of this key contains, and how documents merge there; empty when there
// is none of that key.
std::string meaningOfSection(const std::string& key);

}  // namespace kc2::tool
