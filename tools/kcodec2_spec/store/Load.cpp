// The two documents that a load of this device reads.

#include "store/Load.h"

#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <optional>
#include <utility>

#include "device/BaseLibrary.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "kc2/TargetSpec.h"
#include "targetspec/reading/PrivateConfigFile.h"
#include "targetspec/reading/SystemSpecFile.h"

namespace kc2::tool {

namespace {

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

Document openedSystemSpec(const std::string& firstPath) {
    if (std::optional<std::string> path = pipeAsSystemSpec(firstPath)) {
        Document document =
                unreadableDocument("system spec", *std::move(path),
                                   "a pipe: a load waits here until something is written into it");
        document.isPipe = true;
        return document;
    }
    std::ifstream stream;
    const std::optional<std::string> path = openSystemSpec(stream);
    return path ? readDocumentStream("system spec", *path, stream) : Document();
}

}  // namespace

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

Load walkLoad() {
    Load load;
    load.variant = OS::SystemProperty::Get(kVariantProperty, kDefaultVariant);
    load.firstPath = TargetSpec::readTargetVariant();
    load.chip = &chipDocumentFor(load.firstPath);

    load.systemSpec = openedSystemSpec(load.firstPath);

    std::ifstream privateFile;
    load.isSeeded =
            openPrivateConfig(privateFile, isTestToolInstalled()) == PrivateSource::SeededBuiltIn;
    load.isPrivateFileOpen = privateFile.is_open();
    if (privateFile.fail()) {
        load.overlay = readDocument("built-in document " + std::to_string(load.chip->number),
                                    std::string(), load.chip->text);
    } else {
        load.overlay = readDocumentStream("private file", kPrivateConfig, privateFile);
    }
    return load;
}

}  // namespace kc2::tool
