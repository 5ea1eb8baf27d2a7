// The language server: answers an editor's messages about the documents that it has open.

#include "editor/Server.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/Print.h"
#include "base/Text.h"
#include "catalogue/JsonSchema.h"
#include "check/output/Output.h"
#include "editor/Actions.h"
#include "editor/Completion.h"
#include "editor/EditorJson.h"
#include "editor/Hover.h"
#include "platform/Version.h"
#include "store/Setters.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// The error numbers of the protocol.
constexpr int kParseError = -32700;
constexpr int kInvalidRequest = -32600;
constexpr int kMethodNotFound = -32601;
constexpr int kInvalidParams = -32602;
constexpr int kServerNotInitialized = -32002;
constexpr int kRequestCancelled = -32800;

// Of one document, the most severe ones: editors show them all at once.
constexpr size_t kMostDiagnostics = 1000;
constexpr char kToolName[] = "kcodec2_spec";
constexpr int kSeverityNumbers[] = {3, 2, 1};  // By severity.

Json::Value capabilitiesOf(PositionEncoding encoding) {
    constexpr int kIncremental = 2;
    Json::Value can;
    can["positionEncoding"] = encoding == PositionEncoding::Utf8 ? "utf-8" : "utf-16";
    can["textDocumentSync"]["openClose"] = true;
    can["textDocumentSync"]["change"] = kIncremental;
    can["textDocumentSync"]["save"] = true;
    can["hoverProvider"] = true;
    can["definitionProvider"] = true;
    can["documentSymbolProvider"] = true;
    can["completionProvider"]["triggerCharacters"].append("\"");
    can["codeActionProvider"]["codeActionKinds"].append("quickfix");
    can["codeActionProvider"]["codeActionKinds"].append("source.fixAll");
    return can;
}

bool isId(const Json::Value& id) {
    return id.isString() || id.isInt64() || id.isUInt64();
}

bool isInComment(const Document& document, size_t offset) {
    return std::any_of(document.comments.begin(), document.comments.end(), [offset](Span comment) {
        return comment.start < offset && offset < comment.limit;
    });
}

}  // namespace

LanguageServer::LanguageServer(std::shared_ptr<const KnownSettings> known, std::string root,
                               Send send)
    : mSchema(schemaOf(known->catalogue)), mRoot(std::move(root)), mSend(std::move(send)) {
    mOptions.known = std::move(known);
}

// --- Messages
// -------------------------------------------------------------------------------------

void LanguageServer::add(const std::string& text) {
    std::optional<Json::Value> message = readMessage(text);
    if (!message) {
        return reply(Json::Value(), {{}, kParseError, "the message cannot be read"});
    }
    if (textOf(memberOf(*message, "method")) == "$/cancelRequest") {
        return cancel(memberOf(memberOf(*message, "params"), "id"));
    }
    mWaiting.push_back(*std::move(message));
}

void LanguageServer::cancel(const Json::Value& id) {
    const auto waiting = std::find_if(
            mWaiting.begin(), mWaiting.end(),
            [&](const Json::Value& message) { return isId(id) && memberOf(message, "id") == id; });
    if (waiting != mWaiting.end()) {
        mWaiting.erase(waiting);
        reply(id, {{}, kRequestCancelled, "cancelled"});
    }
}

void LanguageServer::reply(const Json::Value& id, const Reply& reply) {
    Json::Value message;
    message["jsonrpc"] = "2.0";
    message["id"] = id;
    if (reply.error == 0) {
        message["result"] = reply.result;
    } else {
        message["error"]["code"] = reply.error;
        message["error"]["message"] = reply.message;
    }
    mSend(message);
}

void LanguageServer::handleNext() {
    const Json::Value message = std::move(mWaiting.front());
    mWaiting.pop_front();
    const Json::Value& id = memberOf(message, "id");
    const Json::Value& method = memberOf(message, "method");
    const bool hasId = message.isObject() && message.isMember("id");
    const bool isReply =
            hasId && method.isNull() && (message.isMember("result") || message.isMember("error"));
    if (isReply) {
        return;
    }
    if (!method.isString() || (hasId && !isId(id))) {
        return reply(Json::Value(), {{}, kInvalidRequest, "not a request"});
    }
    if (hasId) {
        return reply(id, handleRequest(method.asString(), memberOf(message, "params")));
    }
    handleNotification(method.asString(), memberOf(message, "params"));
}

