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
        {false, "missing or not readable", OverlayResult::BuiltIn},
        {false, "empty", OverlayResult::Rejected},
        {false, "valid", OverlayResult::Private},
        {false, "not a valid document", OverlayResult::Rejected},
        {true, "missing", OverlayResult::BuiltIn},
        {true, "there, but not readable", OverlayResult::BuiltIn},
        {true, "empty", OverlayResult::BuiltIn},
        {true, "valid", OverlayResult::Private},
        {true, "not a valid document", OverlayResult::Rejected},
};

constexpr char kGetProperty[] = "adb shell getprop vendor.media.target_variant";
constexpr char kInfoLines[] =
        "turn the info lines on (bit 0x2 of the level word kc2::gC2LogLevel; 0x4 and 0x8 add the "
        "debug lines) and start the process again";
constexpr char kCorrectComponent[] =
        "correct the component; kcodec2_spec formats lists the formats";

std::string times(uint64_t count) {
    return count == 1 ? "once" : count == 2 ? "twice" : fmt::format("{} times", count);
}

const Platform::FormatRow* formatNamed(std::string_view name) {
    const auto row = std::find_if(
            std::begin(Platform::kFormatRows), std::end(Platform::kFormatRows),
            [&](const Platform::FormatRow& format) {
                return name == format.name || toWord(std::string(name)) == *format.format;
            });
    return row != std::end(Platform::kFormatRows) ? row : nullptr;
}

// Which planes buffers of that format have; empty for an unknown format.
std::string planesOf(std::string_view format) {
    const Platform::FormatRow* const row = formatNamed(format);
    if (row == nullptr) {
        return "";
    }
    std::vector<std::string> planes;
    for (const Platform::TamraBufferLayout::PlaneID plane : row->planes) {
        planes.emplace_back(Platform::planeName(plane));
    }
    return fmt::format(" Buffers of {} have: {}.", row->name, joined(planes, ", "));
}

std::string listed(const char* title, const std::vector<DumpedValue>& values) {
    std::vector<std::string> words;
    for (const DumpedValue& value : values) {
        words.push_back(value.value.empty() ? value.name
                                            : fmt::format("{}={}", value.name, value.value));
    }
    return fmt::format("\n{} ({}): {}", title, values.size(),
                       words.empty() ? "none" : joined(words, ", "));
}

}  // namespace

const char* OverlayOutcome::result() const {
    constexpr const char* kResults[] = {"the built-in document is merged", "nothing is merged",
                                        "the private file is merged"};  // By OverlayResult.
    return isSeeding() ? "the built-in document is merged, and written into the file where that is "
                         "possible"
                       : kResults[static_cast<size_t>(kind)];
}

bool ProvedFacts::isOnly(SpecSource source) const {
    return isOpen(source) &&
           std::count(std::begin(loads.canOpen), std::end(loads.canOpen), true) == 1;
}

