// Which documents a load reads, and what is wrong with that.

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <vector>

#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "store/TreeFiles.h"

namespace kc2::tool {

namespace {

// The path of the system spec document, or where it would be.
std::string specPathOf(const Load& load) {
    return load.hasSystemSpec() ? load.systemSpec->source.path() : localPath(load.firstPath);
}

std::string reasonForSystemSpec(const Load& load) {
    std::string why = fmt::format("the variant is not set, or \"{}\", which selects {}",
                                  kDefaultVariant, load.firstPath);
    if (load.isVariantSet()) {
        why = fmt::format("the variant \"{}\" selects {}", load.variant, load.firstPath);
        if (load.firstPath.starts_with(kVendorSpecDirectory)) {
            why += fmt::format(
                    ", since {}{} does not exist", kOdmSpecDirectory,
                    load.firstPath.substr(std::string_view(kVendorSpecDirectory).size()));
        }
    }
    const bool isFirst = load.hasSystemSpec() && load.systemSpec->path == load.firstPath;
    return isFirst && !load.systemSpec->isPipe ? why + ", and that opens" : why;
}

std::string reasonForOverlay(const Load& load) {
    if (load.hasPrivateFile()) {
        return "this file, since it opens";
    }
    return fmt::format("{}, since this file {} and the path {} {}", load.overlay->origin,
                       load.isPrivateFileOpen ? "is empty" : "does not open", load.firstPath,
                       *load.chip->chip == '\0' ? "names no chip"
                                                : fmt::format("contains \"{}\"", load.chip->chip));
}

void checkSeeding(const Load& load, Report* report) {
    if (load.isSeeded) {
        report->addForFile("private-file-seeded", localPath(kPrivateConfig),
                           fmt::format("the device would write {} into this file, since {} is "
                                       "installed",
                                       load.overlay->origin, kCodecTestTool));
    }
}

void checkMissingSpec(const Load& load, Report* report) {
    if (!load.hasSystemSpec()) {
        report->addForFile(
                "spec-missing", specPathOf(load),
                fmt::format("no system spec document: neither {} ({}) nor {} opens, so {}",
                            load.firstPath, whyNotOpen(load.firstPath), kFallbackSystemSpec,
                            load.overlay->isAccepted
                                    ? fmt::format("only the overlay ({}) fills the store",
                                                  load.overlay->origin)
                                    : fmt::format("the store stays empty: the overlay ({}) is "
                                                  "rejected",
                                                  load.overlay->origin)));
    } else if (load.systemSpec->path != load.firstPath) {
        report->addForFile("spec-missing", specPathOf(load),
                           fmt::format("the fallback is read, since {} does not open ({})",
                                       load.firstPath, whyNotOpen(load.firstPath)));
    }
}

void checkUnreadable(const Checked& checked, Report* report) {
    for (const Document* const document : checked.documents) {
        if (!document->isReadable) {
            const std::string& why = document->whyNotReadable;
            report->addForFile("unreadable", document->source.path(),
                               document->isPipe ? fmt::format("it is {}", why)
                                                : fmt::format("the file opens, but cannot be read "
                                                              "({}): the device uses nothing in it",
                                                              why));
        }
    }
}

void checkLoadWithoutCodecs(const Checked& checked, Report* report) {
    if (checked.whole().supportedCodecs.empty()) {
        report->addForFile("load-without-codecs", specPathOf(*checked.load),
                           "no document of the load names a codec component: that enables every "
                           "component");
    }
}

// --- A variant whose directory is not where the library looks ---

// The document whose variant has nearly these letters: the nearest, and of several the first. Null
// when none is near.
const VariantDocument* nearestOf(const std::vector<VariantDocument>& documents,
                                 const std::string& variant) {
    const std::string wanted = lettersAndDigitsOf(variant);
    const VariantDocument* best = nullptr;
    size_t limit = wanted.size() / 3 + 1;
    for (const VariantDocument& document : documents) {
        if (document.variant == variant) {
            continue;
        }
        const std::string& found = document.letters;
        if (found == wanted && !found.empty()) {
            return &document;
        }
        // With thousands of variants, most comparisons are of those that are no nearer.
        const size_t distance = limit == 0 ? 1 : editDistance(wanted, found, limit);
        if (distance <= limit && distance < found.size()) {
            best = &document;
            limit = distance - 1;
        }
    }
    return best;
}

void checkVariantNearby(const Checked& checked, Report* report) {
    const Load& load = *checked.load;
    if (!load.isVariantSet() || (load.hasSystemSpec() && load.systemSpec->path == load.firstPath)) {
        return;
    }
    const bool isListed = checked.variantDocuments != nullptr;
    const auto listed = isListed ? std::vector<VariantDocument>() : variantDocumentsInTree();
    const VariantDocument* const near =
            nearestOf(isListed ? *checked.variantDocuments : listed, load.variant);
    if (near != nullptr) {
        report->addForFile(
                "variant-nearby", specPathOf(load),
                fmt::format("{} exists: the variant \"{}\" would select it, \"{}\" does not (it "
                            "follows \"media\" as it is, with no \"/\" between)",
                            near->path, near->variant, load.variant));
    }
}

}  // namespace

void checkLoads(const Checked& checked, Report* report) {
    if (checked.isAlone()) {
        return;
    }
    const Load& load = *checked.load;
    report->addFile(specPathOf(load));
    report->addFile(localPath(kPrivateConfig));
    report->addLoad({load.variant,
                     {specPathOf(load), reasonForSystemSpec(load)},
                     {localPath(kPrivateConfig), reasonForOverlay(load)}});
    checkSeeding(load, report);
    checkMissingSpec(load, report);
    checkUnreadable(checked, report);
    checkLoadWithoutCodecs(checked, report);
    checkVariantNearby(checked, report);
}

}  // namespace kc2::tool
