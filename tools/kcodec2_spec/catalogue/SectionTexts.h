// What each section of a document, and each member with a fixed name, is called and contains.
#pragma once

#include <string>

namespace kc2::tool {

// A short name for people; empty when no section or member has this key.
std::string titleOfSection(const std::string& key);

// What the section or member of this key contains, and for a section how documents merge there;
// empty when there is none of that key.
std::string meaningOfSection(const std::string& key);

}  // namespace kc2::tool
