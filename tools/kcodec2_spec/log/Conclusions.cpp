// What the lines of one load prove, what they leave open, and what to do next.

#include "log/Conclusions.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

#include "base/Text.h"
#include "device/DevicePaths.h"
#include "kc2/TargetSpecKeys.h"
#include "platform/FormatRows.h"
#include "store/Load.h"
#include "targetspec/reading/BuiltInDocuments.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

constexpr size_t kNone = static_cast<size_t>(-1);

// --- Which document an event is about ---

bool isOfDocument(const LogEvent& event) {
    return event.id != LineId::NoVariant && event.id != LineId::FeaturesHeading;
}

bool isRejection(const LogEvent& event) {
    return event.id == LineId::StreamRejected || event.id == LineId::BuiltInRejected;
}

// The number of the section that an event is about, in the order in which a document's lines come.
int rankOf(const LogEvent& event) {
    int rank = 0;
    for (const Section& section : kSections) {
        const std::string place = std::string(targetSpecRoot) + "/" + *section.key;
        const bool isOfRow =
                event.id == LineId::RowSkipped && section.type == SectionType::BitRateRows;
        const bool isOfFilter = event.id == LineId::EncoderFilter &&
                                *section.key == targetSpecSupportedEncPostProcessingFilters;
        if (isOfRow || isOfFilter ||
            (event.id == LineId::Skipped && event.place.starts_with(place) &&
             (event.place.size() == place.size() || event.place[place.size()] == '/' ||
              event.place[place.size()] == '['))) {
            return rank;
        }
        ++rank;
    }
    return -1;
}

// Between which events the second step begins: each rule narrows it. Events before `earliest`
// belong to the first step, those from `latest` on to the second.
struct Boundary {
    size_t earliest;
    size_t latest;

    void notBefore(size_t event) { earliest = std::max(earliest, event); }
    void notAfter(size_t event) { latest = std::min(latest, event); }
};

void narrowByVariantLines(const LoadStory& story, Boundary* boundary) {
    // A load writes the line when it looks for the path, before it reads the first document, and
    // twice before it reads the second one.
    if (story.nothingOpenedLine != 0 || story.droppedLines != 0 ||
        story.count(LineId::NoVariant) != 4) {
        return;
    }
    uint64_t seen = 0;
    for (size_t i = 0; i < story.events.size(); ++i) {
        if (story.events[i].id != LineId::NoVariant) {
            continue;
        }
        const uint64_t before = seen;
        seen += story.events[i].count;
        if (before <= 2 && seen > 2) {
            boundary->notBefore(i);
            boundary->notAfter(i);
        }
    }
}

void narrowByEvents(const LoadStory& story, Boundary* boundary) {
    const std::vector<LogEvent>& events = story.events;
    size_t previous = kNone;
    for (size_t i = 0; i < events.size(); ++i) {
        const LogEvent& event = events[i];
        if (event.id == LineId::FeaturesHeading) {  // Between the steps, and of neither.
            boundary->notBefore(i);
            boundary->notAfter(i + 1);
        }
        if (!isOfDocument(event)) {
            continue;
        }
        if (event.document.find("system spec") != std::string::npos) {
            boundary->notBefore(i + 1);
        } else if (!event.document.empty() || event.id == LineId::BuiltInRejected) {
            boundary->notAfter(i);
        }
        // A rejection is the only line about its document, and sections come in their order.
        if (previous != kNone &&
            (isRejection(event) || isRejection(events[previous]) ||
             (rankOf(event) >= 0 && rankOf(event) < rankOf(events[previous])))) {
            boundary->notBefore(previous + 1);
            boundary->notAfter(i);
        }
        previous = i;
    }
}

}  // namespace

