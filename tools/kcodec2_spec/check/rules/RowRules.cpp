// The rows of the bit-rate table, over the documents that a load merges.

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"

namespace kc2::tool {

namespace {

struct PlacedRow {
    NimbraBitRateEntry row;
    const Document* document;
    Span span;
    bool isLast = false;  // Of its document.
    // The row for the lowest value that both cover; null when no earlier row covers one.
    const PlacedRow* earlier = nullptr;
    bool isHidden = false;  // Earlier rows cover every value of the row.

    bool matchesNothing() const { return row.low >= row.high; }
    std::string placeSeenFrom(const PlacedRow& other) const {
        return document->source.placeSeenFrom(other.document->source, span.start);
    }
};

using Rows = std::vector<PlacedRow>;

// Which values the rows so far cover, and which row is used for each.
class Coverage {
public:
    // Adds a row after the earlier ones, and fills in what they cover of it.
    void add(PlacedRow* placed) {
        const uint64_t low = placed->row.low;
        const uint64_t high = placed->row.high;
        placed->earlier = firstOwner(low, high);
        placed->isHidden = isCovered(low, high);
        // The gaps between covered ranges are what the new row is used for. Covered ranges that it
        // joins become one, so that each range is visited once over all rows.
        auto range = mCovered.upper_bound(low);
        if (range != mCovered.begin() && std::prev(range)->second >= low) {
            --range;
        }
        uint64_t joinedLow = low;
        uint64_t joinedHigh = high;
        uint64_t at = low;
        while (range != mCovered.end() && range->first <= high) {
            if (range->first > at) {
                mOwners[at] = {range->first, placed};
            }
            joinedLow = std::min(joinedLow, range->first);
            joinedHigh = std::max(joinedHigh, range->second);
            at = std::max(at, range->second);
            range = mCovered.erase(range);
        }
        if (at < high) {
            mOwners[at] = {high, placed};
        }
        mCovered[joinedLow] = joinedHigh;
    }

private:
    struct Owned {
        uint64_t high;
        const PlacedRow* owner;
    };

    const PlacedRow* firstOwner(uint64_t low, uint64_t high) const {
        auto owned = mOwners.upper_bound(low);
        if (owned != mOwners.begin() && std::prev(owned)->second.high > low) {
            --owned;
        }
        return owned != mOwners.end() && owned->first < high ? owned->second.owner : nullptr;
    }

    bool isCovered(uint64_t low, uint64_t high) const {
        const auto next = mCovered.upper_bound(low);
        return next != mCovered.begin() && std::prev(next)->second >= high;
    }

