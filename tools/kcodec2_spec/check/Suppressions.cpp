// Comments in a document that suppress findings: "// kcodec2_spec: allow ID".

#include "check/Suppressions.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/Text.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kMark = "kcodec2_spec:";
constexpr size_t kMostSuggestions = 100;  // Searching all ids a million times takes too long.

}  // namespace

Suppressions::Suppressions(const Source& source, const std::vector<Span>& comments)
    : mSource(&source) {
    const std::string_view text = source.text();
    if (text.find(kMark) == std::string_view::npos) {
        return;
    }
    // From the last comment to the first: a comment on its own line is for the same line as the
    // next.
    size_t nextStart = text.size();
    size_t nextLine = source.lineOf(text.size());
    for (auto comment = comments.rbegin(); comment != comments.rend(); ++comment) {
        const size_t line = source.lineOf(comment->start);
        const size_t before = text.substr(0, comment->start).find_last_not_of(" \t\r");
        const bool isAfter = before != std::string_view::npos && text[before] != '\n';
        const size_t next = text.find_first_not_of(kJsonBlanks, comment->limit);
        const size_t about = isAfter ? line : next < nextStart ? source.lineOf(next) : nextLine;
        readComment(*comment, about);
        nextStart = comment->start;
        nextLine = about;
    }
}

// Reads the ids of a comment that is for the tool.
void Suppressions::readComment(Span comment, size_t line) {
    const std::string_view text = mSource->textAt(comment);
    const size_t start = text.find_first_not_of(kJsonBlanks, 2);
    if (start == std::string_view::npos || !text.substr(start).starts_with(kMark)) {
        return;
    }
    constexpr std::string_view kBetween = " \t\r\n,";
    const std::string_view inside = text.substr(0, text.size() - (text[1] == '*' ? 2 : 0));
    size_t words = 0;
    size_t limit = start + kMark.size();
    for (size_t at; (at = inside.find_first_not_of(kBetween, limit)) != std::string_view::npos;
         ++words) {
        limit = std::min(inside.find_first_of(kBetween, at), inside.size());
        if (words != 0) {
            addId({comment.start + at, comment.start + limit}, line);
        } else if (inside.substr(at, limit - at) != "allow") {
            break;
        }
    }
    if (words < 2) {
        mMistakes.push_back(
                {comment, "the comment must continue with \"allow\" and the ids of checks"});
    }
}

void Suppressions::addId(Span span, size_t line) {
    const std::string_view id = mSource->textAt(span);
    const Check* const check = findCheck(id);
    if (noteFormerCheck(id)) {
        return;
    }
    if (check == nullptr && !isCheckGroup(id)) {
        mMistakes.push_back({span, mMistakes.size() < kMostSuggestions
                                           ? unknownCheck(id)
                                           : fmt::format("there is no check \"{}\"", id)});
    } else if (check != nullptr && check->isRejection) {
        mMistakes.push_back(
                {span,
                 fmt::format("{} cannot be allowed: the device uses nothing in the document", id)});
    } else if (!mByPlace.emplace(std::pair(line, id), Suppression{span, false}).second) {
        mMistakes.push_back({span, fmt::format("{} is already allowed here", id)});
    }
}

bool Suppressions::suppress(const Check& check, size_t offset) {
    if (check.isRejection || mByPlace.empty()) {
        return false;
    }
    const size_t line = mSource->lineOf(offset);
    bool isSuppressed = false;
    for (const std::string_view name : {std::string_view(check.id), std::string_view(check.group),
                                        std::string_view(kAllChecks)}) {
        const auto found = mByPlace.find(std::pair(line, name));
        if (found != mByPlace.end()) {
            found->second.isUsed = true;
            isSuppressed = true;
        }
    }
    return isSuppressed;
}

std::vector<Suppressions::Unused> Suppressions::unused() const {
    std::vector<Unused> unused = mMistakes;
    for (const auto& [place, suppression] : mByPlace) {
        if (!suppression.isUsed) {
            unused.push_back({suppression.span,
                              fmt::format("line {} has no finding {}\"{}\" to allow", place.first,
                                          findCheck(place.second) != nullptr ? "" : "of the group ",
                                          place.second)});
        }
    }
    return unused;
}

}  // namespace kc2::tool
