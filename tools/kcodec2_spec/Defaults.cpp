// kcodec2_spec defaults: a built-in document, to start a new one from.

#include <cstdio>

#include "Commands.h"
#include "targetspec/DefaultDocuments.h"

namespace kc2::tool {

int printDefault(int number) {
    for (const ChipDocument& row : kChipDocuments) {
        if (row.number == number) {
            std::fputs(row.text, stdout);
            return kExitOk;
        }
    }
    return kExitUsage;
}

}  // namespace kc2::tool
