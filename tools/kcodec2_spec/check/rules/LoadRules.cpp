// Which documents a load reads, and what is wrong with that.

#include <fmt/format.h>

#include <cctype>
#include <filesystem>
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
    if (!load.isVariantSet() || (load.hasSystemSpec() && load.systemSpec->path == load.firstPath)) {
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
    checkVariantNearby(load, report);
}

}  // namespace kc2::tool
