/**
 * @file
 * kc2::KC2PlatformVersion: the base version of this library.
 */
#pragma once

#include <string>

namespace kc2 {

#pragma GCC visibility push(default)

/** The base version that the library was built from. */
class KC2PlatformVersion {
public:
    KC2PlatformVersion() = delete;

    /** @return "Wed Jul 2 12:55:48 2025 -0700", a new string per call. Safe from any thread. */
    static std::string getBaseVersion();
};

#pragma GCC visibility pop

}  // namespace kc2
