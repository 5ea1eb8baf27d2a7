// Writes a file: afterwards it is complete, or as it was before.

#include "base/OutputFile.h"

#include <fmt/format.h>

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

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(written > 0 ? static_cast<size_t>(written) : 0);
    }
    return true;
}

std::string errorText() {
    return std::strerror(errno);
}

std::string writeTo(const std::string& path, const std::string& text) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        return errorText();
    }
    const std::string wrong = writeAll(descriptor, text) ? "" : errorText();
    return close(descriptor) != 0 && wrong.empty() ? errorText() : wrong;
}

// The mode that a new file gets by default.
mode_t usualMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

}  // namespace

std::string writeOutputFile(const std::string& path, const std::string& text) {
    struct stat status = {};
    const bool isThere = stat(path.c_str(), &status) == 0;
    std::error_code error;
    if (isThere ? !S_ISREG(status.st_mode) : fs::is_symlink(path, error)) {
        return writeTo(path, text);  // A link to no file yet, too: it stays a link.
    }
    error.clear();
    const fs::path real = isThere ? fs::canonical(path, error) : fs::path(path);
    if (error) {
        return std::strerror(error.value());
    }
    const mode_t mode = isThere ? status.st_mode & 07777 : usualMode();
    return replaceWhole(
            real, text, [mode](int descriptor) { return fchmod(descriptor, mode) == 0; },
            [] { return std::string(); });
}

std::string replaceWhole(const fs::path& path, const std::string& text,
                         const std::function<bool(int descriptor)>& finish,
                         const std::function<std::string()>& whyNot) {
    std::string beside = path.parent_path() / fmt::format(".{}.XXXXXX", path.filename().string());
    const int descriptor = mkstemp(beside.data());
    if (descriptor < 0) {
        return errorText();
    }
    std::string wrong = writeAll(descriptor, text) && finish(descriptor) ? "" : errorText();
    if (close(descriptor) != 0 && wrong.empty()) {
        wrong = errorText();
    }
    if (wrong.empty()) {
        wrong = whyNot();
    }
    if (wrong.empty() && std::rename(beside.c_str(), path.c_str()) != 0) {
        wrong = errorText();
    }
    if (!wrong.empty()) {
        unlink(beside.c_str());
    }
    return wrong;
}

}  // namespace kc2::tool
