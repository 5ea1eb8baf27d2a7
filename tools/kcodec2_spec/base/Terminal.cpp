// The terminal that output goes to, if it is one: its width, its colours, how wide characters are.

#include "base/Terminal.h"

#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <string_view>

#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale() is not in <clocale>.
#include <sys/ioctl.h>
#include <unistd.h>

#include "base/Utf8.h"

namespace kc2::tool {

namespace {

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace

Terminal terminalOf(int descriptor) {
    if (isatty(descriptor) == 0) {
        return {};
    }
    constexpr size_t kUsualWidth = 80;
    winsize size = {};
    const bool isSized = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    const std::string_view kind = environment("TERM");
    return {.isColoured = environment("NO_COLOR").empty() && !kind.empty() && kind != "dumb",
            .width = isSized ? size.ws_col : kUsualWidth};
}

Colours coloursOf(const Terminal& terminal) {
    return terminal.isColoured ? Colours{.bold = "\033[1m",
                                         .faint = "\033[2m",
                                         .red = "\033[31m",
                                         .green = "\033[32m",
                                         .yellow = "\033[33m",
                                         .magenta = "\033[35m",
                                         .cyan = "\033[36m",
                                         .plain = "\033[0m"}
                               : Colours();
}

size_t columnsOf(std::string_view character) {
    if (character.size() <= 1) {
        return character.size();
    }
    // The C library knows the widths, in a locale that has such characters.
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (utf8 == locale_t{}) {
        return 1;
    }
    const locale_t before = uselocale(utf8);
    const int columns = wcwidth(static_cast<wchar_t>(codePointOf(character)));
    uselocale(before);
    return columns < 0 ? 1 : static_cast<size_t>(columns);
}

}  // namespace kc2::tool
