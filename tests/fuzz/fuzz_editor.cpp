// Fuzz target: `kcodec2_spec lsp` with any bytes, as a stream, as messages, and as the text, the
// changes and the positions of a document that is open, alone and in a device tree.

#include <json/value.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/DeviceOptions.h"
#include "editor/EditorJson.h"
#include "editor/Frames.h"
#include "editor/Server.h"
#include "tests/fuzz/Printed.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/ScratchTree.h"

namespace kc2::fuzz {

namespace {

constexpr char kSpecPath[] = "/odm/etc/media_test/video_system_specs.json";

const ScratchTree& savedTree() {
    static const ScratchTree tree;
    static const bool isWritten = [] {
        tree.writeFile(kSpecPath, R"({"Video": {"Presets": {"private_complexity": 1}}})");
        tree.writeFile("/data/vendor/media/video_private_configs.json",
                       R"({"Video": {"Presets": {"private_complexity": 2, "a": "x"}}})");
        tool::muteLog();
        return true;
    }();
    require(isWritten, "the tree is there");
    return tree;
}

// The parts of an input, which are separated by a byte that is in no UTF-8.
class Parts {
public:
    explicit Parts(std::string_view input) : mRest(input) {}

    bool isEnd() const { return mIsEnd; }

    std::string_view next() {
        const size_t end = mRest.find('\xFF');
        const std::string_view part = mRest.substr(0, end);
        mIsEnd = end == std::string_view::npos;
        mRest.remove_prefix(mIsEnd ? mRest.size() : end + 1);
        return part;
    }

private:
    std::string_view mRest;
    bool mIsEnd = false;
};

class Session {
public:
    explicit Session(bool isInTree)
        : mUri(isInTree ? "file://" + savedTree().root() + kSpecPath : "untitled:document"),
          mServer(knownSettings(), "", [this](const Json::Value& message) { receive(message); }) {
        request("initialize", Json::Value(Json::objectValue));
    }

    void open(std::string_view text) {
        Json::Value params;
        params["textDocument"]["uri"] = mUri;
        params["textDocument"]["version"] = 0;
        params["textDocument"]["text"] = std::string(text);
        notify("textDocument/didOpen", params);
        mServer.publish();
    }

    // The first byte of a step says what it is, the next four are positions.
    void take(std::string_view step) {
        const auto byteAt = [&](size_t at) {
            return at < step.size() ? static_cast<unsigned char>(step[at]) : 0U;
        };
        Json::Value range;
        range["start"] = position(byteAt(1), byteAt(2));
        range["end"] = position(byteAt(1) + byteAt(3), byteAt(4));
        const std::string text(step.substr(step.size() < 5 ? step.size() : 5));
        switch (byteAt(0) % 8) {
            case 0:
                return send(text);
            case 1:
                return feed(text);
            case 2:
                return change(range, text);
            case 3:
                return ask("textDocument/hover", range);
            case 4:
                return ask("textDocument/completion", range);
            case 5:
                return ask("textDocument/definition", range);
            case 6:
                return ask("textDocument/codeAction", range);
            default:
                return ask("textDocument/documentSymbol", range);
        }
    }

    void end() {
        mServer.publish();
        require(mServer.isEnded() || mAnswers >= mRequests, "each request has an answer");
    }

private:
    static std::shared_ptr<const tool::KnownSettings> knownSettings() {
        static const auto known =
                std::make_shared<const tool::KnownSettings>(*tool::loadCatalogue({}));
        return known;
    }

    static Json::Value position(unsigned line, unsigned character) {
        Json::Value json;
        json["line"] = line;
        json["character"] = character;
        return json;
    }

    void send(const std::string& message) {
        mServer.add(message);
        while (mServer.isWaiting() && !mServer.isEnded()) {
            mServer.handleNext();
        }
    }

    void feed(std::string_view bytes) {
        tool::FrameReader frames;
        frames.add(bytes.substr(0, bytes.size() / 2));
        for (int half = 0; half < 2; ++half) {
            while (const std::optional<std::string> message = frames.next()) {
                send(*message);
            }
            frames.add(half == 0 ? bytes.substr(bytes.size() / 2) : "");
        }
    }

    void change(const Json::Value& range, const std::string& text) {
        Json::Value params;
        params["textDocument"]["uri"] = mUri;
        params["textDocument"]["version"] = 1;
        params["contentChanges"][0]["range"] = range;
        params["contentChanges"][0]["text"] = text;
        notify("textDocument/didChange", params);
        mServer.publish();
    }

    void ask(const char* method, const Json::Value& range) {
        Json::Value params;
        params["textDocument"]["uri"] = mUri;
        params["position"] = range["start"];
        params["range"] = range;
        request(method, params);
    }

    void request(const char* method, const Json::Value& params) {
        Json::Value message;
        message["id"] = ++mRequests;
        message["method"] = method;
        message["params"] = params;
        send(tool::writtenMessage(message));
    }

    void notify(const char* method, const Json::Value& params) {
        Json::Value message;
        message["method"] = method;
        message["params"] = params;
        send(tool::writtenMessage(message));
    }

    void receive(const Json::Value& message) {
        mAnswers += message.isMember("id") ? 1 : 0;
        requireJson(tool::writtenMessage(message));
    }

    const std::string mUri;
    int mRequests = 0;
    int mAnswers = 0;
    tool::LanguageServer mServer;
};

}  // namespace

}  // namespace kc2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kc2::fuzz::Parts parts({reinterpret_cast<const char*>(data), size});
    kc2::fuzz::Session session(size % 8 == 1);  // A tree takes longer.
    session.open(parts.next());
    while (!parts.isEnd()) {
        session.take(parts.next());
    }
    session.end();
    return 0;
}
