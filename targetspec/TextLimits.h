// What a document's text may hold before it is handed to the JSON parser.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "targetspec/SpecReader.h"

namespace kc2 {

// The parser's own limit: one more level ends the process there. A container at this level may
// still be empty.
inline constexpr size_t kMaxNesting = 1000;

// Documents are of some ten kilobytes and a hundred values. These bounds are far above that, and
// keep a hostile document from taking the service's memory: reading needs up to 220 bytes per
// value. An empty array or object counts as two values.
inline constexpr size_t kMaxTextBytes = size_t{32} << 20;
inline constexpr size_t kMaxValues = size_t{1} << 20;

struct LimitBreach {
    FindingKind kind;
    size_t offset;
};

// The first place where `text` goes beyond the limits. Brackets inside strings and comments do not
// count, nor does what follows a root that is an object, an array or null, as they do not for the
// parser. Any other root is rejected in any case.
std::optional<LimitBreach> findLimitBreach(std::string_view text);

}  // namespace kc2
