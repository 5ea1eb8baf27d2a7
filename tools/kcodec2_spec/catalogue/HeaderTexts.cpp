// What the exported headers say about the library's names: the one place of these facts.

#include "catalogue/HeaderTexts.h"

#include <algorithm>
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

// The paragraphs of a comment; none where it is not about a declaration: "@file", "@name".
std::vector<HeaderParagraph> paragraphsOf(std::string_view comment) {
    constexpr std::string_view kReturn = "@return";
    constexpr std::string_view kParameter = "@param";
    std::vector<HeaderParagraph> paragraphs;
    bool isAfterEmpty = false;
    for (std::string_view line : split(comment, '\n')) {
        line = trimmed(line);
        line = trimmed(line.substr(line.starts_with('*') ? 1 : 0));
        if (line.starts_with(kReturn)) {
            paragraphs.push_back({"returns", std::string(trimmed(line.substr(kReturn.size())))});
        } else if (line.starts_with(kParameter)) {  // "@param[out] value receives ..."
            line = trimmed(line.substr(std::min(line.find(' '), line.size())));
            const size_t blank = std::min(line.find(' '), line.size());
            paragraphs.push_back(
                    {std::string(line.substr(0, blank)), std::string(trimmed(line.substr(blank)))});
        } else if (line.starts_with('@')) {
            return {};
        } else if (!line.empty() && (paragraphs.empty() || isAfterEmpty)) {
            paragraphs.push_back({paragraphs.empty() ? "meaning" : "", std::string(line)});
        } else if (!line.empty()) {
            appendWords(line, &paragraphs.back().text);
        }
        isAfterEmpty = line.empty();
    }
    return paragraphs;
}

void addText(std::string_view lines, std::vector<HeaderParagraph> paragraphs,
             std::vector<HeaderText>* texts) {
    std::string declaration;
    for (const std::string_view line : split(lines, '\n')) {
        appendWords(trimmed(line), &declaration);
    }
    declaration.erase(std::min(declaration.find_last_of(";{,"), declaration.size()));
    declaration = trimmed(declaration);
    texts->push_back({declaredName(declaration), declaration, std::move(paragraphs)});
}

// Adds what has a comment: "/**" before the lines of a declaration, or "///<" after it.
void addTexts(std::string_view header, std::vector<HeaderText>* texts) {
    constexpr std::string_view kStart = "/**";
    constexpr std::string_view kBehind = "///<";
    const auto endOfLine = [&](size_t at) {
        return std::min(header.find('\n', at), header.size());
    };
    for (size_t at = 0; at < header.size();) {
        const size_t start = std::min(header.find(kStart, at), header.size());
        const size_t behind = header.find(kBehind, at);
        if (behind < start) {
            const size_t line = header.rfind('\n', behind) + 1;
            const size_t words = behind + kBehind.size();
            at = endOfLine(behind);
            addText(header.substr(line, behind - line),
                    {{"meaning", std::string(trimmed(header.substr(words, at - words)))}}, texts);
            continue;
        }
        const size_t end = header.find("*/", start);
        at = endOfLine(end);
        const std::string_view comment = header.substr(start, end - start);
        const std::string_view lines =
                header.substr(at, endOfLine(header.find_first_of(";{", at)) - at);
        std::vector<HeaderParagraph> paragraphs =
                paragraphsOf(comment.substr(std::min(kStart.size(), comment.size())));
        if (!paragraphs.empty() && lines.find(kStart) == std::string_view::npos &&
            lines.find(kBehind) == std::string_view::npos) {
            at += lines.size();
            addText(lines, std::move(paragraphs), texts);
        }
    }
}

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
            addTexts(header, &all);
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
