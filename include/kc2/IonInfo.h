/**
 * @file
 * kc2::Platform::IonInfo: allocation parameters of secure memory.
 */
#pragma once

#include <cstdint>

namespace kc2::Platform {

#pragma GCC visibility push(default)

/** Secure-memory parameters of the target. All functions answer constants, from any thread. */
class IonInfo {
public:
    /**
     * A secure memory domain, named by what its buffers hold. On this target every domain is
     * allocated alike, so any 32-bit value may be passed.
     */
    enum SecureDomain : uint32_t {
        DEFAULT = 0,  ///< any domain: no answer of this library depends on it
    };

    IonInfo() = delete;

    /** @return the heap mask to allocate from: 0, no particular heap. */
    static uint32_t HeapMaskFor(SecureDomain domain);

    /** @return the allocation flags: 0, none. */
    static uint32_t AllocFlagsFor(SecureDomain domain);

    /** @return the alignment of buffer sizes and addresses in bytes: 4096, one page. */
    static uint32_t AlignmentFor(SecureDomain domain);
};

#pragma GCC visibility pop

}  // namespace kc2::Platform
