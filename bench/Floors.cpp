// The floors: the core of each operation, without the library.

#include "bench/Floors.h"

#include <android/log.h>
#include <fcntl.h>
#include <json/reader.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "kc2/PixFormat.h"

namespace kc2::bench::floors {

// Hidden, as the library's own statics are: read without a detour through the symbol table.
static void* sPointer = &sPointer;

void* readPointer() {
    return *const_cast<void* const volatile*>(&sPointer);
}

bool findFeature(const std::map<std::string, bool>& features, const std::string& name) {
    const auto feature = features.find(name);
    return feature != features.end() && feature->second;
}

int32_t findPreset(const std::map<std::string, int32_t>& presets, const std::string& name,
                   int* value) {
    const auto preset = presets.find(name);
    if (preset == presets.end()) {
        return 2;
    }
    *value = preset->second;
    return 0;
}

uint32_t findBitRate(const std::vector<NimbraBitRateEntry>& rows, const unsigned int* value) {
    for (const NimbraBitRateEntry& row : rows) {
        if (row.low <= *value && *value < row.high) {
            return row.bitRate;
        }
    }
    return 0xFFFFFFFF;
}

std::vector<uint32_t> findWords(const std::map<std::string, std::vector<uint32_t>>& words,
                                const std::string& name) {
    const auto entry = words.find(name);
    return entry != words.end() ? entry->second : std::vector<uint32_t>();
}

void appendNames(const std::list<std::string>& names, std::list<std::string>* list) {
    list->insert(list->end(), names.begin(), names.end());
}

std::unordered_set<std::string> copyNames(const std::unordered_set<std::string>& names) {
    return names;
}

uint32_t switchOverFormats(unsigned int format) {
    // clang-format off
    switch (format) {
        case PixFormat::NV12_CMPR_FLEX: case PixFormat::NV12_CMPR_FLEX_2_BATCH:
        case PixFormat::NV12_CMPR_FLEX_4_BATCH: case PixFormat::NV12_CMPR_FLEX_8_BATCH:
        case PixFormat::TAMRA_NV12_CMPR: return 1;
        case PixFormat::TAMRA_NV21: return 2;
        case PixFormat::TAMRA_P010: return 3;
        case PixFormat::TAMRA_TP10: return 5;
        case PixFormat::RGBA8888: return 6;
        case PixFormat::RGBA8888_CMPR: return 7;
        case PixFormat::RGBA1010102_CMPR: return 9;
        case PixFormat::RGBA1010102: return 10;
        case PixFormat::RGBA_FP16: return 11;
        default: return 0;
    }
    // clang-format on
}

uint64_t findPlane(const Planes& planes, unsigned int format, uint32_t plane) {
    const auto entry = planes.find(format);
    return entry != planes.end() && entry->second.count(plane) != 0 ? 0 : 1;
}

uint64_t logUnknownFormat(unsigned int format) {
    __android_log_print(ANDROID_LOG_ERROR, "Platform_BufferLayout",
                        "%s is not a Tamra color format!", PixFormat::Str(format));
    return 0;
}

std::string readFile(const char* path) {
    struct stat status = {};
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    fstat(fd, &status);
    std::string text(static_cast<size_t>(status.st_size), '\0');
    if (read(fd, text.data(), text.size()) != status.st_size) {
        std::abort();
    }
    close(fd);
    return text;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

bool parse(const std::string& text, Json::Value* root) {
    Json::Reader reader;
    constexpr bool kCollectComments = false;
    return reader.parse(text.data(), text.data() + text.size(), *root, kCollectComments);
}

#pragma GCC diagnostic pop

}  // namespace kc2::bench::floors
