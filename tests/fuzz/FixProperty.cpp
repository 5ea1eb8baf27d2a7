// What must be true of "check --fix" with any text.

#include "tests/fuzz/FixProperty.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "check/Check.h"
#include "targetspec/reading/Sections.h"

namespace kc2::fuzz {

namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

// What no fix adds or removes.
std::multiset<std::string> wordsOf(const std::string& line) {
    constexpr std::string_view kBetween = ",\"+\xEF\xBB\xBF{}[]:/ \t\r";
    std::multiset<std::string> words;
    std::string word;
    for (const char c : line + " ") {
        if (kBetween.find(c) == std::string_view::npos) {
            word += c;
        } else if (!word.empty()) {
            words.insert(std::exchange(word, ""));
        }
    }
    return words;
}

bool isKnown(const std::string& word, const tool::KnownSettings& known) {
    if (known.catalogue.setting(word) != nullptr || known.catalogue.component(word) != nullptr ||
        word == targetSpecRoot) {
        return true;
    }
    return std::any_of(std::begin(kSections), std::end(kSections), [&](const Section& row) {
        const auto members = fixedMembersOf(row.type);
        return (*row.key != nullptr && word == *row.key) ||
               std::any_of(members.begin(), members.end(), [&](const char* const* member) {
                   return *member != nullptr && word == *member;
               });
    });
}

std::string whyOtherWords(const std::string& before, const std::string& after,
                          const tool::KnownSettings& known) {
    const std::vector<std::string> old = linesOf(before);
    const std::vector<std::string> now = linesOf(after);
    if (old.size() != now.size()) {
        return "another number of lines";
    }
    for (size_t line = 0; line < old.size(); ++line) {
        const std::multiset<std::string> oldWords = wordsOf(old[line]);
        const std::multiset<std::string> newWords = wordsOf(now[line]);
        std::vector<std::string> added;
        std::vector<std::string> removed;
        std::set_difference(newWords.begin(), newWords.end(), oldWords.begin(), oldWords.end(),
                            std::back_inserter(added));
        std::set_difference(oldWords.begin(), oldWords.end(), newWords.begin(), newWords.end(),
                            std::back_inserter(removed));
        if (added.empty() != removed.empty()) {
            return "words are only added, or only removed, in: " + now[line];
        }
        for (const std::string& word : added) {
            if (!isKnown(word, known)) {
                return "not a known name: " + word;
            }
        }
    }
    return std::string();
}

// The text with the fixes of each report made, until a report has none.
std::string withReportedFixes(std::string text, const tool::KnownSettings& known) {
    constexpr int kMostRounds = 8;
    for (int round = 0; round < kMostRounds; ++round) {
        const tool::Document document({.path = "document"}, text);
        tool::Report report{tool::Levels()};
        tool::check(tool::Checked(document, known), &report);
        std::vector<tool::Fix> fixes;
        for (const tool::ReportEntry* const entry : report.inOrder()) {
            if (entry->details != nullptr) {
                fixes.insert(fixes.end(), entry->details->fixes.begin(),
                             entry->details->fixes.end());
            }
        }
        // From the end, so that the places of the others stay.
        std::sort(fixes.begin(), fixes.end(), [](const tool::Fix& a, const tool::Fix& b) {
            return a.span.start > b.span.start;
        });
        for (const tool::Fix& fix : fixes) {
            text.replace(fix.span.start, fix.span.limit - fix.span.start, fix.replacement);
        }
        if (fixes.empty()) {
            break;
        }
    }
    return text;
}

}  // namespace

std::string whyUnsafe(const std::string& before, const std::string& after,
                      const tool::KnownSettings& known) {
    if (after == before) {
        return std::string();
    }
    if (!tool::Document({.path = "document"}, after).isAccepted) {
        return "the fixed text is not accepted";
    }
    if (after != withReportedFixes(before, known)) {
        return "the text differs elsewhere than at the reported fixes";
    }
    return whyOtherWords(before, after, known);
}

}  // namespace kc2::fuzz
