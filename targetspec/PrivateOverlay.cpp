// Merging the private configuration over the system spec, and seeding its file.

#include <cstring>
#include <fstream>
#include <string>

#include "kc2/TargetSpec.h"
#include "targetspec/DeviceFile.h"
#include "targetspec/DevicePaths.h"
#include "targetspec/PrivateConfigFile.h"

namespace kc2 {

namespace {

// Nobody hears of a failure, but half a document must not stay behind: every later load would
// reject it, while an empty file is seeded again.
void seedPrivateConfig(const char* text) {
    const std::string path = deviceFileForWriting(kPrivateConfig);
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

}  // namespace

uint32_t TargetSpec::extractPrivateData() {
    const char* const builtInDocument = getPrivateConfig();
    std::ifstream privateFile;
    if (openPrivateConfig(privateFile)) {
        seedPrivateConfig(builtInDocument);
    }
    return parseJsonData(privateFile);
}

}  // namespace kc2
