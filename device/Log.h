/**
 * @file
 * The library's log lines: tags, priorities, the level gate, and the macros that write a line.
 *
 * Error and warning lines are always written. Info and debug lines name a gate mask and are written
 * only while gateIsOpen() returns true. They are macros so that a closed gate evaluates no
 * argument.
 */
#pragma once

#include <android/log.h>

#include "device/BaseLibrary.h"

namespace kc2::log {

inline constexpr char kTagTargetSpec[] = "KC2TargetSpec";
inline constexpr char kTagBufferLayout[] = "Platform_BufferLayout";
inline constexpr char kTagPlatform[] = "KC2Platform";

/** Gate masks: bits of the base library's level word. A line needs one bit of its mask. */
inline constexpr uint32_t kMaskInfo = 0x2;
inline constexpr uint32_t kMaskDebugDetail = 0x4;
inline constexpr uint32_t kMaskDebugHeading = 0x8;

/**
 * Whether a line with `mask` is written at level word `level`: one of the mask's bits is set, some
 * bit of the low byte is set, and the top byte is 0 or bit 25 is set.
 */
constexpr bool gateIsOpen(uint32_t level, uint32_t mask) {
    return (level & mask) != 0 && (level & 0xFF) != 0 &&
           ((level >> 24) == 0 || (level & 0x02000000) != 0);
}

}  // namespace kc2::log

#define KC2_LOG_ERROR(tag, ...) __android_log_print(ANDROID_LOG_ERROR, tag, __VA_ARGS__)
#define KC2_LOG_WARNING(tag, ...) __android_log_print(ANDROID_LOG_WARN, tag, __VA_ARGS__)
#define KC2_LOG_INFO(tag, ...) \
    KC2_LOG_GATED(ANDROID_LOG_INFO, ::kc2::log::kMaskInfo, tag, __VA_ARGS__)
#define KC2_LOG_DEBUG(mask, tag, ...) KC2_LOG_GATED(ANDROID_LOG_DEBUG, mask, tag, __VA_ARGS__)

#define KC2_LOG_GATED(priority, mask, tag, ...)                 \
    do {                                                        \
        if (::kc2::log::gateIsOpen(::kc2::gC2LogLevel, mask)) { \
            __android_log_print(priority, tag, __VA_ARGS__);    \
        }                                                       \
    } while (false)
