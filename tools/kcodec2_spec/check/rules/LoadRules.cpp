// Which documents a load reads, and what is wrong with that.

#include <fmt/format.h>
#include <sys/stat.h>

#include <cctype>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
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
            const std::string odmPath = odmPathOf(load.variant);
            const std::string link = brokenLinkTo(odmPath);
            why += link.empty() ? fmt::format(", since {} does not exist", odmPath)
                                : fmt::format(", since {} is a link to nowhere", link);
        }
    }
    return load.hasFirstDocument() && !load.systemSpec->isPipe ? why + ", and that opens" : why;
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

// Why the first path does not open, with the link at the path before it that leads there.
std::string whyNotFirst(const Load& load) {
    const std::string why = whyNotOpen(load.firstPath);
    const std::string link =
            load.isVariantSet() ? brokenLinkTo(odmPathOf(load.variant)) : std::string();
    return link.empty() || load.firstPath.starts_with(kOdmSpecDirectory)
                   ? why
                   : fmt::format("{}; {} is a link to nowhere", why, link);
}

bool isAbsent(const std::string& path) {
    struct stat ignored = {};
    return !examine(path, &ignored) && brokenLinkTo(path).empty();
}

void reportNoDocument(const Load& load, Report* report) {
    const std::set<std::string> variants = variantsInTree();
    if (!load.isVariantSet() && !hasDocumentWithoutVariant() && !variants.empty()) {
        report->addForFile(
                "variant-needed", specPathOf(load),
                fmt::format("the variant is not set, and every system spec document is for a "
                            "variant: {}. --variant NAME checks one, --all-variants checks all",
                            joined({variants.begin(), variants.end()}, ", ")));
        return;
    }
    const bool isFilled = load.overlay->isAccepted;
    report->addForFile(
            "spec-missing", specPathOf(load),
            fmt::format("no system spec document: neither {} ({}) nor {} opens, so {} ({}){}",
                        load.firstPath, whyNotFirst(load), kFallbackSystemSpec,
                        isFilled ? "only the overlay" : "the store stays empty: the overlay",
                        load.overlay->origin, isFilled ? " fills the store" : " is rejected"));
}

void checkMissingSpec(const Load& load, Report* report) {
    if (!load.hasSystemSpec()) {
        reportNoDocument(load, report);
    } else if (!load.hasFirstDocument() && !load.isVariantSet() && isAbsent(load.firstPath)) {
        report->addForFile("fallback-alone", specPathOf(load),
                           fmt::format("the fallback is read, since {} does not exist: the device "
                                       "logs an error for that at each load",
                                       load.firstPath));
    } else if (!load.hasFirstDocument()) {
        report->addForFile("spec-missing", specPathOf(load),
                           fmt::format("the fallback is read, since {} does not open ({})",
                                       load.firstPath, whyNotFirst(load)));
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

std::string lettersAndDigitsOf(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) {
            result += inSmallLetters(c);
        }
    }
    return result;
}

void checkVariantNearby(const Load& load, Report* report) {
    if (!load.isVariantSet() || load.hasFirstDocument()) {
        return;
    }
    const std::string wanted = lettersAndDigitsOf(load.variant);
    for (const std::string directory : {kOdmSpecDirectory, kVendorSpecDirectory}) {
        for (const std::string& variant : variantsInTree()) {
            const std::string found = lettersAndDigitsOf(variant);
            std::error_code error;
            if (variant != load.variant &&
                !nearest(wanted, std::vector<std::string>{found}).empty() &&
                std::filesystem::exists(localPath(directory + variant + kSystemSpecName), error)) {
                report->addForFile(
                        "variant-nearby", specPathOf(load),
                        fmt::format(
                                "{}{}{} exists: the variant \"{}\" would select it, \"{}\" does "
                                "not (it follows \"media\" as it is, with no \"/\" between)",
                                directory, variant, kSystemSpecName, variant, load.variant));
            }
        }
    }
}

}  // namespace

void checkLoads(const Checked& checked, Report* report) {
    if (checked.isAlone()) {
        return checkUnreadable(checked, report);
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
    checkVariantNearby(load, report);
}

}  // namespace kc2::tool
