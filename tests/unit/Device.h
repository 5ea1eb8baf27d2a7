// A device for one test: its files in a temporary directory, its properties, and its log.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "kc2/TargetSpec.h"

namespace kc2::test {

using Lines = std::vector<std::string>;

inline constexpr char kVariantSpec[] = "/odm/etc/media_test/video_system_specs.json";
inline constexpr char kDefaultSpec[] = "/vendor/etc/media/video_system_specs.json";
inline constexpr char kFallbackSpec[] = "/vendor/etc/video_system_specs.json";
inline constexpr char kPrivateFile[] = "/data/vendor/media/video_private_configs.json";
inline constexpr char kTestTool[] = "/vendor/bin/kcodec2_test";

inline constexpr char kNoVariantLine[] =
        "E/KC2TargetSpec: Couldn't read target-id, target-id = default is chosen.";
inline constexpr char kStreamErrorLine[] = "E/KC2TargetSpec: Couldn't parse json from file stream";

inline constexpr uint32_t kFailed = 0xFFFFFFFF;

// Mapped during its lifetime; the variant is "_test" until the test sets another.
class Device {
public:
    Device();
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    // Where a path of the device is on this machine; creates its directory.
    std::string operator()(const std::string& devicePath) const;
    void write(const std::string& devicePath, const std::string& text) const;
    std::string read(const std::string& devicePath) const;

    // The lines logged since the last call, in the form "E/tag: text".
    Lines takeLog();

private:
    std::string mRoot;
    Lines mLog;
};

void setVariant(const std::string& variant);

// Parses `text` as a document of a file; the status of parseJsonData().
uint32_t parse(TargetSpec& spec, const std::string& text);

// The content of a store, without its status, as text.
std::string contentOf(const TargetSpec& spec);

// Runs `work` in a separate process and returns its lines; fails the test when the process does not
// end normally. Use it for TargetSpec::Get(), which loads once per process.
Lines inOwnProcess(const std::function<Lines()>& work);

}  // namespace kc2::test
