// The files of a device tree, by their paths on the device.

#include "store/TreeFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>

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

// The first part of the path, from its start, that cannot be examined; empty when all can.
std::string missingPartOf(const std::string& path) {
    for (size_t slash = 0; slash != std::string::npos;) {
        slash = path.find('/', slash + 1);
        const std::string part = path.substr(0, slash);
        struct stat ignored = {};
        if (!examine(part, &ignored)) {
            return part;
        }
    }
    return std::string();
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

std::string lettersAndDigitsOf(std::string_view text) {
    std::string result = inSmallLetters(text);
    std::erase_if(result, [](unsigned char c) { return std::isalnum(c) == 0; });
    return result;
}

std::vector<VariantDocument> variantDocumentsInTree() {
    std::vector<VariantDocument> documents;
    const std::set<std::string> variants = variantsInTree();
    for (const std::string directory : {kOdmSpecDirectory, kVendorSpecDirectory}) {
        for (const std::string& variant : variants) {
            const std::string path = directory + variant + kSystemSpecName;
            std::error_code error;
            if (fs::exists(localPath(path), error)) {
                documents.push_back({variant, path, lettersAndDigitsOf(variant)});
            }
        }
    }
    return documents;
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
    const std::string missing = missingPartOf(path);
    return !missing.empty() && isLink(missing) ? missing : std::string();
}

std::string pathOfLink(const std::string& path) {
    const size_t slash = path.rfind('/');
    return std::string(withoutTrailing(localPath(slash == 0 ? "/" : path.substr(0, slash)), '/')) +
           path.substr(slash);
}

std::string whyNotOpen(const std::string& path) {
    const std::string missing = missingPartOf(path);
    const std::string host = localPath(missing.empty() ? path : missing);
    const int file = open(host.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    const int error = errno;
    if (file >= 0) {
        close(file);
        return std::string();
    }
    if (!missing.empty()) {
        return reasonOf(host.empty() ? ELOOP : error, missing, missing == path);
    }
    return error == EACCES ? "no permission to read it" : std::strerror(error);
}

}  // namespace kc2::tool
