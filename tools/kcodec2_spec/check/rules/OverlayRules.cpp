// What the document that a load merges second adds, and what a private file keeps out.

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"

namespace kc2::tool {

namespace {

std::string listOf(const std::set<std::string>& names, size_t most) {
    const size_t shown = std::min(names.size(), most);
    const std::string list =
            joined({names.begin(), std::next(names.begin(), static_cast<ptrdiff_t>(shown))}, ", ");
    return shown == names.size() ? list
                                 : fmt::format("{}, and {} more", list, names.size() - shown);
}

std::set<std::string> missingFrom(const std::unordered_set<std::string>& some,
                                  const std::unordered_set<std::string>& all) {
    std::set<std::string> missing;
    for (const std::string& name : all) {
        if (!some.contains(name)) {
            missing.insert(name);
        }
    }
    return missing;
}

// A load cannot remove a component: a spec that lists fewer does not disable the others.
void checkAddedCodecs(const Checked& checked, Report* report) {
    const auto& listed = checked.before().supportedCodecs;
    if (listed.empty() || !checked.load->hasSystemSpec() || checked.load->hasPrivateFile()) {
        return;
    }
    const Document& spec = *checked.documents.front();
    const std::set<std::string> added = missingFrom(listed, checked.whole().supportedCodecs);
    const Node* section = spec.section(targetSpecSupportedCodecs);
    section = section != nullptr ? section : spec.section(targetSpecOptionalCodecs);
    if (!added.empty() && section != nullptr) {
        report->add("codecs-added", spec, section->name,
                    fmt::format("{} adds {} that this document does not list: {}",
                                checked.load->overlay->origin, counted(added.size(), "component"),
                                listOf(added, added.size())));
    }
}

// --- What a private file keeps out ---

struct Lost {
    std::set<std::string> settings;
    std::set<std::string> components;
    size_t entries = 0;  // Of lists and tables.
};

// What components see of a value: a feature that is off reads as off when it is absent, too.
bool isSeen(bool isOn) {
    return isOn;
}
bool isSeen(const auto& /*value*/) {
    return true;
}

// What the load would have with the built-in document in place of the private file, but lacks.
Lost lostBy(const Checked& checked) {
    const std::unique_ptr<Document> builtIn = readBuiltIn(*checked.load->chip);
    const SpecDocument spec =
            checked.load->hasSystemSpec() ? checked.documents.front()->content : SpecDocument();
    const MergedStore with = merge(spec, builtIn->content);
    Lost lost;
    forEachContainer([&](const char* const* /*key*/, auto member) {
        const auto& expected = with.whole.*member;
        const auto& actual = checked.whole().*member;
        if constexpr (requires { expected.begin()->second; }) {
            for (const auto& [name, value] : expected) {
                if (isSeen(value) && !actual.contains(name)) {
                    lost.settings.insert(name);
                }
            }
        } else if constexpr (requires { expected.contains(std::string()); }) {
            if (!actual.empty()) {  // Else there is no restriction.
                lost.components = missingFrom(actual, expected);
            }
        } else if constexpr (requires { expected.size(); }) {
            lost.entries += static_cast<size_t>(
                    std::count_if(expected.begin(), expected.end(), [&](const auto& entry) {
                        return std::find(actual.begin(), actual.end(), entry) == actual.end();
                    }));
        }
    });
    return lost;
}

std::string describe(const Lost& lost) {
    constexpr size_t kMostNames = 6;
    std::vector<std::string> parts;
    if (!lost.settings.empty()) {
        parts.push_back(fmt::format("{} ({})", counted(lost.settings.size(), "setting"),
                                    listOf(lost.settings, kMostNames)));
    }
    if (!lost.components.empty()) {
        parts.push_back(fmt::format("{} ({})", counted(lost.components.size(), "component"),
                                    listOf(lost.components, kMostNames)));
    }
    if (lost.entries != 0) {
        parts.push_back(fmt::format(
                "{} of lists",
                lost.entries == 1 ? "1 entry" : fmt::format("{} entries", lost.entries)));
    }
    return joined(parts, " and ");
}

// How much a document sets: a file with one setting is there for that setting only.
size_t settingsIn(const SpecDocument& content) {
    constexpr size_t kLevels = 2;
    size_t count = content.dvTierLevels ? kLevels : 0;  // The section sets both.
    forEachContainer([&](const char* const* /*key*/, auto member) {
        if constexpr (requires { (content.*member).size(); }) {
            count += (content.*member).size();
        }
    });
    return count;
}

// Without "Video", or with an empty one.
bool setsNothing(const Document& document) {
    const Node* const video = document.video();
    return video == nullptr || video->isNull() || video->children.empty();
}

// The private file of a phone that is being debugged.
bool isDebugSwitch(const SpecDocument& content) {
    const auto isOne = [](const auto& values) {
        return values.size() == 1 && isDebugName(values.begin()->first);
    };
    return isOne(content.features) || isOne(content.presets);
}

void checkKeptOut(const Checked& checked, Report* report) {
    const Load& load = *checked.load;
    if (!load.hasPrivateFile() || !load.overlay->isAccepted || setsNothing(*load.overlay)) {
        return;  // What is wrong with the file is reported at its place.
    }
    const std::string lost = describe(lostBy(checked));
    if (lost.empty()) {
        return;
    }
    const SpecDocument& content = load.overlay->content;
    const CheckId check = settingsIn(content) <= 1 && !isDebugSwitch(content)
                                  ? CheckId("built-in-lost")
                                  : CheckId("built-in-not-read");
    report->addForFile(check, load.overlay->source.path(),
                       fmt::format("while this file is there, built-in document {} is not read: "
                                   "its {} are then unset. \"kcodec2_spec defaults {}\" prints it",
                                   load.chip->number, lost, load.chip->number));
}

}  // namespace

void checkOverlays(const Checked& checked, Report* report) {
    if (!checked.isAlone()) {
        checkAddedCodecs(checked, report);
        checkKeptOut(checked, report);
    }
}

}  // namespace kc2::tool
