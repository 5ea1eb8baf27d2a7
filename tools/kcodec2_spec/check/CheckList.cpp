// The list of checks, as options set their severities.

#include "check/CheckList.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace kc2::tool {

void printCheckList(const Levels& levels) {
    size_t width = 0;
    for (const Check& check : kChecks) {
        width = std::max(width, std::string_view(check.id).size());
    }
    for (const CheckGroup& group : kCheckGroups) {
        fmt::print("{}{}: {}\n", &group == std::begin(kCheckGroups) ? "" : "\n", group.name,
                   group.title);
        for (const Check& check : kChecks) {
            if (std::string_view(check.group) == group.name) {
                const std::optional<Severity> severity = levels.of(check);
                fmt::print("  {:{}}  {:8} {}\n", check.id, width,
                           severity ? nameOf(*severity) : "off", check.summary);
            }
        }
    }
}

}  // namespace kc2::tool
