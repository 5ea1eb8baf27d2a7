// check --fix: fixed documents in place of the ones that were read.

#include "check/FixFiles.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <vector>

#include "base/OutputFile.h"
#include "base/Print.h"
#include "document/Document.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

namespace fs = std::filesystem;

constexpr size_t kContext = 3;  // Lines around a change.

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        lines.push_back(text.substr(at, end - at));
        at = end;
    }
    return lines;
}

// A tab, a byte order mark and what ends the line stay as they are, so that the diff can be
// applied.
void printLine(char mark, std::string_view line) {
    const bool isEnded = !line.empty() && line.back() == '\n';
    line.remove_suffix(isEnded ? 1 : 0);
    const bool hasReturn = !line.empty() && line.back() == '\r';
    line.remove_suffix(hasReturn ? 1 : 0);
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    const bool isMarked = line.starts_with(kByteOrderMark);
    line.remove_prefix(isMarked ? kByteOrderMark.size() : 0);
    printOut("{}{}", mark, isMarked ? kByteOrderMark : "");
    for (size_t at = 0; at <= line.size();) {
        const size_t tab = std::min(line.find('\t', at), line.size());
        writeOut(escaped(line.substr(at, tab - at)));
        writeOut(tab < line.size() ? "\t" : "");
        at = tab + 1;
    }
    printOut("{}\n{}", hasReturn ? "\r" : "", isEnded ? "" : "\\ No newline at end of file\n");
}

// A file's name in a diff, as patch reads it: one with other characters than plain ones is in
// quotes, and one with a blank ends with a tab.
std::string nameInDiff(const std::string& path) {
    const auto isPlain = [](unsigned char c) {
        return c >= ' ' && c < 0x7F && c != '"' && c != '\\';
    };
    if (std::all_of(path.begin(), path.end(), isPlain)) {
        return path + (path.find(' ') != std::string::npos ? "\t" : "");
    }
    std::string quoted;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        quoted += isPlain(byte) ? std::string(1, c) : fmt::format("\\{:03o}", byte);
    }
    return '"' + quoted + '"';
}

// Gives the new file an extended attribute of the old one. Sets errno when it cannot.
bool keepAttribute(const std::string& path, const char* name, int descriptor) {
    std::string value;
    std::string present;
    const auto read = [name](std::string* into, const auto& get) {
        const ssize_t size = get(name, nullptr, 0);
        into->resize(size > 0 ? static_cast<size_t>(size) : 0);
        return size >= 0 && get(name, into->data(), into->size()) == size;
    };
    if (!read(&value, [&](auto... rest) { return getxattr(path.c_str(), rest...); })) {
        return false;
    }
    const bool isPresent =
            read(&present, [&](auto... rest) { return fgetxattr(descriptor, rest...); });
    return (isPresent && present == value) ||
           fsetxattr(descriptor, name, value.data(), value.size(), 0) == 0;
}

// Returns the first attribute that the new file could not get; empty when it has all.
std::string lostAttribute(const std::string& path, int descriptor) {
    const ssize_t size = listxattr(path.c_str(), nullptr, 0);
    std::string names(size > 0 ? static_cast<size_t>(size) : 0, '\0');
    if (size <= 0 || listxattr(path.c_str(), names.data(), names.size()) != size) {
        return std::string();  // There are none, or the file system does not have them.
    }
    for (size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
        if (!keepAttribute(path, names.c_str() + at, descriptor)) {
            return names.c_str() + at;
        }
    }
    return std::string();
}

std::string whyNeedsForce(const fs::path& path) {
    constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        return std::strerror(errno);
    }
    if (status.st_nlink > 1) {
        return fmt::format(
                "it has {} hard links, and the others would keep the old text; --force fixes this "
                "one",
                status.st_nlink);
    }
    // The mode is the superuser's only hint.
    const bool isReadOnly = (status.st_mode & kAnyWrite) == 0 || access(path.c_str(), W_OK) != 0;
    return isReadOnly ? "it is read-only; --force fixes it" : "";
}

}  // namespace

void printDiff(const std::string& path, const std::string& before, const std::string& after) {
    const std::vector<std::string_view> old = linesOf(before);
    const std::vector<std::string_view> now = linesOf(after);
    const size_t count = std::min(old.size(), now.size());
    const auto nextChange = [&](size_t line) {
        while (line < count && old[line] == now[line]) {
            ++line;
        }
        return line;
    };
    printOut("--- {0}\n+++ {0}\n", nameInDiff(path));
    for (size_t change = nextChange(0); change < count;) {
        const size_t start = change - std::min(change, kContext);
        size_t limit = change;  // After the last change that is near enough for the same hunk.
        for (; change < count && change <= limit + 2 * kContext; change = nextChange(limit)) {
            limit = change + 1;
        }
        const size_t end = std::min(limit + kContext, count);
        printOut("@@ -{0},{1} +{0},{1} @@\n", start + 1, end - start);
        for (size_t line = start; line < end;) {
            if (old[line] == now[line]) {
                printLine(' ', old[line++]);
                continue;
            }
            size_t same = line;
            while (same < end && old[same] != now[same]) {
                printLine('-', old[same++]);
            }
            while (line < same) {
                printLine('+', now[line++]);
            }
        }
    }
}

std::string whyNotFixable(const std::string& path, const FixLimits& limits) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    if (error) {
        return error.message();
    }
    if (!fs::is_regular_file(real, error)) {
        return "it is not a regular file";
    }
    if (!limits.rootDirectory.empty()) {
        const fs::path root = fs::canonical(limits.rootDirectory, error);
        const auto [inRoot, inPath] =
                std::mismatch(root.begin(), root.end(), real.begin(), real.end());
        if (error || inRoot != root.end()) {
            return "it is outside of " + limits.rootDirectory;
        }
    }
    return limits.isForced ? std::string() : whyNeedsForce(real);
}

std::string replaceFile(const std::string& path, const std::string& before,
                        const std::string& after, bool isForced) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);  // A link stays a link.
    struct stat status = {};
    if (error || stat(real.c_str(), &status) != 0) {
        return error ? error.message() : std::strerror(errno);
    }
    std::string lost;
    const auto finish = [&](int descriptor) {
        // Only the superuser can keep another user as the owner.
        [[maybe_unused]] const int owned = fchown(descriptor, status.st_uid, status.st_gid);
        lost = lostAttribute(real, descriptor);
        return (lost.empty() || isForced) && fchmod(descriptor, status.st_mode & 07777) == 0 &&
               fsync(descriptor) == 0;
    };
    const std::string wrong = replaceWhole(real, after, finish, [&] {
        return std::string(hasFileText(real, before) ? "" : "it has changed meanwhile");
    });
    return wrong.empty() || lost.empty() || isForced
                   ? wrong
                   : fmt::format("its attribute {} cannot be kept ({}); --force drops it", lost,
                                 wrong);
}

}  // namespace kc2::tool
