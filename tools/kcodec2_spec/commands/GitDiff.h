// The arguments with which git runs a program that shows what differs between two versions of a
// file.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kc2::tool {

struct GitVersion {
    std::string path;  // In the repository.
    std::string file;  // Where git has written this version; /dev/null for none.
};

struct GitVersions {
    GitVersion before;
    GitVersion after;
};

// Reads PATH OLD NEW, as docs/diff.md has them for git difftool, or what git passes to an external
// diff driver: PATH OLD OLD-HEX OLD-MODE NEW NEW-HEX NEW-MODE, and for a renamed file its new path
// and a message. Nothing for any other number.
std::optional<GitVersions> gitVersions(const std::vector<std::string>& arguments);

}  // namespace kc2::tool
