// Values of the editor's messages. They come from outside, so each is checked before it is used.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>
#include <string_view>

#include "document/Source.h"
#include "editor/TextLines.h"

namespace kc2::tool {

// Reads a message; nothing when it is no JSON, or when it has more values or levels than any editor
// sends. The parser must not see it then: from some depth on it throws.
std::optional<Json::Value> readMessage(const std::string& text);
std::string writtenMessage(const Json::Value& message);

// A member; null when there is none, and when `value` is no object.
const Json::Value& memberOf(const Json::Value& value, std::string_view key);
// The text of a string; empty for anything else.
std::string textOf(const Json::Value& value);
std::optional<TextPosition> positionFrom(const Json::Value& value);

Json::Value rangeToJson(const TextLines& lines, Span span);
// {range, newText}.
Json::Value editToJson(const TextLines& lines, Span span, const std::string& text);

// The file of a URI; of another scheme, the URI itself.
std::string pathOfUri(const std::string& uri);

}  // namespace kc2::tool
