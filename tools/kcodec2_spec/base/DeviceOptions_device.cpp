// On a device the tool loads that device: nothing to set, and the log is the device's.

#include "base/DeviceOptions.h"

namespace kc2::tool {

bool DeviceOptions::hasVariant() const {
    return false;
}

void addDeviceOptions(CLI::App& /*command*/, DeviceOptions* /*options*/) {}

void addSideOptions(CLI::App& /*command*/, const std::string& /*suffix*/,
                    DeviceOptions* /*options*/) {}

void addLogOption(CLI::App& /*command*/, DeviceOptions* /*options*/) {}

void addVariantsOption(CLI::App& /*command*/, DeviceOptions* /*options*/) {}

std::string whyNoDevice(const DeviceOptions& /*options*/) {
    return std::string();
}

std::string whyUnused(const DeviceOptions& /*options*/) {
    return std::string();
}

void applyDeviceOptions(const DeviceOptions& /*options*/) {}

void mapFile(const std::string& /*devicePath*/, const std::string& /*file*/) {}

void playVariant(const std::string& /*variant*/) {}

bool canPlayDevices() {
    return false;
}

void muteLog() {}

void unmuteLog() {}

void captureLog(LogLineSink /*sink*/) {}

}  // namespace kc2::tool
