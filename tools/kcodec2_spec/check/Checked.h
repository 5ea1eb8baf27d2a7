// What the rules of a check look at: documents, and the library's merge of them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/KnownSettings.h"
#include "document/Document.h"
#include "store/Load.h"
#include "store/Merge.h"

namespace kc2::tool {

// One document alone, or the documents of a load.
class Checked {
public:
    // The document must outlive this.
    Checked(const Document& alone, const KnownSettings& known);
    Checked(const Load& load, const KnownSettings& known);

    const KnownSettings& known;
    const Load* const load;                        // Null for a document alone.
    const std::vector<const Document*> documents;  // In the order in which they are merged.

    bool isAlone() const { return load == nullptr; }
    // Whether a second document is merged, and written by somebody: not a built-in one.
    bool hasWrittenOverlay() const { return documents.size() == 2 && !documents[1]->isBuiltIn(); }

    // What the store has after the first document, and after all of them.
    const SpecDocument& before() const { return mMerged ? mMerged->before : alone().content; }
    const SpecDocument& whole() const { return mMerged ? mMerged->whole : alone().content; }

    // Calls visit(document) for each that is not built in: nobody can change a built-in one.
    template <typename Visit>
    void forEachWritten(Visit visit) const {
        for (const Document* const document : documents) {
            if (!document->isBuiltIn()) {
                visit(*document);
            }
        }
    }

private:
    const Document& alone() const { return *documents.front(); }

    std::optional<MergedStore> mMerged;  // Of two documents.
};

// Whether the second document sets a tier level to 0 that the first one has set, because it has
// "DolbyVision" without that level.
bool resetLevels(const Checked& checked);

// Whether it is a private file by its name: what it lacks may be in the system spec document.
bool isPrivateFile(const Document& document);

}  // namespace kc2::tool
