// What a check found, and how it is printed.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "check/Source.h"

namespace kc2::tool {

enum class Severity { Note, Warning, Error };

const char* nameOf(Severity severity);

// One kind of finding. Rules stand in tables; their ids never change, so that --disable keeps
// working.
struct Rule {
    const char* id;
    Severity severity;
    const char* summary;  // What --help says; docs/checks.md says more.
};

class Report {
public:
    // Findings of the rules with these ids are left out.
    explicit Report(std::set<std::string> disabledIds) : mDisabledIds(std::move(disabledIds)) {}

    // A finding at a place. The rule and the source must outlive the report. What must not be shown
    // of the message is escaped here, so rules put in names and values as they are.
    void add(const Rule& rule, const Source& source, Span span, std::string message);

    // A finding about a whole file: it stands at 1:1 and shows no line.
    void addForFile(const Rule& rule, const Source& source, std::string message);

    // Prints everything, source by source in the order in which they were first named, and in the
    // order of the text within each.
    void printText() const;
    void printJson() const;

    size_t count(Severity severity) const;

private:
    struct Entry {
        const Rule* rule;
        const Source* source;
        Span span;
        std::string message;
        bool isForFile;
    };

    void add(Entry entry);
    std::vector<const Entry*> inOrder() const;

    std::set<std::string> mDisabledIds;
    std::vector<const Source*> mSources;
    std::vector<Entry> mEntries;
};

}  // namespace kc2::tool
