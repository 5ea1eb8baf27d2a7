// What the device's own library costs a process, as on a phone: kcodec2_phone_costs LIBRARY ROOT
//
// Under callgrind it counts instructions, and leaves a dump for dlopen() and one for the first
// Get(). Otherwise it prints the dirty bytes of the library's memory and the heap that the loaded
// store keeps, "name <tab> bytes". ROOT has the device's files. The libraries that the library
// needs are loaded before, as they are in a media service.

#include <android/log.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "device/BaseLibrary.h"
#include "kc2/PixFormat.h"
#include "kc2/TargetSpec.h"

namespace {

std::string sRoot;

std::string localPath(const char* path) {
    const std::string text = path;
    const bool isDevicePath =
            text.starts_with("/odm/") || text.starts_with("/vendor/") || text.starts_with("/data/");
    return isDevicePath ? sRoot + text : text;
}

FILE* openNext(const char* path, const char* mode) {
    static const auto next = reinterpret_cast<decltype(&fopen)>(dlsym(RTLD_NEXT, "fopen"));
    return next(path, mode);
}

// Bytes of the library's mappings that the process has a copy of, since it has written to them. A
// .bss beyond the file's last page is an anonymous mapping right after them.
size_t dirtyBytes(const std::string& library) {
    std::ifstream maps("/proc/self/smaps");
    size_t bytes = 0;
    bool isOurs = false;
    std::string end;
    for (std::string line; std::getline(maps, line);) {
        const std::string first = line.substr(0, line.find(' '));
        if (first.back() != ':') {  // Not a field: the addresses of a mapping.
            const size_t dash = first.find('-');
            isOurs = line.ends_with(library) || (isOurs && line.find('/') == std::string::npos &&
                                                 first.substr(0, dash) == end);
            end = first.substr(dash + 1);
        } else if (isOurs && first == "Anonymous:") {
            bytes += std::strtoul(line.c_str() + first.size(), nullptr, 10) * 1024;
        }
    }
    return bytes;
}

}  // namespace

// What the device brings: in front of the empty libraries that the library was linked against.

extern "C" int __android_log_print(int /*prio*/, const char* /*tag*/, const char* /*fmt*/, ...) {
    return 1;
}

namespace kc2 {

uint32_t gC2LogLevel = 0;

void updateLogLevel() {}

std::string OS::SystemProperty::Get(const char* /*name*/, const char* /*defaultValue*/) {
    return "_orvelle";
}

const char* PixFormat::Str(unsigned int /*format*/) {
    return "?";
}

}  // namespace kc2

// In front of the C library: the device's paths are in ROOT.

extern "C" [[gnu::visibility("default")]] FILE* fopen(const char* path, const char* mode) {
    return openNext(localPath(path).c_str(), mode);
}

extern "C" [[gnu::visibility("default")]] int stat(const char* path, struct stat* status) noexcept {
    return fstatat(AT_FDCWD, localPath(path).c_str(), status, 0);
}

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: kcodec2_phone_costs LIBRARY ROOT\n", stderr);
        return 2;
    }
    sRoot = argv[2];
    std::fclose(fopen("/dev/null", "r"));  // Finds the C library's function.

    CALLGRIND_ZERO_STATS;
    void* const library = dlopen(argv[1], RTLD_NOW);
    CALLGRIND_DUMP_STATS_AT("dlopen");
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    const auto get = reinterpret_cast<decltype(&kc2::TargetSpec::Get)>(
            dlsym(library, "_ZN3kc210TargetSpec3GetEv"));
    const size_t heapBefore = mallinfo2().uordblks;
    CALLGRIND_ZERO_STATS;
    const kc2::TargetSpec* const store = get();
    CALLGRIND_DUMP_STATS_AT("first Get");
    const size_t heap = mallinfo2().uordblks - heapBefore;
    std::printf("dirty memory\t%zu\nheap of the store\t%zu\n", dirtyBytes(argv[1]), heap);
    return store != nullptr ? 0 : 1;
}
