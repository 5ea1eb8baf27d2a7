// What the library's reader found, in words: whatever a load rejects, skips or changes.

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "base/Utf8.h"
#include "check/rules/Rules.h"
#include "document/Mends.h"
#include "document/SyntaxHints.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Limits.h"

namespace kc2::tool {

namespace {

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

// The hint on a syntax error, or the parser's own words. It gives none where JsonCpp is built
// without exceptions.
SyntaxHint syntaxError(const KeptFinding& finding, const CheckedDocument& checked) {
    const std::string& text = checked.document.parserText;
    SyntaxHint hint =
            syntaxHint(checked.source, text, finding.detail.empty() ? text.size() : finding.start);
    if (hint.message.empty()) {
        hint.span = {finding.start, finding.limit};
        hint.message = finding.detail.empty() ? "not valid JSON" : finding.detail;
        std::replace(hint.message.begin(), hint.message.end(), '\n', ' ');
        hint.message.resize(withoutTrailing(hint.message, '.').size());
    }
    hint.message += "; the device rejects the whole document";
    return hint;
}

bool isScalar(const KeptFinding& finding, const CheckedDocument& checked) {
    const char first = checked.document.parserText[finding.start];
    return first != '[' && first != '{';
}

// The finding behind this one; null when it is the last.
const KeptFinding* nextOf(const KeptFinding& finding, const CheckedDocument& checked) {
    const auto& findings = checked.document.findings;
    return &finding == &findings.back() ? nullptr : &finding + 1;
}

// Whether a finding is about a skipped value of an object that stands in place of an array.
bool isSkippedIn(const KeptFinding& object, const KeptFinding& finding) {
    const Effect effect = rowOf(finding.kind).effect;
    return object.kind == FindingKind::ObjectAsArray && finding.start >= object.start &&
           finding.limit <= object.limit &&
           (effect == Effect::SkipsAndLogs || effect == Effect::SkipsSilently);
}

// Whether a finding is the same mistake as the one before it: the values of a table without rows,
// the second one of two levels that are not there.
bool isSameMistake(const KeptFinding& finding, const KeptFinding& before,
                   const CheckedDocument& checked) {
    if (finding.kind != before.kind) {
        return false;
    }
    return finding.kind == FindingKind::TierLevelAbsent ||
           (finding.kind == FindingKind::RowSizeNotThree && isScalar(finding, checked) &&
            isScalar(before, checked));
}

// A finding with the document that it is about, for the messages below.
class About {
public:
    About(const KeptFinding& finding, const CheckedDocument& checked)
        : mFinding(finding), mChecked(checked) {}

    // "Features/private_x", "NimbraModeBitrateTable[3]".
    std::string place() const { return placeOf(mFinding); }
    // As it is written.
    std::string value() const { return valueAsWritten(mFinding, mChecked.document.text); }
    // What the device makes of it.
    int64_t converted() const { return mFinding.converted; }

    bool isIn(const char* section) const { return mFinding.section == section; }

    // Whether the next finding is the same mistake.
    bool isRepeated() const {
        const KeptFinding* const next = nextOf(mFinding, mChecked);
        return next != nullptr && isSameMistake(*next, mFinding, mChecked);
    }

private:
    const KeptFinding& mFinding;
    const CheckedDocument& mChecked;
};

using Message = std::string (*)(const About& about);

struct ReaderRule {
    constexpr ReaderRule(FindingKind ofKind, Rule reported, Message text)
        : kind(ofKind), rule(reported), message(text) {
        rule.isRejection = rowOf(kind).effect == Effect::Rejects;
    }

