// The settings catalogue, with its names ready for a search.

#include "catalogue/KnownSettings.h"

#include <utility>

namespace kc2::tool {

KnownSettings::KnownSettings(Catalogue from) : catalogue(std::move(from)) {
    for (const Setting& setting : catalogue.settings()) {
        settings.add({setting.name, setting.section});
    }
    for (const CodecComponent& component : catalogue.components()) {
        components.add({component.name, component.list});
    }
}

}  // namespace kc2::tool
