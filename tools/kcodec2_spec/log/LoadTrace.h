// The library's lines of a log, sorted by process and load.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kc2/TargetSpecKeys.h"
#include "log/LoadModel.h"
#include "log/LogLines.h"
#include "log/Logcat.h"

namespace kc2::tool {

struct DumpedValue {
    std::string name;
    std::string value;
    uint64_t line;
};

// The parts of a dump in their order. Before the first heading, and after the end.
enum class DumpSection { None, Features, Presets, Filters, Plugins, Codecs, Later };

struct DumpPart {
    DumpSection section;
    LineId heading;
    const char* const* key;  // Of the section of a document that it shows.
    const char* title;
    bool isInOrder;  // The order of its entries matters.
};

inline constexpr DumpPart kDumpParts[] = {
        {DumpSection::Features, LineId::FeaturesHeading, &targetSpecFeatures, "features", false},
        {DumpSection::Presets, LineId::PresetsHeading, &targetSpecPresets, "presets", false},
        {DumpSection::Filters, LineId::FiltersHeading, &targetSpecPreProcessingFilters,
         "pre-processing filters", true},
        {DumpSection::Plugins, LineId::PluginsHeading, &targetSpecCodecPlugins, "codec plug-ins",
         true},
        {DumpSection::Codecs, LineId::CodecsHeading, &targetSpecSupportedCodecs, "codec components",
         false},
};

// What the dump showed. The same gate lets headings and entries through, all but the heading of the
// codec components: without it they are among the plug-ins.
struct Dump {
    std::array<std::vector<DumpedValue>, static_cast<size_t>(DumpSection::Later)> values;
    bool hasCodecsHeading = false;
    bool isStarted = false;
    bool isOfLoad = false;     // Else a component may have asked for it, after the load.
    uint64_t line = 0;         // The first one.
    bool isWhole = false;      // Seen from its first line on.
    std::string lostHeadings;  // Of sections before the last one that is there.

    std::vector<DumpedValue>& of(DumpSection section) {
        return values[static_cast<size_t>(section)];
    }
    const std::vector<DumpedValue>& of(DumpSection section) const {
        return values[static_cast<size_t>(section)];
    }
};

struct Call {
    uint64_t line = 0;  // The first one.
    uint64_t count = 0;

    void add(const LogEntry& entry);
};

// The first different lines of one kind, where they are, and how many lines there are.
struct SampledLines {
    std::vector<std::pair<std::string, uint64_t>> lines;
    uint64_t count = 0;

    void add(std::string_view text, uint64_t line);
};

// What one load of one process wrote, and what was asked of its store.
struct LoadTrace {
    int process = -1;
    std::string firstTime;
    uint64_t firstLine = 0;
    uint64_t lastLine = 0;
    uint64_t lineBeforeLast = 0;

    std::vector<LoadEvent> events;  // In the order of the log. A dump is one event.
    Dump dump;
    uint64_t laterDumps = 0;

    Call noCodecs;
    std::map<std::pair<LineId, std::string>, Call> calls;  // Others, by their text.

    SampledLines strange;  // With our tags, but unknown.
    SampledLines cut;
    bool hasCutFault = false;   // One of the cut ones is of a fault that nothing else shows.
    uint64_t droppedLines = 0;  // Which the device says it has dropped from its log.
    bool isTooLong = false;     // Not all of it was kept.

    // Lines of the log, seconds before the load's first line and after its last one: what the load
    // did not write then, it did not write at all. 0 when there is none.
    uint64_t lineBefore = 0;
    uint64_t lineAfter = 0;
    double lastSeconds = 0;  // Of the log, at the load's last line.

    const LoadEvent* find(LineId id) const;
    uint64_t lineOf(LineId id) const;  // 0 when there is none.
    bool hasLoad() const { return !events.empty() || dump.isStarted; }
    bool isAnyKnown() const { return hasLoad() || noCodecs.count != 0; }
    bool hasGaps() const { return droppedLines != 0 || cut.count != 0 || isTooLong; }

    // The path that the variant selected: whole, or empty when no line shows it.
    std::string firstPath() const;
};

// Sorts the entries of one log.
class TraceCollector {
public:
    // The entries, in order, and then the end.
    void add(LogEntry entry);
    void end();

    const std::deque<LoadTrace>& traces() const { return mTraces; }
    bool isTooLong() const { return mIsTooLong; }

    // Lines that nobody could read although they have a tag or a text of the library.
    const SampledLines& unread() const { return mUnread; }

private:
    // Where the lines of one process go at the moment.
    struct Process {
        LoadTrace* trace = nullptr;
        DumpSection section = DumpSection::None;
        LoadPosition position = {};
        std::string lastTime = {};  // Of its load's last line.
        // Tag and text of the process's last line, if it was one of the library's.
        std::optional<std::pair<std::string, std::string>> last = {};
    };

    Process* processOf(const LogEntry& entry);
    bool startTrace(const LogEntry& entry, Process* process);
    void beginBuffer(std::string_view name);
    void endStretch();
    void noteTime(const LogEntry& entry);
    void splitIfNewLoad(const LoadEvent& event, const LogEntry& entry, Process* process);
    bool isOurs(const LogEntry& entry, const LogLine& row) const;
    void addOurs(const LogEntry& entry);
    void addLine(LineId id, const LogEntry& entry, Process* process);
    void addCall(LineId id, const LogEntry& entry, LoadTrace* trace);
    void startDump(LineId first, const LogEntry& entry, Process* process);
    void addHeading(const DumpPart& part, const LogEntry& entry, Process* process);
    void addDumpEntry(const LogEntry& entry, Process* process);
    void addChatty(LogEntry entry);
    void addEvent(LoadEvent event, const LogEntry& entry, Process* process);
    bool spend(size_t bytes, LoadTrace* trace);

    std::deque<LoadTrace> mTraces;
    std::map<int, Process> mProcesses;
    std::set<std::string> mBuffers;  // Which have begun.
    // Of the stretch of the log in which nobody has set the clock: its first load, its first and
    // last line, and how many seconds it has lasted.
    size_t mFirstTrace = 0;
    uint64_t mFirstLine = 0;
    uint64_t mLastLine = 0;
    std::string mLastTime;
    double mSeconds = 0;
    bool mHasHeaders = false;
    size_t mKeptBytes = 0;
    bool mIsTooLong = false;
    SampledLines mUnread;
};

}  // namespace kc2::tool
