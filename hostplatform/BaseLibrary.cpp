// Stand-ins for the base library: log level word, system properties, pixel-format names.

#include "device/BaseLibrary.h"

#include <atomic>
#include <cstdio>
#include <functional>
#include <map>
#include <mutex>
#include <string_view>

#include "hostplatform/HostPlatform.h"
#include "kc2/PixFormat.h"
#include "platform/FormatRows.h"

namespace kc2 {

namespace {

std::atomic<uint32_t> sNextLogLevel{0};

std::mutex sPropertyMutex;

// Never destroyed: a property may still be read while the process exits.
std::map<std::string, std::string, std::less<>>& properties() {
    static auto& properties = *new std::map<std::string, std::string, std::less<>>();
    return properties;
}

}  // namespace

uint32_t gC2LogLevel = 0;

void updateLogLevel() {
    gC2LogLevel = sNextLogLevel;
}

void host::setLogLevel(uint32_t level) {
    sNextLogLevel = level;
}

void host::setProperty(const std::string& name, const std::string& value) {
    const std::lock_guard<std::mutex> lock(sPropertyMutex);
    properties()[name] = value;
}

void host::clearProperties() {
    const std::lock_guard<std::mutex> lock(sPropertyMutex);
    properties().clear();
}

std::string OS::SystemProperty::Get(const char* name, const char* defaultValue) {
    const std::lock_guard<std::mutex> lock(sPropertyMutex);
    const auto property = properties().find(std::string_view(name));
    return property != properties().end() ? property->second : defaultValue;
}

const char* PixFormat::Str(unsigned int format) {
    for (const Platform::FormatRow& row : Platform::kFormatRows) {
        if (*row.format == format) {
            return row.name;
        }
    }
    thread_local char text[sizeof("0x12345678")];
    std::snprintf(text, sizeof(text), "0x%X", format);
    return text;
}

}  // namespace kc2
