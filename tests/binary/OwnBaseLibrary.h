// The base library's names, defined by the program, and the lines of a load on a device without any
// file: for the programs that differ in where those lines are written.
#pragma once

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "device/BaseLibrary.h"
#include "kc2/FileDescriptor.h"
#include "kc2/PixFormat.h"
#include "kc2/TamraBufferLayout.h"
#include "kc2/TargetSpec.h"
#include "tests/binary/Check.h"

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

namespace kc2::check {

// The lines that were written, as "priority tag: text".
inline std::vector<std::string>& lines() {
    static std::vector<std::string> lines;
    return lines;
}

inline void addLine(int priority, const char* tag, const char* text) {
    lines().push_back(std::to_string(priority) + " " + tag + ": " + text);
}

// Loads a store, calls the functions that log, and checks that exactly those lines were written.
inline void checkLines() {
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

}  // namespace kc2::check
