// Opening and seeding the private configuration file.

#include "targetspec/reading/PrivateConfigFile.h"

#include <cstring>
#include <string>

#include "device/DeviceFile.h"
#include "device/DevicePaths.h"

namespace kc2 {

namespace {

// A file that cannot be read is neither missing nor empty. Some standard libraries report that as
// end of file, too, so the file's size decides.
bool isMissingOrEmpty(std::ifstream& privateFile) {
    if (!privateFile.is_open()) {
        return true;
    }
    if (privateFile.peek() != std::ifstream::traits_type::eof() || privateFile.bad()) {
        return false;
    }
    struct stat status = {};
    return examine(kPrivateConfig, &status) && status.st_size == 0;
}

}  // namespace

bool isTestToolInstalled() {
    struct stat ignored = {};
    return examine(kCodecTestTool, &ignored);
}

bool openPrivateConfig(std::ifstream& stream, bool isTestToolInstalled) {
    struct stat status = {};
    if (examine(kPrivateConfig, &status) && !S_ISREG(status.st_mode)) {
        stream.setstate(std::ifstream::failbit);
        return false;
    }
    stream.open(localPath(kPrivateConfig));
    if (isTestToolInstalled && isMissingOrEmpty(stream)) {
        stream.setstate(std::ifstream::failbit);
        return true;
    }
    return false;
}

void seedPrivateConfig(const char* text) {
    const std::string path = localPathForWriting(kPrivateConfig);
    std::ofstream file(path);
    if (!file.is_open()) {
        return;
    }
    file.write(text, static_cast<std::streamsize>(std::strlen(text)));
    file.close();
    if (file.fail()) {
        std::ofstream(path).close();  // Opening empties it.
    }
}

}  // namespace kc2
