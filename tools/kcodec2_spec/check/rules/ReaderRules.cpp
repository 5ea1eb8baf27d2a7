// What the library's reader found, in words: whatever a load rejects, skips or changes.

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "base/Utf8.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"
#include "check/rules/WrongLevels.h"
#include "targetspec/reading/Limits.h"

namespace kc2::tool {

namespace {

// "Features/private_x", "NimbraModeBitrateTable[3]".
std::string placeOf(const Verdict& verdict) {
    return fmt::format("{}{}{}{}", verdict.section, verdict.name.empty() ? "" : "/", verdict.name,
                       verdict.index < 0 ? "" : fmt::format("[{}]", verdict.index));
}

std::string_view textOf(const Verdict& verdict, const Document& document) {
    return std::string_view(document.text).substr(verdict.start, verdict.limit - verdict.start);
}

bool isContainer(const Verdict& verdict, const Document& document) {
    const char first = document.parserText[verdict.start];
    return first == '[' || first == '{';
}

// The verdict after this one; null when it is the last.
const Verdict* nextOf(const Verdict& verdict, const Document& document) {
    return &verdict == &document.verdicts.back() ? nullptr : &verdict + 1;
}

// Whether a verdict is about a skipped value of an object that is in place of an array.
bool isSkippedIn(const Verdict& object, const Verdict& verdict) {
    const Effect effect = rowOf(verdict.kind).effect;
    return object.kind == FindingKind::ObjectAsArray && verdict.start >= object.start &&
           verdict.limit <= object.limit &&
           (effect == Effect::SkipsAndLogs || effect == Effect::SkipsSilently);
}

// Whether a verdict is the same mistake as the one before it: the values of a table without rows,
// the second one of two levels that are missing.
bool isSameMistake(const Verdict& verdict, const Verdict& before, const Document& document) {
    if (verdict.kind != before.kind) {
        return false;
    }
    return verdict.kind == FindingKind::TierLevelAbsent ||
           (verdict.kind == FindingKind::RowSizeNotThree && !isContainer(verdict, document) &&
            !isContainer(before, document));
}

// --- Cases that have their own words, or their own check ---

bool isRepeated(const Verdict& verdict, const Document& document) {
    const Verdict* const next = nextOf(verdict, document);
    return next != nullptr && isSameMistake(*next, verdict, document);
}

bool isUseCase(const Verdict& verdict, const Document& /*document*/) {
    return verdict.section == targetSpecPerfResourceValues;
}

// The upper bound of a row, written as -1.
bool isOpenUpperBound(const Verdict& verdict, const Document& document) {
    const Node* const table = document.section(targetSpecNimbraModeBitRate);
    const auto index = static_cast<size_t>(verdict.index);
    if (table == nullptr || verdict.section != targetSpecNimbraModeBitRate || !table->isArray() ||
        index >= table->children.size()) {
        return false;
    }
    const std::vector<Node>& values = table->children[index].children;
    return values.size() == 3 && values[1].value.start == verdict.start &&
           verdict.converted == int64_t{std::numeric_limits<uint32_t>::max()};
}

// The description of a pre-processing filter, which the store does not keep.
bool isFilterDescription(const Verdict& verdict, const Document& document) {
    const Node* const filter = findValueAt(document.tree.root, verdict.start);
    if (filter == nullptr || verdict.section != targetSpecPreProcessingFilters) {
        return false;
    }
    const char* const keys[] = {
            targetSpecPreProcessingFilterCodecName, targetSpecPreProcessingFilterLibName,
            targetSpecPreProcessingFilterInputStreams, targetSpecPreProcessingFilterOutputStreams};
    return std::any_of(std::begin(keys), std::end(keys),
                       [&](const char* key) { return findMember(*filter, key) != nullptr; });
}

// Whether an object in place of an array has values of another type than the array would: then its
// first value is skipped.
bool isNoArrayAtAll(const Verdict& verdict, const Document& document) {
    const Verdict* const next = nextOf(verdict, document);
    return next != nullptr && isSkippedIn(verdict, *next);
}

// What is between the quotes of a string; nothing for another value.
std::optional<std::string_view> quotedText(const Verdict& verdict, const Document& document) {
    const std::string_view text = textOf(verdict, document);
    return text.size() > 2 && text[0] == '"' ? std::optional(text.substr(1, text.size() - 2))
                                             : std::nullopt;
}

bool isQuotedBoolean(const Verdict& verdict, const Document& document) {
    const auto text = quotedText(verdict, document);
    return text == "true" || text == "false";
}

// The value of a plain decimal number, without a plus sign and without a leading zero. Only
// the digits go to std::from_chars(): in libc++ it wraps around zero where a minus sign comes
// first.
std::optional<int32_t> plainDecimal(std::string_view text) {
    constexpr size_t kMostDigits = 10;
    const bool isNegative = text.starts_with('-');
    const std::string_view digits = text.substr(isNegative ? 1 : 0);
    const bool isPlain = !digits.empty() && digits.size() <= kMostDigits &&
                         std::all_of(digits.begin(), digits.end(), isDigit) &&
                         (digits[0] != '0' || text == "0");
    if (!isPlain) {
        return std::nullopt;
    }
    int64_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    number = isNegative ? -number : number;
    const bool fits = number >= std::numeric_limits<int32_t>::min() &&
                      number <= std::numeric_limits<int32_t>::max();
    return fits ? std::optional(static_cast<int32_t>(number)) : std::nullopt;
}

// A diff that somebody saved in place of the document: the parser reads its first '-' as 0.
bool isDiff(const Verdict& /*verdict*/, const Document& document) {
    return document.text.starts_with("--- ") || document.text.starts_with("-{");
}

bool isOfPrivateFile(const Verdict& /*verdict*/, const Document& document) {
    return isPrivateFile(document);
}

// Words that people write for true and false.
std::optional<bool> wordOfSwitch(const Verdict& verdict, const Document& document) {
    const std::string word = inSmallLetters(quotedText(verdict, document).value_or(""));
    constexpr std::pair<std::string_view, bool> kSwitches[] = {
            {"true", true},   {"yes", true}, {"on", true},   {"1", true},  {"enabled", true},
            {"false", false}, {"no", false}, {"off", false}, {"0", false}, {"disabled", false}};
    const auto* const found = std::find_if(std::begin(kSwitches), std::end(kSwitches),
                                           [&word](const auto& one) { return one.first == word; });
    return found != std::end(kSwitches) ? std::optional(found->second) : std::nullopt;
}

bool isOtherSwitch(const Verdict& verdict, const Document& document) {
    return wordOfSwitch(verdict, document).has_value();
}

// The number in a string that is not a plain decimal one: "0x90", "1,958,400", "0144", "144 ".
std::optional<int64_t> oddNumber(const Verdict& verdict, const Document& document) {
    std::string text(quotedText(verdict, document).value_or(""));
    text.erase(std::remove_if(text.begin(), text.end(),
                              [](char c) { return c == ',' || c == '_' || c == ' '; }),
               text.end());
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = std::string_view(text).substr(isHexadecimal ? 2 : 0);
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number,
                                              isHexadecimal ? 16 : 10);
    const bool isWhole = error == std::errc() && end == digits.data() + digits.size() &&
                         number <= std::numeric_limits<int32_t>::max();
    return isWhole ? std::optional(int64_t{number}) : std::nullopt;
}

bool isOddNumber(const Verdict& verdict, const Document& document) {
    return oddNumber(verdict, document).has_value();
}

// The values of a row between which commas separate thousands: [0, 1,958,400, 5].
bool hasThousands(const Verdict& verdict, const Document& document) {
    constexpr size_t kGroup = 3;
    const Node* const row = findValueAt(document.tree.root, verdict.start);
    if (row == nullptr || !row->isArray() || row->children.size() <= kGroup) {
        return false;
    }
    const auto text = [&](const Node& node) { return document.source.textAt(node.value); };
    const auto hasPair = [&](const auto& isOne) {
        return std::adjacent_find(row->children.begin(), row->children.end(), isOne) !=
               row->children.end();
    };
    const auto areGroups = [&](const Node& one, const Node& next) {
        return one.value.limit + 1 == next.value.start && text(one).size() <= kGroup &&
               text(next).size() == kGroup;
    };
    const auto areApart = [](const Node& one, const Node& next) {
        return one.value.limit + 1 < next.value.start;
    };
    return hasPair(areGroups) && hasPair(areApart);
}

// "1.958", where a point separates thousands.
bool mayBeThousands(const Verdict& verdict, const Document& document) {
    constexpr size_t kGroup = 3;
    const std::string_view text = textOf(verdict, document);
    const size_t point = text.find('.');
    return point <= kGroup && text.size() == point + 1 + kGroup && text[0] != '0';
}

// Several words in one string: "0x40800000, 0x5DC".
bool hasTwoWords(const Verdict& verdict, const Document& document) {
    return isSeveralWords(quotedText(verdict, document).value_or(""));
}

bool isQuotedNumber(const Verdict& verdict, const Document& document) {
    const auto text = quotedText(verdict, document);
    return text && plainDecimal(*text);
}

// --- The tables ---

// {place}, {value}: as written, {converted}: what the device uses instead, {switch}: the same as
// true or false; {word}, {number}: what a string means that is neither a boolean nor a number.
struct ReaderRule {
    FindingKind kind;
    CheckId check;
    const char* message;  // Null for a syntax error, which has more than words.
    // Whether the row is for this verdict; null: for all that no earlier row is for.
    bool (*applies)(const Verdict& verdict, const Document& document) = nullptr;
};

constexpr ReaderRule kReaderRules[] = {
        {FindingKind::TextTooLong, "document-too-long",
         "the document is longer than {mostMebibytes} MiB: the device rejects it"},
        {FindingKind::TooManyValues, "too-many-values",
         "the document has more than {mostValues} values: the device rejects it"},
        {FindingKind::NestingTooDeep, "nesting-too-deep",
         "nested deeper than {mostNesting} levels: the device rejects the whole document"},
        {FindingKind::SyntaxError, "syntax", nullptr},
        {FindingKind::RootNotObject, "root-not-object",
         "this is a diff, not a document: the device rejects it", isDiff},
        {FindingKind::RootNotObject, "root-not-object",
         "the root must be an object: the device rejects the whole document"},
        {FindingKind::VideoNotObject, "video-not-object",
         "\"Video\" must be an object: the device rejects the whole document"},
        {FindingKind::SectionNotObject, "section-not-object",
         "{place} must be an object: the section is skipped"},
        {FindingKind::FeatureNotBoolean, "feature-not-boolean",
         "{place} must be true or false, not a string: remove the quotes; the feature is skipped",
         isQuotedBoolean},
        {FindingKind::FeatureNotBoolean, "feature-not-boolean",
         "{place} must be true or false, not {value}: write {word}; the feature is skipped",
         isOtherSwitch},
        {FindingKind::FeatureNotBoolean, "feature-not-boolean",
         "{place} must be true or false: the feature is skipped"},
        {FindingKind::PresetNotInteger, "preset-not-integer",
         "{place} must be a number, not a string: remove the quotes; the preset is skipped",
         isQuotedNumber},
        {FindingKind::PresetNotInteger, "preset-not-integer",
         "{place} must be a decimal number, not a string: write {number}; the preset is skipped",
         isOddNumber},
        {FindingKind::PresetNotInteger, "preset-not-integer",
         "{place} must be an integer from -2147483648 to 2147483647: the preset is skipped"},
        {FindingKind::RowSizeNotThree, "row-size",
         "{place} and what follows are not rows: each row must be an array [low, high, bit rate]",
         isRepeated},
        {FindingKind::RowSizeNotThree, "row-size",
         "{place} must have three integers [low, high, bit rate], and JSON numbers have no "
         "thousands separators: remove their commas; the row is skipped",
         hasThousands},
        {FindingKind::RowSizeNotThree, "row-size",
         "{place} must have three integers [low, high, bit rate]: the row is skipped"},
        {FindingKind::RowNotArray, "row-not-array",
         "{place} must be an array [low, high, bit rate]: the row is skipped"},
        {FindingKind::RowValueNotInteger, "row-value-not-integer",
         "{place} has {value}, which is not an integer from -2147483648 to 2147483647: the row is "
         "skipped"},
        {FindingKind::TierLevelNotInteger, "tier-level-not-integer",
         "{place} must be an integer from -2147483648 to 2147483647: the level becomes 0"},
        {FindingKind::PerfWordNotHexadecimal, "perf-word-not-hexadecimal",
         "{place} must be a hexadecimal string up to 7FFFFFFF: all words of the name are skipped"},
        {FindingKind::ListNotArray, "list-not-array",
         "{place} must be an array: the name is set without words, and no later document can set "
         "them",
         isUseCase},
        {FindingKind::ListNotArray, "list-not-array",
         "{place} must be an array: nothing in it is read, and the device does not log it"},
        {FindingKind::ElementNotString, "filter-description",
         "{place} is a filter description: the store ignores it and keeps only names, written as "
         "strings",
         isFilterDescription},
        {FindingKind::ElementNotString, "element-not-string",
         "{place} must be a string: the entry is skipped, and the device does not log it"},
        {FindingKind::ProfileNotUnsigned, "profile-not-unsigned",
         "{place} must be an integer from 0 to 4294967295: the profile is skipped, and the device "
         "does not log it"},
        {FindingKind::NoVideo, "private-file-empty",
         "the file has no member \"Video\": it sets nothing, and while it is there, no built-in "
         "document is read",
         isOfPrivateFile},
        {FindingKind::NoVideo, "no-video",
         "the document has no member \"Video\": nothing in it is read"},
        {FindingKind::ObjectAsArray, "object-not-array",
         "{place} must be an array [...]: only the object's values of the right type are used",
         isNoArrayAtAll},
        {FindingKind::ObjectAsArray, "object-as-array",
         "{place} should be an array: the object's values are used in the order of their names, "
         "and the names are lost: write code, value, code, value",
         isUseCase},
        {FindingKind::ObjectAsArray, "object-as-array",
         "{place} should be an array: the object's values are used in the order of their names"},
        {FindingKind::NumberAsBoolean, "number-as-boolean",
         "{place} should be true or false: {value} is used as {switch}"},
        {FindingKind::NullAsFalse, "null-as-false",
         "{place} should be true or false: null is used as false"},
        {FindingKind::BooleanAsInteger, "boolean-as-integer",
         "{place} should be an integer: {value} is used as {converted}"},
        {FindingKind::NullAsZero, "null-as-zero",
         "{place} should be an integer: null is used as 0"},
        {FindingKind::RealTruncated, "real-truncated",
         "{place} should be an integer: {value} is cut to {converted}. A point does not separate "
         "thousands",
         mayBeThousands},
        {FindingKind::RealTruncated, "real-truncated",
         "{place} should be an integer: {value} is cut to {converted}"},
        {FindingKind::NegativeAsUnsigned, "row-without-bound",
         "{place}: the upper bound {value} is stored as {converted}, so there is no upper bound",
         isOpenUpperBound},
        {FindingKind::NegativeAsUnsigned, "negative-as-unsigned",
         "{place} should not be negative: {value} is stored as {converted}"},
        {FindingKind::PerfWordUnquoted, "perf-word-unquoted",
         "{place} should be a string: the decimal text of {value} is read as hexadecimal, as "
         "{converted} (0x{converted:X})"},
        {FindingKind::PerfWordTail, "perf-word-tail",
         "{place} has several words in one string: only the first, 0x{converted:X}, is used",
         hasTwoWords},
        {FindingKind::PerfWordTail, "perf-word-tail",
         "{place}: what follows the hexadecimal digits is ignored: 0x{converted:X} is used"},
        {FindingKind::TierLevelAbsent, "tier-level-absent",
         "both levels are absent: they become 0, whatever an earlier document set", isRepeated},
        {FindingKind::TierLevelAbsent, "tier-level-absent",
         "{place} is absent: the level becomes 0, whatever an earlier document set"},
};

// Whether kChecks marks a check as a rejection exactly where the reader rejects the document.
constexpr bool areRejectionsMarked() {
    return std::all_of(std::begin(kReaderRules), std::end(kReaderRules), [](const auto& rule) {
        return rule.check->isRejection == (rowOf(rule.kind).effect == Effect::Rejects);
    });
}
static_assert(areRejectionsMarked(), "a check of a rejection must be one that nothing can hide");

const ReaderRule* ruleFor(const Verdict& verdict, const Document& document) {
    for (const ReaderRule& rule : kReaderRules) {
        if (rule.kind == verdict.kind &&
            (rule.applies == nullptr || rule.applies(verdict, document))) {
            return &rule;
        }
    }
    return nullptr;
}

std::string messageOf(const ReaderRule& rule, const Verdict& verdict, const Document& document) {
    return fmt::format(fmt::runtime(rule.message), fmt::arg("place", placeOf(verdict)),
                       fmt::arg("value", shortened(textOf(verdict, document))),
                       fmt::arg("converted", verdict.converted),
                       fmt::arg("switch", verdict.converted != 0),
                       fmt::arg("word", wordOfSwitch(verdict, document).value_or(false)),
                       fmt::arg("number", oddNumber(verdict, document).value_or(0)),
                       fmt::arg("mostMebibytes", kMaxTextBytes >> 20),
                       fmt::arg("mostValues", kMaxValues), fmt::arg("mostNesting", kMaxNesting));
}

// --- Fixes ---

bool isInRange(const Setting* setting, int32_t value) {
    return setting == nullptr || ((!setting->minimum || value >= *setting->minimum) &&
                                  (!setting->maximum || value <= *setting->maximum));
}

// Quotes around digits change what a person reads, but not what the device reads: the digits must
// be the same number either way, or be a resource code.
bool isSameInQuotes(std::string_view digits, const Verdict& verdict, const Catalogue& catalogue) {
    uint32_t word = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), word, 16);
    if (!std::all_of(digits.begin(), digits.end(), isDigit) || read.ec != std::errc() ||
        word != verdict.converted) {
        return false;  // The parser's text of the number is another one.
    }
    return digits.size() == 1 ||
           (digits[0] != '0' &&
            std::any_of(catalogue.codes().begin(), catalogue.codes().end(),
                        [word](const PerfResourceCode& code) { return code.code == word; }));
}

