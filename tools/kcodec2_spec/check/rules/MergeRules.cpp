// What the documents of a load come to when they are merged. One document alone is a merge of one.

#include <string>
#include <unordered_map>

#include "check/rules/Emit.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

Span spanOf(const KeptFinding& finding) {
    return {finding.start, finding.limit};
}

// --- Lists and names ---

void checkListedTwice(const MergedDocuments& documents, const Emit& emit) {
    for (const Section& row : kSections) {
        if (row.type != SectionType::Names) {
            continue;
        }
        const char* const section = *row.key;
        std::unordered_map<std::string_view, RelatedPlace> places;
        for (const auto& document : documents) {
            auto name = (document->document.content.*row.names).begin();
            for (const KeptFinding* const taken : document->takenIn(section)) {
                const auto [first, isNew] =
                        places.emplace(*name, RelatedPlace{&document->source, spanOf(*taken), ""});
                if (!isNew) {
                    const RelatedPlace& earlier = first->second;
                    emit(*document, spanOf(*taken),
                         "\"" + *name + "\" is in " + section + " already, from " +
                                 earlier.source->placeOf(earlier.span.start) +
                                 ": the list keeps both",
                         earlier);
                }
                ++name;
            }
        }
    }
}

// Calls visit(overlay, taken, the value that wins, whether the values differ) for every name of the
// overlay that the system spec document has set.
template <typename Visit>
void forEachShadowedName(const MergedDocuments& documents, Visit visit) {
    if (documents.size() != 2 || documents[1]->document.path.empty()) {
        return;  // A built-in document is there to fill the gaps.
    }
    const CheckedDocument& spec = *documents[0];
    const CheckedDocument& overlay = *documents[1];
    const auto inSection = [&](const char* section, auto member) {
        const auto& set = spec.document.content.*member;
        const auto& added = overlay.document.content.*member;
        std::unordered_map<std::string, const KeptFinding*> winners;
        for (const KeptFinding* const taken : spec.takenIn(section)) {
            winners.emplace(taken->name, taken);
        }
        for (const KeptFinding* const taken : overlay.takenIn(section)) {
            const auto winner = winners.find(taken->name);
            if (winner != winners.end()) {
                visit(overlay, *taken, RelatedPlace{&spec.source, spanOf(*winner->second), ""},
                      set.find(taken->name)->second != added.find(taken->name)->second);
            }
        }
    };
    inSection(targetSpecFeatures, &SpecDocument::features);
    inSection(targetSpecPresets, &SpecDocument::presets);
    inSection(targetSpecPerfResourceValues, &SpecDocument::perfResourceValues);
}

void checkShadowedNames(const MergedDocuments& documents, const Emit& emit) {
    forEachShadowedName(documents, [&](const CheckedDocument& overlay, const KeptFinding& taken,
                                       const RelatedPlace& winner, bool isDifferent) {
        if (isDifferent) {
            emit(overlay, spanOf(taken),
                 taken.name + " has no effect here: the value at " +
                         winner.source->placeOf(winner.span.start) + " wins",
                 winner);
        }
    });
}

void checkRepeatedNames(const MergedDocuments& documents, const Emit& emit) {
    forEachShadowedName(documents, [&](const CheckedDocument& overlay, const KeptFinding& taken,
                                       const RelatedPlace& winner, bool isDifferent) {
        if (!isDifferent) {
            emit(overlay, spanOf(taken),
                 taken.name + " is set to the same value at " +
                         winner.source->placeOf(winner.span.start),
                 winner);
        }
    });
}

void checkResetLevels(const MergedDocuments& documents, const Emit& emit) {
    if (documents.size() != 2) {
        return;
    }
    const std::optional<TierLevels>& before = documents[0]->document.content.dvTierLevels;
    const std::optional<TierLevels>& after = documents[1]->document.content.dvTierLevels;
    const OutlineNode* const section = documents[1]->section(targetSpecDV);
    if (!before || !after || section == nullptr) {
        return;
    }
    const auto compare = [&](const char* key, int32_t from, int32_t to) {
        if (from != to) {
            const OutlineNode* const level = findMember(*section, key);
            emit(*documents[1], level != nullptr ? level->value : section->name,
                 std::string("this document's \"DolbyVision\" changes ") + key + " from " +
                         std::to_string(from) + " to " + std::to_string(to));
        }
    };
    compare(targetSpecDVMaxMainTierLevel, before->main, after->main);
    compare(targetSpecDVMaxHighTierLevel, before->high, after->high);
}

constexpr RuleRow<MergedDocuments> kMergeRules[] = {
        {{"listed-twice", Severity::Warning, "an entry that ends up twice in a list"},
         checkListedTwice},
        {{"name-without-effect", Severity::Warning, "a private name that the spec sets otherwise"},
         checkShadowedNames},
        {{"name-repeated", Severity::Note, "a private name that the spec sets to the same value"},
         checkRepeatedNames},
        {{"levels-reset", Severity::Warning, "Dolby Vision tier levels that the overlay changes"},
         checkResetLevels},
};

}  // namespace

void applyMergeRules(const MergedDocuments& documents, Report* report) {
    applyRows(kMergeRules, report, documents);
}

std::vector<const Rule*> mergeRules() {
    return rulesOf(kMergeRules);
}

}  // namespace kc2::tool
