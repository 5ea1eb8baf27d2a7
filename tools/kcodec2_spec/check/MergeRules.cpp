// What the documents of a load come to when they are merged. One document alone is a merge of one.

#include <algorithm>
#include <list>
#include <map>
#include <string>
#include <unordered_map>

#include "Text.h"
#include "check/Rules.h"
#include "kc2/TargetSpecKeys.h"

namespace kc2::tool {

namespace {

// Adds findings of one rule.
class Emit {
public:
    Emit(const Rule& rule, Report* report) : mRule(rule), mReport(*report) {}

    void operator()(const CheckedDocument& document, Span span, std::string message,
                    std::vector<RelatedPlace> related = {}) const {
        mReport.add(mRule, document.source, span, std::move(message),
                    {.related = std::move(related), .fixes = {}});
    }

private:
    const Rule& mRule;
    Report& mReport;
};

struct MergeRule {
    Rule rule;
    void (*check)(const MergedDocuments& documents, const Emit& emit);
};

Span spanOf(const KeptFinding& finding) {
    return {finding.start, finding.limit};
}

// --- The bit-rate table ---

struct PlacedRow {
    NimbraBitRateEntry row;
    const CheckedDocument* document;
    Span span;

    bool matchesNothing() const { return row.low >= row.high; }
    std::string place() const { return document->source.placeOf(span.start); }
};

std::vector<PlacedRow> rowsOf(const MergedDocuments& documents) {
    std::vector<PlacedRow> rows;
    for (const auto& document : documents) {
        const auto& table = document->document.content.nimbraModeBitRateTable;
        const auto taken = document->takenIn(targetSpecNimbraModeBitRate);
        for (size_t i = 0; i < table.size() && i < taken.size(); ++i) {
            rows.push_back({table[i], document.get(), spanOf(*taken[i])});
        }
    }
    return rows;
}

// Which values the rows so far answer for, and which row answers.
class Coverage {
public:
    struct Overlap {
        // Answers for the lowest value that both hold; null when no earlier row holds one.
        const PlacedRow* earlier;
        bool isWhole;  // Earlier rows answer for every value of the row.
    };

    // Adds a row behind the earlier ones and tells what they leave of it.
    Overlap add(const PlacedRow& placed) {
        const uint64_t low = placed.row.low;
        const uint64_t high = placed.row.high;
        const Overlap overlap = {firstOwner(low, high), isCovered(low, high)};
        // The gaps between covered ranges are what the new row answers for. Covered ranges that it
        // joins become one, so that each range is visited once over all rows.
        auto range = mCovered.upper_bound(low);
        if (range != mCovered.begin() && std::prev(range)->second >= low) {
            --range;
        }
        uint64_t joinedLow = low;
        uint64_t joinedHigh = high;
        uint64_t at = low;
        while (range != mCovered.end() && range->first <= high) {
            if (range->first > at) {
                mOwners[at] = {range->first, &placed};
            }
            joinedLow = std::min(joinedLow, range->first);
            joinedHigh = std::max(joinedHigh, range->second);
            at = std::max(at, range->second);
            range = mCovered.erase(range);
        }
        if (at < high) {
            mOwners[at] = {high, &placed};
        }
        mCovered[joinedLow] = joinedHigh;
        return overlap;
    }

private:
    struct Owned {
        uint64_t high;
        const PlacedRow* owner;
    };

    const PlacedRow* firstOwner(uint64_t low, uint64_t high) const {
        auto owned = mOwners.upper_bound(low);
        if (owned != mOwners.begin() && std::prev(owned)->second.high > low) {
            --owned;
        }
        return owned != mOwners.end() && owned->first < high ? owned->second.owner : nullptr;
    }

    bool isCovered(uint64_t low, uint64_t high) const {
        const auto next = mCovered.upper_bound(low);
        return next != mCovered.begin() && std::prev(next)->second >= high;
    }

