// The symbols of libkcodec2_base that the library links against; never run.

#include "device/BaseLibrary.h"
#include "kc2/PixFormat.h"

namespace kc2 {

uint32_t gC2LogLevel = 0;

void updateLogLevel() {}

std::string OS::SystemProperty::Get(const char*, const char*) {
    return std::string();
}

const char* PixFormat::Str(unsigned int) {
    return "";
}

}  // namespace kc2
