// The library's lines of a log, sorted by process and load.

#include "log/LoadStory.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "base/Text.h"
#include "device/DevicePaths.h"

namespace kc2::tool {

namespace {

// What is kept of a log; beyond it lines are counted only. A real one needs some kilobytes.
constexpr size_t kMostKeptBytes = size_t{32} << 20;
constexpr size_t kBytesPerRecord = 200;  // Beside its texts.
constexpr size_t kMostStrangeLines = 5;  // Shown of a load.

// The words that may name a document in a line, as the library writes them.
constexpr std::string_view kDocumentWords[] = {"system spec", "private file", "built-in document"};

std::string defaultPath() {
    return std::string(kVendorSpecDirectory) + kSystemSpecName;
}

// A skipped value's line with or without the document: "Skipped PLACE in DOCUMENT: REASON".
std::optional<LogEvent> matchSkipped(std::string_view text, uint64_t lineNumber) {
    const std::string_view format = logLine(LineId::Skipped).text;
    const std::string_view start = format.substr(0, format.find('%'));
    const size_t colon = text.rfind(": ");
    if (!text.starts_with(start) || colon == std::string_view::npos || colon < start.size()) {
        return std::nullopt;
    }
    LogEvent event = {.id = LineId::Skipped, .line = lineNumber};
    event.reason = text.substr(colon + 2);
    std::string_view place = text.substr(start.size(), colon - start.size());
    constexpr std::string_view kIn = " in ";
    const size_t in = place.rfind(kIn);
    if (in != std::string_view::npos) {
        const std::string_view document = place.substr(in + kIn.size());
        for (const std::string_view words : kDocumentWords) {
            if (document.find(words) != std::string_view::npos) {
                event.document = document;
                place = place.substr(0, in);
                break;
            }
        }
    }
    event.place = place;
    return event;
}

// Which row a text belongs to. Texts without placeholder come before those that might hold them,
// and of two that match the longer one is meant ("... Exit!").
const LogLine* rowOf(std::string_view tag, std::string_view text) {
    const LogLine* best = nullptr;
    for (const LogLine& line : logLines()) {
        if ((!tag.empty() && tag != line.tag) || line.id == LineId::Feature ||
            line.id == LineId::Preset || line.id == LineId::SkippedByCall) {
            continue;  // They look like an entry, or like a line that names its document.
        }
        const bool isMatch = line.id == LineId::Skipped ? matchSkipped(text, 0).has_value()
                                                        : match(line.text, text).has_value();
        if (isMatch && (best == nullptr ||
                        std::string_view(line.text).size() > std::string_view(best->text).size())) {
            best = &line;
        }
    }
    return best;
}

// Whether `text` is the start of a line of the table, cut before its end.
bool isCutLine(std::string_view tag, std::string_view text) {
    constexpr size_t kEnough = 4;  // Fewer letters might be anybody's.
    return text.size() >= kEnough &&
           std::any_of(logLines().begin(), logLines().end(), [&](const LogLine& line) {
               return (tag.empty() || tag == line.tag) &&
                      literalsOf(line.text).front().starts_with(text);
           });
}

bool isOurTag(std::string_view tag) {
    return std::any_of(logLines().begin(), logLines().end(),
                       [tag](const LogLine& line) { return tag == line.tag; });
}

// "name : 5" of the dump, without the blanks before it; `width` is that of the name with its
// blanks.
struct NamedEntry {
    std::string_view name;
    std::string_view value;
    size_t width;
};

std::optional<NamedEntry> namedEntryOf(std::string_view entry) {
    const size_t colon = entry.rfind(" : ");
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view value = entry.substr(colon + 3);
    int32_t number = 0;
    const auto read = std::from_chars(value.data(), value.data() + value.size(), number);
    if (read.ec != std::errc() || read.ptr != value.data() + value.size()) {
        return std::nullopt;
    }
    return NamedEntry{withoutTrailing(entry.substr(0, colon), ' '), value, colon};
}

bool isFinding(const LogEvent& event) {
    return event.id != LineId::NoVariant;
}

}  // namespace

uint64_t LoadStory::count(LineId id) const {
    uint64_t sum = 0;
    for (const LogEvent& event : events) {
        sum += event.id == id ? event.count : 0;
    }
    return sum;
}

bool LoadStory::hasLoad() const {
    return !events.empty() || !parsingPath.empty() || failedLine != 0 || fallbackLine != 0 ||
           nothingOpenedLine != 0 || dump.isStarted;
}

std::string LoadStory::firstPath() const {
    if (!parsingPath.empty()) {
        return parsingPath;
    }
    if (!failedPath.empty()) {
        return failedPath;
    }
    return count(LineId::NoVariant) != 0 ? defaultPath() : std::string();
}

bool StoryCollector::spend(size_t bytes, LoadStory* story) {
    if (mKeptBytes + bytes + kBytesPerRecord > kMostKeptBytes) {
        mIsTooLong = true;
        if (story != nullptr) {
            story->isTooLong = true;
        }
        return false;
    }
    mKeptBytes += bytes + kBytesPerRecord;
    return true;
}

void StoryCollector::addEvent(LogEvent event, LoadStory* story) {
    if (!story->events.empty()) {
        LogEvent& last = story->events.back();
        const bool isCounted = event.id == LineId::NoVariant || event.id == LineId::RowSkipped;
        if (isCounted && last.id == event.id) {
            last.count += event.count;
            return;
        }
    }
    if (spend(event.place.size() + event.reason.size() + event.document.size(), story)) {
        story->events.push_back(std::move(event));
    }
}

void StoryCollector::addValue(DumpedValue value, std::vector<DumpedValue>* values,
                              LoadStory* story) {
    if (spend(value.name.size() + value.value.size(), story)) {
        values->push_back(std::move(value));
    }
}

bool StoryCollector::startStory(const LogEntry& entry, uint64_t lineNumber, Process* process) {
    constexpr size_t kBytesPerStory = 4 * kLongestLogLine;
    if (!spend(kBytesPerStory, nullptr)) {
        return false;
    }
    LoadStory story;
    story.process = entry.process;
    story.firstTime = entry.time;
    story.firstLine = lineNumber;
    process->story = mStories.size();
    process->section = Section::None;
    mStories.push_back(std::move(story));
    return true;
}

StoryCollector::Process* StoryCollector::processOf(const LogEntry& entry, uint64_t lineNumber) {
    const auto known = mProcesses.find(entry.process);
    if (known != mProcesses.end()) {
        return &known->second;
    }
    Process process = {};
    if (!startStory(entry, lineNumber, &process)) {
        return nullptr;
    }
    return &mProcesses.emplace(entry.process, std::move(process)).first->second;
}

namespace {

// A store is loaded once per process, so a line that cannot come after what is there belongs to
// another process that was given the same number later.
bool beginsNewLoad(LineId id, std::string_view path, const LoadStory& story) {
    const bool isAfterFindings = std::any_of(story.events.begin(), story.events.end(), isFinding) ||
                                 story.noCodecsCalls != 0;
    const bool isAfterOpening = story.failedLine != 0 || story.fallbackLine != 0 ||
                                story.nothingOpenedLine != 0 || isAfterFindings;
    const bool isVariantMissingAgain = path == defaultPath() && story.count(LineId::NoVariant) > 1;
    switch (id) {
        case LineId::Parsing:
            return story.parsingLine != 0 || isAfterOpening || isVariantMissingAgain;
        case LineId::OpenFailed:
            return isAfterOpening || isVariantMissingAgain;
        case LineId::FallingBack:
            return story.fallbackLine != 0 || story.nothingOpenedLine != 0 || isAfterFindings;
        case LineId::NothingOpened:
            return story.nothingOpenedLine != 0 || isAfterFindings;
        case LineId::StreamRejected:
            return story.count(id) + (story.nothingOpenedLine != 0 ? 1 : 0) >= 2;
        default:
            return false;
    }
}

}  // namespace

void StoryCollector::splitIfNewLoad(LineId id, std::string_view path, const LogEntry& entry,
                                    uint64_t lineNumber, Process* process) {
    if (!beginsNewLoad(id, path, mStories[process->story])) {
        return;
    }
    const size_t old = process->story;
    if (!startStory(entry, lineNumber, process)) {
        return;
    }
    // The line about the missing variant comes before the path that it leads to.
    std::vector<LogEvent>& events = mStories[old].events;
    if (path == defaultPath() && !events.empty() && events.back().id == LineId::NoVariant) {
        LogEvent moved = events.back();
        moved.count = 1;
        if (--events.back().count == 0) {
            events.pop_back();
        }
        mStories[process->story].events.push_back(std::move(moved));
    }
}

void StoryCollector::takeHeading(LineId id, uint64_t lineNumber, Process* process) {
    LoadStory& story = mStories[process->story];
    if (id == LineId::FeaturesHeading && story.dump.isStarted) {
        ++story.laterDumps;  // A component has called printSpecifications().
        process->section = Section::Later;
        return;
    }
    if (process->section == Section::Later) {
        return;
    }
    if (!story.dump.isStarted) {
        story.dump.isStarted = true;
        story.dump.isWhole = id == LineId::FeaturesHeading;
        addEvent({.id = LineId::FeaturesHeading, .line = lineNumber}, &story);
    }
    switch (id) {
        case LineId::FeaturesHeading:
            process->section = Section::Features;
            break;
        case LineId::PresetsHeading:
            process->section = Section::Presets;
            break;
        case LineId::FiltersHeading:
            process->section = Section::Filters;
            break;
        case LineId::PluginsHeading:
            process->section = Section::Plugins;
            break;
        default:
            process->section = Section::Codecs;
            story.dump.hasCodecsHeading = true;
            break;
    }
}

void StoryCollector::takeDumpEntry(std::string_view text, uint64_t lineNumber, Process* process) {
    LoadStory& story = mStories[process->story];
    const std::string_view entry =
            text.substr(literalsOf(logLine(LineId::Entry).text).front().size());
    const std::optional<NamedEntry> named = namedEntryOf(entry);
    Dump& dump = story.dump;
    if (process->section == Section::None && !dump.isStarted) {
        dump.isStarted = true;  // Its start is cut off.
        addEvent({.id = LineId::FeaturesHeading, .line = lineNumber}, &story);
    }
    const auto addNamed = [&](std::vector<DumpedValue>* values) {
        if (named) {
            addValue({std::string(named->name), std::string(named->value), lineNumber}, values,
                     &story);
        } else {
            ++story.cutLines;
        }
    };
    const auto addName = [&](std::vector<DumpedValue>* values) {
        addValue({std::string(entry), "", lineNumber}, values, &story);
    };
    switch (process->section) {
        case Section::None:
            return named && named->width == 25   ? addNamed(&dump.features)
                   : named && named->width == 35 ? addNamed(&dump.presets)
                                                 : addName(&dump.unplaced);
        case Section::Features:
            return addNamed(&dump.features);
        case Section::Presets:
            return addNamed(&dump.presets);
        case Section::Filters:
            return addName(&dump.filters);
        case Section::Plugins:
            return addName(&dump.plugins);
        case Section::Codecs:
            return addName(&dump.codecs);
        case Section::Later:
            return;
    }
}

void StoryCollector::takeStrange(std::string_view text, uint64_t lineNumber, LoadStory* story) {
    ++story->strangeCount;
    if (story->strangeLines.size() < kMostStrangeLines && spend(text.size(), story)) {
        story->strangeLines.emplace(text, lineNumber);
    }
}

// What was asked of the store or the formats: any thread may ask, also while another one loads.
void StoryCollector::takeCall(LineId id, const Values& values, uint64_t lineNumber, uint64_t count,
                              LoadStory* story) {
    const auto add = [&](auto* calls, const auto& key, size_t bytes) {
        const auto known = calls->find(key);
        if (known != calls->end()) {
            known->second.second += count;
        } else if (spend(bytes, story)) {
            calls->emplace(key, std::pair(lineNumber, count));
        }
    };
    const auto text = [&](size_t i) {
        return i < values.size() ? std::string(values[i]) : std::string();
    };
    switch (id) {
        case LineId::UnknownFormat:
            add(&story->unknownFormats, text(0), text(0).size());
            break;
        case LineId::MissingPlane:
            add(&story->missingPlanes, std::pair(text(0), text(1)),
                text(0).size() + text(1).size());
            break;
        case LineId::BadDescriptor:
            add(&story->badDescriptors, text(0), text(0).size());
            break;
        default:
            story->noCodecsLine = story->noCodecsCalls == 0 ? lineNumber : story->noCodecsLine;
            story->noCodecsCalls += count;
            break;
    }
}

// A line of the road to the system spec document.
void StoryCollector::takePath(LineId id, std::string path, uint64_t lineNumber, LoadStory* story) {
    switch (id) {
        case LineId::Parsing:
            story->parsingPath = std::move(path);
            story->parsingLine = lineNumber;
            break;
        case LineId::OpenFailed:
            story->failedPath = std::move(path);
            story->failedLine = lineNumber;
            break;
        case LineId::FallingBack:
            story->fallbackPath = std::move(path);
            story->fallbackLine = lineNumber;
            break;
        default:
            story->fallbackPath = kFallbackSystemSpec;
            story->nothingOpenedLine = lineNumber;
            break;
    }
}

void StoryCollector::takeLine(LineId id, const LogEntry& entry, uint64_t lineNumber, uint64_t count,
                              Process* process) {
    const Values values = match(logLine(id).text, entry.text).value_or(Values());
    const std::string first(values.empty() ? std::string_view() : values.front());
    splitIfNewLoad(id, first, entry, lineNumber, process);
    LoadStory& story = mStories[process->story];
    switch (id) {
        case LineId::NoCodecs:
        case LineId::UnknownFormat:
        case LineId::MissingPlane:
        case LineId::BadDescriptor:
            takeCall(id, values, lineNumber, count, &story);
            return;
        case LineId::Entry:
            takeDumpEntry(entry.text, lineNumber, process);
            return;
        case LineId::Parsing:
        case LineId::OpenFailed:
        case LineId::FallingBack:
        case LineId::NothingOpened:
            takePath(id, first, lineNumber, &story);
            break;
        case LineId::NoVariant:
        case LineId::StreamRejected:
        case LineId::BuiltInRejected:
        case LineId::RowSkipped:
        case LineId::EncoderFilter:
            addEvent({.id = id, .line = lineNumber, .place = first, .count = count}, &story);
            break;
        case LineId::Skipped:
            addEvent(*matchSkipped(entry.text, lineNumber), &story);
            break;
        default:
            takeHeading(id, lineNumber, process);
            return;
    }
    if (process->section != Section::None) {
        process->section = Section::Later;  // The dump has ended: no entry belongs to it any more.
    }
}

void StoryCollector::takeOurs(const LogEntry& entry, uint64_t lineNumber, uint64_t count) {
    const LogLine* const row = rowOf(entry.tag, entry.text);
    const bool isCut = row == nullptr && isCutLine(entry.tag, entry.text);
    if (entry.tag.empty()) {
        // Without a tag only the library's own words tell whose line it is.
        const auto known = mProcesses.find(entry.process);
        const bool isInDump = known != mProcesses.end() && known->second.section != Section::None &&
                              known->second.section != Section::Later;
        if (row == nullptr || (row->id == LineId::Entry && !isInDump)) {
            return;
        }
    }
    Process* const process = processOf(entry, lineNumber);
    if (process == nullptr) {
        return;
    }
    if (row != nullptr) {
        takeLine(row->id, entry, lineNumber, count, process);
    } else if (isCut) {
        ++mStories[process->story].cutLines;
    } else {
        takeStrange(entry.text, lineNumber, &mStories[process->story]);
    }
    LoadStory& story = mStories[process->story];
    story.lastLine = lineNumber;
    story.lastTime = entry.time;
    process->wasOurs = true;
    process->lastTag = entry.tag;
    process->lastText = entry.text;
}

// The device's log leaves out what repeats ("identical 2 lines") or what a process writes too much
// of ("expire 30 lines"), and writes that as a line of the process.
void StoryCollector::takeChatty(const LogEntry& entry, uint64_t lineNumber) {
    const auto known = mProcesses.find(entry.process);
    if (known == mProcesses.end() || entry.process < 0) {
        return;
    }
    const auto numberBehind = [&](std::string_view word) {
        uint64_t number = 0;
        const size_t at = entry.text.rfind(word);
        if (at != std::string_view::npos) {
            const std::string_view rest = entry.text.substr(at + word.size());
            std::from_chars(rest.data(), rest.data() + rest.size(), number);
        }
        return number;
    };
    Process& process = known->second;
    if (const uint64_t repeated = numberBehind("identical "); repeated != 0 && process.wasOurs) {
        LogEntry again = entry;
        const std::string tag = process.lastTag;
        const std::string text = process.lastText;
        again.tag = tag;
        again.text = text;
        takeOurs(again, lineNumber, repeated);
    } else if (const uint64_t dropped = numberBehind("expire "); dropped != 0) {
        mStories[process.story].droppedLines += dropped;
    }
}

void StoryCollector::take(const LogEntry& entry, uint64_t lineNumber) {
    if (entry.tag == "chatty") {
        takeChatty(entry, lineNumber);
    } else if (entry.tag.empty() || isOurTag(entry.tag)) {
        takeOurs(entry, lineNumber, 1);
    } else if (const auto other = mProcesses.find(entry.process); other != mProcesses.end()) {
        other->second.wasOurs = false;
    }
}

}  // namespace kc2::tool
