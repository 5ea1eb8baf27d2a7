// A program that links the real liblog: the library's lines are written through it, each with its
// tag and priority.

#include <android/log.h>

#include "tests/binary/OwnBaseLibrary.h"

namespace {

// Keeps what liblog passes to its writer, and passes it on to liblog's own writer. In some releases
// of liblog the text is in the line; in others it is a separate argument.
template <typename Line>
void keep(const Line* line) {
    kc2::check::addLine(line->priority, line->tag, line->message);
    __android_log_stderr_logger(line);
}

template <typename Line>
void keep(const Line* line, const char* text) {
    kc2::check::addLine(line->priority, line->tag, text);
    __android_log_stderr_logger(line, text);
}

}  // namespace

int main() {
    __android_log_set_logger(keep);
    kc2::check::checkLines();
}
