// What two documents result in when the library merges them.

#include "store/Merge.h"

#include "targetspec/TargetSpecInspector.h"

namespace kc2::tool {

MergedStore merge(const SpecDocument& first, const SpecDocument& second) {
    TargetSpec store;
    MergedStore merged;
    SpecDocument document = first;  // The library empties what it merges.
    TargetSpecInspector::merge(store, document);
    merged.before = TargetSpecInspector::contentOf(store);
    document = second;
    TargetSpecInspector::merge(store, document);
    merged.whole = TargetSpecInspector::contentOf(store);
    return merged;
}

}  // namespace kc2::tool
