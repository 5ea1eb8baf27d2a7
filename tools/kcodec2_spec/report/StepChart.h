// Bit-rate tables drawn as steps, as the stores return them: SVG for a page.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kc2/TargetSpec.h"

namespace kc2::tool {

// The bit rate that a store returns for the values in [low, limit).
struct Step {
    uint32_t low;
    uint32_t limit;
    std::optional<uint32_t> bitRate;  // Nothing where no row covers the value.
};

// Queries the store wherever its result may change. Nothing for a table that is too long: each
// query costs as much as the table is long, and a chart could not show that many steps.
using Steps = std::optional<std::vector<Step>>;
Steps stepsOf(TargetSpec* store);

// Charts of one size and scale, so that they can be compared by eye.
class StepChart {
public:
    explicit StepChart(const std::vector<const Steps*>& all);

    // The SVG; `id` makes its parts unique on the page, `title` is escaped already, `compared` is
    // drawn in the background.
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
