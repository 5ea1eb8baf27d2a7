// A file in memory, for a text that the library is to read from a path.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace kc2::tool {

class MemoryFile {
public:
    explicit MemoryFile(std::string_view text, mode_t mode = 0644);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    // Whether it has the text. It has not where memory or descriptors have run out.
    bool isWhole() const { return mIsWhole; }

    // It can be opened while this exists.
    std::string path() const;

private:
    int mDescriptor;
    bool mIsWhole = false;
};

}  // namespace kc2::tool
