// Text -> SpecDocument, and what was found on the way. Knows JSON, knows no store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "targetspec/SpecDocument.h"

namespace kc2 {

// What the reader does with a value: leaves it out (and how much that costs), takes it, changes it.
enum class FindingKind {
    // The whole document is rejected.
    TextTooLong,
    TooManyValues,
    NestingTooDeep,
    SyntaxError,
    RootNotObject,
    VideoNotObject,

    // The section, the named entry or the row is skipped; the device logs it.
    SectionNotObject,
    FeatureNotBoolean,
    PresetNotInteger,
    RowSizeNotThree,
    RowNotArray,
    RowValueNotInteger,
    TierLevelNotInteger,
    PerfWordNotHexadecimal,

    // Skipped, or of no effect, in silence.
    NoVideo,
    ListNotArray,
    ElementNotString,
    ProfileNotUnsigned,

    Taken,  // The value was taken: the section's element, the named entry, the row.

    // Taken, but not as it is written.
    ObjectAsArray,  // Walked over its member values, in ascending key order.
    NumberAsBoolean,
    NullAsFalse,
    BooleanAsInteger,
    NullAsZero,
    RealTruncated,
    NegativeAsUnsigned,
    PerfWordUnquoted,
    PerfWordTail,
    TierLevelAbsent,  // Counts as 0.
};

inline constexpr FindingKind kLastKindThatDevicesLog = FindingKind::PerfWordNotHexadecimal;
inline constexpr FindingKind kLastKind = FindingKind::TierLevelAbsent;

// Where in the document: Video/<section>/<name>[<index>], as far as it applies.
struct Place {
    const char* section = nullptr;
    std::string_view name = {};  // Member of the section; may hold any bytes.
    int index = -1;              // Element of the section or of the member.

    // Fit for a log line: what must not be shown is escaped, a long name is cut.
    std::string toString() const;
};

// One thing found. Valid only while it is being reported.
struct Finding {
    FindingKind kind;
    Place place = {};
    // Bytes of the text that it is about: [start, limit).
    size_t start = 0;
    size_t limit = 0;
    int64_t converted = 0;         // What became of a value that is taken, but not as written.
    std::string_view detail = {};  // The parser's own words on a syntax error.
};

// Hears of findings up to a kind; what it does not want to hear costs nothing.
class FindingSink {
public:
    virtual void report(const Finding& finding) = 0;

    bool hears(FindingKind kind) const { return kind <= mLastKind; }

protected:
    explicit FindingSink(FindingKind lastKind) : mLastKind(lastKind) {}
    ~FindingSink() = default;

private:
    const FindingKind mLastKind;
};

// Reads one document into `document`, which holds nothing yet. Returns false when it is rejected;
// `document` then still holds nothing.
//
// Every value is checked before it is converted, and the text before it is parsed: device builds of
// JsonCpp end the process on whatever it does not accept.
//
// Blanks the comments in the text, and changes nothing else.
bool readSpecDocument(std::span<char> text, SpecDocument* document, FindingSink& findings);

}  // namespace kc2
