// Runs the tool in this process, and checks that its output is safe for a terminal and a parser.

#include "tests/fuzz/Printed.h"

#include <json/reader.h>
#include <json/value.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "tests/fuzz/Require.h"

namespace kc2::fuzz {

namespace {

// Redirects a stream of the C library to memory during its lifetime.
class StreamInMemory {
public:
    explicit StreamInMemory(std::FILE** stream) : mStream(stream), mBefore(*stream) {
        *mStream = open_memstream(&mText, &mSize);
    }
    ~StreamInMemory() { std::free(mText); }
    StreamInMemory(const StreamInMemory&) = delete;
    StreamInMemory& operator=(const StreamInMemory&) = delete;

    std::string end() {
        std::fclose(*mStream);
        *mStream = mBefore;
        return {mText, mSize};
    }

private:
    std::FILE** mStream;
    std::FILE* mBefore;
    char* mText = nullptr;
    size_t mSize = 0;
};

// The size of the character at the start of `text`, in bytes; 0 when it is not UTF-8. Written
// independently of the tool's function, whose mistakes it must find.
size_t characterLength(std::string_view text, char32_t* code) {
    const auto first = static_cast<unsigned char>(text[0]);
    const size_t length = first < 0x80           ? 1
                          : (first >> 5) == 0x06 ? 2
                          : (first >> 4) == 0x0E ? 3
                          : (first >> 3) == 0x1E ? 4
                                                 : 0;
    if (length == 0 || length > text.size()) {
        return 0;
    }
    *code = length == 1 ? first : first & (0x7FU >> length);
    for (size_t at = 1; at < length; ++at) {
        const auto next = static_cast<unsigned char>(text[at]);
        if ((next >> 6) != 0x02) {
            return 0;
        }
        *code = (*code << 6) | (next & 0x3FU);
    }
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = *code >= 0xD800 && *code <= 0xDFFF;
    return *code >= kLeast[length] && *code <= 0x10FFFF && !isSurrogate ? length : 0;
}

bool isControl(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

}  // namespace

Printed printedBy(const std::function<void()>& run) {
    StreamInMemory output(&stdout);
    StreamInMemory errors(&stderr);
    run();
    std::string printed = output.end();
    return {std::move(printed), errors.end()};
}

void requirePlain(std::string_view text, TextKind kind) {
    while (!text.empty()) {
        char32_t code = 0;
        const size_t length = characterLength(text, &code);
        require(length != 0, "the output is UTF-8");
        const bool isOfDiff =
                kind == TextKind::Diff && (code == '\t' || text.substr(0, 2) == "\r\n");
        require(!isControl(code) || code == '\n' || isOfDiff,
                "no control character is printed but line feeds");
        text.remove_prefix(length);
    }
}

void requireJson(const std::string& text) {
    requirePlain(text);
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value json;
    require(reader->parse(text.data(), text.data() + text.size(), &json, nullptr),
            "what is printed is JSON");
}

}  // namespace kc2::fuzz