LanguageServer::Reply LanguageServer::handleRequest(const std::string& method,
                                                    const Json::Value& params) {
    if (mState == State::ShutDown) {
        return {{}, kInvalidRequest, "the server has been shut down"};
    }
    if (method == "initialize") {
        return mState == State::New
                       ? initialize(params)
                       : Reply{{}, kInvalidRequest, "initialize may be sent only once"};
    }
    if (mState == State::New) {
        return {{}, kServerNotInitialized, "initialize must come first"};
    }
    static const std::map<std::string_view, Request> kRequests = {
            {"shutdown", &LanguageServer::shutDown},
            {"textDocument/documentSymbol", &LanguageServer::listSymbols},
            {"textDocument/codeAction", &LanguageServer::listActions},
    };
    static const std::map<std::string_view, std::pair<CursorUse, PlaceRequest>> kPlaceRequests = {
            {"textDocument/hover", {CursorUse::Pointing, &LanguageServer::hover}},
            {"textDocument/completion", {CursorUse::Typing, &LanguageServer::complete}},
            {"textDocument/definition", {CursorUse::Pointing, &LanguageServer::define}},
    };
    const auto request = kRequests.find(method);
    const auto placeRequest = kPlaceRequests.find(method);
    if (request == kRequests.end() && placeRequest == kPlaceRequests.end()) {
        return {{}, kMethodNotFound, "unknown method " + escaped(method)};
    }
    publish();
    return request != kRequests.end()
                   ? (this->*request->second)(params)
                   : atPlace(params, placeRequest->second.first, placeRequest->second.second);
}

void LanguageServer::handleNotification(const std::string& method, const Json::Value& params) {
    if (method == "exit") {
        mIsEnded = true;
        return;
    }
    static const std::map<std::string_view, Notification> kNotifications = {
            {"textDocument/didOpen", &LanguageServer::open},
            {"textDocument/didChange", &LanguageServer::change},
            {"textDocument/didClose", &LanguageServer::close},
            {"textDocument/didSave", &LanguageServer::noteSaved},
            {"workspace/didChangeWatchedFiles", &LanguageServer::noteChangedFiles},
    };
    const auto notification = kNotifications.find(method);
    if (mState == State::Running && notification != kNotifications.end()) {
        (this->*notification->second)(params);
    }
}

LanguageServer::Reply LanguageServer::initialize(const Json::Value& params) {
    const Json::Value& client = memberOf(params, "capabilities");
    const Json::Value& encodings = memberOf(memberOf(client, "general"), "positionEncodings");
    if (encodings.isArray() &&
        std::find(encodings.begin(), encodings.end(), Json::Value("utf-8")) != encodings.end()) {
        mEncoding = PositionEncoding::Utf8;
    }
    mHasFlatSymbols = memberOf(memberOf(memberOf(client, "textDocument"), "documentSymbol"),
                               "hierarchicalDocumentSymbolSupport") != Json::Value(true);
    const std::string root = textOf(memberOf(memberOf(params, "initializationOptions"), "rootdir"));
    mRoot = root.empty() ? mRoot : root;
    mState = State::Running;
    Json::Value result;
    result["capabilities"] = capabilitiesOf(mEncoding);
    result["serverInfo"]["name"] = kToolName;
    result["serverInfo"]["version"] = KC2_VERSION;
    return {result};
}

LanguageServer::Reply LanguageServer::shutDown(const Json::Value& /*params*/) {
    mState = State::ShutDown;
    mDocuments.clear();
    mTrees.clear();
    return {};
}

// --- Documents
// ------------------------------------------------------------------------------------

OpenDocument* LanguageServer::find(const Json::Value& params) {
    const auto found = mDocuments.find(textOf(memberOf(memberOf(params, "textDocument"), "uri")));
    return found != mDocuments.end() ? &found->second : nullptr;
}

