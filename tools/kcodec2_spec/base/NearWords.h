// Words that names are made of: which mean the same, and which exist although they look misspelt.
#pragma once

#include <string_view>

namespace kc2::tool {

enum class NameKind { Setting, Component };

// The word that stands for all that mean the same: "dec" for decoder, "avc" for h264 in names of
// components; without an "s" at its end. `word` is in small letters and must outlive the result.
std::string_view commonForm(NameKind kind, std::string_view word);

// The words that mean the same as `form`, with blanks between them; `form` alone when there are
// none.
std::string_view wordsLike(NameKind kind, std::string_view form);

// Whether the word exists: then it is not another one misspelt.
bool isWord(NameKind kind, std::string_view word);

// Whether many names may have the word. What is left of a name needs another one to be recognised.
bool isGeneric(std::string_view form);

}  // namespace kc2::tool
