// Which known name a misspelt one means.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/NearWords.h"

namespace kc2::tool {

// The name in small letters, with "_" for separators and blanks and the Latin letter for those that
// look like it. Two names that a person may confuse have the same one.
std::string readAs(std::string_view name);

// Whether the name begins with "private_" or "debug_private_", as the store's own settings do.
bool hasPrivatePrefix(std::string_view name);

// Known names of one kind. A search is cheap for a known name, and for one that is like none: a
// document may have a hundred thousand unknown names.
class NearNames {
public:
    struct Entry {
        std::string name;
        std::string group;  // Section or list: one of the same is the better suggestion.
    };

    explicit NearNames(NameKind kind) : mKind(kind) {}

    void add(Entry entry);

    struct Match {
        const Entry* entry = nullptr;  // The known name that is meant; null: the name is like none.
        const Entry* other = nullptr;  // Another one that is as near; null: none.
        bool isExact = false;          // It is the name itself.
        bool isCertain = false;  // Only its spelling is wrong: no word is missing or shortened.

        bool isMisspelt() const { return entry != nullptr && !isExact; }
    };

    Match find(std::string_view name, std::string_view group) const;

    // Whether `name` is nearly `other`, both unknown: one letter of a long word, an exchange of
    // letters or words, a plural, case or separators.
    bool isVariation(std::string_view name, std::string_view other) const;

    // The known name that has the most words of an unknown one; null when each has less than a
    // third of it.
    const Entry* closest(std::string_view name) const;

    // The first known name that has each word of `name`, or one that means the same; null when
    // there is none.
    const Entry* withWordsOf(std::string_view name) const;

private:
    // A name without order and separators.
    struct Shape {
        size_t characters = 0;
        uint64_t bits = 0;  // Of the letters and digits that it has.
    };

    struct Word {
        std::string text;
        std::string_view form = {};  // What stands for all words that mean the same.
        uint64_t bits = 0;           // Of its shape.
        bool isOther = false;        // It exists, so it is no other word misspelt.
        bool isFormOther = false;
    };

    // A name as it is compared.
    struct Reading {
        Reading(NameKind kind, std::string_view name);
        Reading(Reading&&) = default;  // What the forms point to stays.
        Reading(const Reading&) = delete;

        size_t prefixWords() const { return (hasDebug ? 1 : 0) + (hasPrivate ? 1 : 0); }

        std::string letters;  // And digits, without separators.
        std::vector<Word> words;
        std::vector<Word> pairs;  // Two words as one.
        std::vector<std::string_view> sortedForms;
        bool hasDebug = false;  // Its first words are debug and private, perhaps misspelt.
        bool hasPrivate = false;
        bool isPrefixExact = true;
    };

    struct Known {
        Known(NameKind kind, Entry from)
            : entry(std::move(from)), reading(kind, entry.name), shape(shapeOf(entry.name)) {}

        Entry entry;
        Reading reading;
        Shape shape;
    };

    struct Candidate {
        Shape shape;
        const Known* known;
    };

    // How far a name is from a known one.
    struct Distance {
        int cost;
        bool lacksWord = false;
    };

    struct Search;
    struct Words {
        const Reading* reading;
        size_t first;
        size_t limit;

        const Word* begin() const { return reading->words.data() + first; }
        const Word* end() const { return reading->words.data() + limit; }
        size_t size() const { return limit - first; }
        bool isEmpty() const { return first == limit; }
    };

    static constexpr size_t kMostCharacters = 80;
    static constexpr size_t kDigitSets = size_t{1} << 10;

    static Shape shapeOf(std::string_view name);
    static size_t commonWords(Words read, Words known);
    static Words bodyOf(const Reading& reading);  // Without its prefix.
    void addShape(const Shape& shape, const Known& known);
    void addDigits(const Reading& reading);
    static uint64_t bitsOf(std::string_view name);
    Reading readingOf(std::string_view name) const;
    bool isComparedWithAll(std::string_view name) const;
    void compare(Search* search, const Known& known) const;
    bool isOtherWord(std::string_view word) const;
    static int prefixCost(const Reading& read, const Reading& known);
    static bool isWithoutPrefix(const Reading& read, const Reading& known);
    static bool isCertain(const Reading& read, const Reading& known);
    int wordCost(std::string_view word, std::string_view known) const;
    int costOfWord(const Word& word, const Word& known) const;
    static int costOfPair(const Word& pair, const Word& whole);
    int costOfWords(Words read, Words known) const;
    bool isEnough(Words read, Words known) const;
    Distance distanceOfBodies(Words read, Words known) const;
    Distance distanceOf(const Reading& read, const Reading& known) const;

    NameKind mKind;
    std::deque<Known> mKnown;  // What is below points into these.
    std::unordered_map<std::string_view, const Known*> mByName;
    std::unordered_set<std::string_view> mWords;  // That known names are made of.
    std::vector<std::string> mStarts;             // The first letters of known names.
    std::vector<std::string> mDigits;             // Of names that may be near, sorted.
    std::bitset<kDigitSets> mDigitSets;           // Which digits such names have.
    std::array<std::vector<Candidate>, kMostCharacters> mByCharacters;
};

}  // namespace kc2::tool
