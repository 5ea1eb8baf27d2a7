// Where a file of the device is for this process. The library knows, returns and logs device paths
// only; it calls these functions when it opens or examines one.
//
// In a device build a device path is used as it is, and nothing can change that
// (DeviceFile_device.cpp). In a host build a program may have mapped directories through
// hostplatform/ (DeviceFile_host.cpp). The build chooses the file.
#pragma once

#include <sys/stat.h>

#include <string>

namespace kc2 {

// Path to open for reading or to examine.
std::string localPath(const std::string& devicePath);

// Whether stat() succeeds for the path, whatever kind of file it is. Sets `status` only then.
bool examine(const std::string& devicePath, struct stat* status);

// Path to open for writing; empty, which cannot be opened, if this process must not write.
std::string localPathForWriting(const std::string& devicePath);

}  // namespace kc2
