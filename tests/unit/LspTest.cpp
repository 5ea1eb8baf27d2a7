// The language server: what it answers, with the server in this process and as a program.

#include <gtest/gtest.h>
#include <json/value.h>
#include <json/writer.h>
#include <malloc.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "RunTool.h"
#include "base/DeviceOptions.h"
#include "check/CheckRows.h"
#include "editor/EditorJson.h"
#include "editor/Frames.h"
#include "editor/Server.h"
#include "editor/TextLines.h"
#include "platform/Version.h"

namespace kc2::test {

namespace {

using tool::FrameReader;
using tool::LanguageServer;
using tool::memberOf;
using tool::textOf;

Json::Value jsonOf(const std::string& text) {
    std::optional<Json::Value> json = tool::readMessage(text);
    EXPECT_TRUE(json) << text;
    return json.value_or(Json::Value());
}

// A text with one "|", where the cursor is.
struct MarkedText {
    explicit MarkedText(const std::string& marked)
        : offset(marked.find('|')), text(std::string(marked).erase(offset, 1)) {}

    Json::Value position() const {
        const tool::TextPosition at =
                tool::TextLines(text, tool::PositionEncoding::Utf16).positionOf(offset);
        Json::Value json;
        json["line"] = Json::UInt64(at.line);
        json["character"] = Json::UInt64(at.character);
        return json;
    }

    size_t offset;
    std::string text;
};

// An editor with the server in this process.
class Editor {
public:
    explicit Editor(const std::string& parameters = R"({"capabilities": {}})",
                    const std::string& root = "")
        : mServer(known(), root, [this](const Json::Value& message) { receive(message); }) {
        tool::muteLog();
        initialized = request("initialize", jsonOf(parameters));
    }
    ~Editor() { tool::unmuteLog(); }
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    static std::shared_ptr<const tool::KnownSettings> known() {
        static const auto settings =
                std::make_shared<const tool::KnownSettings>(*tool::loadCatalogue({}));
        return settings;
    }

    void send(const std::string& message) {
        mServer.add(message);
        while (mServer.isWaiting()) {
            mServer.handleNext();
        }
    }

    void notify(const char* method, const Json::Value& params) {
        Json::Value message;
        message["method"] = method;
        message["params"] = params;
        send(tool::writtenMessage(message));
    }

    // The whole answer.
    Json::Value request(const std::string& method, const Json::Value& params) {
        Json::Value message;
        message["id"] = ++mLast;
        message["method"] = method;
        message["params"] = params;
        send(tool::writtenMessage(message));
        EXPECT_EQ(mLast, answer["id"].asInt()) << method;
        return answer;
    }

    void open(const std::string& uri, const std::string& text) {
        Json::Value params;
        params["textDocument"]["uri"] = uri;
        params["textDocument"]["version"] = 1;
        params["textDocument"]["text"] = text;
        notify("textDocument/didOpen", params);
        mServer.publish();
    }

    void change(const std::string& uri, const Json::Value& changes) {
        Json::Value params;
        params["textDocument"]["uri"] = uri;
        params["textDocument"]["version"] = 2;
        params["contentChanges"] = changes;
        notify("textDocument/didChange", params);
        mServer.publish();
    }

    void replace(const std::string& uri, const std::string& text) {
        Json::Value changes;
        changes[0]["text"] = text;
        change(uri, changes);
    }

    Json::Value at(const std::string& method, const MarkedText& marked,
                   const std::string& uri = "file:///x.json") {
        open(uri, marked.text);
        Json::Value params;
        params["textDocument"]["uri"] = uri;
        params["position"] = marked.position();
        return request("textDocument/" + method, params)["result"];
    }

    // For all of a document.
    Json::Value actions(const std::string& uri) {
        Json::Value params;
        params["textDocument"]["uri"] = uri;
        params["range"]["start"]["line"] = 0;
        params["range"]["start"]["character"] = 0;
        params["range"]["end"]["line"] = 1000;
        params["range"]["end"]["character"] = 0;
        return request("textDocument/codeAction", params)["result"];
    }

    LanguageServer& server() { return mServer; }

    Json::Value initialized;
    Json::Value answer;                            // The last one.
    std::map<std::string, Json::Value> findings;   // By URI.
    std::vector<Json::Value>* received = nullptr;  // Gets each message, if it is set.

private:
    void receive(const Json::Value& message) {
        if (received != nullptr) {
            received->push_back(message);
        }
        if (message["method"] == "textDocument/publishDiagnostics") {
            findings[message["params"]["uri"].asString()] = message["params"]["diagnostics"];
        } else {
            answer = message;
        }
    }

