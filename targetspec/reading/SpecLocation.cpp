// The path of this device's system spec document.

#include "targetspec/reading/SpecLocation.h"

#include <cstring>

#include "device/BaseLibrary.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "device/Log.h"

namespace kc2 {

std::string locateSystemSpec() {
    const std::string variant = OS::SystemProperty::Get(kVariantProperty, kDefaultVariant);
    std::string path;
    path.reserve(sizeof(kVendorSpecDirectory) + variant.size() + sizeof(kSystemSpecName));
    if (variant == kDefaultVariant) {
        KC2_LOG_ERROR(log::kTagTargetSpec,
                      "Couldn't read target-id, target-id = default is chosen.");
        path.append(kVendorSpecDirectory).append(kSystemSpecName);
        return path;
    }
    path.append(kOdmSpecDirectory).append(variant).append(kSystemSpecName);
    // Also false if the path cannot be examined for another reason than absence: such a document
    // would hardly open, so the vendor document is tried instead.
    struct stat ignored = {};
    if (!examine(path, &ignored)) {
        path.replace(0, std::strlen(kOdmSpecDirectory), kVendorSpecDirectory);
    }
    return path;
}

}  // namespace kc2