// What fixes it; empty when that is not certain.
std::vector<Fix> fixesOf(const Verdict& verdict, const Document& document,
                         const Catalogue& catalogue) {
    const std::string_view text = textOf(verdict, document);
    const auto quoted = quotedText(verdict, document);
    const auto replaced = [&](std::string_view by, const char* what) {
        return std::vector<Fix>{{{verdict.start, verdict.limit}, std::string(by), what}};
    };
    if (verdict.kind == FindingKind::FeatureNotBoolean && isQuotedBoolean(verdict, document)) {
        return replaced(*quoted, "remove the quotes");
    }
    if (verdict.kind == FindingKind::PresetNotInteger && isQuotedNumber(verdict, document) &&
        isInRange(catalogue.setting(verdict.name), *plainDecimal(*quoted))) {
        return replaced(*quoted, "remove the quotes");
    }
    if (verdict.kind == FindingKind::PerfWordUnquoted && isSameInQuotes(text, verdict, catalogue)) {
        return replaced(fmt::format("\"{}\"", text), "add the quotes");
    }
    return {};
}

// --- Reporting ---

// A setting in a section of another type: its place is the mistake, and not its value.
bool isMisplaced(const Verdict& verdict, const Catalogue& catalogue) {
    if (verdict.kind != FindingKind::NumberAsBoolean &&
        verdict.kind != FindingKind::BooleanAsInteger) {
        return false;
    }
    const Setting* const setting = catalogue.setting(verdict.name);
    return setting != nullptr && setting->section != verdict.section;
}

