// The identity of the file that a descriptor refers to.

#include "kc2/FileDescriptor.h"

#include <sys/stat.h>

#include "device/Log.h"

namespace kc2::Platform {

uint64_t GetUniqueIdForFileDescriptor(int fd) {
    struct stat status = {};
    if (fstat(fd, &status) != 0) {
        KC2_LOG_ERROR(log::kTagPlatform, "NOTE9: Failed to fstat(%d)", fd);
        return 0;
    }
    return status.st_ino;
}

}  // namespace kc2::Platform