    std::map<uint64_t, uint64_t> mCovered;  // low -> high, disjoint and apart.
    std::map<uint64_t, Owned> mOwners;      // low -> who answers up to high, disjoint.
};

void checkRowsThatMatchNothing(const MergedDocuments& documents, const Emit& emit) {
    for (const PlacedRow& placed : rowsOf(documents)) {
        if (placed.matchesNothing()) {
            emit(*placed.document, placed.span,
                 "the row holds no value: its lower bound " + std::to_string(placed.row.low) +
                         " is not below its upper bound " + std::to_string(placed.row.high));
        }
    }
}

template <typename Message>
void forEachOverlap(const MergedDocuments& documents, bool isWhole, const Emit& emit,
                    Message message) {
    const std::vector<PlacedRow> rows = rowsOf(documents);
    Coverage coverage;
    for (const PlacedRow& placed : rows) {
        if (placed.matchesNothing()) {
            continue;
        }
        const Coverage::Overlap overlap = coverage.add(placed);
        if (overlap.earlier != nullptr && overlap.isWhole == isWhole) {
            emit(*placed.document, placed.span, message(*overlap.earlier),
                 {{&overlap.earlier->document->source, overlap.earlier->span, ""}});
        }
    }
}

void checkHiddenRows(const MergedDocuments& documents, const Emit& emit) {
    forEachOverlap(documents, true, emit, [](const PlacedRow& earlier) {
        return "the row never answers: earlier rows, the first at " + earlier.place() +
               ", hold all of its values";
    });
}

void checkOverlappingRows(const MergedDocuments& documents, const Emit& emit) {
    forEachOverlap(documents, false, emit, [](const PlacedRow& earlier) {
        return "the row overlaps the earlier one at " + earlier.place() +
               ", which answers for the values that both hold";
    });
}

// --- Lists and names ---

void checkListedTwice(const MergedDocuments& documents, const Emit& emit) {
    const std::pair<const char*, std::list<std::string> SpecDocument::*> lists[] = {
            {targetSpecCodecPlugins, &SpecDocument::codecPlugins},
            {targetSpecPreProcessingFilters, &SpecDocument::preprocessingFilters},
            {targetSpecSupportedEncPostProcessingFilters, &SpecDocument::encPostProcessingFilters},
    };
    for (const auto& [section, member] : lists) {
        std::unordered_map<std::string_view, RelatedPlace> places;
        for (const auto& document : documents) {
            auto name = (document->document.content.*member).begin();
            for (const KeptFinding* const taken : document->takenIn(section)) {
                const auto [first, isNew] =
                        places.emplace(*name, RelatedPlace{&document->source, spanOf(*taken), ""});
                if (!isNew) {
                    const RelatedPlace& earlier = first->second;
                    emit(*document, spanOf(*taken),
                         "\"" + *name + "\" is in " + section + " already, from " +
                                 earlier.source->placeOf(earlier.span.start) +
                                 ": the list keeps both",
                         {earlier});
                }
                ++name;
            }
        }
    }
}

// Of a load it is a separate rule: there the other document may name some.
void checkNoCodecs(const MergedDocuments& documents, const Emit& emit) {
    const CheckedDocument& alone = *documents.front();
    if (documents.size() != 1 || !alone.document.content.supportedCodecs.empty()) {
        return;
    }
    for (const char* key : {targetSpecSupportedCodecs, targetSpecOptionalCodecs}) {
        if (const OutlineNode* const section = alone.section(key)) {
            emit(alone, section->name, "no codec component is named: that enables every component");
            return;
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
                 {winner});
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
                 {winner});
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

constexpr MergeRule kMergeRules[] = {
        {{"row-matches-nothing", Severity::Warning, "a bit-rate row that holds no value"},
         checkRowsThatMatchNothing},
        {{"row-hidden", Severity::Warning, "a bit-rate row that earlier rows hide wholly"},
         checkHiddenRows},
        {{"row-overlaps", Severity::Warning, "a bit-rate row that an earlier row hides in part"},
         checkOverlappingRows},
        {{"listed-twice", Severity::Warning, "an entry that ends up twice in a list"},
         checkListedTwice},
        {{"no-codecs", Severity::Warning, "codec sections that name no component: all are enabled"},
         checkNoCodecs},
        {{"name-without-effect", Severity::Warning, "a private name that the spec sets otherwise"},
         checkShadowedNames},
        {{"name-repeated", Severity::Note, "a private name that the spec sets to the same value"},
         checkRepeatedNames},
        {{"levels-reset", Severity::Warning, "Dolby Vision tier levels that the overlay changes"},
         checkResetLevels},
};

}  // namespace

void applyMergeRules(const MergedDocuments& documents, Report* report) {
    for (const MergeRule& row : kMergeRules) {
        row.check(documents, Emit(row.rule, report));
    }
}

std::vector<const Rule*> mergeRules() {
    return rulesOf(kMergeRules);
}

}  // namespace kc2::tool
