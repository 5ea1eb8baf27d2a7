// What a document may contain at most. Every limit is here.
#pragma once

#include <cstddef>

namespace kc2 {

// Containers open at once. JsonCpp 1.9.7 and later reads a value inside of at most 255; earlier
// releases allow 1,000. Beyond its limit the parser throws an exception or ends the process.
inline constexpr size_t kMaxNesting = 255;

// Documents have some ten kilobytes and a hundred values. These limits are far above that, and keep
// a hostile document from using up the service's memory: reading needs up to 220 bytes per value. A
// container counts as one value, an empty one as two.
inline constexpr size_t kMaxTextBytes = size_t{32} << 20;
inline constexpr size_t kMaxValues = size_t{1} << 20;

}  // namespace kc2
