// Device builds: a device path is used as it is.

#include "device/DeviceFile.h"

namespace kc2 {

std::string localPath(const std::string& devicePath) {
    return devicePath;
}

bool examine(const std::string& devicePath, struct stat* status) {
    return stat(devicePath.c_str(), status) == 0;
}

std::string localPathForWriting(const std::string& devicePath) {
    return devicePath;
}

}  // namespace kc2
