// A program that defines the five platform names itself: the library uses them, and no others.

#include <android/log.h>

#include <cstdarg>

#include "tests/binary/OwnBaseLibrary.h"

extern "C" [[gnu::visibility("default")]] int __android_log_print(int prio, const char* tag,
                                                                  const char* fmt, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, fmt);
    std::vsnprintf(text, sizeof(text), fmt, arguments);
    va_end(arguments);
    kc2::check::addLine(prio, tag, text);
    return 1;
}

int main() {
    kc2::check::checkLines();
}
