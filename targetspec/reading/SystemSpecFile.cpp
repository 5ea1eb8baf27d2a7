// Opening the system spec document.

#include "targetspec/reading/SystemSpecFile.h"

#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "device/Log.h"
#include "targetspec/reading/SpecLocation.h"

namespace kc2 {

std::optional<std::string> openSystemSpec(std::ifstream& stream) {
    std::string path = locateSystemSpec();
    KC2_LOG_INFO(log::kTagTargetSpec, "Parsing system specs file from: %s", path.c_str());
    stream.open(localPath(path));
    if (stream.is_open()) {
        return path;
    }
    KC2_LOG_ERROR(log::kTagTargetSpec, "Failed to open %s", path.c_str());
    KC2_LOG_WARNING(log::kTagTargetSpec, "Falling back to %s", kFallbackSystemSpec);
    stream.open(localPath(kFallbackSystemSpec));
    if (stream.is_open()) {  // Opening it has cleared the stream's failed state.
        return kFallbackSystemSpec;
    }
    KC2_LOG_ERROR(log::kTagTargetSpec, "Failed to open %s... Exit!", kFallbackSystemSpec);
    return std::nullopt;
}

}  // namespace kc2
