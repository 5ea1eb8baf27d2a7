// What differs between two stores, section by section.
#pragma once

#include <cstddef>
#include <vector>

#include "store/StoreSnapshot.h"

namespace kc2::tool {

struct Change {
    // Null for an entry that was added or removed.
    const SnapshotEntry* before = nullptr;
    const SnapshotEntry* after = nullptr;
    // Where in their sections; of a list this is what components see.
    size_t indexBefore = 0;
    size_t indexAfter = 0;
};

struct SectionChanges {
    const SnapshotSection* before;
    const SnapshotSection* after;
    std::vector<Change> changes;
};

// The sections that differ; both arguments must outlive the result. Origins alone make no
// difference: a component does not see them. Entries of a list are matched in their order.
std::vector<SectionChanges> differencesOf(const std::vector<SnapshotSection>& before,
                                          const std::vector<SnapshotSection>& after);

}  // namespace kc2::tool
