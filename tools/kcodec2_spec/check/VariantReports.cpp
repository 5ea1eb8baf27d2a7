// The reports of several variants of a device, as one.

#include "check/VariantReports.h"

#include "device/DevicePaths.h"

namespace kc2::tool {

void VariantReports::add(const std::string& variant, const Report& report,
                         const CheckedLoad& load) {
    ++mVariants;
    for (const auto& document : load.documents) {
        ++mReaders[document->source.path()];
    }
    for (const ReportEntry* const entry : report.inOrder()) {
        const Source* const source =
                mSources.emplace(std::pair(entry->source->path(), entry->isForFile), entry->source)
                        .first->second;
        const Key key = {source->path(), entry->rule->id, entry->span.start, entry->span.limit,
                         entry->message};
        const auto [place, isNew] = mPlaces.emplace(key, mFindings.size());
        if (isNew) {
            mFindings.push_back({source,
                                 {},
                                 entry->details != nullptr ? *entry->details : FindingDetails(),
                                 entry->isForFile,
                                 entry->rule,
                                 entry->span,
                                 entry->message});
        }
        mFindings[place->second].variants.push_back(variant);
    }
}

std::string VariantReports::variantsOf(const Shared& shared) const {
    if (shared.variants.size() == mVariants) {
        return "every variant";
    }
    std::string names;
    for (const std::string& variant : shared.variants) {
        names += names.empty() ? "" : ", ";
        names += variant == kDefaultVariant ? "no variant" : "variant \"" + variant + "\"";
    }
    return names;
}

void VariantReports::addTo(Report* report) const {
    for (const Shared& shared : mFindings) {
        const auto readers = mReaders.find(shared.source->path());
        if (shared.rule == &kAllowsNothing && readers != mReaders.end() &&
            shared.variants.size() < readers->second) {
            continue;  // In another variant the comment allows something.
        }
        const std::string message = shared.message + " (" + variantsOf(shared) + ")";
        if (shared.isForFile) {
            report->addForFile(*shared.rule, *shared.source, message);
        } else {
            report->add(*shared.rule, *shared.source, shared.span, message, shared.details);
        }
    }
}

}  // namespace kc2::tool
