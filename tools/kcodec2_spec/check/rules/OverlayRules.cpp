// What the document that a load merges second adds, and what a private file keeps out.

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "base/Text.h"
#include "catalogue/BuiltInValues.h"
#include "check/rules/DocumentNames.h"
#include "check/rules/Emit.h"

namespace kc2::tool {

namespace {

std::string listOf(const std::set<std::string>& names, size_t most) {
    const size_t shown = std::min(names.size(), most);
    const std::string list =
            joined({names.begin(), std::next(names.begin(), static_cast<ptrdiff_t>(shown))}, ", ");
    return shown == names.size() ? list : list + fmt::format(", and {} more", names.size() - shown);
}

// A load cannot take a component away: a spec with fewer of them does not disable the others.
void checkAddedCodecs(const CheckedLoad& checked, const Emit& emit) {
    const Load& load = checked.load;
    const auto& listed = load.systemSpec.content.supportedCodecs;
    if (listed.empty() || !load.overlay.path.empty()) {
        return;
    }
    std::set<std::string> added;
    for (const std::string& name : load.overlay.content.supportedCodecs) {
        if (listed.count(name) == 0) {
            added.insert(name);
        }
    }
    const CheckedDocument& spec = *checked.documents.front();
    const OutlineNode* section = spec.section(targetSpecSupportedCodecs);
    section = section != nullptr ? section : spec.section(targetSpecOptionalCodecs);
    if (!added.empty() && section != nullptr) {
        emit(spec, section->name,
             fmt::format("{} adds {} that this document does not list: {}", load.overlay.origin,
                         counted(added.size(), "component"), listOf(added, added.size())));
    }
}

// What the built-in document would set and nobody else does.
std::set<std::string> lostSettings(const Load& load) {
    const SpecDocument& builtIn = builtInContent(load.chip->number);
    std::set<std::string> lost;
    const auto add = [&](auto member, auto isMissed) {
        for (const auto& [name, value] : builtIn.*member) {
            if (isMissed(value) && (load.systemSpec.content.*member).count(name) == 0 &&
                (load.overlay.content.*member).count(name) == 0) {
                lost.insert(name);
            }
        }
    };
    const auto always = [](const auto& /*value*/) { return true; };
    add(&SpecDocument::presets, always);
    add(&SpecDocument::perfResourceValues, always);
    // One that is off reads as off when it is absent, too.
    add(&SpecDocument::features, [](bool isOn) { return isOn; });
    return lost;
}

std::set<std::string> lostComponents(const Load& load) {
    std::set<std::string> lost;
    const auto& listed = load.systemSpec.content.supportedCodecs;
    const auto& added = load.overlay.content.supportedCodecs;
    if (listed.empty() && added.empty()) {
        return lost;  // Then there is no restriction.
    }
    for (const std::string& name : builtInContent(load.chip->number).supportedCodecs) {
        if (listed.count(name) == 0 && added.count(name) == 0) {
            lost.insert(name);
        }
    }
    return lost;
}

size_t settingsIn(const SpecDocument& content) {
    return content.features.size() + content.presets.size() + content.perfResourceValues.size() +
           content.supportedCodecs.size() + content.codecPlugins.size() +
           content.preprocessingFilters.size() + content.encPostProcessingFilters.size() +
           content.nimbraModeBitRateTable.size() + content.dvProfiles.size();
}

void tellLoss(const CheckedLoad& checked, const Emit& emit) {
    constexpr size_t kMostNames = 6;
    const Load& load = checked.load;
    const std::set<std::string> settings = lostSettings(load);
    const std::set<std::string> components = lostComponents(load);
    std::string lost;
    if (!settings.empty()) {
        lost = fmt::format("{} ({})", counted(settings.size(), "setting"),
                           listOf(settings, kMostNames));
    }
    if (!components.empty()) {
        lost += fmt::format("{}{} ({})", lost.empty() ? "" : " and ",
                            counted(components.size(), "component"),
                            listOf(components, kMostNames));
    }
    if (!lost.empty()) {
        emit.forFile(*checked.documents.back(),
                     fmt::format("while this file is there, built-in document {} is not read: "
                                 "nothing sets its {}. \"kcodec2_spec defaults {}\" prints it",
                                 load.chip->number, lost, load.chip->number));
    }
}

bool isPrivateFileRead(const Load& load) {
    return !load.overlay.path.empty() && load.overlay.isAccepted;
}

void checkSmallPrivateFile(const CheckedLoad& checked, const Emit& emit) {
    if (isPrivateFileRead(checked.load) && settingsIn(checked.load.overlay.content) <= 1) {
        tellLoss(checked, emit);
    }
}

void tellUnreadBuiltIn(const CheckedLoad& checked, const Emit& emit) {
    if (isPrivateFileRead(checked.load) && settingsIn(checked.load.overlay.content) > 1) {
        tellLoss(checked, emit);
    }
}

constexpr RuleRow<CheckedLoad> kOverlayRules[] = {
        {{"codecs-added", Severity::Note,
          "components that the built-in document adds to those of the spec"},
         checkAddedCodecs},
        {{"built-in-lost", Severity::Warning,
          "a private file with one setting, which keeps out a whole built-in document"},
         checkSmallPrivateFile},
        {{"built-in-not-read", Severity::Note,
          "what of the built-in document is missing because a private file is there"},
         tellUnreadBuiltIn},
};

}  // namespace

void applyOverlayRules(const CheckedLoad& load, Report* report) {
    applyRows(kOverlayRules, report, load);
}

std::vector<const Rule*> overlayRules() {
    return rulesOf(kOverlayRules);
}

}  // namespace kc2::tool
