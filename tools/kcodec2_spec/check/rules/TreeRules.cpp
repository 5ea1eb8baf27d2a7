// What is wrong with the files and names of a device tree, whatever is in its documents.

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <functional>
#include <memory>
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
#include "store/Load.h"
#include "store/TreeFiles.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

namespace {

// The path that a finding is about, and what is wrong.
using AddForFile = std::function<void(const std::string& devicePath, std::string message)>;

struct TreeRule {
    Rule rule;
    void (*check)(const CheckedLoad& checked, const AddForFile& add);
};

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

void checkUnselectable(const CheckedLoad& /*checked*/, const AddForFile& add) {
    const std::string_view wanted = std::string_view(kSystemSpecName).substr(1);
    std::set<std::string> selectable;  // Where they lie: a link may lead to one.
    std::vector<std::string> others;
    for (const char* const directory :
         {"/odm/etc", "/vendor/etc", "/product/etc", "/system/etc", "/system_ext/etc"}) {
        visitFiles(directory, kTreeDepth, [&](const std::string& path) {
            const std::string name = path.substr(path.rfind('/') + 1);
            if (name != wanted && isNear(name, wanted)) {
                add(path, "nothing reads this file: a system spec document is called " +
                                  std::string(wanted));
            } else if (name == wanted && isSelectable(path)) {
                selectable.insert(localPath(path));
            } else if (name == wanted) {
                others.push_back(path);
            }
        });
    }
    for (const std::string& path : others) {
        if (selectable.count(localPath(path)) == 0) {
            add(path, std::string("no variant selects this document: it must be in ") +
                              kOdmSpecDirectory + "<variant> or " + kVendorSpecDirectory +
                              "<variant>, or without a variant in " + kVendorSpecDirectory);
        }
    }
}

void checkPrivateName(const CheckedLoad& checked, const AddForFile& add) {
    const std::string path = kPrivateConfig;
    const size_t slash = path.rfind('/');
    const std::string wanted = path.substr(slash + 1);
    if (checked.load.isPrivateFileOpen) {
        return;  // Another one beside it may be a copy that is kept.
    }
    visitFiles(path.substr(0, slash), 1, [&](const std::string& found) {
        const std::string name = found.substr(slash + 1);
        if (name != wanted && isNear(name, wanted)) {
            add(found, "nothing reads this file: the private file is called " + wanted);
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

// A chip's name of four letters has real words for neighbours, so only its own letters count.
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

void checkChipName(const CheckedLoad& checked, const AddForFile& add) {
    const Load& load = checked.load;
    if (load.variant == kDefaultVariant || !load.overlay.path.empty()) {
        return;  // The private file takes the place of the chip's document.
    }
    const std::string built = "built-in document " + std::to_string(load.chip->number);
    const std::string_view chosen = load.chip->chip;
    forEachWord(load.variant, [&](std::string_view word) {
        if (!chosen.empty()) {
            if (word != chosen && word.find(chosen) != std::string_view::npos) {
                add(load.firstPath, "\"" + std::string(word) +
                                            "\" in this path contains the chip \"" +
                                            std::string(chosen) + "\", so " + built +
                                            " is merged. Is that what is meant?");
            }
            return;
        }
        for (const ChipDocument& row : kChipDocuments) {
            if (*row.chip != '\0' && isMisspelt(word, row.chip)) {
                add(load.firstPath, "\"" + std::string(word) +
                                            "\" in this path is not a chip, so " + built +
                                            " is merged. Did you mean \"" + row.chip + "\"?");
            }
        }
    });
}

// --- Modes ---

void checkModes(const CheckedLoad& checked, const AddForFile& add) {
    const Load& load = checked.load;
    const std::string path = load.hasSystemSpec() ? load.systemSpec.path : load.firstPath;
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        struct stat status = {};
        if (stat(localPath(part).c_str(), &status) != 0) {
            return;
        }
        const bool isDirectory = S_ISDIR(status.st_mode);
        if ((status.st_mode & (isDirectory ? S_IXOTH : S_IROTH)) == 0) {
            add(part, isDirectory ? "others may not search this directory (mode bit o+x), so a "
                                    "media service cannot open the document in it"
                                  : "others may not read this file (mode bit o+r), so a media "
                                    "service cannot");
        }
        if (slash == std::string::npos) {
            return;
        }
    }
}

constexpr TreeRule kTreeRules[] = {
        {{"document-unselectable", Severity::Warning, "a document that no path selects"},
         checkUnselectable},
        {{"private-file-name", Severity::Warning, "a private file whose name is misspelt"},
         checkPrivateName},
        {{"chip-name", Severity::Warning, "a chip's name that is misspelt or there by accident"},
         checkChipName},
        {{"mode", Severity::Warning, "a file or directory that a media service may not read"},
         checkModes},
};

}  // namespace

void applyTreeRules(CheckedLoad* checked, Report* report) {
    const auto placeOf = [checked](const std::string& path) -> const Source& {
        for (const auto& place : checked->otherPlaces) {
            if (place->path() == path) {
                return *place;
            }
        }
        return *checked->otherPlaces.emplace_back(std::make_unique<Source>(path, ""));
    };
    for (const TreeRule& row : kTreeRules) {
        row.check(*checked, [&](const std::string& path, std::string message) {
            report->addForFile(row.rule, placeOf(localPath(path)), std::move(message));
        });
    }
}

std::vector<const Rule*> treeRules() {
    return rulesOf(kTreeRules);
}

}  // namespace kc2::tool
