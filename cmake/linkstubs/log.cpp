// The symbol of liblog that the library links against; never run.

#include <android/log.h>

[[gnu::visibility("default")]] int __android_log_print(int, const char*, const char*, ...) {
    return 0;
}
