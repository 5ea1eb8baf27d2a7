// The two documents that a load of this device reads.
#pragma once

#include <memory>
#include <string>

#include "document/Document.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

// The variant that selects the document of this device path; empty for the path that is used
// without a variant, and when no variant selects it.
std::string variantIn(const std::string& path);

// The path that the variant tries first.
std::string odmPathOf(const std::string& variant);

// The documents of one load, and why it is these.
struct Load {
    std::string variant;    // As the property has it; kDefaultVariant when it is not set.
    std::string firstPath;  // The system spec document that is tried first.
    std::unique_ptr<Document> systemSpec;  // Null when none opened.
    std::unique_ptr<Document> overlay;     // The private file or a built-in document; never null.
    const ChipDocument* chip;  // The chip's row: what the overlay is without a private file.
    bool isPrivateFileOpen;
    bool isSeeded;  // A device would write the built-in document into the private file.

    bool hasSystemSpec() const { return systemSpec != nullptr; }
    bool hasPrivateFile() const { return !overlay->isBuiltIn(); }
    bool isVariantSet() const;
    bool hasFirstDocument() const { return hasSystemSpec() && systemSpec->path == firstPath; }
};

// Does what TargetSpec::Get() does, step by step, and keeps what each step produced.
Load readLoad();

// The document that a load falls back to; null when it does not exist.
std::unique_ptr<Document> readFallback();

// The built-in document of a chip.
std::unique_ptr<Document> readBuiltIn(const ChipDocument& chip);

// Which documents these are, and why, on one line each: "/odm/... (fallback: ... does not open)".
std::string describeSystemSpec(const Load& load);
std::string describeOverlay(const Load& load);

}  // namespace kc2::tool
