// An example of what each check finds, and its mend.
#pragma once

#include <string_view>

namespace kc2::tool {

struct CheckExample {
    const char* id;
    const char* mend;
    // A document with the mistake and the same without it; empty where no short document shows it.
    const char* mistake;
    const char* mended;
    const char* whyNone = "";  // There is no document.
};

// Null when there is none for that check.
const CheckExample* exampleOf(std::string_view id);

}  // namespace kc2::tool
