/**
 * @file
 * Stand-in for the NDK header of the same name: the part of liblog that this library uses.
 */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/** Log priorities, in the NDK's numbering. */
typedef enum android_LogPriority {
    ANDROID_LOG_UNKNOWN = 0,
    ANDROID_LOG_DEFAULT,
    ANDROID_LOG_VERBOSE,
    ANDROID_LOG_DEBUG,
    ANDROID_LOG_INFO,
    ANDROID_LOG_WARN,
    ANDROID_LOG_ERROR,
    ANDROID_LOG_FATAL,
    ANDROID_LOG_SILENT,
} android_LogPriority;

/** Writes one line to the log. Safe from any thread. */
int __android_log_print(int prio, const char* tag, const char* fmt, ...)
        __attribute__((__format__(printf, 3, 4)));

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif
