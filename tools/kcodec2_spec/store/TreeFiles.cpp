// The files of a device tree, by their paths on the device.

#include "store/TreeFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>

#include "base/Spelling.h"
#include "base/Text.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "store/Load.h"

namespace kc2::tool {

namespace {

namespace fs = std::filesystem;

std::set<std::string> namesIn(const std::string& directory) {
    std::set<std::string> names;
    std::error_code error;
    for (fs::directory_iterator child(localPath(directory), error), end; !error && child != end;
         child.increment(error)) {
        names.insert(child->path().filename().string());
    }
    return names;
}

// Whether the path is a link, though it cannot be followed.
bool isLink(const std::string& path) {
    struct stat status = {};
    return lstat(pathOfLink(path).c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

std::string reasonOf(int error, const std::string& part, bool isWhole) {
    const std::string what = isWhole ? "it" : part;
    switch (error) {
        case ELOOP:
            return what + " is a link in a loop, or one that leads out of the tree";
        case EACCES:
            return "no permission to look at " + part;
        case ENAMETOOLONG:
            return "the path is too long";
        case ENOENT:
            return what + (isLink(part) ? " is a link to nowhere" : " does not exist");
        default:
            return std::strerror(error);
    }
}

}  // namespace

void visitFiles(const std::string& directory, int depth,
                const std::function<void(const std::string& path)>& visit) {
    for (const std::string& name : namesIn(directory)) {
        const std::string path = directory + "/" + name;
        std::error_code error;
        // A directory in place of a document is selected like one.
        if (path.ends_with(kSystemSpecName) || !fs::is_directory(localPath(path), error)) {
            visit(path);
        } else if (depth > 1) {
            visitFiles(path, depth - 1, visit);
        }
    }
}

std::set<std::string> variantsInTree() {
    std::set<std::string> variants;
    for (const std::string directory : {kOdmSpecDirectory, kVendorSpecDirectory}) {
        visitFiles(directory.substr(0, directory.rfind('/')), kTreeDepth,
                   [&](const std::string& path) { variants.insert(variantIn(path)); });
    }
    variants.erase("");  // Of what is not a variant's document.
    variants.erase(kDefaultVariant);
    return variants;
}

bool hasDocumentWithoutVariant() {
    const std::string withoutVariant = std::string(kVendorSpecDirectory) + kSystemSpecName;
    const std::string paths[] = {withoutVariant, kFallbackSystemSpec};
    return std::any_of(std::begin(paths), std::end(paths), [](const std::string& path) {
        struct stat ignored = {};
        return examine(path, &ignored) || !brokenLinkTo(path).empty();
    });
}

std::string brokenLinkTo(const std::string& path) {
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        struct stat ignored = {};
        if (!examine(part, &ignored)) {
            return isLink(part) ? part : std::string();
        }
        if (slash == std::string::npos) {
            return std::string();
        }
    }
}

std::string pathOfLink(const std::string& path) {
    const size_t slash = path.rfind('/');
    return std::string(withoutTrailing(localPath(slash == 0 ? "/" : path.substr(0, slash)), '/')) +
           path.substr(slash);
}

std::string whyNotOpen(const std::string& path) {
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        const std::string host = localPath(part);
        struct stat status = {};
        if (host.empty() || stat(host.c_str(), &status) != 0) {
            return reasonOf(host.empty() ? ELOOP : errno, part, slash == std::string::npos);
        }
        if (slash == std::string::npos) {
            const int file = open(host.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
            const int error = errno;
            if (file >= 0) {
                close(file);
                return std::string();
            }
            return error == EACCES ? "no permission to read it" : std::strerror(error);
        }
    }
}

}  // namespace kc2::tool
