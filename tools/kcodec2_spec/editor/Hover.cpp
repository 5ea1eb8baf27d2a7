// What an editor shows about the name or the value under the pointer.

#include "editor/Hover.h"

#include <charconv>
#include <optional>

#include "catalogue/Explanation.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

// Without the sign, because libc++ wraps around zero where it reads "-0" as a signed number.
std::optional<int64_t> numberIn(const std::string& word) {
    const bool isNegative = word.starts_with('-');
    const char* const end = word.data() + word.size();
    uint32_t digits = 0;
    const auto [stop, error] = std::from_chars(word.data() + (isNegative ? 1 : 0), end, digits);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return isNegative ? -int64_t{digits} : int64_t{digits};
}

std::string formattedOrEmpty(const std::optional<Explanation>& explanation) {
    return explanation && !explanation->lines.empty() ? formatted(*explanation) : "";
}

const Section* sectionOfKey(std::string_view key) {
    for (const Section& section : kSections) {
        if (*section.key != nullptr && key == *section.key) {
            return &section;
        }
    }
    return nullptr;
}

// What the value of a setting means, then what the setting is.
HoverText textOfSetting(const Cursor& cursor, const std::string& name, const Catalogue& catalogue) {
    HoverText text = {formattedOrEmpty(explainedSetting(catalogue, name)), name};
    if (cursor.role == Cursor::Role::Name) {
        return text;
    }
    const Setting* const setting = catalogue.setting(name);
    const std::optional<int64_t> number = numberIn(cursor.word);
    if (setting != nullptr && number) {
        text.text = formattedOrEmpty(explainedValue(*setting, *number)) + text.text;
    }
    return text;
}

}  // namespace

HoverText hoverTextAt(const Cursor& cursor, const Catalogue& catalogue) {
    const Section* const section = cursor.key(0) == std::string_view(targetSpecRoot)
                                           ? sectionOfKey(cursor.key(1))
                                           : nullptr;
    const size_t depth = cursor.path.size();
    const bool isName = cursor.role == Cursor::Role::Name;
    if (isName && depth <= 2) {
        return {formattedOrEmpty(explainedSection(catalogue, cursor.word)), ""};
    }
    if (section == nullptr) {
        return {};
    }
    switch (section->type) {
        case SectionType::Features:
        case SectionType::Presets:
            return textOfSetting(cursor, std::string(cursor.key(2)), catalogue);
        case SectionType::PerfResourceValues:
            if (!isName) {
                if (const auto code = explainedCode(catalogue, cursor.word)) {
                    return {formatted(*code), ""};
                }
            }
            return textOfSetting(cursor, std::string(cursor.key(2)), catalogue);
        case SectionType::CodecLists:
        case SectionType::CodecNames:
            if (!isName) {
                return {formattedOrEmpty(explainedComponent(catalogue, cursor.word)), cursor.word};
            }
            break;
        default:
            break;
    }
    const std::string key(isName ? cursor.key(depth - 1) : cursor.key(1));
    return {formattedOrEmpty(explainedSection(catalogue, key)), ""};
}

}  // namespace kc2::tool
