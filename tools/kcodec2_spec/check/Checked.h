// What the rules of a check look at: documents, and the library's merge of them.
#pragma once

#include <optional>
#include <vector>

#include "catalogue/KnownSettings.h"
#include "document/Document.h"
#include "store/Load.h"
#include "store/Merge.h"
#include "store/TreeFiles.h"

namespace kc2::tool {

class TreeNames;

// One document alone, or the documents of a load.
class Checked {
public:
    // The document must outlive this. `ofTree` are the names in all documents of a tree; null: only
    // those of this load are compared.
    Checked(const Document& alone, const KnownSettings& known, const TreeNames* ofTree = nullptr);
    // `ofVariants` are those of the tree, for whoever checks many loads: each would list the tree.
    Checked(const Load& load, const KnownSettings& known,
            const std::vector<VariantDocument>* ofVariants = nullptr,
            const TreeNames* ofTree = nullptr);

    const KnownSettings& known;
    const Load* const load = nullptr;              // Null for a document alone.
    const std::vector<const Document*> documents;  // In the order in which they are merged.
    const std::vector<VariantDocument>* const variantDocuments = nullptr;  // Null: not listed yet.
    const TreeNames* const treeNames;

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

// A tier level that the second document changes.
struct ChangedLevel {
    const char* key;
    int32_t from;
    int32_t to;
    const Node* node;  // Null where its "DolbyVision" lacks the level, which becomes 0.
};
std::vector<ChangedLevel> changedLevels(const Checked& checked);

// Whether it is a private file by its name: what it lacks may be in the system spec document.
bool isPrivateFile(const Document& document);

}  // namespace kc2::tool
