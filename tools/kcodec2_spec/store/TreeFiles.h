// The files of a device tree, by their paths on the device.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kc2::tool {

// "/odm/etc", then "media_x", then "sub": no document is looked for below that. The limit ends
// the search where links lead to a directory above them.
inline constexpr int kTreeDepth = 3;

// Calls visit(path) for every file in a directory of the device and `depth` - 1 levels below it,
// links followed as the device would, in the order of their names.
void visitFiles(const std::string& directory, int depth,
                const std::function<void(const std::string& path)>& visit);

// Every variant that the tree has a document for, as deep as kTreeDepth.
std::set<std::string> variantsInTree();

// A document of the tree, and the variant that would select it.
struct VariantDocument {
    std::string variant;
    std::string path;
    std::string letters;  // The variant's letters and digits, in small letters: to find a near one.
};

// Of a variant, as above.
std::string lettersAndDigitsOf(std::string_view variant);

// Those that exist, /odm before /vendor. A link to nowhere does not.
std::vector<VariantDocument> variantDocumentsInTree();

// Why a path of the device does not open, in words: "it does not exist".
std::string whyNotOpen(const std::string& path);

}  // namespace kc2::tool
