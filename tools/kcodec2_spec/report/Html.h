// Text of unknown bytes, escaped for a page, and what writes a part of one.
#pragma once

#include <fmt/format.h>

#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace kc2::tool {

// `text` for any place between tags or in a quoted attribute: markup becomes references, and bytes
// that must not be shown are written as \xNN.
std::string html(std::string_view text);

// The same of a name or a path, which a narrow column breaks after "_" and "/". Where that is too
// far away, it is broken after 30 characters.
std::string htmlOfName(std::string_view name);

// A part of a page while it is written.
class HtmlWriter {
protected:
    template <typename... Values>
    void add(fmt::format_string<Values...> text, Values&&... values) {
        fmt::format_to(std::back_inserter(mPage), text, std::forward<Values>(values)...);
    }

    std::string mPage;
};

}  // namespace kc2::tool
