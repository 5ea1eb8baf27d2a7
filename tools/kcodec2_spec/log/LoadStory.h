// The library's lines of a log, sorted by process and load.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "log/LogLines.h"
#include "log/Logcat.h"

namespace kc2::tool {

// What is in the placeholders of a line.
using Values = LineValues;

// One line that tells something about a document or a step, in the order of the log.
struct LogEvent {
    LineId id;
    uint64_t line;              // Of the log, the first one is 1.
    std::string place = {};     // Of a skipped value; the name of a filter.
    std::string reason = {};    // Why it was skipped.
    std::string document = {};  // As the line names it; empty when it does not.
    uint64_t count = 1;         // How many such lines follow each other.
};

struct DumpedValue {
    std::string name;
    std::string value;
    uint64_t line;
};

// What the dump showed. The same gate lets headings and entries through, all but the heading of the
// codec components: without it they stand among the plug-ins.
struct Dump {
    std::vector<DumpedValue> features;
    std::vector<DumpedValue> presets;
    std::vector<DumpedValue> filters;
    std::vector<DumpedValue> plugins;
    std::vector<DumpedValue> codecs;
    std::vector<DumpedValue> unplaced;  // The log begins in the middle of the dump.
    bool hasCodecsHeading = false;
    bool isStarted = false;
    bool isWhole = false;  // Seen from its first line on.
};

// What one load of one process wrote, and what was asked of its store.
struct LoadStory {
    int process = -1;
    std::string firstTime;
    std::string lastTime;
    uint64_t firstLine = 0;
    uint64_t lastLine = 0;

    std::string parsingPath;
    std::string failedPath;
    std::string fallbackPath;
    uint64_t parsingLine = 0;
    uint64_t failedLine = 0;
    uint64_t fallbackLine = 0;
    uint64_t nothingOpenedLine = 0;
    std::vector<LogEvent> events;  // A dump is one event, of its first line.
    Dump dump;
    uint64_t laterDumps = 0;

    uint64_t noCodecsLine = 0;
    uint64_t noCodecsCalls = 0;
    std::map<std::string, std::pair<uint64_t, uint64_t>> unknownFormats;  // First line, count.
    std::map<std::pair<std::string, std::string>, std::pair<uint64_t, uint64_t>> missingPlanes;
    std::map<std::string, std::pair<uint64_t, uint64_t>> badDescriptors;

    std::map<std::string, uint64_t>
            strangeLines;  // Of the tags, but none of the table; first line.
    uint64_t strangeCount = 0;
    uint64_t cutLines = 0;
    uint64_t droppedLines = 0;  // Which the device says it has dropped from its log.
    bool isTooLong = false;     // Not all of it was kept.

    uint64_t count(LineId id) const;
    bool hasLoad() const;  // Whether a line of a load is among them.

    // The path that the variant selected; empty when no line tells.
    std::string firstPath() const;
};

class StoryCollector {
public:
    // Takes the entries of one log in order.
    void take(const LogEntry& entry, uint64_t lineNumber);

    const std::vector<LoadStory>& stories() const { return mStories; }
    bool isTooLong() const { return mIsTooLong; }

private:
    enum class Section { None, Features, Presets, Filters, Plugins, Codecs, Later };

    // Where the lines of one process go at the moment.
    struct Process {
        size_t story;
        Section section = Section::None;
        bool wasOurs = false;  // Whether the process's last line was one of the library's.
        std::string lastText;
        std::string lastTag;
    };

    Process* processOf(const LogEntry& entry, uint64_t lineNumber);
    bool startStory(const LogEntry& entry, uint64_t lineNumber, Process* process);
    void splitIfNewLoad(LineId id, std::string_view path, const LogEntry& entry,
                        uint64_t lineNumber, Process* process);
    void takeOurs(const LogEntry& entry, uint64_t lineNumber, uint64_t count);
    void takeLine(LineId id, const LogEntry& entry, uint64_t lineNumber, uint64_t count,
                  Process* process);
    void takeCall(LineId id, const Values& values, uint64_t lineNumber, uint64_t count,
                  LoadStory* story);
    void takePath(LineId id, std::string path, uint64_t lineNumber, LoadStory* story);
    void takeHeading(LineId id, uint64_t lineNumber, Process* process);
    void takeDumpEntry(std::string_view text, uint64_t lineNumber, Process* process);
    void takeStrange(std::string_view text, uint64_t lineNumber, LoadStory* story);
    void takeChatty(const LogEntry& entry, uint64_t lineNumber);
    void addEvent(LogEvent event, LoadStory* story);
    void addValue(DumpedValue value, std::vector<DumpedValue>* values, LoadStory* story);
    bool spend(size_t bytes, LoadStory* story);

    std::vector<LoadStory> mStories;
    std::map<int, Process> mProcesses;
    size_t mKeptBytes = 0;
    bool mIsTooLong = false;
};

}  // namespace kc2::tool
