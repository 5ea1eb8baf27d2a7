// Which documents a load reads, and why: each step, and the traps on the way.

#include <cctype>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "store/TreeFiles.h"

namespace kc2::tool {

namespace {

using AddForSource = std::function<void(const Source&, std::string)>;

struct LoadRule {
    Rule rule;
    void (*check)(const CheckedLoad& checked, const AddForSource& add);
};

bool isVariantSet(const Load& load) {
    return load.variant != kDefaultVariant;
}

void tellSystemSpec(const CheckedLoad& checked, const AddForSource& add) {
    const Load& load = checked.load;
    std::string why = "the variant is not set, or \"default\", which selects " + load.firstPath;
    if (isVariantSet(load)) {
        why = "the variant \"" + load.variant + "\" selects " + load.firstPath;
        if (load.firstPath.rfind(kVendorSpecDirectory, 0) == 0) {
            why += std::string(", since ") + kOdmSpecDirectory +
                   load.firstPath.substr(std::string_view(kVendorSpecDirectory).size()) +
                   " does not exist";
        }
    }
    if (load.systemSpec.path == load.firstPath) {
        why += load.systemSpec.isPipe ? "" : ", and that opens";
    }
    add(checked.place, "system spec document: " + why);
}

void tellOverlay(const CheckedLoad& checked, const AddForSource& add) {
    const Load& load = checked.load;
    if (!load.overlay.path.empty()) {
        add(checked.privatePlace, "private overlay: this file, since it opens");
        return;
    }
    const std::string chip = *load.chip->chip == '\0'
                                     ? "names no chip"
                                     : "contains \"" + std::string(load.chip->chip) + "\"";
    add(checked.privatePlace, std::string("private overlay: ") + load.overlay.origin +
                                      ", since this file " +
                                      (load.isPrivateFileOpen ? "is empty" : "does not open") +
                                      " and the path " + load.firstPath + " " + chip);
}

void tellSeeding(const CheckedLoad& checked, const AddForSource& add) {
    if (checked.load.isSeeded) {
        add(checked.privatePlace, std::string("the device would write ") +
                                          checked.load.overlay.origin + " into this file, since " +
                                          kCodecTestTool + " is installed");
    }
}

void checkMissingSpec(const CheckedLoad& checked, const AddForSource& add) {
    const Load& load = checked.load;
    if (!load.hasSystemSpec()) {
        add(checked.place,
            "no system spec document: neither " + load.firstPath + " (" +
                    whyNotOpen(load.firstPath) + ") nor " + kFallbackSystemSpec + " opens, so " +
                    (load.overlay.isAccepted
                             ? "only the overlay (" + load.overlay.origin + ") fills the store"
                             : "the store stays empty: the overlay (" + load.overlay.origin +
                                       ") is rejected"));
    } else if (load.systemSpec.path != load.firstPath) {
        add(checked.place, "the fallback is read, since " + load.firstPath + " does not open (" +
                                   whyNotOpen(load.firstPath) + ")");
    }
}

void checkUnreadable(const CheckedLoad& checked, const AddForSource& add) {
    for (const auto& document : checked.documents) {
        if (!document->document.isReadable) {
            const std::string& why = document->document.whyNotReadable;
            add(document->source, document->document.isPipe
                                          ? "it is " + why
                                          : "the file opens, but cannot be read (" + why +
                                                    "): the device takes nothing of it");
        }
    }
}

void checkLoadWithoutCodecs(const CheckedLoad& checked, const AddForSource& add) {
    const Load& load = checked.load;
    if (load.systemSpec.content.supportedCodecs.empty() &&
        load.overlay.content.supportedCodecs.empty()) {
        add(checked.place,
            "no document of the load names a codec component: that enables every component");
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

void checkVariantNearby(const CheckedLoad& checked, const AddForSource& add) {
    const Load& load = checked.load;
    if (!isVariantSet(load) || load.systemSpec.path == load.firstPath) {
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
                add(checked.place, directory + variant + kSystemSpecName +
                                           " exists: the variant \"" + variant +
                                           "\" would select it, \"" + load.variant +
                                           "\" does not (it follows \"media\" as it is, with no "
                                           "\"/\" between)");
            }
        }
    }
}

constexpr LoadRule kLoadRules[] = {
        {{"system-spec", Severity::Note, "which system spec document the load reads, and why"},
         tellSystemSpec},
        {{"overlay", Severity::Note, "which document the load merges second, and why"},
         tellOverlay},
        {{"private-file-seeded", Severity::Note, "a private file that the device would write"},
         tellSeeding},
        {{"spec-missing", Severity::Warning, "a system spec document that does not open"},
         checkMissingSpec},
        {kUnreadable, checkUnreadable},
        {{"load-without-codecs", Severity::Warning,
          "a load that names no component: all are enabled"},
         checkLoadWithoutCodecs},
        {{"variant-nearby", Severity::Warning, "a variant that misses a directory near by"},
         checkVariantNearby},
};

}  // namespace

void applyLoadRules(const CheckedLoad& load, Report* report) {
    for (const LoadRule& row : kLoadRules) {
        row.check(load, [&](const Source& source, std::string message) {
            report->addForFile(row.rule, source, std::move(message));
        });
    }
}

std::vector<const Rule*> loadRules() {
    return rulesOf(kLoadRules);
}

}  // namespace kc2::tool
