// What the exported headers say about the library's names: the one place of these facts.

#include "catalogue/HeaderTexts.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "base/Text.h"

namespace kc2::tool {

namespace {

constexpr const char* kExportedHeaders[] = {kExportedHeader1, kExportedHeader2, kExportedHeader3,
                                            kExportedHeader4, kExportedHeader5, kExportedHeader6,
                                            kExportedHeader7};

bool isWordCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// Without blanks at both ends.
std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return withoutTrailing(text, ' ');
}

void appendWords(std::string_view words, std::string* text) {
    text->append(text->empty() || words.empty() ? "" : " ").append(words);
}

// "int32_t getPresetValue(const std::string& name, int* value);" declares getPresetValue.
std::string declaredName(std::string_view declaration) {
    std::string_view start = declaration.substr(0, declaration.find_first_of("(=;{,"));
    start = trimmed(start.substr(0, start.find(" : ")));
    size_t first = start.size();
    while (first > 0 && isWordCharacter(start[first - 1])) {
        --first;
    }
    return std::string(start.substr(first));
}

// Collects the comments of one header, line by line.
class HeaderReader {
public:
    explicit HeaderReader(std::vector<HeaderText>* texts) : mTexts(*texts) {}

    void readLine(std::string_view line) {
        constexpr std::string_view kStart = "/**";
        constexpr std::string_view kBehind = "///<";
        line = trimmed(line);
        if (line.starts_with(kStart)) {
            mText = HeaderText();
            mIsInComment = true;
            mIsGrouping = false;
            line.remove_prefix(kStart.size());
        }
        if (mIsInComment) {
            readComment(line);
        } else if (const size_t behind = line.find(kBehind); behind != std::string_view::npos) {
            mText = HeaderText();
            addWords("meaning", trimmed(line.substr(behind + kBehind.size())));
            mText.declaration = trimmed(line.substr(0, behind));
            finish();
        } else if (!mText.paragraphs.empty()) {
            readDeclaration(line);
        }
    }

private:
    void readComment(std::string_view line) {
        const size_t end = line.find("*/");
        std::string_view words = line.substr(0, end);
        words.remove_prefix(words.starts_with('*') ? 1 : 0);
        addLine(trimmed(words));
        if (end != std::string_view::npos) {
            mIsInComment = false;
            if (mIsGrouping) {
                mText = HeaderText();
            }
        }
    }

    // A line of a comment: "@param[out] value receives ...", "@return ...", or words.
    void addLine(std::string_view line) {
        constexpr std::string_view kReturn = "@return";
        constexpr std::string_view kParameter = "@param";
        if (line.starts_with(kReturn)) {
            addWords("returns", trimmed(line.substr(kReturn.size())));
        } else if (line.starts_with(kParameter)) {
            line = trimmed(line.substr(std::min(line.find(' '), line.size())));
            const size_t blank = std::min(line.find(' '), line.size());
            addWords(std::string(line.substr(0, blank)), trimmed(line.substr(blank)));
        } else if (line.starts_with('@')) {
            mIsGrouping = true;  // "@file", "@name": not about a declaration.
        } else if (line.empty()) {
            mIsNewParagraph = true;
            return;
        } else if (mText.paragraphs.empty()) {
            addWords("meaning", line);
        } else if (mIsNewParagraph) {
            addWords("", line);
        } else {
            appendWords(line, &mText.paragraphs.back().text);
        }
        mIsNewParagraph = false;
    }

    void addWords(std::string title, std::string_view words) {
        mText.paragraphs.push_back({std::move(title), std::string(words)});
    }

    void readDeclaration(std::string_view line) {
        appendWords(line, &mText.declaration);
        if (line.find_first_of(";{") != std::string_view::npos) {
            finish();
        }
    }

    void finish() {
        std::string& declaration = mText.declaration;
        declaration.erase(std::min(declaration.find_last_of(";{,"), declaration.size()));
        declaration = trimmed(declaration);
        mText.name = declaredName(declaration);
        mTexts.push_back(std::move(mText));
        mText = HeaderText();
    }

    std::vector<HeaderText>& mTexts;
    HeaderText mText;  // Of the last comment, until its declaration has been read.
    bool mIsInComment = false;
    bool mIsGrouping = false;
    bool mIsNewParagraph = false;
};

bool mentions(std::string_view text, std::string_view term) {
    for (size_t at = text.find(term); at != std::string_view::npos; at = text.find(term, at + 1)) {
        const size_t end = at + term.size();
        if ((at == 0 || !isWordCharacter(text[at - 1])) &&
            (end == text.size() || !isWordCharacter(text[end]))) {
            return true;
        }
    }
    return false;
}

}  // namespace

const std::vector<HeaderText>& headerTexts() {
    static const std::vector<HeaderText>& texts = *new std::vector<HeaderText>([] {
        std::vector<HeaderText> all;
        for (const char* const header : kExportedHeaders) {
            HeaderReader reader(&all);
            std::istringstream lines(header);
            for (std::string line; std::getline(lines, line);) {
                reader.readLine(line);
            }
        }
        return all;
    }());
    return texts;
}

std::vector<const HeaderText*> headerTextsOf(std::string_view name) {
    name = name.substr(0, name.find('('));
    const size_t scope = name.rfind("::");
    name.remove_prefix(scope == std::string_view::npos ? 0 : scope + 2);
    std::vector<const HeaderText*> found;
    for (const HeaderText& text : headerTexts()) {
        if (!name.empty() && text.name == name) {
            found.push_back(&text);
        }
    }
    return found;
}

std::vector<HeaderMention> headerMentionsOf(std::string_view term) {
    std::vector<HeaderMention> found;
    for (const HeaderText& text : headerTexts()) {
        for (const HeaderParagraph& paragraph : text.paragraphs) {
            if (mentions(paragraph.text, term)) {
                found.push_back({&text, &paragraph});
            }
        }
    }
    return found;
}

}  // namespace kc2::tool
