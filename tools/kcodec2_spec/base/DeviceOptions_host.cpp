// On a development machine the tool plays the device that its options describe.

#include "base/DeviceOptions.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "base/Text.h"
#include "device/BaseLibrary.h"
#include "device/DevicePaths.h"
#include "hostplatform/HostPlatform.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

const std::map<std::string, uint32_t> kLogLevels = {{"quiet", 0x0}, {"info", 0x2}, {"debug", 0xE}};

// Writes a level as CLI11 reads a number; says what is wrong with one that is none.
std::string toLevelWord(std::string& level) {
    const auto named = kLogLevels.find(level);
    const std::optional<uint32_t> word = named != kLogLevels.end() ? named->second : toWord(level);
    if (!word) {
        return "\"" + level + "\" is neither quiet, info nor debug, nor a 32-bit level word";
    }
    level = std::to_string(*word);
    return std::string();
}

std::string checkMapping(const std::string& mapping) {
    const size_t colon = mapping.find(':');
    if (mapping.empty() || mapping[0] != '/' || colon == std::string::npos) {
        return "\"" + mapping + "\" is not of the form /PREFIX:DIR";
    }
    return CLI::ExistingDirectory(mapping.substr(colon + 1));
}

std::string checkProperty(const std::string& property) {
    const size_t equals = property.find('=');
    if (equals == 0 || equals == std::string::npos) {
        return "\"" + property + "\" is not of the form NAME=VALUE";
    }
    return std::string();
}

void addTreeOptions(CLI::App& command, const std::string& suffix, DeviceOptions* options) {
    command.add_option(
                   "--dirmap" + suffix, options->mappings,
                   "Where one directory of the device lies, in place of the tree's own; repeatable")
            ->type_name("/PREFIX:DIR")
            ->allow_extra_args(false)
            ->check(CLI::Validator(checkMapping, ""))
            ->group(kDeviceGroup);
    command.add_option("--property" + suffix, options->properties,
                       "A system property, such as vendor.media.target_variant; repeatable")
            ->type_name("NAME=VALUE")
            ->allow_extra_args(false)
            ->check(CLI::Validator(checkProperty, ""))
            ->group(kDeviceGroup);
}

void tellIdle(const char* option, const std::string& value, const std::string& why) {
    std::fprintf(stderr, "kcodec2_spec: %s %s has no effect: %s\n", option, escaped(value).c_str(),
                 why.c_str());
}

bool isPrefixOfPath(const std::string& prefix, const std::string& path) {
    return path.starts_with(prefix) && (path.size() == prefix.size() || path[prefix.size()] == '/');
}

// Whether the library comes by the mapping on its way to a file, by name or through a link.
bool isUsed(const std::string& mapping) {
    const size_t colon = mapping.find(':');
    const std::string prefix = std::string(withoutTrailing(mapping.substr(0, colon), '/'));
    const std::string directory = std::string(withoutTrailing(mapping.substr(colon + 1), '/'));
    for (const std::string path : {kOdmSpecDirectory, kVendorSpecDirectory, kFallbackSystemSpec,
                                   kPrivateConfig, kCodecTestTool}) {
        if (isPrefixOfPath(prefix, path) || prefix.starts_with(kOdmSpecDirectory) ||
            prefix.starts_with(kVendorSpecDirectory) ||
            isPrefixOfPath(directory, host::hostPath(path))) {
            return true;
        }
    }
    return false;
}

// A misspelt option would otherwise go unseen: its effect is all that shows it.
void tellIdleOptions(const DeviceOptions& options) {
    for (const std::string& property : options.properties) {
        const std::string name = property.substr(0, property.find('='));
        if (name != kVariantProperty) {
            tellIdle("--property", name,
                     std::string("the library reads ") + kVariantProperty + " only");
        }
    }
    for (const std::string& mapping : options.mappings) {
        if (!isUsed(mapping)) {
            tellIdle("--dirmap", mapping, "the library reads nothing in that directory");
        }
    }
}

}  // namespace

void addDeviceOptions(CLI::App& command, DeviceOptions* options) {
    command.add_option("--rootdir", options->rootDirectory,
                       "Where the device's file system lies (default: this machine's own)")
            ->type_name("DIR")
            ->check(CLI::Validator(CLI::ExistingDirectory).description(""))
            ->group(kDeviceGroup);
    addTreeOptions(command, "", options);
}

void addSideOptions(CLI::App& command, const std::string& suffix, DeviceOptions* options) {
    command.add_option_function<std::string>(
                   "--variant" + suffix,
                   [options](const std::string& variant) {
                       options->properties.push_back(std::string(kVariantProperty) + "=" + variant);
                   },
                   "The target variant, for --property" + suffix + " " + kVariantProperty + "=NAME")
            ->type_name("NAME")
            ->group(kDeviceGroup);
    addTreeOptions(command, suffix, options);
}

void addLogOption(CLI::App& command, DeviceOptions* options) {
    command.add_option(
                   "--log", options->logLevel,
                   "Which info and debug lines the library logs: quiet, info, debug, or a level "
                   "word such as 0x2 (default: quiet)")
            ->type_name("LEVEL")
            ->transform(CLI::Validator(toLevelWord, ""))
            ->group(kDeviceGroup);
}

void addVariantsOption(CLI::App& command, DeviceOptions* options) {
    command.add_flag("--all-variants", options->isEachVariant,
                     "Check with each variant that the device has a document for, and without one")
            ->group(kDeviceGroup);
}

void applyDeviceOptions(const DeviceOptions& options) {
    host::clearMappings();
    host::clearProperties();
    host::setReadOnly(true);
    host::setLogLevel(options.logLevel);
    if (!options.rootDirectory.empty()) {
        host::mapDirectory("/", options.rootDirectory);
    }
    for (const std::string& mapping : options.mappings) {
        const size_t colon = mapping.find(':');
        host::mapDirectory(mapping.substr(0, colon), mapping.substr(colon + 1));
    }
    for (const std::string& property : options.properties) {
        const size_t equals = property.find('=');
        host::setProperty(property.substr(0, equals), property.substr(equals + 1));
    }
    tellIdleOptions(options);
}

void playVariant(const std::string& variant) {
    host::setProperty(kVariantProperty, variant);
}

bool canPlayDevices() {
    return true;
}

void muteLog() {
    host::setLogSink([](int, const char*, const char*) {});
}

void unmuteLog() {
    host::setLogSink(nullptr);
}

void captureLog(LogLineSink sink) {
    host::setLogLevel(kLogLevels.at("debug"));
    updateLogLevel();
    host::setLogSink(std::move(sink));
}

}  // namespace kc2::tool
