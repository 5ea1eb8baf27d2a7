/**
 * @file
 * kc2::PixFormat: the pixel formats that the video core (Tamra) knows.
 *
 * Values belong to the numbering of Android's graphics pixel formats (HAL_PIXEL_FORMAT): 0x1, 0x16,
 * 0x2B and 0x36 are Android's public RGBA_8888, RGBA_FP16, RGBA_1010102 and YCBCR_P010, the others
 * are vendor values of the same numbering. They follow no formula and no bit has a meaning of its
 * own: compare whole 32-bit values. _CMPR formats hold compressed pixels with metadata planes
 * beside them; an _N_BATCH format packs N frames into one buffer.
 */
#pragma once

#include <cstdint>

/** The pixel formats of the video core. */
namespace kc2::PixFormat {

#pragma GCC visibility push(default)

inline constexpr uint32_t TAMRA_NV12 = 0x7FA30C04;       ///< 8-bit 4:2:0, interleaved chroma (UV)
inline constexpr uint32_t TAMRA_P010 = 0x36;             ///< 10-bit 4:2:0 in 16-bit samples
inline constexpr uint32_t TAMRA_NV12_CMPR = 0x7FA30C06;  ///< NV12, compressed
inline constexpr uint32_t TAMRA_TP10 = 0x7FA30C09;     ///< 10-bit 4:2:0 tightly packed, compressed
inline constexpr uint32_t RGBA8888 = 0x1;              ///< 8 bits per channel
inline constexpr uint32_t RGBA8888_CMPR = 0xC2000000;  ///< RGBA8888, compressed
inline constexpr uint32_t NV12_LINEAR_FLEX = 0x125;    ///< flexible linear NV12
inline constexpr uint32_t NV12_LINEAR_FLEX_2_BATCH = 0x140;  ///< the same, 2 frames per buffer
inline constexpr uint32_t NV12_LINEAR_FLEX_4_BATCH = 0x141;  ///< the same, 4 frames per buffer
inline constexpr uint32_t NV12_LINEAR_FLEX_8_BATCH = 0x142;  ///< the same, 8 frames per buffer
inline constexpr uint32_t NV12_CMPR_FLEX = 0x126;            ///< flexible compressed NV12
inline constexpr uint32_t NV12_CMPR_FLEX_2_BATCH = 0x128;    ///< the same, 2 frames per buffer
inline constexpr uint32_t NV12_CMPR_FLEX_4_BATCH = 0x129;    ///< the same, 4 frames per buffer
inline constexpr uint32_t NV12_CMPR_FLEX_8_BATCH = 0x130;    ///< the same, 8 frames per buffer
inline constexpr uint32_t TAMRA_NV21 = 0x114;                ///< NV12 with the chroma order V, U
inline constexpr uint32_t RGBA1010102 = 0x2B;                ///< 10 bits per colour, 2 of alpha
inline constexpr uint32_t RGBA1010102_CMPR = 0xC2000001;     ///< RGBA1010102, compressed
inline constexpr uint32_t RGBA_FP16 = 0x16;                  ///< 16-bit floating point per channel

/**
 * Printable name of a pixel-format value, for messages. The base library (libkcodec2_base) defines
 * it; this library only calls it.
 *
 * @param format any 32-bit value, a format or not.
 * @return NUL-terminated text, never null, owned by the base library. Safe from any thread.
 */
const char* Str(unsigned int format);

#pragma GCC visibility pop

}  // namespace kc2::PixFormat
