/**
 * @file
 * kc2::Platform::GetUniqueIdForFileDescriptor: which file a descriptor refers to.
 */
#pragma once

#include <cstdint>

namespace kc2::Platform {

#pragma GCC visibility push(default)

/**
 * Identity of the file (for a graphic buffer: of the dma-buf) that an open descriptor refers to.
 * Descriptors of the same file, duplicates included, have the same identity. The descriptor stays
 * the caller's. Safe from any thread.
 *
 * @param fd any value; a descriptor that is not open is reported by one error line with the tag
 *           "KC2Platform".
 * @return the inode number, unique within one file system; 0 when `fd` cannot be examined.
 */
uint64_t GetUniqueIdForFileDescriptor(int fd);

#pragma GCC visibility pop

}  // namespace kc2::Platform
