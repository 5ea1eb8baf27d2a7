// The two results of a load step.
#pragma once

#include <cstdint>

namespace kc2 {

inline constexpr uint32_t kLoadOk = 0;
inline constexpr uint32_t kLoadFailed = 0xFFFFFFFF;

}  // namespace kc2
