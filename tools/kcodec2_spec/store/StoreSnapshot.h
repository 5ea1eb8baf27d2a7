// A store as sections of entries, and which load step each entry came from: what commands show.
#pragma once

#include <json/value.h>

#include <functional>
#include <string>
#include <vector>

#include "kc2/TargetSpec.h"
#include "store/Load.h"

namespace kc2::tool {

enum class SectionForm {
    Named,  // Each entry has a name that occurs once.
    List,   // The order of entries matters; an entry may occur twice.
    Set,    // Each entry occurs once; the order does not matter.
};

struct SnapshotEntry {
    std::string name;   // Any bytes: a document chose it.
    Json::Value value;  // For scripts.
    std::string text;   // The value, for people; empty when the name says it all.
    std::string origin;
};

struct SnapshotSection {
    std::string title;
    std::string key;  // In JSON output.
    SectionForm form;
    const char* whenEmpty;  // What it means for components that there are no entries.
    std::vector<SnapshotEntry> entries;
};

// The two steps of a load, to be repeated on any store. Comparing their results shows which
// document set what: the snapshot does not know how documents merge.
struct LoadSteps {
    std::function<void(TargetSpec&)> systemSpec;
    std::function<void(TargetSpec&)> overlay;
    std::string systemSpecOrigin;
    std::string overlayOrigin;
};

// The steps of TargetSpec::Get() on this device.
LoadSteps deviceSteps(const Load& load);

// Everything in `whole`, which must be the result of both steps on an empty store. Repeats the
// steps, so they may log, and on a device they may seed the private file.
std::vector<SnapshotSection> sectionsOf(const TargetSpec& whole, const LoadSteps& steps);

// The same for a store that these steps load.
std::vector<SnapshotSection> loadedSections(const LoadSteps& steps);

}  // namespace kc2::tool
