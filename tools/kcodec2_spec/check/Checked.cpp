// What the rules of a check look at: documents, and the library's merge of them.

#include "check/Checked.h"

#include <string_view>
#include <tuple>

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

Checked::Checked(const Document& alone, const KnownSettings& knownSettings, const TreeNames* ofTree)
    : known(knownSettings), documents({&alone}), treeNames(ofTree) {}

Checked::Checked(const Load& ofLoad, const KnownSettings& knownSettings,
                 const std::vector<VariantDocument>* ofVariants, const TreeNames* ofTree)
    : known(knownSettings),
      load(&ofLoad),
      documents(documentsOf(ofLoad)),
      variantDocuments(ofVariants),
      treeNames(ofTree) {
    if (documents.size() == 2) {
        mMerged = merge(documents[0]->content, documents[1]->content);
    }
}

std::vector<ChangedLevel> changedLevels(const Checked& checked) {
    const Document& last = *checked.documents.back();
    const Node* const section = last.section(targetSpecDV);
    const bool areSetTwice = checked.documents.size() == 2 && last.content.dvTierLevels &&
                             checked.documents.front()->content.dvTierLevels;
    if (!areSetTwice || section == nullptr) {
        return {};
    }
    const auto& before = checked.before().dvTierLevels;
    const auto& after = checked.whole().dvTierLevels;
    std::vector<ChangedLevel> changed;
    for (const auto& [key, from, to] :
         {std::tuple(targetSpecDVMaxMainTierLevel, before->main, after->main),
          std::tuple(targetSpecDVMaxHighTierLevel, before->high, after->high)}) {
        if (from != to) {
            changed.push_back({key, from, to, findMember(*section, key)});
        }
    }
    return changed;
}

bool isPrivateFile(const Document& document) {
    const std::string_view name = kPrivateConfig;
    const std::string_view file = name.substr(name.rfind('/') + 1);
    return document.path == file || document.path.ends_with("/" + std::string(file));
}

}  // namespace kc2::tool