    LanguageServer mServer;
    int mLast = 0;
};

constexpr char kUri[] = "file:///x.json";

// The text after edits of the protocol.
std::string withEdits(const std::string& text, const Json::Value& edits) {
    const tool::TextLines lines(text, tool::PositionEncoding::Utf16);
    std::string changed = text;
    for (Json::ArrayIndex i = edits.size(); i-- > 0;) {  // From the last: places stay.
        const Json::Value& range = edits[i]["range"];
        const size_t start = lines.offsetOf(*tool::positionFrom(range["start"]));
        const size_t end = lines.offsetOf(*tool::positionFrom(range["end"]));
        changed.replace(start, end - start, edits[i]["newText"].asString());
    }
    return changed;
}

TEST(LspTest, PositionsAreThoseOfTheProtocol) {
    // A character of each length, and each end of a line.
    const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xACz\r\nb\rc\n";
    struct Row {
        size_t offset, line, utf16, utf8;
    };
    for (const auto& [offset, line, utf16, utf8] : std::vector<Row>{{0, 0, 0, 0},
                                                                    {1, 0, 1, 1},
                                                                    {3, 0, 2, 3},
                                                                    {6, 0, 3, 6},
                                                                    {10, 0, 5, 10},
                                                                    {11, 0, 6, 11},
                                                                    {13, 1, 0, 0},
                                                                    {15, 2, 0, 0},
                                                                    {17, 3, 0, 0}}) {
        for (const auto& [encoding, character] : {std::pair(tool::PositionEncoding::Utf16, utf16),
                                                  std::pair(tool::PositionEncoding::Utf8, utf8)}) {
            const tool::TextLines lines(text, encoding);
            const tool::TextPosition at = lines.positionOf(offset);
            EXPECT_EQ(std::pair(line, character), std::pair(at.line, at.character)) << offset;
            EXPECT_EQ(offset, lines.offsetOf(at));
        }
    }
    const tool::TextLines lines(text, tool::PositionEncoding::Utf16);
    EXPECT_EQ(11u, lines.offsetOf({0, 4000000000}));  // Before the end of the line.
    EXPECT_EQ(text.size(), lines.offsetOf({4000000000, 0}));
    EXPECT_EQ(10u, lines.offsetOf({0, 4}));  // Not in the middle of a character.
    EXPECT_EQ(11u, tool::TextLines(text, tool::PositionEncoding::Utf8).offsetOf({0, 12}));
    // Returns without a line feed after them.
    const tool::TextLines returns("a\nb\r\rc\r", tool::PositionEncoding::Utf16);
    for (const auto& [offset, line] : {std::pair(4u, 2u), {5u, 3u}, {6u, 3u}, {7u, 4u}}) {
        EXPECT_EQ(line, returns.positionOf(offset).line) << offset;
    }
    // A long line, whose characters are counted in blocks.
    std::string emojis;
    for (size_t i = 0; i <= 192; ++i, emojis +=
                                      "\xF0\x9F\x8E\xAC"
                                      "a\xC3\xA4z") {
        const tool::TextPosition end =
                tool::TextLines(emojis, tool::PositionEncoding::Utf16).positionOf(emojis.size());
        EXPECT_EQ(std::pair(size_t{0}, 5 * i), std::pair(end.line, end.character));
    }
    const tool::TextLines blocks(emojis, tool::PositionEncoding::Utf16);
    for (size_t i = 0; i <= 192; ++i) {
        EXPECT_EQ(5 * i, blocks.positionOf(8 * i).character);
        EXPECT_EQ(8 * i, blocks.offsetOf({0, 5 * i}));
    }
}

TEST(LspTest, FramesAreFoundHoweverTheyArrive) {
    const std::string bytes = tool::framed("{}") +
                              "content-length: 3\r\nContent-Type: x; charset=utf-8\r\n\r\n[1]" +
                              tool::framed("");
    FrameReader frames;
    std::vector<std::string> messages;
    for (const char byte : bytes) {
        frames.add({&byte, 1});
        while (const auto message = frames.next()) {
            messages.push_back(*message);
        }
    }
    EXPECT_EQ((std::vector<std::string>{"{}", "[1]", ""}), messages);
    EXPECT_FALSE(frames.isInMessage());
    // A header of as many bytes as one may have, all at once and one by one, and a longer one.
    for (const bool isAtOnce : {true, false}) {
        for (const size_t more : {0, 1}) {
            const std::string length = "Content-Length:2\r\n";
            const std::string header = length +
                                       "X:" + std::string(4096 - length.size() - 6 + more, 'x') +
                                       "\r\n\r\n{}";
            FrameReader reader;
            std::optional<std::string> message;
            for (size_t at = 0; at < header.size(); at += isAtOnce ? header.size() : 1) {
                reader.add(std::string_view(header).substr(at, isAtOnce ? header.size() : 1));
                message = reader.next();
            }
            EXPECT_EQ(more == 0, message == "{}") << isAtOnce;
            EXPECT_EQ(more == 0 ? "" : "a header has more than 4096 bytes", reader.whyBroken());
        }
    }
}

// What the program does with input that is none of the protocol, or that ends.
TEST(LspTest, BadInputEndsItWithALine) {
    const std::string initialize = R"({"id": 1, "method": "initialize", "params": {}})";
    const std::string shutdown = R"({"id": 2, "method": "shutdown"})";
    const std::string exit = R"({"method": "exit"})";
    struct Row {
        std::string input;
        int exitCode;
        std::string text;
    };
    const ScratchDirectory scratch;
    for (const auto& [input, exitCode, text] : std::vector<Row>{
                 {"", 2, "kcodec2_spec: the input has ended, without \"exit\"\n"},
                 {"Content-Length: 9\r\n\r\n{}", 2, "ends in the middle of a message\n"},
                 {"Content-Length: 9\r\n", 2, "ends in the middle of a message\n"},
                 {"Content-Length: 9x\r\n\r\n", 2, "Content-Length is not a number: \"9x\"\n"},
                 {"Content-Length: -9\r\n\r\n", 2, "Content-Length is not a number: \"-9\"\n"},
                 {"X: 9\r\n\r\n", 2, "a header has no Content-Length\n"},
                 {"{}\r\n\r\n", 2, "a header line has no colon: \"{}\"\n"},
                 {"Content-Length:  \r\n\r\n", 2, "Content-Length is not a number: \"\"\n"},
                 {"Content-Length: 67108864\r\n\r\n", 2, "ends in the middle of a message\n"},
                 {"Content-Length: 67108865\r\n\r\n", 2,
                  "a message of 67108865 bytes is above the limit of 67108864\n"},
                 {"Content-Length: 99999999999999999999\r\n\r\n", 2, "above the limit"},
                 {std::string(5000, 'x'), 2, "a header has more than 4096 bytes\n"},
                 {tool::framed(exit), 1, ""},
                 {tool::framed(initialize) + tool::framed(exit), 1, "\"result\""},
                 {tool::framed(initialize) + tool::framed(shutdown) + tool::framed(exit), 0,
                  "\"result\":null}"},
         }) {
        const Result result = run("lsp < " + scratch.write("input", input));
        EXPECT_EQ(exitCode, result.exitCode) << input << result.output;
        EXPECT_NE(std::string::npos, result.output.find(text)) << input << result.output;
    }
    // Output that cannot be written, as to a pipe that the editor has closed.
    const std::string path = scratch.path();
    const Result full = run("lsp < " + path + "/input > /dev/full 2> " + path +
                            "/errors; code=$?; cat " + path + "/errors; exit $code #");
    EXPECT_EQ(2, full.exitCode);
    EXPECT_NE(std::string::npos, full.output.find("the output cannot be written")) << full.output;
}

TEST(LspTest, EachWrongMessageGetsTheErrorOfTheProtocol) {
    struct Row {
        std::string message;
        int error;  // 0: none.
        bool isAnswered = true;
    };
    const std::string deep(200000, '[');
    const auto expectRows = [](Editor* editor, const std::vector<Row>& rows) {
        for (const auto& [message, error, isAnswered] : rows) {
            editor->answer = Json::Value();
            editor->send(message);
            EXPECT_EQ(isAnswered, !editor->answer.isNull()) << message;
            EXPECT_EQ(error, editor->answer["error"]["code"].asInt()) << message;
        }
    };
    Editor editor;
    expectRows(&editor,
               {
                       {"", -32700},
                       {"{", -32700},
                       {"{\"id\": 1.5, \"method\": \"shutdown\"}", -32600},
                       {deep, -32700},
                       {"[]", -32600},
                       {"1", -32700},
                       {"null", -32700},
                       {R"({"id": 1})", -32600},
                       {R"({"id": {}, "method": "shutdown"})", -32600},
                       {R"({"id": 1, "method": 2})", -32600},
                       {R"({"id": 1, "result": null})", 0, false},
                       {R"({"id": 1, "method": "x/y"})", -32601},
                       {R"({"id": "a", "method": "$/x"})", -32601},
                       {R"({"method": "x/y"})", 0, false},
                       {R"({"id": 1, "method": "initialize"})", -32600},
                       {R"({"id": 1, "method": "textDocument/hover"})", -32602},
                       {R"({"id": 1, "method": "textDocument/hover", "params": []})", -32602},
                       {R"({"id": 1, "method": "textDocument/hover", "params": {"position":
                                    {"line": -1, "character": 1.5}}})",
                        -32602},
                       {R"({"id": 1, "method": "textDocument/codeAction"})", -32602},
                       {R"({"id": 1, "method": "textDocument/documentSymbol"})", 0},
                       {R"({"method": "textDocument/didChange", "params": 1})", 0, false},
                       {R"({"method": "textDocument/didClose"})", 0, false},
                       {R"({"id": 1, "method": "shutdown"})", 0},
                       {R"({"id": 1, "method": "textDocument/hover"})", -32600},
               });
    // As many levels and values as a message may have, and one more.
    const auto nested = [](size_t levels) {
        return R"({"id": 1, "method": "x/y", "params": [[], {}, )" + std::string(levels, '[') +
               std::string(levels, ']') + "]}";
    };
    std::string many = "[[]";
    for (size_t i = 4; i < size_t{1} << 20; i += 2) {
        many += ",0";
    }
    Editor limits;
    expectRows(&limits, {{nested(62), -32601},
                         {nested(63), -32700},
                         {many + "]", -32600},
                         {many + ",0]", -32700}});
    std::vector<int> errors;
    LanguageServer unused(Editor::known(), "", [&errors](const Json::Value& answer) {
        errors.push_back(answer["error"]["code"].asInt());
    });
    for (const char* const message : {R"({"id": 1, "method": "textDocument/hover"})",
                                      R"({"method": "textDocument/didOpen",
              "params": {"textDocument": {"uri": "file:///x.json", "text": "{}"}}})"}) {
        unused.add(message);
        unused.handleNext();
    }
    unused.publish();
    EXPECT_EQ((std::vector<int>{-32002}), errors);
}

