// Whether a component can notice what differs between two stores: both are asked.

#include "store/Answers.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>

#include "catalogue/SectionTexts.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/TargetSpecInspector.h"

namespace kc2::tool {

namespace {

using RateRows = std::vector<NimbraBitRateEntry>;

// The values from which on one of the stores may return another bit rate.
std::vector<uint32_t> boundsOf(const RateRows& before, const RateRows& after) {
    std::vector<uint32_t> bounds = {0};
    for (const RateRows* const rows : {&before, &after}) {
        for (const NimbraBitRateEntry& row : *rows) {
            bounds.push_back(row.low);
            bounds.push_back(row.high);
        }
    }
    std::sort(bounds.begin(), bounds.end());
    bounds.erase(std::unique(bounds.begin(), bounds.end()), bounds.end());
    return bounds;
}

// What two stores return for each name, and for values in each range.
class Questions {
public:
    Questions(TargetSpec& before, TargetSpec& after) : mBefore(before), mAfter(after) {}

    bool featureDiffers(const Change& change) const {
        const std::string& name = nameOf(change);
        return mBefore.isFeatureEnabled(name) != mAfter.isFeatureEnabled(name);
    }

    bool presetDiffers(const Change& change) const {
        const std::string& name = nameOf(change);
        int before = 0;
        int after = 0;
        return mBefore.getPresetValue(name, &before) != mAfter.getPresetValue(name, &after) ||
               before != after;
    }

    bool perfWordsDiffer(const Change& change) const {
        const std::string& name = nameOf(change);
        return mBefore.getPerfResourceValues(name) != mAfter.getPerfResourceValues(name);
    }

    // A row that is in one store only is noticed where that store returns the row's bit rate, and
    // the other store another one. A row that replaces a part of such a row belongs to it.
    bool bitRateDiffers(const Change& change) const {
        return mBitRates.empty() || returnsRateOf(change, true) ||
               (returnsRateOf(change, false) &&
                std::any_of(mNoticed.begin(), mNoticed.end(), [&](const Change& other) {
                    return (other.before == nullptr) != (change.before == nullptr) &&
                           haveCommonValues(rowOf(other), rowOf(change));
                }));
    }

    // Asks both stores at every bound, before bitRateDiffers(). False, and asks nothing, where that
    // takes too long: a query goes through the rows, and a hostile document has many.
    bool compareBitRates(const std::vector<Change>& changes) {
        constexpr size_t kMostSteps = 100'000'000;
        const RateRows& before = rowsOf(mBefore);
        const RateRows& after = rowsOf(mAfter);
        const std::vector<uint32_t> bounds = boundsOf(before, after);
        if (bounds.size() > kMostSteps / (before.size() + after.size() + 1)) {
            return false;
        }
        for (unsigned int value : bounds) {
            mBitRates.push_back({value, mBefore.getNimbraModeBitRateValue(&value),
                                 mAfter.getNimbraModeBitRateValue(&value)});
        }
        std::copy_if(changes.begin(), changes.end(), std::back_inserter(mNoticed),
                     [this](const Change& change) { return returnsRateOf(change, true); });
        return true;
    }

private:
    // What both return from this value on, up to the next bound.
    struct BitRates {
        uint32_t from;
        uint32_t before;
        uint32_t after;
    };

    static const std::string& nameOf(const Change& change) {
        return (change.after != nullptr ? change.after : change.before)->name;
    }

    static const RateRows& rowsOf(const TargetSpec& store) {
        return TargetSpecInspector::nimbraModeBitRateTable(store);
    }

    const NimbraBitRateEntry& rowOf(const Change& change) const {
        return change.before != nullptr ? rowsOf(mBefore)[change.indexBefore]
                                        : rowsOf(mAfter)[change.indexAfter];
    }

    static bool haveCommonValues(const NimbraBitRateEntry& a, const NimbraBitRateEntry& b) {
        return std::max(a.low, b.low) < std::min(a.high, b.high);
    }

    // Whether the store that has the row returns its bit rate for a value in it; where wanted, only
    // for values for which the other store returns another one.
    bool returnsRateOf(const Change& change, bool mustDiffer) const {
        const NimbraBitRateEntry& row = rowOf(change);
        const auto isBelow = [](const BitRates& rates, uint32_t value) {
            return rates.from < value;
        };
        const auto first = std::lower_bound(mBitRates.begin(), mBitRates.end(), row.low, isBelow);
        const auto limit =
                std::lower_bound(first, mBitRates.end(), std::max(row.low, row.high), isBelow);
        return std::any_of(first, limit, [&](const BitRates& rates) {
            return (change.before != nullptr ? rates.before : rates.after) == row.bitRate &&
                   (!mustDiffer || rates.before != rates.after);
        });
    }

    TargetSpec& mBefore;
    TargetSpec& mAfter;
    std::vector<BitRates> mBitRates;
    std::vector<Change> mNoticed;  // Of the rows.
};

// The queries that do not return everything that the store has. The others return whole lists and
// sets, so a component notices every difference in them.
struct QueryRow {
    const char* const* key;
    bool (Questions::*differs)(const Change& change) const;
};

constexpr QueryRow kQueryRows[] = {
        {&targetSpecFeatures, &Questions::featureDiffers},
        {&targetSpecPresets, &Questions::presetDiffers},
        {&targetSpecPerfResourceValues, &Questions::perfWordsDiffer},
        {&targetSpecNimbraModeBitRate, &Questions::bitRateDiffers},
};

}  // namespace

AnsweredDifferences askBoth(TargetSpec& before, TargetSpec& after,
                            const std::vector<SectionChanges>& differences) {
    AnsweredDifferences answered;
    Questions questions(before, after);
    for (const SectionChanges& section : differences) {
        SectionChanges seen = {section.before, section.after, {}};
        SectionChanges unseen = seen;
        const QueryRow* const query =
                std::find_if(std::begin(kQueryRows), std::end(kQueryRows), [&](const auto& row) {
                    return section.after->key == textOfSection(*row.key)->jsonKey;
                });
        const bool isAsked = query != std::end(kQueryRows);
        if (isAsked && query->differs == &Questions::bitRateDiffers) {
            answered.isTableTooLong = !questions.compareBitRates(section.changes);
        }
        for (const Change& change : section.changes) {
            const bool isSeen = !isAsked || (questions.*query->differs)(change);
            (isSeen ? seen : unseen).changes.push_back(change);
        }
        if (!seen.changes.empty()) {
            answered.seen.push_back(std::move(seen));
        }
        if (!unseen.changes.empty()) {
            answered.unseen.push_back(std::move(unseen));
        }
    }
    return answered;
}

}  // namespace kc2::tool
