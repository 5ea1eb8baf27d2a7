// What an editor shows about the name or the value under the pointer.
#pragma once

#include <string>

#include "catalogue/Catalogue.h"
#include "editor/Cursor.h"

namespace kc2::tool {

struct HoverText {
    std::string text;  // As "explain" prints it; empty where it says nothing.
    std::string name;  // Of the setting or component that it is about; empty for anything else.
};

HoverText hoverTextAt(const Cursor& cursor, const Catalogue& catalogue);

}  // namespace kc2::tool
