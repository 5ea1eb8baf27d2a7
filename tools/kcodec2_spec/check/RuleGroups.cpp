// All rules, in groups, and the list that "check --list" prints.

#include <algorithm>
#include <cstdio>
#include <string>
#include <unordered_map>

#include "base/ExitCodes.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "check/CheckOptions.h"
#include "check/rules/Rules.h"

namespace kc2::tool {

namespace {

std::vector<const Rule*> together(std::vector<const Rule*> rules,
                                  const std::vector<const Rule*>& more) {
    rules.insert(rules.end(), more.begin(), more.end());
    return rules;
}

}  // namespace

const std::vector<RuleGroup>& ruleGroups() {
    static const std::vector<RuleGroup> groups = {
            {"load", "Which documents a load reads", loadRules()},
            {"tree", "Files of a device that nothing can read", treeRules()},
            {"reader", "What a device rejects, skips or changes", readerRules()},
            {"document", "What a document says that is likely not meant", documentRules()},
            {"name", "Names of settings, and of entries in lists", nameRules()},
            {"codec", "Codec components", together(codecRules(), codecMergeRules())},
            {"value", "Values that the settings catalogue does not allow",
             together(valueRules(), dependencyRules())},
            {"perf", "Perf words", perfRules()},
            {"row", "Rows of the bit-rate table", rowRules()},
            {"merge", "What the documents come to together",
             together(mergeRules(), overlayRules())},
            {"comment", "Comments for the checker", allowanceRules()},
    };
    return groups;
}

const Rule* findRule(std::string_view id) {
    static const std::unordered_map<std::string_view, const Rule*> rules = [] {
        std::unordered_map<std::string_view, const Rule*> all;
        for (const RuleGroup& group : ruleGroups()) {
            for (const Rule* const rule : group.rules) {
                all.emplace(rule->id, rule);
            }
        }
        return all;
    }();
    const auto found = rules.find(id);
    return found != rules.end() ? found->second : nullptr;
}

std::string unknownCheck(std::string_view name) {
    std::vector<std::string_view> names = {kAllRules};
    for (const RuleGroup& group : ruleGroups()) {
        names.emplace_back(group.name);
        for (const Rule* const rule : group.rules) {
            names.emplace_back(rule->id);
        }
    }
    const std::string near = nearest(name, names);
    return "there is no check \"" + std::string(name) + "\"" +
           (near.empty() ? "" : ". Did you mean \"" + near + "\"?");
}

int listChecks(const CheckOptions& options) {
    size_t width = 0;
    for (const RuleGroup& group : ruleGroups()) {
        for (const Rule* const rule : group.rules) {
            width = std::max(width, std::string_view(rule->id).size());
        }
    }
    for (const RuleGroup& group : ruleGroups()) {
        std::printf("%s%s: %s\n", &group == &ruleGroups().front() ? "" : "\n", group.name,
                    group.title);
        for (const Rule* const rule : group.rules) {
            const std::optional<Severity> severity = options.levels.of(*rule);
            std::printf("  %s  %-8s %s\n", padded(rule->id, width).c_str(),
                        severity ? nameOf(*severity) : "off", rule->summary);
        }
    }
    return kExitOk;
}

}  // namespace kc2::tool
