// Which known name a misspelt one means.

#include "base/NearNames.h"

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
constexpr int kMostLetters = 2;  // That are wrong in a name, or in one of its words.

// What a mistake costs. A name of a higher cost than that of kMostLetters is another name.
constexpr int kLetter = 2;
constexpr int kSameMeaning = 1;  // Other words that mean the same, in any number.
constexpr int kShortenedWord = 2;
constexpr int kOrder = 2;
constexpr int kPrefix = 2;
constexpr int kMissingWord = 3;
constexpr int kMostCost = kMostLetters * kLetter;

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

template <typename List>
bool isOneOf(std::string_view word, const List& list) {
    return std::find(std::begin(list), std::end(list), word) != std::end(list);
}

bool isSmall(char c) {
    return c >= 'a' && c <= 'z';
}

bool isCapital(char c) {
    return c >= 'A' && c <= 'Z';
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

// Of two texts in small letters; above kMostLetters where they are further apart.
int letterMistakes(std::string_view a, std::string_view b) {
    return static_cast<int>(editDistance(a, b, kMostLetters));
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
    for (const char c : name) {
        digits += isDigit(letterLike(c)) ? std::string_view(&c, 1) : std::string_view();
    }
    return digits;
}

bool isVowel(char c) {
    return c == 'a' || c == 'e' || c == 'i' || c == 'o' || c == 'u';
}

size_t commonStart(std::string_view a, std::string_view b) {
    const size_t shorter = std::min(a.size(), b.size());
    return static_cast<size_t>(
            std::mismatch(a.begin(), a.begin() + static_cast<ptrdiff_t>(shorter), b.begin()).first -
            a.begin());
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

// What each byte adds to a shape: the bit of the letter or digit that it is read as.
constexpr uint64_t kLetters = (uint64_t{1} << 26) - 1;
constexpr uint64_t kDigits = ((uint64_t{1} << 10) - 1) << 26;
constexpr size_t digitSet(uint64_t bits) {
    return static_cast<size_t>((bits & kDigits) >> 26);
}
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

// --- What is compared ---

NearNames::Reading::Reading(NameKind kind, std::string_view name) {
    letters = squashed(readAs(name));
    for (std::string& text : split(readAs(withWords(name)), '_')) {
        words.push_back({.text = std::move(text)});
    }
    for (size_t i = 1; i < words.size(); ++i) {
        pairs.push_back({.text = words[i - 1].text + words[i].text});
    }
    for (std::vector<Word>* const list : {&words, &pairs}) {
        for (Word& word : *list) {
            word.form = commonForm(kind, word.text);
            word.bits = bitsOf(word.text);
        }
    }
    for (const Word& word : words) {
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

uint64_t NearNames::bitsOf(std::string_view name) {
    uint64_t bits = 0;
    for (const char c : name) {
        bits |= kShapeBits[static_cast<unsigned char>(c)];
    }
    return (bits & kNotAscii) == 0 ? bits : bitsOf(readAs(name));
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

NearNames::Words NearNames::bodyOf(const Reading& reading) {
    return {&reading, reading.prefixWords(), reading.words.size()};
}

// --- The known names ---

void NearNames::addShape(const Shape& shape, const Known& known) {
    if (shape.characters < mByCharacters.size()) {
        mByCharacters[shape.characters].push_back({shape, &known});
    }
}

// The digits of the name, also without one of its words or with one that means the same.
void NearNames::addDigits(const Reading& reading) {
    const auto add = [&](size_t at, std::string_view instead) {
        std::string digits;
        for (size_t i = 0; i < reading.words.size(); ++i) {
            digits += plainDigits(i == at ? instead : reading.words[i].text);
        }
        const auto place = std::lower_bound(mDigits.begin(), mDigits.end(), digits);
        if (place == mDigits.end() || *place != digits) {
            mDigitSets.set(digitSet(bitsOf(digits)));
            mDigits.insert(place, std::move(digits));
        }
    };
    for (size_t at = 0; at < reading.words.size(); ++at) {
        const Word& word = reading.words[at];
        add(at, "");
        add(at, word.text);
        for (const std::string& instead : split(wordsLike(mKind, word.form), ' ')) {
            if ((bitsOf(instead) & kDigits) != 0) {
                add(at, instead);
            }
        }
    }
}

void NearNames::add(Entry entry) {
    constexpr size_t kStart = 5;
    const Known& known = mKnown.emplace_back(mKind, std::move(entry));
    mByName.emplace(known.entry.name, &known);
    addShape(known.shape, known);
    addDigits(known.reading);
    if (mKind == NameKind::Setting) {
        std::string body;
        for (const Word& word : bodyOf(known.reading)) {
            body += word.text;
        }
        addShape(shapeOf(body), known);
    }
    std::string start = known.reading.letters.substr(0, kStart);
    if (!isOneOf(start, mStarts)) {
        mStarts.push_back(std::move(start));
    }
    for (const Word& word : known.reading.words) {
        mWords.insert(word.text);
        mWords.insert(word.form);
    }
}

// --- How far two names are apart ---

bool NearNames::isOtherWord(std::string_view word) const {
    return mWords.count(word) != 0 || isWord(mKind, word);
}

// Of two words; kUnlike where they are different words.
int NearNames::wordCost(std::string_view word, std::string_view known) const {
    constexpr size_t kShort = 2;
    constexpr size_t kLong = 6;
    const int letters = letterMistakes(word, known);
    const std::string digits = digitsOf(known);
    const bool lacksDigit = letters == 1 && digits.size() == 1 && digitsOf(word).empty();
    if (digitsOf(word) != digits && !lacksDigit) {
        return kUnlike;
    }
    // Another word of two letters is as likely.
    const bool isAnother = mKind == NameKind::Setting && known.size() <= kShort &&
                           word.size() == known.size() && !isExchanged(word, known);
    if (!isAnother && letters <= (known.size() >= kLong ? kMostLetters : 1)) {
        return letters * kLetter;
    }
    return isShortened(word, known) || hasSameStem(word, known) ? kShortenedWord : kUnlike;
}

int NearNames::costOfWord(const Word& word, const Word& known) const {
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
    const int cost = wordCost(word.text, known.text);
    return word.isFormOther && cost > kLetter ? kUnlike : cost;
}

// Of two words that may be one in the other name.
int NearNames::costOfPair(const Word& pair, const Word& whole) {
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
int NearNames::costOfWords(Words read, Words known) const {
    constexpr size_t kMost = 5;
    if (std::max(read.size(), known.size()) > kMost) {
        return kUnlike;
    }
    std::array<std::array<int, kMost + 1>, kMost + 1> costs;
    for (auto& row : costs) {
        row.fill(kUnlike);
    }
    costs[0][0] = 0;
    for (size_t i = 0; i < read.size(); ++i) {
        for (size_t j = 0; j < known.size(); ++j) {
            const int cost = costs[i][j];
            if (cost > kMostCost) {
                continue;
            }
            const auto reach = [&](size_t a, size_t b, int more) {
                costs[a][b] = std::min(costs[a][b], cost + more);
            };
            const Word& word = read.begin()[i];
            const Word& other = known.begin()[j];
            reach(i + 1, j + 1, costOfWord(word, other));
            if (j + 2 <= known.size()) {
                reach(i + 1, j + 2, costOfPair(known.reading->pairs[known.first + j], word));
            }
            if (i + 2 <= read.size()) {
                reach(i + 2, j + 1, costOfPair(read.reading->pairs[read.first + i], other));
            }
        }
    }
    return costs[read.size()][known.size()];
}

// Whether what is left of a name without one word can mean that name only.
bool NearNames::isEnough(Words read, Words known) const {
    constexpr size_t kMany = 3;
    if (read.size() >= kMany || mKind == NameKind::Component) {
        return read.size() >= kMany;
    }
    // The prefix says that it is one of the store's own names.
    if (read.size() == 2 && read.reading->hasPrivate && read.reading->isPrefixExact) {
        return true;
    }
    const auto lettersOf = [](Words words) {
        size_t letters = 0;
        for (const Word& word : words) {
            letters += word.text.size();
        }
        return letters;
    };
    // Of two words half of the letters, of one three quarters.
    const bool isMost = read.size() == 1 ? 4 * lettersOf(read) >= 3 * lettersOf(known)
                                         : 2 * lettersOf(read) >= lettersOf(known);
    return isMost && std::any_of(read.begin(), read.end(),
                                 [](const Word& word) { return !isGeneric(word.form); });
}

// Of names without their prefix.
NearNames::Distance NearNames::distanceOfBodies(Words read, Words known) const {
    const Words whole[] = {read, known};
    int cost = 0;
    const auto isSame = [&](const Word& a, const Word& b) {
        cost = a.form == b.form && a.text != b.text ? kSameMeaning : cost;
        return a.form == b.form;
    };
    while (!read.isEmpty() && !known.isEmpty() && isSame(*read.begin(), *known.begin())) {
        ++read.first;
        ++known.first;
    }
    while (!read.isEmpty() && !known.isEmpty() && isSame(read.end()[-1], known.end()[-1])) {
        --read.limit;
        --known.limit;
    }
    if (read.isEmpty() && known.size() == 1) {
        const bool isMeant = isEnough(whole[0], whole[1]);
        return {isMeant ? cost + kMissingWord : kUnlike, true};
    }
    if (known.isEmpty() && read.size() == 1) {  // A word twice.
        const bool isTwice =
                read.first != whole[0].first && read.begin()[-1].text == read.begin()->text;
        return {isTwice ? cost + kLetter : kUnlike};
    }
    return {cost + costOfWords(read, known)};
}

int NearNames::prefixCost(const Reading& read, const Reading& known) {
    const int wrong = read.isPrefixExact ? 0 : kPrefix;
    if (read.hasDebug == known.hasDebug && read.hasPrivate == known.hasPrivate) {
        return wrong;
    }
    const bool hasOneOf = read.hasPrivate || (read.hasDebug && known.hasDebug);
    return hasOneOf && known.hasPrivate ? wrong + kPrefix : kUnlike;
}

// Whether it is the known name without its prefix. A single word may mean anything.
bool NearNames::isWithoutPrefix(const Reading& read, const Reading& known) {
    const Words body = bodyOf(known);
    return read.prefixWords() == 0 && body.size() > 1 && read.words.size() == body.size() &&
           std::equal(body.begin(), body.end(), read.words.begin(),
                      [](const Word& a, const Word& b) { return a.text == b.text; });
}

// A cost of 0 for what only looks the same, kUnlike for what is another name.
NearNames::Distance NearNames::distanceOf(const Reading& read, const Reading& known) const {
    if (read.letters == known.letters) {
        return {0};
    }
    if (read.sortedForms == known.sortedForms) {
        const bool isReordered = !std::equal(
                read.words.begin(), read.words.end(), known.words.begin(), known.words.end(),
                [](const Word& a, const Word& b) { return a.form == b.form; });
        return {isReordered ? kOrder : kSameMeaning};
    }
    if (isWithoutPrefix(read, known)) {
        return {kPrefix};
    }
    Distance distance = {prefixCost(read, known)};
    if (distance.cost <= kMostCost) {
        const Distance body = distanceOfBodies(bodyOf(read), bodyOf(known));
        distance = {distance.cost + body.cost, body.lacksWord};
    }
    // A separator may be missing, too; with known words only, it is another name.
    const bool isJoined = distance.cost > kLetter && read.words.size() < known.words.size() &&
                          letterMistakes(read.letters, known.letters) <= 1 &&
                          hasSameDigits(read.letters, known.letters) &&
                          std::any_of(read.words.begin(), read.words.end(), [&](const Word& word) {
                              return mWords.count(word.text) == 0;
                          });
    return isJoined && !distance.lacksWord ? Distance{kLetter} : distance;
}

// Whether only the spelling is wrong.
bool NearNames::isCertain(const Reading& read, const Reading& known) {
    const auto hasText = [&](const Word& word) {
        return std::any_of(known.words.begin(), known.words.end(),
                           [&](const Word& one) { return one.text == word.text; });
    };
    return letterMistakes(read.letters, known.letters) <= kMostLetters ||
           std::all_of(read.words.begin(), read.words.end(), hasText) ||
           (read.hasDebug && !known.hasDebug);
}

// --- The search ---

struct NearNames::Search {
    std::string_view name;
    std::string_view group;
    uint64_t bits;                     // Of its shape.
    std::optional<Reading> read = {};  // Most names are near none.
    const Known* best = nullptr;
    const Known* other = nullptr;
    size_t asNear = 0;  // As many more.
    std::pair<int, size_t> rank = {kUnlike, 0};
    bool isUnsure = false;  // A word is missing, or another name has as many mistakes.
};

void NearNames::compare(Search* search, const Known& known) const {
    constexpr int kMostOtherLetters = 6;  // A word that is written out has some more.
    if (&known == search->best || &known == search->other ||
        std::popcount(search->bits & ~known.shape.bits & kLetters) > kMostOtherLetters) {
        return;
    }
    if (!search->read) {
        search->read.emplace(readingOf(search->name));
    }
    const Distance distance = distanceOf(*search->read, known.reading);
    if (distance.cost > kMostCost) {
        return;
    }
    // Which of two words is missing is unknown, whatever its length.
    const auto rank = std::pair(distance.cost + (known.entry.group == search->group ? 0 : kUnlike),
                                distance.lacksWord ? 0 : leftOver(search->name, known.entry.name));
    const bool isTie = search->best != nullptr && rank.first == search->rank.first;
    if (isTie && rank == search->rank) {
        search->other = &known;
        ++search->asNear;
    } else if (search->best == nullptr || rank < search->rank) {
        search->best = &known;
        search->other = nullptr;
        search->asNear = 0;
        search->rank = rank;
        search->isUnsure = distance.lacksWord;
    }
    search->isUnsure = search->isUnsure || isTie;
}

NearNames::Reading NearNames::readingOf(std::string_view name) const {
    Reading reading(mKind, name);
    for (Word& word : reading.words) {
        word.isOther = isOtherWord(word.text);
        word.isFormOther = isOtherWord(word.form);
    }
    return reading;
}

// Whether it begins about as a known name. Others can only look the same, have the same words in
// another order, or lack the prefix: they have the same letters.
bool NearNames::isComparedWithAll(std::string_view name) const {
    constexpr size_t kLooked = 4;
    constexpr int kEnough = 3;
    std::string start;
    for (size_t i = 0; i < name.size() && start.size() < kLooked; ++i) {
        const char c = letterLike(inSmallLetters(name[i]));
        start += isSeparator(c) ? std::string_view() : std::string_view(&c, 1);
    }
    return mKind == NameKind::Component ||
           std::any_of(mStarts.begin(), mStarts.end(), [&](const std::string& known) {
               return std::count_if(start.begin(), start.end(), [&](char c) {
                          return known.find(c) != std::string::npos;
                      }) >= kEnough;
           });
}

NearNames::Match NearNames::find(std::string_view name, std::string_view group) const {
    constexpr size_t kLongest = 200;  // Nobody writes a longer name by mistake.
    Search search = {.name = name, .group = group, .bits = bitsOf(name)};
    if (!mDigitSets.test(digitSet(search.bits))) {
        return {};
    }
    if (const auto exact = mByName.find(name); exact != mByName.end()) {
        return {.entry = &exact->second->entry, .isExact = true, .isCertain = true};
    }
    if (name.size() > kLongest ||
        !std::binary_search(mDigits.begin(), mDigits.end(), plainDigits(name))) {
        return {};
    }
    if (isComparedWithAll(name)) {
        for (const Known& known : mKnown) {
            compare(&search, known);
        }
    } else {
        const Shape shape = shapeOf(name);
        for (const Candidate& candidate :
             mByCharacters[std::min(shape.characters, kMostCharacters - 1)]) {
            if (candidate.shape.bits == shape.bits) {
                compare(&search, *candidate.known);
            }
        }
    }
    if (search.best == nullptr || search.asNear > 1) {
        return {};
    }
    return {.entry = &search.best->entry,
            .other = search.other != nullptr ? &search.other->entry : nullptr,
            .isCertain = !search.isUnsure && isCertain(*search.read, search.best->reading)};
}

bool NearNames::isVariation(std::string_view name, std::string_view other) const {
    constexpr size_t kShortWord = 3;  // Of which any may be a word.
    const Reading read = readingOf(name);
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

// The letters of the words that are in both, whatever their order.
size_t NearNames::commonWords(Words read, Words known) {
    size_t letters = 0;
    for (const Word& word : read) {
        const bool isInBoth = std::any_of(known.begin(), known.end(),
                                          [&](const Word& one) { return one.form == word.form; });
        letters += isInBoth ? word.text.size() : 0;
    }
    return letters;
}

const NearNames::Entry* NearNames::closest(std::string_view name) const {
    constexpr size_t kLeast = 3;  // One in three letters.
    const Reading read(mKind, name);
    const size_t whole = commonWords(bodyOf(read), bodyOf(read));
    const Entry* best = nullptr;
    size_t mostCommon = 0;
    size_t leastLeft = 0;
    for (const Known& known : mKnown) {
        const size_t common = commonWords(bodyOf(read), bodyOf(known.reading));
        const size_t left = leftOver(read.letters, known.reading.letters);
        if (kLeast * common >= whole &&
            (common > mostCommon || (common != 0 && common == mostCommon && left < leastLeft))) {
            best = &known.entry;
            mostCommon = common;
            leastLeft = left;
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