// The tree's errors, or the parser's own words. It gives none where JsonCpp is built without
// exceptions.
void reportSyntaxErrors(const Document& document, Report* report) {
    constexpr char kEffect[] = "; the device rejects the whole document";
    bool isReported = false;
    for (const SyntaxHint& error : document.tree.errors) {
        if (!error.message.empty()) {
            report->add("syntax", document, error.span, error.message + kEffect,
                        {error.related, error.fixes});
            isReported = true;
        }
    }
    if (isReported) {
        return;
    }
    std::string words = document.parserWords.empty() ? "not valid JSON" : document.parserWords;
    std::replace(words.begin(), words.end(), '\n', ' ');
    const Verdict& verdict = document.verdicts.back();
    report->add("syntax", document, {verdict.start, verdict.limit},
                std::string(withoutTrailing(words, '.')) + kEffect);
}

void reportNoVideo(const ReaderRule& rule, const Verdict& verdict, const Document& document,
                   Report* report) {
    const InPlaceOfVideo other = inPlaceOfVideo(document);
    const Span whole = {verdict.start, verdict.limit};
    report->add(rule.check, document, other.span.limit == 0 ? whole : other.span,
                messageOf(rule, verdict, document) + other.hint,
                {.fixes = other.meant.empty() ? std::vector<Fix>()
                                              : renaming(document.text, other.span, other.meant)});
}

