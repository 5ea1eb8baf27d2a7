// A file in memory, for a text that the library is to read from a path.

#include "base/MemoryFile.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

namespace kc2::tool {

MemoryFile::MemoryFile(std::string_view text, mode_t mode)
    : mDescriptor(memfd_create("document", MFD_CLOEXEC)) {
    if (mDescriptor == -1) {
        return;
    }
    std::ofstream stream(path(), std::ios::binary);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    mIsWhole = stream.good() && fchmod(mDescriptor, mode) == 0;
}

MemoryFile::~MemoryFile() {
    if (mDescriptor != -1) {
        close(mDescriptor);
    }
}

std::string MemoryFile::path() const {
    return fmt::format("/proc/self/fd/{}", mDescriptor);
}

}  // namespace kc2::tool
