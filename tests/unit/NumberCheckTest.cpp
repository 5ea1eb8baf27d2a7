// What check says of a number in each place is what a phone does with it.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "NumberTable.h"
#include "catalogue/KnownSettings.h"
#include "check/Check.h"

namespace kc2::test {

namespace {

using namespace tool;

// The findings on a document with the number in one place.
std::vector<std::pair<std::string, std::string>> findingsOn(const std::string& section) {
    static const KnownSettings known{Catalogue()};
    const Document document({.path = "document"}, "{\"Video\": {" + section + "}}");
    Report report{Levels()};
    check(Checked(document, known), &report);
    std::vector<std::pair<std::string, std::string>> findings;
    for (const ReportEntry* const entry : report.inOrder()) {
        findings.emplace_back(entry->check->id, entry->message);
    }
    return findings;
}

bool hasId(const std::vector<std::pair<std::string, std::string>>& findings, const char* id) {
    return std::any_of(findings.begin(), findings.end(),
                       [id](const auto& finding) { return finding.first == id; });
}

bool isSaid(const std::vector<std::pair<std::string, std::string>>& findings,
            const std::string& words) {
    return std::any_of(findings.begin(), findings.end(), [&](const auto& finding) {
        return finding.second.find(words) != std::string::npos;
    });
}

// The decimal text of a number without its leading zeros: what it is, where nothing else is said.
std::string plain(const std::string& number) {
    const bool isNegative = number[0] == '-';
    const size_t digit = number.find_first_not_of('0', isNegative ? 1 : 0);
    const std::string digits = digit == std::string::npos ? "0" : number.substr(digit);
    return (isNegative && digits != "0" ? "-" : "") + digits;
}

struct Place {
    const char* before;
    const char* after;
    const char* ifSkipped;  // The id of the finding.
};

void expectUse(const NumberRow& row, const Place& place, const std::optional<int64_t>& used) {
    SCOPED_TRACE(std::string(place.before) + row.text);
    const auto findings = findingsOn(place.before + std::string(row.text) + place.after);
    if (row.fate == Fate::Malformed) {
        EXPECT_TRUE(hasId(findings, "syntax"));
    } else if (row.fate == Fate::TooSmall) {
        EXPECT_TRUE(hasId(findings, "number-too-small") || hasId(findings, "syntax"));
    } else if (row.fate == Fate::TooLarge) {
        EXPECT_TRUE(hasId(findings, "syntax") ||
                    (hasId(findings, "number-too-large") && hasId(findings, place.ifSkipped)));
    } else if (!used) {
        EXPECT_TRUE(hasId(findings, place.ifSkipped));
    } else {
        EXPECT_FALSE(hasId(findings, "syntax"));
        EXPECT_FALSE(hasId(findings, place.ifSkipped));
        const std::string value = std::to_string(*used);
        EXPECT_TRUE(plain(row.text) == value || isSaid(findings, value) ||
                    hasId(findings, "lone-minus"))
                << value;
    }
}

TEST(NumberCheckTest, CheckSaysWhatAPhoneDoes) {
    for (const NumberRow& row : kNumberRows) {
        const auto pattern = [&]() -> std::optional<int64_t> {
            return row.integer ? std::optional<int64_t>(static_cast<uint32_t>(*row.integer))
                               : std::nullopt;
        };
        expectUse(row, {R"("Presets": {"p": )", "}", "preset-not-integer"}, row.integer);
        expectUse(row,
                  {R"("DolbyVision": {"max_high_tier_level": 1, "max_main_tier_level": )", "}",
                   "tier-level-not-integer"},
                  row.integer);
        expectUse(row, {R"("NimbraModeBitrateTable": [[0, 9, )", "]]", "row-value-not-integer"},
                  pattern());
        expectUse(row,
                  {R"("DolbyVision": {"max_high_tier_level": 1, "max_main_tier_level": 1, )"
                   R"("profiles": [)",
                   "]}", "profile-not-unsigned"},
                  row.profile);
        expectUse(row,
                  {R"("perf-resource-values": {"w": ["1", )", "]}", "perf-word-not-hexadecimal"},
                  row.perfWord);
        const auto feature = findingsOn(R"("Features": {"f": )" + std::string(row.text) + "}");
        if (row.fate == Fate::Read) {
            EXPECT_TRUE(isSaid(feature, row.isOn ? "is used as true" : "is used as false"))
                    << row.text;
        }
    }
}

}  // namespace

}  // namespace kc2::test
