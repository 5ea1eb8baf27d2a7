// Which known name a misspelt one means.

#include "base/NearNames.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "base/Spelling.h"
#include "base/Text.h"
#include "base/Utf8.h"

namespace kc2::tool {

namespace {

constexpr size_t kUnlike = 1000;
constexpr size_t kMostLetters = 2;  // That are wrong in a name, or in one of its words.

// What a mistake costs. A name of a higher cost than that of kMostLetters is another name.
constexpr size_t kLetter = 2;
constexpr size_t kSameMeaning = 1;  // Other words that mean the same, in any number.
constexpr size_t kShortenedWord = 2;
constexpr size_t kOrder = 2;
constexpr size_t kPrefix = 2;
constexpr size_t kMissingWord = 3;
constexpr size_t kMostCost = kMostLetters * kLetter;

constexpr std::string_view kPrivateWord = "private";
constexpr std::string_view kDebugWord = "debug";

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

bool isSmall(char c) {
    return c >= 'a' && c <= 'z';
}

bool isCapital(char c) {
    return c >= 'A' && c <= 'Z';
}

bool isSeparator(char c) {
    return std::string_view("_-. \t/:").find(c) != std::string_view::npos;
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

// Of two texts in small letters; above kMostLetters where they are further apart.
size_t letterMistakes(std::string_view a, std::string_view b) {
    return editDistance(a, b, kMostLetters);
}

bool hasSameDigits(std::string_view a, std::string_view b) {
    return digitsOf(a) == digitsOf(b);
}

bool isExchanged(std::string_view a, std::string_view b) {
    return a.size() == 2 && b.size() == 2 && a[0] == b[1] && a[1] == b[0];
}

// The digits that look like no letter.
std::string plainDigits(std::string_view name) {
    std::string digits;
    std::copy_if(name.begin(), name.end(), std::back_inserter(digits),
                 [](char c) { return isDigit(letterLike(c)); });
    return digits;
}

bool isVowel(char c) {
    return std::string_view("aeiou").find(c) != std::string_view::npos;
}

size_t commonStart(std::string_view a, std::string_view b) {
    const auto differing = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    return static_cast<size_t>(differing.first - a.begin());
}

// Whether `word` is made of letters of `whole` as people shorten words: its start, its consonants,
// or letters up to its last one.
bool isShortened(std::string_view word, std::string_view whole) {
    constexpr size_t kShortest = 2;
    constexpr size_t kShortestStart = 3;
    constexpr size_t kShortestWhole = 4;
    if (word.size() < kShortest || word.size() >= whole.size() || whole.size() < kShortestWhole ||
        word[0] != whole[0] || commonLetters(word, whole) != word.size()) {
        return false;
    }
    const bool isStart = word.size() >= kShortestStart && whole.starts_with(word);
    return isStart || word.back() == whole.back() ||
           std::none_of(word.begin() + 1, word.end(), isVowel);
}

// Whether the two have one stem: enable and enabled, allocate and allocation.
bool hasSameStem(std::string_view word, std::string_view known) {
    constexpr size_t kStem = 6;
    constexpr size_t kShortestWord = 5;
    constexpr size_t kLongestEnd = 4;
    const size_t common = commonStart(word, known);
    return std::max(word.size(), known.size()) - common <= kLongestEnd &&
           (common >= kStem || (common == known.size() && common >= kShortestWord));
}

// How many letters are in only one of the two. Of two names with as many mistakes, the one that a
// word was left out of is meant rather than one with another word.
size_t leftOver(std::string_view a, std::string_view b) {
    return a.size() + b.size() - 2 * commonLetters(a, b);
}

// With "_" where a capital letter begins a word.
std::string withWords(std::string_view name) {
    std::string text;
    for (size_t i = 0; i < name.size(); ++i) {
        const bool isAfterSmall = i > 0 && (isSmall(name[i - 1]) || isDigit(name[i - 1]));
        const bool isBeforeSmall =
                i > 0 && isCapital(name[i - 1]) && i + 1 < name.size() && isSmall(name[i + 1]);
        text += isCapital(name[i]) && (isAfterSmall || isBeforeSmall) ? "_" : "";
        text += name[i];
    }
    return text;
}

// A prefix may be misspelt or shortened, or have another end.
bool isPrefix(std::string_view word, std::string_view prefix) {
    constexpr size_t kStem = 5;
    if (word == prefix || commonForm(NameKind::Setting, word) == prefix) {
        return true;
    }
    const bool isNear = letterMistakes(word, prefix) <= kMostLetters &&
                        word.size() + kMostLetters > prefix.size();
    return !isWord(NameKind::Setting, word) &&
           (isNear || isShortened(word, prefix) || commonStart(word, prefix) >= kStem);
}

}  // namespace

// --- What is compared ---

// Named, since a class of the header has members of these types: a compiler that sees several files
// as one warns otherwise.
inline namespace near_names {

constexpr uint64_t kLetters = (uint64_t{1} << 26) - 1;

// A name without order and separators.
struct Shape {
    size_t characters = 0;
    uint64_t bits = 0;  // Of the letters and digits that it has.

    bool operator==(const Shape&) const = default;
};

// What each byte adds to a shape: the bit of the letter or digit that it is read as. A table, since
// every name of a document is looked up here.
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

Shape shapeOf(std::string_view name) {
    Shape shape;
    for (const char byte : name) {
        const uint64_t bit = kShapeBits[static_cast<unsigned char>(byte)];
        shape.bits |= bit;
        shape.characters += bit != 0 ? 1 : 0;
    }
    return (shape.bits & kNotAscii) == 0 ? shape : shapeOf(readAs(name));
}

struct Spelling {
    std::string text;
    std::string_view form = {};  // What stands for all words that mean the same.
    uint64_t bits = 0;           // Of its shape.

    // The form points into the text, which must stay where it is from now on.
    void complete(NameKind kind) {
        form = commonForm(kind, text);
        bits = shapeOf(text).bits;
    }
};

struct Word : Spelling {
    Spelling withNext;     // With the next word, as one.
    bool isKnown = false;  // Known names have it.
    bool isOther = false;  // It exists, so it is no other word misspelt.
    bool isFormOther = false;
};

// Words that known names are made of.
using WordSet = std::unordered_set<std::string_view>;
using Words = std::span<const Word>;

// A name as it is compared.
struct Reading {
    // Without `knownWords`, of a known name.
    Reading(NameKind kind, std::string_view name, const WordSet* knownWords = nullptr);
    Reading(const Reading&) = delete;

    size_t prefixWords() const { return (hasDebug ? 1 : 0) + (hasPrivate ? 1 : 0); }
    Words body() const { return Words(words).subspan(prefixWords()); }

    NameKind kind;
    std::string letters;  // And digits, without separators.
    std::vector<Word> words;
    std::vector<std::string_view> sortedForms;
    bool hasDebug = false;  // Its first words are debug and private, perhaps misspelt.
    bool hasPrivate = false;
    bool isPrefixExact = true;
};

Reading::Reading(NameKind ofKind, std::string_view name, const WordSet* knownWords)
    : kind(ofKind), letters(squashed(readAs(name))) {
    const std::string read = readAs(withWords(name));
    for (const std::string_view text : split(read, '_')) {
        words.emplace_back().text = text;
    }
    const auto isOther = [&](std::string_view word) {
        return knownWords->contains(word) || isWord(kind, word);
    };
    for (size_t i = 0; i < words.size(); ++i) {
        Word& word = words[i];
        word.complete(kind);
        if (i + 1 < words.size()) {
            word.withNext.text = word.text + words[i + 1].text;
            word.withNext.complete(kind);
        }
        if (knownWords != nullptr) {
            word.isKnown = knownWords->contains(word.text);
            word.isOther = isOther(word.text);
            word.isFormOther = isOther(word.form);
        }
        sortedForms.push_back(word.form);
    }
    std::sort(sortedForms.begin(), sortedForms.end());
    if (kind != NameKind::Setting || words.empty()) {
        return;
    }
    const bool isSecond = words.size() > 1 && isPrefix(words[1].text, kPrivateWord);
    hasDebug = words[0].text == kDebugWord || (isSecond && isPrefix(words[0].text, kDebugWord));
    hasPrivate = hasDebug ? isSecond : isPrefix(words[0].text, kPrivateWord);
    isPrefixExact = (!hasDebug || words[0].text == kDebugWord) &&
                    (!hasPrivate || words[hasDebug ? 1 : 0].text == kPrivateWord);
}

}  // namespace near_names

namespace {

// --- How far two names are apart ---

// Of two words; kUnlike where they are different words.
size_t wordCost(NameKind kind, std::string_view word, std::string_view known) {
    constexpr size_t kShort = 2;
    constexpr size_t kLong = 6;
    const size_t letters = letterMistakes(word, known);
    const std::string digits = digitsOf(known);
    const bool lacksDigit = letters == 1 && digits.size() == 1 && digitsOf(word).empty();
    if (digitsOf(word) != digits && !lacksDigit) {
        return kUnlike;
    }
    // Another word of two letters is as likely.
    const bool isAnother = kind == NameKind::Setting && known.size() <= kShort &&
                           word.size() == known.size() && !isExchanged(word, known);
    if (!isAnother && letters <= (known.size() >= kLong ? kMostLetters : 1)) {
        return letters * kLetter;
    }
    return isShortened(word, known) || hasSameStem(word, known) ? kShortenedWord : kUnlike;
}

size_t costOfWord(NameKind kind, const Word& word, const Word& known) {
    constexpr int kMostBits = 2 * kMostLetters;
    if (word.form == known.form) {
        return word.text == known.text ? 0 : kSameMeaning;
    }
    // What is shortened or has the same stem begins with the same letter.
    if (word.isOther ||
        (word.text[0] != known.text[0] && std::popcount(word.bits ^ known.bits) > kMostBits)) {
        return kUnlike;
    }
    // A shortened word may also be this one without a letter: en is enable, or enc misspelt.
    const size_t cost = wordCost(kind, word.text, known.text);
    return word.isFormOther && cost > kLetter ? kUnlike : cost;
}

// Of two words that may be one in the other name.
size_t costOfPair(const Spelling& pair, const Spelling& whole) {
    constexpr size_t kShortest = 6;  // Below it, the two words may be anything.
    if (pair.form == whole.form) {
        return pair.text == whole.text ? 0 : kSameMeaning;
    }
    const bool isNearly =
            pair.text.size() >= kShortest && std::popcount(pair.bits ^ whole.bits) <= 2 &&
            hasSameDigits(pair.text, whole.text) && letterMistakes(pair.text, whole.text) <= 1;
    return isNearly ? kLetter : kUnlike;
}

// The least cost of the words of one name as those of the other one, in their order.
size_t costOfWords(NameKind kind, Words read, Words known) {
    constexpr size_t kMost = 5;
    if (std::max(read.size(), known.size()) > kMost) {
        return kUnlike;
    }
    size_t costs[kMost + 1][kMost + 1];
    std::fill(&costs[0][0], &costs[kMost][kMost] + 1, kUnlike);
    costs[0][0] = 0;
    for (size_t i = 0; i < read.size(); ++i) {
        for (size_t j = 0; j < known.size(); ++j) {
            const size_t cost = costs[i][j];
            if (cost > kMostCost) {
                continue;
            }
            const auto reach = [&](size_t a, size_t b, size_t more) {
                costs[a][b] = std::min(costs[a][b], cost + more);
            };
            reach(i + 1, j + 1, costOfWord(kind, read[i], known[j]));
            if (j + 2 <= known.size()) {
                reach(i + 1, j + 2, costOfPair(known[j].withNext, read[i]));
            }
            if (i + 2 <= read.size()) {
                reach(i + 2, j + 1, costOfPair(read[i].withNext, known[j]));
            }
        }
    }
    return costs[read.size()][known.size()];
}

size_t lettersIn(Words words) {
    return std::accumulate(words.begin(), words.end(), size_t{0},
                           [](size_t sum, const Word& word) { return sum + word.text.size(); });
}

// Whether what is left of a name without one word can mean that name only.
bool isEnough(const Reading& read, const Reading& known) {
    constexpr size_t kMany = 3;
    const Words body = read.body();
    if (body.size() >= kMany || read.kind == NameKind::Component) {
        return body.size() >= kMany;
    }
    // The prefix says that it is one of the store's own names.
    if (body.size() == 2 && read.hasPrivate && read.isPrefixExact) {
        return true;
    }
    // Of two words half of the letters, of one three quarters.
    const bool isMost = body.size() == 1 ? 4 * lettersIn(body) >= 3 * lettersIn(known.body())
                                         : 2 * lettersIn(body) >= lettersIn(known.body());
    return isMost && std::any_of(body.begin(), body.end(),
                                 [](const Word& word) { return !isGeneric(word.form); });
}

// How far a name is from a known one.
struct Distance {
    size_t cost;
    bool lacksWord = false;
};

// Of names without their prefix.
Distance distanceOfBodies(const Reading& read, const Reading& known) {
    Words left = read.body();
    Words other = known.body();
    size_t cost = 0;
    const auto isSame = [&](const Word& a, const Word& b) {
        cost = a.form == b.form && a.text != b.text ? kSameMeaning : cost;
        return a.form == b.form;
    };
    while (!left.empty() && !other.empty() && isSame(left.front(), other.front())) {
        left = left.subspan(1);
        other = other.subspan(1);
    }
    const bool isAfterSame = left.size() != read.body().size();
    while (!left.empty() && !other.empty() && isSame(left.back(), other.back())) {
        left = left.first(left.size() - 1);
        other = other.first(other.size() - 1);
    }
    if (left.empty() && other.size() == 1) {
        return {isEnough(read, known) ? cost + kMissingWord : kUnlike, true};
    }
    if (other.empty() && left.size() == 1) {  // A word twice.
        const bool isTwice = isAfterSame && (&left.front())[-1].text == left.front().text;
        return {isTwice ? cost + kLetter : kUnlike};
    }
    return {cost + costOfWords(read.kind, left, other)};
}

size_t prefixCost(const Reading& read, const Reading& known) {
    const size_t wrong = read.isPrefixExact ? 0 : kPrefix;
    if (read.hasDebug == known.hasDebug && read.hasPrivate == known.hasPrivate) {
        return wrong;
    }
    const bool hasOneOf = read.hasPrivate || (read.hasDebug && known.hasDebug);
    return hasOneOf && known.hasPrivate ? wrong + kPrefix : kUnlike;
}

// Whether it is the known name without its prefix. A single word may mean anything.
bool isWithoutPrefix(const Reading& read, const Reading& known) {
    const Words body = known.body();
    return read.prefixWords() == 0 && body.size() > 1 &&
           std::equal(body.begin(), body.end(), read.words.begin(), read.words.end(),
                      [](const Word& a, const Word& b) { return a.text == b.text; });
}

// A cost of 0 for what only looks the same, kUnlike for what is another name.
Distance distanceOf(const Reading& read, const Reading& known) {
    if (read.letters == known.letters) {
        return {0};
    }
    if (read.sortedForms == known.sortedForms) {
        const bool isReordered =
                !std::equal(read.words.begin(), read.words.end(), known.words.begin(),
                            [](const Word& a, const Word& b) { return a.form == b.form; });
        return {isReordered ? kOrder : kSameMeaning};
    }
    if (isWithoutPrefix(read, known)) {
        return {kPrefix};
    }
    Distance distance = {prefixCost(read, known)};
    if (distance.cost <= kMostCost) {
        const Distance body = distanceOfBodies(read, known);
        distance = {distance.cost + body.cost, body.lacksWord};
    }
    // A separator may be missing, too; with known words only, it is another name.
    const bool isJoined = distance.cost > kLetter && read.words.size() < known.words.size() &&
                          letterMistakes(read.letters, known.letters) <= 1 &&
                          hasSameDigits(read.letters, known.letters) &&
                          std::any_of(read.words.begin(), read.words.end(),
                                      [](const Word& word) { return !word.isKnown; });
    return isJoined && !distance.lacksWord ? Distance{kLetter} : distance;
}

// Whether only the spelling is wrong.
bool isCertain(const Reading& read, const Reading& known) {
    const auto hasText = [&](const Word& word) {
        return std::any_of(known.words.begin(), known.words.end(),
                           [&](const Word& one) { return one.text == word.text; });
    };
    return letterMistakes(read.letters, known.letters) <= kMostLetters ||
           std::all_of(read.words.begin(), read.words.end(), hasText) ||
           (read.hasDebug && !known.hasDebug);
}

// The letters of the words that are in both, whatever their order.
size_t commonWords(Words read, Words known) {
    size_t letters = 0;
    for (const Word& word : read) {
        const bool isInBoth = std::any_of(known.begin(), known.end(),
                                          [&](const Word& one) { return one.form == word.form; });
        letters += isInBoth ? word.text.size() : 0;
    }
    return letters;
}

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

bool hasPrivatePrefix(std::string_view name) {
    return name.starts_with("private_") || name.starts_with("debug_private_");
}

// --- The known names ---

struct NearNames::Known {
    Known(NameKind kind, Entry from) : entry(std::move(from)), reading(kind, entry.name) {
        std::string body;
        for (const Word& word : reading.body()) {
            body += word.text;
        }
        shapeOfBody = shapeOf(body);
    }

