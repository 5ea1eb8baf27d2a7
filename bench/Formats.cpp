// Pixel formats and plane offsets, each beside its floor.

#include <iterator>

#include "bench/Floors.h"
#include "bench/Operation.h"
#include "kc2/TamraBufferLayout.h"
#include "platform/FormatRows.h"

namespace kc2::bench {

namespace {

using Platform::FormatRow;
using Platform::kFormatRows;
using Platform::TamraBufferLayout;

constexpr int kManyRuns = 1000;
constexpr uint32_t kNoFormats[] = {0, 0x127, 0x12A, 0x7FA30C05, 0xC2000002, 0xFFFFFFFF};

floors::Planes barePlanes() {
    floors::Planes planes;
    for (const FormatRow& row : kFormatRows) {
        planes[*row.format].insert(row.planes.begin(), row.planes.end());
    }
    return planes;
}

template <typename Visit>
void forEachFormat(Visit visit) {
    for (const FormatRow& row : kFormatRows) {
        visit(*row.format);
    }
}

template <typename Visit>
void forEachPlane(Visit visit) {
    for (const FormatRow& row : kFormatRows) {
        for (const TamraBufferLayout::PlaneID plane : row.planes) {
            visit(*row.format, plane);
        }
    }
}

}  // namespace

Operations formatOperations() {
    static const floors::Planes& planes = *new floors::Planes(barePlanes());
    return {
            {"FormatMap", kManyRuns,
             [] {
                 forEachFormat([](uint32_t format) { keep(TamraBufferLayout::FormatMap(format)); });
             }},
            {"FormatMap/floor", kManyRuns,
             [] {
                 forEachFormat([](uint32_t format) { keep(floors::switchOverFormats(format)); });
             }},
            {"FormatMap (no format)", kManyRuns,
             [] {
                 for (const uint32_t format : kNoFormats) {
                     keep(TamraBufferLayout::FormatMap(format));
                 }
             }},
            {"FormatMap (no format)/floor", kManyRuns,
             [] {
                 for (const uint32_t format : kNoFormats) {
                     keep(floors::switchOverFormats(format));
                 }
             }},
            {"Offset", kManyRuns,
             [] {
                 forEachPlane([](uint32_t format, TamraBufferLayout::PlaneID plane) {
                     keep(TamraBufferLayout::Offset(format, plane, 1920, 1080));
                 });
             }},
            {"Offset/floor", kManyRuns,
             [] {
                 forEachPlane([](uint32_t format, TamraBufferLayout::PlaneID plane) {
                     keep(floors::findPlane(planes, format, plane));
                 });
             }},
            {"Offset (no format)", kManyRuns,
             [] {
                 for (const uint32_t format : kNoFormats) {
                     keep(TamraBufferLayout::Offset(format, TamraBufferLayout::Y, 1920, 1080));
                 }
             }},
            {"Offset (no format)/floor", kManyRuns,
             [] {
                 for (const uint32_t format : kNoFormats) {
                     keep(floors::findPlane(planes, format, TamraBufferLayout::Y));
                     keep(floors::logUnknownFormat(format));
                 }
             }},
    };
}

}  // namespace kc2::bench
