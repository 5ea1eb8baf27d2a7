// A file that a command writes: it is there whole, or as it was before.

#include "report/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace kc2::tool {

namespace {

namespace fs = std::filesystem;

// Writes all of it and closes the file. Returns 0, or errno.
int writeAndClose(int descriptor, std::string_view text) {
    int wrong = descriptor < 0 ? errno : 0;
    while (wrong == 0 && !text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<size_t>(written));
        } else if (errno != EINTR) {
            wrong = errno;
        }
    }
    if (descriptor >= 0 && close(descriptor) != 0 && wrong == 0) {
        wrong = errno;
    }
    return wrong;
}

// The mode of a file that a program makes without a wish of its own.
mode_t usualMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

int replace(const std::string& path, const std::string& text, mode_t mode) {
    const fs::path file(path);
    std::string beside = file.parent_path() / ("." + file.filename().string() + ".XXXXXX");
    const int descriptor = mkstemp(beside.data());
    if (descriptor < 0) {
        return errno;
    }
    int wrong = fchmod(descriptor, mode) != 0 ? errno : 0;
    const int notWritten = writeAndClose(descriptor, text);
    wrong = wrong != 0 ? wrong : notWritten;
    if (wrong == 0 && std::rename(beside.c_str(), path.c_str()) != 0) {
        wrong = errno;
    }
    if (wrong != 0) {
        unlink(beside.c_str());
    }
    return wrong;
}

}  // namespace

std::string writeOutputFile(const std::string& path, const std::string& text) {
    struct stat status = {};
    const bool isThere = stat(path.c_str(), &status) == 0;
    int wrong = 0;
    if (isThere && !S_ISREG(status.st_mode)) {
        wrong = writeAndClose(open(path.c_str(), O_WRONLY | O_CLOEXEC), text);
    } else {
        std::error_code error;
        const fs::path real = isThere ? fs::canonical(path, error) : fs::path(path);
        wrong = error ? error.value()
                      : replace(real, text, isThere ? status.st_mode & 07777 : usualMode());
    }
    return wrong != 0 ? std::strerror(wrong) : std::string();
}

}  // namespace kc2::tool