TEST(LspTest, AWaitingRequestCanBeCancelled) {
    std::vector<std::pair<std::string, int>> answers;
    LanguageServer server(Editor::known(), "", [&](const Json::Value& answer) {
        answers.emplace_back(answer["id"].asString(), answer["error"]["code"].asInt());
    });
    server.add(R"({"id": 1, "method": "initialize"})");
    server.add(R"({"id": 2, "method": "shutdown"})");
    server.add(R"({"method": "$/cancelRequest", "params": {"id": 2}})");
    server.add(R"({"method": "$/cancelRequest", "params": {"id": 7}})");
    server.add(R"({"method": "$/cancelRequest"})");
    while (server.isWaiting()) {
        server.handleNext();
    }
    EXPECT_EQ((std::vector<std::pair<std::string, int>>{{"2", -32800}, {"1", 0}}), answers);
}

// An editor waits for what the server says, with the pipe to it open.
TEST(LspTest, TheProgramAnswersBeforeMoreArrives) {
    const ScratchDirectory scratch;
    const std::string path = scratch.path();
    mkfifo((path + "/in").c_str(), 0644);
    scratch.write("first", tool::framed(R"({"id": 1, "method": "initialize"})") +
                                   tool::framed(R"({"method": "textDocument/didOpen", "params":
            {"textDocument": {"uri": "file:///x.json", "text": "{}"}}})"));
    scratch.write("last", tool::framed(R"({"id": 2, "method": "shutdown"})") +
                                  tool::framed(R"({"method": "exit"})"));
    const Result result = run("lsp < " + path + "/in > " + path + "/out & exec 3> " + path +
                              "/in; cat " + path + "/first >&3; for i in $(seq 1000); do grep -q " +
                              "no-video " + path + "/out && break; sleep 0.01; done; cat " + path +
                              "/out; cat " + path + "/last >&3; wait $!");
    EXPECT_EQ(0, result.exitCode);
    EXPECT_EQ(1u, countOf("no-video", result.output)) << result.output;
}

