// Which findings are about an entry of a store: where the matrix shows it, it links to them.

#include "report/CellFindings.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>

#include "catalogue/SectionTexts.h"

namespace kc2::tool {

namespace {

// By halves: a document may have a hundred thousand members, and as many findings.
const Node* childAt(const Node& parent, size_t offset) {
    const auto found = std::partition_point(
            parent.children.begin(), parent.children.end(),
            [offset](const Node& child) { return child.value.limit <= offset; });
    if (found == parent.children.end()) {
        return nullptr;
    }
    const size_t start = found->name.limit != 0 ? found->name.start : found->value.start;
    return start <= offset ? &*found : nullptr;
}

// As the store's entries are called.
std::string entryNameOf(const Document& document, const Node& node) {
    const auto textOf = [&](const Node& value) {
        return std::string(document.source.textAt(value.value));
    };
    if (node.name.limit != 0) {
        return std::string(node.key);
    }
    if (node.isString()) {
        return std::string(node.string);
    }
    if (node.isArray() && node.children.size() >= 2) {  // A bit-rate row.
        return fmt::format("[{}, {})", textOf(node.children[0]), textOf(node.children[1]));
    }
    return node.isNumber() ? textOf(node) : std::string();
}

// The entries that the place is in, with the keys of their sections.
std::vector<std::pair<std::string_view, std::string>> namesAt(const Document& document,
                                                              size_t start) {
    std::vector<std::pair<std::string_view, std::string>> names;
    std::string_view section;
    const Node* node = document.video();
    node = node != nullptr ? childAt(*node, start) : nullptr;
    for (bool isSection = true; node != nullptr; node = childAt(*node, start)) {
        const SectionText* const text = textOfSection(node->key);
        if (node->name.limit != 0 && text != nullptr && *text->jsonKey != '\0') {
            section = text->jsonKey;
        }
        if (!isSection) {
            names.emplace_back(section, entryNameOf(document, *node));
        }
        isSection = false;
    }
    return names;
}

}  // namespace

CellFindings::CellFindings(const PageContent& content, const FindingRows& findings) {
    std::unordered_map<const Source*, const Document*> documents;
    for (const Load& load : content.checked.loads) {
        for (const Document* const document : {load.systemSpec.get(), load.overlay.get()}) {
            if (document != nullptr) {
                documents.emplace(&document->source, document);
            }
        }
    }
    for (size_t row = 0; row < findings.rows.size(); ++row) {
        for (const ReportEntry* const entry : findings.rows[row].entries) {
            const auto document = documents.find(entry->source);
            if (document == documents.end() || entry->isForFile) {
                continue;
            }
            for (const auto& name : namesAt(*document->second, entry->span.start)) {
                std::vector<CellFinding>& known = mFindings[name];
                if (known.empty() || known.back().row != row) {
                    known.push_back({row, entry->severity, {}});
                }
                for (const size_t load : loadsOf(*entry)) {
                    known.back().columns.insert(content.columnOf[load]);
                }
            }
        }
    }
}

const std::vector<CellFinding>& CellFindings::of(const SnapshotSection& section,
                                                 std::string_view name) const {
    static const std::vector<CellFinding> kNone;
    auto found = mFindings.find({section.key, std::string(name)});
    if (found == mFindings.end()) {
        found = mFindings.find({"", std::string(name)});
    }
    return found != mFindings.end() ? found->second : kNone;
}

}  // namespace kc2::tool