std::string LanguageServer::rootOf(const std::string& path) const {
    if (!canPlayDevices()) {
        return std::string();
    }
    const std::string root = std::string(withoutTrailing(realPath(mRoot), '/'));
    return !mRoot.empty() && realPath(path).starts_with(root + "/") ? mRoot : deviceRootOf(path);
}

void LanguageServer::open(const Json::Value& params) {
    const Json::Value& item = memberOf(params, "textDocument");
    const std::string uri = textOf(memberOf(item, "uri"));
    if (uri.empty() || !memberOf(item, "text").isString()) {
        return printError("didOpen has no URI or no text");
    }
    OpenDocument& document = mDocuments[uri] = OpenDocument();
    document.uri = uri;
    document.path = pathOfUri(uri);
    document.root = rootOf(document.path);
    document.version = memberOf(item, "version");
    document.text = memberOf(item, "text").asString();
    markChanged(&document);
}

void LanguageServer::change(const Json::Value& params) {
    OpenDocument* const document = find(params);
    if (document == nullptr) {
        return;
    }
    const std::string wrong = applyChanges(memberOf(params, "contentChanges"), mEncoding, document);
    if (!wrong.empty()) {  // The text is no longer the editor's, so nothing can be said about it.
        printError("{}: {}; the document is ignored until it is opened again",
                   escaped(document->path), wrong);
        return close(params);
    }
    document->version = memberOf(memberOf(params, "textDocument"), "version");
    markChanged(document);
}

void LanguageServer::close(const Json::Value& params) {
    OpenDocument* const document = find(params);
    if (document == nullptr) {
        return;
    }
    markChanged(document);
    document->findings.clear();
    document->version = Json::Value();
    sendDiagnostics(*document);
    mDocuments.erase(document->uri);
    dropUnusedTrees();
}

// Another file of the tree may have been written as well: by the editor, or beside it.
void LanguageServer::noteSaved(const Json::Value& params) {
    if (OpenDocument* const document = find(params)) {
        document->root = rootOf(document->path);
        markChanged(document);
    }
}

void LanguageServer::noteChangedFiles(const Json::Value& /*params*/) {
    for (auto& [uri, document] : mDocuments) {
        document.isChecked = document.isChecked && document.root.empty();
    }
}

void LanguageServer::markChanged(OpenDocument* document) {
    document->isChecked = false;
    for (auto& [uri, one] : mDocuments) {
        one.isChecked = one.isChecked && (one.root.empty() || one.root != document->root);
    }
}

void LanguageServer::dropUnusedTrees() {
    std::set<std::string> roots;
    for (const auto& [uri, document] : mDocuments) {
        roots.insert(document.root);
    }
    std::erase_if(mTrees, [&](const auto& tree) { return roots.count(tree.first) == 0; });
}

// --- Findings
// -------------------------------------------------------------------------------------

void LanguageServer::publish() {
    for (auto& [uri, document] : mDocuments) {
        if (document.isChecked) {
            continue;
        }
        document.root.empty() ? checkAlone(&document) : checkTree(document.root);
    }
}

// What all checks of a text need.
void LanguageServer::read(OpenDocument* document) const {
    document->findings.clear();
    document->lines = std::make_unique<TextLines>(document->text, mEncoding);
    document->document =
            std::make_unique<Document>(DocumentId{.path = document->path}, document->text);
}

void LanguageServer::checkAlone(OpenDocument* document) {
    read(document);
    Report report{Levels()};
    check(Checked(*document->document, *mOptions.known), &report);
    addFindings(report, nullptr, document);
}

void LanguageServer::checkTree(const std::string& root) {
    std::vector<OpenDocument*> open;
    for (auto& [uri, document] : mDocuments) {
        if (document.root == root) {
            open.push_back(&document);
        }
    }
    std::unique_ptr<const TreeCheck>& tree = mTrees[root];
    tree = std::make_unique<const TreeCheck>(root, open, *mOptions.known);
    for (OpenDocument* const document : open) {
        if (!tree->hasTextOf(*document) || tree->loadsOf(document->path).empty()) {
            checkAlone(document);
            continue;
        }
        read(document);
        addFindings(tree->report(), tree.get(), document);
    }
}