// A text goes through its changes as in the editor, in both encodings.
TEST(LspTest, ChangesAreMadeWhereTheEditorMakesThem) {
    const std::string text = "{\"Video\": {\"\xF0\x9F\x8E\xAC\": 1}}";
    struct Row {
        const char* encodings;
        const char* change;  // Replaces the 1 by "x".
    };
    for (const auto& [encodings, change] :
         std::vector<Row>{{"[]", R"([{"range": {"start": {"line": 0, "character": 17},
                                       "end": {"line": 0, "character": 18}}, "text": "x"}])"},
                          {R"(["utf-16", "utf-8"])",
                           R"([{"range": {"start": {"line": 0, "character": 19},
                                 "end": {"line": 0, "character": 20}}, "text": "x"}])"}}) {
        Editor editor(std::string(R"({"capabilities": {"general": {"positionEncodings": )") +
                      encodings + "}}}");
        editor.open(kUri, text);
        editor.change(kUri, jsonOf(change));
        const Json::Value& found = editor.findings[kUri][0];
        EXPECT_EQ("text must be in double quotes: \"x\"; the device rejects the whole document",
                  found["message"].asString());
        EXPECT_EQ(jsonOf(change)[0]["range"]["start"]["character"].asInt(),
                  found["range"]["start"]["character"].asInt());
        // Changes without a text, or of half a range: the text is unknown from then on.
        testing::internal::CaptureStderr();
        editor.change(kUri, jsonOf(R"([{"range": {"start": 1}, "text": "x"}])"));
        EXPECT_NE(std::string::npos,
                  testing::internal::GetCapturedStderr().find("ignored until it is opened again"));
        EXPECT_TRUE(editor.findings[kUri].empty());
        EXPECT_TRUE(editor.actions(kUri).isNull());
    }
}

// The examples of all checks: what "check" reports is what the editor gets.
TEST(LspTest, EachFindingIsThatOfCheck) {
    const ScratchDirectory scratch;
    const std::map<std::string, int> severities = {{"error", 1}, {"warning", 2}, {"note", 3}};
    Editor editor;
    size_t compared = 0;
    for (const tool::Check& check : tool::kChecks) {
        const std::string text = check.mistake;
        if (text.empty()) {
            continue;
        }
        const std::string path = scratch.write("document.json", text);
        const std::string uri = "file://" + path;
        const Json::Value report = parsed(run("check --format json " + path).output);
        editor.open(uri, text);
        ASSERT_EQ(report["findings"].size(), editor.findings[uri].size()) << text;
        const Json::Value& findings = editor.findings[uri];
        for (Json::ArrayIndex i = 0; i < findings.size(); ++i) {
            const Json::Value& expected = report["findings"][i];
            const Json::Value& found = findings[i];
            EXPECT_EQ(expected["id"], found["code"]) << text;
            EXPECT_EQ(severities.at(expected["severity"].asString()), found["severity"].asInt());
            EXPECT_EQ(expected["line"].asInt(), found["range"]["start"]["line"].asInt() + 1);
            EXPECT_EQ(expected["endLine"].asInt(), found["range"]["end"]["line"].asInt() + 1);
            EXPECT_EQ(expected["related"].size(), found["relatedInformation"].size());
            // In JSON a backslash is doubled.
            const bool isPlain = expected["message"].asString().find('\\') == std::string::npos;
            EXPECT_TRUE(!isPlain || expected["message"] == found["message"]) << found;
            ++compared;
        }
    }
    EXPECT_LT(50u, compared);
}

TEST(LspTest, EachFixAndSuppressionDoesWhatItSays) {
    Editor editor;
    size_t fixes = 0;
    size_t suppressions = 0;
    for (const tool::Check& check : tool::kChecks) {
        const std::string text = check.mistake;
        if (text.empty()) {
            continue;
        }
        editor.open(kUri, text);
        const Json::ArrayIndex before = editor.findings[kUri].size();
        for (const Json::Value& action : editor.actions(kUri)) {
            const std::string changed = withEdits(text, action["edit"]["changes"][kUri]);
            editor.replace(kUri, changed);
            const bool isSuppression = action["title"].asString().starts_with("// kcodec2_spec");
            EXPECT_GT(before, editor.findings[kUri].size()) << changed;
            (isSuppression ? suppressions : fixes) += 1;
            if (isSuppression) {
                EXPECT_EQ(text, changed.substr(changed.find('\n') + 1));
            }
            editor.replace(kUri, text);
        }
    }
    EXPECT_LT(10u, fixes);
    EXPECT_LT(30u, suppressions);
}

