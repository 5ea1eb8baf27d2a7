// How far apart two words are, and which of several names is the nearest.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kc2::tool {

// The number of mistakes between two words: a letter inserted, removed or replaced, or two
// neighbours exchanged; case is ignored. Above `limit`, any number above it. Words of more than 100
// bytes are equal or too far apart.
size_t editDistance(std::string_view a, std::string_view b, size_t limit);

// How many letters both have, in the same order.
size_t commonLetters(std::string_view a, std::string_view b);

// The one of `names` that someone who wrote `word` may have meant, with at most `mostEdits`
// mistakes; empty when none is near. Of several equally near, the one with most of the word's
// letters.
template <typename Names>
std::string nearest(std::string_view word, const Names& names, size_t mostEdits) {
    std::string best;
    for (const std::string_view name : names) {
        const size_t distance = editDistance(word, name, mostEdits);
        if (distance <= mostEdits && distance < name.size() &&
            (best.empty() || distance < mostEdits ||
             commonLetters(word, name) > commonLetters(word, best))) {
            mostEdits = distance;
            best = name;
        }
    }
    return best;
}

// The same for a short word: beyond a third of its letters it is another one.
template <typename Names>
std::string nearest(std::string_view word, const Names& names) {
    return nearest(word, names, word.size() / 3 + 1);
}

}  // namespace kc2::tool
