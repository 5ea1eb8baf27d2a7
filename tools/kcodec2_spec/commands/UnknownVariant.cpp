// A variant that the device has no document for.

#include "commands/UnknownVariant.h"

#include <fmt/format.h>

#include <set>
#include <string>
#include <vector>

#include "base/Print.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "device/DevicePaths.h"
#include "store/TreeFiles.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

void reportUnknownVariant(const Load& load) {
    if (!load.isVariantSet() || load.hasFirstDocument()) {
        return;
    }
    const std::set<std::string> known = variantsInTree();
    if (known.count(load.variant) != 0) {
        return;
    }
    const std::string near = nearest(load.variant, known);
    const std::string all = joined({known.begin(), known.end()}, ", ");
    printError("there is no document for the variant \"{}\".{}", escaped(load.variant),
               !near.empty()   ? fmt::format(" Did you mean \"{}\"?", escaped(near))
               : known.empty() ? ""
                               : fmt::format(" There are documents for {}.", escaped(all)));
}

}  // namespace kc2::tool
