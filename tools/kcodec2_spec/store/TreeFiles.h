// The files of a device tree, by their paths on the device.
#pragma once

#include <functional>
#include <set>
#include <string>

namespace kc2::tool {

// "/odm/etc", then "media_x", then "sub": no document is looked for below that. The limit ends
// the search where links lead to a directory above them.
inline constexpr int kTreeDepth = 3;

// Calls visit(path) for every file in a directory of the device and `depth` - 1 levels below it,
// links followed as the device would, in the order of their names. What has a system spec
// document's name is visited like a file, even if it is a directory.
void visitFiles(const std::string& directory, int depth,
                const std::function<void(const std::string& path)>& visit);

// Every variant that the tree has a document for, as deep as kTreeDepth.
std::set<std::string> variantsInTree();

// Whether the tree has a document that a load without a variant may read: by the default path, or
// the fallback.
bool hasDocumentWithoutVariant();

// The link on the way to a path of the device, or at its end, that cannot be followed; empty when
// there is none.
std::string brokenLinkTo(const std::string& path);

// Where a link of the device is on this machine; localPath() follows it.
std::string pathOfLink(const std::string& path);

// Why a path of the device does not open, in words: "it does not exist".
std::string whyNotOpen(const std::string& path);

}  // namespace kc2::tool
