// The checks as text: a list, the page docs/checks.md, and one check's example.
#pragma once

#include <string>

#include "check/Checks.h"

namespace kc2::tool {

// The checks, group by group: id, severity, summary.
std::string checksList(const Levels& levels);

// The page, as Markdown.
std::string checksPage();

// What the check finds, as a sentence.
std::string sentenceOf(const Check& check);

// How to fix what the check finds, and its example, as Markdown.
std::string helpOf(const Check& check);

}  // namespace kc2::tool
