// A program that links the real liblog: it receives the library's lines, each with its tag and
// priority.

#include <android/log.h>

#include "tests/binary/OwnBaseLibrary.h"

namespace {

// Keeps what liblog passes to its writer, and passes it on to liblog's default writer. Its releases
// differ: the text is in the line, or is another argument.
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
