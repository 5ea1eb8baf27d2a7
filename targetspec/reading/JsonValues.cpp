// JSON values as the store keeps them.

#include "targetspec/reading/JsonValues.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>
#include <utility>

namespace kc2 {

namespace {

constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();

struct HexadecimalText {
    int32_t value;
    bool hasTail;  // Whether anything follows the digits.
};

// As strtol() reads it, but the same in every locale: white space, sign and 0x are optional;
// reading stops at the first character that is not a digit.
std::optional<HexadecimalText> readHexadecimal(std::string_view text) {
    const size_t start = text.find_first_not_of(" \t\n\v\f\r");
    text.remove_prefix(start != std::string_view::npos ? start : text.size());
    const bool isSigned = !text.empty() && (text.front() == '-' || text.front() == '+');
    const bool isMinus = isSigned && text.front() == '-';
    text.remove_prefix(isSigned ? 1 : 0);

    const char* const limit = text.data() + text.size();
    uint32_t magnitude = 0;
    const bool hasPrefix = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    std::from_chars_result read =
            std::from_chars(text.data() + (hasPrefix ? 2 : 0), limit, magnitude, 16);
    if (hasPrefix && read.ec == std::errc::invalid_argument) {
        read = {text.data() + 1, std::errc()};  // A 0, with text after it.
    }
    const int64_t value = isMinus ? -int64_t{magnitude} : int64_t{magnitude};
    if (read.ec != std::errc() || value < kLowest || value > kHighest) {
        return std::nullopt;
    }
    return HexadecimalText{static_cast<int32_t>(value), read.ptr != limit};
}

// The parser's own isInt() and asInt() take five times as many instructions.
template <typename Integer>
std::optional<int32_t> inRange(Integer value) {
    return std::in_range<int32_t>(value) ? std::optional(static_cast<int32_t>(value))
                                         : std::nullopt;
}

std::optional<int32_t> truncated(double real) {
    return real >= kLowest && real <= kHighest ? std::optional(static_cast<int32_t>(real))
                                               : std::nullopt;
}

// From JsonCpp 1.9.6 on, a number beyond the range of double is read as infinity (1e999); earlier
// releases reject the document. As a boolean it would be true, and as text "1e+9999", a perf word.
bool isInfinite(const Json::Value& value) {
    return value.type() == Json::realValue && std::isinf(value.asDouble());
}

Converted<uint32_t> toPattern(int32_t value, const Changes& changes) {
    Converted<uint32_t> pattern = {static_cast<uint32_t>(value), changes};
    if (value < 0) {
        pattern.changes.add(FindingKind::NegativeAsUnsigned, *pattern.value);
    }
    return pattern;
}

}  // namespace

Converted<bool> toBoolean(const Json::Value& value) {
    Converted<bool> boolean;
    switch (value.type()) {
        case Json::booleanValue:
            boolean.value = value.asBool();
            break;
        case Json::nullValue:
            boolean.value = false;
            boolean.changes.add(FindingKind::NullAsFalse, 0);
            break;
        case Json::intValue:
        case Json::uintValue:
        case Json::realValue:
            if (isInfinite(value)) {
                break;
            }
            boolean.value = value.asBool();
            boolean.changes.add(FindingKind::NumberAsBoolean, *boolean.value ? 1 : 0);
            break;
        default:
            break;
    }
    return boolean;
}

Converted<int32_t> toInteger(const Json::Value& value) {
    Converted<int32_t> integer;
    switch (value.type()) {
        case Json::intValue:
            integer.value = inRange(value.asLargestInt());
            break;
        case Json::uintValue:
            integer.value = inRange(value.asLargestUInt());
            break;
        case Json::realValue:
            integer.value = truncated(value.asDouble());
            if (integer.value && *integer.value != value.asDouble()) {
                integer.changes.add(FindingKind::RealTruncated, *integer.value);
            }
            break;
        case Json::booleanValue:
            integer.value = value.asBool() ? 1 : 0;
            integer.changes.add(FindingKind::BooleanAsInteger, *integer.value);
            break;
        case Json::nullValue:
            integer.value = 0;
            integer.changes.add(FindingKind::NullAsZero, 0);
            break;
        default:
            break;
    }
    return integer;
}

Converted<uint32_t> toUnsignedPattern(const Json::Value& value) {
    const Converted<int32_t> integer = toInteger(value);
    return integer.value ? toPattern(*integer.value, integer.changes) : Converted<uint32_t>();
}

Converted<uint32_t> toPerfWord(const Json::Value& value) {
    const std::optional<std::string_view> text = toText(value);
    if (!text && (!value.isNumeric() || isInfinite(value))) {
        return {};
    }
    const std::string number = text ? std::string() : value.asString();
    const std::optional<HexadecimalText> word = readHexadecimal(text.value_or(number));
    if (!word) {
        return {};
    }
    Changes changes;
    if (!text) {
        changes.add(FindingKind::PerfWordUnquoted, static_cast<uint32_t>(word->value));
    }
    if (word->hasTail) {
        changes.add(FindingKind::PerfWordTail, static_cast<uint32_t>(word->value));
    }
    return toPattern(word->value, changes);
}

std::optional<std::string_view> toText(const Json::Value& value) {
    const char* text = nullptr;
    const char* limit = nullptr;
    if (!value.getString(&text, &limit)) {
        return std::nullopt;
    }
    return std::string_view(text, static_cast<size_t>(limit - text));
}

}  // namespace kc2
