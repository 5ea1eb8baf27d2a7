// The mends that are certain: changes of a document's text after which it says what it meant.

#include "document/Mends.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <system_error>
#include <utility>

#include "base/Spelling.h"
#include "base/Text.h"
#include "kc2/TargetSpecKeys.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isHexadecimalWord(std::string_view token) {
    constexpr size_t kMostDigits = 8;
    return token.size() > 2 && token.size() <= 2 + kMostDigits && token[0] == '0' &&
           (token[1] == 'x' || token[1] == 'X') &&
           std::all_of(token.begin() + 2, token.end(),
                       [](unsigned char c) { return std::isxdigit(c) != 0; });
}

// Walks through the tokens of a text that the parser rejects and collects what is wrong with them.
class SyntaxMender {
public:
    explicit SyntaxMender(std::string_view text) : mText(text) {}

    // Empty when something is wrong that has more than one mend, or none.
    std::vector<Fix> mends() {
        if (mText.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
            mAt = kByteOrderMark.size();
            mFixes.push_back({{0, mAt}, "", "remove the byte order mark"});
        }
        while (skipBlanks()) {
            if (!token()) {
                return {};
            }
            if (mOpen.empty()) {
                return std::move(mFixes);  // What follows the root is not read.
            }
        }
        return {};
    }

private:
    enum class Expects { First, Name, Colon, Value, Separator };

    struct Container {
        bool isObject;
        Expects expects;
        Span comma;            // The last one.
        std::string_view key;  // Of the member that is being read.
    };

    // To the next token; false at the end of the text.
    bool skipBlanks() {
        mAt = std::min(mText.find_first_not_of(kJsonBlanks, mAt), mText.size());
        return mAt < mText.size();
    }

    bool token() {
        const char c = mText[mAt];
        if (mOpen.empty() && c != '{') {
            return false;
        }
        switch (c) {
            case '{':
            case '[':
                return startValue() && open(c == '{');
            case '}':
            case ']':
                return close(c == '}');
            case ',':
                return comma();
            case ':':
                return std::exchange(mOpen.back().expects, Expects::Value) == Expects::Colon &&
                       ++mAt != 0;
            case '"':
                return string();
            default:
                return scalar();
        }
    }

    // Whether a value, or a name, may begin here; adds the comma that is missing before it.
    bool startValue(bool isString = false) {
        if (mOpen.empty()) {
            return true;
        }
        Container& in = mOpen.back();
        if (in.expects == Expects::Separator && (!in.isObject || isString)) {
            mFixes.push_back({{mValueEnd, mValueEnd}, ",", "add the missing comma"});
            in.expects = in.isObject ? Expects::Name : Expects::Value;
        }
        const bool isFirstElement = in.expects == Expects::First && !in.isObject;
        const bool isName =
                in.isObject && (in.expects == Expects::First || in.expects == Expects::Name);
        return in.expects == Expects::Value || isFirstElement || (isName && isString);
    }

    void endValue() {
        mValueEnd = mAt;
        if (!mOpen.empty()) {
            mOpen.back().expects = Expects::Separator;
        }
    }

    bool open(bool isObject) {
        ++mAt;
        mOpen.push_back({isObject, Expects::First, {}, {}});
        return true;
    }

    bool close(bool isObject) {
        const Container& in = mOpen.back();
        const bool isAfterComma =
                in.comma.limit != 0 && in.expects == (isObject ? Expects::Name : Expects::Value);
        if (in.isObject != isObject ||
            !(in.expects == Expects::First || in.expects == Expects::Separator || isAfterComma)) {
            return false;
        }
        if (isAfterComma) {
            mFixes.push_back({in.comma, "", "remove the comma before the bracket"});
        }
        ++mAt;
        mOpen.pop_back();
        endValue();
        return true;
    }

    bool comma() {
        Container& in = mOpen.back();
        if (in.expects != Expects::Separator) {
            return false;
        }
        in.comma = {mAt, mAt + 1};
        in.expects = in.isObject ? Expects::Name : Expects::Value;
        ++mAt;
        return true;
    }

