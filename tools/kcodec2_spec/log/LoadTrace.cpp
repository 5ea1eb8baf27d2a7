// The library's lines of a log, sorted by process and load.

#include "log/LoadTrace.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

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
    return id == LineId::SkippedByCall || id >= LineId::NoCodecs;
}

bool isOfLocation(LineId id) {
    return id >= LineId::Parsing && id <= LineId::NothingOpened;
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

bool isFarApart(std::string_view earlier, std::string_view later) {
    const std::optional<double> since = secondsBetween(earlier, later);
    return since && *since > kMostSecondsApart;
}

// Notes whether the line of an event with a path is cut. "Failed to open " may be of two rows.
void noteCut(const LoadTrace& trace, LoadEvent* event) {
    const std::string_view fallback = kFallbackSystemSpec;
    const std::string_view path = event->value;
    const bool isSpec = event->id == LineId::Parsing || event->id == LineId::OpenFailed;
    event->isCut = isSpec ? !isSpecPath(path) : path != fallback;
    const bool isCutFallback = fallback.starts_with(path) &&
                               (trace.find(LineId::FallingBack) != nullptr ||
                                !std::string_view(kVendorSpecDirectory).starts_with(path));
    if (event->id == LineId::OpenFailed && (path.starts_with(fallback) || isCutFallback)) {
        event->id = LineId::NothingOpened;
    }
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

void Call::add(const LogEntry& entry) {
    line = count == 0 ? entry.line : line;
    count += entry.count;
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

uint64_t LoadTrace::lineOf(LineId id) const {
    const LoadEvent* const event = find(id);
    return event != nullptr ? event->line : 0;
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

bool TraceCollector::startTrace(const LogEntry& entry, Process* process) {
    constexpr size_t kBytesPerTrace = 4 * kLongestLogLine;
    if (!spend(kBytesPerTrace, nullptr)) {
        return false;
    }
    LoadTrace& trace = mTraces.emplace_back();
    trace.process = entry.process;
    trace.firstTime = entry.time;
    trace.firstLine = entry.line;
    trace.lineBefore = mSeconds >= kSecondsOfLoad ? mFirstLine : 0;
    *process = {.trace = &trace};
    return true;
}

// Null where nothing more can be kept.
TraceCollector::Process* TraceCollector::processOf(const LogEntry& entry) {
    const auto [place, isNew] = mProcesses.try_emplace(entry.process);
    if (isNew && !startTrace(entry, &place->second)) {
        mProcesses.erase(place);
        return nullptr;
    }
    return &place->second;
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

void TraceCollector::noteTime(const LogEntry& entry) {
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
    mFirstLine = mFirstLine == 0 ? entry.line : mFirstLine;
    mLastLine = entry.line;
    if (!entry.time.empty()) {
        mLastTime = entry.time;
    }
}

// A store is loaded once per process: a line that cannot follow in the same load is that of another
// process, which was given the same number later.
void TraceCollector::splitIfNewLoad(const LoadEvent& event, const LogEntry& entry,
                                    Process* process) {
    LoadTrace& old = *process->trace;
    const bool isApart = isFarApart(process->lastTime, entry.time);
    // Get() has returned, or a component has written a dump.
    const bool isOver = old.noCodecs.count != 0 ||
                        (isOfLocation(event.id) && old.dump.isStarted && !old.dump.isOfLoad);
    if (!isApart && !isOver && process->position.follow(event)) {
        return;
    }
    if (!startTrace(entry, process)) {
        old.isTooLong = true;
        return;
    }
    // The line about the missing variant comes before the path that it leads to.
    if (!isApart && event.value == defaultPath() && !old.events.empty() &&
        old.events.back().id == LineId::NoVariant) {
        LoadEvent moved = old.events.back();
        moved.line = moved.lastLine;
        moved.count = 1;
        if (--old.events.back().count == 0) {
            old.events.pop_back();
        }
        old.lastLine = old.lastLine == moved.line ? old.lineBeforeLast : old.lastLine;
        process->position.follow(moved);
        process->trace->firstLine = moved.line;
        process->trace->events.push_back(std::move(moved));
    }
    process->position.follow(event);
}

void TraceCollector::addEvent(LoadEvent event, const LogEntry& entry, Process* process) {
    splitIfNewLoad(event, entry, process);
    LoadTrace& trace = *process->trace;
    process->lastTime = entry.time;
    trace.lineAfter = 0;
    trace.lastSeconds = mSeconds;
    const bool isCounted = event.id == LineId::NoVariant || event.id == LineId::RowSkipped;
    if (isCounted && !trace.events.empty() && trace.events.back().id == event.id) {
        trace.events.back().count += event.count;
        trace.events.back().lastLine = event.line;
    } else if (spend(event.value.size() + event.reason.size() + event.document.size(), &trace)) {
        event.lastLine = event.line;
        trace.events.push_back(std::move(event));
    }
}

// The dump of a load follows the line with the path, which the same bit of the level word lets
// through. Any other may be of a component that calls printSpecifications() at any time.
void TraceCollector::startDump(LineId first, const LogEntry& entry, Process* process) {
    const bool isOfLoad =
            first == LineId::CodecsHeading || (!isFarApart(process->lastTime, entry.time) &&
                                               process->trace->find(LineId::Parsing) != nullptr);
    if (isOfLoad) {
        addEvent({.id = LineId::FeaturesHeading, .line = entry.line}, entry, process);
    }
    Dump& dump = process->trace->dump;
    dump.isStarted = true;
    dump.isOfLoad = isOfLoad;
    dump.isWhole = first == LineId::FeaturesHeading;
    dump.line = entry.line;
}

void TraceCollector::addHeading(const DumpPart& part, const LogEntry& entry, Process* process) {
    if (process->trace->dump.isStarted && part.section <= process->section) {
        ++process->trace->laterDumps;  // A component has called printSpecifications().
        process->section = DumpSection::Later;
    }
    if (process->section == DumpSection::Later) {
        return;
    }
    if (!process->trace->dump.isStarted) {
        startDump(part.heading, entry, process);
    }
    Dump& dump = process->trace->dump;
    for (const DumpPart& lost : kDumpParts) {
        if (lost.section > process->section && lost.section < part.section) {
            dump.lostHeadings += dump.lostHeadings.empty() ? "" : ", ";
            dump.lostHeadings += logLine(lost.heading).text;
        }
    }
    dump.hasCodecsHeading |= part.section == DumpSection::Codecs;
    process->section = part.section;
}

void TraceCollector::addDumpEntry(const LogEntry& entry, Process* process) {
    if (process->section == DumpSection::None && !process->trace->dump.isStarted) {
        startDump(LineId::Entry, entry, process);
    }
    DumpSection section = process->section;
    if (section == DumpSection::Later) {
        return;
    }
    LoadTrace& trace = *process->trace;
    const std::string_view text = firstValue(logLine(LineId::Entry), entry.text);
    const std::optional<NamedEntry> named = matchNamed(text);
    const bool isFeature = named && fits(*named, LineId::Feature);
    const bool isPreset = named && fits(*named, LineId::Preset);
    if (section == DumpSection::Features && isPreset && !isFeature) {
        trace.dump.lostHeadings = logLine(LineId::PresetsHeading).text;
        process->section = section = DumpSection::Presets;
    } else if (section == DumpSection::None && isFeature != isPreset) {
        section = isFeature ? DumpSection::Features : DumpSection::Presets;
    }
    const bool isNamed = section == DumpSection::Features || section == DumpSection::Presets;
    if (isNamed && !named) {
        trace.cut.add(entry.text, entry.line);
        return;
    }
    DumpedValue value = {std::string(text), "", entry.line};
    if (named && section <= DumpSection::Presets) {
        value = {std::string(named->name), std::string(named->value), entry.line};
    }
    if (spend(text.size(), &trace)) {
        trace.dump.of(section).push_back(std::move(value));
    }
}

// What was asked of the store or the formats: any thread may ask, also while another one loads, and
// long after the load.
void TraceCollector::addCall(LineId id, const LogEntry& entry, LoadTrace* trace) {
    if (id == LineId::NoCodecs) {
        trace->noCodecs.add(entry);
        // Get() has returned: the load is over.
        trace->lineAfter = trace->lineAfter == 0 ? entry.line : trace->lineAfter;
        return;
    }
    const std::pair asked(id, std::string(entry.text));
    if (trace->calls.count(asked) != 0 || spend(entry.text.size(), trace)) {
        trace->calls[asked].add(entry);
    }
}

void TraceCollector::addLine(LineId id, const LogEntry& entry, Process* process) {
    if (id == LineId::Entry) {
        return addDumpEntry(entry, process);
    }
    for (const DumpPart& part : kDumpParts) {
        if (id == part.heading) {
            return addHeading(part, entry, process);
        }
    }
    LoadEvent event = {.id = id, .line = entry.line, .count = entry.count};
    if (id == LineId::Skipped) {
        const SkippedText skipped = *matchSkipped(entry.text);
        event.value = skipped.place;
        event.reason = skipped.reason;
        event.document = skipped.document;
    } else {
        event.value = firstValue(logLine(id), entry.text);
    }
    if (isOfLocation(id)) {
        noteCut(*process->trace, &event);
    }
    addEvent(std::move(event), entry, process);
    if (process->section != DumpSection::None) {
        process->section = DumpSection::Later;  // Later entries do not belong to the dump.
    }
}

// Whether a line without a tag is the library's: only its own words show that, and some are common.
bool TraceCollector::isOurs(const LogEntry& entry, const LogLine& row) const {
    if (row.id == LineId::Entry) {
        const auto process = mProcesses.find(entry.process);
        return process != mProcesses.end() && process->second.section != DumpSection::None &&
               process->second.section != DumpSection::Later;
    }
    const std::string_view path = firstValue(row, entry.text);
    return row.id != LineId::SkippedByCall &&
           (row.id == LineId::Parsing || !isOfLocation(row.id) || isSpecPath(path) ||
            path.starts_with(kFallbackSystemSpec));
}

void TraceCollector::addOurs(const LogEntry& entry) {
    const LogLine* row = rowOf(entry.tag, entry.text);
    const CutText cut = row == nullptr && !entry.tag.empty()
                                ? matchCut(entry.tag, entry.priority, entry.text)
                                : CutText();
    row = cut.row != nullptr ? cut.row : row;
    if (entry.tag.empty()) {
        const bool isRaw = entry.process < 0 && entry.time.empty();
        const bool isOurLine = row != nullptr && isOurs(entry, *row);
        if (isRaw && (mHasHeaders || !isOurLine) && (isOurLine || mentionsLibrary(entry.text))) {
            mUnread.add(entry.text, entry.line);
        }
        if (!isOurLine || (isRaw && mHasHeaders)) {
            return;
        }
    }
    Process* const process = processOf(entry);
    if (process == nullptr) {
        return;
    }
    if (cut.isCut) {
        process->trace->cut.add(entry.text, entry.line);
        process->trace->hasCutFault |= cut.isFault && row == nullptr;
    }
    if (row != nullptr && isOfCall(row->id)) {
        addCall(row->id, entry, process->trace);
    } else if (row != nullptr) {
        addLine(row->id, entry, process);
    } else if (!cut.isCut) {
        process->trace->strange.add(entry.text, entry.line);
    }
    process->trace->lineBeforeLast = std::exchange(process->trace->lastLine, entry.line);
    process->last.emplace(entry.tag, entry.text);
}

// The device's log leaves out what repeats ("identical 2 lines") or what a process writes too much
// of ("expire 30 lines"), and writes that as a line of the process.
void TraceCollector::addChatty(LogEntry entry) {
    const auto known = mProcesses.find(entry.process);
    if (known == mProcesses.end() || entry.process < 0) {
        return;
    }
    const Process& process = known->second;
    const uint64_t repeated = numberAfter("identical ", entry.text);
    if (repeated != 0 && process.last) {
        const auto [tag, text] = *process.last;
        entry.tag = tag;
        entry.text = text;
        entry.count = repeated;
        addOurs(entry);
    } else {
        process.trace->droppedLines += numberAfter("expire ", entry.text);
    }
}

void TraceCollector::add(LogEntry entry) {
    if (!entry.buffer.empty()) {
        beginBuffer(entry.buffer);
        return;
    }
    // A mail or a terminal adds blanks; only blanks may be an entry of the dump.
    if (const std::string_view text = withoutTrailing(entry.text, ' '); !text.empty()) {
        entry.text = text;
    }
    mHasHeaders |= !entry.tag.empty() || !entry.time.empty() || entry.process >= 0;
    noteTime(entry);
    if (entry.tag == "chatty") {
        addChatty(entry);
    } else if (entry.tag.empty() || isOurTag(entry.tag)) {
        addOurs(entry);
    } else if (mentionsTag(entry.text)) {
        mUnread.add(entry.text, entry.line);  // Another tool has put its header in front.
    } else if (const auto other = mProcesses.find(entry.process); other != mProcesses.end()) {
        other->second.last.reset();
    }
}

}  // namespace kc2::tool
