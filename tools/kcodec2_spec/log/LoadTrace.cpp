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
constexpr size_t kMostShown = 5;         // Lines that are not understood, of a load.

// A load takes milliseconds: a line that is not there after this long was not written. In a log
// without times, this many lines are enough.
constexpr double kSecondsOfLoad = 10;
constexpr double kMostSecondsApart = 60;        // Two lines of one load.
constexpr double kSecondsPerDay = 24.0 * 3600;  // More: somebody has set the clock.
constexpr uint64_t kLinesOfLoad = 1000;

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
    const auto isIn = [&](std::string_view directory) { return path.starts_with(directory); };
    return (isIn(kOdmSpecDirectory) || isIn(kVendorSpecDirectory)) &&
           path.ends_with(kSystemSpecName);
}

// Without a tag only the library's own words show whose line it is, and some are common ones.
bool isOursWithoutTag(LineId id, std::string_view value) {
    switch (id) {
        case LineId::OpenFailed:
        case LineId::NothingOpened:
        case LineId::FallingBack:
            return isSpecPath(value) || value.starts_with(kFallbackSystemSpec);
        case LineId::Entry:
        case LineId::SkippedByCall:
            return false;
        default:
            return true;
    }
}

}  // namespace

const LoadEvent* LoadTrace::find(LineId id) const {
    const auto found = std::find_if(events.begin(), events.end(),
                                    [id](const LoadEvent& event) { return event.id == id; });
    return found != events.end() ? &*found : nullptr;
}