    Entry entry;
    Reading reading;
    Shape shape = shapeOf(entry.name);
    Shape shapeOfBody;
};

NearNames::NearNames(NameKind kind) : mKind(kind) {}
NearNames::~NearNames() = default;

// The digits of the name, also without one of its words or with one that means the same.
void NearNames::addDigits(const Known& known) {
    const std::vector<Word>& words = known.reading.words;
    for (size_t at = 0; at < words.size(); ++at) {
        std::vector<std::string_view> choices = split(wordsLike(mKind, words[at].form), ' ');
        choices.insert(choices.end(), {"", words[at].text});
        for (const std::string_view choice : choices) {
            std::string digits;
            for (size_t i = 0; i < words.size(); ++i) {
                digits += plainDigits(i == at ? choice : words[i].text);
            }
            mDigitBits.insert(shapeOf(digits).bits);
            mDigits.insert(std::move(digits));
        }
    }
}

void NearNames::add(Entry entry) {
    constexpr size_t kStart = 5;
    const Known& known = mKnown.emplace_back(mKind, std::move(entry));
    mByName.emplace(known.entry.name, &known.entry);
    addDigits(known);
    mStarts.insert(known.reading.letters.substr(0, kStart));
    for (const Word& word : known.reading.words) {
        mWords.insert(word.text);
        mWords.insert(word.form);
    }
}

// --- The search ---

// Whether it begins about as a known name. Others can only look the same, have the same words in
// another order, or lack the prefix: they have the same letters.
bool NearNames::isComparedWithAll(std::string_view name) const {
    constexpr size_t kLooked = 4;
    constexpr int kEnough = 3;
    std::string start;
    for (size_t i = 0; i < name.size() && start.size() < kLooked; ++i) {
        if (!isSeparator(name[i])) {
            start += letterLike(inSmallLetters(name[i]));
        }
    }
    return mKind == NameKind::Component ||
           std::any_of(mStarts.begin(), mStarts.end(), [&](const std::string& known) {
               return std::count_if(start.begin(), start.end(), [&](char c) {
                          return known.find(c) != std::string::npos;
                      }) >= kEnough;
           });
}

NearNames::Match NearNames::find(std::string_view name, std::string_view group) const {
    constexpr size_t kLongest = 200;      // Nobody writes a longer name by mistake.
    constexpr int kMostOtherLetters = 6;  // A word that is written out has some more.
    if (const auto exact = mByName.find(name); exact != mByName.end()) {
        return {.entry = exact->second, .isExact = true, .isCertain = true};
    }
    const Shape shape = shapeOf(name);
    if (name.size() > kLongest || !mDigitBits.contains(shape.bits & ~kLetters) ||
        !mDigits.contains(plainDigits(name))) {
        return {};
    }
    struct Near {
        std::pair<size_t, size_t> rank;
        const Known* known;
        bool lacksWord;
    };
    std::vector<Near> found;
    std::optional<Reading> read;  // Most names are near none.
    const bool isWithAll = isComparedWithAll(name);
    for (const Known& known : mKnown) {
        const uint64_t otherLetters = shape.bits & ~known.shape.bits & kLetters;
        if (isWithAll ? std::popcount(otherLetters) > kMostOtherLetters
                      : shape != known.shape && shape != known.shapeOfBody) {
            continue;
        }
        if (!read) {
            read.emplace(mKind, name, &mWords);
        }
        const Distance distance = distanceOf(*read, known.reading);
        if (distance.cost <= kMostCost) {
            // Which of two words is missing is unknown, whatever its length.
            found.push_back({{distance.cost + (known.entry.group == group ? 0 : kUnlike),
                              distance.lacksWord ? 0 : leftOver(name, known.entry.name)},
                             &known,
                             distance.lacksWord});
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Near& a, const Near& b) { return a.rank < b.rank; });
    const auto isAsNear = [&](size_t i) {
        return i < found.size() && found[i].rank == found[0].rank;
    };
    if (found.empty() || isAsNear(2)) {
        return {};
    }
    // Another name may have as many mistakes.
    const bool isAlone = found.size() == 1 || found[1].rank.first != found[0].rank.first;
    return {.entry = &found[0].known->entry,
            .other = isAsNear(1) ? &found[1].known->entry : nullptr,
            .isCertain =
                    isAlone && !found[0].lacksWord && isCertain(*read, found[0].known->reading)};
}

bool NearNames::isVariation(std::string_view name, std::string_view other) const {
    constexpr size_t kShortWord = 3;  // Of which any may be a word.
    const Reading read(mKind, name, &mWords);
    const Reading known(mKind, other);
    const Distance distance = distanceOf(read, known);
    if (distance.cost > kLetter || distance.lacksWord) {
        return false;
    }
    const auto isNoOtherShort = [&](const Word& a, const Word& b) {
        return a.form == b.form || std::max(a.text.size(), b.text.size()) > kShortWord;
    };
    return read.letters == known.letters || read.sortedForms == known.sortedForms ||
           read.words.size() != known.words.size() ||
           std::equal(read.words.begin(), read.words.end(), known.words.begin(), isNoOtherShort);
}

const NearNames::Entry* NearNames::closest(std::string_view name) const {
    constexpr size_t kLeast = 3;  // One in three letters.
    const Reading read(mKind, name);
    const size_t whole = lettersIn(read.body());
    const Entry* best = nullptr;
    std::pair<size_t, size_t> bestRank;
    for (const Known& known : mKnown) {
        const size_t common = commonWords(read.body(), known.reading.body());
        const auto rank = std::pair(whole - common, leftOver(read.letters, known.reading.letters));
        if (common != 0 && kLeast * common >= whole && (best == nullptr || rank < bestRank)) {
            best = &known.entry;
            bestRank = rank;
        }
    }
    return best;
}

const NearNames::Entry* NearNames::withWordsOf(std::string_view name) const {
    const Reading read(mKind, name);
    std::vector<std::string_view> forms = read.sortedForms;
    forms.erase(std::unique(forms.begin(), forms.end()), forms.end());
    const auto found = std::find_if(mKnown.begin(), mKnown.end(), [&](const Known& known) {
        const std::vector<std::string_view>& own = known.reading.sortedForms;
        return !forms.empty() && std::includes(own.begin(), own.end(), forms.begin(), forms.end());
    });
    return found != mKnown.end() ? &found->entry : nullptr;
}

}  // namespace kc2::tool