TEST(LspTest, AllFixesTogetherAreThoseOfCheckFix) {
    const std::string text =
            "{\n  \"Video\": {\n    \"Presets\": {\"private_complexty\": 50,},\n"
            "    \"Features\": {\"private_enc_cvp_enable\": \"true\"}\n  }\n}\n";
    const ScratchDirectory scratch;
    const std::string path = scratch.write("document.json", text);
    run("check --fix " + path);
    Editor editor;
    editor.open(kUri, text);
    Json::Value edits;
    for (const Json::Value& action : editor.actions(kUri)) {
        if (action["kind"] == "source.fixAll") {
            edits = action["edit"]["changes"][kUri];
        }
    }
    EXPECT_EQ(1u, edits.size());
    EXPECT_EQ(readFile(path), withEdits(text, edits));
}

// More than an editor can show, or can be tried: the worst findings are kept.
TEST(LspTest, OfManyFindingsTheWorstAreSent) {
    Editor editor;
    for (const auto& [members, sent] : {std::pair(999, 1000), {1000, 1000}}) {
        std::string text = "{\"Video\": {\"Features\": {";
        for (int i = 0; i < members; ++i) {
            text += "\"v" + std::to_string(i) + "\": 1,\n";
        }
        editor.open(kUri, text + "\"z\": \"x\"}, \"OptionalCodecs\": [\"c2.kvx.avc.decoder\"]}}");
        const Json::Value& findings = editor.findings[kUri];
        EXPECT_EQ(sent, findings.size());
        EXPECT_EQ(1, std::count_if(findings.begin(), findings.end(),
                                   [](const Json::Value& one) { return one["severity"] == 1; }));
        size_t suppressions = 0;
        for (const Json::Value& action : editor.actions(kUri)) {
            suppressions += action["title"].asString().starts_with("// ") ? 1 : 0;
        }
        EXPECT_EQ(20u, suppressions);
    }
}

// No comment is offered where it would be part of a string or of another comment.
TEST(LspTest, NoSuppressionWithinAStringOrAComment) {
    Editor editor;
    for (const char* const text :
         {"{\"Video\": {\"KC2CodecPlugins\": [\"a\n b\", \"a\n \"]}}",
          "{\"Video\": /* a\n b */ {\"Presets\": {\"private_complexty\": 5}}}"}) {
        editor.open(kUri, text);
        EXPECT_FALSE(editor.findings[kUri].empty());
        for (const Json::Value& action : editor.actions(kUri)) {
            editor.replace(kUri, withEdits(text, action["edit"]["changes"][kUri]));
            for (const Json::Value& finding : editor.findings[kUri]) {
                EXPECT_NE("allows-nothing", finding["code"].asString()) << action;
                EXPECT_NE("syntax", finding["code"].asString()) << action;
            }
            editor.replace(kUri, text);
        }
    }
}

struct TextRow {
    std::string marked;
    std::vector<std::string> texts;  // In the answer.
};

TEST(LspTest, HoverShowsWhatExplainPrints) {
    Editor editor;
    for (const auto& [marked, texts] : std::vector<TextRow>{
                 {R"({"Vi|deo": {}})", {"Contains all sections"}},
                 {R"({"Video": {"Pre|sets": {}}})", {"Presets\n", "setting   private_complexity"}},
                 {R"({"Video": {"Presets": {"private_out|buf_fence": 1}}})",
                  {"private_outbuf_fence\n  meaning   output-buffer fences\n",
                   "built-in  1 (brel, mirt, document 1)"}},
                 {R"({"Video": {"Presets": {"private_outbuf_fence": |2}}})",
                  {"2\n  value     2  receive fence (not supported)\nprivate_outbuf_fence\n"}},
                 {R"({"Video": {"Presets": {"private_dec_linear_color_format": |3}}})",
                  {"3\n  bit       1  8-bit linear\n  bit       2  10-bit linear\n"}},
                 {R"({"Video": {"codecs-available": {"deco|ders": []}}})",
                  {"Names of decoder components"}},
                 {R"({"Video": {"codecs-available": {"decoders": ["c2.kvx.av|c.decoder"]}}})",
                  {"c2.kvx.avc.decoder\n  list      decoders"}},
                 {R"({"Video": {"perf-resource-values": {"x": ["0x40C|00000", "1"]}}})",
                  {"lower frequency bound of all cores"}},
                 // Before what is wrong with the text, and after it.
                 {R"({"Video": {"Features": {"private_enc_cvp_en|able" true}}})",
                  {"section   Features"}},
                 {R"({"Video": {"Presets": {x: 1 "private_comple|xity"}}})", {"section   Presets"}},
         }) {
        const Json::Value result = editor.at("hover", MarkedText(marked));
        for (const std::string& text : texts) {
            EXPECT_NE(std::string::npos, result["contents"]["value"].asString().find(text))
                    << marked << result;
        }
    }
    for (const char* const marked :
         {R"({"Video": {"Presets": {"vendor|_x": 1}}})", "{|}", "|", "{} // Vi|deo",
          R"({"Video": {"Presets": {"private_complexity": 1}|}})"}) {
        EXPECT_TRUE(editor.at("hover", MarkedText(marked)).isNull()) << marked;
    }
}

