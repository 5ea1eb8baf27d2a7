// Fuzz target: `kcodec2_spec log` on any bytes, as text and JSON, with and without documents.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "base/DeviceOptions.h"
#include "log/Log.h"
#include "tests/fuzz/Printed.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/ScratchTree.h"

namespace kc2::fuzz {

namespace {

// A device with a document that has mistakes for the log's lines to name.
void pull() {
    static const ScratchTree tree;
    tree.writeFile("/odm/etc/media_test/video_system_specs.json",
                   R"({"Video": {"Presets": {"a": "x"}, "NimbraModeBitrateTable": [[1]]}})");
    tree.writeFile("/data/vendor/media/video_private_configs.json", "{");
    tool::DeviceOptions device;
    device.rootDirectory = tree.root();
    tool::applyDeviceOptions(device);
    tool::muteLog();
}

std::string written(const uint8_t* data, size_t size) {
    static const int file = memfd_create("log", MFD_CLOEXEC);
    const auto length = static_cast<off_t>(size);
    require(ftruncate(file, length) == 0 && pwrite(file, data, size, 0) == length,
            "the log can be written");
    return "/proc/self/fd/" + std::to_string(file);
}

Printed runLog(const std::string& path, const tool::LogOptions& options) {
    int exitCode = -1;
    Printed printed = printedBy([&] { exitCode = tool::describeLog(path, options); });
    require(exitCode >= 0 && exitCode <= 2, "a log is described, or it is none");
    require(exitCode != 2 || printed.output.empty(), "what is no log is not described");
    requirePlain(printed.errors);
    return printed;
}

}  // namespace

}  // namespace kc2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    [[maybe_unused]] static const bool isPulled = (kc2::fuzz::pull(), true);
    const std::string path = kc2::fuzz::written(data, size);
    const bool hasTree = size % 2 == 1;  // Half of the time: it takes longer.
    const kc2::fuzz::Printed text = kc2::fuzz::runLog(path, {.isAll = true, .hasTree = hasTree});
    kc2::fuzz::requirePlain(text.output);
    kc2::fuzz::requirePlain(kc2::fuzz::runLog(path, {.hasTree = hasTree}).output);
    if (!text.output.empty()) {
        kc2::fuzz::requireJson(
                kc2::fuzz::runLog(path, {.asJson = true, .hasTree = hasTree}).output);
    }
    return 0;
}
