// Loads each device directory named on standard input as a device would, and prints the status of
// each document. No document may end the process or put a control character into the log.

#include <algorithm>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>

#include "hostplatform/HostPlatform.h"
#include "kc2/TargetSpec.h"
#include "tests/binary/Check.h"

namespace {

constexpr char kDocument[] = "/video_system_specs.json";

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

void checkLine(int /*priority*/, const char* /*tag*/, const char* text) {
    const std::string_view line = text;
    CHECK(std::none_of(line.begin(), line.end(), isControl));
}

uint32_t parse(const std::string& path) {
    kc2::TargetSpec spec;
    std::ifstream stream(path);
    CHECK(stream.is_open());
    const uint32_t status = spec.parseJsonData(stream);
    spec.printSpecifications();
    return status;
}

// Through the system spec document's path.
uint32_t load(const std::string& directory) {
    kc2::host::mapDirectory("/vendor/etc", directory);
    kc2::TargetSpec spec;
    return spec.extractSpecData();
}

}  // namespace

int main() {
    kc2::host::setLogSink(checkLine);
    kc2::host::setLogLevel(0xFFFFFFFF);
    kc2::host::mapDirectory("/", "/nonexistent");
    for (std::string directory; std::getline(std::cin, directory);) {
        std::cout << directory << " " << std::flush;  // Shows which document ended the process.
        const uint32_t status = parse(directory + kDocument);
        CHECK(load(directory) == status);
        std::cout << (status == 0 ? "accepted" : "rejected") << std::endl;
    }
}
