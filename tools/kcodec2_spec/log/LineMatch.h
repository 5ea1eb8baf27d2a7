// Which line of the library a text is: a whole line, a cut one, an entry of the dump, or words.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "log/LogLines.h"

namespace kc2::tool {

// A skipped value's line: "Skipped PLACE in DOCUMENT: REASON". The views are into the text.
struct SkippedText {
    std::string_view place;
    std::string_view reason;
    std::string_view document;  // Empty for a document that has no name.
};

std::optional<SkippedText> matchSkipped(std::string_view text);

// The row that a line with that tag belongs to; null when it is not one of the library's. With an
// empty tag it may be any. Each entry of the dump belongs to the row of an entry of a list.
const LogLine* rowOf(std::string_view tag, std::string_view text);

// A line that was cut before its end.
struct CutText {
    bool isCut = false;
    bool isFault = false;          // It can only be an error or a warning.
    const LogLine* row = nullptr;  // The only one that it can be, if it needs no values.
};

// Of a line with a tag: without one its start may be anybody's. The priority is a letter.
CutText matchCut(std::string_view tag, char priority, std::string_view text);

// Whether the text has a tag of the library somewhere in it.
bool mentionsTag(std::string_view text);

// Whether the text has a tag or a text of the library somewhere in it.
bool mentionsLibrary(std::string_view text);

// "name : 5" of the dump, without the blanks before it.
struct NamedEntry {
    std::string_view name;
    std::string_view value;
    size_t width;  // Of the name with the blanks after it.
};

std::optional<NamedEntry> matchNamed(std::string_view entry);

// Whether the dump can have written this entry as one of the row `id`: it pads names to a width.
bool fits(const NamedEntry& entry, LineId id);

// What somebody may ask about: a whole line, with or without its header, or words of one.
struct AskedText {
    std::vector<const LogLine*> rows;  // Empty when it is nothing of the library.
    std::vector<std::string> values;   // Of a whole line.
    std::string setting;               // Of an entry of the dump, or of what looks like one.
};

AskedText matchAsked(const std::string& text);

}  // namespace kc2::tool
