// What the library's reader found, in words: whatever a load rejects, skips or changes.

#include <algorithm>
#include <cstring>
#include <string>

#include "Text.h"
#include "check/Mends.h"
#include "check/Rules.h"
#include "targetspec/Limits.h"

namespace kc2::tool {

namespace {

struct ReaderRule {
    FindingKind kind;
    Rule rule;
    // %p is the place of the value, %v the value as it is written; %b and %i what boolean or
    // integer the device makes of it, %x the same in hexadecimal; %d the parser's own words.
    const char* message;
};

constexpr ReaderRule kReaderRules[] = {
        {FindingKind::TextTooLong,
         {"document-too-long", Severity::Error, "longer than the 32 MiB that a device reads", true},
         "the document is longer than 32 MiB: the device rejects it"},
        {FindingKind::TooManyValues,
         {"too-many-values", Severity::Error, "more than the 1 Mi values that a device reads",
          true},
         "the document holds more than 1048576 values: the device rejects it"},
        {FindingKind::NestingTooDeep,
         {"nesting-too-deep", Severity::Error, "nested deeper than the 255 levels that a device reads",
          true},
         "nested deeper than 255 levels: the device rejects the whole document"},
        {FindingKind::SyntaxError,
         {"syntax", Severity::Error, "no valid JSON", true},
         "%d; the device rejects the whole document"},
        {FindingKind::RootNotObject,
         {"root-not-object", Severity::Error, "a root that is no object", true},
         "the root must be an object: the device rejects the whole document"},
        {FindingKind::VideoNotObject,
         {"video-not-object", Severity::Error, "a \"Video\" that is no object", true},
         "\"Video\" must be an object: the device rejects the whole document"},
        {FindingKind::SectionNotObject,
         {"section-not-object", Severity::Error, "a section of named values that is no object"},
         "%p must be an object: the section is skipped"},
        {FindingKind::FeatureNotBoolean,
         {"feature-not-boolean", Severity::Error, "a feature that is neither true nor false"},
         "%p must be true or false: the feature is skipped"},
        {FindingKind::PresetNotInteger,
         {"preset-not-integer", Severity::Error, "a preset that is no signed 32-bit integer"},
         "%p must be an integer from -2147483648 to 2147483647: the preset is skipped"},
        {FindingKind::RowSizeNotThree,
         {"row-size", Severity::Error, "a bit-rate row of fewer or more than three values"},
         "%p must hold three integers [low, high, bit rate]: the row is skipped"},
        {FindingKind::RowNotArray,
         {"row-not-array", Severity::Error, "a bit-rate row that is an object"},
         "%p must be an array [low, high, bit rate]: the row is skipped"},
        {FindingKind::RowValueNotInteger,
         {"row-value-not-integer", Severity::Error, "a bit-rate row with a value that is none"},
         "%p holds %v, which is no integer from -2147483648 to 2147483647: the row is skipped"},
        {FindingKind::TierLevelNotInteger,
         {"tier-level-not-integer", Severity::Error, "a tier level that is no 32-bit integer"},
         "%p must be an integer from -2147483648 to 2147483647: the level counts as 0"},
        {FindingKind::PerfWordNotHexadecimal,
         {"perf-word-not-hexadecimal", Severity::Error, "a perf word that is no 32-bit number"},
         "%p must be a hexadecimal string up to 7FFFFFFF: all words of the name are skipped"},
        {FindingKind::ListNotArray,
         {"list-not-array", Severity::Error, "a list that is a single value"},
         "%p must be an array: nothing of it is read"},
        {FindingKind::ElementNotString,
         {"element-not-string", Severity::Error, "an entry of a list of names that is no string"},
         "%p must be a string: the entry is skipped, and the device does not log it"},
        {FindingKind::ProfileNotUnsigned,
         {"profile-not-unsigned", Severity::Error, "a profile that is no unsigned 32-bit integer"},
         "%p must be an integer from 0 to 4294967295: the profile is skipped, and the device does "
         "not log it"},
        {FindingKind::NoVideo,
         {"no-video", Severity::Warning, "a document without \"Video\", which holds nothing"},
         "the document has no member \"Video\": nothing of it is read"},
        {FindingKind::ObjectAsArray,
         {"object-as-array", Severity::Warning, "an object in place of an array"},
         "%p should be an array: the object's values are taken in the order of their names"},
        {FindingKind::NumberAsBoolean,
         {"number-as-boolean", Severity::Warning, "a number in place of true or false"},
         "%p should be true or false: %v counts as %b"},
        {FindingKind::NullAsFalse,
         {"null-as-false", Severity::Warning, "null in place of true or false"},
         "%p should be true or false: null counts as false"},
        {FindingKind::BooleanAsInteger,
         {"boolean-as-integer", Severity::Warning, "true or false in place of an integer"},
         "%p should hold an integer: %v counts as %i"},
        {FindingKind::NullAsZero,
         {"null-as-zero", Severity::Warning, "null in place of an integer"},
         "%p should hold an integer: null counts as 0"},
        {FindingKind::RealTruncated,
         {"real-truncated", Severity::Warning, "a real number cut to an integer"},
         "%p should hold an integer: %v is cut to %i"},
        {FindingKind::NegativeAsUnsigned,
         {"negative-as-unsigned", Severity::Warning, "a negative number stored as a large one"},
         "%p should not be negative: %v is stored as %i"},
        {FindingKind::PerfWordUnquoted,
         {"perf-word-unquoted", Severity::Warning, "a perf word without quotes"},
         "%p should be a string: the decimal text of %v is read as hexadecimal, as %i"},
        {FindingKind::PerfWordTail,
         {"perf-word-tail", Severity::Warning, "text after a perf word's digits"},
         "%p: what follows the hexadecimal digits is ignored: it counts as %x"},
        {FindingKind::TierLevelAbsent,
         {"tier-level-absent", Severity::Warning, "\"DolbyVision\" without one of the levels"},
         "%p is absent: the level becomes 0, whatever an earlier document set"},
};

// The messages above name the limits.
static_assert(kMaxTextBytes == 32 << 20 && kMaxValues == 1 << 20 && kMaxNesting == 255);

const ReaderRule* ruleFor(FindingKind kind) {
    const auto found = std::find_if(std::begin(kReaderRules), std::end(kReaderRules),
                                    [kind](const ReaderRule& rule) { return rule.kind == kind; });
    return found != std::end(kReaderRules) ? found : nullptr;
}

// "Features/private_x", "NimbraModeBitrateTable[3]".
std::string placeOf(const KeptFinding& finding) {
    std::string place = finding.section;
    if (!finding.name.empty()) {
        place += "/" + finding.name;
    }
    if (finding.index >= 0) {
        place += "[" + std::to_string(finding.index) + "]";
    }
    return place;
}

std::string valueAsWritten(const KeptFinding& finding, const std::string& text) {
    constexpr size_t kLongest = 40;
    const std::string value = text.substr(finding.start, finding.limit - finding.start);
    const std::string_view shown = clipped(value, kLongest);
    return std::string(shown) + (shown.size() < value.size() ? "..." : "");
}

// What helps beside the parser's words on a syntax error at `at`; empty when nothing is known.
std::string hintFor(const std::string& text, size_t at) {
    const auto startsWith = [&](const char* token) {
        return text.compare(at, std::strlen(token), token) == 0;
    };
    const size_t before = at == 0 ? std::string::npos : text.find_last_not_of(" \t\r\n", at - 1);
    const char previous = before == std::string::npos ? '\0' : text[before];
    if (at >= text.size()) {
        return "the text ends here";
    }
    if (previous == ',' && (text[at] == '}' || text[at] == ']')) {
        return "the comma before it must go";
    }
    if (previous == '0' && (text[at] == 'x' || text[at] == 'X')) {
        return "a number cannot be hexadecimal";
    }
    if (text[at] == '\'') {
        return "strings stand in double quotes";
    }
    if (startsWith("True") || startsWith("False") || startsWith("None")) {
        return "write true, false or null";
    }
    if (startsWith("/*") && text.find("*/", at + 2) == std::string::npos) {
        return "the comment never ends";
    }
    if (text[at] == '"' && text.find('"', at + 1) == std::string::npos) {
        return "the string never ends";
    }
    return std::string();
}

// What the parser says of a syntax error, with what helps beside it.
std::string syntaxError(const KeptFinding& finding, const std::string& text) {
    if (text.find_first_not_of(" \t\r\n") == std::string::npos) {
        return "the document is empty";
    }
    if (text.rfind("\xEF\xBB\xBF", 0) == 0) {
        return "the document starts with a byte order mark, which must go";
    }
    std::string words = finding.detail;
    std::replace(words.begin(), words.end(), '\n', ' ');
    if (!words.empty() && words.back() == '.') {
        words.pop_back();
    }
    const std::string hint = hintFor(text, std::min(finding.start, text.size()));
    return hint.empty() ? words : words + ": " + hint;
}

std::string messageOf(const ReaderRule& rule, const KeptFinding& finding,
                      const Document& document) {
    std::string message;
    for (const char* c = rule.message; *c != '\0'; ++c) {
        if (*c != '%') {
            message += *c;
            continue;
        }
        switch (*++c) {
            case 'p':
                message += placeOf(finding);
                break;
            case 'v':
                message += valueAsWritten(finding, document.text);
                break;
            case 'b':
                message += finding.converted != 0 ? "true" : "false";
                break;
            case 'i':
                message += std::to_string(finding.converted);
                break;
            case 'x':
                message += hexadecimal(static_cast<uint32_t>(finding.converted));
                break;
            default:
                message += syntaxError(finding, document.parserText);
                break;
        }
    }
    return message;
}

}  // namespace

void applyReaderRules(const CheckedDocument& document, Report* report) {
    for (const KeptFinding& finding : document.document.findings) {
        if (const ReaderRule* const rule = ruleFor(finding.kind)) {
            report->add(rule->rule, document.source, {finding.start, finding.limit},
                        messageOf(*rule, finding, document.document),
                        {.related = {}, .fixes = mendsOf(finding, document.document.text)});
        }
    }
}

std::vector<const Rule*> readerRules() {
    return rulesOf(kReaderRules);
}

}  // namespace kc2::tool
