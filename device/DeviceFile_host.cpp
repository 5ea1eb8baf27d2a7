// Host builds: a device path is where the program has mapped it.

#include "device/DeviceFile.h"
#include "hostplatform/HostPlatform.h"

namespace kc2 {

std::string localPath(const std::string& devicePath) {
    return host::hostPath(devicePath);
}

bool examine(const std::string& devicePath, struct stat* status) {
    return stat(host::hostPath(devicePath).c_str(), status) == 0;
}

std::string localPathForWriting(const std::string& devicePath) {
    return host::isReadOnly() ? std::string() : host::hostPath(devicePath);
}

}  // namespace kc2
