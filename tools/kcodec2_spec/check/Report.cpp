// What a check found, and how it is printed.

#include "check/Report.h"

#include <json/value.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <tuple>

#include "Text.h"
#include "targetspec/Printable.h"

namespace kc2::tool {

namespace {

// The escape sequences of a terminal; none elsewhere.
struct Colours {
    const char* bold = "";
    const char* plain = "";
    const char* of[3] = {"", "", ""};  // By severity.

    static Colours forOutput() {
        return isatty(STDOUT_FILENO) != 0
                       ? Colours{"\033[1m", "\033[0m", {"\033[1;36m", "\033[1;35m", "\033[1;31m"}}
                       : Colours();
    }
};

}  // namespace

const char* nameOf(Severity severity) {
    switch (severity) {
        case Severity::Note:
            return "note";
        case Severity::Warning:
            return "warning";
        case Severity::Error:
            return "error";
    }
    return "";
}

void Report::add(const Rule& rule, const Source& source, Span span, std::string message) {
    add({&rule, &source, span, std::move(message), false});
}

void Report::addForFile(const Rule& rule, const Source& source, std::string message) {
    add({&rule, &source, Span(), std::move(message), true});
}

void Report::add(Entry entry) {
    if (mDisabledIds.count(entry.rule->id) != 0) {
        return;
    }
    if (std::find(mSources.begin(), mSources.end(), entry.source) == mSources.end()) {
        mSources.push_back(entry.source);
    }
    entry.message = printable(entry.message);  // Names, values, paths: they may hold any bytes.
    mEntries.push_back(std::move(entry));
}

std::vector<const Report::Entry*> Report::inOrder() const {
    std::map<const Source*, size_t> ranks;
    for (const Source* source : mSources) {
        ranks.emplace(source, ranks.size());
    }
    std::vector<const Entry*> entries;
    entries.reserve(mEntries.size());
    for (const Entry& entry : mEntries) {
        entries.push_back(&entry);
    }
    std::stable_sort(entries.begin(), entries.end(), [&](const Entry* a, const Entry* b) {
        return std::tuple(ranks[a->source], !a->isForFile, a->span.start) <
               std::tuple(ranks[b->source], !b->isForFile, b->span.start);
    });
    return entries;
}

void Report::printText() const {
    const Colours colours = Colours::forOutput();
    for (const Entry* entry : inOrder()) {
        const Severity severity = entry->rule->severity;
        std::printf("%s%s:%s %s%s:%s %s [%s]\n", colours.bold,
                    entry->source->placeOf(entry->span.start).c_str(), colours.plain,
                    colours.of[static_cast<int>(severity)], nameOf(severity), colours.plain,
                    entry->message.c_str(), entry->rule->id);
        if (!entry->isForFile) {
            std::fputs(entry->source->excerpt(entry->span).c_str(), stdout);
        }
    }
    const auto counted = [this](Severity severity) {
        const size_t number = count(severity);
        return std::to_string(number) + " " + nameOf(severity) + (number == 1 ? "" : "s");
    };
    std::printf("%s, %s, %s\n", counted(Severity::Error).c_str(),
                counted(Severity::Warning).c_str(), counted(Severity::Note).c_str());
}

void Report::printJson() const {
    Json::Value array(Json::arrayValue);
    for (const Entry* entry : inOrder()) {
        const Source::Position position = entry->source->positionOf(entry->span.start);
        Json::Value finding;
        finding["path"] = entry->source->path();
        finding["line"] = Json::UInt64(position.line);
        finding["column"] = Json::UInt64(position.column);
        finding["severity"] = nameOf(entry->rule->severity);
        finding["id"] = entry->rule->id;
        finding["message"] = entry->message;
        array.append(std::move(finding));
    }
    print(array);
}

size_t Report::count(Severity severity) const {
    return static_cast<size_t>(std::count_if(
            mEntries.begin(), mEntries.end(),
            [severity](const Entry& entry) { return entry.rule->severity == severity; }));
}

}  // namespace kc2::tool
