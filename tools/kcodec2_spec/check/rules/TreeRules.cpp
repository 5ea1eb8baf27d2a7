// What is wrong with the files and names of a device tree, whatever is in its documents.

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <string_view>
#include <utility>
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

constexpr size_t kMostNameMistakes = 2;

bool isNear(std::string_view name, std::string_view wanted) {
    return editDistance(name, wanted, kMostNameMistakes) <= kMostNameMistakes;
}

// --- Documents that no path selects ---

// Whether some value of the property selects this path, or it is the fallback.
bool isSelectable(const std::string& path) {
    if (path == kFallbackSystemSpec ||
        path == std::string(kVendorSpecDirectory) + kSystemSpecName) {
        return true;
    }
    const std::string variant = variantIn(path);
    return !variant.empty() && variant != kDefaultVariant;
}

void checkUnselectable(Report* report) {
    const std::string_view wanted = std::string_view(kSystemSpecName).substr(1);
    // As paths of this machine: links may lead to a file by several paths of the device.
    std::set<std::string> selectable;
    std::set<std::string> misnamed;
    std::set<std::string> others;
    for (const char* const directory :
         {"/odm/etc", "/vendor/etc", "/product/etc", "/system/etc", "/system_ext/etc"}) {
        visitFiles(directory, kTreeDepth, [&](const std::string& path) {
            const std::string name = path.substr(path.rfind('/') + 1);
            if (name == wanted) {
                (isSelectable(path) ? selectable : others).insert(localPath(path));
            } else if (isNear(name, wanted)) {
                misnamed.insert(localPath(path));
            }
        });
    }
    for (const std::string& path : misnamed) {
        report->addForFile(
                "document-unselectable", path,
                fmt::format("nothing reads this file: a system spec document is called {}",
                            wanted));
    }
    for (const std::string& path : others) {
        if (selectable.count(path) == 0) {
            report->addForFile(
                    "document-unselectable", path,
                    fmt::format("no variant selects this document: it must be in {}<variant> or "
                                "{}<variant>, or without a variant in {}",
                                kOdmSpecDirectory, kVendorSpecDirectory, kVendorSpecDirectory));
        }
    }
}

void checkPrivateName(const Load& load, Report* report) {
    const std::string path = kPrivateConfig;
    const size_t slash = path.rfind('/');
    const std::string wanted = path.substr(slash + 1);
    if (load.isPrivateFileOpen) {
        return;  // A similar name beside it may be a backup.
    }
    visitFiles(path.substr(0, slash), 1, [&](const std::string& found) {
        const std::string name = found.substr(slash + 1);
        if (name != wanted && isNear(name, wanted)) {
            report->addForFile(
                    "private-file-name", localPath(found),
                    fmt::format("nothing reads this file: the private file is called {}", wanted));
        }
    });
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

void checkTreeFiles(Report* report) {
    checkUnselectable(report);
}

void checkTrees(const Checked& checked, Report* report) {
    if (!checked.isAlone()) {
        checkPrivateName(*checked.load, report);
        checkChipName(*checked.load, report);
        checkModes(*checked.load, report);
    }
}

}  // namespace kc2::tool
