// The base version of this library.

#include "kc2/KC2PlatformVersion.h"

namespace kc2 {

std::string KC2PlatformVersion::getBaseVersion() {
    return "Wed Jul 2 12:55:48 2025 -0700";
}

}  // namespace kc2