uint64_t LoadTrace::count(LineId id) const {
    uint64_t sum = 0;
    for (const LoadEvent& event : events) {
        sum += event.id == id ? event.count : 0;
    }
    return sum;
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

void TraceCollector::addValue(DumpedValue value, std::vector<DumpedValue>* values,
                              LoadTrace* trace) {
    if (spend(value.name.size() + value.value.size(), trace)) {
        values->push_back(std::move(value));
    }
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
    for (const Mark& mark : {mRecent, mEarlier}) {
        const std::optional<double> since = secondsBetween(mark.time, entry.time);
        const bool isOld = since ? *since >= kSecondsOfLoad && *since < kSecondsPerDay
                                 : entry.time.empty() && lineNumber - mark.line >= kLinesOfLoad;
        trace.lineBefore = trace.lineBefore == 0 && isOld ? mark.line : trace.lineBefore;
    }
    const bool isWaiting = process->isWaiting;
    *process = Process();
    process->isWaiting = isWaiting;
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
    if (!mBuffers.emplace(name).second) {
        mBuffers.clear();
        mBuffers.emplace(name);
        forgetProcesses();
    }
    constexpr size_t kMostBuffers = 100;
    if (mBuffers.size() > kMostBuffers) {
        mBuffers.clear();
    }
}

void TraceCollector::forgetProcesses() {
    mProcesses.clear();
    mWaiting.clear();
    mRecent = mEarlier = Mark();
    mLastTime.clear();
}

void TraceCollector::noteTime(const LogEntry& entry, uint64_t lineNumber) {
    if (const std::optional<double> since = secondsBetween(mLastTime, entry.time);
        since && *since < -kMostSecondsApart) {
        forgetProcesses();
    }
    for (size_t left = mWaiting.size(); left > 0; --left) {
        const auto [number, line] = mWaiting.front();
        Process& process = mProcesses.at(number);
        const std::optional<double> since = secondsBetween(process.lastTime, entry.time);
        const bool isLater =
                since ? *since >= kSecondsOfLoad : lineNumber - process.lastLine >= kLinesOfLoad;
        const bool hasGoneOn = process.lastLine != line;
        if (!isLater && !hasGoneOn) {
            break;  // The others wait for less long.
        }
        mWaiting.pop_front();
        process.isWaiting = !isLater;
        if (!isLater) {
            mWaiting.emplace_back(number, process.lastLine);
        } else if (!since || *since < kSecondsPerDay) {
            mTraces[process.trace].lineAfter = lineNumber;
        }
    }
    const std::optional<double> since = secondsBetween(mRecent.time, entry.time);
    if (mRecent.line == 0 ||
        (since ? *since >= kSecondsOfLoad : lineNumber - mRecent.line >= kLinesOfLoad)) {
        mEarlier = std::move(mRecent);
        mRecent = {std::string(entry.time), lineNumber};
    }
    mLastTime = entry.time;
}

// A store is loaded once per process: a line that cannot follow in the same load is that of another
// process, which was given the same number later.
void TraceCollector::splitIfNewLoad(const LoadEvent& event, const LogEntry& entry,
                                    Process* process) {
    const std::optional<double> since = secondsBetween(process->lastTime, entry.time);
    const bool isFarApart = since && *since > kMostSecondsApart;
    const size_t old = process->trace;
    // Get() has returned, or a component has written a dump.
    const bool isOver =
            mTraces[old].noCodecs.count != 0 ||
            (isOfLocation(event.id) && mTraces[old].dump.isStarted && !mTraces[old].dump.isOfLoad);
    if (!isFarApart && !isOver && process->position.follow(event)) {
        return;
    }
    std::vector<LoadEvent>& before = mTraces[old].events;
    // The line about the missing variant comes before the path that it leads to.
    const bool isAfterLookup = !isFarApart && event.value == defaultPath() && !before.empty() &&
                               before.back().id == LineId::NoVariant;
    if (!startTrace(entry, event.line, process)) {
        mTraces[old].isTooLong = true;
        return;
    }
    if (isAfterLookup) {
        std::vector<LoadEvent>& events = mTraces[old].events;
        LoadEvent moved = events.back();
        moved.count = 1;
        if (--events.back().count == 0) {
            events.pop_back();
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
    process->lastLine = event.line;
    trace.lineAfter = 0;
    if (!process->isWaiting) {
        process->isWaiting = true;
        mWaiting.emplace_back(entry.process, event.line);
    }
    if (!trace.events.empty()) {
        LoadEvent& last = trace.events.back();
        const bool isCounted = event.id == LineId::NoVariant || event.id == LineId::RowSkipped;
        if (isCounted && last.id == event.id) {
            last.count += event.count;
            return;
        }
    }
    if (spend(event.value.size() + event.reason.size() + event.document.size(), &trace)) {
        trace.events.push_back(std::move(event));
    }
}

void TraceCollector::addSkipped(const LogEntry& entry, uint64_t lineNumber, Process* process) {
    const SkippedText skipped = *matchSkipped(entry.text);
    addEvent({.id = LineId::Skipped,
              .line = lineNumber,
              .value = std::string(skipped.place),
              .reason = std::string(skipped.reason),
              .document = std::string(skipped.document)},
             entry, process);
}

// The dump of a load follows the line with the path, which the same bit of the level word lets
// through. Any other may be of a component that calls printSpecifications() at any time.
void TraceCollector::startDump(LineId first, const LogEntry& entry, uint64_t lineNumber,
                               Process* process) {
    const std::optional<double> since = secondsBetween(process->lastTime, entry.time);
    const bool isFarApart = since && *since > kMostSecondsApart;
    const bool isOfLoad = first == LineId::CodecsHeading ||
                          (!isFarApart && mTraces[process->trace].find(LineId::Parsing) != nullptr);
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
    const auto section = static_cast<Section>(
            1 + (std::find(std::begin(kHeadings), std::end(kHeadings), id) - kHeadings));
    if (mTraces[process->trace].dump.isStarted && section <= process->section) {
        ++mTraces[process->trace].laterDumps;  // A component has called printSpecifications().
        process->section = Section::Later;
        return;
    }
    if (process->section == Section::Later) {
        return;
    }
    if (!mTraces[process->trace].dump.isStarted) {
        startDump(id, entry, lineNumber, process);
    }
    Dump& dump = mTraces[process->trace].dump;
    for (int lost = static_cast<int>(process->section) + 1; lost < static_cast<int>(section);
         ++lost) {
        const bool isFirst = dump.lostHeadings.empty();
        dump.lostHeadings += isFirst ? "" : ", ";
        dump.lostHeadings += logLine(kHeadings[lost - 1]).text;
    }
    dump.hasCodecsHeading |= id == LineId::CodecsHeading;
    process->section = section;
}

void TraceCollector::addDumpEntry(const LogEntry& entry, uint64_t lineNumber, Process* process) {
    if (process->section == Section::None && !mTraces[process->trace].dump.isStarted) {
        startDump(LineId::Entry, entry, lineNumber, process);
    }
    LoadTrace& trace = mTraces[process->trace];
    Dump& dump = trace.dump;
    const std::string_view text =
            entry.text.substr(literalsOf(logLine(LineId::Entry).text).front().size());
    const std::optional<NamedEntry> named = matchNamed(text);
    const bool isOfFeatures = process->section == Section::Features;
    const bool isOfPresets = process->section == Section::Presets;
    const auto addNamed = [&](std::vector<DumpedValue>* values) {
        addValue({std::string(named->name), std::string(named->value), lineNumber}, values, &trace);
    };
    if (named && process->section <= Section::Presets) {
        const bool isFeature = fits(*named, LineId::Feature);
        const bool isPreset = fits(*named, LineId::Preset);
        if (isOfFeatures && isPreset && !isFeature) {
            dump.lostHeadings = logLine(LineId::PresetsHeading).text;
            process->section = Section::Presets;
        }
        const bool isUnplaced = process->section == Section::None && isFeature == isPreset;
        addNamed(isUnplaced                                           ? &dump.unplaced
                 : process->section == Section::Presets               ? &dump.presets
                 : process->section == Section::Features || isFeature ? &dump.features
                                                                      : &dump.presets);
    } else if (isOfFeatures || isOfPresets) {
        addCut(entry.text, lineNumber, false, &trace);
    } else if (process->section != Section::Later) {
        std::vector<DumpedValue>* const lists[] = {&dump.unplaced, nullptr,       nullptr,
                                                   &dump.filters,  &dump.plugins, &dump.codecs};
        addValue({std::string(text), "", lineNumber}, lists[static_cast<size_t>(process->section)],
                 &trace);
    }
}

namespace {

void addShown(std::string_view text, uint64_t lineNumber, std::map<std::string, uint64_t>* shown,
              uint64_t* count) {
    ++*count;
    if (shown->size() < kMostShown) {
        shown->emplace(text, lineNumber);
    }
}

}  // namespace

void TraceCollector::addStrange(std::string_view text, uint64_t lineNumber, LoadTrace* trace) {
    addShown(text, lineNumber, &trace->strangeLines, &trace->strangeCount);
}

void TraceCollector::addCut(std::string_view text, uint64_t lineNumber, bool isFault,
                            LoadTrace* trace) {
    trace->hasCutFault |= isFault;
    addShown(text.empty() ? "(nothing after the tag)" : text, lineNumber, &trace->cutLines,
             &trace->cutCount);
}

void TraceCollector::addUnread(std::string_view text, uint64_t lineNumber) {
    if (mUnreadCount++ == 0) {
        mFirstUnread = text;
        mFirstUnreadLine = lineNumber;
    }
}

// What was asked of the store or the formats: any thread may ask, also while another one loads, and
// long after the load.
void TraceCollector::addCall(LineId id, const LogEntry& entry, uint64_t lineNumber, uint64_t count,
                             LoadTrace* trace) {
    const auto add = [&](auto* calls, const auto& key, size_t bytes) {
        const auto known = calls->find(key);
        if (known != calls->end()) {
            known->second.count += count;
        } else if (spend(bytes, trace)) {
            calls->emplace(key, Call{lineNumber, count});
        }
    };
    const LineValues values = match(logLine(id).text, entry.text).value_or(LineValues());
    const auto text = [&](size_t i) {
        return i < values.size() ? std::string(values[i]) : std::string();
    };
    switch (id) {
        case LineId::UnknownFormat:
            return add(&trace->unknownFormats, text(0), text(0).size());
        case LineId::MissingPlane:
            return add(&trace->missingPlanes, std::pair(text(0), text(1)), entry.text.size());
        case LineId::BadDescriptor:
            return add(&trace->badDescriptors, text(0), text(0).size());
        case LineId::SkippedByCall: {
            const SkippedText skipped = *matchSkipped(entry.text);
            return add(&trace->skippedByCall, fmt::format("{}: {}", skipped.place, skipped.reason),
                       entry.text.size());
        }
        default:
            trace->noCodecs.line = trace->noCodecs.count == 0 ? lineNumber : trace->noCodecs.line;
            trace->noCodecs.count += count;
            // Get() has returned: the load is over.
            trace->lineAfter = trace->lineAfter == 0 ? lineNumber : trace->lineAfter;
            return;
    }
}

// The line after "Failed to open ", where it may be cut: of which row it is.
LoadEvent TraceCollector::pathEvent(LineId id, std::string_view path, uint64_t lineNumber,
                                    const LoadTrace& trace) {
    LoadEvent event = {.id = id, .line = lineNumber, .value = std::string(path)};
    const std::string_view fallback = kFallbackSystemSpec;
    if (id == LineId::OpenFailed) {
        const bool isFallback = path.starts_with(fallback) ||
                                (fallback.starts_with(path) &&
                                 !std::string_view(kVendorSpecDirectory).starts_with(path));
        const bool isAfterFalling = trace.find(LineId::FallingBack) != nullptr;
        if (isFallback || (isAfterFalling && fallback.starts_with(path))) {
            event.id = LineId::NothingOpened;
            event.isCut = true;
            return event;
        }
    }
    event.isCut = id == LineId::Parsing || id == LineId::OpenFailed ? !isSpecPath(path)
                                                                    : path != fallback;
    return event;
}

void TraceCollector::addLine(LineId id, const LogEntry& entry, uint64_t lineNumber, uint64_t count,
                             Process* process) {
    const LineValues values = match(logLine(id).text, entry.text).value_or(LineValues());
    const std::string first(values.empty() ? std::string_view() : values.front());
    switch (id) {
        case LineId::Entry:
            return addDumpEntry(entry, lineNumber, process);
        case LineId::Parsing:
        case LineId::OpenFailed:
        case LineId::FallingBack:
        case LineId::NothingOpened:
            addEvent(pathEvent(id, first, lineNumber, mTraces[process->trace]), entry, process);
            break;
        case LineId::NoVariant:
        case LineId::StreamRejected:
        case LineId::BuiltInRejected:
        case LineId::RowSkipped:
        case LineId::EncoderFilter:
            addEvent({.id = id, .line = lineNumber, .value = first, .count = count}, entry,
                     process);
            break;
        case LineId::Skipped:
            addSkipped(entry, lineNumber, process);
            break;
        default:
            return addHeading(id, entry, lineNumber, process);
    }
    if (process->section != Section::None) {
        process->section =
                Section::Later;  // The dump has ended: later entries do not belong to it.
    }
}

void TraceCollector::addOurs(const LogEntry& entry, uint64_t lineNumber, uint64_t count) {
    const LogLine* row = rowOf(entry.tag, entry.text);
    const CutText cut =
            row == nullptr ? matchCut(entry.tag, entry.priority, entry.text) : CutText();
    row = cut.row != nullptr ? cut.row : row;
    const auto known = mProcesses.find(entry.process);
    if (entry.tag.empty()) {
        const bool isInDump = known != mProcesses.end() && known->second.section != Section::None &&
                              known->second.section != Section::Later;
        const bool isRaw = entry.process < 0 && entry.time.empty();
        const LineValues values =
                row != nullptr ? match(row->text, entry.text).value_or(LineValues()) : LineValues();
        const bool isOurs = row != nullptr && !cut.isCut &&
                            ((row->id == LineId::Entry && isInDump) ||
                             isOursWithoutTag(row->id, values.empty() ? "" : values.front()));
        if (!isOurs || (isRaw && mHasHeaders)) {
            if (isRaw && (isOurs || mentionsLibrary(entry.text))) {
                addUnread(entry.text, lineNumber);
            }
            return;
        }
    }
    Process* const process = processOf(entry, lineNumber);
    if (process == nullptr) {
        return;
    }
    if (cut.isCut) {
        addCut(entry.text, lineNumber, cut.isFault && row == nullptr, &mTraces[process->trace]);
    }
    if (row != nullptr && isOfCall(row->id)) {
        addCall(row->id, entry, lineNumber, count, &mTraces[process->trace]);
    } else if (row != nullptr) {
        addLine(row->id, entry, lineNumber, count, process);
    } else if (!cut.isCut) {
        addStrange(entry.text, lineNumber, &mTraces[process->trace]);
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
    const auto numberAfter = [&](std::string_view word) {
        uint64_t number = 0;
        const size_t at = entry.text.rfind(word);
        if (at != std::string_view::npos) {
            const std::string_view rest = entry.text.substr(at + word.size());
            std::from_chars(rest.data(), rest.data() + rest.size(), number);
        }
        return number;
    };
    Process& process = known->second;
    if (const uint64_t repeated = numberAfter("identical "); repeated != 0 && process.wasOurs) {
        LogEntry again = entry;
        const std::string tag = process.lastTag;
        const std::string text = process.lastText;
        again.tag = tag;
        again.text = text;
        addOurs(again, lineNumber, repeated);
    } else if (const uint64_t dropped = numberAfter("expire "); dropped != 0) {
        mTraces[process.trace].droppedLines += dropped;
    }
}

void TraceCollector::add(const LogEntry& line, uint64_t lineNumber) {
    LogEntry entry = line;
    // A mail or a terminal adds blanks; only blanks may be an entry of the dump.
    if (const std::string_view text = withoutTrailing(entry.text, ' '); !text.empty()) {
        entry.text = text;
    }
    if (!entry.buffer.empty()) {
        beginBuffer(entry.buffer);
        return;
    }
    mHasHeaders |= !entry.tag.empty() || !entry.time.empty() || entry.process >= 0;
    noteTime(entry, lineNumber);
    if (entry.tag == "chatty") {
        addChatty(entry, lineNumber);
    } else if (entry.tag.empty() || isOurTag(entry.tag)) {
        addOurs(entry, lineNumber, 1);
    } else if (mentionsTag(entry.text)) {
        addUnread(entry.text, lineNumber);  // Another tool has put its header in front.
    } else if (const auto other = mProcesses.find(entry.process); other != mProcesses.end()) {
        other->second.wasOurs = false;
    }
}

}  // namespace kc2::tool