TEST(LspTest, CompletionOffersWhatBelongsThere) {
    Editor editor;
    struct Row {
        std::string marked;
        std::string label;
        std::string after;  // The text with it.
    };
    for (const auto& [marked, label, after] : std::vector<Row>{
                 {"{|}", "Video", R"({"Video": {}})"},
                 {R"({"Video": {|}})", "Features", R"({"Video": {"Features": {}}})"},
                 {R"({"Video": {"Fe|"}})", "KC2CodecPlugins",
                  R"({"Video": {"KC2CodecPlugins": []}})"},
                 {R"({"Video": {|"Features": {}}})", "Presets",
                  R"({"Video": {"Presets": {},"Features": {}}})"},
                 {R"({"Video": {|}})", "DolbyVision",
                  R"({"Video": {"DolbyVision": {"max_main_tier_level": 0, "max_high_tier_level": 0}}})"},
                 {R"({"Video": {"Features": {"pri|": false}}})", "private_enc_vpss_flip",
                  R"({"Video": {"Features": {"private_enc_vpss_flip": false}}})"},
                 {"{\"Video\": {\"Presets\": {\n\"pri|\n}}}", "private_outbuf_fence",
                  "{\"Video\": {\"Presets\": {\n\"private_outbuf_fence\": 1\n}}}"},
                 {"{\"Video\": {\"Presets\": {\n\"pri|\n\"private_complexity\": 1}}}",
                  "private_outbuf_fence",
                  "{\"Video\": {\"Presets\": {\n\"private_outbuf_fence\": 1,\n"
                  "\"private_complexity\": 1}}}"},
                 {R"({"Video": {"Presets": {"private_outbuf_fence": |}}})", "3",
                  R"({"Video": {"Presets": {"private_outbuf_fence": 3}}})"},
                 {R"({"Video": {"Features": {"private_enc_vpss_flip": f|}}})", "true",
                  R"({"Video": {"Features": {"private_enc_vpss_flip": true}}})"},
                 {R"({"Video": {"codecs-available": {"encoders": [|]}}})", "c2.kvx.avc.encoder",
                  R"({"Video": {"codecs-available": {"encoders": ["c2.kvx.avc.encoder"]}}})"},
                 {R"({"Video": {"perf-resource-values": {"x": ["|"]}}})", "0x40C00000",
                  R"({"Video": {"perf-resource-values": {"x": ["0x40C00000"]}}})"},
                 {R"({"Video": {"perf-resource-values": {"x": ["1", "|"]}}})", "0x40C00000", ""},
                 {R"({"Video": {"OptionalCodecs": ["c2.kvx.avc.encoder", |]}})",
                  "c2.kvx.avc.encoder", ""},  // Listed.
                 {R"({"Video": {"codecs-available": {"encoders": [|]}}})", "c2.kvx.avc.decoder",
                  ""},
                 {R"({"Video": {"Presets": {|}}})", "private_enc_vpss_flip", ""},
                 {R"({"Video": {"Presets": {|, "private_complexity": 1}}})", "private_complexity",
                  ""},
                 {"{} // |", "Video", ""},
         }) {
        const MarkedText text(marked);
        std::string changed;
        for (const Json::Value& item : editor.at("completion", text)) {
            if (item["label"] == label) {
                Json::Value edits;
                edits.append(item["textEdit"]);
                changed = withEdits(text.text, edits);
            }
        }
        EXPECT_EQ(after, changed) << marked;
    }
}

TEST(LspTest, SymbolsAndDefinitionsAreThoseOfTheTree) {
    Editor editor;
    const MarkedText text(
            "{\"Video\": {\"Presets\": {\"private_com|plexity\": 1,\n\"private_complexity\": 2}}}");
    const Json::Value places = editor.at("definition", text);
    ASSERT_EQ(1u, places.size());
    EXPECT_EQ(1, places[0]["range"]["start"]["line"].asInt());
    const Json::Value params = jsonOf(R"({"textDocument": {"uri": "file:///x.json"}})");
    std::string names;
    const Json::Value flat = editor.request("textDocument/documentSymbol", params)["result"];
    for (const Json::Value& symbol : flat) {
        EXPECT_EQ(kUri, symbol["location"]["uri"].asString());
        names += symbol["name"].asString() + " ";
    }
    EXPECT_EQ("Video Presets private_complexity private_complexity ", names);
    Editor other(R"({"capabilities": {"textDocument": {"documentSymbol":
                     {"hierarchicalDocumentSymbolSupport": true}}}})");
    other.open(kUri, text.text);
    const Json::Value symbols = other.request("textDocument/documentSymbol", params)["result"];
    EXPECT_EQ("Presets", symbols[0]["children"][0]["name"].asString());
    EXPECT_EQ(2u, symbols[0]["children"][0]["children"].size());
}

// A device tree: its loads are checked, with the texts that are not saved.
class LspTreeTest : public testing::Test {
protected:
    LspTreeTest() {
        namespace fs = std::filesystem;
        scratch.write("odm/etc/media_a/video_system_specs.json", spec);
        scratch.write("vendor/etc/media/video_system_specs.json", R"({"Video": {}})");
        privatePath = scratch.write("data/vendor/media/video_private_configs.json", overlay);
        // As on most phones.
        fs::rename(scratch.path() + "/odm", scratch.path() + "/vendor/odm");
        fs::create_directory_symlink("/vendor/odm", scratch.path() + "/odm");
        specPath = scratch.path() + "/vendor/odm/etc/media_a/video_system_specs.json";
    }

