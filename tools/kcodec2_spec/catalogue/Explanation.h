// What a name in a document is, line by line, in the words that every command uses.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Catalogue.h"

namespace kc2::tool {

struct Explanation {
    struct Line {
        std::string title;  // Empty where the text goes on from the line before.
        std::string text;
    };

    std::string name;
    std::vector<Line> lines;

    // Adds nothing for an empty text.
    void add(std::string title, std::string text);
};

// As it is printed and shown: the name, then a line for each.
std::string formatted(const Explanation& explanation);
std::string formatted(const Explanation::Line& line);

// Nothing where there is none of that name.
std::optional<Explanation> explainedSetting(const Catalogue& catalogue, std::string_view name);
std::optional<Explanation> explainedSection(const Catalogue& catalogue, const std::string& name);
std::optional<Explanation> explainedComponent(const Catalogue& catalogue, std::string_view name);
std::optional<Explanation> explainedCode(const Catalogue& catalogue, const std::string& code);

// What a value of the setting means, by the catalogue; no lines where it says nothing about it.
Explanation explainedValue(const Setting& setting, int64_t value);

}  // namespace kc2::tool
