// What reading a document can find: each kind with its effect, and where in the document it is.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>

namespace kc2 {

// What a finding means for the value that it is about.
enum class Effect : uint8_t {
    Rejects,        // The whole document is rejected.
    SkipsAndLogs,   // The section, the named entry or the row is left out; the device logs it.
    SkipsSilently,  // It is left out, or has no effect, without a log line.
    Changes,        // It is used, but not as it is written.
    Takes,          // It is used: the section's element, the named entry, the row.
    Ignores,        // A member that the reader does not look up.
};

enum class FindingKind : uint8_t {
    TextTooLong,
    TooManyValues,
    NestingTooDeep,
    SyntaxError,
    RootNotObject,
    VideoNotObject,
    SectionNotObject,
    FeatureNotBoolean,
    PresetNotInteger,
    RowSizeNotThree,
    RowNotArray,
    RowValueNotInteger,
    TierLevelNotInteger,
    PerfWordNotHexadecimal,
    NoVideo,
    ListNotArray,
    ElementNotString,
    ProfileNotUnsigned,
    Taken,
    ObjectAsArray,  // Its member values are used, in ascending key order.
    NumberAsBoolean,
    NullAsFalse,
    BooleanAsInteger,
    NullAsZero,
    RealTruncated,
    NegativeAsUnsigned,
    PerfWordUnquoted,
    PerfWordTail,
    TierLevelAbsent,  // It is then 0.
    UnknownRootMember,
    UnknownMember,  // Of "Video", or of a section whose members have fixed names.
};

struct FindingRow {
    FindingKind kind;
    Effect effect;
    // Why the value was skipped, as the device logs it; null if it does not log that.
    const char* reason = nullptr;
};

inline constexpr FindingRow kFindingRows[] = {
        {FindingKind::TextTooLong, Effect::Rejects},
        {FindingKind::TooManyValues, Effect::Rejects},
        {FindingKind::NestingTooDeep, Effect::Rejects},
        {FindingKind::SyntaxError, Effect::Rejects},
        {FindingKind::RootNotObject, Effect::Rejects},
        {FindingKind::VideoNotObject, Effect::Rejects},
        {FindingKind::SectionNotObject, Effect::SkipsAndLogs, "not an object"},
        {FindingKind::FeatureNotBoolean, Effect::SkipsAndLogs, "not a boolean"},
        {FindingKind::PresetNotInteger, Effect::SkipsAndLogs,
         "not an integer in the signed 32-bit range"},
        {FindingKind::RowSizeNotThree, Effect::SkipsAndLogs},  // Its log line has a fixed text.
        {FindingKind::RowNotArray, Effect::SkipsAndLogs, "not an array"},
        {FindingKind::RowValueNotInteger, Effect::SkipsAndLogs,
         "not an integer in the signed 32-bit range"},
        {FindingKind::TierLevelNotInteger, Effect::SkipsAndLogs,
         "not an integer in the signed 32-bit range"},
        {FindingKind::PerfWordNotHexadecimal, Effect::SkipsAndLogs,
         "not a hexadecimal string in the signed 32-bit range"},
        {FindingKind::NoVideo, Effect::SkipsSilently},
        {FindingKind::ListNotArray, Effect::SkipsSilently},
        {FindingKind::ElementNotString, Effect::SkipsSilently},
        {FindingKind::ProfileNotUnsigned, Effect::SkipsSilently},
        {FindingKind::Taken, Effect::Takes},
        {FindingKind::ObjectAsArray, Effect::Changes},
        {FindingKind::NumberAsBoolean, Effect::Changes},
        {FindingKind::NullAsFalse, Effect::Changes},
        {FindingKind::BooleanAsInteger, Effect::Changes},
        {FindingKind::NullAsZero, Effect::Changes},
        {FindingKind::RealTruncated, Effect::Changes},
        {FindingKind::NegativeAsUnsigned, Effect::Changes},
        {FindingKind::PerfWordUnquoted, Effect::Changes},
        {FindingKind::PerfWordTail, Effect::Changes},
        {FindingKind::TierLevelAbsent, Effect::Changes},
        {FindingKind::UnknownRootMember, Effect::Ignores},
        {FindingKind::UnknownMember, Effect::Ignores},
};

// A kind without a row does not compile where its effect is a constant, as in the reader.
constexpr const FindingRow& rowOf(FindingKind kind) {
    return *std::find_if(std::begin(kFindingRows), std::end(kFindingRows),
                         [kind](const FindingRow& row) { return row.kind == kind; });
}

// Where in the document: Video/<section>/<name>[<index>], as far as each exists.
struct Place {
    std::string_view section = {};  // Its data() is null before the first section.
    std::string_view name = {};     // Member of the section; may contain any bytes.
    int index = -1;                 // Element of the section or of the member.

    // For a log line: escaped, with a long name cut.
    std::string toString() const;
};

// One thing found. Its texts are valid only while it is being reported.
struct Finding {
    FindingKind kind;
    Place place = {};
    // Bytes of the text that it is about: [start, limit).
    size_t start = 0;
    size_t limit = 0;
    int64_t converted = 0;         // What a value is used as, if not as it is written.
    std::string_view detail = {};  // The parser's message about a syntax error.
};

// Receives the findings of the effects that it wants; the others cost nothing.
class FindingSink {
public:
    void report(const Finding& finding) {
        if (wants(rowOf(finding.kind).effect)) {
            take(finding);
        }
    }

    bool wants(Effect effect) const { return (mEffects & bitOf(effect)) != 0; }

protected:
    // Wants every effect.
    FindingSink() = default;

    FindingSink(std::initializer_list<Effect> effects) : mEffects(0) {
        for (const Effect effect : effects) {
            mEffects |= bitOf(effect);
        }
    }
    ~FindingSink() = default;

    virtual void take(const Finding& finding) = 0;

private:
    static uint32_t bitOf(Effect effect) { return uint32_t{1} << static_cast<uint32_t>(effect); }

    uint32_t mEffects = UINT32_MAX;
};

}  // namespace kc2
