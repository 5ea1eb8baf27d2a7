// Bit-rate tables drawn as steps, as the stores answer: SVG for a page.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kc2/TargetSpec.h"

namespace kc2::tool {

// What a store answers for the values in [low, limit).
struct Step {
    uint32_t low;
    uint32_t limit;
    std::optional<uint32_t> bitRate;  // Nothing where no row holds the value.
};

// Asks the store wherever its answer may change. Nothing for a table that is too long: each answer
// takes as long as the table, and in a chart nobody could tell that many steps apart.
using Steps = std::optional<std::vector<Step>>;
Steps stepsOf(TargetSpec* store);

// Charts of one size and scale, so that they can be compared by eye.
class StepChart {
public:
    explicit StepChart(const std::vector<Steps>& all);

    // The SVG; `id` makes its parts unique on the page, `compared` is drawn behind it.
    std::string draw(const std::string& id, const std::string& title,
                     const std::vector<Step>& steps, const std::vector<Step>* compared) const;

private:
    double xOf(uint32_t value) const;
    double yOf(uint32_t bitRate) const;
    std::string pathOf(const std::vector<Step>& steps, bool isArea) const;
    std::string grid() const;
    std::string labels(const std::vector<Step>& steps) const;

    double mMostValue = 1;
    double mMostBitRate = 1;
};

}  // namespace kc2::tool
