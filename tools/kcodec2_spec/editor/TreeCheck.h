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

class TreeCheck {
public:
    // Loads the tree under each variant. `open` are documents in it.
    TreeCheck(const std::string& root, const std::vector<OpenDocument*>& open,
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
    std::string withDocumentNames(std::string text) const;

private:
    // A file with an unsaved text, for the loads to read in place of the one of the tree.
    struct Unsaved {
        std::unique_ptr<const MemoryFile> file;
        std::string path;  // Of the document.
    };

    bool keepText(const OpenDocument& document);
    void setUp() const;

    std::string mRoot;
    std::vector<Unsaved> mUnsaved;
    std::set<std::string> mOtherTexts;  // URIs of documents whose unsaved text is not in a file.
    std::unique_ptr<CheckedVariants> mChecked;
};

}  // namespace kc2::tool
