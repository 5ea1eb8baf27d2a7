// Which known name a misspelt one means.
#pragma once

#include <cstdint>
#include <list>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

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

    explicit NearNames(NameKind kind);
    ~NearNames();

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
    struct Known;

    void addDigits(const Known& known);
    bool isComparedWithAll(std::string_view name) const;

    NameKind mKind;
    std::list<Known> mKnown;  // What is below points into these.
    std::unordered_map<std::string_view, const Entry*> mByName;
    std::unordered_set<std::string_view> mWords;  // That known names are made of.
    std::set<std::string> mStarts;                // The first letters of known names.
    std::set<std::string> mDigits;                // Of names that may be near.
    std::unordered_set<uint64_t> mDigitBits;      // The shapes of these digits.
};

}  // namespace kc2::tool
