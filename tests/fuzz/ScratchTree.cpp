// A device's files in a directory of this machine, for one run of the tool.

#include "tests/fuzz/ScratchTree.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "tests/fuzz/Require.h"

namespace kc2::fuzz {

namespace {

namespace fs = std::filesystem;

bool isReal(const fs::path& path, fs::file_type type) {
    std::error_code error;
    return fs::symlink_status(path, error).type() == type;
}

// The device's path under `root`, with its directories created; empty when it names no file, or
// when the path contains a link.
fs::path madeRoomFor(const std::string& root, const std::string& path) {
    std::error_code error;
    fs::path place = root;
    for (const fs::path& name : fs::path(path).relative_path()) {
        const bool isCut = name.native().find('\0') != std::string::npos;  // Possibly to "..".
        if (name == ".." || name == "." || name.empty() || isCut) {
            return {};
        }
        if (place != root) {
            fs::create_directory(place, error);
        }
        if (!isReal(place, fs::file_type::directory)) {
            return {};
        }
        place /= name;
    }
    return place == root ? fs::path() : place;
}

}  // namespace

ScratchTree::ScratchTree() {
    constexpr char kInMemory[] = "/dev/shm";  // On a disk, files would take most of the time.
    const fs::path place = fs::is_directory(kInMemory) ? kInMemory : fs::temp_directory_path();
    std::string directory = (place / "kcodec2_fuzz.XXXXXX").string();
    require(mkdtemp(directory.data()) != nullptr, "a directory can be created");
    mRoot = directory + "/root";
    mOutside = directory + "/outside.json";
    fs::create_directory(mRoot);
}

ScratchTree::~ScratchTree() {
    std::error_code error;
    fs::remove_all(fs::path(mRoot).parent_path(), error);
}

void ScratchTree::writeFile(const std::string& path, const std::string& text) const {
    const fs::path place = madeRoomFor(mRoot, path);
    if (!place.empty() && !isReal(place, fs::file_type::symlink)) {
        std::ofstream(place, std::ios::binary) << text;
    }
}

void ScratchTree::makeDirectory(const std::string& path) const {
    std::error_code error;
    fs::create_directory(madeRoomFor(mRoot, path), error);
}

void ScratchTree::makePipe(const std::string& path) const {
    mkfifo(madeRoomFor(mRoot, path).c_str(), S_IRUSR | S_IWUSR);
}

void ScratchTree::makeLink(const std::string& path, const std::string& target) const {
    std::error_code error;
    fs::create_symlink(target, madeRoomFor(mRoot, path), error);
}

void ScratchTree::hideFromOthers(const std::string& path) const {
    std::error_code error;
    const fs::path place = madeRoomFor(mRoot, path);
    if (isReal(place, fs::file_type::regular)) {
        fs::permissions(place, fs::perms::owner_read | fs::perms::owner_write, error);
    }
}

std::vector<std::string> ScratchTree::files() const {
    std::vector<std::string> files;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(mRoot, error)) {
        if (entry.is_regular_file(error) && !entry.is_symlink(error)) {
            files.push_back(entry.path().string());
        }
    }
    return files;
}

void ScratchTree::clear() const {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(mRoot, error)) {
        fs::remove_all(entry.path(), error);
    }
}

}  // namespace kc2::fuzz
