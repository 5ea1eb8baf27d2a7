// Where a file of the device lies for this process. The library knows, returns and logs device
// paths only; it asks here at the moment it touches one.
//
// In a device build a device path lies where it says, and nothing can change that
// (DeviceFile_device.cpp). In a host build a program may have mapped directories through
// hostplatform/ (DeviceFile_host.cpp). The build chooses the file.
#pragma once

#include <sys/stat.h>

#include <string>

namespace kc2 {

// Path to open for reading or to examine.
std::string localPath(const std::string& devicePath);

// Whether stat() answers for what lies there, of whatever kind it is.
bool examine(const std::string& devicePath, struct stat* status);

// Path to open for writing; one that cannot be opened when this process must not write.
std::string localPathForWriting(const std::string& devicePath);

}  // namespace kc2
