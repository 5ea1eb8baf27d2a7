// Where the directories of the device lie on this machine.

#include <functional>
#include <map>
#include <mutex>
#include <string_view>

#include "hostplatform/HostPlatform.h"

namespace kc2::host {

namespace {

struct DeviceTree {
    std::mutex mutex;
    // Device directory without trailing "/" -> host.
    std::map<std::string, std::string, std::less<>> mappings;
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

}  // namespace

void mapDirectory(const std::string& deviceDirectory, const std::string& hostDirectory) {
    DeviceTree& tree = deviceTree();
    const std::lock_guard<std::mutex> lock(tree.mutex);
    tree.mappings[withoutTrailingSlashes(deviceDirectory)] = withoutTrailingSlashes(hostDirectory);
}

std::string hostPath(const std::string& devicePath) {
    DeviceTree& tree = deviceTree();
    const std::lock_guard<std::mutex> lock(tree.mutex);
    // From the whole path upwards, so that the longest mapped directory is met first.
    for (std::string_view directory = devicePath;;) {
        const auto mapping = tree.mappings.find(directory);
        if (mapping != tree.mappings.end()) {
            return mapping->second + devicePath.substr(directory.size());
        }
        const size_t slash = directory.rfind('/');
        if (slash == std::string_view::npos) {
            return devicePath;
        }
        directory = directory.substr(0, slash);
    }
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
