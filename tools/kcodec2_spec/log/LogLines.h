// Every line that the library writes to the log: one row each, in the order of a load. The reader
// of logs, the table of docs/log.md and the test that compares both with the sources ask here.
#pragma once

#include <android/log.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "device/Log.h"

namespace kc2::tool {

// From Parsing to NothingOpened: where the document is. From NoCodecs on: calls of components.
enum class LineId {
    NoVariant,
    Parsing,
    OpenFailed,
    FallingBack,
    NothingOpened,
    StreamRejected,
    BuiltInRejected,
    Skipped,
    SkippedByCall,
    RowSkipped,
    EncoderFilter,
    FeaturesHeading,
    Feature,
    PresetsHeading,
    Preset,
    FiltersHeading,
    PluginsHeading,
    CodecsHeading,
    Entry,
    NoCodecs,
    UnknownFormat,
    MissingPlane,
    BadDescriptor,
};

struct LogLine {
    LineId id;
    const char* tag;
    int priority;      // Of the Android log.
    uint32_t gate;     // The bits of the level word that let it through; 0: always written.
    const char* text;  // As the source has it, a printf format.
    const char* step;  // Which step of a load or which call writes it.
    const char* meaning;
    const char* advice;  // What to do.
};

// In the order of a load.
std::span<const LogLine> logLines();

const LogLine& logLine(LineId id);

// The literal pieces of a printf format around its placeholders.
std::vector<std::string_view> literalsOf(std::string_view format);

// What is in the placeholders of `format` in `text`; nothing when the text is another line.
using LineValues = std::vector<std::string_view>;
std::optional<LineValues> match(std::string_view format, std::string_view text);

// The letter that logcat shows for the priority of a row.
char letterOf(int priority);

// The rows as a Markdown table, which docs/log.md has, too.
std::string logLineTable();

}  // namespace kc2::tool
