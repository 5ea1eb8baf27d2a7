// A document that an editor has open: its text, saved or not, and what the check finds in it.

#include "editor/OpenDocument.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "base/DeviceOptions.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "editor/EditorJson.h"

namespace kc2::tool {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMostDocumentBytes = size_t{64} << 20;

// /odm is often a link to /vendor/odm: the editor may have the document there.
std::string rootOfLinkedOdm(const std::string& root) {
    if (fs::path(root).filename() != "vendor") {
        return root;
    }
    DeviceOptions device;
    device.rootDirectory = fs::path(root).parent_path().string();
    applyDeviceOptions(device);
    const bool isLinked = realPath(localPath("/odm")) == realPath(root + "/odm");
    return isLinked ? device.rootDirectory : root;
}

}  // namespace

std::string applyChanges(const Json::Value& changes, PositionEncoding encoding,
                         OpenDocument* document) {
    if (!changes.isArray()) {
        return "contentChanges is not an array";
    }
    for (const Json::Value& change : changes) {
        const Json::Value& text = memberOf(change, "text");
        const Json::Value& range = memberOf(change, "range");
        if (!text.isString()) {
            return "a change has no text";
        }
        if (range.isNull()) {
            document->text = text.asString();
            continue;
        }
        const std::optional<TextPosition> start = positionFrom(memberOf(range, "start"));
        const std::optional<TextPosition> end = positionFrom(memberOf(range, "end"));
        if (!start || !end) {
            return "a range has no start or no end";
        }
        const TextLines lines(document->text, encoding);
        const size_t from = lines.offsetOf(*start);
        const size_t to = std::max(from, lines.offsetOf(*end));
        document->text.replace(from, to - from, text.asString());
        if (document->text.size() > kMostDocumentBytes) {
            document->text = std::string();
            return "the document is larger than 64 MiB";
        }
    }
    return std::string();
}

std::string deviceRootOf(const std::string& path) {
    for (const std::string_view known : {kFallbackSystemSpec, kPrivateConfig}) {
        if (path.ends_with(known)) {
            return path.substr(0, path.size() - known.size());
        }
    }
    // A variant may have slashes, so the directory is the last one of this name.
    for (const std::string directory : {kOdmSpecDirectory, kVendorSpecDirectory}) {
        const size_t at = path.rfind(directory);
        if (at != std::string::npos && path.ends_with(kSystemSpecName)) {
            const std::string root = path.substr(0, at);
            return directory == kOdmSpecDirectory ? rootOfLinkedOdm(root) : root;
        }
    }
    return std::string();
}

std::string realPath(const std::string& path) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? path : real.string();
}

}  // namespace kc2::tool
