// Perf words: what does not look like pairs of a resource code and its value.

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"

namespace kc2::tool {

namespace {

// A list of words that the device uses: where it is in the text, and its words.
struct UseCase {
    const Node& member;
    const std::vector<uint32_t>& words;
};

// Those of a document, which all rules look at.
struct UseCases {
    explicit UseCases(const Document& checked) : document(checked) {
        forEachSection(document, [&](const Section& row, const Node& section) {
            if (row.type != SectionType::PerfResourceValues || !section.isObject()) {
                return;
            }
            for (const Node& member : section.children) {
                const bool isList = member.isArray() || member.isNull() ||
                                    (member.isObject() && member.children.empty());
                // A section in here is at a wrong level, and that is the finding.
                if (isList && member.isUsed() && sectionOf(member.key) == nullptr) {
                    all.push_back({member, document.content.perfResourceValues.at(
                                                   std::string(member.key))});
                }
            }
        });
    }

    const Document& document;
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

void checkPrefixes(const UseCases& cases, Report* report) {
    for (const auto& [member, words] : cases.all) {
        const auto& nodes = member.children;
        const bool isAnyPrefixed = std::any_of(nodes.begin(), nodes.end(), [&](const Node& node) {
            return node.isString() && hasPrefix(cases.document.source.textAt(node.value));
        });
        for (size_t i = 0; isAnyPrefixed && i < nodes.size(); ++i) {
            const std::string_view text = cases.document.source.textAt(nodes[i].value);
            if (nodes[i].isString() && isBareWord(text)) {
                report->add(
                        "perf-word-prefix", cases.document, nodes[i].value,
                        fmt::format("{} is read as hexadecimal, as {}: write 0x, as in the words "
                                    "beside it",
                                    text, hexadecimal(words[i])));
            }
        }
    }
}

// How many hexadecimal digits a word has, without 0x and leading zeros.
size_t digitsIn(std::string_view quoted) {
    std::string_view word = quoted.substr(1, quoted.size() - 2);
    word.remove_prefix(hasPrefix(quoted) ? word.find_first_of("xX") + 1 : 0);
    const size_t first = word.find_first_not_of('0');
    return first == std::string_view::npos ? 0 : word.size() - first;
}

// The codes of all platforms have eight digits; a value may have any number.
void checkShortCodes(const UseCases& cases, const KnownSettings& known, Report* report) {
    constexpr size_t kCodeDigits = 8;
    std::vector<std::string> codes;
    for (const PerfResourceCode& code : known.catalogue.codes()) {
        codes.push_back(hexadecimal(code.code));
    }
    for (const auto& [member, words] : cases.all) {
        for (size_t i = 0; i < words.size(); i += 2) {
            const Node& node = member.children[i];
            const std::string word = hexadecimal(words[i]);
            if (!node.isString() || node.has(FindingKind::PerfWordTail) ||
                digitsIn(cases.document.source.textAt(node.value)) + 1 != kCodeDigits ||
                std::find(codes.begin(), codes.end(), word) != codes.end()) {
                continue;
            }
            const std::string near = nearest(word, codes, 1);
            report->add("perf-code-short", cases.document, node.value,
                        fmt::format("the resource code {} has 7 digits, and codes have 8{}", word,
                                    near.empty() ? "" : fmt::format(". Did you mean {}?", near)));
        }
    }
}

void checkRepeatedCodes(const UseCases& cases, Report* report) {
    constexpr size_t kTwoPairs = 4;
    for (const auto& [member, words] : cases.all) {
        std::unordered_set<uint32_t> codes;
        for (size_t i = 0; words.size() >= kTwoPairs && i + 1 < words.size(); i += 2) {
            if (!codes.insert(words[i]).second) {
                report->add("perf-code-repeated", cases.document, member.children[i].value,
                            fmt::format("the resource code {} is in \"{}\" already",
                                        hexadecimal(words[i]), member.key));
            }
        }
    }
}

void checkSwappedPairs(const UseCases& cases, const KnownSettings& known, Report* report) {
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
                report->add(
                        "perf-pair-swapped", cases.document, member.children[i].value,
                        fmt::format(
                                "{} and {} look swapped: a resource code comes before its value",
                                hexadecimal(words[i]), hexadecimal(words[i + 1])));
                break;  // The others are swapped as well.
            }
        }
    }
}

void checkEmptyUseCases(const UseCases& cases, Report* report) {
    for (const auto& [member, words] : cases.all) {
        if (words.empty()) {
            report->add("perf-empty", cases.document, member.name,
                        fmt::format("\"{}\" has no words, and no later document can set them",
                                    member.key));
        }
    }
}

void checkOddLengths(const UseCases& cases, Report* report) {
    for (const auto& [member, words] : cases.all) {
        // Where a string has several words, what is missing is there.
        const bool isInOther =
                std::any_of(member.children.begin(), member.children.end(), [](const Node& word) {
                    return word.has(FindingKind::PerfWordTail) && isSeveralWords(word.string);
                });
        if (words.size() % 2 != 0 && !isInOther) {
            report->add("perf-odd-length", cases.document, member.value,
                        fmt::format("\"{}\" has {}: a resource code lacks its value", member.key,
                                    counted(words.size(), "word")));
        }
    }
}

}  // namespace

void checkPerfWords(const Checked& checked, Report* report) {
    checked.forEachWritten([&](const Document& document) {
        const UseCases cases(document);
        checkOddLengths(cases, report);
        checkPrefixes(cases, report);
        checkRepeatedCodes(cases, report);
        checkShortCodes(cases, checked.known, report);
        checkSwappedPairs(cases, checked.known, report);
        checkEmptyUseCases(cases, report);
    });
}

}  // namespace kc2::tool