Attribution attribute(const LoadStory& story) {
    Boundary boundary = {0, story.events.size()};
    if (story.nothingOpenedLine != 0) {
        boundary.latest = 0;  // The first step has read nothing.
    }
    narrowByVariantLines(story, &boundary);
    narrowByEvents(story, &boundary);
    Attribution attribution;
    attribution.isContradictory =
            story.nothingOpenedLine == 0 && boundary.earliest > boundary.latest;
    for (size_t i = 0; i < story.events.size(); ++i) {
        const bool isFirst = i < boundary.earliest;
        const bool isSecond = i >= boundary.latest;
        attribution.of.push_back(isFirst == isSecond || attribution.isContradictory ? Which::Either
                                 : isFirst ? Which::SystemSpec
                                           : Which::Overlay);
    }
    return attribution;
}

namespace {

bool isOfBuiltIn(const LogEvent& event) {
    return event.id == LineId::BuiltInRejected ||
           event.document.find("built-in") != std::string::npos;
}

}  // namespace

std::vector<OverlayOutcome> overlayOutcomes(const LoadStory& story,
                                            const Attribution& attribution) {
    static constexpr char kBuiltIn[] = "the built-in document is merged";
    static constexpr char kSeeded[] =
            "the built-in document is merged, and written into the file where that is possible";
    static constexpr char kRejected[] = "nothing is merged";
    static constexpr char kMerged[] = "the private file is merged";
    std::vector<OverlayOutcome> outcomes = {
            {false, "missing or not readable", kBuiltIn, false, false, true},
            {false, "empty", kRejected, true, false, true},
            {false, "valid", kMerged, false, true, true},
            {false, "not a valid document", kRejected, true, false, true},
            {true, "missing", kSeeded, false, false, true},
            {true, "there, but not readable", kSeeded, false, false, true},
            {true, "empty", kSeeded, false, false, true},
            {true, "valid", kMerged, false, true, true},
            {true, "not a valid document", kRejected, true, false, true},
    };
    bool isRejectedForSure = false;
    bool isRejectedPerhaps = false;
    bool isPrivateForSure = false;
    bool isBuiltInForSure = false;
    for (size_t i = 0; i < story.events.size(); ++i) {
        const LogEvent& event = story.events[i];
        const bool isOverlay = attribution.of[i] == Which::Overlay;
        if (event.id == LineId::StreamRejected) {
            isRejectedForSure |= isOverlay;
            isRejectedPerhaps |= attribution.of[i] == Which::Either;
        } else if (isOfBuiltIn(event)) {
            isBuiltInForSure = true;
        } else if (isOfDocument(event) && isOverlay) {
            isPrivateForSure = true;  // The built-in documents have nothing to skip, and no filter.
        }
    }
    // Lines that are lost prove nothing by their absence.
    const bool isWhole = story.droppedLines == 0 && !story.isTooLong;
    for (OverlayOutcome& outcome : outcomes) {
        if (isBuiltInForSure && (isRejectedForSure || isPrivateForSure)) {
            continue;  // These lines are not of one load.
        }
        if (isRejectedForSure) {
            outcome.isPossible = outcome.isRejected;
        } else if (isPrivateForSure) {
            outcome.isPossible = outcome.isPrivateMerged;
        } else if (isBuiltInForSure) {
            outcome.isPossible = !outcome.isRejected && !outcome.isPrivateMerged;
        } else if (!isRejectedPerhaps && isWhole) {
            outcome.isPossible = !outcome.isRejected;
        }
    }
    return outcomes;
}

namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string times(uint64_t count) {
    return count == 1 ? "once" : count == 2 ? "twice" : std::to_string(count) + " times";
}

constexpr char kGetProperty[] = "adb shell getprop vendor.media.target_variant";
constexpr char kDamaged[] = "The library is damaged: install it again.";
constexpr char kInfoLines[] =
        "Turn the info lines on (bit 0x2 of the level word kc2::gC2LogLevel; 0x4 and 0x8 add the "
        "debug lines) and start the process again.";

// The topics of one load. Each function adds what it knows.
class Story {
public:
    explicit Story(const LoadStory& story) : mStory(story), mAttribution(attribute(story)) {}

