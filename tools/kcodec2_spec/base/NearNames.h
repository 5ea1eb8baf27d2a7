// Which known name a misspelt one means.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kc2::tool {

// The name in small letters, with "_" for separators and blanks and the Latin letter for those that
// look like it. Two names that a person may confuse have the same one.
std::string readAs(std::string_view name);

// Known names of one kind. A search is cheap where no known name has about the same letters: a
// document may have a hundred thousand unknown names.
class NearNames {
public:
    enum class Kind { Setting, Component };

    struct Entry {
        std::string name;
        std::string group;  // Section or list: one of the same is the better suggestion.
    };

    explicit NearNames(Kind kind) : mKind(kind) {}

    void add(Entry entry);

    struct Match {
        const Entry* entry = nullptr;  // The known name that is meant; null: the name is like none.
        bool isExact = false;          // It is the name itself.

        bool isMisspelt() const { return entry != nullptr && !isExact; }
    };

    Match find(std::string_view name, std::string_view group) const;

private:
    // A name without order and separators.
    struct Shape {
        size_t characters = 0;
        uint64_t bits = 0;  // Of the letters and digits that it has.
    };

    // A name as it is compared.
    struct Reading {
        explicit Reading(std::string_view name);

        std::string letters;  // And digits, without separators.
        std::vector<std::string> words;
        std::vector<std::string> sortedWords;
    };

    struct Known {
        explicit Known(Entry from) : entry(std::move(from)), reading(entry.name) {}

        Entry entry;
        Reading reading;
    };

    struct Candidate {
        Shape shape;
        size_t entry;
    };

    static constexpr size_t kMostCharacters = 80;

    static Shape shapeOf(std::string_view name);
    static bool isNear(const Shape& a, const Shape& b);
    void addShape(const Shape& shape, size_t entry);
    int mistakesIn(const Reading& read, const Reading& known) const;
    int mistakesInWords(const Reading& read, const Reading& known) const;

    Kind mKind;
    std::vector<Known> mKnown;
    std::unordered_set<std::string> mWords;  // That known names are made of.
    std::array<std::vector<Candidate>, kMostCharacters> mByCharacters;
};

}  // namespace kc2::tool
