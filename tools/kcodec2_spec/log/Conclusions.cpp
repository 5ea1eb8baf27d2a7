// What the lines of one load prove, what they leave open, and what to do next.

#include "log/Conclusions.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "base/Text.h"
#include "device/DevicePaths.h"
#include "kc2/TargetSpecKeys.h"
#include "platform/FormatRows.h"
#include "store/Load.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

namespace {

constexpr OverlayOutcome kOutcomes[] = {
        {false, "missing or not readable", OverlayResult::BuiltIn, false},
        {false, "empty", OverlayResult::Rejected, false},
        {false, "valid", OverlayResult::Private, false},
        {false, "not a valid document", OverlayResult::Rejected, false},
        {true, "missing", OverlayResult::BuiltIn, true},
        {true, "there, but not readable", OverlayResult::BuiltIn, true},
        {true, "empty", OverlayResult::BuiltIn, true},
        {true, "valid", OverlayResult::Private, false},
        {true, "not a valid document", OverlayResult::Rejected, false},
};

constexpr char kGetProperty[] = "adb shell getprop vendor.media.target_variant";
constexpr char kDamaged[] = "the library is damaged: install it again";
constexpr char kInfoLines[] =
        "turn the info lines on (bit 0x2 of the level word kc2::gC2LogLevel; 0x4 and 0x8 add the "
        "debug lines) and start the process again";
constexpr char kCorrectComponent[] =
        "correct the component; kcodec2_spec formats lists the formats";

bool isOfBuiltIn(const LoadEvent& event) {
    return event.id == LineId::BuiltInRejected ||
           event.document.find("built-in") != std::string::npos;
}

std::string times(uint64_t count) {
    return count == 1 ? "once" : count == 2 ? "twice" : fmt::format("{} times", count);
}

std::vector<uint64_t> linesThatAre(std::vector<uint64_t> lines) {
    lines.erase(std::remove(lines.begin(), lines.end(), uint64_t{0}), lines.end());
    return lines;
}

}  // namespace

const char* OverlayOutcome::result() const {
    switch (kind) {
        case OverlayResult::Rejected:
            return "nothing is merged";
        case OverlayResult::Private:
            return "the private file is merged";
        default:
            return isSeeding ? "the built-in document is merged, and written into the file where "
                               "that is possible"
                             : "the built-in document is merged";
    }
}

bool ProvedFacts::isOnly(SpecSource source) const {
    return isOpen(source) &&
           std::count(std::begin(loads.canOpen), std::end(loads.canOpen), true) == 1;
}

bool ProvedFacts::isOnly(OverlayResult kind) const {
    return isOpen(kind) && std::count(std::begin(loads.canEnd), std::end(loads.canEnd), true) == 1;
}

ProvedFacts factsOf(const LoadTrace& trace, const TreeFacts& tree) {
    const Dump& dump = trace.dump;
    LoadLimits limits = tree.limits;
    limits.isStartKnown = trace.lineBefore != 0;
    limits.isEndKnown = trace.lineAfter != 0;
    limits.hasGaps = trace.droppedLines != 0 || trace.cutCount != 0 || trace.isTooLong;
    limits.hasDumpEntries = dump.isOfLoad && (!dump.features.empty() || !dump.presets.empty() ||
                                              !dump.filters.empty() || !dump.plugins.empty() ||
                                              !dump.codecs.empty() || !dump.unplaced.empty());
    limits.hasDumpedCodecs = dump.isOfLoad && !dump.codecs.empty();
    limits.hasNoCodecs = trace.noCodecs.count != 0;
    for (const OverlayResult kind :
         {OverlayResult::BuiltIn, OverlayResult::Rejected, OverlayResult::Private}) {
        bool canEnd = false;
        for (size_t i = 0; i < std::size(kOutcomes); ++i) {
            canEnd |= tree.canBe[i] && kOutcomes[i].kind == kind;
        }
        limits.canEnd[static_cast<size_t>(kind)] = canEnd;
    }
    ProvedFacts facts = {possibleLoads(trace.events, limits),
                         {std::begin(kOutcomes), std::end(kOutcomes)}};
    for (size_t i = 0; i < facts.outcomes.size(); ++i) {
        OverlayOutcome& outcome = facts.outcomes[i];
        // Lines of several loads prove nothing about one.
        outcome.isPossible =
                facts.loads.isContradictory || (tree.canBe[i] && facts.isOpen(outcome.kind));
    }
    return facts;
}

