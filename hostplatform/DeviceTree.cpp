// Where the directories of the device lie on this machine.

#include <map>
#include <mutex>
#include <utility>

#include "hostplatform/HostPlatform.h"

namespace kc2::host {

namespace {

struct DeviceTree {
    std::mutex mutex;
    // Device directory without trailing "/" -> host.
    std::map<std::string, std::string> mappings;
    bool isReadOnly = false;
};

// Never destroyed: a file may still be opened while the process exits.
DeviceTree& deviceTree() {
    static DeviceTree& deviceTree = *new DeviceTree();
    return deviceTree;
}

std::string withoutTrailingSlashes(std::string directory) {
    directory.erase(directory.find_last_not_of('/') + 1);
    return directory;
}

bool liesIn(const std::string& directory, const std::string& path) {
    return path.starts_with(directory) &&
           (path.size() == directory.size() || path[directory.size()] == '/');
}

}  // namespace

void mapDirectory(const std::string& deviceDirectory, const std::string& hostDirectory) {
    DeviceTree& tree = deviceTree();
    const std::lock_guard<std::mutex> lock(tree.mutex);
    tree.mappings[withoutTrailingSlashes(deviceDirectory)] = withoutTrailingSlashes(hostDirectory);
}

std::string hostPath(const std::string& devicePath) {
    DeviceTree& tree = deviceTree();
    const std::lock_guard<std::mutex> lock(tree.mutex);
    const std::pair<const std::string, std::string>* mapping = nullptr;
    for (const auto& candidate : tree.mappings) {
        if (liesIn(candidate.first, devicePath)) {
            mapping = &candidate;  // Of two that hold the path, the longer one comes later.
        }
    }
    if (mapping == nullptr) {
        return devicePath;
    }
    const auto& [directory, hostDirectory] = *mapping;
    std::string path;
    path.reserve(hostDirectory.size() + devicePath.size() - directory.size());
    path.append(hostDirectory).append(devicePath, directory.size());
    return path;
}

void setReadOnly(bool readOnly) {
    DeviceTree& tree = deviceTree();
    const std::lock_guard<std::mutex> lock(tree.mutex);
    tree.isReadOnly = readOnly;
}

bool isReadOnly() {
    DeviceTree& tree = deviceTree();
    const std::lock_guard<std::mutex> lock(tree.mutex);
    return tree.isReadOnly;
}

}  // namespace kc2::host
