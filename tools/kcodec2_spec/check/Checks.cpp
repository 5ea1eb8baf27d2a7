// Looks up checks by their ids, and what the options set for them.

#include "check/Checks.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/Print.h"
#include "base/Spelling.h"

namespace kc2::tool {

namespace {

// Each group's checks follow each other, in the order of the groups, and no group is empty.
constexpr bool areGroupsInOrder() {
    size_t group = 0;
    for (const Check& check : kChecks) {
        if (std::string_view(check.group) != kCheckGroups[group].name) {
            ++group;
        }
        if (group == std::size(kCheckGroups) ||
            std::string_view(check.group) != kCheckGroups[group].name) {
            return false;
        }
    }
    return group + 1 == std::size(kCheckGroups);
}
static_assert(areGroupsInOrder());

// Text that is the same on a terminal and in Markdown.
constexpr bool isPlainText(std::string_view text) {
    return !text.empty() && text.find_first_of("<>|*`\n") == std::string_view::npos;
}

// A check has a document with the mistake and the same one without it, or a reason why not.
constexpr bool hasEachItsTexts() {
    return std::all_of(std::begin(kChecks), std::end(kChecks), [](const Check& check) {
        const bool isShown = *check.mistake != '\0';
        return isPlainText(check.summary) && isPlainText(check.meaning) && isPlainText(check.fix) &&
               isShown == (*check.fixed != '\0') && isShown == (*check.whyNoExample == '\0');
    });
}
static_assert(hasEachItsTexts());

}  // namespace

const char* nameOf(Severity severity) {
    constexpr const char* kNames[] = {"note", "warning", "error"};
    return kNames[static_cast<size_t>(severity)];
}

bool noteFormerCheck(std::string_view name) {
    if (name != "system-spec" && name != "overlay") {
        return false;
    }
    static std::set<std::string, std::less<>> noted;
    if (noted.emplace(name).second) {
        printError(
                "naming the check \"{}\" has no effect: it is now the heading of "
                "the report",
                name);
    }
    return true;
}

const Check* findCheck(std::string_view id) {
    static const std::unordered_map<std::string_view, const Check*> checks = [] {
        std::unordered_map<std::string_view, const Check*> all;
        for (const Check& check : kChecks) {
            all.emplace(check.id, &check);
        }
        return all;
    }();
    const auto found = checks.find(id);
    return found != checks.end() ? found->second : nullptr;
}

bool isCheckGroup(std::string_view name) {
    return name == kAllChecks ||
           std::any_of(std::begin(kCheckGroups), std::end(kCheckGroups),
                       [name](const CheckGroup& group) { return name == group.name; });
}

std::string unknownCheck(std::string_view name) {
    std::vector<std::string_view> names = {kAllChecks};
    for (const CheckGroup& group : kCheckGroups) {
        names.emplace_back(group.name);
    }
    for (const Check& check : kChecks) {
        names.emplace_back(check.id);
    }
    const std::string near = nearest(name, names);
    return fmt::format("there is no check \"{}\"{}", name,
                       near.empty() ? "" : fmt::format(". Did you mean \"{}\"?", near));
}

std::string Levels::set(const std::string& name, std::optional<Severity> severity) {
    if (noteFormerCheck(name)) {
        return std::string();
    }
    if (const Check* const check = findCheck(name)) {
        if (check->isRejection && severity != Severity::Error) {
            return fmt::format("\"{}\" is always an error: the device uses nothing in the document",
                               name);
        }
        mChanged[check->id] = severity;
        return std::string();
    }
    if (!isCheckGroup(name)) {
        return unknownCheck(name);
    }
    for (const Check& check : kChecks) {
        if (isInGroup(check, name) && !check.isRejection) {
            mChanged[check.id] = severity;
        }
    }
    return std::string();
}

std::optional<Severity> Levels::of(const Check& check) const {
    const auto changed = mChanged.find(check.id);
    const std::optional<Severity> severity =
            changed != mChanged.end() ? changed->second : check.severity;
    return severity >= mLeast ? severity : std::nullopt;
}

}  // namespace kc2::tool
