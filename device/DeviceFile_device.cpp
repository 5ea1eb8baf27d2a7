// Device builds: a device path lies where it says.

#include "device/DeviceFile.h"

namespace kc2 {

std::string localPath(const std::string& devicePath) {
    return devicePath;
}

std::string localPathForWriting(const std::string& devicePath) {
    return devicePath;
}

}  // namespace kc2
