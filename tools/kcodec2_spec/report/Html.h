// Text of unknown bytes, made fit for a page.
#pragma once

#include <string>
#include <string_view>

namespace kc2::tool {

// `text` for any place between tags or in a quoted attribute: what HTML reads as markup becomes a
// reference, and bytes that must not be shown are written as \xNN.
std::string html(std::string_view text);

}  // namespace kc2::tool
