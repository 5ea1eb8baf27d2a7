// Allocation parameters of secure memory: the same for every domain on this target.

#include "kc2/IonInfo.h"

namespace kc2::Platform {

uint32_t IonInfo::HeapMaskFor(SecureDomain /*domain*/) {
    return 0;
}

uint32_t IonInfo::AllocFlagsFor(SecureDomain /*domain*/) {
    return 0;
}

uint32_t IonInfo::AlignmentFor(SecureDomain /*domain*/) {
    return 4096;
}

}  // namespace kc2::Platform
