// Characters that look like others, or like nothing: their names, and what to write instead.
#pragma once

namespace kc2::tool {

struct OddCharacter {
    char32_t first;
    char32_t last;
    const char* name;    // With its article.
    const char* remedy;  // Outside strings.
    bool isBlank = false;
};

// The row of a character; null when it is not an odd one.
const OddCharacter* oddCharacter(char32_t character);

}  // namespace kc2::tool
