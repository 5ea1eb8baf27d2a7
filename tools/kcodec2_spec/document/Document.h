// A document as the library's own reader sees it: its text, its tree, its content.
#pragma once

#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "document/Source.h"
#include "document/Tree.h"
#include "document/Verdict.h"
#include "targetspec/reading/SpecDocument.h"

namespace kc2::tool {

// What a document is called, and where it is.
struct DocumentId {
    std::string origin = "document";  // "system spec", "private file", "built-in document N".
    std::string path = {};  // On the device, or as an option names it; empty for a built-in one.
    std::string shownPath = {};  // On this machine; empty: the path, or without one the origin.
};

// Other objects point into it, so it is neither copied nor moved.
class Document {
public:
    // Reads `text` with the library's reader.
    Document(DocumentId name, std::string text);
    // One that could not be read, and why, in words.
    static std::unique_ptr<Document> unreadable(DocumentId name, std::string why);

    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    bool isBuiltIn() const { return path.empty(); }
    // Whether the parser accepts the text, with any root.
    bool isJson() const { return isReadable && !mHasSyntaxError; }
    // The section of that key, or null: a text that the parser rejects has none.
    const Node* section(std::string_view key) const;
    const Node* video() const;

    const std::string origin;
    const std::string path;
    const std::string text;
    std::string parserText;           // The same, fit for the parser: comments are blanks.
    std::vector<TextRange> comments;  // Where they are.
    const Source source;              // Of the text.
    bool isReadable = true;           // The text was read to its end.
    bool isPipe = false;         // Not read: a load waits there until something is written into it.
    std::string whyNotReadable;  // In words.
    bool isAccepted = false;
    SpecDocument content;           // Empty unless accepted.
    std::string parserWords;        // The parser's own words on a syntax error.
    std::vector<Verdict> verdicts;  // In the order of the text.
    Tree tree;

private:
    void addSyntaxErrors(size_t rejectedAt);

    bool mHasSyntaxError = false;
};

// Reads a file of this machine; it is called `name`, or without one, by its path.
std::unique_ptr<Document> readDocumentFile(const std::string& path, std::string name = {});

// Reads the rest of a stream.
std::unique_ptr<Document> readDocumentStream(DocumentId name, std::ifstream& stream);

// Whether a document of that file has this text; of one that cannot be read, it is empty.
bool hasFileText(const std::string& path, std::string_view text);

}  // namespace kc2::tool
