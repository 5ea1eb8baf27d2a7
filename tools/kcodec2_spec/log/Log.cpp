// kcodec2_spec log: what a device's log shows of the library's loads, and what to do.

#include "log/Log.h"

#include <fmt/format.h>
#include <json/value.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "base/ExitCodes.h"
#include "base/JsonPrinter.h"
#include "base/Print.h"
#include "base/Text.h"
#include "check/Report.h"
#include "log/Conclusions.h"
#include "log/LineReader.h"
#include "log/LoadTrace.h"
#include "log/Logcat.h"
#include "log/PulledDocuments.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr char kNothing[] =
        "No line of the library is in the {} of this log. Either no process has called "
        "TargetSpec::Get() since the log began, or each load was without a fault: while a variant "
        "is set and the info lines are off, such a load writes nothing.\n"
        "  do: turn the info lines on (bit 0x2 of the level word kc2::gC2LogLevel), start the "
        "media codec service again, and take the log with adb logcat -d\n";

struct Diagnosis {
    const LoadTrace* trace;
    ProvedFacts facts;
    std::vector<Conclusion> conclusions;
    std::vector<PlacedLine> places;  // With the pulled documents only.

    size_t count(Severity severity) const {
        return static_cast<size_t>(
                std::count_if(conclusions.begin(), conclusions.end(),
                              [&](const Conclusion& one) { return one.severity == severity; }));
    }
    // The first error, else the first warning, else null.
    const Conclusion* worst() const {
        const auto worst = std::max_element(
                conclusions.begin(), conclusions.end(),
                [](const Conclusion& a, const Conclusion& b) { return a.severity < b.severity; });
        return worst != conclusions.end() && worst->severity != Severity::Note ? &*worst : nullptr;
    }
};

void printEscaped(const std::string& text) {
    printOut("{}\n", escaped(text));
}

void complain(const std::string& text) {
    std::fflush(stdout);  // It is the last word, also where both go to one place.
    printError("{}", escaped(text));
}

std::string lineList(const std::vector<uint64_t>& lines) {
    constexpr size_t kMost = 5;
    const size_t shown = std::min(lines.size(), kMost);
    return lines.empty() ? ""
                         : fmt::format(" [line{} {}{}]", lines.size() == 1 ? "" : "s",
                                       fmt::join(lines.begin(), lines.begin() + shown, ", "),
                                       lines.size() > kMost ? ", ..." : "");
}

// `text` escaped, with its own line ends: what comes out of a log has none.
std::string escapedLines(std::string_view text) {
    std::string result;
    for (size_t end; (end = text.find('\n')) != std::string_view::npos;) {
        result += escaped(text.substr(0, end)) + "\n";
        text.remove_prefix(end + 1);
    }
    return result + escaped(text);
}

// What a load without a fault used, in one line.
std::string summaryOf(const Diagnosis& diagnosis) {
    std::string text;
    for (const Conclusion& one : diagnosis.conclusions) {
        if (one.topic == "system-spec" || one.topic == "overlay") {
            text += fmt::format("{}{}{}", text.empty() ? "" : "; ", one.text, lineList(one.lines));
        }
    }
    return diagnosis.trace->hasLoad() ? fmt::format("no fault in these lines: {}", text)
                                      : "no fault in these lines";
}

std::string linesOf(const LoadTrace& trace) {
    return trace.firstLine == trace.lastLine
                   ? fmt::format("(line {})", trace.firstLine)
                   : fmt::format("(lines {} to {})", trace.firstLine, trace.lastLine);
}

// Whose load it is, when, and where in the log.
std::string ownerOf(const Diagnosis& diagnosis) {
    const LoadTrace& trace = *diagnosis.trace;
    const std::string process = trace.process < 0
                                        ? "Lines without a process number, read as one process"
                                        : fmt::format("Process {}", trace.process);
    return fmt::format("{}{}{} {}", process, trace.firstTime.empty() ? "" : ", ", trace.firstTime,
                       linesOf(trace));
}

// The whole load in one line: whose it is, what is wrong, and what to do.
std::string headlineOf(const Diagnosis& diagnosis) {
    const std::string who = ownerOf(diagnosis);
    const Conclusion* const worst = diagnosis.worst();
    if (worst == nullptr) {
        return fmt::format("{}: {}", who, summaryOf(diagnosis));
    }
    std::vector<std::string> counts;
    for (const Severity severity : {Severity::Error, Severity::Warning}) {
        if (const size_t count = diagnosis.count(severity); count != 0) {
            counts.push_back(counted(count, nameOf(severity)));
        }
    }
    return fmt::format("{}: {}: {}: {}", who, joined(counts, ", "), worst->brief, worst->advice);
}

