// The planes in a buffer of each pixel format, and the format's number in the video core.

#include "kc2/TamraBufferLayout.h"

#include <array>
#include <iterator>
#include <utility>

#include "device/Log.h"
#include "platform/FormatRows.h"

namespace kc2::Platform {

namespace {

// Compares `format` with every row's constant; the compiler turns it into a switch.
template <size_t... Row>
uint32_t colorFormatOf(uint32_t format, std::index_sequence<Row...>) {
    uint32_t colorFormat = 0;
    (void)((format == std::integral_constant<uint32_t, *kFormatRows[Row].format>::value &&
            (colorFormat = kFormatRows[Row].colorFormat, true)) ||
           ...);
    return colorFormat;
}

// The rows as the table needs them. The names stay out of the library, which never prints them.
struct TableRow {
    const uint32_t* format;
    uint32_t colorFormat;
    PlaneList planes;
};

constexpr std::array<TableRow, std::size(kFormatRows)> kTableRows = [] {
    std::array<TableRow, std::size(kFormatRows)> rows = {};
    for (size_t i = 0; i < rows.size(); ++i) {
        rows[i] = {kFormatRows[i].format, kFormatRows[i].colorFormat, kFormatRows[i].planes};
    }
    return rows;
}();

}  // namespace

// The library's one load-time initialiser.
const TamraBufferLayout::FormatTable TamraBufferLayout::mFormatTable = buildFormatTable();

TamraBufferLayout::FormatTable TamraBufferLayout::buildFormatTable() {
    FormatTable table;
    for (const TableRow& row : kTableRows) {
        table.emplace(*row.format,
                      FormatEntry{row.colorFormat, {row.planes.begin(), row.planes.end()}});
    }
    return table;
}

uint32_t TamraBufferLayout::FormatMap(unsigned int format) {
    return colorFormatOf(format, std::make_index_sequence<std::size(kFormatRows)>());
}

uint64_t TamraBufferLayout::Offset(unsigned int format, PlaneID plane, unsigned long /*width*/,
                                   unsigned long /*height*/) {
    const auto entry = mFormatTable.find(format);
    if (entry == mFormatTable.end()) {
        KC2_LOG_ERROR(log::kTagBufferLayout, "%s is not a Tamra color format!",
                      PixFormat::Str(format));
    } else if (entry->second.planes.count(plane) == 0) {
        KC2_LOG_ERROR(log::kTagBufferLayout, "Format %s does not contain plane-%s",
                      PixFormat::Str(format), planeName(plane));
    }
    return 0;
}

}  // namespace kc2::Platform
