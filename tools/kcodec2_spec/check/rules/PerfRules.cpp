// Perf words: pairs of a resource code and its value that do not look like it.

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/Text.h"
#include "check/rules/DocumentNames.h"
#include "check/rules/Emit.h"

namespace kc2::tool {

namespace {

// A list of words that the device takes, where it is in the text and what it says.
struct UseCase {
    const OutlineNode& member;
    const std::vector<uint32_t>& words;
};

// Those of a document, which all rules look at.
struct UseCases {
    explicit UseCases(const CheckedDocument& checkedDocument) : checked(checkedDocument) {
        const OutlineNode* const section = checked.section(targetSpecPerfResourceValues);
        if (section == nullptr || section->kind != '{') {
            return;
        }
        const auto& values = checked.document.content.perfResourceValues;
        std::unordered_set<size_t> taken;  // Where: an earlier member of the same name is not.
        for (const KeptFinding* const finding : checked.takenIn(targetSpecPerfResourceValues)) {
            taken.insert(finding->start);
        }
        for (const OutlineNode& member : section->children) {
            const bool isList = member.kind == '[' || member.kind == 'n' ||
                                (member.kind == '{' && member.children.empty());
            const auto words = isList && taken.count(member.value.start) != 0
                                       ? values.find(std::string(member.key))
                                       : values.end();
            if (words != values.end()) {
                all.push_back({member, words->second});
            }
        }
    }

    const CheckedDocument& checked;
    std::vector<UseCase> all;
};

bool hasPrefix(std::string_view quoted) {
    return quoted.find("0x") != std::string_view::npos ||
           quoted.find("0X") != std::string_view::npos;
}

// Digits alone; what else is in a word is a finding of the reader. A single digit is the same in
// decimal.
bool isBareWord(std::string_view quoted) {
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    constexpr size_t kFewest = 2;
    const std::string_view word = quoted.substr(1, quoted.size() - 2);
    return word.size() >= kFewest && word.find_first_not_of(kDigits) == std::string_view::npos;
}

void checkPrefixes(const UseCases& cases, const KnownSettings& /*known*/, const Emit& emit) {
    for (const auto& [member, words] : cases.all) {
        const auto& nodes = member.children;
        const bool isAnyPrefixed =
                std::any_of(nodes.begin(), nodes.end(), [&](const OutlineNode& node) {
                    return node.kind == '"' && hasPrefix(cases.checked.source.textAt(node.value));
                });
        for (size_t i = 0; isAnyPrefixed && i < nodes.size(); ++i) {
            const std::string_view text = cases.checked.source.textAt(nodes[i].value);
            if (nodes[i].kind == '"' && isBareWord(text)) {
                emit(cases.checked, nodes[i].value,
                     fmt::format("{} is read as hexadecimal, as {}: write 0x, as in the words "
                                 "beside it",
                                 text, hexadecimal(words[i])));
            }
        }
    }
}

void checkRepeatedCodes(const UseCases& cases, const KnownSettings& /*known*/, const Emit& emit) {
    constexpr size_t kTwoPairs = 4;
    for (const auto& [member, words] : cases.all) {
        std::unordered_set<uint32_t> codes;
        for (size_t i = 0; words.size() >= kTwoPairs && i + 1 < words.size(); i += 2) {
            if (!codes.insert(words[i]).second) {
                emit(cases.checked, member.children[i].value,
                     fmt::format("the resource code {} is in \"{}\" already", hexadecimal(words[i]),
                                 member.key));
            }
        }
    }
}

void checkSwappedPairs(const UseCases& cases, const KnownSettings& known, const Emit& emit) {
    // Codes of one platform have their first byte in common; values are small.
    const auto isLikeCode = [&](uint32_t word) {
        const auto& codes = known.catalogue.codes();
        return std::any_of(codes.begin(), codes.end(), [&](const PerfResourceCode& code) {
            return code.code >> 24 == word >> 24 && word >> 24 != 0;
        });
    };
    for (const auto& [member, words] : cases.all) {
        for (size_t i = 0; words.size() % 2 == 0 && i < words.size(); i += 2) {
            if (!isLikeCode(words[i]) && isLikeCode(words[i + 1])) {
                emit(cases.checked, member.children[i].value,
                     fmt::format("{} and {} look swapped: a resource code comes before its value",
                                 hexadecimal(words[i]), hexadecimal(words[i + 1])));
                break;  // The others are swapped as well.
            }
        }
    }
}

void checkEmptyUseCases(const UseCases& cases, const KnownSettings& /*known*/, const Emit& emit) {
    for (const auto& [member, words] : cases.all) {
        if (words.empty()) {
            emit(cases.checked, member.name,
                 fmt::format("\"{}\" has no words, and no later document can set them any more",
                             member.key));
        }
    }
}

void checkOddLengths(const UseCases& cases, const KnownSettings& /*known*/, const Emit& emit) {
    for (const auto& [member, words] : cases.all) {
        if (words.size() % 2 != 0) {
            emit(cases.checked, member.value,
                 fmt::format("\"{}\" holds {}: a resource code lacks its value", member.key,
                             counted(words.size(), "word")));
        }
    }
}

constexpr RuleRow<UseCases, KnownSettings> kPerfRules[] = {
        {{"perf-odd-length", Severity::Warning, "perf words that do not come in pairs"},
         checkOddLengths},
        {{"perf-word-prefix", Severity::Warning, "a perf word without 0x among words with it"},
         checkPrefixes},
        {{"perf-code-repeated", Severity::Warning, "a resource code twice in one list"},
         checkRepeatedCodes},
        {{"perf-pair-swapped", Severity::Warning, "a value in place of its resource code"},
         checkSwappedPairs},
        {{"perf-empty", Severity::Warning, "a use case without perf words"}, checkEmptyUseCases},
};

}  // namespace

void applyPerfRules(const CheckedDocument& document, const KnownSettings& known, Report* report) {
    applyRows(kPerfRules, report, UseCases(document), known);
}

std::vector<const Rule*> perfRules() {
    return rulesOf(kPerfRules);
}

}  // namespace kc2::tool