    std::vector<Conclusion> conclude() {
        if (mStory.hasLoad()) {
            tellVariant();
            tellSystemSpec();
            tellFindings();
            tellDump();
            tellOverlay();
        }
        tellNoCodecs();
        tellFormats();
        tellDescriptors();
        tellGaps();
        return std::move(mConclusions);
    }

private:
    void add(Severity severity, const char* topic, std::string text, std::string advice,
             std::vector<uint64_t> lines = {}) {
        mConclusions.push_back(
                {severity, topic, std::move(text), std::move(advice), std::move(lines)});
    }

    std::vector<uint64_t> linesOf(LineId id) const {
        std::vector<uint64_t> lines;
        for (const LogEvent& event : mStory.events) {
            if (event.id == id) {
                lines.push_back(event.line);
            }
        }
        return lines;
    }

    void tellVariant() {
        const uint64_t count = mStory.count(LineId::NoVariant);
        const uint64_t expected = mStory.nothingOpenedLine != 0 ? 3 : 4;
        if (count != 0) {
            std::string text =
                    "the target variant is missing: the property " + std::string(kVariantProperty) +
                    " (\"target-id\" in the line) is not set, or it is \"default\"; so " +
                    mStory.firstPath() + " is tried. ";
            text += count == expected ? "The line is there " + times(count) + ", which is one load."
                                      : "The line is there " + times(count) +
                                                "; one load writes it " + times(expected) +
                                                ": the log is not whole, or components call "
                                                "readTargetVariant() or getPrivateConfig(), too.";
            add(Severity::Warning, "variant", text,
                std::string("Run \"") + kGetProperty +
                        "\". If this device should have a variant, set the property in its build.",
                linesOf(LineId::NoVariant));
            return;
        }
        const std::string path = mStory.firstPath();
        const std::string variant = variantIn(path);
        if (!variant.empty()) {
            const bool isOdm = path.starts_with(kOdmSpecDirectory);
            add(Severity::Note, "variant",
                "the variant is " + quoted(variant) + ", which selects " + path +
                        (isOdm ? ""
                               : std::string(": the same under ") + kOdmSpecDirectory +
                                         " does not exist or cannot be examined"),
                "", {mStory.parsingLine != 0 ? mStory.parsingLine : mStory.failedLine});
        } else {
            add(Severity::Note, "variant", "no line names the variant",
                std::string("Run \"") + kGetProperty + "\".");
        }
    }

    void tellSystemSpec() {
        const std::string& failed =
                mStory.failedPath.empty() ? mStory.parsingPath : mStory.failedPath;
        const std::string where = failed.empty() ? "the variant's document" : failed;
        const std::string advice =
                "Run " + (failed.empty() ? "" : "\"adb shell ls -lZ " + failed + "\" and ") +
                quoted(kGetProperty) +
                ": install the document there, or correct the variant, which follows \"media\" "
                "without a \"/\" between.";
        if (mStory.nothingOpenedLine != 0) {
            add(Severity::Error, "system-spec",
                "there is no system spec document: neither " + where + " nor " +
                        mStory.fallbackPath +
                        " opens. \"Exit!\" ends nothing: the load goes on, and only the second "
                        "document fills the store.",
                advice,
                linesThatAre({mStory.failedLine, mStory.fallbackLine, mStory.nothingOpenedLine}));
        } else if (mStory.fallbackLine != 0 || mStory.failedLine != 0) {
            add(Severity::Warning, "system-spec",
                where + " does not open, so the fallback " + kFallbackSystemSpec +
                        " is read; no line says that it does not open",
                advice, linesThatAre({mStory.failedLine, mStory.fallbackLine}));
        } else if (!mStory.firstPath().empty()) {
            add(Severity::Note, "system-spec",
                "the system spec document is " + mStory.firstPath() +
                        "; no line says that it does not open",
                "", linesThatAre({mStory.parsingLine}));
        } else {
            add(Severity::Note, "system-spec",
                "no line names the system spec document: the line that does is an info line, or it "
                "is cut off",
                kInfoLines);
        }
    }

