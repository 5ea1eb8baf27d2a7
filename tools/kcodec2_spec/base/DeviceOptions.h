// The options that say which device the tool plays. On a device there are none: it is that device.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kc2::tool {

// The heading of the options in --help.
inline constexpr char kDeviceGroup[] = "The device";

struct DeviceOptions {
    std::string rootDirectory;
    std::vector<std::string> mappings;    // /PREFIX:DIR
    std::vector<std::string> properties;  // NAME=VALUE
    uint32_t logLevel = 0;
    bool isEachVariant = false;
};

// Add options to a command; `options` must outlive the parse.
void addDeviceOptions(CLI::App& command, DeviceOptions* options);
// The same without --rootdir for one of two devices, with `suffix` behind each option's name, and
// --variant for short.
void addSideOptions(CLI::App& command, const std::string& suffix, DeviceOptions* options);
void addLogOption(CLI::App& command, DeviceOptions* options);
void addVariantsOption(CLI::App& command, DeviceOptions* options);

// Sets the device up, in place of one that an earlier call has set up. Call it before the library
// is first used for that device. On a development machine the library writes nothing to a tree that
// the tool is shown; on a device it may seed the private file.
void applyDeviceOptions(const DeviceOptions& options);

// Sets the target variant of the device that the tool plays; on a device it is the device's own.
void playVariant(const std::string& variant);
// Whether the tool plays devices, their files and variants; on a device it is that device alone.
bool canPlayDevices();

// Keeps what the library logs out of the tool's output, and lets it in again. On a device the log
// is the device's own.
void muteLog();
void unmuteLog();

// Receives a line of the library's log: a priority of the Android log, the tag, and the text.
using LogLineSink = std::function<void(int priority, const char* tag, const char* text)>;

// Opens all gates of the log and sends its lines to `sink`, until muteLog() or unmuteLog(). On a
// device the log is the device's own, and `sink` receives nothing.
void captureLog(LogLineSink sink);

}  // namespace kc2::tool
