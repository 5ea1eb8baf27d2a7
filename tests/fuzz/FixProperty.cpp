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
    constexpr std::string_view kBetween = ",\"+\xEF\xBB\xBF{}[]: \t\r";
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

// Compares the texts as the parser sees them: without comments.
std::string whyOtherWords(const tool::Document& before, const tool::Document& after,
                          const tool::KnownSettings& known) {
    const std::vector<std::string> old = linesOf(before.parserText);
    const std::vector<std::string> now = linesOf(after.parserText);
    if (old.size() != now.size()) {
        return "another number of lines";
    }
    for (size_t line = 0; line < old.size(); ++line) {
        const std::multiset<std::string> oldWords = wordsOf(old[line]);
        const std::multiset<std::string> newWords = wordsOf(now[line]);
        const auto isNameHere = [&](const std::string& word) { return isKnown(word, known); };
        std::vector<std::string> added;
        std::set_difference(newWords.begin(), newWords.end(), oldWords.begin(), oldWords.end(),
                            std::back_inserter(added));
        if (!std::all_of(added.begin(), added.end(), isNameHere)) {
            return "a word that is not a known name is new in: " + now[line];
        }
        const bool isSame = oldWords == newWords;
        if (!isSame && std::none_of(newWords.begin(), newWords.end(), isNameHere)) {
            return "words have changed, and none is a known name, in: " + now[line];
        }
    }
    return std::string();
}

// The text with the fixes of each report made, until a report has none.
std::string withReportedFixes(std::string text, const tool::KnownSettings& known) {
    for (int round = 0; round < tool::kMostFixRounds; ++round) {
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
    const tool::Document fixed({.path = "document"}, after);
    if (!fixed.isAccepted) {
        return "the fixed text is not accepted";
    }
    if (after != withReportedFixes(before, known)) {
        return "the text differs elsewhere than at the reported fixes";
    }
    return whyOtherWords(tool::Document({.path = "document"}, before), fixed, known);
}

}  // namespace kc2::fuzz
