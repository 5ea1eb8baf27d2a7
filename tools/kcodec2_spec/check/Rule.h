// One kind of finding.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kc2::tool {

enum class Severity { Note, Warning, Error };

const char* nameOf(Severity severity);

// Rules are rows of tables; their ids never change, so that options and comments keep working.
struct Rule {
    const char* id;
    Severity severity;
    const char* summary;  // What "check --list" says; docs/checks.md says more.
    // The device takes nothing of the document, so no option and no comment may hide the finding.
    bool isRejection = false;
};

// Rules that belong together; options take the name for all of them.
struct RuleGroup {
    const char* name;
    const char* title;
    std::vector<const Rule*> rules;
};

// The name of all groups together.
inline constexpr char kAllRules[] = "all";

// All rules there are.
const std::vector<RuleGroup>& ruleGroups();

// The rule of that id; null when there is none.
const Rule* findRule(std::string_view id);

// That there is no check of that name, with the nearest that there is.
std::string unknownCheck(std::string_view name);

}  // namespace kc2::tool
