// The exit codes, the same for every command.
#pragma once

namespace kc2::tool {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFindings = 1;  // What a script should notice; main.cpp lists it for each.
inline constexpr int kExitUsage = 2;     // Wrong usage, a file not read, output not written.

}  // namespace kc2::tool
