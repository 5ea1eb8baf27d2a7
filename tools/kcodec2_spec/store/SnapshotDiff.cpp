// What differs between two stores, section by section.

#include "store/SnapshotDiff.h"
#include "base/Spelling.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace kc2::tool {

namespace {

using Entries = std::vector<SnapshotEntry>;

bool isSame(const SnapshotEntry& a, const SnapshotEntry& b) {
    return a.name == b.name && a.text == b.text;
}

// By name: what was removed or changed in the old order, then what was added in the new one.
std::vector<Change> changesByName(const Entries& before, const Entries& after) {
    std::unordered_map<std::string_view, size_t> places;
    for (size_t i = 0; i < after.size(); ++i) {
        places.emplace(after[i].name, i);
    }
    std::vector<Change> changes;
    std::vector<bool> isOld(after.size(), false);
    for (size_t i = 0; i < before.size(); ++i) {
        const auto place = places.find(before[i].name);
        if (place == places.end()) {
            changes.push_back({&before[i], nullptr, i, 0});
            continue;
        }
        const size_t j = place->second;
        isOld[j] = true;
        if (!isSame(before[i], after[j])) {
            changes.push_back({&before[i], &after[j], i, j});
        }
    }
    for (size_t j = 0; j < after.size(); ++j) {
        if (!isOld[j]) {
            changes.push_back({nullptr, &after[j], 0, j});
        }
    }
    return changes;
}

// The fewest removals and additions that turn one list into the other.
class ListComparison {
public:
    ListComparison(const Entries& before, const Entries& after) : mBefore(before), mAfter(after) {
        mLimitBefore = before.size();
        mLimitAfter = after.size();
        while (mStart < std::min(mLimitBefore, mLimitAfter) &&
               isSame(before[mStart], after[mStart])) {
            ++mStart;
        }
        while (mLimitBefore > mStart && mLimitAfter > mStart &&
               isSame(before[mLimitBefore - 1], after[mLimitAfter - 1])) {
            --mLimitBefore;
            --mLimitAfter;
        }
    }

    std::vector<Change> changes() {
        measure();
        std::vector<Change> changes;
        size_t i = mStart;
        size_t j = mStart;
        while (i < mLimitBefore || j < mLimitAfter) {
            if (i < mLimitBefore && j < mLimitAfter && !mCommon.empty() &&
                isSame(mBefore[i], mAfter[j])) {
                ++i;
                ++j;
            } else if (i < mLimitBefore &&
                       (j == mLimitAfter || common(i + 1, j) >= common(i, j + 1))) {
                changes.push_back({&mBefore[i], nullptr, i, 0});
                ++i;
            } else {
                changes.push_back({nullptr, &mAfter[j], 0, j});
                ++j;
            }
        }
        return changes;
    }

private:
    // How many entries the rest of both lists have in common, in order. Lists for which that takes
    // too long have none: a hostile document must not cost more than a correct, longer answer.
    void measure() {
        constexpr size_t kMostCells = 4'000'000;
        const size_t rows = mLimitBefore - mStart + 1;
        mColumns = mLimitAfter - mStart + 1;
        if (rows == 1 || mColumns == 1 || rows > kMostCells / mColumns) {
            return;
        }
        mCommon.assign(rows * mColumns, 0);
        for (size_t i = mLimitBefore; i > mStart; --i) {
            for (size_t j = mLimitAfter; j > mStart; --j) {
                mCommon[cell(i - 1, j - 1)] =
                        isSame(mBefore[i - 1], mAfter[j - 1])
                                ? common(i, j) + 1
                                : std::max(common(i, j - 1), common(i - 1, j));
            }
        }
    }

    size_t cell(size_t i, size_t j) const { return (i - mStart) * mColumns + (j - mStart); }
    uint32_t common(size_t i, size_t j) const { return mCommon.empty() ? 0 : mCommon[cell(i, j)]; }

    const Entries& mBefore;
    const Entries& mAfter;
    size_t mStart = 0;  // The ends that are equal are left out: most lists differ in a few places.
    size_t mLimitBefore;
    size_t mLimitAfter;
    size_t mColumns = 0;
    std::vector<uint32_t> mCommon;
};

}  // namespace

std::vector<SectionChanges> differencesOf(const std::vector<SnapshotSection>& before,
                                          const std::vector<SnapshotSection>& after) {
    std::vector<SectionChanges> differences;
    for (size_t i = 0; i < before.size(); ++i) {  // Every snapshot has the same sections.
        const Entries& old = before[i].entries;
        const Entries& now = after[i].entries;
        std::vector<Change> changes = before[i].form == SectionForm::List
                                              ? ListComparison(old, now).changes()
                                              : changesByName(old, now);
        if (!changes.empty()) {
            differences.push_back({&before[i], &after[i], std::move(changes)});
        }
    }
    return differences;
}

}  // namespace kc2::tool
