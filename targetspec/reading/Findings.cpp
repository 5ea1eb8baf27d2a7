// Where in a document a finding is, in words.

#include "targetspec/reading/Findings.h"

#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Escaped.h"

namespace kc2 {

std::string Place::toString() const {
    // The log cuts a line after a thousand bytes, and the reason is after the place.
    constexpr size_t kMostNameBytes = 200;
    std::string text = targetSpecRoot != nullptr ? targetSpecRoot : "";
    if (section.data() != nullptr) {
        text.append("/").append(section);
    }
    if (!name.empty()) {
        text.append("/").append(escaped(name.substr(0, kMostNameBytes)));
        text.append(name.size() > kMostNameBytes ? "..." : "");
    }
    if (index >= 0) {
        text.append("[").append(std::to_string(index)).append("]");
    }
    return text;
}

}  // namespace kc2
