// Where every member and value of a document is in its text.

#include "check/Outline.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <iterator>

#include "Text.h"

namespace kc2::tool {

namespace {

// Reads on past whatever it does not expect: the parser has accepted the text, so that is nothing
// that counts.
class Outliner {
public:
    explicit Outliner(std::string_view text) : mText(text) {}

    Outline outline() {
        skipBlanks();
        OutlineNode root = value();
        skipBlanks();
        return {std::move(root), mAt};
    }

private:
    char peek() const { return mAt < mText.size() ? mText[mAt] : '\0'; }

    void skipBlanks() { mAt = std::min(mText.find_first_not_of(kJsonBlanks, mAt), mText.size()); }

    Span string() {
        const size_t start = mAt++;
        while (mAt < mText.size() && mText[mAt] != '"') {
            mAt += mText[mAt] == '\\' ? 2 : 1;
        }
        mAt = std::min(mAt + 1, mText.size());
        return {start, mAt};
    }

    OutlineNode value() {
        OutlineNode node = {};
        node.kind = peek();
        node.value.start = mAt;
        if (node.kind == '{' || node.kind == '[') {
            ++mAt;
            children(&node);
        } else if (node.kind == '"') {
            string();
        } else {
            mAt = std::min(mText.find_first_of(",]} \t\r\n", mAt), mText.size());
        }
        node.value.limit = mAt;
        return node;
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
            parent->children.push_back(end == '}' ? member() : value());
            if (mAt == before) {
                ++mAt;
            }
        }
    }

    OutlineNode member() {
        const Span name = peek() == '"' ? string() : Span{mAt, mAt};
        skipBlanks();
        if (peek() == ':') {
            ++mAt;
        }
        skipBlanks();
        OutlineNode node = value();
        node.name = name;
        node.key = decodedString(mText.substr(name.start, name.limit - name.start));
        return node;
    }

    std::string_view mText;
    size_t mAt = 0;
};

}  // namespace

std::string decodedString(std::string_view quoted) {
    if (quoted.find('\\') == std::string_view::npos) {
        return std::string(quoted.substr(std::min<size_t>(1, quoted.size()),
                                         quoted.size() < 2 ? 0 : quoted.size() - 2));
    }
    Json::Value array;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    Json::Reader().parse("[" + std::string(quoted) + "]", array, false);
#pragma GCC diagnostic pop
    return array.isArray() && array.size() == 1 ? array[0].asString() : std::string(quoted);
}

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
