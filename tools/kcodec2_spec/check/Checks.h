// Looks up checks by their ids, and what the options set for them. The checks themselves are the
// rows of CheckRows.h.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "check/CheckRows.h"

namespace kc2::tool {

const char* nameOf(Severity severity);

// The name of all groups together.
inline constexpr char kAllChecks[] = "all";

// Appears in the compiler's message about an id that no row has: it is not a constant expression.
void noCheckHasThisId();

// The row of an id. An id that no row has does not compile: add("row-gap", ...).
class CheckId {
public:
    consteval CheckId(const char* id) : mCheck(find(id)) {}    // NOLINT: written as its text.
    constexpr CheckId(const Check& check) : mCheck(&check) {}  // NOLINT: as its id.

    constexpr const Check& operator*() const { return *mCheck; }
    constexpr const Check* operator->() const { return mCheck; }

private:
    static consteval const Check* find(std::string_view id) {
        for (const Check& check : kChecks) {
            if (check.id == id) {
                return &check;
            }
        }
        noCheckHasThisId();
        return nullptr;
    }

    const Check* mCheck;
};

// The check of that id; null when there is none.
const Check* findCheck(std::string_view id);

// Whether options may use the name: of a group, or of all.
bool isCheckGroup(std::string_view name);

// Whether the check is in the group of that name.
constexpr bool isInGroup(const Check& check, std::string_view name) {
    return name == kAllChecks || name == check.group;
}

// Which findings are reported and how severe they are, as the options say.
class Levels {
public:
    // Gives the check of that id, or those of that group, a severity, or leaves them out (nullopt).
    // What is set later wins. Returns what is wrong; empty when nothing is.
    std::string set(const std::string& name, std::optional<Severity> severity);

    // Leaves out what is less severe.
    void setLeast(Severity severity) { mLeast = severity; }

    // What findings of the check are; nullopt when they are left out.
    std::optional<Severity> of(const Check& check) const;

private:
    std::map<std::string_view, std::optional<Severity>> mChanged;  // By id.
    Severity mLeast = Severity::Note;
};

// Whether there once was a check of that name, whose findings are now the heading of the report:
// options and comments may still name it, without effect. Says so on standard error, once for each.
bool noteFormerCheck(std::string_view name);

// A message that there is no check of that name, with the nearest one.
std::string unknownCheck(std::string_view name);

}  // namespace kc2::tool
