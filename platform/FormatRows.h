// The pixel formats of the video core: one row each. The load-time format table, FormatMap() and
// the printable names on a development machine are all derived from these rows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kc2/PixFormat.h"
#include "kc2/TamraBufferLayout.h"

namespace kc2::Platform {

// Up to four planes, in their order in a buffer.
struct PlaneList {
    size_t count;
    TamraBufferLayout::PlaneID planes[4];

    constexpr const TamraBufferLayout::PlaneID* begin() const { return planes; }
    constexpr const TamraBufferLayout::PlaneID* end() const { return planes + count; }
};

inline constexpr PlaneList kYuvPlanes = {2, {TamraBufferLayout::Y, TamraBufferLayout::UV}};
inline constexpr PlaneList kYuvAndMetaPlanes = {
        4,
        {TamraBufferLayout::Y, TamraBufferLayout::UV, TamraBufferLayout::Y_META,
         TamraBufferLayout::UV_META}};
inline constexpr PlaneList kRgbPlanes = {1, {TamraBufferLayout::RGB}};
inline constexpr PlaneList kRgbAndMetaPlanes = {
        2, {TamraBufferLayout::RGB, TamraBufferLayout::RGB_META}};

struct FormatRow {
    const uint32_t* format;  // A pointer, so that the constants are emitted into the library.
    char name[32];           // The constant's name.
    uint32_t colorFormat;    // The video core's own number.
    PlaneList planes;
};

// clang-format off
inline constexpr FormatRow kFormatRows[] = {
    {&PixFormat::TAMRA_NV12,               "TAMRA_NV12",                0, kYuvPlanes},
    {&PixFormat::TAMRA_P010,               "TAMRA_P010",                3, kYuvPlanes},
    {&PixFormat::TAMRA_NV12_CMPR,          "TAMRA_NV12_CMPR",           1, kYuvAndMetaPlanes},
    {&PixFormat::TAMRA_TP10,               "TAMRA_TP10",                5, kYuvAndMetaPlanes},
    {&PixFormat::RGBA8888,                 "RGBA8888",                  6, kRgbPlanes},
    {&PixFormat::RGBA8888_CMPR,            "RGBA8888_CMPR",             7, kRgbAndMetaPlanes},
    {&PixFormat::NV12_LINEAR_FLEX,         "NV12_LINEAR_FLEX",          0, kYuvPlanes},
    {&PixFormat::NV12_LINEAR_FLEX_2_BATCH, "NV12_LINEAR_FLEX_2_BATCH",  0, kYuvPlanes},
    {&PixFormat::NV12_LINEAR_FLEX_4_BATCH, "NV12_LINEAR_FLEX_4_BATCH",  0, kYuvPlanes},
    {&PixFormat::NV12_LINEAR_FLEX_8_BATCH, "NV12_LINEAR_FLEX_8_BATCH",  0, kYuvPlanes},
    {&PixFormat::NV12_CMPR_FLEX,           "NV12_CMPR_FLEX",            1, kYuvAndMetaPlanes},
    {&PixFormat::NV12_CMPR_FLEX_2_BATCH,   "NV12_CMPR_FLEX_2_BATCH",    1, kYuvAndMetaPlanes},
    {&PixFormat::NV12_CMPR_FLEX_4_BATCH,   "NV12_CMPR_FLEX_4_BATCH",    1, kYuvAndMetaPlanes},
    {&PixFormat::NV12_CMPR_FLEX_8_BATCH,   "NV12_CMPR_FLEX_8_BATCH",    1, kYuvAndMetaPlanes},
    {&PixFormat::TAMRA_NV21,               "TAMRA_NV21",                2, kYuvPlanes},
    {&PixFormat::RGBA1010102,              "RGBA1010102",              10, kRgbPlanes},
    {&PixFormat::RGBA1010102_CMPR,         "RGBA1010102_CMPR",          9, kRgbAndMetaPlanes},
    {&PixFormat::RGBA_FP16,                "RGBA_FP16",                11, kRgbPlanes},
};
// clang-format on

// Printed name of a plane; "?" for any other value.
constexpr const char* planeName(TamraBufferLayout::PlaneID plane) {
    switch (plane) {
        case TamraBufferLayout::Y:
            return "Y";
        case TamraBufferLayout::UV:
            return "UV";
        case TamraBufferLayout::Y_META:
            return "Y_META";
        case TamraBufferLayout::UV_META:
            return "UV_META";
        case TamraBufferLayout::RGB:
            return "RGB";
        case TamraBufferLayout::RGB_META:
            return "RGB_META";
    }
    return "?";
}

}  // namespace kc2::Platform
