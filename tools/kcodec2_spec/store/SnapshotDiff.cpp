// What differs between two stores, section by section.

#include "store/SnapshotDiff.h"

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
    std::unordered_map<std::string_view, size_t> added;
    for (size_t j = 0; j < after.size(); ++j) {
        added.emplace(after[j].name, j);
    }
    std::vector<Change> changes;
    for (size_t i = 0; i < before.size(); ++i) {
        const auto place = added.find(before[i].name);
        if (place == added.end()) {
            changes.push_back({&before[i], nullptr, i, 0});
            continue;
        }
        const size_t j = place->second;
        if (!isSame(before[i], after[j])) {
            changes.push_back({&before[i], &after[j], i, j});
        }
        added.erase(place);
    }
    for (size_t j = 0; j < after.size(); ++j) {
        if (added.count(after[j].name) != 0) {
            changes.push_back({nullptr, &after[j], 0, j});
        }
    }
    return changes;
}

// The fewest removals and additions that turn one list into the other.
std::vector<Change> changesInOrder(const Entries& before, const Entries& after) {
    // The ends that are equal are left out: most lists differ in a few places.
    size_t start = 0;
    size_t limitBefore = before.size();
    size_t limitAfter = after.size();
    while (start < std::min(limitBefore, limitAfter) && isSame(before[start], after[start])) {
        ++start;
    }
    while (std::min(limitBefore, limitAfter) > start &&
           isSame(before[limitBefore - 1], after[limitAfter - 1])) {
        --limitBefore;
        --limitAfter;
    }
    // How many entries the rest of both lists have in common, in order. Lists for which that takes
    // too long have none: a hostile document must not cost more than a correct, longer answer.
    constexpr size_t kMostCells = 4'000'000;
    const size_t columns = limitAfter - start + 1;
    const bool isMeasured = limitBefore - start + 1 <= kMostCells / columns;
    std::vector<uint32_t> cells(isMeasured ? (limitBefore - start + 1) * columns : 0);
    const auto common = [&](size_t i, size_t j) -> uint32_t& {
        return cells[(i - start) * columns + (j - start)];
    };
    for (size_t i = limitBefore; isMeasured && i > start; --i) {
        for (size_t j = limitAfter; j > start; --j) {
            common(i - 1, j - 1) = isSame(before[i - 1], after[j - 1])
                                           ? common(i, j) + 1
                                           : std::max(common(i, j - 1), common(i - 1, j));
        }
    }
    std::vector<Change> changes;
    for (size_t i = start, j = start; i < limitBefore || j < limitAfter;) {
        const bool isInBoth = i < limitBefore && j < limitAfter;
        if (isInBoth && isMeasured && isSame(before[i], after[j])) {
            ++i;
            ++j;
        } else if (isInBoth ? !isMeasured || common(i + 1, j) >= common(i, j + 1)
                            : i < limitBefore) {
            changes.push_back({&before[i], nullptr, i, 0});
            ++i;
        } else {
            changes.push_back({nullptr, &after[j], 0, j});
            ++j;
        }
    }
    return changes;
}

}  // namespace

std::vector<SectionChanges> differencesOf(const std::vector<SnapshotSection>& before,
                                          const std::vector<SnapshotSection>& after) {
    std::vector<SectionChanges> differences;
    for (size_t i = 0; i < before.size(); ++i) {  // Every snapshot has the same sections.
        const Entries& old = before[i].entries;
        const Entries& now = after[i].entries;
        std::vector<Change> changes = before[i].form == SectionForm::List ? changesInOrder(old, now)
                                                                          : changesByName(old, now);
        if (!changes.empty()) {
            differences.push_back({&before[i], &after[i], std::move(changes)});
        }
    }
    return differences;
}

}  // namespace kc2::tool
