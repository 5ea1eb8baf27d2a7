// What the check finds in the loads of a device tree, with the texts that are not saved yet.

#include "editor/TreeCheck.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/Spelling.h"

namespace kc2::tool {

namespace {

namespace fs = std::filesystem;

std::string newTemporaryDirectory() {
    std::error_code error;
    std::string name = (fs::temp_directory_path(error) / "kcodec2_spec.XXXXXX").string();
    return !error && mkdtemp(name.data()) != nullptr ? name : std::string();
}

bool writeNewFile(const std::string& path, const std::string& text, mode_t mode) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    return stream.good() && chmod(path.c_str(), mode) == 0;  // The check looks at modes, too.
}

}  // namespace

UnsavedTexts::~UnsavedTexts() {
    std::error_code error;
    if (!mDirectory.empty()) {
        fs::remove_all(mDirectory, error);
    }
}

bool UnsavedTexts::add(const OpenDocument& document) {
    struct stat status = {};
    if (stat(document.path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
        readDocumentFile(document.path)->text == document.text) {
        return true;
    }
    mDirectory = mDirectory.empty() ? newTemporaryDirectory() : mDirectory;
    // No name is the start of another one: messages with them are searched.
    const std::string file = mDirectory + "/" + std::to_string(mTexts.size()) + ".json";
    if (mDirectory.empty() || !writeNewFile(file, document.text, status.st_mode & 07777)) {
        return false;
    }
    mTexts.push_back({file, document.path});
    return true;
}

void UnsavedTexts::map(const std::string& root) const {
    const fs::path top = realPath(root);
    for (const Unsaved& unsaved : mTexts) {
        mapFile("/" + fs::path(realPath(unsaved.path)).lexically_relative(top).string(),
                unsaved.file);
    }
}

std::string UnsavedTexts::withDocumentNames(std::string text) const {
    for (const Unsaved& unsaved : mTexts) {
        for (size_t at = 0; (at = text.find(unsaved.file, at)) != std::string::npos;) {
            text.replace(at, unsaved.file.size(), unsaved.path);
            at += unsaved.path.size();
        }
    }
    return text;
}

TreeCheck::TreeCheck(const std::string& root, const std::vector<const OpenDocument*>& open,
                     const KnownSettings& known)
    : mRoot(root) {
    for (const OpenDocument* const document : open) {
        if (!mUnsaved.add(*document)) {
            mOtherTexts.insert(document->uri);
        }
    }
    setUp();
    mChecked = std::make_unique<CheckedVariants>(checkAllVariants(Levels(), known));
}

void TreeCheck::setUp() const {
    DeviceOptions device;
    device.rootDirectory = mRoot;
    applyDeviceOptions(device);
    mUnsaved.map(mRoot);
}

void TreeCheck::play(const Load& load) const {
    setUp();
    playVariant(load.variant);
}

std::vector<const Load*> TreeCheck::loadsOf(const std::string& path) const {
    std::vector<const Load*> loads;
    const std::string real = realPath(path);
    for (const Load& load : mChecked->loads) {
        for (const Document* const document : {load.systemSpec.get(), load.overlay.get()}) {
            if (document != nullptr && !document->isBuiltIn() &&
                realNameOf(document->source.path()) == real) {
                loads.push_back(&load);
            }
        }
    }
    return loads;
}

std::string TreeCheck::realNameOf(const std::string& path) const {
    return realPath(withDocumentNames(path));
}

}  // namespace kc2::tool
