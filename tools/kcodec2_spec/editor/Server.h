// The language server: answers an editor's messages about the documents that it has open.
#pragma once

#include <json/value.h>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "check/Check.h"
#include "editor/Cursor.h"
#include "editor/OpenDocument.h"
#include "editor/TreeCheck.h"

namespace kc2::tool {

class LanguageServer {
public:
    using Send = std::function<void(const Json::Value& message)>;

    // `root` is the device tree of the documents in it; where it is empty, a document's own path
    // says where the tree is.
    LanguageServer(std::shared_ptr<const KnownSettings> known, std::string root, Send send);

    // Keeps a message for later. A request that is waiting can be cancelled by one that is added.
    void add(const std::string& text);
    bool isWaiting() const { return !mWaiting.empty(); }
    size_t countWaiting() const { return mWaiting.size(); }

    // Handles the message that has waited longest.
    void handleNext();

    // Checks what has changed and sends what was found. To be called when no message is waiting.
    void publish();

    bool isEnded() const { return mIsEnded; }
    // Whether the editor has ended in order.
    bool isShutDown() const { return mState == State::ShutDown; }

private:
    enum class State { New, Running, ShutDown };

    struct Reply {
        Json::Value result;
        int error = 0;
        std::string message = {};
    };

    using Request = Reply (LanguageServer::*)(const Json::Value& params);
    using Notification = void (LanguageServer::*)(const Json::Value& params);
    using PlaceRequest = Json::Value (LanguageServer::*)(const OpenDocument& document,
                                                         const Cursor& cursor);

    void reply(const Json::Value& id, const Reply& reply);
    void cancel(const Json::Value& id);
    Reply handleRequest(const std::string& method, const Json::Value& params);
    void handleNotification(const std::string& method, const Json::Value& params);

    Reply initialize(const Json::Value& params);
    Reply shutDown(const Json::Value& params);
    // For a request about a place, with the document checked.
    Reply atPlace(const Json::Value& params, CursorUse use, PlaceRequest handle);
    Json::Value hover(const OpenDocument& document, const Cursor& cursor);
    Json::Value complete(const OpenDocument& document, const Cursor& cursor);
    Json::Value define(const OpenDocument& document, const Cursor& cursor);
    Reply listSymbols(const Json::Value& params);
    Reply listActions(const Json::Value& params);

    void open(const Json::Value& params);
    void change(const Json::Value& params);
    void close(const Json::Value& params);
    void noteSaved(const Json::Value& params);
    void noteChangedFiles(const Json::Value& params);

    OpenDocument* find(const Json::Value& params);
    std::string rootOf(const std::string& path) const;
    // Marks the others in its tree, too.
    void markChanged(OpenDocument* document);
    void dropUnusedTrees();

    void read(OpenDocument* document) const;
    void checkAlone(OpenDocument* document);
    void checkTree(const std::string& root);
    void addFindings(const Report& report, const TreeCheck* tree, OpenDocument* document);
    Json::Value diagnosticOf(const ReportEntry& entry, const TreeCheck* tree,
                             const OpenDocument& document);
    Json::Value relatedOf(const RelatedPlace& related, const TreeCheck* tree,
                          const OpenDocument& document);
    void sendDiagnostics(const OpenDocument& document);
    Json::Value locationOf(const Source& source, Span span, const TreeCheck* tree) const;
    std::string settersText(const OpenDocument& document, const std::string& name);

    CheckOptions mOptions;
    const Json::Value mSchema;
    std::string mRoot;
    const Send mSend;

    State mState = State::New;
    bool mIsEnded = false;
    PositionEncoding mEncoding = PositionEncoding::Utf16;
    bool mHasFlatSymbols = true;
    std::deque<Json::Value> mWaiting;
    std::map<std::string, OpenDocument> mDocuments;                  // By URI.
    std::map<std::string, std::unique_ptr<const TreeCheck>> mTrees;  // By root.
};

}  // namespace kc2::tool