Which whichOf(const LoadTrace& trace, const ProvedFacts& facts, size_t event) {
    const std::string& named = trace.events[event].document;
    return named.find("system spec") != std::string::npos    ? Which::SystemSpec
           : named.find("private file") != std::string::npos ? Which::Overlay
           : facts.loads.isContradictory                     ? Which::Either
                                                             : facts.loads.of[event];
}

std::string pullAndCheck(const std::string& path) {
    return path.empty() ? fmt::format("find the document: {}; adb pull it; kcodec2_spec check FILE",
                                      kGetProperty)
                        : fmt::format("adb pull {}; kcodec2_spec check {}", path,
                                      path.substr(path.rfind('/') + 1));
}

namespace {

// The topics of one load. Each function adds what it knows.
class Description {
public:
    Description(const LoadTrace& trace, const ProvedFacts& facts) : mTrace(trace), mFacts(facts) {}

    std::vector<Conclusion> conclude() {
        if (mFacts.loads.isContradictory) {
            add({Severity::Warning, "mixed", "lines of several loads",
                 "these lines cannot be of one load: two processes had this number, or components "
                 "call the load's functions themselves",
                 "clear the log (adb logcat -c), start the process again, and take a new log"});
        }
        if (mTrace.hasLoad()) {
            describeVariant();
            describeSystemSpec();
            for (size_t i = 0; i < mTrace.events.size(); ++i) {
                describeEvent(i);
            }
            describeDump();
        }
        if ((mTrace.hasLoad() || mTrace.noCodecs.count != 0) && !mFacts.loads.isContradictory) {
            describeOverlay();
        }
        describeNoCodecs();
        describeFormats();
        describeOtherCalls();
        describeGaps();
        describeLimits();
        return std::move(mConclusions);
    }

private:
    void add(Conclusion conclusion) { mConclusions.push_back(std::move(conclusion)); }

    uint64_t lineOf(LineId id) const {
        const LoadEvent* const event = mTrace.find(id);
        return event != nullptr ? event->line : 0;
    }

    void describeVariant() {
        const std::string path = mTrace.firstPath();
        const std::string variant = variantIn(path);
        if (const uint64_t line = lineOf(LineId::NoVariant); line != 0) {
            add({Severity::Warning,
                 "variant",
                 "no target variant",
                 fmt::format("the property {} (\"target-id\" in the line) is not set, or it is "
                             "\"default\": the path is {}",
                             kVariantProperty, path),
                 fmt::format("{}; if the device should have a variant, set the property in its "
                             "build",
                             kGetProperty),
                 {line}});
        } else if (!variant.empty()) {
            const bool isOdm = path.starts_with(kOdmSpecDirectory);
            add({Severity::Note, "variant", "",
                 fmt::format("the variant is \"{}\", which selects {}{}", variant, path,
                             isOdm ? ""
                                   : fmt::format(": the same under {} does not exist or cannot be "
                                                 "examined",
                                                 kOdmSpecDirectory)),
                 "", linesThatAre({lineOf(LineId::Parsing), lineOf(LineId::OpenFailed)})});
        } else {
            add({Severity::Note, "variant", "", "no line names the variant", kGetProperty});
        }
    }

    // The path that the variant selected, also where its line is cut.
    std::string triedPath() const {
        const std::string path = mTrace.firstPath();
        for (const LineId id : {LineId::OpenFailed, LineId::Parsing}) {
            const LoadEvent* const event = mTrace.find(id);
            if (path.empty() && event != nullptr && !event->value.empty()) {
                return fmt::format("{}... (cut)", event->value);
            }
        }
        return path.empty() ? "the variant's document" : path;
    }

