// The rules of the checker: tables, one for each thing that a rule looks at. To add a rule, add a
// row and, in the tables with a function, the function.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "catalogue/KnownSettings.h"
#include "check/Report.h"
#include "check/Rule.h"
#include "document/Outline.h"
#include "document/Source.h"
#include "store/Load.h"

namespace kc2::tool {

// A document with everything that rules look at.
struct CheckedDocument {
    CheckedDocument(std::string shownPath, Document read);
    CheckedDocument(const CheckedDocument&) = delete;
    CheckedDocument& operator=(const CheckedDocument&) = delete;

    // The values that the reader took in a section, in the order in which it took them.
    std::vector<const KeptFinding*> takenIn(const char* section, const char* name = "") const;

    // The member of "Video"; null when there is none.
    const OutlineNode* section(const char* key) const;

    Document document;
    Source source;    // Of document.text.
    Outline outline;  // Of the text, as far as it is JSON.
};

// Whether it is a private file by its name: what it lacks may be in the system spec document.
bool isPrivateFile(const CheckedDocument& document);

// The documents of a load in the order in which they are merged, or one document alone.
using MergedDocuments = std::vector<std::unique_ptr<CheckedDocument>>;

// One load of a whole device.
struct CheckedLoad {
    Load load;
    MergedDocuments documents;
    Source place;         // What findings about the load as a whole name: the system spec's path.
    Source privatePlace;  // The same of the private file.
    std::vector<std::unique_ptr<Source>> otherPlaces;  // Files that the load does not read.
};

// A file that cannot be read, or not to its end.
inline constexpr Rule kUnreadable = {"unreadable", Severity::Error, "a file that cannot be read",
                                     true};

// What the library's reader found in a document.
void applyReaderRules(const CheckedDocument& document, const KnownSettings& known, Report* report);

// What a document says that the reader does not look at.
void applyDocumentRules(const CheckedDocument& document, const KnownSettings& known,
                        Report* report);

// Names, values and perf words that the settings catalogue, or sense, speaks against.
void applyNameRules(const CheckedDocument& document, const KnownSettings& known, Report* report);
void applyCodecRules(const CheckedDocument& document, const KnownSettings& known, Report* report);
void applyValueRules(const CheckedDocument& document, const KnownSettings& known, Report* report);
void applyPerfRules(const CheckedDocument& document, const KnownSettings& known, Report* report);

// All of these.
void checkDocument(const CheckedDocument& document, const KnownSettings& known, Report* report);

// What the merged documents come to.
void applyMergeRules(const MergedDocuments& documents, Report* report);
void applyRowRules(const MergedDocuments& documents, Report* report);
void applyCodecMergeRules(const MergedDocuments& documents, const KnownSettings& known,
                          Report* report);
void applyDependencyRules(const MergedDocuments& documents, const KnownSettings& known,
                          Report* report);

// What the overlay adds to the system spec document, and what it leaves out.
void applyOverlayRules(const CheckedLoad& load, Report* report);

// Which documents the load reads, and why.
void applyLoadRules(const CheckedLoad& load, Report* report);

// Which files and names of the tree cannot work.
void applyTreeRules(CheckedLoad* load, Report* report);

// The rules of a table's rows.
template <typename Row, size_t N>
std::vector<const Rule*> rulesOf(const Row (&rows)[N]) {
    std::vector<const Rule*> rules;
    for (const Row& row : rows) {
        rules.push_back(&row.rule);
    }
    return rules;
}

// The rules of each table.
std::vector<const Rule*> readerRules();
std::vector<const Rule*> documentRules();
std::vector<const Rule*> nameRules();
std::vector<const Rule*> codecRules();
std::vector<const Rule*> valueRules();
std::vector<const Rule*> perfRules();
std::vector<const Rule*> mergeRules();
std::vector<const Rule*> rowRules();
std::vector<const Rule*> codecMergeRules();
std::vector<const Rule*> dependencyRules();
std::vector<const Rule*> overlayRules();
std::vector<const Rule*> loadRules();
std::vector<const Rule*> treeRules();

}  // namespace kc2::tool
