// What the check finds in the loads of a device tree, with the texts that are not saved yet.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "base/MemoryFile.h"
#include "check/VariantReports.h"
#include "editor/OpenDocument.h"

namespace kc2::tool {

// Files with the unsaved texts, for the loads to read.
class UnsavedTexts {
public:
    // Keeps the document's text if its file has another one. Returns whether it could.
    bool add(const OpenDocument& document);
    // Uses the files in place of those of the tree.
    void map(const std::string& root) const;

    // `text` with the names of the documents in place of those of the files.
    std::string withDocumentNames(std::string text) const;

private:
    struct Unsaved {
        std::unique_ptr<const MemoryFile> file;
        std::string path;  // Of the document.
    };

    std::vector<Unsaved> mTexts;
};

class TreeCheck {
public:
    // Loads the tree under each variant. `open` are documents in it.
    TreeCheck(const std::string& root, const std::vector<const OpenDocument*>& open,
              const KnownSettings& known);

    const Report& report() const { return mChecked->report; }

    // Whether the loads could read the document's text: else the findings are about another one.
    bool hasTextOf(const OpenDocument& document) const {
        return mOtherTexts.count(document.uri) == 0;
    }

    // The loads that read this file.
    std::vector<const Load*> loadsOf(const std::string& path) const;

    // Sets up the device of a load once more.
    void play(const Load& load) const;

    // The file of a path that a report names, and a message with such paths.
    std::string realNameOf(const std::string& path) const;
    std::string withDocumentNames(std::string text) const {
        return mUnsaved.withDocumentNames(std::move(text));
    }

private:
    void setUp() const;

    std::string mRoot;
    UnsavedTexts mUnsaved;
    std::set<std::string> mOtherTexts;  // URIs of documents whose unsaved text is not in a file.
    std::unique_ptr<CheckedVariants> mChecked;
};

}  // namespace kc2::tool
