// Bit-rate tables drawn as steps, as the stores return them: SVG for a page.

#include "report/StepChart.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <utility>

#include "report/Html.h"
#include "targetspec/TargetSpecInspector.h"

namespace kc2::tool {

namespace {

constexpr double kWidth = 340;
constexpr double kHeight = 170;
constexpr double kLeft = 38;
constexpr double kRight = 18;
constexpr double kTop = 16;
constexpr double kBottom = 24;
constexpr double kLeastLabelDistance = 38;
constexpr size_t kMostRows = 500;

// A limit of 2^31 - 1 or more means "and all above". To scale, it would make all else a line.
constexpr uint32_t kOpenEnd = INT32_MAX;

// "1.96M": three digits distinguish the steps, and fit side by side.
std::string shortNumber(double number) {
    for (const auto& [unit, suffix] :
         {std::pair(1e9, "G"), std::pair(1e6, "M"), std::pair(1e3, "k")}) {
        if (number >= unit) {
            return fmt::format("{:.3g}{}", number / unit, suffix);
        }
    }
    return fmt::format("{:.0f}", number);
}

// The distance of grid lines, so that at most five are below `most`: 1, 2 or 5 and zeros.
double gridDistance(double most) {
    double distance = std::pow(10, std::floor(std::log10(std::max(most, 1.0))) - 1);
    for (const double factor : {2.0, 2.5, 2.0, 2.0, 2.5, 2.0}) {
        if (most / distance <= 5) {
            break;
        }
        distance *= factor;
    }
    return distance;
}

}  // namespace

Steps stepsOf(TargetSpec* store) {
    const std::vector<NimbraBitRateEntry>& rows =
            TargetSpecInspector::nimbraModeBitRateTable(*store);
    if (rows.size() > kMostRows) {
        return std::nullopt;
    }
    std::set<uint32_t> places;
    for (const NimbraBitRateEntry& row : rows) {
        places.insert(row.low);
        places.insert(row.high);
    }
    std::vector<Step> steps;
    for (auto place = places.begin(); place != places.end() && std::next(place) != places.end();
         ++place) {
        unsigned int value = *place;
        const uint32_t answer = store->getNimbraModeBitRateValue(&value);
        const auto bitRate = answer != UINT32_MAX ? std::optional(answer) : std::nullopt;
        if (!steps.empty() && steps.back().bitRate == bitRate) {
            steps.back().limit = *std::next(place);
        } else {
            steps.push_back({*place, *std::next(place), bitRate});
        }
    }
    return steps;
}

StepChart::StepChart(const std::vector<const Steps*>& all) {
    for (const Steps* const steps : all) {
        for (const Step& step : steps->value_or(std::vector<Step>())) {
            for (const uint32_t end : {step.low, step.limit}) {
                mMostValue = std::max<double>(mMostValue, end < kOpenEnd ? end : 1);
            }
            mMostBitRate = std::max<double>(mMostBitRate, step.bitRate.value_or(0));
        }
    }
}

// The root spreads the low values, between which most steps are.
double StepChart::xOf(uint32_t value) const {
    return kLeft + (kWidth - kLeft - kRight) * std::sqrt(std::min(value / mMostValue, 1.0));
}

double StepChart::yOf(uint32_t bitRate) const {
    return kHeight - kBottom - (kHeight - kTop - kBottom) * (bitRate / mMostBitRate);
}

std::string StepChart::pathOf(const std::vector<Step>& steps, bool isArea) const {
    std::string path;
    bool isDown = false;  // Whether the line goes on: values without a bit rate are a gap.
    for (const Step& step : steps) {
        if (!step.bitRate) {
            isDown = false;
            continue;
        }
        const double y = yOf(*step.bitRate);
        if (isArea) {
            path += fmt::format("M{:.1f} {:.1f}V{:.1f}H{:.1f}V{:.1f}Z", xOf(step.low), yOf(0), y,
                                xOf(step.limit), yOf(0));
        } else {
            path += isDown ? fmt::format("V{:.1f}", y)
                           : fmt::format("M{:.1f} {:.1f}", xOf(step.low), y);
            path += fmt::format("H{:.1f}", xOf(step.limit));
        }
        isDown = true;
    }
    return path;
}

std::string StepChart::grid() const {
    std::string svg;
    const double distance = gridDistance(mMostBitRate);
    for (int line = 0; line * distance <= mMostBitRate; ++line) {
        const double at = line * distance;
        const double y = yOf(static_cast<uint32_t>(at));
        svg += fmt::format(
                "<line class=\"{}\" x1=\"{}\" x2=\"{}\" y1=\"{:.1f}\" y2=\"{:.1f}\"/>"
                "<text class=\"tick end\" x=\"{}\" y=\"{:.1f}\">{}</text>",
                line == 0 ? "axis" : "grid", kLeft, kWidth - kRight, y, y, kLeft - 5, y + 3.5,
                shortNumber(at));
    }
    return svg;
}

std::string StepChart::labels(const std::vector<Step>& steps) const {
    std::string svg;
    double last = -kLeastLabelDistance;
    for (const Step& step : steps) {
        const double y = step.bitRate ? yOf(*step.bitRate) : yOf(0);
        if (step.bitRate && xOf(step.limit) - xOf(step.low) > kLeastLabelDistance / 2) {
            svg += fmt::format("<text class=\"rate\" x=\"{:.1f}\" y=\"{:.1f}\">{}</text>",
                               (xOf(step.low) + xOf(step.limit)) / 2, y - 4,
                               shortNumber(*step.bitRate));
        }
        for (const uint32_t end : {step.low, step.limit}) {
            if (end < kOpenEnd && xOf(end) - last >= kLeastLabelDistance) {
                last = xOf(end);
                svg += fmt::format(
                        "<line class=\"axis\" x1=\"{0:.1f}\" x2=\"{0:.1f}\" y1=\"{1}\" y2=\"{2}\"/>"
                        "<text class=\"tick middle\" x=\"{0:.1f}\" y=\"{3}\">{4}</text>",
                        last, kHeight - kBottom, kHeight - kBottom + 4, kHeight - kBottom + 15,
                        shortNumber(end));
            }
        }
    }
    return svg;
}

std::string StepChart::draw(const std::string& id, const std::string& title,
                            const std::vector<Step>& steps,
                            const std::vector<Step>* compared) const {
    std::string svg = fmt::format(
            "<svg viewBox=\"0 0 {} {}\" role=\"img\" aria-labelledby=\"{}\"><title "
            "id=\"{}\">{}</title>{}",
            kWidth, kHeight, id, id, title, grid());
    svg += fmt::format("<path class=\"area\" d=\"{}\"/>", pathOf(steps, true));
    if (compared != nullptr) {
        svg += fmt::format("<path class=\"compared\" d=\"{}\"/>", pathOf(*compared, false));
    }
    return fmt::format("{}<path class=\"steps\" d=\"{}\"/>{}</svg>", svg, pathOf(steps, false),
                       labels(steps));
}

}  // namespace kc2::tool