    bool string() {
        const size_t start = mAt++;
        while (mAt < mText.size() && mText[mAt] != '"') {
            if (mText[mAt] == '\n') {
                return false;  // It may be a quote that is missing.
            }
            mAt += mText[mAt] == '\\' ? 2 : 1;
        }
        if (mAt >= mText.size() || !startValue(true)) {
            return false;
        }
        ++mAt;
        Container& in = mOpen.back();
        if (in.isObject && in.expects != Expects::Value) {
            in.key = mText.substr(start + 1, mAt - start - 2);
            in.expects = Expects::Colon;
        } else {
            endValue();
        }
        return true;
    }

    // A number, or a word.
    bool scalar() {
        const size_t limit = std::min(mText.find_first_of(" \t\r\n,:{}[]\"/", mAt), mText.size());
        const std::string_view word = mText.substr(mAt, limit - mAt);
        if (word.empty() || !startValue()) {
            return false;
        }
        if (word.size() > 1 && word[0] == '+' && isDigit(word[1])) {
            mFixes.push_back({{mAt, mAt + 1}, "", "remove the plus sign"});
        } else if (isHexadecimalWord(word) && isInPerfWords()) {
            mFixes.push_back({{mAt, limit}, '"' + std::string(word) + '"', "add the quotes"});
        }
        mAt = limit;
        endValue();
        return true;
    }

    bool isInPerfWords() const {
        return mOpen.size() == 4 && mOpen[0].key == targetSpecRoot &&
               mOpen[1].key == targetSpecPerfResourceValues && mOpen[2].isObject &&
               !mOpen[3].isObject;
    }

    std::string_view mText;
    size_t mAt = 0;
    size_t mValueEnd = 0;
    std::vector<Container> mOpen;
    std::vector<Fix> mFixes;
};

std::vector<Fix> syntaxMends(std::string_view text) {
    std::vector<Fix> fixes = SyntaxMender(text).mends();
    if (fixes.empty() || !readDocument("", "", withFixes(text, fixes)).isAccepted) {
        return {};  // Something else is wrong, too: what is meant is for a person to say.
    }
    return fixes;
}

}  // namespace

std::vector<Fix> mendsOf(const KeptFinding& finding, std::string_view parserText) {
    const std::string_view value = parserText.substr(std::min(finding.start, parserText.size()),
                                                     finding.limit - finding.start);
    switch (finding.kind) {
        case FindingKind::SyntaxError:
            return syntaxMends(parserText);
        case FindingKind::PerfWordUnquoted: {
            // Between quotes the text itself is read, not the parser's text of the number.
            uint32_t word = 0;
            const auto read = std::from_chars(value.data(), value.data() + value.size(), word, 16);
            const bool isPlain = std::all_of(value.begin(), value.end(), isDigit) &&
                                 (value.size() == 1 || value[0] != '0') && read.ec == std::errc() &&
                                 word == finding.converted;
            return isPlain ? std::vector<Fix>{{{finding.start, finding.limit},
                                               '"' + std::string(value) + '"',
                                               "add the quotes"}}
                           : std::vector<Fix>();
        }
        default:
            return {};
    }
}

std::vector<Fix> renaming(std::string_view text, Span quotedName, std::string_view meant) {
    constexpr size_t kMostMistakes = 2;
    if (quotedName.limit < quotedName.start + 2) {
        return {};
    }
    const std::string_view name =
            text.substr(quotedName.start + 1, quotedName.limit - quotedName.start - 2);
    if (digitsOf(name) != digitsOf(meant) ||
        editDistance(name, meant, kMostMistakes) > kMostMistakes) {
        return {};
    }
    return {{quotedName, '"' + std::string(meant) + '"', "write \"" + std::string(meant) + "\""}};
}

std::string withFixes(std::string_view text, std::vector<Fix> fixes) {
    std::stable_sort(fixes.begin(), fixes.end(),
                     [](const Fix& a, const Fix& b) { return a.span.start < b.span.start; });
    std::string result;
    size_t at = 0;
    for (const Fix& fix : fixes) {
        const std::string_view replaced =
                text.substr(fix.span.start, fix.span.limit - fix.span.start);
        if (fix.span.start < at || replaced.find('\n') != std::string_view::npos ||
            fix.replacement.find('\n') != std::string::npos) {
            continue;
        }
        result.append(text, at, fix.span.start - at).append(fix.replacement);
        at = fix.span.limit;
    }
    return result.append(text, at, std::string_view::npos);
}

}  // namespace kc2::tool
