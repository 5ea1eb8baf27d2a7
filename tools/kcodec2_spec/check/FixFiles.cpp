// check --fix: fixed documents in place of the ones that were read.

#include "check/FixFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <vector>

#include "base/OutputFile.h"
#include "base/Print.h"
#include "base/Spelling.h"
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

// A tab and what ends the line stay as they are, so that the diff can be applied.
void printLine(char mark, std::string_view line) {
    const bool isEnded = !line.empty() && line.back() == '\n';
    line.remove_suffix(isEnded ? 1 : 0);
    const bool hasReturn = !line.empty() && line.back() == '\r';
    line.remove_suffix(hasReturn ? 1 : 0);
    printOut("{}", mark);
    for (size_t at = 0; at <= line.size();) {
        const size_t tab = std::min(line.find('\t', at), line.size());
        writeOut(escaped(line.substr(at, tab - at)));
        writeOut(tab < line.size() ? "\t" : "");
        at = tab + 1;
    }
    printOut("{}\n{}", hasReturn ? "\r" : "", isEnded ? "" : "\\ No newline at end of file\n");
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
    printOut("--- {0}\n+++ {0}\n", escaped(path));
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

std::string whyNotFixable(const std::string& path, const std::string& rootDirectory) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    if (error) {
        return error.message();
    }
    if (!fs::is_regular_file(real, error)) {
        return "it is not a regular file";
    }
    if (!rootDirectory.empty()) {
        const fs::path root = fs::canonical(rootDirectory, error);
        const auto [inRoot, inPath] =
                std::mismatch(root.begin(), root.end(), real.begin(), real.end());
        if (error || inRoot != root.end()) {
            return "it is outside of " + rootDirectory;
        }
    }
    return std::string();
}

std::string replaceFile(const std::string& path, const std::string& before,
                        const std::string& after) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);  // A link stays a link.
    struct stat status = {};
    if (error || stat(real.c_str(), &status) != 0) {
        return error ? error.message() : std::strerror(errno);
    }
    const auto finish = [&](int descriptor) {
        // Only the superuser can keep another user as the owner.
        [[maybe_unused]] const int owned = fchown(descriptor, status.st_uid, status.st_gid);
        return fchmod(descriptor, status.st_mode & 07777) == 0 && fsync(descriptor) == 0;
    };
    return replaceWhole(real, after, finish, [&] {
        const bool isSame = readDocumentFile(real)->text == before;
        return std::string(isSame ? "" : "it has changed meanwhile");
    });
}

}  // namespace kc2::tool
