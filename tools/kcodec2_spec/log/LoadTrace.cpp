// The library's lines of a log, sorted by process and load.

#include "log/LoadTrace.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "base/Text.h"
#include "device/DevicePaths.h"
#include "log/LineMatch.h"
#include "log/LineReader.h"

namespace kc2::tool {

namespace {

// What is kept of a log; beyond it lines are counted only. A real one needs some kilobytes.
constexpr size_t kMostKeptBytes = size_t{32} << 20;
constexpr size_t kBytesPerRecord = 200;  // Beside its texts.

// A load takes milliseconds: a line that is not there after this long was not written. In a log
// without times, a thousand lines are enough.
constexpr double kSecondsOfLoad = 10;
constexpr double kSecondsPerLine = 0.01;
constexpr double kMostSecondsApart = 60;        // Two lines of one load.
constexpr double kSecondsPerDay = 24.0 * 3600;  // More: somebody has set the clock.

std::string defaultPath() {
    return std::string(kVendorSpecDirectory) + kSystemSpecName;
}

bool isOfCall(LineId id) {
    return id == LineId::NoCodecs || id == LineId::UnknownFormat || id == LineId::MissingPlane ||
           id == LineId::BadDescriptor || id == LineId::SkippedByCall;
}

bool isOfLocation(LineId id) {
    return id == LineId::Parsing || id == LineId::OpenFailed || id == LineId::FallingBack ||
           id == LineId::NothingOpened;
}

bool isOurTag(std::string_view tag) {
    return std::any_of(logLines().begin(), logLines().end(),
                       [tag](const LogLine& line) { return tag == line.tag; });
}

bool isSpecPath(std::string_view path) {
    return (path.starts_with(kOdmSpecDirectory) || path.starts_with(kVendorSpecDirectory)) &&
           path.ends_with(kSystemSpecName);
}

// The value of the row's first placeholder in that text.
std::string_view firstValue(const LogLine& row, std::string_view text) {
    const std::optional<LineValues> values = match(row.text, text);
    return values && !values->empty() ? values->front() : std::string_view();
}

// Without a tag only the library's own words show whose line it is, and some are common ones.
bool isOursWithoutTag(const LogLine& row, std::string_view text) {
    if (row.id == LineId::Entry || row.id == LineId::SkippedByCall) {
        return false;
    }
    const std::string_view path = firstValue(row, text);
    return row.id == LineId::Parsing || !isOfLocation(row.id) || isSpecPath(path) ||
           path.starts_with(kFallbackSystemSpec);
}

bool isFarApart(std::string_view earlier, std::string_view later) {
    const std::optional<double> since = secondsBetween(earlier, later);
    return since && *since > kMostSecondsApart;
}

// The event of a line with a path, where the line may be cut. "Failed to open " may be of two rows.
LoadEvent pathEvent(LoadEvent event, const LoadTrace& trace) {
    const std::string_view fallback = kFallbackSystemSpec;
    const std::string_view path = event.value;
    const bool isSpec = event.id == LineId::Parsing || event.id == LineId::OpenFailed;
    event.isCut = isSpec ? !isSpecPath(path) : path != fallback;
    const bool isCutFallback = fallback.starts_with(path) &&
                               (trace.find(LineId::FallingBack) != nullptr ||
                                !std::string_view(kVendorSpecDirectory).starts_with(path));
    if (event.id == LineId::OpenFailed && (path.starts_with(fallback) || isCutFallback)) {
        event.id = LineId::NothingOpened;
    }
    return event;
}

// The number after the last `word` of a text; 0 when there is none.
uint64_t numberAfter(std::string_view word, std::string_view text) {
    uint64_t number = 0;
    if (const size_t at = text.rfind(word); at != std::string_view::npos) {
        text.remove_prefix(at + word.size());
        std::from_chars(text.data(), text.data() + text.size(), number);
    }
    return number;
}

}  // namespace

const std::vector<DumpedValue>& Dump::of(DumpSection section) const {
    static const std::vector<DumpedValue>& none = *new std::vector<DumpedValue>();
    const auto found = values.find(section);
    return found != values.end() ? found->second : none;
}

void SampledLines::add(std::string_view text, uint64_t line) {
    constexpr size_t kMost = 5;
    ++count;
    text = text.empty() ? "(nothing after the tag)" : text;
    const bool isKnown = std::any_of(lines.begin(), lines.end(),
                                     [&](const auto& known) { return known.first == text; });
    if (!isKnown && lines.size() < kMost) {
        lines.emplace_back(text, line);
    }
}

const LoadEvent* LoadTrace::find(LineId id) const {
    const auto found = std::find_if(events.begin(), events.end(),
                                    [id](const LoadEvent& event) { return event.id == id; });
    return found != events.end() ? &*found : nullptr;
}

std::string LoadTrace::firstPath() const {
    for (const LineId id : {LineId::Parsing, LineId::OpenFailed}) {
        if (const LoadEvent* const event = find(id); event != nullptr && !event->isCut) {
            return event->value;
        }
    }
    return find(LineId::NoVariant) != nullptr ? defaultPath() : std::string();
}

bool TraceCollector::spend(size_t bytes, LoadTrace* trace) {
    if (mKeptBytes + bytes + kBytesPerRecord > kMostKeptBytes) {
        mIsTooLong = true;
        if (trace != nullptr) {
            trace->isTooLong = true;
        }
        return false;
    }
    mKeptBytes += bytes + kBytesPerRecord;
    return true;
}

bool TraceCollector::startTrace(const LogEntry& entry, uint64_t lineNumber, Process* process) {
    constexpr size_t kBytesPerTrace = 4 * kLongestLogLine;
    if (!spend(kBytesPerTrace, nullptr)) {
        return false;
    }
    LoadTrace trace;
    trace.process = entry.process;
    trace.firstTime = entry.time;
    trace.firstLine = lineNumber;
    trace.lineBefore = mSeconds >= kSecondsOfLoad ? mFirstLine : 0;
    *process = Process();
    process->trace = mTraces.size();
    mTraces.push_back(std::move(trace));
    return true;
}

TraceCollector::Process* TraceCollector::processOf(const LogEntry& entry, uint64_t lineNumber) {
    const auto known = mProcesses.find(entry.process);
    if (known != mProcesses.end()) {
        return &known->second;
    }
    Process process;
    if (!startTrace(entry, lineNumber, &process)) {
        return nullptr;
    }
    return &mProcesses.emplace(entry.process, std::move(process)).first->second;
}

// A buffer that begins again is that of another boot, or another log: process numbers are new.
void TraceCollector::beginBuffer(std::string_view name) {
    constexpr size_t kMostBuffers = 100;
    if (!mBuffers.emplace(name).second || mBuffers.size() > kMostBuffers) {
        mBuffers = {std::string(name)};
        end();
    }
}

void TraceCollector::end() {
    endStretch();
    mProcesses.clear();
}

void TraceCollector::endStretch() {
    for (; mFirstTrace < mTraces.size(); ++mFirstTrace) {
        LoadTrace& trace = mTraces[mFirstTrace];
        if (!trace.events.empty() && trace.lineAfter == 0 &&
            mSeconds - trace.lastSeconds >= kSecondsOfLoad) {
            trace.lineAfter = mLastLine;
        }
    }
    mFirstLine = 0;
    mLastTime.clear();
    mSeconds = 0;
}

void TraceCollector::noteTime(const LogEntry& entry, uint64_t lineNumber) {
    const std::optional<double> since = secondsBetween(mLastTime, entry.time);
    if (since && *since < -kMostSecondsApart) {
        end();
    } else if (since && *since >= kSecondsPerDay) {
        endStretch();
    } else if (since) {
        mSeconds += *since;
    } else if (mLastTime.empty() && entry.time.empty()) {
        mSeconds += kSecondsPerLine;
    }
    mFirstLine = mFirstLine == 0 ? lineNumber : mFirstLine;
    mLastLine = lineNumber;
    if (!entry.time.empty()) {
        mLastTime = entry.time;
    }
}

// A store is loaded once per process: a line that cannot follow in the same load is that of another
// process, which was given the same number later.
void TraceCollector::splitIfNewLoad(const LoadEvent& event, const LogEntry& entry,
                                    Process* process) {
    const bool isApart = isFarApart(process->lastTime, entry.time);
    const size_t old = process->trace;
    // Get() has returned, or a component has written a dump.
    const bool isOver =
            mTraces[old].noCodecs.count != 0 ||
            (isOfLocation(event.id) && mTraces[old].dump.isStarted && !mTraces[old].dump.isOfLoad);
    if (!isApart && !isOver && process->position.follow(event)) {
        return;
    }
    if (!startTrace(entry, event.line, process)) {
        mTraces[old].isTooLong = true;
        return;
    }
    // The line about the missing variant comes before the path that it leads to.
    std::vector<LoadEvent>& before = mTraces[old].events;
    if (!isApart && event.value == defaultPath() && !before.empty() &&
        before.back().id == LineId::NoVariant) {
        LoadEvent moved = before.back();
        moved.count = 1;
        if (--before.back().count == 0) {
            before.pop_back();
        }
        process->position.follow(moved);
        mTraces[process->trace].firstLine = moved.line;
        mTraces[process->trace].events.push_back(std::move(moved));
    }
    process->position.follow(event);
}

void TraceCollector::addEvent(LoadEvent event, const LogEntry& entry, Process* process) {
    splitIfNewLoad(event, entry, process);
    LoadTrace& trace = mTraces[process->trace];
    process->lastTime = entry.time;
    trace.lineAfter = 0;
    trace.lastSeconds = mSeconds;
    const bool isCounted = event.id == LineId::NoVariant || event.id == LineId::RowSkipped;
    if (isCounted && !trace.events.empty() && trace.events.back().id == event.id) {
        trace.events.back().count += event.count;
    } else if (spend(event.value.size() + event.reason.size() + event.document.size(), &trace)) {
        trace.events.push_back(std::move(event));
    }
}

// The dump of a load follows the line with the path, which the same bit of the level word lets
// through. Any other may be of a component that calls printSpecifications() at any time.
void TraceCollector::startDump(LineId first, const LogEntry& entry, uint64_t lineNumber,
                               Process* process) {
    const bool isOfLoad = first == LineId::CodecsHeading ||
                          (!isFarApart(process->lastTime, entry.time) &&
                           mTraces[process->trace].find(LineId::Parsing) != nullptr);
    if (isOfLoad) {
        addEvent({.id = LineId::FeaturesHeading, .line = lineNumber}, entry, process);
    }
    Dump& dump = mTraces[process->trace].dump;
    dump.isStarted = true;
    dump.isOfLoad = isOfLoad;
    dump.isWhole = first == LineId::FeaturesHeading;
    dump.line = lineNumber;
}

void TraceCollector::addHeading(LineId id, const LogEntry& entry, uint64_t lineNumber,
                                Process* process) {
    constexpr LineId kHeadings[] = {LineId::FeaturesHeading, LineId::PresetsHeading,
                                    LineId::FiltersHeading, LineId::PluginsHeading,
                                    LineId::CodecsHeading};
    const auto section = static_cast<DumpSection>(
            1 + (std::find(std::begin(kHeadings), std::end(kHeadings), id) - kHeadings));
    if (mTraces[process->trace].dump.isStarted && section <= process->section) {
        ++mTraces[process->trace].laterDumps;  // A component has called printSpecifications().
        process->section = DumpSection::Later;
    }
    if (process->section == DumpSection::Later) {
        return;
    }
    if (!mTraces[process->trace].dump.isStarted) {
        startDump(id, entry, lineNumber, process);
    }
    Dump& dump = mTraces[process->trace].dump;
    for (int lost = static_cast<int>(process->section) + 1; lost < static_cast<int>(section);
         ++lost) {
        dump.lostHeadings += dump.lostHeadings.empty() ? "" : ", ";
        dump.lostHeadings += logLine(kHeadings[lost - 1]).text;
    }
    dump.hasCodecsHeading |= id == LineId::CodecsHeading;
    process->section = section;
}

void TraceCollector::addDumpEntry(const LogEntry& entry, uint64_t lineNumber, Process* process) {
    if (process->section == DumpSection::None && !mTraces[process->trace].dump.isStarted) {
        startDump(LineId::Entry, entry, lineNumber, process);
    }
    LoadTrace& trace = mTraces[process->trace];
    const std::string_view text = firstValue(logLine(LineId::Entry), entry.text);
    const std::optional<NamedEntry> named = matchNamed(text);
    const bool isFeature = named && fits(*named, LineId::Feature);
    const bool isPreset = named && fits(*named, LineId::Preset);
    DumpSection section = process->section;
    if (section == DumpSection::Later) {
        return;
    }
    if (section == DumpSection::Features && isPreset && !isFeature) {
        trace.dump.lostHeadings = logLine(LineId::PresetsHeading).text;
        process->section = section = DumpSection::Presets;
    } else if (section == DumpSection::None && isFeature != isPreset) {
        section = isFeature ? DumpSection::Features : DumpSection::Presets;
    }
    const bool isNamed = section == DumpSection::Features || section == DumpSection::Presets;
    if (isNamed && !named) {
        trace.cut.add(entry.text, lineNumber);
        return;
    }
    DumpedValue value = {std::string(text), "", lineNumber};
    if (named && section <= DumpSection::Presets) {
        value = {std::string(named->name), std::string(named->value), lineNumber};
    }
    if (spend(text.size(), &trace)) {
        trace.dump.values[section].push_back(std::move(value));
    }
}

// What was asked of the store or the formats: any thread may ask, also while another one loads, and
// long after the load.
void TraceCollector::addCall(LineId id, const LogEntry& entry, const Call& call, LoadTrace* trace) {
    if (id == LineId::NoCodecs) {
        trace->noCodecs.line = trace->noCodecs.count == 0 ? call.line : trace->noCodecs.line;
        trace->noCodecs.count += call.count;
        // Get() has returned: the load is over.
        trace->lineAfter = trace->lineAfter == 0 ? call.line : trace->lineAfter;
        return;
    }
    const auto known = trace->calls.find({id, std::string(entry.text)});
    if (known != trace->calls.end()) {
        known->second.count += call.count;
    } else if (spend(entry.text.size(), trace)) {
        trace->calls.emplace(std::pair(id, entry.text), call);
    }
}

void TraceCollector::addLine(LoadEvent event, const LogEntry& entry, Process* process) {
    switch (event.id) {
        case LineId::Entry:
            return addDumpEntry(entry, event.line, process);
        case LineId::FeaturesHeading:
        case LineId::PresetsHeading:
        case LineId::FiltersHeading:
        case LineId::PluginsHeading:
        case LineId::CodecsHeading:
            return addHeading(event.id, entry, event.line, process);
        case LineId::Skipped: {
            const SkippedText skipped = *matchSkipped(entry.text);
            event.value = skipped.place;
            event.reason = skipped.reason;
            event.document = skipped.document;
            break;
        }
        default:
            event.value = firstValue(logLine(event.id), entry.text);
            break;
    }
    event = isOfLocation(event.id) ? pathEvent(std::move(event), mTraces[process->trace]) : event;
    addEvent(std::move(event), entry, process);
    if (process->section != DumpSection::None) {
        process->section = DumpSection::Later;  // Later entries do not belong to the dump.
    }
}

// Whether a line without a tag is the library's.
bool TraceCollector::isOurs(const LogEntry& entry, const LogLine* row, bool isCut) const {
    if (row == nullptr || isCut) {
        return false;
    }
    const auto process = mProcesses.find(entry.process);
    const bool isInDump = process != mProcesses.end() &&
                          process->second.section != DumpSection::None &&
                          process->second.section != DumpSection::Later;
    return (row->id == LineId::Entry && isInDump) || isOursWithoutTag(*row, entry.text);
}

void TraceCollector::addOurs(const LogEntry& entry, uint64_t lineNumber, uint64_t count) {
    const LogLine* row = rowOf(entry.tag, entry.text);
    const CutText cut =
            row == nullptr ? matchCut(entry.tag, entry.priority, entry.text) : CutText();
    row = cut.row != nullptr ? cut.row : row;
    if (entry.tag.empty()) {
        const bool isRaw = entry.process < 0 && entry.time.empty();
        const bool isOurLine = isOurs(entry, row, cut.isCut);
        if (isRaw && (mHasHeaders || !isOurLine) && (isOurLine || mentionsLibrary(entry.text))) {
            mUnread.add(entry.text, lineNumber);
        }
        if (!isOurLine || (isRaw && mHasHeaders)) {
            return;
        }
    }
    Process* const process = processOf(entry, lineNumber);
    if (process == nullptr) {
        return;
    }
    if (cut.isCut) {
        mTraces[process->trace].cut.add(entry.text, lineNumber);
        mTraces[process->trace].hasCutFault |= cut.isFault && row == nullptr;
    }
    if (row != nullptr && isOfCall(row->id)) {
        addCall(row->id, entry, {lineNumber, count}, &mTraces[process->trace]);
    } else if (row != nullptr) {
        addLine({.id = row->id, .line = lineNumber, .count = count}, entry, process);
    } else if (!cut.isCut) {
        mTraces[process->trace].strange.add(entry.text, lineNumber);
    }
    mTraces[process->trace].lastLine = lineNumber;
    process->wasOurs = true;
    process->lastTag = entry.tag;
    process->lastText = entry.text;
}

// The device's log leaves out what repeats ("identical 2 lines") or what a process writes too much
// of ("expire 30 lines"), and writes that as a line of the process.
void TraceCollector::addChatty(const LogEntry& entry, uint64_t lineNumber) {
    const auto known = mProcesses.find(entry.process);
    if (known == mProcesses.end() || entry.process < 0) {
        return;
    }
    Process& process = known->second;
    const uint64_t repeated = numberAfter("identical ", entry.text);
    if (repeated != 0 && process.wasOurs) {
        const std::string tag = process.lastTag;
        const std::string text = process.lastText;
        LogEntry again = entry;
        again.tag = tag;
        again.text = text;
        addOurs(again, lineNumber, repeated);
    } else {
        mTraces[process.trace].droppedLines += numberAfter("expire ", entry.text);
    }
}

void TraceCollector::add(const LogEntry& line, uint64_t lineNumber) {
    if (!line.buffer.empty()) {
        beginBuffer(line.buffer);
        return;
    }
    LogEntry entry = line;
    // A mail or a terminal adds blanks; only blanks may be an entry of the dump.
    if (const std::string_view text = withoutTrailing(entry.text, ' '); !text.empty()) {
        entry.text = text;
    }
    mHasHeaders |= !entry.tag.empty() || !entry.time.empty() || entry.process >= 0;
    noteTime(entry, lineNumber);
    if (entry.tag == "chatty") {
        addChatty(entry, lineNumber);
    } else if (entry.tag.empty() || isOurTag(entry.tag)) {
        addOurs(entry, lineNumber, 1);
    } else if (mentionsTag(entry.text)) {
        mUnread.add(entry.text, lineNumber);  // Another tool has put its header in front.
    } else if (const auto other = mProcesses.find(entry.process); other != mProcesses.end()) {
        other->second.wasOurs = false;
    }
}

}  // namespace kc2::tool
