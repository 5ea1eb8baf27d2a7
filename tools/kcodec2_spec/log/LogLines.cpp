// Every line that the library writes to the log, in the order of a load.

#include "log/LogLines.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "base/Text.h"

namespace kc2::tool {

namespace {

constexpr auto& kSpec = log::kTagTargetSpec;
constexpr int kError = ANDROID_LOG_ERROR;
constexpr int kWarning = ANDROID_LOG_WARN;
constexpr int kInfo = ANDROID_LOG_INFO;
constexpr int kDebug = ANDROID_LOG_DEBUG;

constexpr LogLine kLines[] = {
        {LineId::NoVariant, kSpec, kError, 0,
         "Couldn't read target-id, target-id = default is chosen.", "location",
         "The property vendor.media.target_variant is not set, or it is `default`. One load writes "
         "this line four times (three times when no system spec document opens): each time that "
         "it looks for a path.",
         "`adb shell getprop vendor.media.target_variant`. If the device should have a variant, "
         "set the property in its build; otherwise ignore the line."},
        {LineId::Parsing, kSpec, kInfo, log::kMaskInfo, "Parsing system specs file from: %s",
         "location", "The path that the variant selects. The file is opened next.", "-"},
        {LineId::OpenFailed, kSpec, kError, 0, "Failed to open %s", "location",
         "The document that the variant selects does not exist or may not be read.",
         "`adb shell ls -lZ` the path. The variant follows `media` as it is, without a `/`."},
        {LineId::FallingBack, kSpec, kWarning, 0, "Falling back to %s", "location",
         "The fallback document is tried next.", "See the line before it."},
        {LineId::NothingOpened, kSpec, kError, 0, "Failed to open %s... Exit!", "location",
         "The fallback does not open either, so there is no system spec document. Nothing ends: "
         "the load goes on, and only the second document fills the store.",
         "Install one of the two documents that the lines name."},
        {LineId::StreamRejected, kSpec, kError, 0, "Couldn't parse json from file stream",
         "reading of a document",
         "A file was opened and rejected as a whole: it is empty, not valid JSON, beyond the "
         "limits, or cannot be read to its end. Nothing in it is stored. The first step writes it "
         "about the system spec document, the second about the private file.",
         "Pull the file and run `kcodec2_spec check` on it."},
        {LineId::BuiltInRejected, kSpec, kError, 0, "Couldn't parse json from string literal",
         "reading of a document", "The built-in document was rejected: the library is damaged.",
         "Install the library again."},
        {LineId::Skipped, kSpec, kWarning, 0, "Skipped %s in %s: %s", "reading of a document",
         "One value is of a wrong type or out of range. It is left out; the rest is used. For a "
         "perf word all words of its name are left out; a tier level becomes 0.",
         "Correct the value at the place that the line names."},
        {LineId::SkippedByCall, kSpec, kWarning, 0, "Skipped %s: %s", "call of parseJsonData()",
         "As above, for a document that a program passes to the call: such a document has no name.",
         "Correct the value at the place that the line names."},
        {LineId::RowSkipped, kSpec, kWarning, 0,
         "Unable to queue the json entry due to inappropriate size", "reading of a document",
         "A row of \"NimbraModeBitrateTable\" does not have three values. It is left out. One line "
         "for each such row.",
         "`kcodec2_spec check` names the row."},
        {LineId::EncoderFilter, kSpec, kDebug, log::kMaskDebugDetail,
         "mEncPostProcessingFilters %s", "reading of a document",
         "An encoder post-processing filter that is appended to the store's list.", "-"},
        {LineId::FeaturesHeading, kSpec, kInfo, log::kMaskInfo, "Video Core Features:", "dump",
         "The dump begins: what the store has after the system spec document and before the "
         "second document.",
         "-"},
        {LineId::Feature, kSpec, kInfo, log::kMaskInfo, "       %-25s : %d", "dump",
         "A feature: 1 is on, 0 is off.", "-"},
        {LineId::PresetsHeading, kSpec, kInfo, log::kMaskInfo, "Video Core Presets:", "dump",
         "The presets follow.", "-"},
        {LineId::Preset, kSpec, kInfo, log::kMaskInfo, "       %-35s : %d", "dump",
         "A preset and its value.", "-"},
        {LineId::FiltersHeading, kSpec, kInfo, log::kMaskInfo, "Pre processing plugins:", "dump",
         "The pre-processing filters follow.", "-"},
        {LineId::PluginsHeading, kSpec, kInfo, log::kMaskInfo, "Codec plugins:", "dump",
         "The codec plug-ins follow and, when the next heading is not written, the codec "
         "components after them.",
         "-"},
        {LineId::CodecsHeading, kSpec, kDebug, log::kMaskDebugHeading, "HW Codec entries:", "dump",
         "The codec components follow.",
         "Set the bit of this heading, too: without it components look like plug-ins."},
        {LineId::Entry, kSpec, kInfo, log::kMaskInfo, "       %s", "dump",
         "An entry of the list whose heading is above it.", "-"},
        {LineId::NoCodecs, kSpec, kWarning, 0,
         "List of Supported Codecs is Empty. All codecs will be enabled..", "query",
         "No document of the load names a codec component, so every codec is "
         "enabled. One line for each call of getSupportedCodecs().",
         "List the components in \"codecs-available\"; a misspelt section has this effect, too."},
        {LineId::UnknownFormat, log::kTagBufferLayout, kError, 0, "%s is not a Tamra color format!",
         "query",
         "A component asked for a plane of a pixel format that the video core does not know.",
         "Correct the component. `kcodec2_spec formats` lists the formats."},
        {LineId::MissingPlane, log::kTagBufferLayout, kError, 0,
         "Format %s does not contain plane-%s", "query",
         "A component asked for a plane that buffers of this format do not have; `?` is a value "
         "that is not a plane.",
         "Correct the component. `kcodec2_spec formats` lists the planes of each format."},
        {LineId::BadDescriptor, log::kTagPlatform, kError, 0, "NOTE9: Failed to fstat(%d)", "query",
         "A component asked for the identity of a file descriptor that is not open. It gets 0.",
         "Correct the component: the descriptor is negative, closed already, or another "
         "process's."},
};

}  // namespace

std::span<const LogLine> logLines() {
    return kLines;
}

const LogLine& logLine(LineId id) {
    return *std::find_if(std::begin(kLines), std::end(kLines),
                         [id](const LogLine& line) { return line.id == id; });
}

char letterOf(int priority) {
    constexpr char kLetters[] = "??VDIWEFS";
    return kLetters[priority];
}

std::string logLineTable() {
    std::string text =
            "| Line | Tag | Priority | Gate | Step | What it means | What to do |\n"
            "|---|---|---|---|---|---|---|\n";
    for (const LogLine& line : kLines) {
        text += fmt::format("| `{}` | `{}` | {} | {} | {} | {} | {} |\n", line.text, line.tag,
                            letterOf(line.priority),
                            line.gate == 0 ? "always" : hexadecimal(line.gate), line.step,
                            line.meaning, line.advice);
    }
    return text;
}

std::vector<std::string_view> literalsOf(std::string_view format) {
    std::vector<std::string_view> literals;
    for (size_t at; (at = format.find('%')) != std::string_view::npos;) {
        literals.push_back(format.substr(0, at));
        format.remove_prefix(format.find_first_of("sd", at) + 1);
    }
    literals.push_back(format);
    return literals;
}

// The last literals are looked for from the end: what is in front of them may be anything.
std::optional<LineValues> match(std::string_view format, std::string_view text) {
    if (!text.starts_with(format.substr(0, format.find('%')))) {
        return std::nullopt;  // Nearly every row: a log may have many lines.
    }
    const std::vector<std::string_view> literals = literalsOf(format);
    text.remove_prefix(literals.front().size());
    if (literals.size() == 1) {
        return text.empty() ? std::optional(LineValues()) : std::nullopt;
    }
    if (!text.ends_with(literals.back())) {
        return std::nullopt;
    }
    text.remove_suffix(literals.back().size());
    LineValues values;
    for (size_t i = literals.size() - 2; i > 0; --i) {
        const size_t at = text.rfind(literals[i]);
        if (at == std::string_view::npos) {
            return std::nullopt;
        }
        values.insert(values.begin(), text.substr(at + literals[i].size()));
        text = text.substr(0, at);
    }
    values.insert(values.begin(), text);
    return values;
}

}  // namespace kc2::tool
