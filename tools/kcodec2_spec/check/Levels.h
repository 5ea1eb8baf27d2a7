// Which findings are reported and how severe they are, as the options say.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "check/Checks.h"

namespace kc2::tool {

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

}  // namespace kc2::tool
