// One side of kcodec2_spec diff: what is loaded, and the store after the load.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/DeviceOptions.h"
#include "kc2/TargetSpec.h"
#include "store/StoreSnapshot.h"

namespace kc2::tool {

// What git names in place of a file that is not there: no document.
inline constexpr char kNoDocument[] = "/dev/null";

struct Side {
    std::string path;          // A document, a device tree, or kNoDocument.
    std::string title = {};    // What the document is called; empty: its path.
    std::string gitPath = {};  // Where git has the document; names the chip where no option does.
    DeviceOptions device = {};
};

struct Loaded {
    std::string title;  // Path and variant.
    std::string systemSpec;
    std::string overlay;
    std::string systemSpecOrigin;
    bool isTree;
    bool isRejected;  // The system spec document.
    std::unique_ptr<TargetSpec> store;
    std::vector<SnapshotSection> sections;
};

// Reports on standard error what cannot be loaded.
std::optional<Loaded> loadSide(const Side& side);

}  // namespace kc2::tool
