// The two documents that a load of this device reads.
#pragma once

#include <string>

#include "document/Document.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

// The variant that selects the document of this device path; empty when it needs none, or when no
// variant does.
std::string variantIn(const std::string& path);

// The documents of one load, and why it is these.
struct Load {
    std::string variant;       // As the property has it; kDefaultVariant when it is not set.
    std::string firstPath;     // Where the system spec document is looked for first.
    Document systemSpec;       // Its path is empty when none opened, and then it is not a document.
    Document overlay;          // The private file or a built-in document.
    const ChipDocument* chip;  // The chip's row: what the overlay is without a private file.
    bool isPrivateFileOpen;
    bool isSeeded;  // A device would write the built-in document into the private file.

    bool hasSystemSpec() const { return !systemSpec.path.empty(); }
};

// Does what TargetSpec::Get() does, station by station, and keeps what each station handed over.
Load walkLoad();

}  // namespace kc2::tool