    void describeSystemSpec() {
        const bool isVariant = mFacts.isOpen(SpecSource::Variant);
        const std::string look = fmt::format(
                "adb shell ls -lZ {}{}; {}", kFallbackSystemSpec,
                mTrace.firstPath().empty() ? "" : fmt::format(" {}", mTrace.firstPath()),
                kGetProperty);
        const std::vector<uint64_t> lines = linesThatAre({lineOf(LineId::Parsing)});
        if (mTrace.find(LineId::OpenFailed) != nullptr) {
            describeOpenFailure(look);
        } else if (mFacts.loads.isContradictory) {
            return;
        } else if (!isVariant) {
            describeOpenFailure(look);
        } else if (mFacts.isOnly(SpecSource::Variant) && !mTrace.firstPath().empty()) {
            add({Severity::Note, "system-spec", "",
                 fmt::format("the system spec document is {}", mTrace.firstPath()), "", lines});
        } else if (mFacts.isOnly(SpecSource::Variant)) {
            add({Severity::Note, "system-spec", "",
                 "the document that the variant selects opens; no line names it", kInfoLines});
        } else {
            add({Severity::Note, "system-spec", "",
                 fmt::format("which system spec document opens is not proved; {} is tried first",
                             triedPath()),
                 look, lines});
        }
    }

    void describeOpenFailure(const std::string& look) {
        const std::string tried = triedPath();
        const std::vector<uint64_t> lines =
                linesThatAre({lineOf(LineId::OpenFailed), lineOf(LineId::FallingBack),
                              lineOf(LineId::NothingOpened)});
        const std::string install = look +
                                    "; install the document there, or correct the variant, which "
                                    "follows \"media\" without a \"/\" between";
        if (mFacts.isOnly(SpecSource::None)) {
            add({Severity::Error, "system-spec", "no system spec document",
                 fmt::format("there is no system spec document: neither {} nor {} opens. \"Exit!\" "
                             "ends nothing: the load goes on, and only the second document fills "
                             "the store",
                             tried, kFallbackSystemSpec),
                 install, lines});
        } else if (mFacts.isOnly(SpecSource::Fallback)) {
            add({Severity::Warning, "system-spec", fmt::format("{} does not open", tried),
                 fmt::format("{} does not open, so the fallback {} is read", tried,
                             kFallbackSystemSpec),
                 install, lines});
        } else {
            add({Severity::Error, "system-spec", fmt::format("{} does not open", tried),
                 fmt::format("{} does not open, so the fallback {} is tried; whether that opens is "
                             "not in the log",
                             tried, kFallbackSystemSpec),
                 look, lines});
        }
    }

    std::string specPath() const {
        return mFacts.isOnly(SpecSource::Fallback)  ? kFallbackSystemSpec
               : mFacts.isOnly(SpecSource::Variant) ? mTrace.firstPath()
                                                    : "";
    }

    // The document to look at first: the path that is tried first, if that is not excluded.
    std::string pathToPull() const {
        return mFacts.isOpen(SpecSource::Variant) ? mTrace.firstPath() : specPath();
    }

    Which whichOf(size_t event) const { return kc2::tool::whichOf(mTrace, mFacts, event); }

    std::string documentOf(size_t event) const {
        const std::string path = specPath();
        const std::string spec = path.empty() ? "the system spec document"
                                              : fmt::format("the system spec document ({})", path);
        if (isOfBuiltIn(mTrace.events[event])) {
            return "the built-in document";
        }
        switch (whichOf(event)) {
            case Which::SystemSpec:
                return spec;
            case Which::Overlay:
                return fmt::format("the private file ({})", kPrivateConfig);
            default:
                return fmt::format("either {} or the private file ({})", spec, kPrivateConfig);
        }
    }

    std::string adviceOn(size_t event) const {
        switch (whichOf(event)) {
            case Which::SystemSpec:
                return pullAndCheck(pathToPull());
            case Which::Overlay:
                return pullAndCheck(kPrivateConfig);
            default:
                return fmt::format("{}; {}", pullAndCheck(kPrivateConfig),
                                   pullAndCheck(pathToPull()));
        }
    }

