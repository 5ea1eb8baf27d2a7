// Numbers in every place that converts one: what is used, skipped, or rejects the document.

#include <gtest/gtest.h>
#include <json/version.h>

#include <string>

#include "Device.h"
#include "NumberTable.h"

namespace kc2::test {

namespace {

#ifdef _LIBCPP_VERSION
constexpr bool kReadsTooSmall = false;
#else
constexpr bool kReadsTooSmall = true;
#endif
constexpr bool kReadsTooLarge = JSONCPP_VERSION_HEXA >= 0x01090600;

bool isRead(Fate fate) {
    return fate == Fate::Read || (fate == Fate::TooSmall && kReadsTooSmall) ||
           (fate == Fate::TooLarge && kReadsTooLarge);
}

// The number in every place; the other feature and the other words are there to stay.
std::string documentOf(const std::string& number) {
    return R"({"Video": {"Features": {"f": )" + number + R"(, "g": true}, "Presets": {"p": )" +
           number + R"(}, "NimbraModeBitrateTable": [[)" + number + ", 2, 3], [1, " + number +
           ", 3], [1, 2, " + number + R"(]], "DolbyVision": {"profiles": [)" + number +
           R"(], "max_main_tier_level": )" + number + R"(, "max_high_tier_level": )" + number +
           R"(}, "perf-resource-values": {"v": ["1"], "w": ["1", )" + number + "]}}}";
}

std::string expectedContent(const NumberRow& row) {
    std::string content = row.fate != Fate::TooLarge
                                  ? std::string("feature f ") + (row.isOn ? "1\n" : "0\n")
                                  : "";
    content += "feature g 1\n";
    if (row.integer) {
        content += "preset p " + std::to_string(*row.integer) + "\n";
    }
    content += "perf v 1\n";
    if (row.perfWord) {
        content += "perf w 1 " + std::to_string(*row.perfWord) + "\n";
    }
    if (row.integer) {
        const std::string pattern = std::to_string(static_cast<uint32_t>(*row.integer));
        content.append("row ").append(pattern).append(" 2 3\n");
        content.append("row 1 ").append(pattern).append(" 3\n");
        content.append("row 1 2 ").append(pattern).append("\n");
    }
    if (row.profile) {
        content += "profile " + std::to_string(*row.profile) + "\n";
    }
    if (row.integer.value_or(0) != 0) {
        const std::string level = std::to_string(*row.integer);
        content.append("levels ").append(level).append(" ").append(level).append("\n");
    }
    return content;
}

Lines expectedLines(const NumberRow& row) {
    Lines lines;
    const auto add = [&lines](const std::string& place, const char* reason) {
        lines.push_back("W/KC2TargetSpec: Skipped Video/" + place + ": not a" + reason);
    };
    if (row.fate == Fate::TooLarge) {
        add("Features/f", " boolean");
    }
    if (!row.integer) {
        for (const char* const place :
             {"Presets/p", "NimbraModeBitrateTable[0]", "NimbraModeBitrateTable[1]",
              "NimbraModeBitrateTable[2]", "DolbyVision/max_main_tier_level",
              "DolbyVision/max_high_tier_level"}) {
            add(place, "n integer in the signed 32-bit range");
        }
    }
    if (!row.perfWord) {
        add("perf-resource-values/w[1]", " hexadecimal string in the signed 32-bit range");
    }
    return lines;
}

TEST(NumberTest, EachTextIsUsedSkippedOrRejected) {
    Device device;
    for (const NumberRow& row : kNumberRows) {
        SCOPED_TRACE(row.text);
        TargetSpec spec;
        if (isRead(row.fate)) {
            EXPECT_EQ(0u, parse(spec, documentOf(row.text)));
            EXPECT_EQ(expectedContent(row), contentOf(spec));
            EXPECT_EQ(expectedLines(row), device.takeLog());
        } else {
            EXPECT_EQ(kFailed, parse(spec, documentOf(row.text)));
            EXPECT_EQ("", contentOf(spec));
            EXPECT_EQ(Lines{kStreamErrorLine}, device.takeLog());
        }
    }
}

}  // namespace

}  // namespace kc2::test
