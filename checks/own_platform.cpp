// A program that brings the five platform names itself: the library takes them, and no others.

#include <android/log.h>

#include <cstdarg>
#include <cstring>
#include <string>
#include <vector>

#include "base/BaseLibrary.h"
#include "checks/Check.h"
#include "kc2/FileDescriptor.h"
#include "kc2/PixFormat.h"
#include "kc2/TamraBufferLayout.h"
#include "kc2/TargetSpec.h"

namespace {

std::vector<std::string>& lines() {
    static std::vector<std::string> lines;
    return lines;
}

}  // namespace

extern "C" int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, fmt);
    std::vsnprintf(text, sizeof(text), fmt, arguments);
    va_end(arguments);
    lines().push_back(std::to_string(prio) + " " + tag + ": " + text);
    return 1;
}

namespace kc2 {

uint32_t gC2LogLevel = 0;

void updateLogLevel() {
    gC2LogLevel = 0x2;
}

std::string OS::SystemProperty::Get(const char* name, const char* /*defaultValue*/) {
    return std::strcmp(name, "vendor.media.target_variant") == 0 ? "/nonexistent/orvelle" : "?";
}

const char* PixFormat::Str(unsigned int /*format*/) {
    return "a name of the program's own";
}

}  // namespace kc2

int main() {
    CHECK(kc2::TargetSpec::Get() != nullptr);
    kc2::Platform::TamraBufferLayout::Offset(0xDEAD, kc2::Platform::TamraBufferLayout::Y, 0, 0);
    CHECK(kc2::Platform::GetUniqueIdForFileDescriptor(-1) == 0);

    const std::string spec = "/vendor/etc/media/nonexistent/orvelle/video_system_specs.json";
    const std::string fallback = "/vendor/etc/video_system_specs.json";
    const std::vector<std::string> expected = {
            "4 KC2TargetSpec: Parsing system specs file from: " + spec,
            "6 KC2TargetSpec: Failed to open " + spec,
            "5 KC2TargetSpec: Falling back to " + fallback,
            "6 KC2TargetSpec: Failed to open " + fallback + "... Exit!",
            "4 KC2TargetSpec: Video Core Features:",
            "4 KC2TargetSpec: Video Core Presets:",
            "4 KC2TargetSpec: Pre processing plugins:",
            "4 KC2TargetSpec: Codec plugins:",
            "6 Platform_BufferLayout: a name of the program's own is not a Tamra color format!",
            "6 KC2Platform: NOTE9: Failed to fstat(-1)",
    };
    for (const std::string& line : lines()) {
        std::printf("%s\n", line.c_str());
    }
    CHECK(lines() == expected);
}
