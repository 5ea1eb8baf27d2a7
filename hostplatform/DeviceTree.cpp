// Where the directories of the device are on this machine.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <map>
#include <mutex>
#include <optional>
#include <string>
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
    while (directory.ends_with('/')) {
        directory.pop_back();
    }
    return directory;
}

bool isIn(const std::string& directory, const std::string& path) {
    return path.starts_with(directory) &&
           (path.size() == directory.size() || path[directory.size()] == '/');
}

using Mappings = std::map<std::string, std::string>;

// As many as the kernel follows on the way to one file.
constexpr int kMaxLinks = 40;

// Resolves a device path link by link, as the device would: an absolute link starts again at the
// device's root, not at this machine's. This machine's kernel would follow such a link out of the
// device tree, and a correct tree would seem to be empty, or to have this machine's files.
class PathResolver {
public:
    PathResolver(const Mappings& mappings, const std::string& devicePath)
        : mMappings(mappings), mRest(devicePath) {}

    // Returns an empty path, which cannot be opened, for one that leads out of the device tree, and
    // for links in a loop.
    std::string run() {
        while (skipSlashes()) {
            const std::string name = mRest.substr(0, mRest.find('/'));
            mRest.erase(0, name.size());
            if (name == ".") {
                continue;
            }
            if (name == "..") {
                if (!isDirectory(hostOf(mDone).value_or("/"))) {
                    return hostOf(mDone).value_or(mDone) + "/.." + mRest;
                }
                mDone.erase(std::min(mDone.rfind('/'), mDone.size()));
                continue;
            }
            if (std::optional<std::string> end = enter(mDone + "/" + name)) {
                return *end;
            }
        }
        return hostOf(mDone.empty() ? "/" : mDone).value_or(mIsInTree ? "" : mDone) + mEnd;
    }

private:
    // Whether a component is left. A slash at the very end requires a directory and is kept.
    bool skipSlashes() {
        const size_t start = std::min(mRest.find_first_not_of('/'), mRest.size());
        mEnd = start == mRest.size() && start > 0 ? "/" : "";
        mRest.erase(0, start);
        return !mRest.empty();
    }

    // Goes on to `path`, or to where it links. A result is the resolved path.
    std::optional<std::string> enter(const std::string& path) {
        const std::optional<std::string> host = hostOf(path);
        if (mMappings.contains(path) || leadsToMapping(path)) {
            mIsInTree = mIsInTree || host.has_value();
            mDone = path;
            return std::nullopt;
        }
        if (!host) {
            return mIsInTree ? std::string() : path + mRest;
        }
        mIsInTree = true;
        char target[PATH_MAX];
        const ssize_t length = readlink(host->c_str(), target, sizeof(target));
        if (length < 0 && errno != EINVAL) {
            return *host + mRest;  // This machine then fails for the same reason.
        }
        if (length < 0) {
            mDone = path;
            return std::nullopt;
        }
        if (++mLinks > kMaxLinks) {
            return std::string();
        }
        mRest.insert(0, target, static_cast<size_t>(length));
        if (target[0] == '/') {
            mDone.clear();
        }
        return std::nullopt;
    }

    static bool isDirectory(const std::string& path) {
        struct stat status = {};
        return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    }

    // A mapped directory exists even if its parents are not in the device tree.
    bool leadsToMapping(const std::string& path) const {
        return std::any_of(mMappings.begin(), mMappings.end(), [&](const auto& mapping) {
            return mapping.first.size() > path.size() && isIn(mapping.first, path + mRest);
        });
    }

    // Of two mapped directories that contain the path, the longer one is later in the map.
    std::optional<std::string> hostOf(const std::string& path) const {
        std::optional<std::string> host;
        for (const auto& [directory, hostDirectory] : mMappings) {
            if (isIn(directory, path)) {
                host.emplace(hostDirectory).append(path, directory.size());
            }
        }
        return host;
    }

    const Mappings& mMappings;
    std::string mDone;  // A device path free of links, without a slash at its end.
    std::string mRest;  // What follows it.
    std::string mEnd;
    int mLinks = 0;
    bool mIsInTree = false;
};

}  // namespace

void mapDirectory(const std::string& deviceDirectory, const std::string& hostDirectory) {
    DeviceTree& tree = deviceTree();
    const std::lock_guard<std::mutex> lock(tree.mutex);
    tree.mappings[withoutTrailingSlashes(deviceDirectory)] = withoutTrailingSlashes(hostDirectory);
}

void clearMappings() {
    DeviceTree& tree = deviceTree();
    const std::lock_guard<std::mutex> lock(tree.mutex);
    tree.mappings.clear();
}

std::string hostPath(const std::string& devicePath) {
    DeviceTree& tree = deviceTree();
    const std::lock_guard<std::mutex> lock(tree.mutex);
    return tree.mappings.empty() ? devicePath : PathResolver(tree.mappings, devicePath).run();
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
