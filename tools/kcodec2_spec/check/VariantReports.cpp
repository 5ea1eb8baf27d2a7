// One report for several variants of a device.

#include "check/VariantReports.h"

#include <fmt/format.h>

#include <map>
#include <tuple>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Rules.h"
#include "device/DevicePaths.h"

namespace kc2::tool {

namespace {

// The findings of several reports, each once, with the variants that have it.
class SharedFindings {
public:
    // The load must outlive this, and the report that it is added to.
    void add(const Report& report, const Load& load) {
        mVariants.push_back(load.variant);
        for (const Document* const document : {load.systemSpec.get(), load.overlay.get()}) {
            if (document != nullptr) {
                ++mReaders[document->source.path()];
                mSources.emplace(document->source.path(), &document->source);
            }
        }
        for (const ReportEntry* const entry : report.inOrder()) {
            const Key key = {entry->source->path(), entry->check->id, entry->span.start,
                             entry->span.limit, entry->message};
            const auto [place, isNew] = mPlaces.emplace(key, mFindings.size());
            if (isNew) {
                mFindings.push_back({entry->check, entry->source->path(), entry->span,
                                     entry->message, entry->isForFile, detailsOf(*entry)});
            }
            std::vector<size_t>& loads = mFindings[place->second].details.loads;
            if (loads.empty() || loads.back() != mVariants.size() - 1) {
                loads.push_back(mVariants.size() - 1);
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

    static FindingDetails detailsOf(const ReportEntry& entry) {
        return entry.details != nullptr ? *entry.details : FindingDetails();
    }

    std::string variantsOf(const std::vector<size_t>& loads) const {
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

    std::vector<std::string> mVariants;             // Of the reports, in their order.
    std::map<std::string, size_t> mReaders;         // How many loads read a document, by its path.
    std::map<std::string, const Source*> mSources;  // One for each path.
    std::map<Key, size_t> mPlaces;                  // In mFindings.
    std::vector<Shared> mFindings;                  // In the order of the first.
};

}  // namespace

CheckedVariants checkVariants(std::vector<std::string> variants, const Levels& levels,
                              const KnownSettings& known) {
    CheckedVariants checked = {std::move(variants), {}, Report(levels)};
    checked.loads.reserve(checked.variants.size());
    SharedFindings findings;
    const std::vector<VariantDocument> documents = variantDocumentsInTree();
    for (const std::string& variant : checked.variants) {
        playVariant(variant);
        const Load& load = checked.loads.emplace_back(readLoad());
        Report report(levels);
        check(Checked(load, known, &documents), &report);
        for (const LoadFacts& facts : report.loads()) {
            checked.report.addLoad(facts);
        }
        findings.add(report, load);
    }
    findings.addTo(&checked.report);
    checkTreeFiles(&checked.report);
    return checked;
}

}  // namespace kc2::tool
