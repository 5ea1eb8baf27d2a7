// One report for several variants of a device.

#include "check/VariantReports.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Rules.h"
#include "device/DevicePaths.h"
#include "store/TreeFiles.h"

namespace kc2::tool {

namespace {

constexpr char kOtherVariant[] = "a variant without a document";

// The findings of several reports, each once, with the variants that have it.
class SharedFindings {
public:
    // The load must outlive this, and the report that it is added to.
    void add(const std::string& variant, const Report& report, const Load& load) {
        ++mVariants;
        for (const Document* const document : {load.systemSpec.get(), load.overlay.get()}) {
            if (document != nullptr) {
                addReader(*document);
            }
        }
        add(variant == kDefaultVariant ? "no variant" : fmt::format("variant \"{}\"", variant),
            report);
    }

    // The same for the fallback, which none of the variants reads.
    void addFallback(const Report& report, const Document& fallback) {
        addReader(fallback);
        add(kOtherVariant, report);
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
        std::vector<std::string> variants;  // In words.
    };
    using Key = std::tuple<std::string, std::string_view, size_t, size_t, std::string>;

    void addReader(const Document& document) {
        ++mReaders[document.source.path()];
        mSources.emplace(document.source.path(), &document.source);
    }

    void add(const std::string& variant, const Report& report) {
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

    static FindingDetails detailsOf(const ReportEntry& entry) {
        return entry.details != nullptr ? *entry.details : FindingDetails();
    }

    std::string variantsOf(const std::vector<std::string>& variants) const {
        if (variants.size() == mVariants && variants.back() != kOtherVariant) {
            return "every variant";
        }
        return joined(variants, ", ");
    }

    size_t mVariants = 0;
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

}  // namespace

CheckedVariants checkVariants(std::vector<std::string> variants, const Levels& levels,
                              const KnownSettings& known) {
    CheckedVariants checked = {std::move(variants), {}, nullptr, Report(levels)};
    checked.loads.reserve(checked.variants.size());
    SharedFindings findings;
    for (const std::string& variant : checked.variants) {
        playVariant(variant);
        const Load& load = checked.loads.emplace_back(readLoad());
        Report report(levels);
        check(Checked(load, known), &report);
        for (const LoadFacts& facts : report.loads()) {
            checked.report.addLoad(facts);
        }
        findings.add(variant, report, load);
    }
    checked.fallback = fallbackBesides(checked.loads);
    if (checked.fallback != nullptr) {
        Report report(levels);
        check(Checked(*checked.fallback, known), &report);
        findings.addFallback(report, *checked.fallback);
    }
    findings.addTo(&checked.report);
    checkTreeFiles(checked.loads, &checked.report);
    return checked;
}

std::set<std::string> variantsToCheck() {
    std::set<std::string> variants = variantsInTree();
    if (variants.empty() || hasDocumentWithoutVariant()) {
        variants.insert(kDefaultVariant);  // Else such a load is not meant to be.
    }
    return variants;
}

CheckedVariants checkAllVariants(const Levels& levels, const KnownSettings& known) {
    const std::set<std::string> variants = variantsToCheck();
    return checkVariants({variants.begin(), variants.end()}, levels, known);
}

}  // namespace kc2::tool
