// Every pixel format with every plane, and the small services.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <set>

#include "Device.h"
#include "kc2/FileDescriptor.h"
#include "kc2/IonInfo.h"
#include "kc2/KC2PlatformVersion.h"
#include "kc2/PixFormat.h"
#include "kc2/TamraBufferLayout.h"

namespace kc2::test {

namespace {

using Platform::IonInfo;
using Layout = Platform::TamraBufferLayout;

constexpr const char* kPlaneNames[] = {"Y", "UV", "Y_META", "UV_META", "RGB", "RGB_META"};

TEST(PlatformTest, EveryFormatWithEveryPlane) {
    const struct {
        uint32_t format;
        uint32_t value;
        const char* name;
        uint32_t number;
        std::set<uint32_t> planes;
    } rows[] = {
            {PixFormat::TAMRA_NV12, 0x7FA30C04, "TAMRA_NV12", 0, {0, 1}},
            {PixFormat::TAMRA_P010, 0x36, "TAMRA_P010", 3, {0, 1}},
            {PixFormat::TAMRA_NV12_CMPR, 0x7FA30C06, "TAMRA_NV12_CMPR", 1, {0, 1, 2, 3}},
            {PixFormat::TAMRA_TP10, 0x7FA30C09, "TAMRA_TP10", 5, {0, 1, 2, 3}},
            {PixFormat::RGBA8888, 0x1, "RGBA8888", 6, {4}},
            {PixFormat::RGBA8888_CMPR, 0xC2000000, "RGBA8888_CMPR", 7, {4, 5}},
            {PixFormat::NV12_LINEAR_FLEX, 0x125, "NV12_LINEAR_FLEX", 0, {0, 1}},
            {PixFormat::NV12_LINEAR_FLEX_2_BATCH, 320, "NV12_LINEAR_FLEX_2_BATCH", 0, {0, 1}},
            {PixFormat::NV12_LINEAR_FLEX_4_BATCH, 321, "NV12_LINEAR_FLEX_4_BATCH", 0, {0, 1}},
            {PixFormat::NV12_LINEAR_FLEX_8_BATCH, 322, "NV12_LINEAR_FLEX_8_BATCH", 0, {0, 1}},
            {PixFormat::NV12_CMPR_FLEX, 0x126, "NV12_CMPR_FLEX", 1, {0, 1, 2, 3}},
            {PixFormat::NV12_CMPR_FLEX_2_BATCH, 0x128, "NV12_CMPR_FLEX_2_BATCH", 1, {0, 1, 2, 3}},
            {PixFormat::NV12_CMPR_FLEX_4_BATCH, 0x129, "NV12_CMPR_FLEX_4_BATCH", 1, {0, 1, 2, 3}},
            {PixFormat::NV12_CMPR_FLEX_8_BATCH, 0x130, "NV12_CMPR_FLEX_8_BATCH", 1, {0, 1, 2, 3}},
            {PixFormat::TAMRA_NV21, 0x114, "TAMRA_NV21", 2, {0, 1}},
            {PixFormat::RGBA1010102, 0x2B, "RGBA1010102", 10, {4}},
            {PixFormat::RGBA1010102_CMPR, 0xC2000001, "RGBA1010102_CMPR", 9, {4, 5}},
            {PixFormat::RGBA_FP16, 0x16, "RGBA_FP16", 11, {4}},
    };
    Device device;
    for (const auto& row : rows) {
        EXPECT_EQ(row.value, row.format) << row.name;
        EXPECT_EQ(row.number, Layout::FormatMap(row.format)) << row.name;
        for (const uint32_t plane : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 0xFFFFFFFFu}) {
            EXPECT_EQ(0u, Layout::Offset(row.format, Layout::PlaneID{plane}, 1920, 1080));
            Lines expected;
            if (row.planes.count(plane) == 0) {
                expected = {std::string("E/Platform_BufferLayout: Format ") + row.name +
                            " does not contain plane-" + (plane < 6 ? kPlaneNames[plane] : "?")};
            }
            EXPECT_EQ(expected, device.takeLog());
        }
    }
    for (const uint32_t unknown :
         {0u, 4u, 8u, 0x127u, 0x12Au, 0x12Fu, 0x7FA30C05u, 0xC2000002u, 0xFFFFFFFFu}) {
        EXPECT_EQ(0u, Layout::FormatMap(unknown));
        EXPECT_EQ(Lines(), device.takeLog());
        EXPECT_EQ(0u, Layout::Offset(unknown, Layout::PlaneID{9}, 0, ~0ul));
        char line[80];
        std::snprintf(line, sizeof(line),
                      "E/Platform_BufferLayout: 0x%X is not a Tamra color format!", unknown);
        EXPECT_EQ(Lines{line}, device.takeLog());
    }
}

TEST(PlatformTest, ADescriptorsIdentityIsItsFile) {
    Device device;
    FILE* const first = std::tmpfile();
    FILE* const second = std::tmpfile();
    const int duplicate = dup(fileno(first));
    const uint64_t id = Platform::GetUniqueIdForFileDescriptor(fileno(first));
    EXPECT_NE(0u, id);
    EXPECT_EQ(id, Platform::GetUniqueIdForFileDescriptor(duplicate));
    EXPECT_NE(id, Platform::GetUniqueIdForFileDescriptor(fileno(second)));
    EXPECT_EQ(Lines(), device.takeLog());
    EXPECT_EQ(0u, Platform::GetUniqueIdForFileDescriptor(-1));
    EXPECT_EQ(Lines{"E/KC2Platform: NOTE9: Failed to fstat(-1)"}, device.takeLog());
    close(duplicate);
    std::fclose(first);
    std::fclose(second);
}

TEST(PlatformTest, ConstantsOfTheTarget) {
    for (const uint32_t value : {0u, 1u, 2u, 77u, 0xFFFFFFFFu}) {
        const IonInfo::SecureDomain domain{value};
        EXPECT_EQ(0u, IonInfo::HeapMaskFor(domain));
        EXPECT_EQ(0u, IonInfo::AllocFlagsFor(domain));
        EXPECT_EQ(4096u, IonInfo::AlignmentFor(domain));
    }
    EXPECT_EQ("Wed Jul 2 12:55:48 2025 -0700", KC2PlatformVersion::getBaseVersion());
}

}  // namespace

}  // namespace kc2::test
