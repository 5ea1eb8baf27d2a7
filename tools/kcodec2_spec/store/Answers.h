// Whether a component can notice what differs between two stores: both are asked.
#pragma once

#include <vector>

#include "kc2/TargetSpec.h"
#include "store/SnapshotDiff.h"

namespace kc2::tool {

// Differences by what the queries return. A store may also keep something that no query shows, such
// as a feature that is false: one that is absent is off, too.
struct AnsweredDifferences {
    std::vector<SectionChanges> seen;
    std::vector<SectionChanges> unseen;
    bool isTableTooLong = false;  // Its rows are in `seen`, without a question for each value.
};

// The differences between snapshots of these two stores, in the same order.
AnsweredDifferences askBoth(TargetSpec& before, TargetSpec& after,
                            const std::vector<SectionChanges>& differences);

}  // namespace kc2::tool
