// A document as the library's own reader sees it.

#include "document/Document.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "targetspec/reading/DocumentText.h"

namespace kc2::tool {

namespace {

class FindingKeeper final : public FindingSink {
public:
    explicit FindingKeeper(std::vector<KeptFinding>* findings) : mFindings(*findings) {}

    void take(const Finding& finding) override {
        const Place& place = finding.place;
        mFindings.push_back({finding.kind, std::string(place.section), std::string(place.name),
                             place.index, finding.start, finding.limit, finding.converted,
                             std::string(finding.detail)});
    }

private:
    std::vector<KeptFinding>& mFindings;
};

}  // namespace

Document readDocument(std::string origin, std::string path, std::string text) {
    Document document;
    document.origin = std::move(origin);
    document.path = std::move(path);
    document.text = std::move(text);
    FindingKeeper keeper(&document.findings);
    document.parserText = document.text;
    document.isAccepted =
            readSpecDocument(document.parserText, &document.content, keeper, &document.comments);
    return document;
}

Document readDocumentFile(const std::string& path) {
    std::ifstream stream(path);
    if (!stream.is_open()) {
        return unreadableDocument("document", path, std::strerror(errno));
    }
    return readDocumentStream("document", path, stream);
}

Document readDocumentStream(std::string origin, std::string path, std::ifstream& stream) {
    DocumentText text;
    errno = 0;
    if (!text.read(stream)) {
        return unreadableDocument(std::move(origin), std::move(path), std::strerror(errno));
    }
    return readDocument(std::move(origin), std::move(path),
                        std::string(text.bytes().begin(), text.bytes().end()));
}

Document unreadableDocument(std::string origin, std::string path, std::string why) {
    Document document;
    document.origin = std::move(origin);
    document.path = std::move(path);
    document.isReadable = false;
    document.whyNotReadable = std::move(why);
    return document;
}

}  // namespace kc2::tool