ProvedFacts factsOf(const LoadTrace& trace, const TreeFacts& tree) {
    LoadLimits limits = tree.limits;
    limits.isStartKnown = trace.lineBefore != 0;
    limits.isEndKnown = trace.lineAfter != 0;
    limits.hasGaps = trace.hasGaps();
    limits.hasDumpEntries =
            trace.dump.isOfLoad &&
            std::any_of(trace.dump.values.begin(), trace.dump.values.end(),
                        [](const std::vector<DumpedValue>& values) { return !values.empty(); });
    limits.hasDumpedCodecs = trace.dump.isOfLoad && !trace.dump.of(DumpSection::Codecs).empty();
    limits.hasNoCodecs = trace.noCodecs.count != 0;
    std::fill(std::begin(limits.canEnd), std::end(limits.canEnd), false);
    for (size_t i = 0; i < std::size(kOutcomes); ++i) {
        limits.canEnd[static_cast<size_t>(kOutcomes[i].kind)] |= tree.canBe[i];
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
    return trace.events[event].names("system spec")    ? Which::SystemSpec
           : trace.events[event].names("private file") ? Which::Overlay
           : facts.loads.isContradictory               ? Which::Either
                                                       : facts.loads.of[event];
}

std::string Conclusion::fullText() const {
    return heading.empty() ? text : fmt::format("{}: {}", heading, text);
}

namespace {

std::string pullAndCheck(const std::string& path) {
    return path.empty() ? fmt::format("find the document: {}; adb pull it; kcodec2_spec check FILE",
                                      kGetProperty)
                        : fmt::format("adb pull {}; kcodec2_spec check {}", path,
                                      path.substr(path.rfind('/') + 1));
}

// The topics of one load. Each function adds what it knows.
class Description {
public:
    Description(const LoadTrace& trace, const ProvedFacts& facts)
        : mTrace(trace), mFacts(facts), mSystemSpec(systemSpec()) {}

    std::vector<Conclusion> conclude() {
        if (mFacts.loads.isContradictory) {
            add(Severity::Warning, "mixed", "lines of several loads",
                "these lines cannot be of one load: two processes had this number, or components "
                "call the load's functions themselves",
                "clear the log (adb logcat -c), start the process again, and take a new log");
        }
        if (mTrace.hasLoad()) {
            describeVariant();
            describeSystemSpec();
            for (size_t i = 0; i < mTrace.events.size(); ++i) {
                describeEvent(i);
            }
            describeDump();
        }
        if (mTrace.isAnyKnown() && !mFacts.loads.isContradictory) {
            describeOverlay();
        }
        describeNoCodecs();
        for (const auto& [asked, call] : mTrace.calls) {
            describeCall(asked.first, asked.second, call);
        }
        describeGaps();
        describeLimits();
        return std::move(mConclusions);
    }

private:
    // A document in words, and what to do about it.
    struct Subject {
        std::string brief;
        std::string name;
        std::string advice;
    };

    void add(Severity severity, const char* topic, std::string brief, std::string text,
             std::string advice, std::vector<uint64_t> lines = {}, std::string heading = {}) {
        std::erase(lines, 0);
        mConclusions.push_back({severity, topic, std::move(brief), std::move(text),
                                std::move(advice), std::move(lines), std::move(heading)});
    }

    void addNote(const char* topic, std::string text, std::string advice = {},
                 std::vector<uint64_t> lines = {}) {
        add(Severity::Note, topic, "", std::move(text), std::move(advice), std::move(lines));
    }

    void describeVariant() {
        const std::string path = mTrace.firstPath();
        const std::string variant = variantIn(path);
        if (const uint64_t line = mTrace.lineOf(LineId::NoVariant); line != 0) {
            add(Severity::Warning, "variant", "no target variant",
                fmt::format("the property {} (\"target-id\" in the line) is not set, or it is "
                            "\"default\": the path is {}",
                            kVariantProperty, path),
                fmt::format("{}; if the device should have a variant, set the property in its "
                            "build",
                            kGetProperty),
                {line});
        } else if (variant.empty()) {
            addNote("variant", "no line names the variant", kGetProperty);
        } else {
            const bool isOdm = path.starts_with(kOdmSpecDirectory);
            addNote("variant",
                    fmt::format("the variant is \"{}\", which selects {}{}", variant, path,
                                isOdm ? ""
                                      : fmt::format(": the same under {} does not exist or cannot "
                                                    "be examined",
                                                    kOdmSpecDirectory)),
                    "", {mTrace.lineOf(LineId::Parsing), mTrace.lineOf(LineId::OpenFailed)});
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

    // Where the system spec document may be looked for on the phone.
    std::string lookAdvice() const {
        const std::string path = mTrace.firstPath();
        return fmt::format("adb shell ls -lZ {}{}{}; {}", kFallbackSystemSpec,
                           path.empty() ? "" : " ", path, kGetProperty);
    }

    void describeSystemSpec() {
        const bool hasFailed = mTrace.find(LineId::OpenFailed) != nullptr;
        const std::string path = mTrace.firstPath();
        if (hasFailed || (!mFacts.isOpen(SpecSource::Variant) && !mFacts.loads.isContradictory)) {
            describeOpenFailure();
        } else if (mFacts.loads.isContradictory) {
            return;
        } else if (!mFacts.isOnly(SpecSource::Variant)) {
            addNote("system-spec",
                    fmt::format("which system spec document opens is not proved; {} is tried first",
                                triedPath()),
                    lookAdvice(), {mTrace.lineOf(LineId::Parsing)});
        } else if (path.empty()) {
            addNote("system-spec", "the document that the variant selects opens; no line names it",
                    kInfoLines);
        } else {
            addNote("system-spec", fmt::format("the system spec document is {}", path), "",
                    {mTrace.lineOf(LineId::Parsing)});
        }
    }

    void describeOpenFailure() {
        const std::string tried = triedPath();
        const std::string brief = fmt::format("{} does not open", tried);
        const std::vector<uint64_t> lines = {mTrace.lineOf(LineId::OpenFailed),
                                             mTrace.lineOf(LineId::FallingBack),
                                             mTrace.lineOf(LineId::NothingOpened)};
        const std::string install = lookAdvice() +
                                    "; install the document there, or correct the variant, which "
                                    "follows \"media\" without a \"/\" between";
        if (mFacts.isOnly(SpecSource::None)) {
            add(Severity::Error, "system-spec", "no system spec document",
                fmt::format("there is no system spec document: neither {} nor {} opens. \"Exit!\" "
                            "ends nothing: the load goes on, and only the second document fills "
                            "the store",
                            tried, kFallbackSystemSpec),
                install, lines);
        } else if (mFacts.isOnly(SpecSource::Fallback)) {
            add(Severity::Warning, "system-spec", brief,
                fmt::format("{}, so the fallback {} is read", brief, kFallbackSystemSpec), install,
                lines);
        } else {
            add(Severity::Error, "system-spec", brief,
                fmt::format("{}, so the fallback {} is tried; whether that opens is not in the log",
                            brief, kFallbackSystemSpec),
                lookAdvice(), lines);
        }
    }

    Subject systemSpec() const {
        const std::string path = mFacts.isOnly(SpecSource::Fallback)  ? kFallbackSystemSpec
                                 : mFacts.isOnly(SpecSource::Variant) ? mTrace.firstPath()
                                                                      : "";
        // The path that is tried first is the one to look at first, if it is not excluded.
        const bool isFirst = mFacts.isOpen(SpecSource::Variant);
        return {"system spec document",
                path.empty() ? "the system spec document"
                             : fmt::format("the system spec document ({})", path),
                pullAndCheck(isFirst ? mTrace.firstPath() : path)};
    }

    // The document that an event is about.
    Subject subjectOf(size_t event) const {
        if (mTrace.events[event].id == LineId::BuiltInRejected ||
            mTrace.events[event].names("built-in")) {
            return {"built-in document", "the built-in document",
                    "the library is damaged: install it again"};
        }
        switch (whichOf(mTrace, mFacts, event)) {
            case Which::SystemSpec:
                return mSystemSpec;
            case Which::Overlay:
                return mPrivateFile;
            default:
                return {"system spec document or private file",
                        fmt::format("either {} or {}", mSystemSpec.name, mPrivateFile.name),
                        fmt::format("{}; {}", mPrivateFile.advice, mSystemSpec.advice)};
        }
    }

    void describeEvent(size_t i) {
        const LoadEvent& event = mTrace.events[i];
        const Subject subject = subjectOf(i);
        const auto addSkipped = [&](std::string text) {
            add(Severity::Error, "skipped", fmt::format("values of the {} skipped", subject.brief),
                std::move(text), subject.advice, {event.line}, subject.name);
        };
        switch (event.id) {
            case LineId::StreamRejected:
            case LineId::BuiltInRejected:
                return add(
                        Severity::Error, "rejected", subject.brief + " rejected",
                        fmt::format("{} was rejected as a whole{}. Nothing from it is in the store",
                                    subject.name,
                                    event.id == LineId::BuiltInRejected
                                            ? ""
                                            : ": it is empty, not valid JSON, beyond the limits, "
                                              "or not readable to its end"),
                        subject.advice, {event.line});
            case LineId::Skipped:
                return addSkipped(fmt::format("{} was skipped: {}", event.value, event.reason));
            case LineId::RowSkipped:
                return addSkipped(fmt::format(
                        "{} of {} skipped: a row is three integers [low, high, bit rate]",
                        counted(event.count, "row"), targetSpecNimbraModeBitRate));
            case LineId::EncoderFilter:
                return add(Severity::Note, "encoder-filter", "",
                           fmt::format("encoder post-processing filter \"{}\"", event.value), "",
                           {event.line}, subject.name);
            default:
                return;
        }
    }

    void describeDump() {
        const Dump& dump = mTrace.dump;
        if (!dump.isStarted) {
            addNote("store", "what the store had is not in this log: the dump is of info lines",
                    kInfoLines);
            return;
        }
        std::string text =
                dump.isOfLoad ? "after the first step, and before the second document adds to it, "
                                "the store had:"
                              : "a dump, of the load or of a component that has called "
                                "printSpecifications() later, shows:";
        for (const DumpPart& part : kDumpParts) {
            const bool isCodecs = part.section == DumpSection::Codecs;
            const bool hasBoth = part.section == DumpSection::Plugins && !dump.hasCodecsHeading;
            if (!isCodecs || dump.hasCodecsHeading) {
                text += listed(hasBoth ? "codec plug-ins, then codec components" : part.title,
                               dump.of(part.section));
            }
        }
        if (!dump.of(DumpSection::None).empty()) {
            text += listed("of a section whose heading is missing", dump.of(DumpSection::None));
        }
        text += dump.isWhole ? "" : "\nThe start of the dump is missing.";
        if (!dump.lostHeadings.empty()) {
            text += fmt::format("\nHeadings are missing ({}): entries may be of another section.",
                                dump.lostHeadings);
        }
        addNote("store", text,
                dump.hasCodecsHeading ? ""
                                      : "set bit 0x8 of the level word, too: its heading shows "
                                        "where the codec components begin",
                {dump.line});
    }

    // The lines that prove how the second step ended.
    std::vector<uint64_t> overlayLines() const {
        std::vector<uint64_t> lines = {mTrace.noCodecs.line};
        for (size_t i = 0; i < mTrace.events.size(); ++i) {
            if (mFacts.loads.of[i] == Which::Overlay) {
                lines.push_back(mTrace.events[i].line);
            }
        }
        return lines;
    }

    void describeOverlay() {
        const std::string path = mTrace.firstPath();
        const std::string builtIn =
                path.empty() ? "the built-in document"
                             : fmt::format("built-in document {}", chipDocumentFor(path).number);
        std::vector<std::string> results;
        if (mFacts.isOpen(OverlayResult::Private)) {
            results.emplace_back("the private file");
        }
        if (mFacts.isOpen(OverlayResult::BuiltIn)) {
            results.push_back(builtIn +
                              " (private file missing or not readable, or empty with the codec "
                              "test tool)");
        }
        const bool isNoneOpen = mFacts.isOpen(OverlayResult::Rejected);
        if (isNoneOpen) {
            results.emplace_back("none, as the private file is empty or not valid");
        }
        std::vector<uint64_t> lines = overlayLines();
        if (results.size() == 1) {
            addNote("overlay", fmt::format("second document: {}", results.front()), "", lines);
            return;
        }
        const bool isNoneExcluded = !isNoneOpen && mTrace.lineAfter != 0;
        lines.push_back(isNoneExcluded ? mTrace.lineAfter : 0);
        addNote("overlay",
                fmt::format("which second document is merged is not proved: {}{}",
                            joined(results, ", or "),
                            isNoneExcluded
                                    ? "; it was not rejected: no line says so, and the log goes on"
                                    : ""),
                fmt::format("adb shell ls -l {} {}; {}", kCodecTestTool, kPrivateConfig,
                            pullAndCheck(kPrivateConfig)),
                lines);
    }

    void describeNoCodecs() {
        if (mTrace.noCodecs.count == 0) {
            return;
        }
        add(Severity::Warning, "no-codecs", "no codec component is named",
            fmt::format("no document that was merged names a codec component, so every codec is "
                        "enabled{}. Components asked {}",
                        mFacts.loads.isContradictory
                                ? ""
                                : "; every built-in document names some, so none was merged",
                        times(mTrace.noCodecs.count)),
            fmt::format("{}; list the components in \"{}\"", pullAndCheck(kPrivateConfig),
                        targetSpecSupportedCodecs),
            {mTrace.noCodecs.line});
    }

    // A component's mistake: what it asked, and what it got.
    void describeCall(LineId id, const std::string& line, const Call& call) {
        const LineValues values = match(logLine(id).text, line).value_or(LineValues());
        const auto addCall = [&](const char* topic, const std::string& asked, const char* advice) {
            add(Severity::Error, topic, "a wrong call by a component",
                fmt::format("a component asked {} {}", times(call.count), asked), advice,
                {call.line}, "calls of components");
        };
        switch (id) {
            case LineId::UnknownFormat:
                return addCall("format",
                               fmt::format("for a plane of {}, which is not a format of the video "
                                           "core; it got 0",
                                           values[0]),
                               kCorrectComponent);
            case LineId::MissingPlane:
                return addCall(
                        "plane",
                        fmt::format("for plane {} of {}; it got 0.{}{}", values[1], values[0],
                                    values[1] == "?"
                                            ? " \"?\" is a value above 5, which is not a plane."
                                            : "",
                                    planesOf(values[0])),
                        kCorrectComponent);
            case LineId::BadDescriptor:
                return addCall("descriptor",
                               fmt::format("for the identity of descriptor {}, which is not "
                                           "open{}; it got 0, as every such call does",
                                           values[0],
                                           values[0].starts_with("-")
                                                   ? ": it is what a failed open() returns"
                                                   : ""),
                               "correct the component: check the descriptor before the call");
            default:
                return add(Severity::Error, "skipped", "values of a program's document skipped",
                           fmt::format("of a document that a program itself gave to "
                                       "parseJsonData(), a value was skipped {}: {}",
                                       times(call.count), line.substr(line.find(' ') + 1)),
                           "correct the value in that document", {call.line});
        }
    }

    void addSample(Severity severity, const char* topic, const char* brief, std::string text,
                   const SampledLines& sample, const char* advice) {
        std::vector<uint64_t> lines;
        for (const auto& [line, number] : sample.lines) {
            text += fmt::format("\n  {}", line);
            lines.push_back(number);
        }
        add(severity, topic, brief, std::move(text), advice, std::move(lines));
    }

    void describeGaps() {
        constexpr char kGap[] = "what is not in the log proves nothing here";
        if (mTrace.strange.count != 0) {
            addSample(Severity::Note, "unknown", "",
                      fmt::format("{} with the library's tags that it does not write:",
                                  counted(mTrace.strange.count, "line")),
                      mTrace.strange,
                      "the library on the device may be of another version than this tool");
        }
        if (mTrace.cut.count != 0) {
            addSample(mTrace.hasCutFault ? Severity::Error : Severity::Note, "gaps",
                      "the line of a fault is cut",
                      fmt::format("{}: {}", counted(mTrace.cut.count, "cut line"), kGap),
                      mTrace.cut, "take the log again, into a file: adb logcat -d > logcat.txt");
        }
        if (mTrace.droppedLines != 0) {
            addNote("gaps",
                    fmt::format("{} that the device dropped: {}",
                                counted(mTrace.droppedLines, "line"), kGap),
                    "take the log again with a larger buffer: adb logcat -G 16M");
        }
        // The bit of the level word that lets the path through lets the dump through, too.
        if (mFacts.loads.isUnfinished && mTrace.find(LineId::Parsing) != nullptr) {
            add(Severity::Warning, "unfinished", "the load does not end",
                "the load does not end: its path is in the log, but not its dump. The process "
                "died while it loaded, or waits for a document that is a pipe, or the log was "
                "filtered",
                "adb logcat -d -b crash; " + lookAdvice(),
                {mTrace.lineOf(LineId::Parsing), mTrace.lineAfter});
        } else if (mFacts.loads.isIncomplete) {
            addNote("gaps", fmt::format("lines of this load are missing: {}", kGap),
                    "take the log again, without a filter: adb logcat -d");
        }
    }

    void describeLimits() {
        if (mTrace.laterDumps != 0) {
            addNote("dump-again",
                    fmt::format("a component has called printSpecifications() {}: those dumps show "
                                "the store after both documents",
                                times(mTrace.laterDumps)));
        }
        if (mTrace.process < 0) {
            addNote("no-process",
                    "this format of the log has no process numbers: lines of several processes may "
                    "be taken for one load",
                    "adb logcat -d -v threadtime");
        }
        if (mTrace.isTooLong) {
            add(Severity::Warning, "too-long", "too many lines",
                "this process has too many lines: not all are described",
                "cut the log down to this process: adb logcat --pid=PID");
        }
    }

    const LoadTrace& mTrace;
    const ProvedFacts& mFacts;
    // Made once: one of them is in the text of each skipped value.
    const Subject mSystemSpec;
    const Subject mPrivateFile = {"private file",
                                  fmt::format("the private file ({})", kPrivateConfig),
                                  pullAndCheck(kPrivateConfig)};
    std::vector<Conclusion> mConclusions;
};

}  // namespace

std::vector<Conclusion> conclude(const LoadTrace& trace, const ProvedFacts& facts) {
    return Description(trace, facts).conclude();
}

}  // namespace kc2::tool
