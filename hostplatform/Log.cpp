// Stand-in for liblog: lines in logcat's brief form on standard error, or to the program's sink.

#include <android/log.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>

#include "hostplatform/HostPlatform.h"
#include "targetspec/reading/Escaped.h"

namespace {

struct Output {
    std::mutex mutex;
    kc2::host::LogSink sink;
};

// Never destroyed: lines may still be written while the process exits.
Output& output() {
    static Output& output = *new Output();
    return output;
}

// A document or a property may contain what a terminal would obey, so the line is escaped here. A
// sink gets the bytes.
void writeBrief(int priority, const char* tag, const char* text) {
    constexpr char kLetters[] = "??VDIWEFS";
    const bool isKnown = priority >= 0 && priority < static_cast<int>(sizeof(kLetters)) - 1;
    std::fprintf(stderr, "%c/%-8s(%5d): %s\n", isKnown ? kLetters[priority] : '?', tag,
                 static_cast<int>(getpid()), kc2::escaped(text).c_str());
}

}  // namespace

extern "C" int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    char* formatted = nullptr;
    va_list arguments;
    va_start(arguments, fmt);
    const int length = vasprintf(&formatted, fmt, arguments);
    va_end(arguments);
    if (length < 0) {
        return length;
    }
    const std::unique_ptr<char, decltype(&std::free)> text(formatted, &std::free);

    Output& out = output();
    const std::lock_guard<std::mutex> lock(out.mutex);
    if (out.sink) {
        out.sink(prio, tag, text.get());
    } else {
        writeBrief(prio, tag, text.get());
    }
    return 1;
}

void kc2::host::setLogSink(LogSink sink) {
    const std::lock_guard<std::mutex> lock(output().mutex);
    output().sink = std::move(sink);
}
