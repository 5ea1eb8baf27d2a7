// kcodec2_spec log: what a device's log tells of the library's loads, as a person would tell it.

#include <json/value.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "base/ExitCodes.h"
#include "base/JsonPrinter.h"
#include "check/Report.h"
#include "log/Conclusions.h"
#include "log/LoadStory.h"
#include "log/Log.h"
#include "log/LogLines.h"
#include "log/Logcat.h"
#include "log/PulledDocuments.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr char kNothing[] =
        "No line of the library is in this log. A load without a fault writes none while the info "
        "lines are off and a variant is set; or no process has called TargetSpec::Get() since the "
        "log begins.\n"
        "What to do: turn the info lines on (bit 0x2 of the level word kc2::gC2LogLevel), start "
        "the media codec service again, and take the log with \"adb logcat -d\".\n";

struct Told {
    const LoadStory* story;
    std::vector<Conclusion> conclusions;
    std::vector<PlacedLine> places;  // With the pulled documents only.
};

bool hasErrors(const Told& told) {
    return std::any_of(
            told.conclusions.begin(), told.conclusions.end(),
            [](const Conclusion& conclusion) { return conclusion.severity == Severity::Error; });
}

std::string processName(const LoadStory& story) {
    return story.process < 0 ? "A process that the log does not number"
                             : "Process " + std::to_string(story.process);
}

std::string lineList(const std::vector<uint64_t>& lines) {
    constexpr size_t kMost = 5;
    std::string text;
    for (size_t i = 0; i < std::min(lines.size(), kMost); ++i) {
        text += (i == 0 ? "" : ", ") + std::to_string(lines[i]);
    }
    return lines.empty() ? ""
                         : (lines.size() == 1 ? " [line " : " [lines ") + text +
                                   (lines.size() > kMost ? ", ..." : "") + "]";
}

// `text` escaped, with its own line ends: what comes out of a log holds none.
std::string escapedLines(std::string_view text) {
    std::string result;
    for (size_t end; (end = text.find('\n')) != std::string_view::npos;) {
        result += escaped(text.substr(0, end)) + "\n";
        text.remove_prefix(end + 1);
    }
    return result + escaped(text);
}

// Prints each line of `text`, escaped, behind `indent`.
void printIndented(const std::string& indent, std::string_view text) {
    for (;;) {
        const size_t end = text.find('\n');
        std::printf("%s%s\n", indent.c_str(), escaped(text.substr(0, end)).c_str());
        if (end == std::string_view::npos) {
            return;
        }
        text.remove_prefix(end + 1);
    }
}

void printConclusions(const Told& told) {
    const LoadStory& story = *told.story;
    std::string heading = processName(story);
    if (!story.firstTime.empty()) {
        heading += ", " + story.firstTime;
    }
    heading += story.hasLoad() ? ": one load of the store" : ": no load, but calls";
    const std::string first = std::to_string(story.firstLine);
    const std::string last = std::to_string(story.lastLine);
    std::printf("%s (%s)\n", escaped(heading).c_str(),
                (first == last ? "line " + first : "lines " + first + " to " + last).c_str());
    for (const Conclusion& conclusion : told.conclusions) {
        const std::string text = std::string(nameOf(conclusion.severity)) + ": " + conclusion.text;
        const size_t end = text.find('\n');
        std::printf("  %s%s [%s]\n", escaped(text.substr(0, end)).c_str(),
                    lineList(conclusion.lines).c_str(), conclusion.topic.c_str());
        if (end != std::string::npos) {
            printIndented("      ", std::string_view(text).substr(end + 1));
        }
        if (!conclusion.advice.empty()) {
            printIndented("    What to do: ", conclusion.advice);
        }
    }
    if (!told.places.empty()) {
        std::printf("  Where the lines come from:\n");
    }
    for (const PlacedLine& line : told.places) {
        printIndented("    ", "line " + std::to_string(line.line) + ": " + line.text);
        printIndented("        ", line.place);
    }
    std::printf("\n");
}

Json::Value toJson(const Conclusion& conclusion) {
    Json::Value json;
    json["severity"] = nameOf(conclusion.severity);
    json["topic"] = conclusion.topic;
    json["text"] = escapedLines(conclusion.text);
    json["advice"] = escapedLines(conclusion.advice);
    json["lines"] = Json::arrayValue;
    for (const uint64_t line : conclusion.lines) {
        json["lines"].append(Json::UInt64(line));
    }
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
    json["result"] = outcome.result;
    json["isPossible"] = outcome.isPossible;
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

Json::Value toJson(const Told& told) {
    const LoadStory& story = *told.story;
    Json::Value json;
    json["process"] = story.process < 0 ? Json::Value() : Json::Value(story.process);
    json["time"] = escaped(story.firstTime);
    json["firstLine"] = Json::UInt64(story.firstLine);
    json["lastLine"] = Json::UInt64(story.lastLine);
    json["isLoad"] = story.hasLoad();
    json["firstPath"] = escaped(story.firstPath());
    json["conclusions"] = listOf(told.conclusions);
    json["places"] = listOf(told.places);
    json["outcomes"] = story.hasLoad() ? listOf(overlayOutcomes(story, attribute(story)))
                                       : Json::Value(Json::arrayValue);
    return json;
}

bool readLog(const std::string& path, StoryCollector* collector) {
    const auto close = [](std::FILE* file) { return file == stdin ? 0 : std::fclose(file); };
    const std::unique_ptr<std::FILE, decltype(close)> file(
            path == "-" ? stdin : std::fopen(path.c_str(), "rb"), close);
    if (file == nullptr) {
        return false;
    }
    LineReader reader(file.get());
    LogcatParser parser;
    for (std::string_view line; reader.next(&line);) {
        if (const std::optional<LogEntry> entry = parser.parse(line)) {
            collector->take(*entry, reader.lineNumber());
        }
    }
    return !reader.isFailed();
}

}  // namespace

int tellLog(const std::string& path, const LogOptions& options) {
    StoryCollector collector;
    errno = 0;
    if (!readLog(path, &collector)) {
        std::fprintf(stderr, "kcodec2_spec: %s cannot be read: %s\n", escaped(path).c_str(),
                     std::strerror(errno));
        return kExitUsage;
    }
    Json::Value json(Json::arrayValue);
    bool isAnyError = false;
    for (const LoadStory& story : collector.stories()) {
        Told told = {&story, conclude(story), {}};
        if (options.hasTree && story.hasLoad()) {
            comparePulled(story, options.isVariantGiven, &told.conclusions, &told.places);
        }
        isAnyError |= hasErrors(told);
        if (options.asJson) {
            json.append(toJson(told));
        } else {
            printConclusions(told);
        }
    }
    if (options.asJson) {
        print(json);
    } else if (collector.stories().empty()) {
        std::fputs(kNothing, stdout);
    }
    if (collector.isTooLong()) {
        std::fflush(stdout);  // It is the last word, also where both go to one place.
        std::fputs("kcodec2_spec: the log holds more than is kept; not all of it is told\n",
                   stderr);
    }
    return isAnyError ? kExitFindings : kExitOk;
}

int printLogLines() {
    std::fputs(logLineTable().c_str(), stdout);
    return kExitOk;
}

}  // namespace kc2::tool