void LanguageServer::addFindings(const Report& report, const TreeCheck* tree,
                                 OpenDocument* document) {
    const std::string real = tree != nullptr ? realPath(document->path) : "";
    std::map<const Source*, bool> isOfDocument;
    for (const ReportEntry* const entry : shownOfEachDocument(report, kMostDiagnostics)) {
        if (tree != nullptr) {
            const auto [known, isNew] = isOfDocument.emplace(entry->source, false);
            known->second = isNew ? tree->realNameOf(entry->source->path()) == real : known->second;
            if (!known->second) {
                continue;
            }
        }
        document->findings.push_back(
                {entry->check, entry->span, entry->isForFile,
                 entry->details != nullptr ? entry->details->fixes : std::vector<Fix>(),
                 diagnosticOf(*entry, tree, *document)});
    }
    document->isChecked = true;
    sendDiagnostics(*document);
}

Json::Value LanguageServer::diagnosticOf(const ReportEntry& entry, const TreeCheck* tree,
                                         const OpenDocument& document) {
    Json::Value json;
    json["range"] = rangeToJson(*document.lines, entry.span);
    json["severity"] = kSeverityNumbers[static_cast<size_t>(entry.severity)];
    json["code"] = entry.check->id;
    json["source"] = kToolName;
    json["message"] =
            escaped(tree != nullptr ? tree->withDocumentNames(entry.message) : entry.message);
    if (entry.details != nullptr) {
        for (const RelatedPlace& related : entry.details->related) {
            json["relatedInformation"].append(relatedOf(related, tree, document));
        }
    }
    return json;
}

// A built-in document is no file: its place is in the text, and the location is this document.
Json::Value LanguageServer::relatedOf(const RelatedPlace& related, const TreeCheck* tree,
                                      const OpenDocument& document) {
    const bool isFile = tree == nullptr || related.source->path().starts_with("/");
    const std::string message = related.message.empty()
                                        ? std::string(related.source->textAt(related.span))
                                        : related.message;
    Json::Value json;
    json["location"] = isFile ? locationOf(*related.source, related.span, tree)
                              : locationOf(document.document->source, {}, nullptr);
    json["message"] = escaped(
            isFile ? message : related.source->placeOf(related.span.start) + ": " + message);
    return json;
}

// A place in an open document, or in a file.
Json::Value LanguageServer::locationOf(const Source& source, Span span,
                                       const TreeCheck* tree) const {
    const std::string path =
            tree != nullptr ? tree->withDocumentNames(source.path()) : source.path();
    const auto open = std::find_if(mDocuments.begin(), mDocuments.end(), [&](const auto& one) {
        return one.second.path == path ||
               (tree != nullptr && realPath(one.second.path) == realPath(path));
    });
    Json::Value json;
    json["uri"] = open != mDocuments.end() ? open->first : uriOf(path);
    const bool isOfOpen = open != mDocuments.end() && open->second.document != nullptr &&
                          &open->second.document->source == &source;
    json["range"] = isOfOpen ? rangeToJson(*open->second.lines, span)
                             : rangeToJson(TextLines(source.text(), mEncoding), span);
    return json;
}

void LanguageServer::sendDiagnostics(const OpenDocument& document) {
    Json::Value message;
    message["jsonrpc"] = "2.0";
    message["method"] = "textDocument/publishDiagnostics";
    Json::Value& params = message["params"];
    params["uri"] = document.uri;
    if (document.version.isInt64()) {
        params["version"] = document.version;
    }
    params["diagnostics"] = Json::arrayValue;
    for (const EditorFinding& finding : document.findings) {
        params["diagnostics"].append(finding.diagnostic);
    }
    mSend(message);
}

// --- Requests about a document
// --------------------------------------------------------------------

LanguageServer::Reply LanguageServer::atPlace(const Json::Value& params, CursorUse use,
                                              PlaceRequest handle) {
    const std::optional<TextPosition> position = positionFrom(memberOf(params, "position"));
    if (!position) {
        return {{}, kInvalidParams, "the position is missing"};
    }
    const OpenDocument* const document = find(params);
    if (document == nullptr) {
        return {};
    }
    const size_t offset = document->lines->offsetOf(*position);
    if (isInComment(*document->document, offset)) {
        return {};
    }
    return {(this->*handle)(*document, cursorAt(document->document->parserText, offset, use))};
}

