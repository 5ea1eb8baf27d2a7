// What the rules of a check look at: documents, and the library's merge of them.

#include "check/Checked.h"

#include <string_view>

#include "base/Spelling.h"
#include "device/DevicePaths.h"
#include "kc2/TargetSpecKeys.h"

namespace kc2::tool {

namespace {

std::vector<const Document*> documentsOf(const Load& load) {
    if (load.hasSystemSpec()) {
        return {load.systemSpec.get(), load.overlay.get()};
    }
    return {load.overlay.get()};
}

}  // namespace

Checked::Checked(const Document& alone, const KnownSettings& knownSettings)
    : known(knownSettings), load(nullptr), documents({&alone}) {}

Checked::Checked(const Load& ofLoad, const KnownSettings& knownSettings)
    : known(knownSettings), load(&ofLoad), documents(documentsOf(ofLoad)) {
    if (documents.size() == 2) {
        mMerged = merge(documents[0]->content, documents[1]->content);
    }
}

bool resetLevels(const Checked& checked) {
    const Node* const section =
            checked.documents.size() == 2 ? checked.documents[1]->section(targetSpecDV) : nullptr;
    const auto& before = checked.before().dvTierLevels;
    const auto isReset = [&](const char* key, int32_t level) {
        return level != 0 && findMember(*section, key) == nullptr;
    };
    return section != nullptr && before && checked.documents[1]->content.dvTierLevels &&
           (isReset(targetSpecDVMaxMainTierLevel, before->main) ||
            isReset(targetSpecDVMaxHighTierLevel, before->high));
}

bool isPrivateFile(const Document& document) {
    const std::string_view name = kPrivateConfig;
    const std::string_view file = name.substr(name.rfind('/') + 1);
    return document.path == file || document.path.ends_with("/" + std::string(file));
}

}  // namespace kc2::tool
