// Finds the first token of a text that does not fit where it is, and what was open there.

#include "document/SyntaxWalk.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "base/Text.h"
#include "base/Utf8.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kMarks = "{}[]:,";

size_t skipDigits(std::string_view word, size_t at) {
    while (at < word.size() && isDigit(word[at])) {
        ++at;
    }
    return at;
}

class Walk {
public:
    explicit Walk(std::string_view text) : mText(text) {}

    std::optional<Misfit> run() {
        do {
            const Token token = next();
            if (!take(token)) {
                mMisfit.token = token;
                return std::move(mMisfit);
            }
            mMisfit.previous = token;
        } while (!mMisfit.open.empty());
        return std::nullopt;  // Nothing reads what follows the root.
    }

private:
    Token next() {
        while (mAt < mText.size() && isJsonBlank(mText[mAt])) {
            if (mText[mAt++] == '\n') {
                mLineStart = mAt;
                mIsFirstInLine = true;
            }
        }
        Token token;
        token.span = {mAt, mAt};
        if (mAt == mText.size()) {
            return token;
        }
        if (std::exchange(mIsFirstInLine, false)) {
            mIndent = mAt - mLineStart;
            mIsLeading = true;
        } else {
            mIsLeading = false;
        }
        if (mText[mAt] == '"') {
            string(&token);
        } else if (kMarks.find(mText[mAt]) != kNowhere) {
            token.kind = mText[mAt++];
        } else {
            word(&token);
        }
        token.span.limit = mAt;
        return token;
    }

    void string(Token* token) {
        token->kind = Token::kString;
        for (++mAt; mAt < mText.size() && mText[mAt] != '"'; ++mAt) {
            if (mText[mAt] == '\\') {
                const size_t escape = mAt++;
                if (token->flaw == kNowhere && !isEscape(escape)) {
                    token->flaw = escape;
                }
            }
        }
        token->isWhole = mAt < mText.size();
        mAt = std::min(mAt + 1, mText.size());
    }

    bool isEscape(size_t at) const {
        constexpr std::string_view kEscaped = "\"\\/bfnrtu";
        const std::string_view escape = mText.substr(at, 6);
        if (escape.size() < 2 || kEscaped.find(escape[1]) == kNowhere) {
            return false;
        }
        return escape[1] != 'u' ||
               (escape.size() == 6 && std::all_of(escape.begin() + 2, escape.end(), [](char c) {
                    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
                }));
    }

    // A character that begins no word of JSON is a token by itself: what follows may be as meant.
    void word(Token* token) {
        static constexpr std::string_view kAlone = ";=#'`";
        token->kind = Token::kWord;
        const auto isAlone = [](char c) {
            return static_cast<signed char>(c) < 0 || kAlone.find(c) != kNowhere;
        };
        if (isAlone(mText[mAt])) {
            do {
                ++mAt;
            } while (mAt < mText.size() && !isFirstByteOfCharacter(mText[mAt]));
            return;
        }
        while (mAt < mText.size() && !endsWord(mText[mAt]) && !isAlone(mText[mAt])) {
            ++mAt;
        }
    }

    // Whether the token fits; then what is expected next is set.
    bool take(const Token& token) {
        std::vector<OpenBracket>& open = mMisfit.open;
        const bool isInObject = !open.empty() && open.back().kind == '{';
        const bool isEnd = !open.empty() && token.kind == (isInObject ? '}' : ']');
        switch (mMisfit.expected) {
            case Expected::Colon:
                return token.kind == ':' && expect(Expected::Value);
            case Expected::NameOrEnd:
            case Expected::Name:
                if (isEnd && mMisfit.expected == Expected::NameOrEnd) {
                    return close();
                }
                return isSoundString(token) && expect(Expected::Colon);
            case Expected::CommaOrEnd:
                if (isEnd) {
                    return close();
                }
                return token.kind == ',' && expect(isInObject ? Expected::Name : Expected::Value);
            case Expected::ValueOrEnd:
                if (isEnd) {
                    return close();
                }
                [[fallthrough]];
            case Expected::Value:
                return takeValue(token);
        }
        return false;
    }

    bool takeValue(const Token& token) {
        if (token.kind == '{' || token.kind == '[') {
            mMisfit.open.push_back({token.kind, token.span.start, mIndent});
            return expect(token.kind == '{' ? Expected::NameOrEnd : Expected::ValueOrEnd);
        }
        const bool isWord =
                token.kind == Token::kWord &&
                isWordOfJson(mText.substr(token.span.start, token.span.limit - token.span.start));
        return (isWord || isSoundString(token)) && expect(Expected::CommaOrEnd);
    }

    static bool isSoundString(const Token& token) {
        return token.kind == Token::kString && token.isWhole && token.flaw == kNowhere;
    }

    bool expect(Expected expected) {
        mMisfit.expected = expected;
        return true;
    }

    // A bracket at the start of a line that is less indented than the line of the bracket that it
    // closes was meant for another one: that one lacks its own.
    bool close() {
        const OpenBracket closed = mMisfit.open.back();
        if (mIsLeading && mIndent < closed.indent && !mMisfit.unclosed) {
            mMisfit.unclosed = closed;
        }
        mMisfit.open.pop_back();
        return expect(Expected::CommaOrEnd);
    }

    const std::string_view mText;
    size_t mAt = 0;
    size_t mLineStart = 0;
    size_t mIndent = 0;          // Of the last token's line.
    bool mIsFirstInLine = true;  // The next token is.
    bool mIsLeading = false;     // The last token is the first of its line.
    Misfit mMisfit = {{}, {}, Expected::Value, {}, std::nullopt};
};

}  // namespace

std::optional<Misfit> findMisfit(std::string_view text) {
    return Walk(text).run();
}

bool isWordOfJson(std::string_view word) {
    if (word == "true" || word == "false" || word == "null") {
        return true;
    }
    if (word.empty() || (!isDigit(word[0]) && word[0] != '-')) {
        return false;
    }
    size_t at = skipDigits(word, 1);
    if (at < word.size() && word[at] == '.') {
        at = skipDigits(word, at + 1);
    }
    if (at < word.size() && (word[at] == 'e' || word[at] == 'E')) {
        ++at;
        at += at < word.size() && (word[at] == '+' || word[at] == '-') ? 1 : 0;
        const size_t end = skipDigits(word, at);
        at = end == at ? kNowhere : end;
    }
    return at == word.size();
}

bool endsWord(char c) {
    return c == '"' || isJsonBlank(c) || kMarks.find(c) != kNowhere;
}

}  // namespace kc2::tool
