// A document as the library's own reader sees it.
#pragma once

#include <fstream>
#include <string>
#include <string_view>
#include <vector>

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

// Reads the rest of a stream; isReadable says whether it could be read to its end.
Document readDocumentStream(std::string origin, std::string path, std::ifstream& stream);

// A document that could not be read, and why.
Document unreadableDocument(std::string origin, std::string path, std::string why);

}  // namespace kc2::tool
