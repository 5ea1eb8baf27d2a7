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

// A list of words that the device uses.
struct UseCase {
    const Document& document;
    const Node& member;
    const std::vector<uint32_t>& words;

    // A word as it is in the text.
    std::string_view textOf(const Node& word) const { return document.source.textAt(word.value); }
};

template <typename Visit>
void forEachUseCase(const Document& document, Visit visit) {
    const auto& words = document.content.perfResourceValues;
    forEachUsed(document, targetSpecPerfResourceValues, [&](const Node& member) {
        const bool isList = member.isArray() || member.isNull() ||
                            (member.isObject() && member.children.empty());
        // A section in here is at a wrong level, and that is the finding.
        if (isList && sectionOf(member.key) == nullptr) {
            visit(UseCase{document, member, words.at(std::string(member.key))});
        }
    });
}

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

void checkPrefixes(const UseCase& useCase, Report* report) {
    const std::vector<Node>& nodes = useCase.member.children;
    const bool isAnyPrefixed = std::any_of(nodes.begin(), nodes.end(), [&](const Node& node) {
        return node.isString() && hasPrefix(useCase.textOf(node));
    });
    for (size_t i = 0; isAnyPrefixed && i < nodes.size(); ++i) {
        const std::string_view text = useCase.textOf(nodes[i]);
        if (nodes[i].isString() && isBareWord(text)) {
            report->add("perf-word-prefix", useCase.document, nodes[i].value,
                        fmt::format("{} is read as hexadecimal, as {}: write 0x, as in the words "
                                    "beside it",
                                    text, hexadecimal(useCase.words[i])));
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
void checkShortCodes(const UseCase& useCase, const std::vector<std::string>& codes,
                     Report* report) {
    constexpr size_t kCodeDigits = 8;
    for (size_t i = 0; i < useCase.words.size(); i += 2) {
        const Node& node = useCase.member.children[i];
        const std::string word = hexadecimal(useCase.words[i]);
        if (!node.isString() || node.has(FindingKind::PerfWordTail) ||
            digitsIn(useCase.textOf(node)) + 1 != kCodeDigits ||
            std::find(codes.begin(), codes.end(), word) != codes.end()) {
            continue;
        }
        const std::string near = nearest(word, codes, 1);
        report->add("perf-code-short", useCase.document, node.value,
                    fmt::format("the resource code {} has 7 digits, and codes have 8{}", word,
                                near.empty() ? "" : fmt::format(". Did you mean {}?", near)));
    }
}

void checkRepeatedCodes(const UseCase& useCase, Report* report) {
    constexpr size_t kTwoPairs = 4;
    const auto& words = useCase.words;
    std::unordered_set<uint32_t> codes;
    for (size_t i = 0; words.size() >= kTwoPairs && i + 1 < words.size(); i += 2) {
        if (!codes.insert(words[i]).second) {
            report->add("perf-code-repeated", useCase.document, useCase.member.children[i].value,
                        fmt::format("the resource code {} is in \"{}\" already",
                                    hexadecimal(words[i]), useCase.member.key));
        }
    }
}

void checkSwappedPairs(const UseCase& useCase, const Catalogue& catalogue, Report* report) {
    // Codes of one platform have their first byte in common; values are small.
    const auto isLikeCode = [&](uint32_t word) {
        const auto& codes = catalogue.codes();
        return std::any_of(codes.begin(), codes.end(), [&](const PerfResourceCode& code) {
            return code.code >> 24 == word >> 24 && word >> 24 != 0;
        });
    };
    const auto& words = useCase.words;
    for (size_t i = 0; words.size() % 2 == 0 && i < words.size(); i += 2) {
        if (!isLikeCode(words[i]) && isLikeCode(words[i + 1])) {
            report->add(
                    "perf-pair-swapped", useCase.document, useCase.member.children[i].value,
                    fmt::format("{} and {} look swapped: a resource code comes before its value",
                                hexadecimal(words[i]), hexadecimal(words[i + 1])));
            return;  // The others are swapped as well.
        }
    }
}

void checkLength(const UseCase& useCase, Report* report) {
    const auto& [document, member, words] = useCase;
    if (words.empty()) {
        report->add(
                "perf-empty", document, member.name,
                fmt::format("\"{}\" has no words, and no later document can set them", member.key));
    }
    // Where a string has several words, what is missing is there.
    const bool isInOther =
            std::any_of(member.children.begin(), member.children.end(), [](const Node& word) {
                return word.has(FindingKind::PerfWordTail) && isSeveralWords(word.string);
            });
    if (words.size() % 2 != 0 && !isInOther) {
        report->add("perf-odd-length", document, member.value,
                    fmt::format("\"{}\" has {}: a resource code lacks its value", member.key,
                                counted(words.size(), "word")));
    }
}

}  // namespace

void checkPerfWords(const Checked& checked, Report* report) {
    std::vector<std::string> codes;
    for (const PerfResourceCode& code : checked.known.catalogue.codes()) {
        codes.push_back(hexadecimal(code.code));
    }
    checked.forEachWritten([&](const Document& document) {
        forEachUseCase(document, [&](const UseCase& useCase) {
            checkLength(useCase, report);
            checkPrefixes(useCase, report);
            checkRepeatedCodes(useCase, report);
            checkShortCodes(useCase, codes, report);
            checkSwappedPairs(useCase, checked.known.catalogue, report);
        });
    });
}

}  // namespace kc2::tool