    static std::vector<uint64_t> linesThatAre(std::vector<uint64_t> lines) {
        lines.erase(std::remove(lines.begin(), lines.end(), uint64_t{0}), lines.end());
        return lines;
    }

    std::string specPath() const {
        if (mStory.fallbackLine != 0 || mStory.failedLine != 0) {
            return kFallbackSystemSpec;
        }
        return mStory.firstPath();
    }

    std::string specName() const {
        const std::string path = specPath();
        return "the system spec document" + (path.empty() ? "" : " (" + path + ")");
    }

    // The line's own word, where it names its document.
    Which whichOf(size_t event) const {
        const std::string& named = mStory.events[event].document;
        return named.find("system spec") != std::string::npos    ? Which::SystemSpec
               : named.find("private file") != std::string::npos ? Which::Overlay
                                                                 : mAttribution.of[event];
    }

    std::string documentOf(size_t event) const {
        if (isOfBuiltIn(mStory.events[event])) {
            return "the built-in document";
        }
        switch (whichOf(event)) {
            case Which::SystemSpec:
                return specName();
            case Which::Overlay:
                return std::string("the private file (") + kPrivateConfig + ")";
            default:
                return "either " + specName() + " or the private file (" + kPrivateConfig + ")";
        }
    }

    std::string pullOf(size_t event) const {
        const std::string spec = specPath().empty() ? "the system spec document" : specPath();
        switch (whichOf(event)) {
            case Which::SystemSpec:
                return "\"adb pull " + spec + "\"";
            case Which::Overlay:
                return std::string("\"adb pull ") + kPrivateConfig + "\"";
            default:
                return "\"adb pull " + spec + "\" and \"adb pull " + kPrivateConfig + "\"";
        }
    }

    void tellRejection(size_t i) {
        const LogEvent& event = mStory.events[i];
        if (event.id == LineId::BuiltInRejected) {
            add(Severity::Error, "rejected", "the built-in document was rejected", kDamaged,
                {event.line});
            return;
        }
        add(Severity::Error, "rejected",
            documentOf(i) +
                    " was rejected whole: it is empty, not valid JSON, beyond the limits or not "
                    "readable to its end. Nothing of it is in the store." +
                    (whichOf(i) == Which::Either ? " The log does not say which of them." : ""),
            "Run " + pullOf(i) + ", then \"kcodec2_spec check\" on the file.", {event.line});
    }

    void tellFindings() {
        if (mAttribution.isContradictory) {
            add(Severity::Warning, "mixed",
                "these lines cannot come from one load: two processes had this number, or lines "
                "are missing",
                "Clear the log (\"adb logcat -c\"), start the process again and take it anew.");
        }
        for (size_t i = 0; i < mStory.events.size(); ++i) {
            const LogEvent& event = mStory.events[i];
            if (isRejection(event)) {
                tellRejection(i);
            } else if (event.id == LineId::Skipped) {
                add(Severity::Error, "skipped",
                    documentOf(i) + ": " + event.place + " was skipped: " + event.reason,
                    isOfBuiltIn(event) ? kDamaged
                                       : "Correct the value there; " + pullOf(i) +
                                                 " and \"kcodec2_spec check\" show its line and "
                                                 "column.",
                    {event.line});
            } else if (event.id == LineId::RowSkipped) {
                add(Severity::Error, "skipped",
                    documentOf(i) + ": " + std::to_string(event.count) +
                            (event.count == 1 ? " row" : " rows") + " of " +
                            targetSpecNimbraModeBitRate +
                            " skipped: a row holds three integers [low, high, bit rate]",
                    "Run " + pullOf(i) +
                            ", then \"kcodec2_spec check\" on the file: it names the "
                            "rows.",
                    {event.line});
            } else if (event.id == LineId::EncoderFilter) {
                add(Severity::Note, "encoder-filter",
                    documentOf(i) + ": encoder post-processing filter " + quoted(event.place), "",
                    {event.line});
            }
        }
    }

