// A document that an editor has open: its text, saved or not, and what the check finds in it.
#pragma once

#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

#include "check/Report.h"
#include "document/Document.h"
#include "editor/TextLines.h"

namespace kc2::tool {

// A finding as the editor gets it, and what its fixes need.
struct EditorFinding {
    const Check* check;
    Span span;
    bool isForFile;
    std::vector<Fix> fixes;
    Json::Value diagnostic;
};

struct OpenDocument {
    std::string uri;
    std::string path;  // Of the file; the URI where it is not one of this machine.
    std::string root;  // Of the device tree that it is in; empty when it is in none.
    Json::Value version;
    std::string text;

    bool isChecked = false;  // What follows is of this text.
    std::unique_ptr<Document> document;
    std::unique_ptr<TextLines> lines;
    std::vector<EditorFinding> findings;
};

// Makes the changes of a didChange notification. Returns what is wrong with them; empty when
// nothing is.
std::string applyChanges(const Json::Value& changes, PositionEncoding encoding,
                         OpenDocument* document);

// The directory in which this path is one that a load reads; empty when there is none.
std::string deviceRootOf(const std::string& path);

// The path without links; as it is where there is no such file.
std::string realPath(const std::string& path);

}  // namespace kc2::tool
