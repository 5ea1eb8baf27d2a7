// The checks as text: a list, the page docs/checks.md, and one check's example.

#include "check/ChecksPage.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>

namespace kc2::tool {

namespace {

constexpr char kChecksIntroduction[] =
        "# The checks of `kcodec2_spec check`\n"
        "\n"
        "<!-- Written by \"kcodec2_spec check --list --markdown\". -->\n"
        "\n"
        "Each finding ends with the id of its check in brackets. `check --list` lists the checks, "
        "and\n"
        "`explain ID` prints one of them. Options and comments change the severity of a check, or "
        "of\n"
        "a group, and suppress findings: see [tool.md](tool.md).\n"
        "\n"
        "An error is something that a device rejects or skips. A warning is something that it\n"
        "changes, ignores or reads in an unexpected way, or a value outside the ranges of the\n"
        "settings catalogue ([settings.md](settings.md)). A note is good to know.\n";

template <typename Visit>
void forEachCheckOf(const CheckGroup& group, Visit visit) {
    for (const Check& check : kChecks) {
        if (isInGroup(check, group.name)) {
            visit(check);
        }
    }
}

std::string codeBlock(const char* document) {
    return fmt::format("\n```json\n{}\n```\n", document);
}

// The checks of a group, and what each one means.
std::string chapterOf(const CheckGroup& group) {
    std::string index;
    std::string checks;
    forEachCheckOf(group, [&](const Check& check) {
        index += fmt::format("| [`{0}`](#{0}) | {1} | {2} |\n", check.id, nameOf(check.severity),
                             check.summary);
        checks += fmt::format("\n### `{}`\n\n{} {}\n\n{}", check.id, sentenceOf(check),
                              check.meaning, helpOf(check));
    });
    return fmt::format("\n## {}: {}\n\n| Check | Severity | What it finds |\n|---|---|---|\n{}{}",
                       group.name, group.title, index, checks);
}

}  // namespace

std::string checksList(const Levels& levels) {
    size_t width = 0;
    for (const Check& check : kChecks) {
        width = std::max(width, std::string_view(check.id).size());
    }
    std::string list;
    for (const CheckGroup& group : kCheckGroups) {
        list += fmt::format("{}{}: {}\n", list.empty() ? "" : "\n", group.name, group.title);
        forEachCheckOf(group, [&](const Check& check) {
            const std::optional<Severity> severity = levels.of(check);
            list += fmt::format("  {:{}}  {:8} {}\n", check.id, width,
                                severity ? nameOf(*severity) : "off", check.summary);
        });
    }
    return list;
}

std::string sentenceOf(const Check& check) {
    std::string sentence = std::string(check.summary) + ".";
    sentence[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence[0])));
    return sentence;
}

std::string helpOf(const Check& check) {
    std::string help = fmt::format("Fix: {}\n", check.fix);
    if (*check.mistake != '\0') {
        help += fmt::format("{}\nFixed:\n{}", codeBlock(check.mistake), codeBlock(check.fixed));
    }
    return help;
}

std::string checksPage() {
    std::string page = kChecksIntroduction;
    for (const CheckGroup& group : kCheckGroups) {
        page += chapterOf(group);
    }
    return page;
}

}  // namespace kc2::tool