// The commands of an advice; a document is pulled and checked in one.
std::vector<std::string> commandsOf(std::string_view advice) {
    std::vector<std::string> commands;
    while (!advice.empty()) {
        const size_t end = std::min(advice.find("; "), advice.size());
        const std::string command(advice.substr(0, end));
        advice.remove_prefix(std::min(end + 2, advice.size()));
        if (command.starts_with("kcodec2_spec check") && !commands.empty()) {
            commands.back() += "; " + command;
        } else {
            commands.push_back(command);
        }
    }
    return commands;
}

// Prints what is wrong with one load in detail, or all that is known of it.
class DetailPrinter {
public:
    // `printed` are the commands that were printed before, for any load.
    DetailPrinter(const Diagnosis& diagnosis, bool isAll, std::set<std::string>* printed)
        : mDiagnosis(diagnosis), mIsAll(isAll), mPrinted(*printed) {}

    void print() {
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
            for (const Conclusion& one : mDiagnosis.conclusions) {
                if (one.severity == severity && isShown(one)) {
                    print(one);
                }
            }
        }
        if (mIsAll) {
            printPlaces();
        }
    }

private:
    bool isShown(const Conclusion& one) const {
        const char* const kHidden[] = {"variant", "system-spec", "store", "encoder-filter",
                                       "dump-again"};
        return mIsAll || one.severity != Severity::Note ||
               std::find(std::begin(kHidden), std::end(kHidden), one.topic) == std::end(kHidden);
    }

    void print(const Conclusion& one) {
        if (!one.heading.empty()) {
            printGroup(one);
            return;
        }
        const size_t end = one.text.find('\n');
        printEscaped(fmt::format("  {}: {}{} [{}]", nameOf(one.severity), one.text.substr(0, end),
                                 lineList(one.lines), one.topic));
        for (size_t at = end; at != std::string::npos;) {
            const size_t next = one.text.find('\n', at + 1);
            printEscaped(fmt::format("      {}", one.text.substr(at + 1, next - at - 1)));
            at = next;
        }
        for (const uint64_t line : one.lines) {
            printPlace(line);
        }
        printAdvice(one.advice);
        if (one.topic == "overlay" && mIsAll) {
            printOutcomes();
        }
    }

    // All conclusions with this one's heading, below it.
    void printGroup(const Conclusion& first) {
        if (!mHeadings.emplace(first.heading, first.topic).second) {
            return;
        }
        std::vector<const Conclusion*> group;
        for (const Conclusion& one : mDiagnosis.conclusions) {
            if (one.heading == first.heading && one.topic == first.topic) {
                group.push_back(&one);
            }
        }
        constexpr size_t kMost = 5;
        const size_t shown = mIsAll ? group.size() : std::min(group.size(), kMost);
        printEscaped(
                fmt::format("  {}: {}: [{}]", nameOf(first.severity), first.heading, first.topic));
        for (size_t i = 0; i < shown; ++i) {
            printEscaped(fmt::format("      {}{}", group[i]->text, lineList(group[i]->lines)));
            for (const uint64_t line : group[i]->lines) {
                printPlace(line);
            }
        }
        if (shown < group.size()) {
            printEscaped(fmt::format("      and {} more: --all lists them", group.size() - shown));
        }
        for (size_t i = 0; i < shown; ++i) {
            printAdvice(group[i]->advice);
        }
    }

    void printAdvice(const std::string& advice) {
        std::vector<std::string> commands = commandsOf(advice);
        std::erase_if(commands, [&](const auto& one) { return !mPrinted.insert(one).second; });
        if (!commands.empty()) {
            printEscaped(fmt::format("    do: {}", joined(commands, "; ")));
        }
    }

    void printPlace(uint64_t line) const {
        if (mIsAll) {
            return;  // All of them come at the end.
        }
        const auto found = std::find_if(mDiagnosis.places.begin(), mDiagnosis.places.end(),
                                        [&](const PlacedLine& one) { return one.line == line; });
        if (found != mDiagnosis.places.end()) {
            printEscaped(fmt::format("        {}", found->place));
        }
    }

    void printOutcomes() const {
        for (const OverlayOutcome& outcome : mDiagnosis.facts.outcomes) {
            printEscaped(fmt::format("      {}: codec test tool {}, private file {}: {}",
                                     outcome.isPossible ? "possible" : "excluded",
                                     outcome.hasTestTool ? "there" : "absent", outcome.privateFile,
                                     outcome.result()));
        }
    }

    void printPlaces() const {
        if (!mDiagnosis.places.empty()) {
            printEscaped("  Where the lines come from:");
        }
        for (const PlacedLine& line : mDiagnosis.places) {
            printEscaped(fmt::format("    line {}: {}", line.line, line.text));
            printEscaped(fmt::format("        {}", line.place));
        }
    }

    const Diagnosis& mDiagnosis;
    const bool mIsAll;
    std::set<std::string>& mPrinted;
    std::set<std::pair<std::string, std::string>> mHeadings;
};

