// Which findings are reported and how severe they are, as the options say.

#include "check/Levels.h"

#include <string>

namespace kc2::tool {

std::string Levels::set(const std::string& name, std::optional<Severity> severity) {
    if (const Rule* const rule = findRule(name)) {
        if (rule->isRejection && severity != Severity::Error) {
            return "\"" + name + "\" is always an error: the device takes nothing of the document";
        }
        mChanged[rule->id] = severity;
        return std::string();
    }
    bool isKnown = false;
    for (const RuleGroup& group : ruleGroups()) {
        if (name == group.name || name == kAllRules) {
            isKnown = true;
            for (const Rule* const rule : group.rules) {
                if (!rule->isRejection) {
                    mChanged[rule->id] = severity;
                }
            }
        }
    }
    return isKnown ? std::string() : unknownCheck(name);
}

std::optional<Severity> Levels::of(const Rule& rule) const {
    const auto changed = mChanged.find(rule.id);
    const std::optional<Severity> severity =
            changed != mChanged.end() ? changed->second : rule.severity;
    return severity >= mLeast ? severity : std::nullopt;
}

}  // namespace kc2::tool
