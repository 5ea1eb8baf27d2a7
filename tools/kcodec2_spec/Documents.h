// Documents as the library's own reader sees them, and the two that a load of this device reads.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "targetspec/reading/BuiltInDocuments.h"
#include "targetspec/reading/ParserText.h"
#include "targetspec/reading/SpecDocument.h"
#include "targetspec/reading/SpecReader.h"

namespace kc2::tool {

// A Finding that outlives the reading.
struct KeptFinding {
    FindingKind kind;
    std::string section;
    std::string name;
    int index;
    size_t start;
    size_t limit;
    int64_t converted;
    std::string detail;
};

struct Document {
    std::string origin;  // "system spec", "private file", "built-in document N", or "document".
    std::string path;    // On the device; empty for a built-in document.
    std::string text;
    std::string parserText;           // The same, fit for the parser: comments are blanks.
    std::vector<TextRange> comments;  // Where they are.
    bool isReadable = true;           // The text was read to its end.
    bool isPipe = false;              // Not read: a load waits there until somebody writes into it.
    std::string whyNotReadable;       // In words.
    bool isAccepted = false;
    SpecDocument content;  // Empty unless accepted.
    std::vector<KeptFinding> findings;
};

// Reads `text` with the library's reader.
Document readDocument(std::string origin, std::string path, std::string text);

// Reads a file of this machine; isReadable tells whether it could be.
Document readDocumentFile(const std::string& path);

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
