// Host builds: a device path lies where the program has mapped it.

#include "hostplatform/HostPlatform.h"
#include "targetspec/DeviceFile.h"

namespace kc2 {

std::string deviceFile(const std::string& devicePath) {
    return host::hostPath(devicePath);
}

std::string deviceFileForWriting(const std::string& devicePath) {
    return host::isReadOnly() ? std::string() : host::hostPath(devicePath);
}

}  // namespace kc2