Json::Value LanguageServer::hover(const OpenDocument& document, const Cursor& cursor) {
    Json::Value result;
    if (cursor.token.start == cursor.token.limit) {
        return result;
    }
    HoverText hover = hoverTextAt(cursor, mOptions.known->catalogue);
    hover.text += hover.name.empty() ? "" : settersText(document, hover.name);
    if (!hover.text.empty()) {
        result["contents"]["kind"] = "plaintext";
        result["contents"]["value"] = hover.text;
        result["range"] = rangeToJson(*document.lines, cursor.token);
    }
    return result;
}

// Who sets the name, in each load that reads the document; loads that agree are shown together.
std::string LanguageServer::settersText(const OpenDocument& document, const std::string& name) {
    const auto tree = mTrees.find(document.root);
    if (tree == mTrees.end()) {
        return std::string();
    }
    std::vector<std::pair<std::string, std::string>> texts;  // And the variants.
    for (const Load* const load : tree->second->loadsOf(document.path)) {
        tree->second->play(*load);
        Explanation explanation;
        explainSetters(*load, name, &explanation);
        std::string text;
        for (const Explanation::Line& line : explanation.lines) {
            text += formatted(line);
        }
        const auto known = std::find_if(texts.begin(), texts.end(),
                                        [&](const auto& one) { return one.first == text; });
        if (known != texts.end()) {
            known->second += ", " + load->variant;
        } else {
            texts.emplace_back(text, load->variant);
        }
    }
    std::string all;
    for (const auto& [text, variants] : texts) {
        all += (texts.size() > 1 ? formatted(Explanation::Line{"variant", variants}) : "") + text;
    }
    return all;
}

Json::Value LanguageServer::complete(const OpenDocument& document, const Cursor& cursor) {
    return completionsAt(cursor, *document.lines, mSchema);
}

// From a setting to the one that is used.
Json::Value LanguageServer::define(const OpenDocument& document, const Cursor& cursor) {
    Json::Value places(Json::arrayValue);
    const std::string section(cursor.key(1));
    const std::string name(cursor.key(2));
    const auto addFrom = [&](const Document* from, const TreeCheck* tree) {
        const Node* const object = from != nullptr ? from->section(section) : nullptr;
        const Node* const member = object != nullptr ? findMember(*object, name) : nullptr;
        if (member != nullptr && !from->isBuiltIn()) {
            const Json::Value place = locationOf(from->source, member->name, tree);
            if (std::find(places.begin(), places.end(), place) == places.end()) {
                places.append(place);
            }
        }
    };
    const auto tree = mTrees.find(document.root);
    const std::vector<const Load*> loads = tree != mTrees.end()
                                                   ? tree->second->loadsOf(document.path)
                                                   : std::vector<const Load*>();
    for (const Load* const load : loads) {
        addFrom(setterOf(*load, section, name), tree->second.get());
    }
    if (loads.empty()) {
        addFrom(document.document.get(), nullptr);
    }
    return places;
}

LanguageServer::Reply LanguageServer::listSymbols(const Json::Value& params) {
    const OpenDocument* const document = find(params);
    return {document != nullptr ? documentSymbols(*document, mHasFlatSymbols) : Json::Value()};
}

LanguageServer::Reply LanguageServer::listActions(const Json::Value& params) {
    const Json::Value& range = memberOf(params, "range");
    const std::optional<TextPosition> start = positionFrom(memberOf(range, "start"));
    const std::optional<TextPosition> end = positionFrom(memberOf(range, "end"));
    if (!start || !end) {
        return {{}, kInvalidParams, "the range is missing"};
    }
    const OpenDocument* const document = find(params);
    if (document == nullptr) {
        return {};
    }
    const Span span = {document->lines->offsetOf(*start), document->lines->offsetOf(*end)};
    return {codeActions(*document, span, memberOf(memberOf(params, "context"), "only"), mOptions)};
}

}  // namespace kc2::tool