    std::string briefOf(size_t event) const {
        return isOfBuiltIn(mTrace.events[event])     ? "built-in document"
               : whichOf(event) == Which::SystemSpec ? "system spec document"
               : whichOf(event) == Which::Overlay    ? "private file"
                                                     : "system spec document or private file";
    }

    void describeRejection(size_t i) {
        const LoadEvent& event = mTrace.events[i];
        const bool isBuiltIn = event.id == LineId::BuiltInRejected;
        add({Severity::Error,
             "rejected",
             briefOf(i) + " rejected",
             fmt::format("{} was rejected as a whole{}. Nothing from it is in the store",
                         documentOf(i),
                         isBuiltIn ? ""
                                   : ": it is empty, not valid JSON, beyond the limits, or not "
                                     "readable to its end"),
             isBuiltIn ? kDamaged : adviceOn(i),
             {event.line}});
    }

    void describeSkipped(size_t i) {
        const LoadEvent& event = mTrace.events[i];
        const std::string item =
                event.id == LineId::RowSkipped
                        ? fmt::format(
                                  "{} of {} skipped: a row is three integers [low, high, bit "
                                  "rate]",
                                  counted(event.count, "row"), targetSpecNimbraModeBitRate)
                        : fmt::format("{} was skipped: {}", event.value, event.reason);
        const std::string document = documentOf(i);
        add({Severity::Error,
             "skipped",
             fmt::format("values of the {} skipped", briefOf(i)),
             fmt::format("{}: {}", document, item),
             isOfBuiltIn(event) ? kDamaged : adviceOn(i),
             {event.line},
             document,
             item});
    }

    void describeEvent(size_t i) {
        const LoadEvent& event = mTrace.events[i];
        switch (event.id) {
            case LineId::StreamRejected:
            case LineId::BuiltInRejected:
                return describeRejection(i);
            case LineId::Skipped:
            case LineId::RowSkipped:
                return describeSkipped(i);
            case LineId::EncoderFilter: {
                const std::string item =
                        fmt::format("encoder post-processing filter \"{}\"", event.value);
                const std::string document = documentOf(i);
                return add({Severity::Note,
                            "encoder-filter",
                            "",
                            fmt::format("{}: {}", document, item),
                            "",
                            {event.line},
                            document,
                            item});
            }
            default:
                return;
        }
    }

    static std::string listed(const char* title, const std::vector<DumpedValue>& values) {
        std::vector<std::string> words;
        for (const DumpedValue& value : values) {
            words.push_back(value.value.empty() ? value.name
                                                : fmt::format("{}={}", value.name, value.value));
        }
        return fmt::format("\n{} ({}): {}", title, values.size(),
                           words.empty() ? "none" : joined(words, ", "));
    }

    void describeDump() {
        const Dump& dump = mTrace.dump;
        if (!dump.isStarted) {
            add({Severity::Note, "store", "",
                 "what the store had is not in this log: the dump is of info lines", kInfoLines});
            return;
        }
        std::string text =
                dump.isOfLoad ? "after the first step, and before the second document adds to it, "
                                "the store had:"
                              : "a dump, of the load or of a component that has called "
                                "printSpecifications() later, shows:";
        text += listed("features", dump.features) + listed("presets", dump.presets) +
                listed("pre-processing filters", dump.filters);
        text += listed(
                dump.hasCodecsHeading ? "codec plug-ins" : "codec plug-ins, then codec components",
                dump.plugins);
        text += dump.hasCodecsHeading ? listed("codec components", dump.codecs) : "";
        text += dump.unplaced.empty()
                        ? ""
                        : listed("of a section whose heading is missing", dump.unplaced);
        text += dump.isWhole ? "" : "\nThe start of the dump is missing.";
        text += dump.lostHeadings.empty()
                        ? ""
                        : fmt::format(
                                  "\nHeadings are missing ({}): entries may be of another "
                                  "section.",
                                  dump.lostHeadings);
        add({Severity::Note,
             "store",
             "",
             text,
             dump.hasCodecsHeading ? ""
                                   : "set bit 0x8 of the level word, too: its heading shows where "
                                     "the codec components begin",
             {dump.line}});
    }