// Whether something else is reported about the place of the value, or of what is missing.
bool isOfWrongLevel(const Verdict& verdict, const Document& document, const WrongLevels& levels) {
    const Node* const level = verdict.kind == FindingKind::TierLevelAbsent
                                      ? findMember(*document.video(), verdict.name)
                                      : nullptr;
    return levels.covers(verdict) || (level != nullptr && levels.covers(*level));
}

void checkReadingOf(const Document& document, const Checked& checked, Report* report) {
    const Catalogue& catalogue = checked.known.catalogue;
    std::optional<WrongLevels> levels;  // Once a verdict needs them.
    const auto isOfLevels = [&](const Verdict& verdict) {
        if (!levels) {
            levels.emplace(document, checked.known);
        }
        return isOfWrongLevel(verdict, document, *levels);
    };
    const std::vector<ChangedLevel> changed = changedLevels(checked);
    const bool areLevelsReset =
            checked.documents.back() == &document &&
            std::any_of(changed.begin(), changed.end(),
                        [](const ChangedLevel& level) { return level.node == nullptr; });
    const Verdict* before = nullptr;
    const Verdict* noArray = nullptr;  // What is skipped in it is the same mistake.
    for (const Verdict& verdict : document.verdicts) {
        const Verdict* const previous = std::exchange(before, &verdict);
        const ReaderRule* const rule = ruleFor(verdict, document);
        if (rule == nullptr || isMisplaced(verdict, catalogue) ||
            (noArray != nullptr && isSkippedIn(*noArray, verdict)) || isOfLevels(verdict) ||
            (areLevelsReset && verdict.kind == FindingKind::TierLevelAbsent) ||
            (previous != nullptr && isSameMistake(verdict, *previous, document))) {
            continue;
        }
        if (verdict.kind == FindingKind::SyntaxError) {
            reportSyntaxErrors(document, report);
            continue;
        }
        if (verdict.kind == FindingKind::NoVideo) {
            reportNoVideo(*rule, verdict, document, report);
            continue;
        }
        if (rule->applies == isNoArrayAtAll) {
            noArray = &verdict;
        }
        report->add(rule->check, document, {verdict.start, verdict.limit},
                    messageOf(*rule, verdict, document),
                    {.fixes = fixesOf(verdict, document, catalogue)});
    }
}

}  // namespace

std::vector<const Check*> checksForReason(std::string_view reason) {
    std::vector<const Check*> checks;
    for (const ReaderRule& rule : kReaderRules) {
        const Check* const check = &*rule.check;
        const char* const logged = rowOf(rule.kind).reason;
        if (logged != nullptr && reason == logged &&
            std::find(checks.begin(), checks.end(), check) == checks.end()) {
            checks.push_back(check);
        }
    }
    return checks;
}

void checkReading(const Checked& checked, Report* report) {
    for (const Document* const document : checked.documents) {
        if (document->isReadable) {
            checkReadingOf(*document, checked, report);
        }
    }
}

}  // namespace kc2::tool
