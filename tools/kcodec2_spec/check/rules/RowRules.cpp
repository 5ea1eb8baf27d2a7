// The rows of the bit-rate table, over the documents that a load merges.

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "base/Text.h"
#include "check/rules/Emit.h"
#include "kc2/TargetSpecKeys.h"

namespace kc2::tool {

namespace {

// What earlier rows leave of a row.
enum class Left { Nothing, Part, All };

struct PlacedRow {
    NimbraBitRateEntry row;
    const CheckedDocument* document;
    Span span;
    Left left = Left::All;
    // Answers for the lowest value that both hold; null when no earlier row holds one.
    const PlacedRow* earlier = nullptr;
    bool isLast = false;  // Of its document.

    bool matchesNothing() const { return row.low >= row.high; }
    std::string place() const { return document->source.placeOf(span.start); }
    // As the last row, so that every value has an answer.
    bool isCatchAll() const { return isLast && row.high >= INT32_MAX; }
};

using Rows = std::vector<PlacedRow>;

// Which values the rows so far answer for, and which row answers.
class Coverage {
public:
    struct Overlap {
        // Answers for the lowest value that both hold; null when no earlier row holds one.
        const PlacedRow* earlier;
        bool isWhole;  // Earlier rows answer for every value of the row.
    };

    // Adds a row behind the earlier ones and tells what they leave of it.
    Overlap add(const PlacedRow& placed) {
        const uint64_t low = placed.row.low;
        const uint64_t high = placed.row.high;
        const Overlap overlap = {firstOwner(low, high), isCovered(low, high)};
        // The gaps between covered ranges are what the new row answers for. Covered ranges that it
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
                mOwners[at] = {range->first, &placed};
            }
            joinedLow = std::min(joinedLow, range->first);
            joinedHigh = std::max(joinedHigh, range->second);
            at = std::max(at, range->second);
            range = mCovered.erase(range);
        }
        if (at < high) {
            mOwners[at] = {high, &placed};
        }
        mCovered[joinedLow] = joinedHigh;
        return overlap;
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
    std::map<uint64_t, Owned> mOwners;      // low -> who answers up to high, disjoint.
};

// Fills in what earlier rows leave of each. Most tables are in order and need no search.
void findOverlaps(Rows* rows) {
    uint32_t end = 0;
    size_t inOrder = 0;
    for (; inOrder < rows->size(); ++inOrder) {
        const PlacedRow& placed = (*rows)[inOrder];
        if (!placed.matchesNothing() && placed.row.low < end) {
            break;
        }
        end = placed.matchesNothing() ? end : placed.row.high;
    }
    if (inOrder == rows->size()) {
        return;
    }
    Coverage coverage;
    for (PlacedRow& placed : *rows) {
        if (!placed.matchesNothing()) {
            const Coverage::Overlap overlap = coverage.add(placed);
            placed.earlier = overlap.earlier;
            placed.left = overlap.earlier == nullptr ? Left::All
                          : overlap.isWhole          ? Left::Nothing
                                                     : Left::Part;
        }
    }
}

Rows rowsOf(const MergedDocuments& documents) {
    Rows rows;
    for (const auto& document : documents) {
        const auto& table = document->document.content.nimbraModeBitRateTable;
        const auto taken = document->takenIn(targetSpecNimbraModeBitRate);
        for (size_t i = 0; i < table.size() && i < taken.size(); ++i) {
            rows.push_back({table[i], document.get(), {taken[i]->start, taken[i]->limit}});
        }
        if (!rows.empty()) {
            rows.back().isLast = true;
        }
    }
    findOverlaps(&rows);
    return rows;
}

// --- What the rows look like in ascending order ---

// The rows that answer for all of their values, by lower bound. Those with a negative bound, which
// is stored as a large one, are not looked at: that is reported.
std::vector<const PlacedRow*> inAscendingOrder(const Rows& rows, bool isWithOverlaps) {
    std::vector<const PlacedRow*> ordered;
    for (const PlacedRow& placed : rows) {
        const bool isWanted = isWithOverlaps || placed.left == Left::All;
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
void emitOnce(const std::vector<Neighbours>& found, std::string message, const Emit& emit) {
    if (found.empty()) {
        return;
    }
    const auto& [before, after] = found.front();
    if (found.size() > 1) {
        message += fmt::format(". The same at {}, the next one at {}",
                               counted(found.size() - 1, "more row"), found[1].after->place());
    }
    emit(*after->document, after->span, std::move(message),
         RelatedPlace{&before->document->source, before->span, ""});
}

struct Gaps {
    std::vector<Neighbours> ofOne;  // As where an upper bound is taken for part of the range.
    std::vector<Neighbours> wide;
    size_t joints = 0;  // Rows that begin where the one before ended.
};

Gaps gapsOf(const Rows& rows) {
    Gaps gaps;
    const PlacedRow* before = nullptr;  // Of the highest upper bound so far.
    for (const PlacedRow* const row : inAscendingOrder(rows, true)) {
        if (before != nullptr && row->row.low > before->row.high) {
            auto& found = row->row.low - before->row.high == 1 ? gaps.ofOne : gaps.wide;
            found.push_back({before, row});
        } else if (before != nullptr && row->row.low == before->row.high) {
            ++gaps.joints;
        }
        if (before == nullptr || row->row.high > before->row.high) {
            before = row;
        }
    }
    return gaps;
}

// All rows, and the gaps between them, which two rules look at.
struct Table {
    explicit Table(const MergedDocuments& documents)
        : rows(rowsOf(documents)), gaps(gapsOf(rows)) {}

    Rows rows;
    Gaps gaps;
};

// --- Row by row ---

void checkRowsThatMatchNothing(const Table& table, const Emit& emit) {
    for (const PlacedRow& placed : table.rows) {
        if (placed.matchesNothing()) {
            emit(*placed.document, placed.span,
                 fmt::format("the row holds no value: its lower bound {} is not below its upper "
                             "bound {}",
                             placed.row.low, placed.row.high));
        }
    }
}

void emitBesideEarlier(const PlacedRow& placed, std::string message, const Emit& emit) {
    const PlacedRow& earlier = *placed.earlier;
    emit(*placed.document, placed.span, std::move(message),
         RelatedPlace{&earlier.document->source, earlier.span, ""});
}

void checkHiddenRows(const Table& table, const Emit& emit) {
    for (const PlacedRow& placed : table.rows) {
        if (placed.left == Left::Nothing) {
            emitBesideEarlier(placed,
                              "the row never answers: earlier rows, the first at " +
                                      placed.earlier->place() + ", hold all of its values",
                              emit);
        }
    }
}

void checkOverlappingRows(const Table& table, const Emit& emit) {
    for (const PlacedRow& placed : table.rows) {
        if (placed.left == Left::Part && !placed.isCatchAll()) {
            emitBesideEarlier(placed,
                              "the row overlaps the earlier one at " + placed.earlier->place() +
                                      ", which answers for the values that both hold",
                              emit);
        }
    }
}

void checkCatchAlls(const Table& table, const Emit& emit) {
    for (const PlacedRow& placed : table.rows) {
        if (placed.left == Left::Part && placed.isCatchAll()) {
            emitBesideEarlier(placed,
                              "the last row answers for every value that no earlier row has", emit);
        }
    }
}

void checkZeroRates(const Table& table, const Emit& emit) {
    for (const PlacedRow& placed : table.rows) {
        if (placed.row.bitRate == 0 && !placed.matchesNothing() && placed.left != Left::Nothing) {
            emit(*placed.document, placed.span,
                 "the bit rate is 0, and a component takes that for a rate: a value without a row "
                 "gets 0xFFFFFFFF");
        }
    }
}

// --- One row after the other ---

std::string missingValues(const Neighbours& gap) {
    const uint32_t first = gap.before->row.high;
    const uint32_t last = gap.after->row.low - 1;
    return first == last ? fmt::format("the value {} has", first)
                         : fmt::format("the values {} to {} have", first, last);
}

// Rows that are apart are meant so where hardly any two touch.
bool isWideGapMeant(const Gaps& gaps) {
    return gaps.joints < gaps.wide.size();
}

void checkGaps(const Table& table, const Emit& emit) {
    const Gaps& gaps = table.gaps;
    if (!gaps.ofOne.empty()) {
        emitOnce(gaps.ofOne,
                 missingValues(gaps.ofOne.front()) +
                         " no row: the upper bound of the row before is not in its range",
                 emit);
    }
    if (!gaps.wide.empty() && !isWideGapMeant(gaps)) {
        emitOnce(gaps.wide, missingValues(gaps.wide.front()) + " no row", emit);
    }
}

void checkRowsApart(const Table& table, const Emit& emit) {
    const Gaps& gaps = table.gaps;
    if (!gaps.wide.empty() && isWideGapMeant(gaps)) {
        emitOnce(gaps.wide, missingValues(gaps.wide.front()) + " no row", emit);
    }
}

// A rate that falls now and then is a slip; a table of falling rates is meant so.
void checkFallingRates(const Table& table, const Emit& emit) {
    constexpr size_t kOneOf = 3;
    const std::vector<const PlacedRow*> ordered = inAscendingOrder(table.rows, false);
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
        emitOnce(falls,
                 fmt::format("the bit rate falls to {}, from {} of the values below",
                             after->row.bitRate, before->row.bitRate),
                 emit);
    }
}

void checkOrder(const Table& table, const Emit& emit) {
    const PlacedRow* before = nullptr;
    for (const PlacedRow& placed : table.rows) {
        if (placed.matchesNothing() || placed.left != Left::All) {
            continue;
        }
        if (before != nullptr && before->document == placed.document &&
            placed.row.low < before->row.low) {
            emit(*placed.document, placed.span,
                 "the rows are not in ascending order: this one is below the one before",
                 RelatedPlace{&before->document->source, before->span, ""});
            return;
        }
        before = &placed;
    }
}

constexpr RuleRow<Table> kRowRules[] = {
        {{"row-matches-nothing", Severity::Warning, "a bit-rate row that holds no value"},
         checkRowsThatMatchNothing},
        {{"row-hidden", Severity::Warning, "a bit-rate row that earlier rows hide wholly"},
         checkHiddenRows},
        {{"row-overlaps", Severity::Warning, "a bit-rate row that an earlier row hides in part"},
         checkOverlappingRows},
        {{"row-catches-all", Severity::Note, "a last row for what no other row has"},
         checkCatchAlls},
        {{"row-gap", Severity::Warning, "values between bit-rate rows that no row has"}, checkGaps},
        {{"rows-apart", Severity::Note, "a bit-rate table whose rows do not touch"},
         checkRowsApart},
        {{"rows-unsorted", Severity::Note, "bit-rate rows that are not in ascending order"},
         checkOrder},
        {{"rate-falls", Severity::Warning, "a bit rate below that of smaller values"},
         checkFallingRates},
        {{"rate-zero", Severity::Warning, "a bit rate of 0"}, checkZeroRates},
};

}  // namespace

void applyRowRules(const MergedDocuments& documents, Report* report) {
    applyRows(kRowRules, report, Table(documents));
}

std::vector<const Rule*> rowRules() {
    return rulesOf(kRowRules);
}

}  // namespace kc2::tool
