// Text of unknown bytes in Markdown, in a table or outside of one.
#pragma once

#include <string>
#include <string_view>

namespace kc2::tool {

// `text` between backticks. In a code span of a table no escape works for all renderers, so a pipe
// and a backtick are written as \x7C and \x60, as control characters are.
std::string markdownCode(std::string_view text);

// `text` as words, without any markup that it may contain.
std::string markdownText(std::string_view text);

}  // namespace kc2::tool
