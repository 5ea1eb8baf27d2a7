// Which known name a misspelt one means.

#include "base/NearNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <iterator>
#include <optional>
#include <utility>

#include "base/Spelling.h"
#include "base/Text.h"
#include "base/Utf8.h"

namespace kc2::tool {

namespace {

constexpr int kUnlike = 1000;
constexpr int kMostMistakes = 2;

struct LookAlike {
    char32_t character;
    char latin;
};

// Letters of other scripts that look like small or capital Latin ones.
constexpr LookAlike kLookAlikes[] = {
        {U'\u0430', 'a'}, {U'\u0435', 'e'}, {U'\u043E', 'o'}, {U'\u0440', 'p'}, {U'\u0441', 'c'},
        {U'\u0445', 'x'}, {U'\u0443', 'y'}, {U'\u0456', 'i'}, {U'\u0458', 'j'}, {U'\u0455', 's'},
        {U'\u0501', 'd'}, {U'\u04BB', 'h'}, {U'\u043A', 'k'}, {U'\u043C', 'm'}, {U'\u0442', 't'},
        {U'\u0432', 'b'}, {U'\u043D', 'h'}, {U'\u0475', 'v'}, {U'\u0410', 'a'}, {U'\u0412', 'b'},
        {U'\u0415', 'e'}, {U'\u041A', 'k'}, {U'\u041C', 'm'}, {U'\u041D', 'h'}, {U'\u041E', 'o'},
        {U'\u0420', 'p'}, {U'\u0421', 'c'}, {U'\u0422', 't'}, {U'\u0425', 'x'}, {U'\u03BF', 'o'},
        {U'\u03B1', 'a'}, {U'\u03BD', 'v'}, {U'\u03C1', 'p'}, {U'\u03C5', 'u'}, {U'\u03B9', 'i'},
        {U'\u03BA', 'k'}, {U'\u0131', 'i'}, {U'\u0251', 'a'}, {U'\u0261', 'g'}, {U'\u017F', 's'},
        {U'\u2010', '_'}, {U'\u2011', '_'}, {U'\u2012', '_'}, {U'\u2013', '_'}, {U'\u2014', '_'},
        {U'\u2212', '_'}, {U'\u00A0', '_'}, {U'\u2024', '_'}, {U'\u3002', '_'},
};

// Formats that exist although they are one letter from a known component's.
constexpr std::string_view kOtherFormats[] = {"avs",  "avs2", "evc", "heif", "mvc",
                                              "shvc", "svc",  "vc1", "vvc"};
// Words that are right although they are a letter or two from one in a known name.
constexpr std::string_view kOtherWords[] = {"inter", "off",  "low",  "high",
                                            "read",  "load", "node", "code"};

template <typename List>
bool isOneOf(std::string_view word, const List& list) {
    return std::find(std::begin(list), std::end(list), word) != std::end(list);
}

bool isSeparator(char c) {
    return c == '_' || c == '-' || c == '.' || c == ' ' || c == '\t' || c == '/' || c == ':';
}

char latinOf(char32_t character) {
    constexpr char32_t kFullWidth = 0xFEE0;  // From a full-width character to the ASCII one.
    if (character >= 0xFF01 && character <= 0xFF5E) {
        character -= kFullWidth;
    }
    if (character < 0x80) {
        return static_cast<char>(character);
    }
    const auto found =
            std::find_if(std::begin(kLookAlikes), std::end(kLookAlikes),
                         [&](const LookAlike& row) { return row.character == character; });
    return found != std::end(kLookAlikes) ? found->latin : '\0';
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (size_t start = 0; start <= text.size();) {
        const size_t limit = std::min(text.find(separator, start), text.size());
        if (limit > start) {
            parts.emplace_back(text.substr(start, limit - start));
        }
        start = limit + 1;
    }
    return parts;
}

// Digits are the letters that they look like.
constexpr char letterLike(char c) {
    return c == '0' ? 'o' : c == '1' || c == 'i' || c == '|' ? 'l' : c;
}

// Without separators.
std::string squashed(std::string_view read) {
    std::string text;
    for (const char c : read) {
        if (c != '_') {
            text += letterLike(c);
        }
    }
    return text;
}

// Of two texts in small letters; above kMostMistakes where they are further apart.
int letterMistakes(std::string_view a, std::string_view b) {
    return static_cast<int>(editDistance(a, b, kMostMistakes));
}

bool hasSameDigits(std::string_view a, std::string_view b) {
    return digitsOf(a) == digitsOf(b);
}

// Of two words; kUnlike where they are different words.
int wordMistakes(std::string_view word, std::string_view known) {
    constexpr size_t kShort = 3;
    constexpr size_t kLong = 5;
    if (word == known) {
        return 0;
    }
    if (std::min(word.size(), known.size()) < kShort || !hasSameDigits(word, known)) {
        return kUnlike;
    }
    const int mistakes = letterMistakes(word, known);
    return mistakes <= (known.size() >= kLong ? kMostMistakes : 1) ? mistakes : kUnlike;
}

// The first words of the names of this library's own settings.
size_t prefixWords(const std::vector<std::string>& words) {
    constexpr std::string_view kPrefixes[] = {"debug", "private"};
    size_t count = 0;
    while (count < words.size() && isOneOf(words[count], kPrefixes)) {
        ++count;
    }
    return count;
}

bool isSameWithoutPrefix(const std::vector<std::string>& words,
                         const std::vector<std::string>& known) {
    constexpr size_t kFewest = 2;  // A single word may mean anything.
    const size_t skip = prefixWords(words);
    const size_t skipKnown = prefixWords(known);
    return words.size() - skip >= kFewest &&
           std::equal(words.begin() + static_cast<ptrdiff_t>(skip), words.end(),
                      known.begin() + static_cast<ptrdiff_t>(skipKnown), known.end());
}

// A component's name without "c2" or without the vendor.
bool isSameWithoutPart(const std::vector<std::string>& parts,
                       const std::vector<std::string>& known) {
    for (const ptrdiff_t missing : {0, 1}) {
        if (parts.size() + 1 == known.size() &&
            std::equal(parts.begin(), parts.begin() + missing, known.begin()) &&
            std::equal(parts.begin() + missing, parts.end(), known.begin() + missing + 1)) {
            return true;
        }
    }
    return false;
}

// How many letters are in only one of the two. Of two names with as many mistakes, the one that a
// word was left out of is meant rather than one with another word.
size_t leftOver(std::string_view a, std::string_view b) {
    return a.size() + b.size() - 2 * commonLetters(a, b);
}

// What each byte adds to a shape: the bit of the letter or digit that it is read as.
constexpr uint64_t kLetters = (uint64_t{1} << 26) - 1;
constexpr uint64_t kNotAscii = uint64_t{1} << 63;

constexpr std::array<uint64_t, 256> kShapeBits = [] {
    std::array<uint64_t, 256> bits = {};
    for (size_t byte = 0; byte < bits.size(); ++byte) {
        const char c = letterLike(inSmallLetters(static_cast<char>(byte)));
        bits[byte] = byte >= 0x80           ? kNotAscii
                     : c >= 'a' && c <= 'z' ? uint64_t{1} << (c - 'a')
                     : isDigit(c)           ? uint64_t{1} << (26 + c - '0')
                                            : 0;
    }
    return bits;
}();

}  // namespace

std::string readAs(std::string_view name) {
    std::string text;
    for (size_t at = 0; at < name.size();) {
        const char c = latinOf(nextCharacter(name, &at));
        if (c == '\0') {
            continue;  // Nothing to see, or nothing like a letter that names have.
        }
        text += isSeparator(c) ? '_' : inSmallLetters(c);
    }
    return text;
}

NearNames::Reading::Reading(std::string_view name) {
    const std::string read = readAs(name);
    letters = squashed(read);
    words = split(read, '_');
    sortedWords = words;
    std::sort(sortedWords.begin(), sortedWords.end());
}

NearNames::Shape NearNames::shapeOf(std::string_view name) {
    Shape shape;
    for (const char c : name) {
        const uint64_t bit = kShapeBits[static_cast<unsigned char>(c)];
        shape.bits |= bit;
        shape.characters += bit != 0 ? 1 : 0;
    }
    return (shape.bits & kNotAscii) == 0 ? shape : shapeOf(readAs(name));
}

bool NearNames::isNear(const Shape& a, const Shape& b) {
    constexpr int kMostBits = 2 * kMostMistakes;
    const uint64_t difference = a.bits ^ b.bits;
    return (difference & ~kLetters) == 0 && std::popcount(difference) <= kMostBits;
}

void NearNames::addShape(const Shape& shape, size_t entry) {
    if (shape.characters < mByCharacters.size()) {
        mByCharacters[shape.characters].push_back({shape, entry});
    }
}

void NearNames::add(Entry entry) {
    const size_t index = mKnown.size();
    addShape(shapeOf(entry.name), index);
    const Known& known = mKnown.emplace_back(std::move(entry));
    // Also where whole words are left out.
    const std::vector<std::string>& words = known.reading.words;
    const auto addWithout = [&](size_t from, size_t count) {
        std::string text;
        for (size_t i = 0; i < words.size(); ++i) {
            text += i < from || i >= from + count ? words[i] : "";
        }
        addShape(shapeOf(text), index);
    };
    if (mKind == Kind::Component) {
        addWithout(0, 1);
        addWithout(1, 1);
    } else {
        addWithout(0, prefixWords(words));
        addShape(shapeOf(fmt::format("debug{}", known.reading.letters)), index);
    }
    mWords.insert(words.begin(), words.end());
}

int NearNames::mistakesInWords(const Reading& read, const Reading& known) const {
    const bool isComponent = mKind == Kind::Component;
    if (read.sortedWords == known.sortedWords ||
        (isComponent ? isSameWithoutPart(read.words, known.words)
                     : isSameWithoutPrefix(read.words, known.words))) {
        return 1;
    }
    if (read.words.size() != known.words.size()) {
        return kUnlike;
    }
    constexpr size_t kFormat = 2;  // Formats of one letter's difference exist.
    int mistakes = 0;
    for (size_t i = 0; i < read.words.size() && mistakes <= kMostMistakes; ++i) {
        const std::string& word = read.words[i];
        if (word == known.words[i]) {
            continue;
        }
        const bool isOther = mWords.count(word) != 0 || (isComponent ? isOneOf(word, kOtherFormats)
                                                                     : isOneOf(word, kOtherWords));
        const int inWord = isOther ? kUnlike : wordMistakes(word, known.words[i]);
        mistakes += isComponent && i == kFormat && inWord > 1 ? kUnlike : inWord;
    }
    return mistakes <= kMostMistakes ? mistakes : kUnlike;
}

// 0 for what only looks the same, kUnlike for what is another name.
int NearNames::mistakesIn(const Reading& read, const Reading& known) const {
    if (read.letters == known.letters) {
        return 0;
    }
    const int mistakes = mistakesInWords(read, known);
    // A separator may be missing, too; with known words only, it is another name.
    const bool hasOtherWord =
            std::any_of(read.words.begin(), read.words.end(),
                        [&](const std::string& word) { return mWords.count(word) == 0; });
    const bool isJoined = read.words.size() < known.words.size() && hasOtherWord &&
                          hasSameDigits(read.letters, known.letters) &&
                          letterMistakes(read.letters, known.letters) <= 1;
    return std::min(mistakes, isJoined ? 1 : kUnlike);
}

NearNames::Match NearNames::find(std::string_view name, std::string_view group) const {
    Match best;
    auto bestRank = std::pair(kUnlike, size_t{0});
    std::optional<Reading> read;  // Most names are near none.
    const Shape shape = shapeOf(name);
    const size_t first = shape.characters - std::min<size_t>(shape.characters, kMostMistakes);
    const size_t limit = std::min(shape.characters + kMostMistakes + 1, mByCharacters.size());
    for (size_t characters = first; characters < limit; ++characters) {
        for (const Candidate& candidate : mByCharacters[characters]) {
            if (!isNear(candidate.shape, shape)) {
                continue;
            }
            const auto& [entry, reading] = mKnown[candidate.entry];
            if (entry.name == name) {
                return {&entry, true};
            }
            const int mistakes = mistakesIn(read ? *read : read.emplace(name), reading);
            if (mistakes >= kUnlike) {
                continue;
            }
            const auto rank = std::pair(mistakes + (entry.group == group ? 0 : kUnlike / 2),
                                        leftOver(name, entry.name));
            if (rank < bestRank) {
                best.entry = &entry;
                bestRank = rank;
            }
        }
    }
    return best;
}

}  // namespace kc2::tool
