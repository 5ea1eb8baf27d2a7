// Device builds: a device path lies where it says.

#include "targetspec/DeviceFile.h"

namespace kc2 {

std::string deviceFile(const std::string& devicePath) {
    return devicePath;
}

std::string deviceFileForWriting(const std::string& devicePath) {
    return devicePath;
}

}  // namespace kc2
