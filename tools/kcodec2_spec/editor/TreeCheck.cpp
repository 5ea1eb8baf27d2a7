// What the check finds in the loads of a device tree, with the texts that are not saved yet.

#include "editor/TreeCheck.h"

#include <sys/stat.h>

#include <filesystem>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/Text.h"

namespace kc2::tool {

// Keeps the document's text if its file has another one. Returns whether it could.
bool TreeCheck::keepText(const OpenDocument& document) {
    struct stat status = {};
    if (stat(document.path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
        hasFileText(document.path, document.text)) {
        return true;
    }
    // The check looks at modes, too.
    auto file = std::make_unique<const MemoryFile>(document.text, status.st_mode & 07777);
    if (!file->isWhole()) {
        return false;
    }
    mUnsaved.push_back({std::move(file), document.path});
    return true;
}

std::string TreeCheck::withDocumentNames(std::string text) const {
    for (const Unsaved& unsaved : mUnsaved) {
        const std::string file = unsaved.file->path();
        for (size_t at = 0; (at = text.find(file, at)) != std::string::npos;) {
            const size_t end = at + file.size();
            const bool isOther = end < text.size() && isDigit(text[end]);  // 1 begins 10.
            const std::string& name = isOther ? file : unsaved.path;
            text.replace(at, file.size(), name);
            at += name.size();
        }
    }
    return text;
}

TreeCheck::TreeCheck(const std::string& root, const std::vector<OpenDocument*>& open,
                     const KnownSettings& known)
    : mRoot(root) {
    for (const OpenDocument* const document : open) {
        if (!keepText(*document)) {
            mOtherTexts.insert(document->uri);
        }
    }
    setUp();
    mChecked = std::make_unique<CheckedVariants>(checkVariants(variantsToCheck(), Levels(), known));
}

void TreeCheck::setUp() const {
    DeviceOptions device;
    device.rootDirectory = mRoot;
    applyDeviceOptions(device);
    const std::filesystem::path top = realPath(mRoot);
    for (const Unsaved& unsaved : mUnsaved) {
        const std::filesystem::path file = realPath(unsaved.path);
        mapFile("/" + file.lexically_relative(top).string(), unsaved.file->path());
    }
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
