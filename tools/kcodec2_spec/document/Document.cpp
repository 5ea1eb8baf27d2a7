// A document as the library's own reader sees it: its text, its tree, its content.

#include "document/Document.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <utility>

#include "base/Spelling.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/DocumentText.h"
#include "targetspec/reading/SpecReader.h"

namespace kc2::tool {

namespace {

// Keeps the findings of a reading.
class VerdictKeeper final : public FindingSink {
public:
    void take(const Finding& finding) override {
        const Place& place = finding.place;
        const bool isUsedAsItIs = finding.kind == FindingKind::Taken;
        verdicts.push_back({finding.kind, place.index, finding.start, finding.limit,
                            finding.converted, place.section,
                            std::string(isUsedAsItIs ? std::string_view() : place.name)});
        if (rowOf(finding.kind).effect == Effect::Rejects) {
            parserWords = finding.detail;
        }
    }

    std::vector<Verdict> verdicts;
    std::string parserWords;
};

// What makes a text no JSON for a device.
constexpr FindingKind kOfText[] = {FindingKind::TextTooLong, FindingKind::TooManyValues,
                                   FindingKind::NestingTooDeep, FindingKind::SyntaxError};

bool isAcceptedByDevice(std::string text) {
    VerdictKeeper keeper;
    SpecDocument content;
    return readSpecDocument(text, &content, keeper);
}

std::string firstOf(std::string a, std::string b, std::string c) {
    return !a.empty() ? a : !b.empty() ? b : c;
}

}  // namespace

Document::Document(DocumentId name, std::string from)
    : origin(std::move(name.origin)),
      path(std::move(name.path)),
      text(std::move(from)),
      parserText(text),
      source(firstOf(std::move(name.shownPath), path, origin), text) {
    VerdictKeeper keeper;
    isAccepted = readSpecDocument(parserText, &content, keeper, &comments);
    verdicts = std::move(keeper.verdicts);
    parserWords = std::move(keeper.parserWords);
    mHasSyntaxError = !verdicts.empty() && std::find(std::begin(kOfText), std::end(kOfText),
                                                     verdicts.back().kind) != std::end(kOfText);
    if (mHasSyntaxError) {
        if (verdicts.back().kind == FindingKind::SyntaxError) {
            addSyntaxErrors(parserWords.empty() ? text.size() : verdicts.back().start);
        }
        return;
    }
    tree = treeOf(parserText);
    const auto isBefore = [](const Verdict& a, const Verdict& b) { return a.start < b.start; };
    if (!std::is_sorted(verdicts.begin(), verdicts.end(), isBefore)) {  // A list often is.
        std::stable_sort(verdicts.begin(), verdicts.end(), isBefore);
    }
    joinVerdicts(&tree.root, verdicts);
}

// Fixes are kept only if the text is accepted once all of them are made. Otherwise something else
// is wrong as well, and only a person can say what is meant.
void Document::addSyntaxErrors(size_t rejectedAt) {
    tree = treeOfRejected(source, parserText, rejectedAt);
    std::vector<Fix> fixes;
    for (const SyntaxHint& error : tree.errors) {
        if (error.fixes.empty()) {
            fixes.clear();
            break;
        }
        fixes.insert(fixes.end(), error.fixes.begin(), error.fixes.end());
    }
    if (fixes.empty() || !isAcceptedByDevice(withFixes(text, std::move(fixes)))) {
        for (SyntaxHint& error : tree.errors) {
            error.fixes.clear();
        }
    }
}

std::unique_ptr<Document> Document::unreadable(DocumentId name, std::string why) {
    auto document = std::make_unique<Document>(std::move(name), std::string());
    document->isReadable = false;
    document->whyNotReadable = std::move(why);
    document->verdicts.clear();
    document->tree = {};
    return document;
}

const Node* Document::video() const {
    return isJson() ? findMember(tree.root, targetSpecRoot) : nullptr;
}

const Node* Document::section(std::string_view key) const {
    const Node* const members = video();
    return members != nullptr ? findMember(*members, key) : nullptr;
}

std::unique_ptr<Document> readDocumentFile(const std::string& path, std::string name) {
    DocumentId named;
    named.path = path;
    named.shownPath = std::move(name);
    std::ifstream stream(path);
    if (!stream.is_open()) {
        return Document::unreadable(std::move(named), std::strerror(errno));
    }
    return readDocumentStream(std::move(named), stream);
}

std::unique_ptr<Document> readDocumentStream(DocumentId name, std::ifstream& stream) {
    DocumentText text;
    errno = 0;
    if (!text.read(stream)) {
        return Document::unreadable(std::move(name), std::strerror(errno));
    }
    return std::make_unique<Document>(std::move(name),
                                      std::string(text.bytes().begin(), text.bytes().end()));
}

bool hasFileText(const std::string& path, std::string_view text) {
    DocumentText saved;
    std::ifstream stream(path);
    const bool isRead = stream.is_open() && saved.read(stream);
    return isRead ? std::equal(text.begin(), text.end(), saved.bytes().begin(), saved.bytes().end())
                  : text.empty();
}

}  // namespace kc2::tool