    std::vector<std::string> idsOf(Editor* editor, const std::string& uri) {
        std::vector<std::string> ids;
        for (const Json::Value& finding : editor->findings[uri]) {
            EXPECT_EQ(std::string::npos, finding.toStyledString().find("/proc/self/")) << finding;
            ids.push_back(finding["code"].asString());
        }
        return ids;
    }

    // What "check --all-variants" reports about a file: ids and messages.
    std::vector<std::string> messagesOfCheck(const std::string& path) {
        std::vector<std::string> messages;
        const Json::Value report = parsed(
                run("check --all-variants --format json --rootdir " + scratch.path()).output);
        for (const Json::Value& finding : report["findings"]) {
            if (finding["path"] == path) {
                messages.push_back(finding["message"].asString());
            }
        }
        return messages;
    }

    std::vector<std::string> messagesOf(Editor* editor, const std::string& uri) {
        std::vector<std::string> messages;
        for (const Json::Value& finding : editor->findings[uri]) {
            messages.push_back(finding["message"].asString());
        }
        return messages;
    }

    const std::string spec = R"({"Video": {"Presets": {"private_complexity": 1}}})";
    const std::string overlay = R"({"Video": {"Presets": {"private_complexity": 2}}})";
    const ScratchDirectory scratch;
    std::string specPath;
    std::string privatePath;
};

TEST_F(LspTreeTest, FindingsAreThoseOfAllVariants) {
    Editor editor;
    const std::string uri = "file://" + privatePath;
    editor.open(uri, overlay);
    EXPECT_EQ(messagesOfCheck(privatePath), messagesOf(&editor, uri));
    EXPECT_FALSE(editor.findings[uri].empty());

    // Another document of the tree, with a change that is not saved: nothing is overridden then.
    const std::string specUri = "file://" + specPath;
    editor.open(specUri, spec);
    const std::vector<std::string> before = idsOf(&editor, uri);
    const std::string changed = R"({"Video": {"Presets": {"private_smoothnessFactor": 1}}})";
    editor.replace(specUri, changed);
    EXPECT_NE(before, idsOf(&editor, uri));
    EXPECT_EQ(spec, readFile(specPath));

    // Saved, the check reports the same.
    scratch.write("vendor/odm/etc/media_a/video_system_specs.json", changed);
    const std::vector<std::string> unsaved = messagesOf(&editor, uri);
    EXPECT_EQ(messagesOfCheck(privatePath), unsaved);
    // Another program writes it back: the editor says so.
    scratch.write("vendor/odm/etc/media_a/video_system_specs.json", spec);
    editor.replace(specUri, spec);
    EXPECT_EQ(before, idsOf(&editor, uri));
}

TEST_F(LspTreeTest, HoverAndDefinitionKnowWhichValueIsUsed) {
    Editor editor;
    const std::string uri = "file://" + privatePath;
    const MarkedText text(R"({"Video": {"Presets": {"private_com|plexity": 2}}})");
    const std::string shown = editor.at("hover", text, uri)["contents"]["value"].asString();
    for (const char* const part :
         {"variant   _a\n", "variant   default\n", "set by the system spec\n",
          "private file, /data/vendor/media/video_private_configs.json: Presets: 2 (has no effect)",
          "set by the private file\n"}) {
        EXPECT_NE(std::string::npos, shown.find(part)) << part << "\n" << shown;
    }
    const Json::Value places = editor.at("definition", text, uri);
    ASSERT_EQ(2u, places.size()) << places;  // One for each variant.
    for (const Json::Value& place : places) {
        const std::string path = tool::pathOfUri(place["uri"].asString());
        EXPECT_TRUE(path == privatePath || std::filesystem::equivalent(path, specPath)) << place;
        EXPECT_EQ(23, place["range"]["start"]["character"].asInt());
    }
}

TEST(LspTest, HalfASurrogatePairLosesNoChange) {
    const std::string uri = "file:///x.json";
    Editor editor;
    editor.open(uri, "{}");
    const std::string params = R"("params": {"textDocument": {"uri": ")" + uri +
                               R"(", "version": 2}, "contentChanges": [{"text": )";
    for (const char* const text :
         {R"("{\"\ud83d\": {}}")", R"("{\"\uDE00\": {}}")", R"("{\"\\\\ud83d\": {}}")"}) {
        editor.send(R"({"method": "textDocument/didChange", )" + params + text + "}]}}");
        editor.server().publish();
        ASSERT_LT(0u, editor.findings[uri].size()) << text;
        EXPECT_EQ("no-video", editor.findings[uri][0]["code"].asString()) << text;
        editor.replace(uri, R"({"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder"]}})");
        EXPECT_EQ(0u, editor.findings[uri].size()) << editor.findings[uri];
    }
}

TEST_F(LspTreeTest, EachOfManyUnsavedTextsIsReadByItsLoad) {
    const auto countOpen = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    const auto before = countOpen();
    {
        Editor editor;
        for (char variant = 'c'; variant <= 'p'; ++variant) {
            const std::string name = std::string("_") + variant;
            const std::string uri =
                    "file://" +
                    scratch.write("vendor/odm/etc/media" + name + "/video_system_specs.json", spec);
            editor.open(uri, R"({"Video": {"Zqqqq": {}}})");
            EXPECT_EQ(0u, idsOf(&editor, uri).empty() ? 1u : 0u) << name;
            for (const std::string& message : messagesOf(&editor, uri)) {
                EXPECT_NE(std::string::npos, message.find("(variant \"" + name + "\")")) << message;
            }
        }
    }
    EXPECT_EQ(before, countOpen());
}

TEST_F(LspTreeTest, ABadNeighbourHidesNothing) {
    std::string features;
    for (int i = 0; i < 1500; ++i) {
        features += (i == 0 ? "" : ", ") + ("\"vendor_" + std::to_string(i) + "\": \"\"");
    }
    scratch.write("vendor/odm/etc/media_b/video_system_specs.json",
                  R"({"Video": {"Features": {)" + features + "}}}");
    Editor editor;
    const std::string uri = "file://" + privatePath;
    editor.open(uri, R"({"Video": {"Zqqqq": {}}})");
    const std::vector<std::string> ids = idsOf(&editor, uri);
    EXPECT_NE(ids.end(), std::find(ids.begin(), ids.end(), "unknown-member"));
}

TEST_F(LspTreeTest, ADocumentThatNoLoadReadsIsCheckedAlone) {
    Editor editor(R"({"capabilities": {}, "initializationOptions": {"rootdir": ")" +
                  scratch.path() + "\"}}");
    const std::string uri = "file://" + scratch.write("vendor/other.json", "");
    editor.open(uri, R"({"Video": {"Preset": {}}})");
    EXPECT_EQ((std::vector<std::string>{"section-misspelt"}), idsOf(&editor, uri));
}