    FindingKind kind;
    Rule rule;
    Message message;  // Null: syntaxError() has the words.
};

// A finding that has a check of its own, apart from others of its kind.
struct SpecialCase {
    FindingKind kind;
    bool (*applies)(const KeptFinding& finding, const CheckedDocument& checked);
    Rule rule;
    Message message;
};

// The upper bound of a row, written as -1.
bool isOpenUpperBound(const KeptFinding& finding, const CheckedDocument& checked) {
    const OutlineNode* const table = checked.section(targetSpecNimbraModeBitRate);
    const auto index = static_cast<size_t>(finding.index);
    if (table == nullptr || finding.section != targetSpecNimbraModeBitRate || table->kind != '[' ||
        index >= table->children.size()) {
        return false;
    }
    const std::vector<OutlineNode>& values = table->children[index].children;
    return values.size() == 3 && values[1].value.start == finding.start &&
           finding.converted == int64_t{UINT32_MAX};
}

// The description of a pre-processing filter, which components may come to read.
bool isFilterDescription(const KeptFinding& finding, const CheckedDocument& checked) {
    const OutlineNode* const filter = findValueAt(checked.outline.root, finding.start);
    if (filter == nullptr || finding.section != targetSpecPreProcessingFilters) {
        return false;
    }
    for (const char* const key :
         {targetSpecPreProcessingFilterCodecName, targetSpecPreProcessingFilterLibName,
          targetSpecPreProcessingFilterInputStreams, targetSpecPreProcessingFilterOutputStreams}) {
        if (findMember(*filter, key) != nullptr) {
            return true;
        }
    }
    return false;
}

// Whether an object in place of an array holds something else than the array would: the first value
// that it holds is skipped.
bool isNoArrayAtAll(const KeptFinding& finding, const CheckedDocument& checked) {
    const KeptFinding* const next = nextOf(finding, checked);
    return next != nullptr && isSkippedIn(finding, *next);
}

constexpr SpecialCase kSpecialCases[] = {
        {FindingKind::ObjectAsArray,
         isNoArrayAtAll,
         {"object-not-array", Severity::Error, "an object in place of an array of other values"},
         [](const About& about) {
             return fmt::format(
                     "{} must be an array [...]: of this object only the values that fit are taken",
                     about.place());
         }},
        {FindingKind::NegativeAsUnsigned,
         isOpenUpperBound,
         {"row-without-bound", Severity::Note, "an upper bound of -1, which is a large one"},
         [](const About& about) {
             return fmt::format("{}: the upper bound {} is stored as {}: there is none in effect",
                                about.place(), about.value(), about.converted());
         }},
        {FindingKind::ElementNotString,
         isFilterDescription,
         {"filter-description", Severity::Warning, "a filter description, which nothing reads"},
         [](const About& about) {
             return fmt::format(
                     "{} is a filter description: the store ignores it and keeps only "
                     "names, written as strings",
                     about.place());
         }},
};

constexpr ReaderRule kReaderRules[] = {
        {FindingKind::TextTooLong,
         {"document-too-long", Severity::Error, "longer than a device reads"},
         [](const About&) {
             return fmt::format("the document is longer than {} MiB: the device rejects it",
                                kMaxTextBytes >> 20);
         }},
        {FindingKind::TooManyValues,
         {"too-many-values", Severity::Error, "more values than a device reads"},
         [](const About&) {
             return fmt::format("the document holds more than {} values: the device rejects it",
                                kMaxValues);
         }},
        {FindingKind::NestingTooDeep,
         {"nesting-too-deep", Severity::Error, "nested deeper than a device reads"},
         [](const About&) {
             return fmt::format(
                     "nested deeper than {} levels: the device rejects the whole document",
                     kMaxNesting);
         }},
        {FindingKind::SyntaxError, {"syntax", Severity::Error, "not valid JSON"}, nullptr},
        {FindingKind::RootNotObject,
         {"root-not-object", Severity::Error, "a root that is not an object"},
         [](const About&) {
             return std::string(
                     "the root must be an object: the device rejects the whole document");
         }},
        {FindingKind::VideoNotObject,
         {"video-not-object", Severity::Error, "a \"Video\" that is not an object"},
         [](const About&) {
             return std::string(
                     "\"Video\" must be an object: the device rejects the whole document");
         }},
        {FindingKind::SectionNotObject,
         {"section-not-object", Severity::Error, "a section of named values that is not an object"},
         [](const About& about) {
             return fmt::format("{} must be an object: the section is skipped", about.place());
         }},
        {FindingKind::FeatureNotBoolean,
         {"feature-not-boolean", Severity::Error, "a feature that is neither true nor false"},
         [](const About& about) {
             return fmt::format("{} must be true or false: the feature is skipped", about.place());
         }},
        {FindingKind::PresetNotInteger,
         {"preset-not-integer", Severity::Error, "a preset that is not a signed 32-bit integer"},
         [](const About& about) {
             return fmt::format(
                     "{} must be an integer from -2147483648 to 2147483647: the preset is skipped",
                     about.place());
         }},
        {FindingKind::RowSizeNotThree,
         {"row-size", Severity::Error, "a bit-rate row of fewer or more than three values"},
         [](const About& about) {
             return about.isRepeated()
                            ? fmt::format(
                                      "{} and what follows are not rows: each row must be an "
                                      "array [low, high, bit rate]",
                                      about.place())
                            : fmt::format(
                                      "{} must hold three integers [low, high, bit rate]: the "
                                      "row is skipped",
                                      about.place());
         }},
        {FindingKind::RowNotArray,
         {"row-not-array", Severity::Error, "a bit-rate row that is an object"},
         [](const About& about) {
             return fmt::format("{} must be an array [low, high, bit rate]: the row is skipped",
                                about.place());
         }},
        {FindingKind::RowValueNotInteger,
         {"row-value-not-integer", Severity::Error,
          "a bit-rate row with a value that is not an integer"},
         [](const About& about) {
             return fmt::format(
                     "{} holds {}, which is not an integer from -2147483648 to 2147483647: the row "
                     "is skipped",
                     about.place(), about.value());
         }},
        {FindingKind::TierLevelNotInteger,
         {"tier-level-not-integer", Severity::Error, "a tier level that is not a 32-bit integer"},
         [](const About& about) {
             return fmt::format(
                     "{} must be an integer from -2147483648 to 2147483647: the level counts as 0",
                     about.place());
         }},
        {FindingKind::PerfWordNotHexadecimal,
         {"perf-word-not-hexadecimal", Severity::Error, "a perf word that is not a 32-bit number"},
         [](const About& about) {
             return fmt::format(
                     "{} must be a hexadecimal string up to 7FFFFFFF: all words of the name are "
                     "skipped",
                     about.place());
         }},
        {FindingKind::ListNotArray,
         {"list-not-array", Severity::Error, "a list that is a single value"},
         [](const About& about) {
             return about.isIn(targetSpecPerfResourceValues)
                            ? fmt::format(
                                      "{} must be an array: the name is taken without words, "
                                      "and no later document can set them",
                                      about.place())
                            : fmt::format(
                                      "{} must be an array: nothing of it is read, and the "
                                      "device does not log it",
                                      about.place());
         }},
        {FindingKind::ElementNotString,
         {"element-not-string", Severity::Error,
          "an entry of a list of names that is not a string"},
         [](const About& about) {
             return fmt::format(
                     "{} must be a string: the entry is skipped, and the device does not log it",
                     about.place());
         }},
        {FindingKind::ProfileNotUnsigned,
         {"profile-not-unsigned", Severity::Error,
          "a profile that is not an unsigned 32-bit integer"},
         [](const About& about) {
             return fmt::format(
                     "{} must be an integer from 0 to 4294967295: the profile is skipped, and the "
                     "device does not log it",
                     about.place());
         }},
        {FindingKind::NoVideo,
         {"no-video", Severity::Warning, "a document without \"Video\", which holds nothing"},
         [](const About&) {
             return std::string("the document has no member \"Video\": nothing of it is read");
         }},
        {FindingKind::ObjectAsArray,
         {"object-as-array", Severity::Warning, "an object in place of an array"},
         [](const About& about) {
             return fmt::format(
                     "{} should be an array: the object's values are taken in the order of their "
                     "names{}",
                     about.place(),
                     about.isIn(targetSpecPerfResourceValues)
                             ? ", and the names are lost: write code, value, code, value"
                             : "");
         }},
        {FindingKind::NumberAsBoolean,
         {"number-as-boolean", Severity::Warning, "a number in place of true or false"},
         [](const About& about) {
             return fmt::format("{} should be true or false: {} counts as {}", about.place(),
                                about.value(), about.converted() != 0);
         }},
        {FindingKind::NullAsFalse,
         {"null-as-false", Severity::Warning, "null in place of true or false"},
         [](const About& about) {
             return fmt::format("{} should be true or false: null counts as false", about.place());
         }},
        {FindingKind::BooleanAsInteger,
         {"boolean-as-integer", Severity::Warning, "true or false in place of an integer"},
         [](const About& about) {
             return fmt::format("{} should hold an integer: {} counts as {}", about.place(),
                                about.value(), about.converted());
         }},
        {FindingKind::NullAsZero,
         {"null-as-zero", Severity::Warning, "null in place of an integer"},
         [](const About& about) {
             return fmt::format("{} should hold an integer: null counts as 0", about.place());
         }},
        {FindingKind::RealTruncated,
         {"real-truncated", Severity::Warning, "a real number cut to an integer"},
         [](const About& about) {
             return fmt::format("{} should hold an integer: {} is cut to {}", about.place(),
                                about.value(), about.converted());
         }},
        {FindingKind::NegativeAsUnsigned,
         {"negative-as-unsigned", Severity::Warning, "a negative number stored as a large one"},
         [](const About& about) {
             return fmt::format("{} should not be negative: {} is stored as {}", about.place(),
                                about.value(), about.converted());
         }},
        {FindingKind::PerfWordUnquoted,
         {"perf-word-unquoted", Severity::Warning, "a perf word without quotes"},
         [](const About& about) {
             return fmt::format(
                     "{} should be a string: the decimal text of {} is read as hexadecimal, as {}",
                     about.place(), about.value(), about.converted());
         }},
        {FindingKind::PerfWordTail,
         {"perf-word-tail", Severity::Warning, "text after a perf word's digits"},
         [](const About& about) {
             return fmt::format(
                     "{}: what follows the hexadecimal digits is ignored: it counts as 0x{:X}",
                     about.place(), about.converted());
         }},
        {FindingKind::TierLevelAbsent,
         {"tier-level-absent", Severity::Warning, "\"DolbyVision\" without one of the levels"},
         [](const About& about) {
             return about.isRepeated()
                            ? std::string(
                                      "both levels are absent: they become 0, whatever an "
                                      "earlier document set")
                            : fmt::format(
                                      "{} is absent: the level becomes 0, whatever an earlier "
                                      "document set",
                                      about.place());
         }},
};

const ReaderRule* ruleFor(FindingKind kind) {
    const auto found = std::find_if(std::begin(kReaderRules), std::end(kReaderRules),
                                    [kind](const ReaderRule& rule) { return rule.kind == kind; });
    return found != std::end(kReaderRules) ? found : nullptr;
}

const SpecialCase* specialCaseOf(const KeptFinding& finding, const CheckedDocument& checked) {
    for (const SpecialCase& row : kSpecialCases) {
        if (row.kind == finding.kind && row.applies(finding, checked)) {
            return &row;
        }
    }
    return nullptr;
}

// A setting in a section of another type: its place is the mistake, and not its value.
bool isMisplaced(const KeptFinding& finding, const KnownSettings& known) {
    if (finding.kind != FindingKind::NumberAsBoolean &&
        finding.kind != FindingKind::BooleanAsInteger) {
        return false;
    }
    const Setting* const setting = known.catalogue.setting(finding.name);
    return setting != nullptr && setting->section != finding.section;
}

void addSyntaxError(const KeptFinding& finding, const CheckedDocument& checked, const Rule& rule,
                    Report* report) {
    SyntaxHint hint = syntaxError(finding, checked);
    report->add(rule, checked.source, hint.span, std::move(hint.message),
                {.related = std::move(hint.related),
                 .fixes = mendsOf(finding, checked.document.parserText)});
}

}  // namespace

void applyReaderRules(const CheckedDocument& checked, const KnownSettings& known, Report* report) {
    const KeptFinding* before = nullptr;
    const KeptFinding* noArray = nullptr;  // What is skipped in it is the same mistake.
    for (const KeptFinding& finding : checked.document.findings) {
        const KeptFinding* const previous = std::exchange(before, &finding);
        const ReaderRule* const row = ruleFor(finding.kind);
        if (row == nullptr || isMisplaced(finding, known) ||
            (noArray != nullptr && isSkippedIn(*noArray, finding)) ||
            (previous != nullptr && isSameMistake(finding, *previous, checked))) {
            continue;
        }
        if (finding.kind == FindingKind::SyntaxError) {
            addSyntaxError(finding, checked, row->rule, report);
            continue;
        }
        const SpecialCase* const special = specialCaseOf(finding, checked);
        if (finding.kind == FindingKind::ObjectAsArray && special != nullptr) {
            noArray = &finding;
        }
        const Message message = special != nullptr ? special->message : row->message;
        report->add(special != nullptr ? special->rule : row->rule, checked.source,
                    {finding.start, finding.limit}, message(About(finding, checked)),
                    {.related = {}, .fixes = mendsOf(finding, checked.document.parserText)});
    }
}

std::vector<const Rule*> readerRules() {
    std::vector<const Rule*> rules = rulesOf(kReaderRules);
    const std::vector<const Rule*> special = rulesOf(kSpecialCases);
    rules.insert(rules.end(), special.begin(), special.end());
    return rules;
}

}  // namespace kc2::tool
