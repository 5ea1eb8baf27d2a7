// The text of a document, read from a file stream.

#include "targetspec/reading/DocumentText.h"

#include <algorithm>
#include <cerrno>

#include "targetspec/reading/Limits.h"

namespace kc2 {

namespace {

// Whether a stream that has reported its end is really there. Some standard libraries report a
// failed read as the end of the file, and half a document could pass for a whole one. So read once
// more: at the end nothing happens, while a read that fails again sets errno, as nothing else here
// does.
bool isAtEnd(std::ifstream& stream) {
    stream.clear();
    errno = 0;
    return stream.peek() == std::ifstream::traits_type::eof() && !stream.bad() && errno == 0;
}

}  // namespace

bool DocumentText::read(std::ifstream& stream) {
    const std::ios::iostate exceptions = stream.exceptions();
    const std::ios::iostate state = stream.rdstate();
    if ((exceptions & state) != 0) {
        return true;  // It has thrown at its end, and restoring its state would throw again.
    }
    stream.exceptions(std::ios::goodbit);
    stream.clear();
    stream.read(mBlock, sizeof(mBlock));
    mShortText = {mBlock, static_cast<size_t>(stream.gcount())};
    if (stream.good()) {
        // The standard library may know the file's size: one allocation instead of many, which
        // would leave holes in the heap that make later allocations slower.
        const std::streamsize rest = std::max<std::streamsize>(stream.rdbuf()->in_avail(), 0);
        mLongText.reserve(mShortText.size() + std::min<size_t>(rest, kMaxTextBytes));
        mLongText.assign(mShortText.begin(), mShortText.end());
    }
    while (stream.good() && mLongText.size() <= kMaxTextBytes) {
        stream.read(mBlock, sizeof(mBlock));
        mLongText.append(mBlock, static_cast<size_t>(stream.gcount()));
    }
    const bool isRead = !stream.bad() && (!stream.eof() || isAtEnd(stream));
    stream.clear(state);
    stream.exceptions(exceptions);
    return isRead;
}

}  // namespace kc2
