// The path of a system spec document: the chip's name in it, and the modes along it.

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

namespace {

constexpr size_t kMostNameMistakes = 2;

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

void checkTrees(const Checked& checked, Report* report) {
    if (!checked.isAlone()) {
        checkChipName(*checked.load, report);
        checkModes(*checked.load, report);
    }
}

}  // namespace kc2::tool
