// The settings catalogue, with its names ready for a search.
#pragma once

#include "base/NearNames.h"
#include "catalogue/Catalogue.h"

namespace kc2::tool {

struct KnownSettings {
    explicit KnownSettings(Catalogue from);

    Catalogue catalogue;
    NearNames settings{NameKind::Setting};
    NearNames components{NameKind::Component};
};

}  // namespace kc2::tool
