// The load-time initialisers of the library, to be run once more where they can be measured.

#include "bench/Initialisers.h"

#include <dlfcn.h>
#include <link.h>

#include <cstdlib>
#include <vector>

#include "kc2/TamraBufferLayout.h"

namespace kc2::bench {

namespace {

using Initialiser = void (*)();

// From the dynamic section of the object that holds `address`.
std::vector<Initialiser> initialisersOfObjectAt(void* address) {
    Dl_info info = {};
    link_map* object = nullptr;
    if (dladdr1(address, &info, reinterpret_cast<void**>(&object), RTLD_DL_LINKMAP) == 0) {
        std::abort();
    }
    const Initialiser* first = nullptr;
    size_t bytes = 0;
    for (const ElfW(Dyn)* entry = object->l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_INIT_ARRAY) {
            const uintptr_t start = object->l_addr + entry->d_un.d_ptr;
            // The dynamic section has it as a number.
            // NOLINTNEXTLINE(performance-no-int-to-ptr)
            first = reinterpret_cast<const Initialiser*>(start);
        } else if (entry->d_tag == DT_INIT_ARRAYSZ) {
            bytes = entry->d_un.d_val;
        }
    }
    return {first, first + bytes / sizeof(Initialiser)};
}

}  // namespace

Operations initialiserOperations() {
    void* const address = reinterpret_cast<void*>(&Platform::TamraBufferLayout::FormatMap);
    const std::vector<Initialiser> initialisers = initialisersOfObjectAt(address);
    return {{"load-time initialisers", 1, [initialisers] {
                 for (const Initialiser initialise : initialisers) {
                     initialise();
                 }
             }}};
}

}  // namespace kc2::bench