    std::string builtInName() const {
        const std::string path = mTrace.firstPath();
        return path.empty() ? "the built-in document"
                            : fmt::format("built-in document {}", chipDocumentFor(path).number);
    }

    // The lines that prove how the second step ended.
    std::vector<uint64_t> overlayLines() const {
        std::vector<uint64_t> lines = linesThatAre({mTrace.noCodecs.line});
        for (size_t i = 0; i < mTrace.events.size(); ++i) {
            if (mFacts.loads.of[i] == Which::Overlay) {
                lines.push_back(mTrace.events[i].line);
            }
        }
        return lines;
    }

    void describeOverlay() {
        std::vector<std::string> results;
        if (mFacts.isOpen(OverlayResult::Private)) {
            results.emplace_back("the private file");
        }
        if (mFacts.isOpen(OverlayResult::BuiltIn)) {
            results.push_back(
                    fmt::format("{} (private file missing or not readable, or empty with "
                                "the codec test tool)",
                                builtInName()));
        }
        if (mFacts.isOpen(OverlayResult::Rejected)) {
            results.emplace_back("none, as the private file is empty or not valid");
        }
        if (results.size() == 1) {
            add({Severity::Note, "overlay", "",
                 fmt::format("the second document is {}", results.front()), "", overlayLines()});
            return;
        }
        std::string why;
        if (!mFacts.isOpen(OverlayResult::Rejected) && mTrace.lineAfter != 0) {
            why = "; it was not rejected: no line says so, and the log goes on";
        }
        std::vector<uint64_t> lines = overlayLines();
        if (!why.empty()) {
            lines.push_back(mTrace.lineAfter);
        }
        add({Severity::Note, "overlay", "",
             fmt::format("which second document is merged is not proved: {}{}",
                         joined(results, ", or "), why),
             fmt::format("adb shell ls -l {} {}; {}", kCodecTestTool, kPrivateConfig,
                         pullAndCheck(kPrivateConfig)),
             lines});
    }

