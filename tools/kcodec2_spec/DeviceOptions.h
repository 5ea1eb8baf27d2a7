// The options that say which device the tool plays. On a device there are none: it is that device.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kc2::tool {

struct DeviceOptions {
    std::string rootDirectory;
    std::vector<std::string> mappings;    // /PREFIX:DIR
    std::vector<std::string> properties;  // NAME=VALUE
    uint32_t logLevel = 0;
};

// Add options to a command; `options` must outlive the parse.
void addDeviceOptions(CLI::App& command, DeviceOptions* options);
void addLogOption(CLI::App& command, DeviceOptions* options);

// Sets the device up. Call it before the library is first used. The tool never writes to a tree
// that it is shown.
void applyDeviceOptions(const DeviceOptions& options);

// Keeps what the library logs from here on out of the tool's output.
void muteLog();

}  // namespace kc2::tool
