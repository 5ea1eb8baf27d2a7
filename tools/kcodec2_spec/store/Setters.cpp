// Which document of a load sets a name, and whose value has no effect.

#include "store/Setters.h"

#include <fmt/format.h>

#include "catalogue/BuiltInValues.h"
#include "store/Merge.h"
#include "store/StoreSnapshot.h"

namespace kc2::tool {

namespace {

// The value of `name` in one document of the load; empty when it has none.
std::string saidBy(const Document& document, const std::string& name) {
    for (const std::string& section : settingSections()) {
        const Json::Value value = settingIn(document.content, section, name);
        if (!value.isNull()) {
            return fmt::format("{}: {}", section, writtenValue(value));
        }
    }
    return document.content.supportedCodecs.count(name) != 0 ? "lists it" : "";
}

std::string shownOrigin(const Document& document) {
    return document.path.empty() ? document.origin
                                 : fmt::format("{}, {}", document.origin, document.path);
}

// The document that the store's value of `name` comes from; empty when it has none.
std::string winnerOf(const Load& load, const std::string& name) {
    for (const SnapshotSection& section : loadedSections(deviceSteps(load))) {
        for (const SnapshotEntry& entry : section.entries) {
            if (entry.name == name && section.form != SectionForm::List) {
                return entry.origin;
            }
        }
    }
    return "";
}

}  // namespace

bool explainSetters(const Load& load, const std::string& name, Explanation* explanation) {
    const std::string winner = winnerOf(load, name);
    explanation->add("device",
                     winner.empty() ? "no document sets it" : fmt::format("set by the {}", winner));
    for (const Document* const document : {load.systemSpec.get(), load.overlay.get()}) {
        const std::string said = document != nullptr ? saidBy(*document, name) : "";
        if (!said.empty()) {
            const bool isLoser = winner.find(document->origin) == std::string::npos;
            explanation->add("", fmt::format("{}: {}{}", shownOrigin(*document), said,
                                             isLoser ? " (has no effect)" : ""));
        }
    }
    return !winner.empty();
}

const Document* setterOf(const Load& load, const std::string& section, const std::string& name) {
    const SpecDocument none;
    const MergedStore merged =
            merge(load.hasSystemSpec() ? load.systemSpec->content : none, load.overlay->content);
    const Json::Value value = settingIn(merged.whole, section, name);
    if (value.isNull()) {
        return nullptr;
    }
    return settingIn(merged.before, section, name) == value ? load.systemSpec.get()
                                                            : load.overlay.get();
}

}  // namespace kc2::tool
