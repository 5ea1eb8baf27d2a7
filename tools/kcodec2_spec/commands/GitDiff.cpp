// The arguments with which git runs a program that shows what differs between two versions of a
// file.

#include "commands/GitDiff.h"

namespace kc2::tool {

std::optional<GitVersions> gitVersions(const std::vector<std::string>& arguments) {
    constexpr size_t kDifftool = 3;
    constexpr size_t kDriver = 7;
    constexpr size_t kDriverRename = 9;
    switch (arguments.size()) {
        case kDifftool:
            return GitVersions{{arguments[0], arguments[1]}, {arguments[0], arguments[2]}};
        case kDriver:
            return GitVersions{{arguments[0], arguments[1]}, {arguments[0], arguments[4]}};
        case kDriverRename:
            return GitVersions{{arguments[0], arguments[1]}, {arguments[7], arguments[4]}};
        default:
            return std::nullopt;
    }
}

}  // namespace kc2::tool
