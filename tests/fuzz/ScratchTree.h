// A device's files in a directory of this machine, for one run of the tool.
#pragma once

#include <string>
#include <vector>

namespace kc2::fuzz {

// Its functions expect the device's paths. Whatever these contain, nothing is written outside the
// tree, and what cannot be created is left out.
class ScratchTree {
public:
    // Removed at exit; after a crash it stays.
    ScratchTree();
    ~ScratchTree();
    ScratchTree(const ScratchTree&) = delete;
    ScratchTree& operator=(const ScratchTree&) = delete;

    const std::string& root() const { return mRoot; }
    // Outside the root: no output may show its content.
    const std::string& outside() const { return mOutside; }

    void writeFile(const std::string& path, const std::string& text) const;
    void makeDirectory(const std::string& path) const;
    void makePipe(const std::string& path) const;
    void makeLink(const std::string& path, const std::string& target) const;
    void hideFromOthers(const std::string& path) const;

    // All files that were written, as paths of this machine.
    std::vector<std::string> files() const;

    void clear() const;

private:
    std::string mRoot;
    std::string mOutside;
};

}  // namespace kc2::fuzz