    static std::string listed(const char* title, const std::vector<DumpedValue>& values) {
        std::vector<std::string> words;
        for (const DumpedValue& value : values) {
            words.push_back(value.value.empty() ? value.name : value.name + "=" + value.value);
        }
        return std::string("\n") + title + " (" + std::to_string(values.size()) +
               "): " + (words.empty() ? "none" : joined(words, ", "));
    }

    void tellDump() {
        const Dump& dump = mStory.dump;
        if (!dump.isStarted) {
            add(Severity::Note, "store",
                "what the store held is not in this log: the dump is of info lines", kInfoLines);
            return;
        }
        std::string text =
                "after the first step, and before the second document adds to it, the store held:";
        text += listed("features", dump.features) + listed("presets", dump.presets) +
                listed("pre-processing filters", dump.filters);
        std::string advice;
        if (dump.hasCodecsHeading) {
            text += listed("codec plug-ins", dump.plugins) +
                    listed("codec components", dump.codecs);
        } else {
            text += listed("codec plug-ins, then codec components", dump.plugins);
            text += "\nThe heading between plug-ins and components is a debug line that needs bit "
                    "0x8, so the log does not tell where the components begin.";
            advice = "Set bit 0x8 of the level word, too, to see where they begin.";
        }
        if (!dump.unplaced.empty()) {
            text += listed("of a section whose heading is cut off", dump.unplaced);
        }
        if (!dump.isWhole) {
            text += "\nThe start of the dump is cut off.";
        }
        add(Severity::Note, "store", text, advice, linesOf(LineId::FeaturesHeading));
    }

    void tellOverlay() {
        const std::vector<OverlayOutcome> outcomes = overlayOutcomes(mStory, mAttribution);
        std::set<std::string> results;
        std::string list;
        for (const OverlayOutcome& outcome : outcomes) {
            if (outcome.isPossible) {
                results.insert(outcome.isRejected        ? "rejected"
                               : outcome.isPrivateMerged ? "private"
                                                         : "built-in");
                list += std::string("\n- codec test tool ") +
                        (outcome.hasTestTool ? "there" : "absent") + ", private file " +
                        outcome.privateFile + ": " + outcome.result;
            }
        }
        std::string text =
                results.size() > 1 ? "which document was merged second is not proved. Possible:"
                : results.count("private") != 0 ? "the private file was merged second. Possible:"
                : results.count("rejected") != 0
                        ? "the private file was rejected and nothing was merged second. Possible:"
                        : "the built-in document was merged second. Possible:";
        text += list;
        if (!mStory.firstPath().empty()) {
            text += "\nThe built-in document of this path is number " +
                    std::to_string(chipDocumentFor(mStory.firstPath()).number) + ".";
        }
        add(Severity::Note, "overlay", text,
            std::string("Run \"adb shell ls -l ") + kCodecTestTool + " " + kPrivateConfig +
                    "\": it shows whether each is there and whether the file is empty; then \"adb "
                    "pull " +
                    kPrivateConfig +
                    "\" and \"kcodec2_spec check\" tell valid from invalid. With the test tool, a "
                    "load fills a missing or empty file itself: afterwards it holds what "
                    "\"kcodec2_spec defaults\" prints.");
    }

    void tellNoCodecs() {
        if (mStory.noCodecsCalls != 0) {
            add(Severity::Warning, "no-codecs",
                "the store names no codec component: every codec is taken as enabled. Components "
                "asked " +
                        times(mStory.noCodecsCalls) + ".",
                "List the components in \"codecs-available\". \"kcodec2_spec check --rootdir\" on "
                "the pulled documents finds a misspelt section or a rejected document.",
                {mStory.noCodecsLine});
        }
    }

