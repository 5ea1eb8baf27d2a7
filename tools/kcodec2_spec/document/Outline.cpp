// Where every member and value of a document is in its text.

#include "document/Outline.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <iterator>

#include "base/Text.h"

namespace kc2::tool {

namespace {

constexpr bool endsScalar(char c) {
    return c == ',' || c == ']' || c == '}' || isJsonBlank(c);
}

// The string that the text between two quotes, with them and with escapes in it, says.
std::string withoutEscapes(std::string_view quoted) {
    Json::Value array;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    Json::Reader().parse("[" + std::string(quoted) + "]", array, false);
#pragma GCC diagnostic pop
    return array.isArray() && array.size() == 1 ? array[0].asString() : std::string(quoted);
}

// Reads on past whatever it does not expect: the parser has accepted the text, so that is nothing
// that counts.
class Outliner {
public:
    explicit Outliner(std::string_view text) : mText(text) {}

    Outline outline() {
        skipBlanks();
        OutlineNode root = {};
        value(&root);
        skipBlanks();
        return {std::move(root), mAt, std::move(mDecoded)};
    }

private:
    char peek() const { return mAt < mText.size() ? mText[mAt] : '\0'; }

    void skipBlanks() {
        while (mAt < mText.size() && isJsonBlank(mText[mAt])) {
            ++mAt;
        }
    }

    // Reads on behind the string that is next and returns what it says.
    std::string_view string() {
        const size_t start = mAt;
        mAt = std::min(endOfString(mText, start), mText.size());
        const std::string_view quoted = mText.substr(start, mAt - start);
        if (quoted.find('\\') != std::string_view::npos) {
            return mDecoded.emplace_front(withoutEscapes(quoted));
        }
        return quoted.size() < 2 ? std::string_view() : quoted.substr(1, quoted.size() - 2);
    }

    void value(OutlineNode* node) {
        node->kind = peek();
        node->value.start = mAt;
        if (node->kind == '{' || node->kind == '[') {
            ++mAt;
            children(node);
        } else if (node->kind == '"') {
            node->string = string();
        } else {
            while (mAt < mText.size() && !endsScalar(mText[mAt])) {
                ++mAt;
            }
        }
        node->value.limit = mAt;
    }

    void children(OutlineNode* parent) {
        const char end = parent->kind == '{' ? '}' : ']';
        for (;;) {
            skipBlanks();
            if (mAt >= mText.size() || peek() == end) {
                mAt = std::min(mAt + 1, mText.size());
                return;
            }
            if (peek() == ',') {
                ++mAt;
                continue;
            }
            const size_t before = mAt;
            OutlineNode& child = parent->children.emplace_back();
            if (end == '}') {
                name(&child);
            }
            value(&child);
            if (mAt == before) {
                ++mAt;
            }
        }
    }

    // Reads a member's name and the colon behind it.
    void name(OutlineNode* member) {
        member->name.start = mAt;
        if (peek() == '"') {
            member->key = string();
        }
        member->name.limit = mAt;
        skipBlanks();
        if (peek() == ':') {
            ++mAt;
        }
        skipBlanks();
    }

    std::string_view mText;
    size_t mAt = 0;
    std::forward_list<std::string> mDecoded;
};

}  // namespace

Outline outlineOf(std::string_view text) {
    return Outliner(text).outline();
}

const OutlineNode* findValueAt(const OutlineNode& root, size_t start) {
    const OutlineNode* node = &root;
    while (node->value.start != start) {
        const auto behind = std::upper_bound(
                node->children.begin(), node->children.end(), start,
                [](size_t offset, const OutlineNode& child) { return offset < child.value.start; });
        if (behind == node->children.begin()) {
            return nullptr;
        }
        node = &*std::prev(behind);
    }
    return node;
}

const OutlineNode* findMember(const OutlineNode& object, std::string_view key) {
    const auto found = std::find_if(object.children.rbegin(), object.children.rend(),
                                    [key](const OutlineNode& child) { return child.key == key; });
    return object.kind == '{' && found != object.children.rend() ? &*found : nullptr;
}

}  // namespace kc2::tool
