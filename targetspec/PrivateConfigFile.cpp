// Opening the private configuration file.

#include "targetspec/PrivateConfigFile.h"

#include <sys/stat.h>

#include "targetspec/DeviceFile.h"
#include "targetspec/DevicePaths.h"

namespace kc2 {

namespace {

bool examine(const char* devicePath, struct stat* status) {
    return stat(deviceFile(devicePath).c_str(), status) == 0;
}

// A file that fails while it is read is neither missing nor empty. Some standard libraries report
// that as end of file, too, so the file's size has the last word.
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

// Opening a pipe that nobody writes to waits for ever, with the store's lock held; and the private
// file is the one that anything with the right group can put there.
// A device or a directory is no better.
bool isOtherThanFile(const char* devicePath) {
    struct stat status = {};
    return examine(devicePath, &status) && !S_ISREG(status.st_mode);
}

}  // namespace

bool openPrivateConfig(std::ifstream& stream) {
    if (isOtherThanFile(kPrivateConfig)) {
        stream.setstate(std::ifstream::failbit);
        return false;
    }
    stream.open(deviceFile(kPrivateConfig));
    struct stat testTool = {};
    if (!examine(kCodecTestTool, &testTool) || !isMissingOrEmpty(stream)) {
        return false;
    }
    stream.setstate(std::ifstream::failbit);
    return true;
}

}  // namespace kc2