// What is known of a load, without its place in the log: equal for loads that need no description
// of their own.
std::string contentOf(const Diagnosis& diagnosis) {
    std::string content;
    for (const Conclusion& one : diagnosis.conclusions) {
        content += fmt::format("{}: {}\n{}\n", nameOf(one.severity), one.fullText(), one.advice);
    }
    return content;
}

// First a line for each load, then what is wrong with each.
void printText(const std::vector<Diagnosis>& diagnoses, bool isAll) {
    const bool isOne = diagnoses.size() == 1;
    std::set<std::string> printed;
    std::map<std::string, const LoadTrace*> firsts;
    for (const Diagnosis& diagnosis : diagnoses) {
        const LoadTrace* const first =
                firsts.emplace(contentOf(diagnosis), diagnosis.trace).first->second;
        if (first != diagnosis.trace && first->process >= 0 && diagnosis.worst() != nullptr) {
            printEscaped(fmt::format("{}: the same as process {} {}", ownerOf(diagnosis),
                                     first->process, linesOf(*first)));
            continue;
        }
        printEscaped(headlineOf(diagnosis));
        if (const Conclusion* const worst = diagnosis.worst(); worst != nullptr) {
            const std::vector<std::string> commands = commandsOf(worst->advice);
            printed.insert(commands.begin(), commands.end());
        }
    }
    for (const Diagnosis& diagnosis : diagnoses) {
        const bool isFirst = firsts.at(contentOf(diagnosis)) == diagnosis.trace;
        if (!isAll && (diagnosis.worst() == nullptr || !isFirst)) {
            continue;
        }
        if (!isOne) {
            printOut("\n");
            printEscaped(ownerOf(diagnosis));
        }
        DetailPrinter(diagnosis, isAll, &printed).print();
    }
}

Json::Value toJson(const std::vector<uint64_t>& lines) {
    Json::Value json = Json::arrayValue;
    for (const uint64_t line : lines) {
        json.append(Json::UInt64(line));
    }
    return json;
}

Json::Value toJson(const Conclusion& conclusion) {
    Json::Value json;
    json["severity"] = nameOf(conclusion.severity);
    json["topic"] = conclusion.topic;
    json["text"] = escapedLines(conclusion.fullText());
    json["advice"] = escapedLines(conclusion.advice);
    json["lines"] = toJson(conclusion.lines);
    return json;
}

Json::Value toJson(const PlacedLine& line) {
    Json::Value json;
    json["line"] = Json::UInt64(line.line);
    json["text"] = escaped(line.text);
    json["place"] = escaped(line.place);
    return json;
}

Json::Value toJson(const OverlayOutcome& outcome) {
    Json::Value json;
    json["testTool"] = outcome.hasTestTool;
    json["privateFile"] = outcome.privateFile;
    json["result"] = outcome.result();
    json["isPossible"] = outcome.isPossible;
    return json;
}

// Which ends of the first step are possible.
Json::Value firstStepToJson(const ProvedFacts& facts) {
    Json::Value json;
    json["variant"] = facts.isOpen(SpecSource::Variant);
    json["fallback"] = facts.isOpen(SpecSource::Fallback);
    json["none"] = facts.isOpen(SpecSource::None);
    json["accepted"] = facts.loads.canAccept;
    json["rejected"] = facts.loads.canReject;
    return json;
}

template <typename Items>
Json::Value listOf(const Items& items) {
    Json::Value list = Json::arrayValue;
    for (const auto& item : items) {
        list.append(toJson(item));
    }
    return list;
}

Json::Value toJson(const Diagnosis& diagnosis) {
    const LoadTrace& trace = *diagnosis.trace;
    const bool isAnyKnown = trace.isAnyKnown();
    Json::Value json;
    json["process"] = trace.process < 0 ? Json::Value() : Json::Value(trace.process);
    json["time"] = escaped(trace.firstTime);
    json["firstLine"] = Json::UInt64(trace.firstLine);
    json["lastLine"] = Json::UInt64(trace.lastLine);
    json["isLoad"] = trace.hasLoad();
    json["firstPath"] = escaped(trace.firstPath());
    json["conclusions"] = listOf(diagnosis.conclusions);
    json["places"] = listOf(diagnosis.places);
    json["systemSpec"] = isAnyKnown ? firstStepToJson(diagnosis.facts) : Json::Value();
    json["outcomes"] =
            isAnyKnown ? listOf(diagnosis.facts.outcomes) : Json::Value(Json::arrayValue);
    return json;
}

