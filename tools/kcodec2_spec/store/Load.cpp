// The two documents that a load of this device reads.

#include "store/Load.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>

#include "device/BaseLibrary.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "kc2/TargetSpec.h"
#include "targetspec/reading/PrivateConfigFile.h"
#include "targetspec/reading/SystemSpecFile.h"

namespace kc2::tool {

namespace {

DocumentId systemSpecAt(const std::string& devicePath) {
    return {"system spec", devicePath, localPath(devicePath)};
}

// The path of the system spec document that a load would open, where that is a pipe. A load waits
// there until somebody writes into it; the tool must not.
std::optional<std::string> pipeAsSystemSpec(const std::string& firstPath) {
    for (const std::string& path : {firstPath, std::string(kFallbackSystemSpec)}) {
        const std::string file = localPath(path);
        struct stat status = {};
        if (stat(file.c_str(), &status) == 0 && S_ISFIFO(status.st_mode)) {
            return path;
        }
        if (access(file.c_str(), R_OK) == 0) {
            break;
        }
    }
    return std::nullopt;
}

std::unique_ptr<Document> unreadPipe(const std::string& path) {
    auto document = Document::unreadable(
            systemSpecAt(path), "a pipe: a load waits here until something is written into it");
    document->isPipe = true;
    return document;
}

std::unique_ptr<Document> openedSystemSpec(const std::string& firstPath) {
    if (const std::optional<std::string> path = pipeAsSystemSpec(firstPath)) {
        return unreadPipe(*path);
    }
    std::ifstream stream;
    const std::optional<std::string> path = openSystemSpec(stream);
    return path ? readDocumentStream(systemSpecAt(*path), stream) : nullptr;
}

}  // namespace

bool Load::isVariantSet() const {
    return variant != kDefaultVariant;
}

std::string variantIn(const std::string& path) {
    for (const std::string directory : {kOdmSpecDirectory, kVendorSpecDirectory}) {
        const size_t around = directory.size() + std::string(kSystemSpecName).size();
        if (path.starts_with(directory) && path.ends_with(kSystemSpecName) &&
            path.size() >= around) {
            return path.substr(directory.size(), path.size() - around);
        }
    }
    return std::string();
}

std::string odmPathOf(const std::string& variant) {
    return kOdmSpecDirectory + variant + kSystemSpecName;
}

std::unique_ptr<Document> readFallback() {
    struct stat status = {};
    if (!examine(kFallbackSystemSpec, &status)) {
        return nullptr;
    }
    if (S_ISFIFO(status.st_mode)) {
        return unreadPipe(kFallbackSystemSpec);
    }
    std::ifstream stream(localPath(kFallbackSystemSpec));
    const int error = errno;
    return stream.is_open()
                   ? readDocumentStream(systemSpecAt(kFallbackSystemSpec), stream)
                   : Document::unreadable(systemSpecAt(kFallbackSystemSpec), std::strerror(error));
}

std::unique_ptr<Document> readBuiltIn(const ChipDocument& chip) {
    return std::make_unique<Document>(DocumentId{fmt::format("built-in document {}", chip.number)},
                                      chip.text);
}

Load readLoad() {
    Load load;
    load.variant = OS::SystemProperty::Get(kVariantProperty, kDefaultVariant);
    load.firstPath = TargetSpec::readTargetVariant();
    load.chip = &chipDocumentFor(load.firstPath);

    load.systemSpec = openedSystemSpec(load.firstPath);

    std::ifstream privateFile;
    load.isSeeded = openPrivateConfig(privateFile, isTestToolInstalled());
    load.isPrivateFileOpen = privateFile.is_open();
    load.overlay = privateFile.fail() ? readBuiltIn(*load.chip)
                                      : readDocumentStream({"private file", kPrivateConfig,
                                                            localPath(kPrivateConfig)},
                                                           privateFile);
    return load;
}

std::string describeSystemSpec(const Load& load) {
    if (!load.hasSystemSpec()) {
        return fmt::format("none: neither {} nor {} opens", load.firstPath, kFallbackSystemSpec);
    }
    const Document& document = *load.systemSpec;
    return fmt::format("{}{}{}", document.path,
                       load.hasFirstDocument()
                               ? ""
                               : fmt::format(" (fallback: {} does not open)", load.firstPath),
                       document.isPipe       ? fmt::format(" ({})", document.whyNotReadable)
                       : document.isAccepted ? ""
                                             : " (rejected)");
}

std::string describeOverlay(const Load& load) {
    if (load.hasPrivateFile()) {
        return fmt::format("{}{}", load.overlay->path,
                           load.overlay->isAccepted ? "" : " (rejected)");
    }
    return fmt::format("{} ({}; {} {})", load.overlay->origin,
                       *load.chip->chip == '\0'
                               ? "no chip's name in the path"
                               : fmt::format("\"{}\" in the path", load.chip->chip),
                       kPrivateConfig, load.isPrivateFileOpen ? "is empty" : "does not open");
}

}  // namespace kc2::tool