    void describeNoCodecs() {
        if (mTrace.noCodecs.count != 0) {
            add({Severity::Warning,
                 "no-codecs",
                 "no codec component is named",
                 fmt::format("no document that was merged names a codec component, so every codec "
                             "is enabled{}. Components asked {}",
                             mFacts.loads.isContradictory
                                     ? ""
                                     : "; every built-in document names some, so none was merged",
                             times(mTrace.noCodecs.count)),
                 fmt::format("{}; list the components in \"{}\"", pullAndCheck(kPrivateConfig),
                             targetSpecSupportedCodecs),
                 {mTrace.noCodecs.line}});
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

    // A component's mistake: what it asked, and what it got.
    void addCall(const char* topic, std::string item, const std::string& advice, const Call& call) {
        const std::string text = fmt::format("a component asked {} {}", times(call.count), item);
        add({Severity::Error,
             topic,
             "a wrong call by a component",
             text,
             advice,
             {call.line},
             "calls of components",
             text});
    }

    void describeFormats() {
        for (const auto& [format, call] : mTrace.unknownFormats) {
            addCall("format",
                    fmt::format("for a plane of {}, which is not a format of the video core; it "
                                "got 0",
                                format),
                    kCorrectComponent, call);
        }
        for (const auto& [asked, call] : mTrace.missingPlanes) {
            const auto& [format, plane] = asked;
            const Platform::FormatRow* const row = formatNamed(format);
            addCall("plane",
                    fmt::format(
                            "for plane {} of {}; it got 0.{}{}", plane, format,
                            plane == "?" ? " \"?\" is a value above 5, which is not a plane." : "",
                            row != nullptr ? fmt::format(" Buffers of {} have: {}.", row->name,
                                                         planesOf(*row))
                                           : ""),
                    kCorrectComponent, call);
        }
    }

    void describeOtherCalls() {
        for (const auto& [descriptor, call] : mTrace.badDescriptors) {
            addCall("descriptor",
                    fmt::format("for the identity of descriptor {}, which is not open{}; it got 0, "
                                "as every such call does",
                                descriptor,
                                descriptor.starts_with("-") ? ": it is what a failed open() returns"
                                                            : ""),
                    "correct the component: check the descriptor before the call", call);
        }
        for (const auto& [skipped, call] : mTrace.skippedByCall) {
            const std::string text = fmt::format(
                    "of a document that a program itself gave to parseJsonData(), a "
                    "value was skipped {}: {}",
                    times(call.count), skipped);
            add({Severity::Error,
                 "skipped",
                 "values of a program's document skipped",
                 text,
                 "correct the value in that document",
                 {call.line}});
        }
    }

    void addLines(Severity severity, const char* topic, const char* brief, std::string text,
                  const std::map<std::string, uint64_t>& shown, const char* advice) {
        std::vector<uint64_t> lines;
        for (const auto& [line, number] : shown) {
            text += fmt::format("\n  {}", line);
            lines.push_back(number);
        }
        add({severity, topic, brief, std::move(text), advice, std::move(lines)});
    }

    void describeGaps() {
        constexpr char kLarger[] = "take the log again with a larger buffer: adb logcat -G 16M";
        if (mTrace.strangeCount != 0) {
            addLines(Severity::Note, "unknown", "",
                     fmt::format("{} with the library's tags that it does not write:",
                                 counted(mTrace.strangeCount, "line")),
                     mTrace.strangeLines,
                     "the library on the device may be of another version than this tool");
        }
        if (mTrace.cutCount != 0) {
            addLines(mTrace.hasCutFault ? Severity::Error : Severity::Note, "gaps",
                     "the line of a fault is cut",
                     fmt::format("{}: what is not in the log proves nothing here",
                                 counted(mTrace.cutCount, "cut line")),
                     mTrace.cutLines,
                     "take the log again, into a file: adb logcat -d > logcat.txt");
        }
        if (mTrace.droppedLines != 0) {
            add({Severity::Note, "gaps", "",
                 fmt::format("{} that the device dropped: what is not in the log proves nothing "
                             "here",
                             counted(mTrace.droppedLines, "line")),
                 kLarger});
        }
    }

    void describeLimits() {
        // The bit of the level word that lets the path through lets the dump through, too.
        if (mFacts.loads.isUnfinished && mTrace.find(LineId::Parsing) != nullptr) {
            add({Severity::Warning,
                 "unfinished",
                 "the load does not end",
                 "the load does not end: its path is in the log, but not its dump. The process "
                 "died while it loaded, or waits for a document that is a pipe, or the log was "
                 "filtered",
                 mTrace.firstPath().empty()
                         ? "adb logcat -d -b crash"
                         : fmt::format("adb logcat -d -b crash; adb shell ls -lZ {}",
                                       mTrace.firstPath()),
                 {lineOf(LineId::Parsing), mTrace.lineAfter}});
        } else if (mFacts.loads.isIncomplete) {
            add({Severity::Note, "gaps", "",
                 "lines of this load are missing: what is not in the log proves nothing here",
                 "take the log again, without a filter: adb logcat -d"});
        }
        if (mTrace.laterDumps != 0) {
            add({Severity::Note, "dump-again", "",
                 fmt::format("a component has called printSpecifications() {}: those dumps show "
                             "the store after both documents",
                             times(mTrace.laterDumps)),
                 ""});
        }
        if (mTrace.process < 0) {
            add({Severity::Note, "no-process", "",
                 "this format of the log has no process numbers: lines of several processes may be "
                 "taken for one load",
                 "adb logcat -d -v threadtime"});
        }
        if (mTrace.isTooLong) {
            add({Severity::Warning, "too-long", "too many lines",
                 "this process has too many lines: not all are described",
                 "cut the log down to this process: adb logcat --pid=PID"});
        }
    }

    const LoadTrace& mTrace;
    const ProvedFacts& mFacts;
    std::vector<Conclusion> mConclusions;
};

}  // namespace

std::vector<Conclusion> conclude(const LoadTrace& trace, const ProvedFacts& facts) {
    return Description(trace, facts).conclude();
}

}  // namespace kc2::tool
