// Which findings are reported and how severe they are, as the options say.

#include "check/Levels.h"

#include <fmt/format.h>

namespace kc2::tool {

std::string Levels::set(const std::string& name, std::optional<Severity> severity) {
    if (isFormerCheck(name)) {
        noteFormerCheck(name);
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
