// One side of kcodec2_spec diff: what is loaded, and the store after the load.

#include "commands/DiffSide.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include "base/MemoryFile.h"
#include "base/Print.h"
#include "commands/UnknownVariant.h"
#include "device/DevicePaths.h"
#include "store/Load.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// Repeats the steps for the store, then for what each of them set.
void loadStore(const LoadSteps& steps, Loaded* loaded) {
    loaded->systemSpecOrigin = steps.systemSpecOrigin;
    loaded->store = std::make_unique<TargetSpec>();
    steps.systemSpec(*loaded->store);
    steps.overlay(*loaded->store);
    loaded->sections = sectionsOf(*loaded->store, steps);
}

Loaded loadTree(const Side& side) {
    DeviceOptions device = side.device;
    device.rootDirectory = side.path;
    applyDeviceOptions(device);
    const Load load = readLoad();
    reportUnknownVariant(load);
    Loaded loaded = {};
    loaded.title = fmt::format("{} (variant {})", side.path, load.variant);
    loaded.systemSpec = describeSystemSpec(load);
    loaded.overlay = describeOverlay(load);
    loaded.isTree = true;
    loaded.isRejected =
            load.hasSystemSpec() && !load.systemSpec->isPipe && !load.systemSpec->isAccepted;
    loadStore(deviceSteps(load), &loaded);
    return loaded;
}

// The part of git's path that names the chip: the device path at its end, or else all of it.
std::string devicePathIn(const std::string& gitPath) {
    const std::string path = fmt::format("/{}", gitPath);
    size_t start = 0;
    for (const char* const directory : {kOdmSpecDirectory, kVendorSpecDirectory}) {
        const size_t found = path.rfind(directory);
        start = found != std::string::npos ? std::max(start, found) : start;
    }
    return path.substr(start);
}

// The path that a load would open on the device that this side plays.
std::string pathForChip(const Side& side) {
    DeviceOptions device = side.device;
    device.rootDirectory = side.path;  // Not a directory, so this device has no files.
    applyDeviceOptions(device);
    return side.gitPath.empty() || device.hasVariant() ? TargetSpec::readTargetVariant()
                                                       : devicePathIn(side.gitPath);
}

std::optional<Loaded> loadDocument(const Side& side) {
    const bool isNone = side.path == kNoDocument;
    const std::unique_ptr<Document> document = readDocumentFile(side.path);
    if (!document->isReadable) {
        printError("{} cannot be read: {}", escaped(side.path), document->whyNotReadable);
        return std::nullopt;
    }
    const std::string chipPath = pathForChip(side);
    const ChipDocument& chip = chipDocumentFor(chipPath);
    // The library reads documents from files, and each step runs more than once, while a pipe gives
    // its text only once.
    const MemoryFile file(document->text);
    LoadSteps steps;
    steps.systemSpec = [&file, isNone](TargetSpec& store) {
        if (!isNone) {
            std::ifstream stream(file.path());
            store.parseJsonData(stream);
        }
    };
    steps.overlay = [&chip](TargetSpec& store) {
        const MemoryFile builtIn(chip.text);
        std::ifstream stream(builtIn.path());
        store.parseJsonData(stream);
    };
    steps.systemSpecOrigin = "document";
    steps.overlayOrigin = fmt::format("built-in document {}", chip.number);
    Loaded loaded = {};
    loaded.title = side.title.empty() ? side.path : side.title;
    loaded.isRejected = !isNone && !document->isAccepted;
    loaded.systemSpec =
            isNone ? "none"
                   : fmt::format("{}{}", loaded.title, loaded.isRejected ? " (rejected)" : "");
    loaded.overlay = steps.overlayOrigin;
    loadStore(steps, &loaded);
    return loaded;
}

}  // namespace

std::optional<Loaded> loadSide(const Side& side) {
    if (!std::filesystem::is_directory(side.path)) {
        return loadDocument(side);
    }
    if (!canPlayDevices()) {
        printError("{} is a directory: on a device, diff compares only documents",
                   escaped(side.path));
        return std::nullopt;
    }
    return loadTree(side);
}

}  // namespace kc2::tool
