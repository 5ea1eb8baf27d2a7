// Values of the editor's messages. They come from outside, so each is checked before it is used.

#include "editor/EditorJson.h"

#include <json/reader.h>
#include <json/writer.h>

#include <charconv>

#include "document/Tokens.h"

namespace kc2::tool {

namespace {

constexpr size_t kMostLevels = 64;
constexpr size_t kMostMessageValues = size_t{1} << 20;

bool isModest(std::string_view text) {
    Tokenizer tokens(text);
    size_t levels = 0;
    size_t values = 0;
    for (Token token = tokens.next(); token.kind != Token::kEnd; token = tokens.next()) {
        const bool isStart = token.kind == '{' || token.kind == '[';
        levels += isStart ? 1 : 0;
        levels -= (token.kind == '}' || token.kind == ']') && levels != 0 ? 1 : 0;
        if (levels > kMostLevels || ++values > kMostMessageValues) {
            return false;
        }
    }
    return true;
}

// Whether `text` begins with an escape of one half of a surrogate pair: of U+D800 to U+DBFF or of
// U+DC00 to U+DFFF, by the second digit.
bool beginsWithHalf(std::string_view text, std::string_view digits) {
    return text.size() >= 6 && text[0] == '\\' && text[1] == 'u' &&
           (text[2] == 'd' || text[2] == 'D') && digits.find(text[3]) != std::string_view::npos;
}

// An editor sends half a pair where a change splits one. JsonCpp rejects that, and with the message
// a change would be lost; U+FFFD is as long.
std::string withoutHalfPairs(std::string text) {
    constexpr std::string_view kFirst = "89abAB";
    constexpr std::string_view kSecond = "cdefCDEF";
    const std::string_view whole = text;
    for (size_t at = 0; (at = whole.find('\\', at)) != std::string_view::npos;) {
        const std::string_view rest = whole.substr(at);
        const bool isFirst = beginsWithHalf(rest, kFirst);
        if (isFirst && beginsWithHalf(rest.substr(6), kSecond)) {
            at += 12;
        } else if (isFirst || beginsWithHalf(rest, kSecond)) {
            text.replace(at, 6, "\\ufffd");
            at += 6;
        } else {
            at += 2;
        }
    }
    return text;
}

}  // namespace

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
// Json::Reader, because the library reads documents with it: one parser, one way not to throw.
std::optional<Json::Value> readMessage(const std::string& text) {
    Json::Value root;
    Json::Reader reader(Json::Features::strictMode());
    if (!isModest(text) ||
        (!reader.parse(text, root, false) && !reader.parse(withoutHalfPairs(text), root, false))) {
        return std::nullopt;
    }
    return root;
}
#pragma GCC diagnostic pop

std::string writtenMessage(const Json::Value& message) {
    Json::StreamWriterBuilder builder;  // In ASCII, whatever bytes a text has.
    builder["indentation"] = "";
    return Json::writeString(builder, message);
}

const Json::Value& memberOf(const Json::Value& value, std::string_view key) {
    static const Json::Value& kNothing = *new Json::Value();
    const Json::Value* const found =
            value.isObject() ? value.find(key.data(), key.data() + key.size()) : nullptr;
    return found != nullptr ? *found : kNothing;
}

std::string textOf(const Json::Value& value) {
    return value.isString() ? value.asString() : "";
}

std::optional<TextPosition> positionFrom(const Json::Value& value) {
    const Json::Value& line = memberOf(value, "line");
    const Json::Value& character = memberOf(value, "character");
    if (!line.isUInt() || !character.isUInt()) {
        return std::nullopt;
    }
    return TextPosition{line.asUInt(), character.asUInt()};
}

Json::Value rangeToJson(const TextLines& lines, Span span) {
    Json::Value json;
    const auto set = [&](const char* end, size_t offset) {
        const TextPosition position = lines.positionOf(offset);
        json[end]["line"] = Json::UInt64(position.line);
        json[end]["character"] = Json::UInt64(position.character);
    };
    set("start", span.start);
    set("end", std::max(span.start, span.limit));
    return json;
}

Json::Value editToJson(const TextLines& lines, Span span, const std::string& text) {
    Json::Value json;
    json["range"] = rangeToJson(lines, span);
    json["newText"] = text;
    return json;
}

std::string pathOfUri(const std::string& uri) {
    constexpr std::string_view kFile = "file://";
    const size_t start = uri.find('/', kFile.size());
    if (!uri.starts_with(kFile) || start == std::string::npos) {
        return uri;
    }
    std::string path;
    for (size_t at = start; at < uri.size(); ++at) {
        unsigned byte = 0;
        const char* const digits = uri.data() + at + 1;
        const bool isEscape = uri[at] == '%' && uri.size() - at > 2 &&
                              std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        path += isEscape ? static_cast<char>(static_cast<unsigned char>(byte)) : uri[at];
        at += isEscape ? 2 : 0;
    }
    return path;
}

}  // namespace kc2::tool
