// The text of a document, out of a file stream.

#include "targetspec/DocumentText.h"

#include <istream>

#include "targetspec/TextLimits.h"

namespace kc2 {

bool readText(std::ifstream& stream, std::string* text) {
    std::istream input(stream.rdbuf());  // With flags of its own, and no exceptions asked for.
    // Where the standard library asks the file for its size: one allocation instead of many.
    const std::streamsize expected = input.rdbuf()->in_avail();
    if (expected > 0 && static_cast<size_t>(expected) <= kMaxTextBytes) {
        text->reserve(static_cast<size_t>(expected));
    }
    char block[4096];
    while (input.good() && text->size() <= kMaxTextBytes) {
        input.read(block, sizeof(block));
        text->append(block, static_cast<size_t>(input.gcount()));
    }
    return !input.bad();
}

}  // namespace kc2
