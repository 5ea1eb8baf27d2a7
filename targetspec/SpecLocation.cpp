// Target variant -> path of the system spec document to try first.

#include <sys/stat.h>

#include <string>

#include "base/BaseLibrary.h"
#include "kc2/TargetSpec.h"
#include "log/Log.h"
#include "targetspec/DeviceFile.h"
#include "targetspec/DevicePaths.h"

namespace kc2 {

std::string TargetSpec::readTargetVariant() {
    const std::string variant = OS::SystemProperty::Get(kVariantProperty, kDefaultVariant);
    if (variant == kDefaultVariant) {
        KC2_LOG_ERROR(log::kTagTargetSpec,
                      "Couldn't read target-id, target-id = default is chosen.");
        return std::string(kVendorSpecDirectory) + kSystemSpecName;
    }
    std::string candidate = kOdmSpecDirectory + variant + kSystemSpecName;
    // A query that fails for another reason than absence answers false too: a document that cannot
    // be examined would hardly open, and the vendor document then gets its chance.
    struct stat ignored = {};
    if (stat(deviceFile(candidate).c_str(), &ignored) == 0) {
        return candidate;
    }
    return kVendorSpecDirectory + variant + kSystemSpecName;
}

}  // namespace kc2
