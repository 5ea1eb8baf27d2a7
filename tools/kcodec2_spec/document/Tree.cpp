// The one tree of a document: one builder, with recovery from errors that have one certain fix.

#include "document/Tree.h"

#include <json/reader.h>
#include <json/value.h>

#include <iterator>
#include <optional>

#include "base/Spelling.h"
#include "base/Text.h"
#include "document/Tokens.h"

namespace kc2::tool {

namespace {

// The string that the text between two quotes, with them and with escapes in it, says.
std::string withoutEscapes(std::string_view quoted) {
    Json::Value array;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    Json::Reader().parse("[" + std::string(quoted) + "]", array, false);
#pragma GCC diagnostic pop
    return array.isArray() && array.size() == 1 ? array[0].asString() : std::string(quoted);
}

size_t startOfLine(std::string_view text, size_t offset) {
    const size_t lineEnd = offset == 0 ? kNowhere : text.rfind('\n', offset - 1);
    return lineEnd == kNowhere ? 0 : lineEnd + 1;
}

// How far the line is indented that `offset` is in.
size_t indentOf(std::string_view text, size_t offset) {
    const size_t start = startOfLine(text, offset);
    return std::min(text.find_first_not_of(kJsonBlanks, start), offset) - start;
}

bool isFirstInLine(std::string_view text, size_t offset) {
    return startOfLine(text, offset) + indentOf(text, offset) == offset;
}

// Builds a tree from the start of a text to its end, or to an error that has no certain fix.
// Nesting is within the reader's limit, so recursion is, too.
class Builder {
public:
    explicit Builder(std::string_view text) : mText(text), mTokens(text) {}
    Builder(const Source& source, std::string_view text, size_t rejectedAt)
        : mText(text), mTokens(text), mSource(&source), mRejectedAt(rejectedAt) {}

    Tree build() {
        if (start()) {
            mToken = mTokens.nextRoot();
            value(&mTree.root, Expected::Value);
        }
        mTree.limit = mOpen.empty() ? mEnd : mText.size();
        return std::move(mTree);
    }

private:
    // Steps over a byte order mark; false where the text is no JSON from its start.
    bool start() {
        if (mSource == nullptr) {
            return true;
        }
        std::optional<SyntaxHint> hint = hintOnStart(*mSource, mText);
        if (!hint) {
            return true;
        }
        const bool isFixed = hint->recovery != Recovery::Stop;
        mTokens = Tokenizer(mText, hint->span.limit);
        mTree.errors.push_back(*std::move(hint));
        return isFixed;
    }

    void advance() {
        if (mOpen.empty()) {  // The root has ended: nothing reads what follows.
            mEnd = mTokens.skipBlanks();
            return;
        }
        mPrevious = mToken;
        mToken = mTokens.next();
    }

    // Adds what is wrong with the token; whether reading can go on as if it were fixed, and how.
    Recovery recover(Expected expected) {
        if (mSource == nullptr) {
            return Recovery::Stop;  // The parser has accepted the text.
        }
        const Misfit misfit = {mToken, mPrevious, expected, mOpen, mUnclosed};
        if (mTree.errors.empty() && mToken.span.start > mRejectedAt) {
            return Recovery::Stop;  // The parser has rejected something else, before this.
        }
        mTree.errors.push_back(hintOn(*mSource, mText, misfit));
        return mTree.errors.back().recovery;
    }

    // Of the token.
    std::string_view text() const {
        return mText.substr(mToken.span.start, mToken.span.limit - mToken.span.start);
    }

    std::string_view decoded() {
        const std::string_view quoted = text();
        return quoted.find('\\') != kNowhere ? mTree.decoded.emplace_front(withoutEscapes(quoted))
                                             : quoted.substr(1, quoted.size() - 2);
    }

    bool isSoundString() const {
        return mToken.kind == Token::kString && mToken.isWhole &&
               (mSource == nullptr || badEscapeIn(text()) == kNowhere);
    }

    bool isSoundWord() const {
        return mToken.kind == Token::kWord && (mSource == nullptr || isValue(text()));
    }

    bool value(Node* node, Expected expected) {
        if (mToken.kind == '{' || mToken.kind == '[') {
            return container(node);
        }
        node->kind = mToken.kind == Token::kEnd ? '\0' : mText[mToken.span.start];
        if (isSoundString()) {
            node->string = decoded();
        } else if (!isSoundWord()) {
            if (recover(expected) != Recovery::AcceptToken) {
                node->kind = '\0';
                return false;
            }
            const Fix& fix = mTree.errors.back().fixes.front();  // A plus removed, or quotes added.
            node->kind = fix.replacement.empty() ? mText[fix.span.limit] : fix.replacement[0];
        }
        node->value = mToken.span;
        advance();
        return true;
    }

