// What two documents result in when the library merges them.
#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

#include "targetspec/reading/SpecDocument.h"

namespace kc2 {

inline bool operator==(const NimbraBitRateEntry& a, const NimbraBitRateEntry& b) {
    return a.low == b.low && a.high == b.high && a.bitRate == b.bitRate;
}

}  // namespace kc2

namespace kc2::tool {

// What a store has after a load step, and after the next one. No merge rule is repeated here: the
// library merges, and comparing the two shows what each document added.
struct MergedStore {
    SpecDocument before;
    SpecDocument whole;
};

// A store with the first document, then with the second, too.
MergedStore merge(const SpecDocument& first, const SpecDocument& second);

// For each entry of `whole` whether it was there before the second step. A list that was kept as a
// whole is still there in its order; where it could be at several places, the ends are tried first.
template <typename List>
std::vector<bool> keptEntries(const List& before, const List& whole) {
    std::vector<bool> isKept(whole.size(), false);
    if (before.size() > whole.size()) {
        return isKept;
    }
    const auto added = static_cast<std::ptrdiff_t>(whole.size() - before.size());
    const bool isAtEnd = !std::equal(before.begin(), before.end(), whole.begin()) &&
                         std::equal(before.begin(), before.end(), std::next(whole.begin(), added));
    const std::ptrdiff_t start = isAtEnd ? added : 0;
    auto wanted = before.begin();
    auto flag = std::next(isKept.begin(), start);
    for (auto entry = std::next(whole.begin(), start);
         entry != whole.end() && wanted != before.end(); ++entry) {
        *flag = *entry == *wanted;
        wanted = *flag++ ? std::next(wanted) : wanted;
    }
    if (wanted != before.end()) {  // Replaced: what is equal is so by chance.
        isKept.assign(whole.size(), false);
    }
    return isKept;
}

}  // namespace kc2::tool
