// Comments in a document that allow a finding: "// kcodec2_spec: allow ID".

#include "check/Allowances.h"

#include <algorithm>
#include <string>

#include "base/Text.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kMark = "kcodec2_spec:";
constexpr size_t kMostSuggestions = 100;  // A search through all ids for each of a million is long.

}  // namespace

constexpr Rule kAllowsNothing = {"allows-nothing", Severity::Warning,
                                 "a comment that allows a finding that is not there"};

Allowances::Allowances(const Source& source, const std::vector<Span>& comments) : mSource(&source) {
    const std::string_view text = source.text();
    if (text.find(kMark) == std::string_view::npos) {
        return;
    }
    // From the last comment to the first: what a comment allows may be where the next one points.
    size_t nextStart = text.size();
    size_t nextLine = source.lineOf(text.size());
    for (auto comment = comments.rbegin(); comment != comments.rend(); ++comment) {
        const size_t line = source.lineOf(comment->start);
        const size_t before = text.find_last_not_of(" \t\r", comment->start - 1);
        const bool isBehind = comment->start != 0 && before != std::string_view::npos &&
                              text[before] != '\n' && before >= source.startOf(line);
        const size_t next = text.find_first_not_of(kJsonBlanks, comment->limit);
        const size_t allowed = isBehind ? line : next < nextStart ? source.lineOf(next) : nextLine;
        readComment(*comment, allowed);
        nextStart = comment->start;
        nextLine = isBehind ? source.lineOf(comment->start) : allowed;
    }
}

std::string_view Allowances::textOf(Span span) const {
    return mSource->textAt(span);
}

// Takes the ids of a comment that is for us.
void Allowances::readComment(Span comment, size_t line) {
    const std::string_view text = textOf(comment);
    size_t at = text.find_first_not_of(kJsonBlanks, 2);
    if (at == std::string_view::npos || text.substr(at, kMark.size()) != kMark) {
        return;
    }
    const bool isBlock = text[1] == '*';
    const std::string_view inside = text.substr(0, text.size() - (isBlock ? 2 : 0));
    bool isFirst = true;
    bool hasId = false;
    at += kMark.size();
    while ((at = inside.find_first_not_of(" \t\r\n,", at)) != std::string_view::npos) {
        const size_t limit = std::min(inside.find_first_of(" \t\r\n,", at), inside.size());
        if (isFirst && inside.substr(at, limit - at) != "allow") {
            break;
        }
        if (!isFirst) {
            addId({comment.start + at, comment.start + limit}, line);
            hasId = true;
        }
        isFirst = false;
        at = limit;
    }
    if (!hasId) {
        mMistakes.push_back({comment, "the comment must go on with \"allow\" and ids of checks"});
    }
}

void Allowances::addId(Span span, size_t line) {
    const std::string_view id = textOf(span);
    const Rule* const rule = findRule(id);
    if (rule == nullptr) {
        mMistakes.push_back({span, mMistakes.size() < kMostSuggestions
                                           ? unknownCheck(id)
                                           : "there is no check \"" + std::string(id) + "\""});
    } else if (rule->isRejection) {
        mMistakes.push_back({span, std::string(id) + " cannot be allowed: the device takes nothing "
                                                     "of the document"});
    } else if (!mByPlace.emplace(std::pair(line, id), Allowance{span, false}).second) {
        mMistakes.push_back({span, std::string(id) + " is allowed here already"});
    }
}

bool Allowances::allows(const Rule& rule, size_t offset) {
    if (rule.isRejection || mByPlace.empty()) {
        return false;
    }
    const auto found = mByPlace.find(std::pair(mSource->lineOf(offset), std::string_view(rule.id)));
    if (found == mByPlace.end()) {
        return false;
    }
    found->second.isUsed = true;
    return true;
}

std::vector<Allowances::Unused> Allowances::unused() const {
    std::vector<Unused> unused = mMistakes;
    for (const auto& [place, allowance] : mByPlace) {
        if (!allowance.isUsed) {
            unused.push_back({allowance.span, "line " + std::to_string(place.first) +
                                                      " has no finding \"" +
                                                      std::string(place.second) + "\" to allow"});
        }
    }
    return unused;
}

std::vector<const Rule*> allowanceRules() {
    return {&kAllowsNothing};
}

}  // namespace kc2::tool
