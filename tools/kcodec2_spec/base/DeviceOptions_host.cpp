// On a development machine the tool loads the device that its options name.

#include "base/DeviceOptions.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "base/NearNames.h"
#include "base/Print.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "device/BaseLibrary.h"
#include "device/DevicePaths.h"
#include "hostplatform/HostPlatform.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

const std::map<std::string, uint32_t> kLogLevels = {{"quiet", 0x0}, {"info", 0x2}, {"debug", 0xE}};

// Writes a level as CLI11 reads a number. Returns what is wrong with the level; empty when nothing
// is.
std::string toLevelWord(std::string& level) {
    const auto named = kLogLevels.find(level);
    const std::optional<uint32_t> word = named != kLogLevels.end() ? named->second : toWord(level);
    if (!word) {
        return fmt::format("\"{}\" is neither quiet, info nor debug, nor a 32-bit level word",
                           level);
    }
    level = std::to_string(*word);
    return std::string();
}

std::string checkMapping(const std::string& mapping) {
    const size_t colon = mapping.find(':');
    if (mapping.empty() || mapping[0] != '/' || colon == std::string::npos) {
        return fmt::format("\"{}\" is not of the form /PREFIX:DIR", mapping);
    }
    return CLI::ExistingDirectory(mapping.substr(colon + 1));
}

std::string nameOfProperty(const std::string& property) {
    return property.substr(0, property.find('='));
}

// Whether someone may have meant the property that the library reads.
bool isNearVariantProperty(const std::string& name) {
    constexpr size_t kMostMistakes = 4;
    std::string letters = readAs(name);
    letters.erase(std::remove(letters.begin(), letters.end(), '_'), letters.end());
    return editDistance(name, kVariantProperty, kMostMistakes) <= kMostMistakes ||
           letters.find("targetvariant") != std::string::npos;
}

std::string checkProperty(const std::string& property) {
    const size_t equals = property.find('=');
    if (equals == 0 || equals == std::string::npos) {
        return fmt::format("\"{}\" is not of the form NAME=VALUE", property);
    }
    const std::string name = nameOfProperty(property);
    if (name != kVariantProperty && isNearVariantProperty(name)) {
        return fmt::format("the library does not read {}. Did you mean {}?", name,
                           kVariantProperty);
    }
    return std::string();
}

bool isPrefixOfPath(const std::string& prefix, const std::string& path) {
    return path.starts_with(prefix) && (path.size() == prefix.size() || path[prefix.size()] == '/');
}

// Whether the mapping changes which file the library opens, directly or through a link.
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

// A misspelt option shows only in what it does not do, so options without effect are reported.
void reportUnused(const DeviceOptions& options) {
    for (const std::string& property : options.properties) {
        const std::string name = nameOfProperty(property);
        if (name != kVariantProperty) {
            printError("--property {} has no effect: the library reads only {}", escaped(name),
                       kVariantProperty);
        }
    }
    for (const std::string& mapping : options.mappings) {
        if (!isUsed(mapping)) {
            printError("--dirmap {} has no effect: the library reads nothing in that directory",
                       escaped(mapping));
        }
    }
}

}  // namespace

bool DeviceOptions::hasVariant() const {
    return variant || std::any_of(properties.begin(), properties.end(), [](const auto& property) {
               return nameOfProperty(property) == kVariantProperty;
           });
}

void addDeviceOptions(CLI::App& command, DeviceOptions* options) {
    command.add_option("--rootdir", options->rootDirectory, "Root of the device's file system")
            ->type_name("DIR")
            ->check(CLI::Validator(CLI::ExistingDirectory).description(""))
            ->group(kDeviceGroup);
    addSideOptions(command, "", options);
}

void addSideOptions(CLI::App& command, const std::string& suffix, DeviceOptions* options) {
    const auto add = [&](const char* name, auto* value, const char* form,
                         const std::string& description) {
        return command.add_option(name + suffix, *value, description)
                ->type_name(form)
                ->group(kDeviceGroup);
    };
    CLI::Option* const variant =
            add("--variant", &options->variant, "NAME",
                fmt::format("The target variant: the value of {}", kVariantProperty));
    add("--dirmap", &options->mappings, "/PREFIX:DIR",
        "Use DIR for one directory of the device, instead of the tree's; repeatable")
            ->allow_extra_args(false)
            ->check(CLI::Validator(checkMapping, ""));
    add("--property", &options->properties, "NAME=VALUE",
        fmt::format("Set a system property; only {} is read; repeatable", kVariantProperty))
            ->allow_extra_args(false)
            ->check(CLI::Validator(checkProperty, ""))
            ->excludes(variant);
}

void addLogOption(CLI::App& command, DeviceOptions* options) {
    command.add_option("--log", options->logLevel,
                       "Which info and debug lines the library logs: quiet (the default), info, "
                       "debug, or a level word such as 0x2")
            ->type_name("LEVEL")
            ->transform(CLI::Validator(toLevelWord, ""))
            ->group(kDeviceGroup);
}

void addVariantsOption(CLI::App& command, DeviceOptions* options) {
    command.add_flag("--all-variants", options->isEachVariant,
                     "Check with each variant that the device has a document for, without one, and "
                     "the fallback")
            ->group(kDeviceGroup);
}

std::string whyNoDevice(const DeviceOptions& options) {
    return options.hasFiles() ? std::string()
                              : "--rootdir DIR must name the root of the device's file system "
                                "(--rootdir / is this machine's own)";
}

std::string whyUnused(const DeviceOptions& options) {
    if (options.hasFiles() || (!options.variant && options.properties.empty())) {
        return std::string();
    }
    return fmt::format("{} has no effect without --rootdir or --dirmap",
                       options.variant ? "--variant" : "--property");
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
        host::setProperty(nameOfProperty(property), property.substr(property.find('=') + 1));
    }
    if (options.variant) {
        playVariant(*options.variant);
    }
    reportUnused(options);
}

void mapFile(const std::string& devicePath, const std::string& file) {
    host::mapDirectory(devicePath, file);
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
