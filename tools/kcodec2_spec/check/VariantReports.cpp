// One report for several variants of a device.

#include "check/VariantReports.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/Text.h"
#include "check/rules/Rules.h"
#include "check/rules/TreeNames.h"
#include "device/DevicePaths.h"
#include "store/TreeFiles.h"

namespace kc2::tool {

namespace {

constexpr char kOtherVariant[] = "a variant without a document";

// The findings of several reports, each once, with the variants that have it.
class SharedFindings {
public:
    explicit SharedFindings(const std::vector<std::string>& variants) : mVariants(variants) {}

    // What was checked must outlive this, and the report that it is added to. `load` is the index
    // of its variant; the fallback, which none of the variants reads, has none.
    void add(const Report& report, const Checked& checked, std::optional<size_t> load) {
        for (const Document* const document : checked.documents) {
            ++mReaders[document->source.path()];
            mSources.emplace(document->source.path(), &document->source);
        }
        for (const ReportEntry* const entry : report.inOrder()) {
            std::vector<size_t>& loads = findingOf(*entry)->details.loads;
            if (load && (loads.empty() || loads.back() != *load)) {
                loads.push_back(*load);
            }
        }
    }

    void addTo(Report* report) const {
        for (const Shared& shared : mFindings) {
            const auto readers = mReaders.find(shared.path);
            if (isUnusedSuppression(*shared.check) && readers != mReaders.end() &&
                shared.details.loads.size() < readers->second) {
                continue;  // In another variant the comment suppresses something.
            }
            FindingDetails details = shared.details;
            details.ownMessage = shared.message.size();
            const std::string message =
                    fmt::format("{} ({})", shared.message, variantsOf(details.loads));
            if (shared.isForFile) {
                report->addForFile(*shared.check, shared.path, message, std::move(details));
            } else {
                report->add(*shared.check, *mSources.at(shared.path), shared.span, message,
                            std::move(details));
            }
        }
    }

private:
    struct Shared {
        const Check* check;
        std::string path;
        Span span;
        std::string message;
        bool isForFile;
        FindingDetails details;
    };
    using Key = std::tuple<std::string, std::string_view, size_t, size_t, std::string>;

    // The one that is equal to the entry: a new one where there is none.
    Shared* findingOf(const ReportEntry& entry) {
        const Key key = {entry.source->path(), entry.check->id, entry.span.start, entry.span.limit,
                         entry.message};
        const auto [place, isNew] = mPlaces.emplace(key, mFindings.size());
        if (isNew) {
            mFindings.push_back({entry.check, entry.source->path(), entry.span, entry.message,
                                 entry.isForFile,
                                 entry.details != nullptr ? *entry.details : FindingDetails()});
        }
        return &mFindings[place->second];
    }

    std::string variantsOf(const std::vector<size_t>& loads) const {
        if (loads.empty()) {
            return kOtherVariant;
        }
        if (loads.size() == mVariants.size()) {
            return "every variant";
        }
        std::vector<std::string> names;
        for (const size_t load : loads) {
            const std::string& variant = mVariants[load];
            names.push_back(variant == kDefaultVariant ? "no variant"
                                                       : fmt::format("variant \"{}\"", variant));
        }
        return joined(names, ", ");
    }

    const std::vector<std::string>& mVariants;      // Of the loads, in their order.
    std::map<std::string, size_t> mReaders;         // How many loads read a document, by its path.
    std::map<std::string, const Source*> mSources;  // One for each path.
    std::map<Key, size_t> mPlaces;                  // In mFindings.
    std::vector<Shared> mFindings;                  // In the order of the first.
};

// The fallback, where none of the loads reads it.
std::unique_ptr<Document> fallbackBesides(const std::vector<Load>& loads) {
    const bool isRead = std::any_of(loads.begin(), loads.end(), [](const Load& load) {
        return load.hasSystemSpec() && load.systemSpec->path == kFallbackSystemSpec;
    });
    return isRead ? nullptr : readFallback();
}

// Of all loads, in their order.
std::vector<const Document*> allDocuments(const CheckedVariants& checked) {
    std::vector<const Document*> documents;
    for (const Load& load : checked.loads) {
        documents.push_back(load.systemSpec.get());
        documents.push_back(load.overlay.get());
    }
    documents.push_back(checked.fallback.get());
    std::erase(documents, nullptr);
    return documents;
}

}  // namespace

CheckedVariants checkVariants(std::vector<std::string> variants, const Levels& levels,
                              const KnownSettings& known) {
    CheckedVariants checked = {std::move(variants), {}, nullptr, Report(levels)};
    checked.loads.reserve(checked.variants.size());
    const std::vector<VariantDocument> documents = variantDocumentsInTree();
    for (const std::string& variant : checked.variants) {
        playVariant(variant);
        checked.loads.push_back(readLoad());
    }
    checked.fallback = fallbackBesides(checked.loads);
    const TreeNames names(allDocuments(checked), known);
    SharedFindings findings(checked.variants);
    const auto add = [&](const Checked& one, std::optional<size_t> load) {
        Report report(levels);
        check(one, &report);
        for (const LoadFacts& facts : report.loads()) {
            checked.report.addLoad(facts);
        }
        findings.add(report, one, load);
    };
    for (size_t i = 0; i < checked.loads.size(); ++i) {
        playVariant(checked.variants[i]);  // The rules look at its files.
        add(Checked(checked.loads[i], known, &documents, &names), i);
    }
    if (checked.fallback != nullptr) {
        add(Checked(*checked.fallback, known, &names), std::nullopt);
    }
    findings.addTo(&checked.report);
    checkTreeFiles(checked.loads, &checked.report);
    return checked;
}

std::vector<std::string> variantsToCheck() {
    std::set<std::string> variants = variantsInTree();
    if (variants.empty() || hasDocumentWithoutVariant()) {
        variants.insert(kDefaultVariant);  // Else such a load is not meant to be.
    }
    return {variants.begin(), variants.end()};
}

}  // namespace kc2::tool
