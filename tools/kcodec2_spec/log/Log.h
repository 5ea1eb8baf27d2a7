// What the command "log" does, and its options.
#pragma once

#include <string>

namespace kc2::tool {

struct LogOptions {
    bool asJson = false;
    bool isAll = false;           // Also what is in order, and every place.
    bool hasTree = false;         // The documents were pulled, too.
    bool isVariantGiven = false;  // By an option; otherwise the log's is used.
};

// Prints what the log in that file, or on standard input for "-", shows; the exit code.
int describeLog(const std::string& path, const LogOptions& options);

}  // namespace kc2::tool