    static const Platform::FormatRow* formatNamed(const std::string& name) {
        const auto row =
                std::find_if(std::begin(Platform::kFormatRows), std::end(Platform::kFormatRows),
                             [&](const Platform::FormatRow& format) {
                                 return name == format.name || toWord(name) == *format.format;
                             });
        return row != std::end(Platform::kFormatRows) ? row : nullptr;
    }

    static std::string planesOf(const Platform::FormatRow& row) {
        std::vector<std::string> planes;
        for (const Platform::TamraBufferLayout::PlaneID plane : row.planes) {
            planes.emplace_back(Platform::planeName(plane));
        }
        return joined(planes, ", ");
    }

    void tellFormats() {
        for (const auto& [format, call] : mStory.unknownFormats) {
            add(Severity::Error, "format",
                "a component asked " + times(call.second) + " for a plane of " + format +
                        ", which is not a format of the video core; it got 0",
                "Correct the component. \"kcodec2_spec formats\" lists the formats, and "
                "\"kcodec2_spec formats VALUE\" names one.",
                {call.first});
        }
        for (const auto& [asked, call] : mStory.missingPlanes) {
            const auto& [format, plane] = asked;
            const Platform::FormatRow* const row = formatNamed(format);
            std::string text = "a component asked " + times(call.second) + " for plane " + plane +
                               " of " + format + "; it got 0.";
            text += plane == "?" ? " \"?\" is a value above 5, which is not a plane." : "";
            text += row != nullptr ? " Buffers of " + std::string(row->name) +
                                             " have: " + planesOf(*row) + "."
                                   : "";
            add(Severity::Error, "plane", text,
                "Correct the component. \"kcodec2_spec formats\" lists the planes of each format.",
                {call.first});
        }
    }

    void tellDescriptors() {
        for (const auto& [descriptor, call] : mStory.badDescriptors) {
            const bool isNegative = descriptor.starts_with("-");
            add(Severity::Error, "descriptor",
                "a component asked " + times(call.second) + " for the identity of descriptor " +
                        descriptor + ", which is not open" +
                        (isNegative ? ": it is what a failed open() returns" : "") +
                        "; it got 0, which all such calls get",
                "Correct the component: check the descriptor before the call.", {call.first});
        }
    }

    void tellGaps() {
        if (mStory.strangeCount != 0) {
            std::string text = counted(mStory.strangeCount, "line") +
                               " under the library's tags that it does not write:";
            std::vector<uint64_t> lines;
            for (const auto& [line, number] : mStory.strangeLines) {
                text += "\n  " + line;
                lines.push_back(number);
            }
            add(Severity::Note, "unknown", text,
                "The library on the device may be of another version than this tool.", lines);
        }
        if (mStory.cutLines != 0 || mStory.droppedLines != 0) {
            std::vector<std::string> missing;
            if (mStory.cutLines != 0) {
                missing.push_back(counted(mStory.cutLines, "cut line"));
            }
            if (mStory.droppedLines != 0) {
                missing.push_back(counted(mStory.droppedLines, "line") +
                                  " that the device dropped");
            }
            add(Severity::Note, "gaps",
                joined(missing, ", and ") + ": what is not in the log proves nothing here",
                "Take the log again with a larger buffer: \"adb logcat -G 16M\".");
        }
        if (mStory.laterDumps != 0) {
            add(Severity::Note, "dump-again",
                "a component has called printSpecifications() " + times(mStory.laterDumps) +
                        ": those dumps show the store after both documents",
                "");
        }
        if (mStory.isTooLong) {
            add(Severity::Warning, "too-long", "not every line of this process is told: too many",
                "Cut the log down to this process: \"adb logcat --pid=PID\".");
        }
    }

    const LoadStory& mStory;
    const Attribution mAttribution;
    std::vector<Conclusion> mConclusions;
};

}  // namespace

std::vector<Conclusion> conclude(const LoadStory& story) {
    return Story(story).conclude();
}

}  // namespace kc2::tool