    bool container(Node* node) {
        node->kind = mToken.kind;
        node->value = {mToken.span.start, mText.size()};
        mOpen.push_back({mToken.kind, mToken.span.start, node->key});
        advance();
        if (!children(node)) {
            return false;
        }
        noteUnclosed();
        mOpen.pop_back();
        node->value.limit = mToken.span.limit;
        advance();
        return true;
    }

    // Reads the elements of a list, or the members of an object, up to its end.
    bool children(Node* parent) {
        const bool isObject = parent->isObject();
        const char end = isObject ? '}' : ']';
        Expected expected = isObject ? Expected::NameOrEnd : Expected::ValueOrEnd;
        while (mToken.kind != end) {
            Node& child = parent->children.emplace_back();
            if (!(isObject ? name(&child, expected) && value(&child, Expected::Value)
                           : value(&child, expected))) {
                if (child.kind == '\0') {  // Its value could not be read.
                    parent->children.pop_back();
                }
                return false;
            }
            if (mToken.kind == end) {
                return true;
            }
            if (!comma()) {
                return false;
            }
            expected = isObject ? Expected::Name : Expected::Value;
        }
        // After a comma, which the parser accepts where the last name is empty.
        return parent->children.empty() || (isObject && parent->children.back().key.empty()) ||
               recover(expected) == Recovery::DropComma;
    }

    bool name(Node* member, Expected expected) {
        if (!isSoundString()) {
            recover(expected);
            return false;
        }
        member->key = decoded();
        member->name = mToken.span;
        advance();
        if (mToken.kind != ':') {
            recover(Expected::Colon);
            return false;
        }
        advance();
        return true;
    }

    // Whether there is a comma, or one can be read as if it were there.
    bool comma() {
        if (mToken.kind == ',') {
            advance();
            return true;
        }
        if (recover(Expected::CommaOrEnd) != Recovery::InsertComma) {
            return false;
        }
        mPrevious = {',', {mPrevious.span.limit, mPrevious.span.limit}, true};
        return true;
    }

    // A bracket at the start of a line that is less indented than the line of the bracket that it
    // closes was meant for another one: that one lacks its end.
    void noteUnclosed() {
        if (mSource != nullptr && !mUnclosed && isFirstInLine(mText, mToken.span.start) &&
            indentOf(mText, mToken.span.start) < indentOf(mText, mOpen.back().at)) {
            mUnclosed = mOpen.back();
        }
    }

    const std::string_view mText;
    Tokenizer mTokens;
    Token mToken;                     // The next one.
    Token mPrevious;                  // The one before it.
    std::vector<OpenBracket> mOpen;   // The innermost is last.
    size_t mEnd = 0;                  // Of the document, once the root has ended.
    const Source* mSource = nullptr;  // Null for a text that the parser accepts.
    size_t mRejectedAt = 0;
    std::optional<OpenBracket> mUnclosed;
    Tree mTree;
};

const Verdict* join(Node* node, const Verdict* verdict, const Verdict* end) {
    while (verdict != end && verdict->start < node->value.start) {
        ++verdict;
    }
    const Verdict* const first = verdict;
    while (verdict != end && verdict->start == node->value.start) {
        ++verdict;
    }
    node->verdicts = {first, verdict};
    for (Node& child : node->children) {
        verdict = join(&child, verdict, end);
    }
    return verdict;
}

}  // namespace

Tree treeOf(std::string_view text) {
    return Builder(text).build();
}

Tree treeOfRejected(const Source& source, std::string_view text, size_t rejectedAt) {
    return Builder(source, text, rejectedAt).build();
}

void joinVerdicts(Node* root, std::span<const Verdict> verdicts) {
    join(root, verdicts.data(), verdicts.data() + verdicts.size());
}

const Node* findValueAt(const Node& root, size_t start) {
    const Node* node = &root;
    while (node->value.start != start) {
        const auto after = std::upper_bound(
                node->children.begin(), node->children.end(), start,
                [](size_t offset, const Node& child) { return offset < child.value.start; });
        if (after == node->children.begin()) {
            return nullptr;
        }
        node = &*std::prev(after);
    }
    return node;
}

const Node* findMember(const Node& object, std::string_view key) {
    const auto found = std::find_if(object.children.rbegin(), object.children.rend(),
                                    [key](const Node& child) { return child.key == key; });
    return object.isObject() && found != object.children.rend() ? &*found : nullptr;
}

}  // namespace kc2::tool
