// Which documents a load reads, and what is wrong with that, with the chip's name in the path and
// with the modes along it.

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "store/TreeFiles.h"
#include "targetspec/reading/BuiltInDocuments.h"

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
    // With many variants it is too much to list the tree for each.
    const bool mayNeedVariant = !load.isVariantSet() && !hasDocumentWithoutVariant();
    const auto variants = mayNeedVariant ? variantsInTree() : std::set<std::string>();
    if (!variants.empty()) {
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
    if (!load.isVariantSet() || load.hasFirstDocument()) {
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

// --- The chip's name in the path ---

// Calls visit(word) for each run of letters.
template <typename Visit>
void forEachWord(std::string_view text, Visit visit) {
    const auto isLetter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
    for (auto at = text.begin(); (at = std::find_if(at, text.end(), isLetter)) != text.end();) {
        const auto end = std::find_if_not(at, text.end(), isLetter);
        visit(text.substr(static_cast<size_t>(at - text.begin()), static_cast<size_t>(end - at)));
        at = end;
    }
}

// Real words resemble a chip's name of four letters, so there only a new order of its letters is a
// mistake.
bool isMisspelt(std::string_view word, std::string_view chip) {
    constexpr size_t kMostNameMistakes = 2;
    constexpr size_t kShort = 4;
    if (word == chip || editDistance(word, chip, kMostNameMistakes) > kMostNameMistakes) {
        return false;
    }
    if (chip.size() > kShort) {
        return editDistance(word, chip, 1) <= 1;
    }
    const std::string letters = inSmallLetters(word);
    return std::is_permutation(letters.begin(), letters.end(), chip.begin(), chip.end());
}

void checkChipName(const Load& load, Report* report) {
    if (!load.isVariantSet() || load.hasPrivateFile()) {
        return;  // The private file replaces the chip's document.
    }
    const std::string built = fmt::format("built-in document {}", load.chip->number);
    const std::string_view chosen = load.chip->chip;
    forEachWord(load.variant, [&](std::string_view word) {
        if (!chosen.empty()) {
            if (word != chosen && word.find(chosen) != std::string_view::npos) {
                report->addForFile("chip-name", localPath(load.firstPath),
                                   fmt::format("\"{}\" in this path contains the chip \"{}\", so "
                                               "{} is merged. Is that what is meant?",
                                               word, chosen, built));
            }
            return;
        }
        for (const ChipDocument& row : kChipDocuments) {
            if (*row.chip != '\0' && isMisspelt(word, row.chip)) {
                report->addForFile("chip-name", localPath(load.firstPath),
                                   fmt::format("\"{}\" in this path is not a chip, so {} is "
                                               "merged. Did you mean \"{}\"?",
                                               word, built, row.chip));
            }
        }
    });
}

// --- Modes ---

void checkModes(const Load& load, Report* report) {
    const std::string path = load.hasSystemSpec() ? load.systemSpec->path : load.firstPath;
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        struct stat status = {};
        if (stat(localPath(part).c_str(), &status) != 0) {
            return;
        }
        const bool isDirectory = S_ISDIR(status.st_mode);
        if ((status.st_mode & (isDirectory ? S_IXOTH : S_IROTH)) == 0) {
            report->addForFile(
                    "mode", localPath(part),
                    isDirectory ? "others may not search this directory (mode bit o+x), so a "
                                  "media service cannot open the document in it"
                                : "others may not read this file (mode bit o+r), so a media "
                                  "service cannot");
        }
        if (slash == std::string::npos) {
            return;
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
    checkVariantNearby(checked, report);
    checkChipName(load, report);
    checkModes(load, report);
}

}  // namespace kc2::tool
