// What is at a place of a document, by the tokens before it.

#include "editor/Cursor.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "document/Tokens.h"

namespace kc2::tool {

namespace {

// Reads tokens, and keeps which containers are open. A missing comma does not confuse it.
class CursorReader {
public:
    CursorReader(std::string_view text, size_t offset, CursorUse use)
        : mText(text), mOffset(std::min(offset, text.size())), mUse(use) {}

    Cursor read() {
        Token token = next();
        for (; !isFound(token); token = next()) {
            use(token);
        }
        if (!mOpen.empty()) {
            readRest(mIsOnToken ? next() : token);
        }
        return mCursor;
    }

private:
    struct Container {
        char kind;
        std::string key;  // Of the member that is being read.
        bool isAfterColon = false;
        size_t index = 0;
        std::set<std::string> words = {};
    };

    // A string that is not closed ends with its line: the quote of the next one is not its end.
    Token next() {
        Tokenizer tokens(mText, mAt);
        Token token = tokens.next();
        if (token.kind == Token::kString) {
            const size_t line = mText.find('\n', token.span.start);
            token.isWhole = token.isWhole && line >= token.span.limit;
            token.span.limit = std::min(token.span.limit, line);
        }
        mAt = token.span.limit;
        return token;
    }

    std::string_view textOf(const Token& token) const {
        std::string_view text = mText.substr(token.span.start, token.span.limit - token.span.start);
        if (token.kind == Token::kString) {
            text.remove_prefix(1);
            text.remove_suffix(token.isWhole ? 1 : 0);
        }
        return text;
    }

    // Whether the place is in the token, or before it; it is not after the end of the text.
    bool isFound(const Token& token) {
        const bool isText = token.kind == Token::kString || token.kind == Token::kWord;
        // What is being written goes on at its end; a whole string does not.
        const bool isOpen = isText && !(token.kind == Token::kString && token.isWhole);
        mIsOnToken = isText && token.span.start <= mOffset &&
                     (mOffset < token.span.limit || (isOpen && mOffset == token.span.limit));
        if (mUse == CursorUse::Typing && token.span.start == mOffset && !isAfterColon()) {
            mIsOnToken = false;
        }
        if (!mIsOnToken && token.span.start < mOffset) {
            return false;
        }
        if (mIsOnToken) {
            mCursor.word = textOf(token);
        }
        placeAt(mIsOnToken ? token.span : Span{mOffset, mOffset});
        return true;
    }

    void placeAt(Span span) {
        mCursor.token = span;
        if (mOpen.empty()) {
            return;
        }
        const Container& in = mOpen.back();
        const bool isName = in.kind == '{' && !in.isAfterColon;
        mCursor.role = isName ? Cursor::Role::Name : Cursor::Role::Value;
        for (const Container& one : mOpen) {
            mCursor.path.push_back({one.kind == '[', one.kind == '[' ? "" : one.key, one.index});
        }
        if (isName) {
            mCursor.path.back().key = mCursor.word;
        }
    }

    void use(const Token& token) {
        switch (token.kind) {
            case '{':
            case '[':
                mOpen.push_back({token.kind, "", false, 0, {}});
                return;
            case '}':
            case ']':
                if (!mOpen.empty()) {
                    mOpen.pop_back();
                }
                return endValue();
            case ':':
            case ',':
                if (!mOpen.empty()) {
                    mOpen.back().isAfterColon = token.kind == ':';
                    mOpen.back().index += token.kind == ',' ? 1 : 0;
                }
                return;
            default:
                return useText(token);
        }
    }

    void useText(const Token& token) {
        if (mOpen.empty()) {
            return;
        }
        Container& in = mOpen.back();
        if (in.kind == '[') {
            in.words.emplace(textOf(token));
        } else if (in.isAfterColon) {
            endValue();
        } else {
            in.key = textOf(token);
            in.words.insert(in.key);
        }
    }

    bool isAfterColon() const { return !mOpen.empty() && mOpen.back().isAfterColon; }

    void endValue() {
        if (!mOpen.empty()) {
            mOpen.back().isAfterColon = false;
        }
    }

    // What follows: `token` is the first after the place.
    void readRest(Token token) {
        const size_t depth = mOpen.size();
        mCursor.hasColon = mCursor.role == Cursor::Role::Name && token.kind == ':';
        mCursor.isBeforeMore =
                token.kind == Token::kString || token.kind == Token::kWord ||
                (mOpen.back().kind == '[' && (token.kind == '{' || token.kind == '['));
        for (; token.kind != Token::kEnd; token = next()) {
            if (mOpen.size() == depth && (token.kind == '}' || token.kind == ']')) {
                break;
            }
            use(token);
        }
        mCursor.neighbours = std::move(mOpen[depth - 1].words);
    }

    std::string_view mText;
    size_t mOffset;
    CursorUse mUse;
    size_t mAt = 0;
    bool mIsOnToken = false;
    std::vector<Container> mOpen;  // The innermost is last.
    Cursor mCursor;
};

}  // namespace

Cursor cursorAt(std::string_view text, size_t offset, CursorUse use) {
    return CursorReader(text, offset, use).read();
}

}  // namespace kc2::tool
