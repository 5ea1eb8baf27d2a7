// Files of a device tree that look like documents, but that no load reads: misspelt names, wrong
// directories, broken links.

#include <fmt/format.h>
#include <sys/stat.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "base/Spelling.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "store/TreeFiles.h"

namespace kc2::tool {

namespace {

// --- Names ---

// A copy that an editor or a tool leaves beside a file: "name~", "#name#", ".name.swp", "name.1".
bool isLeftoverOf(std::string_view wanted, std::string_view name) {
    constexpr std::string_view kBefore = "#.~";
    constexpr std::string_view kAfter = "#.~";
    const size_t at = name.find(wanted);
    if (at == std::string_view::npos) {
        return false;
    }
    const std::string_view after = name.substr(at + wanted.size());
    const bool isMarkedBefore = at > 0 && kBefore.find(name[0]) != std::string_view::npos;
    return (at == 0 || isMarkedBefore) &&
           (after.empty() || kAfter.find(after[0]) != std::string_view::npos);
}

enum class NameKind { Other, Exact, Misspelt };

NameKind kindOf(std::string_view name, std::string_view wanted) {
    constexpr size_t kMostMistakes = 2;
    if (name == wanted) {
        return NameKind::Exact;
    }
    return editDistance(name, wanted, kMostMistakes) <= kMostMistakes && !isLeftoverOf(wanted, name)
                   ? NameKind::Misspelt
                   : NameKind::Other;
}

std::string_view nameIn(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

std::string_view directoryOf(std::string_view path) {
    return path.substr(0, path.rfind('/'));
}

// --- What the tree has ---

// Where people put documents, and how deep they are looked for.
struct SearchedDirectory {
    const char* path;
    int depth;
};
constexpr SearchedDirectory kSearchedDirectories[] = {{"/odm", 2},
                                                      {"/odm/etc", kTreeDepth},
                                                      {"/vendor", 2},
                                                      {"/vendor/etc", kTreeDepth},
                                                      {"/product/etc", kTreeDepth},
                                                      {"/system/etc", kTreeDepth},
                                                      {"/system_ext/etc", kTreeDepth},
                                                      {"/data", 1},
                                                      {"/data/media", 2},
                                                      {"/data/vendor", kTreeDepth}};

// Device paths, by the path on this machine: links may lead to a file by several paths.
using Files = std::map<std::string, std::string>;

struct TreeFiles {
    Files shadowed;  // By the document of the same variant that is tried first.
    Files unselectable;
    Files misspelt;
    Files privateFiles;          // In a wrong directory.
    Files misspeltPrivateFiles;  // In the right one.
    std::set<std::string> brokenLinks;
};

// Whether some value of the property selects this path, or it is the fallback.
bool isSelectable(const std::string& path) {
    if (path == kFallbackSystemSpec ||
        path == std::string(kVendorSpecDirectory) + kSystemSpecName) {
        return true;
    }
    const std::string variant = variantIn(path);
    return !variant.empty() && variant != kDefaultVariant;
}

bool isShadowed(const std::string& path) {
    struct stat ignored = {};
    const std::string variant = variantIn(path);
    const std::string first = odmPathOf(variant);
    return path.starts_with(kVendorSpecDirectory) && !variant.empty() && examine(first, &ignored) &&
           localPath(first) != localPath(path);
}

bool isDocumentLink(const std::string& path) {
    const std::string_view directory = directoryOf(path);
    const bool isOfVariant =
            nameIn(path).find('.') == std::string_view::npos &&  // No media_codecs.xml.
            (directory == directoryOf(kOdmSpecDirectory) ||
             directory == directoryOf(kVendorSpecDirectory)) &&
            (path.starts_with(kOdmSpecDirectory) || path.starts_with(kVendorSpecDirectory));
    return isOfVariant || path == directoryOf(kPrivateConfig) || path == kPrivateConfig ||
           nameIn(path) == nameIn(kSystemSpecName);
}

void addPrivateFile(const std::string& path, TreeFiles* files) {
    if (localPath(path) == localPath(kPrivateConfig)) {
        return;
    }
    const bool isInPlace = directoryOf(path) == directoryOf(kPrivateConfig);
    (isInPlace ? files->misspeltPrivateFiles : files->privateFiles).emplace(localPath(path), path);
}

// Adds a file; one that some value of the property selects goes into `selectable`.
void addFile(const std::string& path, Files* selectable, TreeFiles* files) {
    if (brokenLinkTo(path) == path) {
        if (isDocumentLink(path)) {
            files->brokenLinks.insert(path);
        }
        return;
    }
    const std::string_view name = nameIn(path);
    const NameKind asSpec = kindOf(name, nameIn(kSystemSpecName));
    if (asSpec == NameKind::Exact) {
        Files* const group = !isSelectable(path) ? &files->unselectable
                             : isShadowed(path)  ? &files->shadowed
                                                 : selectable;
        group->emplace(localPath(path), path);
    } else if (asSpec == NameKind::Misspelt) {
        files->misspelt.emplace(localPath(path), path);
    } else if (kindOf(name, nameIn(kPrivateConfig)) != NameKind::Other) {
        addPrivateFile(path, files);
    }
}

TreeFiles treeFiles() {
    TreeFiles files;
    Files selectable;
    for (const SearchedDirectory& directory : kSearchedDirectories) {
        visitFiles(directory.path, directory.depth,
                   [&](const std::string& path) { addFile(path, &selectable, &files); });
    }
    for (const auto& [local, path] : selectable) {  // By another path.
        files.unselectable.erase(local);
        files.shadowed.erase(local);
    }
    return files;
}

void reportEach(CheckId check, const Files& files, const std::string& message, Report* report) {
    for (const auto& [local, path] : files) {
        report->addForFile(check, local, message);
    }
}

// --- System spec documents ---

// Null for what is no regular file: opening a pipe waits for somebody to write into it.
std::unique_ptr<Document> readRegularFile(const std::string& path) {
    struct stat status = {};
    return examine(path, &status) && S_ISREG(status.st_mode) ? readDocumentFile(localPath(path))
                                                             : nullptr;
}

void checkShadowed(const TreeFiles& files, Report* report) {
    for (const auto& [local, path] : files.shadowed) {
        const std::string why = fmt::format(
                "no load reads this document: the variant \"{}\" "
                "selects {}, which exists",
                variantIn(path), odmPathOf(variantIn(path)));
        const std::unique_ptr<Document> document = readRegularFile(path);
        if (document != nullptr && !document->isAccepted) {
            report->addForFile("document-unselectable", local,
                               why + ". A device would reject this one");
        } else {
            report->addForFile("document-shadowed", local, why);
        }
    }
}

// --- Links ---

// Those that a load reports which finds no document at their end.
std::set<std::string> linksReportedAsMissing(std::span<const Load> loads) {
    std::set<std::string> links;
    for (const Load& load : loads) {
        if (!load.hasFirstDocument()) {
            links.insert(brokenLinkTo(load.firstPath));
            links.insert(load.isVariantSet() ? brokenLinkTo(odmPathOf(load.variant)) : "");
        }
    }
    return links;
}

void checkBrokenLinks(const TreeFiles& files, std::span<const Load> loads, Report* report) {
    const std::set<std::string> reported = linksReportedAsMissing(loads);
    for (const std::string& link : files.brokenLinks) {
        if (reported.count(link) == 0) {
            report->addForFile(
                    "link-broken", pathOfLink(link),
                    fmt::format("{}: {}", whyNotOpen(link),
                                std::string_view(kPrivateConfig).starts_with(link)
                                        ? "the device finds no private file, and uses the built-in "
                                          "document"
                                        : "a device finds no document here"));
        }
    }
}

// --- The private file ---

// A device may copy the private file from its image to its place.
bool isCopied(const std::string& path, const Load& load) {
    const std::unique_ptr<Document> document =
            load.hasPrivateFile() ? readRegularFile(path) : nullptr;
    return document != nullptr && load.overlay->isReadable && document->text == load.overlay->text;
}

const char* kindOfFile(const struct stat& status) {
    return S_ISDIR(status.st_mode)    ? "a directory"
           : S_ISFIFO(status.st_mode) ? "a pipe"
                                      : "not a regular file";
}

void checkPrivateType(Report* report) {
    struct stat status = {};
    if (examine(kPrivateConfig, &status) && !S_ISREG(status.st_mode)) {
        report->addForFile("private-file-type", localPath(kPrivateConfig),
                           fmt::format("it is {}, so the device uses the built-in document instead",
                                       kindOfFile(status)));
    }
}

}  // namespace

void checkTreeFiles(std::span<const Load> loads, Report* report) {
    TreeFiles files = treeFiles();
    reportEach("document-unselectable", files.misspelt,
               fmt::format("nothing reads this file: a system spec document is called {}",
                           nameIn(kSystemSpecName)),
               report);
    reportEach("document-unselectable", files.unselectable,
               fmt::format("no variant selects this document: it must be in {}<variant> or "
                           "{}<variant>, or without a variant in {}",
                           kOdmSpecDirectory, kVendorSpecDirectory, kVendorSpecDirectory),
               report);
    checkShadowed(files, report);
    checkBrokenLinks(files, loads, report);
    if (!loads.front().isPrivateFileOpen) {  // Else a similar name beside it may be a backup.
        reportEach("private-file-name", files.misspeltPrivateFiles,
                   fmt::format("nothing reads this file: the private file is called {}",
                               nameIn(kPrivateConfig)),
                   report);
    }
    std::erase_if(files.privateFiles,
                  [&](const auto& file) { return isCopied(file.second, loads.front()); });
    reportEach("private-file-place", files.privateFiles,
               fmt::format("nothing reads this file: the private file is {}", kPrivateConfig),
               report);
    checkPrivateType(report);
}

}  // namespace kc2::tool
