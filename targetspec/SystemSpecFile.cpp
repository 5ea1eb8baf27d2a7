// Opening the system spec document.

#include "targetspec/SystemSpecFile.h"

#include "kc2/TargetSpec.h"
#include "log/Log.h"
#include "targetspec/DeviceFile.h"
#include "targetspec/DevicePaths.h"

namespace kc2 {

std::optional<std::string> openSystemSpec(std::ifstream& stream) {
    std::string path = TargetSpec::readTargetVariant();
    KC2_LOG_INFO(log::kTagTargetSpec, "Parsing system specs file from: %s", path.c_str());
    stream.open(deviceFile(path));
    if (stream.is_open()) {
        return path;
    }
    KC2_LOG_ERROR(log::kTagTargetSpec, "Failed to open %s", path.c_str());
    KC2_LOG_WARNING(log::kTagTargetSpec, "Falling back to %s", kFallbackSystemSpec);
    stream.open(deviceFile(kFallbackSystemSpec));
    if (stream.is_open()) {  // Which has cleared the stream's failed state.
        return kFallbackSystemSpec;
    }
    KC2_LOG_ERROR(log::kTagTargetSpec, "Failed to open %s... Exit!", kFallbackSystemSpec);
    return std::nullopt;
}

}  // namespace kc2
