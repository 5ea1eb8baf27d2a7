// The names in a document, where they are: of its settings, and the entries of its lists.

#include "check/DocumentNames.h"

namespace kc2::tool {

std::string_view unquoted(std::string_view quoted, std::string* decoded) {
    if (quoted.size() < 2) {
        return {};
    }
    if (quoted.find('\\') == std::string_view::npos) {
        return quoted.substr(1, quoted.size() - 2);
    }
    *decoded = decodedString(quoted);
    return *decoded;
}

}  // namespace kc2::tool
