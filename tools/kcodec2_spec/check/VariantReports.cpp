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
    void add(const std::string& variant, const Report& report, const Load& load) {
        ++mVariants;
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
                mFindings.push_back({entry->check,
                                     entry->source->path(),
                                     entry->span,
                                     entry->message,
                                     entry->isForFile,
                                     detailsOf(*entry),
                                     {}});
            }
            mFindings[place->second].variants.push_back(variant);
        }
    }

    void addTo(Report* report) const {
        for (const Shared& shared : mFindings) {
            const auto readers = mReaders.find(shared.path);
            if (isUnusedSuppression(*shared.check) && readers != mReaders.end() &&
                shared.variants.size() < readers->second) {
                continue;  // In another variant the comment suppresses something.
            }
            const std::string message =
                    fmt::format("{} ({})", shared.message, variantsOf(shared.variants));
            if (shared.isForFile) {
                report->addForFile(*shared.check, shared.path, message);
            } else {
                report->add(*shared.check, *mSources.at(shared.path), shared.span, message,
                            shared.details);
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
        std::vector<std::string> variants;
    };
    using Key = std::tuple<std::string, std::string_view, size_t, size_t, std::string>;

    static FindingDetails detailsOf(const ReportEntry& entry) {
        return entry.details != nullptr ? *entry.details : FindingDetails();
    }

    std::string variantsOf(const std::vector<std::string>& variants) const {
        if (variants.size() == mVariants) {
            return "every variant";
        }
        std::vector<std::string> names;
        for (const std::string& variant : variants) {
            names.push_back(variant == kDefaultVariant ? "no variant"
                                                       : fmt::format("variant \"{}\"", variant));
        }
        return joined(names, ", ");
    }

    size_t mVariants = 0;
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
        findings.add(variant, report, load);
    }
    findings.addTo(&checked.report);
    checkTreeFiles(&checked.report);
    return checked;
}

}  // namespace kc2::tool
