// Text of unknown bytes, escaped for a page.
#pragma once

#include <string>
#include <string_view>

namespace kc2::tool {

// `text` for any place between tags or in a quoted attribute: markup becomes references, and bytes
// that must not be shown are written as \xNN.
std::string html(std::string_view text);

// The same of a name or a path, which a narrow column breaks after "_" and "/". Where that is too
// far away, it is broken after 30 characters.
std::string htmlOfName(std::string_view name);

}  // namespace kc2::tool
