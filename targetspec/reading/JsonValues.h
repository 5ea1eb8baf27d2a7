// JSON values as the store keeps them. No place and no finding: only the value, and what
// converting it changed.
//
// Every value is checked before JsonCpp converts it: device builds of JsonCpp end the process on a
// conversion that does not fit.
#pragma once

#include <json/value.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "targetspec/reading/Findings.h"

namespace kc2 {

// What a conversion changed, in the order in which it is reported.
class Changes {
public:
    struct Change {
        FindingKind kind;
        int64_t result;  // What the value is used as.
    };

    void add(FindingKind kind, int64_t result) { mChanges[mCount++] = {kind, result}; }

    const Change* begin() const { return mChanges.data(); }
    const Change* end() const { return mChanges.data() + mCount; }

private:
    std::array<Change, 3> mChanges = {};  // A perf word: unquoted, with a tail, negative.
    size_t mCount = 0;
};

// Without a value if the store cannot keep it.
template <typename T>
struct Converted {
    std::optional<T> value;
    Changes changes = {};
};

// true, false, or what is read as one: null and any finite number.
Converted<bool> toBoolean(const Json::Value& value);

// A number in the signed 32-bit range, or what is read as one: true, false, null.
Converted<int32_t> toInteger(const Json::Value& value);

// The same, as the unsigned 32-bit pattern that the store keeps.
Converted<uint32_t> toUnsignedPattern(const Json::Value& value);

// A hexadecimal string in the signed 32-bit range, or a finite number, whose decimal text is read
// as one; as the unsigned 32-bit pattern that the store keeps.
Converted<uint32_t> toPerfWord(const Json::Value& value);

std::optional<std::string_view> toText(const Json::Value& value);

inline bool isObjectOrNull(const Json::Value& value) {
    return value.type() == Json::objectValue || value.type() == Json::nullValue;
}

// The name of the member that an iterator over an object points to. Valid as long as the object.
inline std::string_view nameOf(const Json::Value::const_iterator& member) {
    const char* end = nullptr;
    const char* const name = member.memberName(&end);
    return {name, static_cast<size_t>(end - name)};
}

}  // namespace kc2
