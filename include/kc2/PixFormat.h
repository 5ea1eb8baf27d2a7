/**
 * @file
 * kc2::PixFormat: the pixel formats that the video core (Tamra) knows.
 *
 * Values belong to the numbering of Android's graphics pixel formats (HAL_PIXEL_FORMAT); those
 * without Android's name are vendor values. They follow no formula, and single bits mean nothing:
 * compare whole 32-bit values. The comment after each format lists the planes of its buffers;
 * `kcodec2_spec formats` prints them with the format's colour-format number.
 */
#pragma once

#include <cstdint>

/** The pixel formats of the video core. */
namespace kc2::PixFormat {

#pragma GCC visibility push(default)

inline constexpr uint32_t TAMRA_NV12 = 0x7FA30C04;           ///< Y, UV
inline constexpr uint32_t TAMRA_P010 = 0x36;                 ///< Y, UV; Android's YCBCR_P010
inline constexpr uint32_t TAMRA_NV12_CMPR = 0x7FA30C06;      ///< Y, UV, Y_META, UV_META
inline constexpr uint32_t TAMRA_TP10 = 0x7FA30C09;           ///< Y, UV, Y_META, UV_META
inline constexpr uint32_t RGBA8888 = 0x1;                    ///< RGB; Android's RGBA_8888
inline constexpr uint32_t RGBA8888_CMPR = 0xC2000000;        ///< RGB, RGB_META
inline constexpr uint32_t NV12_LINEAR_FLEX = 0x125;          ///< Y, UV
inline constexpr uint32_t NV12_LINEAR_FLEX_2_BATCH = 0x140;  ///< Y, UV
inline constexpr uint32_t NV12_LINEAR_FLEX_4_BATCH = 0x141;  ///< Y, UV
inline constexpr uint32_t NV12_LINEAR_FLEX_8_BATCH = 0x142;  ///< Y, UV
inline constexpr uint32_t NV12_CMPR_FLEX = 0x126;            ///< Y, UV, Y_META, UV_META
inline constexpr uint32_t NV12_CMPR_FLEX_2_BATCH = 0x128;    ///< Y, UV, Y_META, UV_META
inline constexpr uint32_t NV12_CMPR_FLEX_4_BATCH = 0x129;    ///< Y, UV, Y_META, UV_META
inline constexpr uint32_t NV12_CMPR_FLEX_8_BATCH = 0x130;    ///< Y, UV, Y_META, UV_META
inline constexpr uint32_t TAMRA_NV21 = 0x114;                ///< Y, UV
inline constexpr uint32_t RGBA1010102 = 0x2B;                ///< RGB; Android's RGBA_1010102
inline constexpr uint32_t RGBA1010102_CMPR = 0xC2000001;     ///< RGB, RGB_META
inline constexpr uint32_t RGBA_FP16 = 0x16;                  ///< RGB; Android's RGBA_FP16

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
