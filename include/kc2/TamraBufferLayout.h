/**
 * @file
 * kc2::Platform::TamraBufferLayout: the planes in a video-core buffer of each pixel format.
 */
#pragma once

#include <cstdint>
#include <unordered_map>
#include <unordered_set>

/** The platform services. */
namespace kc2::Platform {

#pragma GCC visibility push(default)

/**
 * The buffer layouts of the video core (Tamra). No instances: all operations are static, allocate
 * nothing and are safe from any thread.
 */
class TamraBufferLayout {
public:
    /**
     * The planes of a buffer, in the video core's numbering. Any other 32-bit value may be passed,
     * too: no format has such a plane, and messages print it as "?".
     */
    enum PlaneID : uint32_t {
        Y = 0,         ///< luma
        UV = 1,        ///< interleaved chroma
        Y_META = 2,    ///< compression metadata of the luma plane
        UV_META = 3,   ///< compression metadata of the chroma plane
        RGB = 4,       ///< all colour channels, and alpha
        RGB_META = 5,  ///< compression metadata of the RGB plane
    };

    TamraBufferLayout() = delete;

    /**
     * The video core's own colour-format number of a pixel format.
     *
     * A fixed mapping in code, valid also before the library's initialiser has run and after its
     * destructor has. Several formats share a number. `kcodec2_spec formats` lists the numbers.
     *
     * @param format any 32-bit value, a format or not.
     * @return the number; 0 also for every value that is not a format of the video core. Logs
     *         nothing.
     */
    static uint32_t FormatMap(unsigned int format);

    /**
     * Checks that a buffer of `format` has `plane`. An unknown format, or a plane that the format
     * does not have, is reported by one error line with the tag "Platform_BufferLayout".
     *
     * @param format any 32-bit value, a format or not.
     * @param plane any 32-bit value, a plane or not.
     * @param width picture width in pixels; any value, not read.
     * @param height picture height in pixels; any value, not read.
     * @return 0, whether or not the pair is valid: the allocator computes the offset.
     */
    static uint64_t Offset(unsigned int format, PlaneID plane, unsigned long width,
                           unsigned long height);

private:
    struct FormatEntry {
        uint32_t colorFormat;
        std::unordered_set<PlaneID> planes;
    };
    using FormatTable = std::unordered_map<uint32_t, FormatEntry>;

    [[gnu::visibility("hidden")]] static FormatTable buildFormatTable();

    [[gnu::visibility("hidden")]] static const FormatTable mFormatTable;
};

#pragma GCC visibility pop

}  // namespace kc2::Platform