    std::map<uint64_t, uint64_t> mCovered;  // low -> high, disjoint and apart.
    std::map<uint64_t, Owned> mOwners;      // low -> the row up to high, disjoint.
};

// Fills in what earlier rows cover of each. Most tables are in order and need no search.
void findOverlaps(Rows* rows) {
    const auto mayOverlap = [](const PlacedRow& placed, const PlacedRow& next) {
        return placed.matchesNothing() || next.row.low < placed.row.high;
    };
    if (std::adjacent_find(rows->begin(), rows->end(), mayOverlap) == rows->end()) {
        return;
    }
    Coverage coverage;
    for (PlacedRow& placed : *rows) {
        if (!placed.matchesNothing()) {
            coverage.add(&placed);
        }
    }
}

Rows rowsOf(const Checked& checked) {
    Rows rows;
    for (const auto& entry : placedEntries(checked, targetSpecNimbraModeBitRate,
                                           &SpecDocument::nimbraModeBitRateTable)) {
        if (!rows.empty()) {
            rows.back().isLast = rows.back().document != entry.document;
        }
        rows.push_back({*entry.value, entry.document, entry.span});
    }
    if (!rows.empty()) {
        rows.back().isLast = true;
    }
    findOverlaps(&rows);
    return rows;
}

// --- What the rows look like in ascending order ---

// The rows that are used for all of their values, by lower bound. Those with a negative bound,
// which is stored as a large one, are left out: the reader reports them.
std::vector<const PlacedRow*> inAscendingOrder(const Rows& rows, bool isWithOverlaps) {
    std::vector<const PlacedRow*> ordered;
    for (const PlacedRow& placed : rows) {
        const bool isWanted = isWithOverlaps || placed.earlier == nullptr;
        if (!placed.matchesNothing() && isWanted && placed.row.low <= INT32_MAX) {
            ordered.push_back(&placed);
        }
    }
    const auto isBelow = [](const PlacedRow* a, const PlacedRow* b) {
        return a->row.low < b->row.low;
    };
    if (!std::is_sorted(ordered.begin(), ordered.end(), isBelow)) {
        std::stable_sort(ordered.begin(), ordered.end(), isBelow);
    }
    return ordered;
}

struct Neighbours {
    const PlacedRow* before;
    const PlacedRow* after;
};

// One report for a mistake that a whole table repeats.
void reportOnce(CheckId check, const std::vector<Neighbours>& found, std::string message,
                Report* report) {
    const auto& [before, after] = found.front();
    if (found.size() > 1) {
        message += fmt::format(". The same at {}, the next one at {}",
                               counted(found.size() - 1, "more row"),
                               found[1].after->placeSeenFrom(*after));
    }
    report->add(check, *after->document, after->span, std::move(message),
                besides(before->document->source, before->span));
}

// Rows without a wide gap between them.
struct RowGroup {
    uint64_t low;
    uint64_t high;
    size_t rows = 1;
};

struct Gaps {
    std::vector<Neighbours> ofOne;  // As if upper bounds were inclusive.
    std::vector<Neighbours> wide;
    std::vector<RowGroup> groups;  // One more than wide gaps.
    size_t joints = 0;             // Rows that begin where the one before ended.
};

Gaps gapsOf(const Rows& rows) {
    Gaps gaps;
    const PlacedRow* before = nullptr;  // Of the highest upper bound so far.
    for (const PlacedRow* const row : inAscendingOrder(rows, true)) {
        const uint64_t low = row->row.low;
        const uint64_t high = row->row.high;
        const bool isAfterGap = before != nullptr && low > before->row.high;
        const bool isGapOfOne = isAfterGap && low - before->row.high == 1;
        if (isAfterGap) {
            (isGapOfOne ? gaps.ofOne : gaps.wide).push_back({before, row});
        }
        if (before == nullptr || (isAfterGap && !isGapOfOne)) {
            gaps.groups.push_back({low, high});
        } else {
            gaps.joints += low == before->row.high ? 1 : 0;
            gaps.groups.back().high = std::max(gaps.groups.back().high, high);
            ++gaps.groups.back().rows;
        }
        if (before == nullptr || high > before->row.high) {
            before = row;
        }
    }
    return gaps;
}

// --- Row by row ---

// A row of which earlier rows cover something.
void reportOverlap(const PlacedRow& placed, Report* report) {
    const PlacedRow& earlier = *placed.earlier;
    const std::string place = earlier.placeSeenFrom(placed);
    const auto add = [&](CheckId check, std::string message) {
        report->add(check, *placed.document, placed.span, std::move(message),
                    besides(earlier.document->source, earlier.span));
    };
    if (placed.isHidden) {
        add("row-hidden",
            fmt::format("this row is never used: earlier rows, the first at {}, cover its range",
                        place));
    } else if (placed.isLast && placed.row.high >= INT32_MAX) {
        add("row-catches-all", "the last row is for every value that no earlier row covers");
    } else {
        add("row-overlaps", fmt::format("the row overlaps the earlier one at {}, which is used for "
                                        "the values that both cover",
                                        place));
    }
}

void checkRanges(const Rows& rows, Report* report) {
    for (const PlacedRow& placed : rows) {
        if (placed.matchesNothing()) {
            report->add(
                    "row-matches-nothing", *placed.document, placed.span,
                    fmt::format(
                            "the row matches no value: its lower bound {} is not below its upper "
                            "bound {}",
                            placed.row.low, placed.row.high));
        } else if (placed.earlier != nullptr) {
            reportOverlap(placed, report);
        }
    }
}

void checkZeroRates(const Rows& rows, Report* report) {
    for (const PlacedRow& placed : rows) {
        if (placed.row.bitRate == 0 && !placed.matchesNothing() && !placed.isHidden) {
            report->add("rate-zero", *placed.document, placed.span,
                        "the bit rate is 0, and a component uses it as a rate: for a value without "
                        "a row it gets 0xFFFFFFFF");
        }
    }
}

// --- One row after the other ---

std::string withoutRow(const Neighbours& gap) {
    const uint32_t first = gap.before->row.high;
    const uint32_t last = gap.after->row.low - 1;
    return first == last ? fmt::format("the value {} has no row", first)
                         : fmt::format("the values {} to {} have no row", first, last);
}

// Whether a gap is between two groups of rows, and wider than any row that may be missing there.
bool isBetweenGroups(const Neighbours& gap, const RowGroup& below, const RowGroup& above) {
    constexpr uint64_t kTimesFurther = 4;
    const uint64_t width = above.low - below.high;
    const bool isWiderThanRows = width > gap.before->row.high - gap.before->row.low &&
                                 width > gap.after->row.high - gap.after->row.low;
    return below.rows > 1 && above.rows > 1 &&
           (isWiderThanRows || width / kTimesFurther >= below.high - below.low);
}

// Gaps are intended in a table where hardly any two rows touch, and where groups are far apart.
bool isWideGapMeant(const Gaps& gaps) {
    bool areAllBetweenGroups = true;
    for (size_t i = 0; i < gaps.wide.size(); ++i) {
        areAllBetweenGroups = areAllBetweenGroups &&
                              isBetweenGroups(gaps.wide[i], gaps.groups[i], gaps.groups[i + 1]);
    }
    return gaps.joints < gaps.wide.size() || areAllBetweenGroups;
}

void checkGaps(const Rows& rows, Report* report) {
    const Gaps gaps = gapsOf(rows);
    if (!gaps.ofOne.empty()) {
        reportOnce("row-gap", gaps.ofOne,
                   withoutRow(gaps.ofOne.front()) + ": upper bounds are exclusive", report);
    }
    if (!gaps.wide.empty()) {
        reportOnce(isWideGapMeant(gaps) ? CheckId("rows-apart") : CheckId("row-gap"), gaps.wide,
                   withoutRow(gaps.wide.front()), report);
    }
}

// A rate that falls now and then is a slip; a table of falling rates is intended.
void checkFallingRates(const Rows& rows, Report* report) {
    constexpr size_t kOneOf = 3;
    const std::vector<const PlacedRow*> ordered = inAscendingOrder(rows, false);
    std::vector<Neighbours> falls;
    for (size_t i = 1; i < ordered.size(); ++i) {
        const uint32_t rate = ordered[i]->row.bitRate;
        const uint32_t before = ordered[i - 1]->row.bitRate;
        if (rate != 0 && rate < before && before <= INT32_MAX) {
            falls.push_back({ordered[i - 1], ordered[i]});
        }
    }
    if (!falls.empty() && (falls.size() == 1 || falls.size() * kOneOf <= ordered.size())) {
        const auto& [before, after] = falls.front();
        reportOnce("rate-falls", falls,
                   fmt::format("the bit rate falls to {}; for smaller values it is {}",
                               after->row.bitRate, before->row.bitRate),
                   report);
    }
}

void checkOrder(const Rows& rows, Report* report) {
    const PlacedRow* before = nullptr;
    for (const PlacedRow& placed : rows) {
        if (placed.matchesNothing() || placed.earlier != nullptr) {
            continue;
        }
        if (before != nullptr && before->document == placed.document &&
            placed.row.low < before->row.low) {
            report->add("rows-unsorted", *placed.document, placed.span,
                        "the rows are not in ascending order: this one is below the one before",
                        besides(before->document->source, before->span));
            return;
        }
        before = &placed;
    }
}

}  // namespace

void checkBitRates(const Checked& checked, Report* report) {
    const Rows rows = rowsOf(checked);
    checkRanges(rows, report);
    checkGaps(rows, report);
    checkOrder(rows, report);
    checkFallingRates(rows, report);
    checkZeroRates(rows, report);
}

}  // namespace kc2::tool
