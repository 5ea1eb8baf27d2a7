// What each section of a document is for, in words.
#pragma once

#include <string>

namespace kc2::tool {

// What the section or member of this key holds, and how documents merge there; empty when there is
// none of that key.
std::string meaningOfSection(const std::string& key);

}  // namespace kc2::tool