// What the process uses after many changes is what it used after a few.
TEST(LspTest, MemoryDoesNotGrowWithChanges) {
    Editor editor;
    const std::string text = R"({"Video": {"Presets": {"private_complexty": 5, "\u0061": 01}}})";
    editor.open(kUri, text);
    const Json::Value grow = jsonOf(
            R"([{"range": {"start": {"line": 0, "character": 1}, "end": {"line": 0, "character": 1}},
                 "text": "\n// 12345678\n"}])");
    const Json::Value shrink = jsonOf(
            R"([{"range": {"start": {"line": 0, "character": 1}, "end": {"line": 2, "character": 0}},
                 "text": ""}])");
    const auto change = [&](int times) {
        for (int i = 0; i < times; ++i) {
            editor.change(kUri, i % 2 == 0 ? grow : shrink);
        }
        return mallinfo2().uordblks;
    };
    const size_t few = change(100);
    const size_t many = change(9900);
    EXPECT_FALSE(editor.findings[kUri].empty());
    EXPECT_LE(many, few + few / 100);
}

// --- A session in a file ---

std::string withInstead(std::string text,
                        const std::vector<std::pair<std::string, std::string>>& rows) {
    for (const auto& [part, instead] : rows) {
        for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += instead.size()) {
            text.replace(at, part.size(), instead);
        }
    }
    return text;
}

// A message of the server on a line, the elements of its list below it.
std::string linesOf(Json::Value message) {
    Json::Value none;
    Json::Value& list = message.isMember("method")  ? message["params"]["diagnostics"]
                        : message.isMember("error") ? none
                                                    : message["result"];
    if (list.isArray() && !list.empty()) {
        none = std::exchange(list, Json::arrayValue);
    }
    std::string lines = "  " + tool::writtenMessage(message) + "\n";
    for (const Json::Value& element : none) {
        lines += "    " + tool::writtenMessage(element) + "\n";
    }
    return lines;
}

// Each line that is not indented is a step; below it is what the server sends then.
TEST(LspTest, ASessionGoesAsWritten) {
    const ScratchDirectory scratch;
    std::optional<Editor> editor;
    std::vector<Json::Value> received;
    std::string text;
    std::istringstream lines(readFile(KC2_SOURCE_DIR "/tests/unit/check/expected/lsp-session.txt"));
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("  ")) {
            continue;
        }
        std::istringstream words(
                withInstead(line, {{"/TREE", scratch.path()}, {"\u00b6", "\n"}, {"\u2190", "\r"}}));
        std::string step;
        words >> step >> std::ws;
        const auto word = [&] {
            std::string one;
            words >> one >> std::ws;
            return one;
        };
        const auto rest = [&] { return std::string(std::istreambuf_iterator(words), {}); };
        testing::internal::CaptureStderr();
        if (step == "start") {  // With the root of --rootdir.
            const std::string root = word();
            editor.emplace(rest(), root == "-" ? "" : root);
            editor->received = &received;
            received = {editor->initialized};
        } else if (step == "write") {
            const std::string path = word();
            scratch.write(path, rest());
        } else if (step == "send") {
            editor->send(rest());
            editor->server().publish();
        } else if (step == "open") {
            const std::string uri = word();
            editor->open(uri, rest());
        } else if (step == "hover" || step == "completion" || step == "definition") {
            const std::string uri = word();
            editor->at(step, MarkedText(rest()), uri);
            received = {editor->answer};
        } else {
            EXPECT_TRUE(step.empty() || step == "#") << line;
        }
        text += line + "\n";
        for (const Json::Value& message : std::exchange(received, {})) {
            text += linesOf(message);
        }
        const std::string errors = testing::internal::GetCapturedStderr();
        text += errors.empty() ? "" : "  " + errors;
    }
    expectFile("lsp-session.txt",
               withInstead(text, {{scratch.path(), "/TREE"}, {KC2_VERSION, "VERSION"}}));
}

}  // namespace

}  // namespace kc2::test
