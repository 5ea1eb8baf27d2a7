/**
 * @file
 * kc2::Platform::IonInfo: allocation parameters of secure memory.
 */
#pragma once

#include <cstdint>

namespace kc2::Platform {

#pragma GCC visibility push(default)

/** Secure-memory parameters of the target. All functions return constants; safe from any thread. */
class IonInfo {
public:
    /**
     * A secure memory domain, named after the content of its buffers. On this target every domain
     * is allocated alike, so any 32-bit value may be passed.
     */
    enum SecureDomain : uint32_t {
        DEFAULT = 0,  ///< any domain: no result of this library depends on it
    };

    IonInfo() = delete;

    /** @return the heap mask to allocate from: 0, no particular heap. */
    static uint32_t HeapMaskFor(SecureDomain domain);

    /** @return the allocation flags: 0, none. */
    static uint32_t AllocFlagsFor(SecureDomain domain);

    /** @return the alignment of buffer sizes and addresses in bytes: 4096, on every kernel. */
    static uint32_t AlignmentFor(SecureDomain domain);
};

#pragma GCC visibility pop

}  // namespace kc2::Platform
