// The library's lines of a log, sorted by process and load.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "log/LoadModel.h"
#include "log/LogLines.h"
#include "log/Logcat.h"

namespace kc2::tool {

struct DumpedValue {
    std::string name;
    std::string value;
    uint64_t line;
};

// What the dump showed. The same gate lets headings and entries through, all but the heading of the
// codec components: without it they are among the plug-ins.
struct Dump {
    std::vector<DumpedValue> features;
    std::vector<DumpedValue> presets;
    std::vector<DumpedValue> filters;
    std::vector<DumpedValue> plugins;
    std::vector<DumpedValue> codecs;
    std::vector<DumpedValue> unplaced;  // No heading before them.
    bool hasCodecsHeading = false;
    bool isStarted = false;
    bool isOfLoad = false;     // Else a component may have asked for it, after the load.
    uint64_t line = 0;         // The first one.
    bool isWhole = false;      // Seen from its first line on.
    std::string lostHeadings;  // Of sections before the last one that is there.
};

struct Call {
    uint64_t line = 0;  // The first one.
    uint64_t count = 0;
};

// What one load of one process wrote, and what was asked of its store.
struct LoadTrace {
    int process = -1;
    std::string firstTime;
    uint64_t firstLine = 0;
    uint64_t lastLine = 0;

    std::vector<LoadEvent> events;  // In the order of the log. A dump is one event.
    Dump dump;
    uint64_t laterDumps = 0;

    Call noCodecs;
    std::map<std::string, Call> unknownFormats;
    std::map<std::pair<std::string, std::string>, Call> missingPlanes;  // Format and plane.
    std::map<std::string, Call> badDescriptors;
    std::map<std::string, Call> skippedByCall;

    std::map<std::string, uint64_t> strangeLines;  // With our tags, but unknown; the first ones.
    uint64_t strangeCount = 0;
    std::map<std::string, uint64_t> cutLines;  // The first ones.
    uint64_t cutCount = 0;
    bool hasCutFault = false;   // One of them is of a fault that nothing else shows.
    uint64_t droppedLines = 0;  // Which the device says it has dropped from its log.
    bool isTooLong = false;     // Not all of it was kept.

    // Lines of the log, seconds before the load's first line and after its last one: what the load
    // did not write then, it did not write at all. 0 when there is none.
    uint64_t lineBefore = 0;
    uint64_t lineAfter = 0;

    const LoadEvent* find(LineId id) const;
    uint64_t count(LineId id) const;
    bool hasLoad() const { return !events.empty() || dump.isStarted; }

    // The path that the variant selected: whole, or empty when no line shows it.
    std::string firstPath() const;
};

// Sorts the entries of one log.
class TraceCollector {
public:
    // The entries, in order.
    void add(const LogEntry& entry, uint64_t lineNumber);

    const std::vector<LoadTrace>& traces() const { return mTraces; }
    bool isTooLong() const { return mIsTooLong; }

    // Lines that nobody could read although they have a tag or a text of the library.
    uint64_t unreadCount() const { return mUnreadCount; }
    const std::string& firstUnread() const { return mFirstUnread; }
    uint64_t firstUnreadLine() const { return mFirstUnreadLine; }

private:
    enum class Section { None, Features, Presets, Filters, Plugins, Codecs, Later };

    // Where the lines of one process go at the moment.
    struct Process {
        size_t trace = 0;
        Section section = Section::None;
        LoadPosition position = {};
        std::string lastTime = {};  // Of its load's last line, and that line.
        uint64_t lastLine = 0;
        bool isWaiting = false;  // For a line that is seconds later.
        bool wasOurs = false;    // Whether the process's last line was one of the library's.
        std::string lastText = {};
        std::string lastTag = {};
    };

    struct Mark {
        std::string time = {};
        uint64_t line = 0;
    };

    Process* processOf(const LogEntry& entry, uint64_t lineNumber);
    bool startTrace(const LogEntry& entry, uint64_t lineNumber, Process* process);
    void beginBuffer(std::string_view name);
    void forgetProcesses();
    void noteTime(const LogEntry& entry, uint64_t lineNumber);
    void splitIfNewLoad(const LoadEvent& event, const LogEntry& entry, Process* process);
    void addOurs(const LogEntry& entry, uint64_t lineNumber, uint64_t count);
    void addLine(LineId id, const LogEntry& entry, uint64_t lineNumber, uint64_t count,
                 Process* process);
    void addCall(LineId id, const LogEntry& entry, uint64_t lineNumber, uint64_t count,
                 LoadTrace* trace);
    static LoadEvent pathEvent(LineId id, std::string_view path, uint64_t lineNumber,
                               const LoadTrace& trace);
    void addSkipped(const LogEntry& entry, uint64_t lineNumber, Process* process);
    void startDump(LineId first, const LogEntry& entry, uint64_t lineNumber, Process* process);
    void addHeading(LineId id, const LogEntry& entry, uint64_t lineNumber, Process* process);
    void addDumpEntry(const LogEntry& entry, uint64_t lineNumber, Process* process);
    static void addStrange(std::string_view text, uint64_t lineNumber, LoadTrace* trace);
    static void addCut(std::string_view text, uint64_t lineNumber, bool isFault, LoadTrace* trace);
    void addChatty(const LogEntry& entry, uint64_t lineNumber);
    void addUnread(std::string_view text, uint64_t lineNumber);
    void addEvent(LoadEvent event, const LogEntry& entry, Process* process);
    void addValue(DumpedValue value, std::vector<DumpedValue>* values, LoadTrace* trace);
    bool spend(size_t bytes, LoadTrace* trace);

    std::vector<LoadTrace> mTraces;
    std::map<int, Process> mProcesses;
    std::set<std::string> mBuffers;                 // Which have begun.
    std::deque<std::pair<int, uint64_t>> mWaiting;  // For a later line: processes, last lines.
    Mark mRecent;                                   // Lines at least seconds apart.
    Mark mEarlier;
    std::string mLastTime;
    bool mHasHeaders = false;
    size_t mKeptBytes = 0;
    bool mIsTooLong = false;
    uint64_t mUnreadCount = 0;
    uint64_t mFirstUnreadLine = 0;
    std::string mFirstUnread;
};

}  // namespace kc2::tool