struct ReadLog {
    TraceCollector collector;
    LogcatParser parser;
    std::string failure;  // Why the file could not be read as a log; empty when it could.
    uint64_t lines = 0;
};

void readLines(std::FILE* file, ReadLog* log) {
    LineReader reader(file);
    for (std::string_view line; reader.next(&line);) {
        if (std::optional<LogEntry> entry = log->parser.parse(line)) {
            entry->line = reader.lineNumber();
            log->collector.add(*entry);
        }
    }
    log->collector.end();
    log->lines = reader.lineNumber();
    log->failure = reader.isFailed() ? std::strerror(errno) : reader.whyNotText();
}

std::string unreadText(const SampledLines& unread, const char* why) {
    const auto& [line, number] = unread.lines.front();
    return fmt::format("{} {}. The first is line {}: {}", counted(unread.count, "line"), why,
                       number, line);
}

// Why nothing can be said of a log without any line of a load; empty where that says something.
std::string whyNotUnderstood(const ReadLog& log) {
    if (!log.collector.traces().empty()) {
        return "";
    }
    if (log.collector.unread().count != 0) {
        return unreadText(log.collector.unread(),
                          "with a tag or a text of the library, but in no known format");
    }
    return log.parser.knownLines() != 0 ? ""
           : log.parser.rawLines() == 0
                   ? "the log is empty"
                   : fmt::format(
                             "none of {} is in a format of logcat, so this log says nothing about "
                             "the library",
                             counted(log.lines, "line"));
}

std::vector<Diagnosis> diagnose(const TraceCollector& collector, const LogOptions& options) {
    std::vector<Diagnosis> diagnoses;
    for (const LoadTrace& trace : collector.traces()) {
        PulledComparison pulled = {factsOf(trace), {}, {}};
        if (options.hasTree && trace.isAnyKnown()) {
            pulled = comparePulled(trace, options.isVariantGiven);
        }
        std::vector<Conclusion> conclusions = conclude(trace, pulled.facts);
        std::move(pulled.conclusions.begin(), pulled.conclusions.end(),
                  std::back_inserter(conclusions));
        diagnoses.push_back({&trace, std::move(pulled.facts), std::move(conclusions),
                             std::move(pulled.places)});
    }
    return diagnoses;
}

// Reads a file of that name, or standard input for "-".
ReadLog readLog(const std::string& path) {
    const auto close = [](std::FILE* file) { return file == stdin ? 0 : std::fclose(file); };
    errno = 0;
    const std::unique_ptr<std::FILE, decltype(close)> file(
            path == "-" ? stdin : std::fopen(path.c_str(), "rb"), close);
    ReadLog log;
    if (file != nullptr) {
        readLines(file.get(), &log);
    } else {
        log.failure = std::strerror(errno);
    }
    if (log.failure.empty()) {
        log.failure = whyNotUnderstood(log);
    }
    return log;
}

// What is left to say on standard error of a log that was read.
void complainOf(const TraceCollector& collector) {
    if (collector.unread().count != 0) {
        complain(unreadText(collector.unread(), "with a text of the library cannot be read"));
    }
    if (collector.isTooLong()) {
        complain("the log is too long: not all of it is described");
    }
}

}  // namespace

int describeLog(const std::string& path, const LogOptions& options) {
    const ReadLog log = readLog(path);
    if (!log.failure.empty()) {
        complain(fmt::format("{} cannot be read: {}", path == "-" ? "standard input" : path,
                             log.failure));
        return kExitUsage;
    }
    const std::vector<Diagnosis> diagnoses = diagnose(log.collector, options);
    if (options.asJson) {
        print(listOf(diagnoses));
    } else if (diagnoses.empty()) {
        printOut(kNothing, counted(log.lines, "line"));
    } else {
        printText(diagnoses, options.isAll);
    }
    complainOf(log.collector);
    const bool isAnyError =
            std::any_of(diagnoses.begin(), diagnoses.end(),
                        [](const Diagnosis& one) { return one.count(Severity::Error) != 0; });
    return isAnyError ? kExitFindings : kExitOk;
}

}  // namespace kc2::tool
