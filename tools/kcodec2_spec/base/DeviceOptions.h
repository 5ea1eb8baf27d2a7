// The options that name the device to load. In a build for a device there are none: the tool looks
// at the device that it runs on.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
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
    std::optional<std::string> variant;   // Set by --variant.
    std::vector<std::string> mappings;    // /PREFIX:DIR
    std::vector<std::string> properties;  // NAME=VALUE
    uint32_t logLevel = 0;
    bool isEachVariant = false;

    // Whether the options name the files of a device.
    bool hasFiles() const { return !rootDirectory.empty() || !mappings.empty(); }
    // Whether they set the target variant.
    bool hasVariant() const;
};

// Add options to a command; `options` must outlive the parse.
void addDeviceOptions(CLI::App& command, DeviceOptions* options);
// The same without --rootdir, for one of two devices: `suffix` follows each option's name.
void addSideOptions(CLI::App& command, const std::string& suffix, DeviceOptions* options);
void addLogOption(CLI::App& command, DeviceOptions* options);
void addVariantsOption(CLI::App& command, DeviceOptions* options);

// Why these options do not say which device to load; empty when they do. A development machine is
// no device, so its own files are read only for --rootdir /.
std::string whyNoDevice(const DeviceOptions& options);
// Why these options have no effect on a command that loads a device only if its files are named;
// empty when they have.
std::string whyUnused(const DeviceOptions& options);

// Sets up the device, in place of one that an earlier call has set up. Call it before the library
// is first used for that device. On a development machine the library writes nothing to the tree;
// on a device it may seed the private file.
void applyDeviceOptions(const DeviceOptions& options);

// Uses a file of this machine for one file of the device; does nothing in a build for a device. No
// part of the device path may be a link.
void mapFile(const std::string& devicePath, const std::string& file);

// Sets the target variant; does nothing in a build for a device.
void playVariant(const std::string& variant);
// Whether the tool can load any device: its files, its variants. False in a build for a device.
bool canPlayDevices();

// Keeps what the library logs out of the tool's output, and lets it in again. On a device both do
// nothing: the log is the device's.
void muteLog();
void unmuteLog();

// Receives a line of the library's log: a priority of the Android log, the tag, and the text.
using LogLineSink = std::function<void(int priority, const char* tag, const char* text)>;

// Opens all gates of the log and sends its lines to `sink`, until muteLog() or unmuteLog(). On a
// device the log is the device's own, and `sink` receives nothing.
void captureLog(LogLineSink sink);

}  // namespace kc2::tool
