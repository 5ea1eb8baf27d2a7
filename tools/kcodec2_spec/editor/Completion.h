// What an editor offers at a place of a document.
#pragma once

#include <json/value.h>

#include "editor/Cursor.h"
#include "editor/TextLines.h"

namespace kc2::tool {

// A list of CompletionItem. `schema` is that of the documents: it has the names that an object may
// have, their meaning, and their values.
Json::Value completionsAt(const Cursor& cursor, const TextLines& lines, const Json::Value& schema);

}  // namespace kc2::tool
