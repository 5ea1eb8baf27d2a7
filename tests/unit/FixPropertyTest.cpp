// --fix with documents that are broken at random: it restores them, or leaves them as they are.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "RunTool.h"
#include "catalogue/KnownSettings.h"
#include "check/Check.h"
#include "document/Tokens.h"
#include "store/Merge.h"
#include "targetspec/reading/Sections.h"
#include "tests/fuzz/FixProperty.h"

namespace kc2::test {

namespace {

using tool::Span;
using tool::Token;

// The same numbers in each run and with each library.
class Dice {
public:
    explicit Dice(uint64_t seed) : mState(seed % kModulus + 1) {}

    size_t below(size_t limit) {
        mState = mState * 48271 % kModulus;
        return limit == 0 ? 0 : static_cast<size_t>(mState % limit);
    }
    template <typename List>
    const auto& of(const List& list) {
        return list[below(std::size(list))];
    }

private:
    static constexpr uint64_t kModulus = 2147483647;
    uint64_t mState;
};

constexpr char kEachSection[] = R"({
    // A comment with "quotes", and a comma.
    "Video": {
        "Features": {"private_enc_cvp_enable": true, "private_enc_c2d_rotation": false},
        "Presets": {
            "private_complexity": 50, /* [ */
            "private_enc_hier_b_max_width": -1,
            "vendor_x": 108000
        },
        "NimbraModeBitrateTable": [[0, 108000, 5000000], [108000, 1958400, 10000000]],
        "DolbyVision": {"profiles": [5, 8, 9], "max_main_tier_level": 9, "max_high_tier_level": 7},
        "KC2CodecPlugins": ["liba.so", "libb.so"],
        "perf-resource-values": {
            "private_perf_resource_values_video_encode": ["0x40800000", "0x5DC"],
            "vendor_use_case": ["40C00000", "1"]
        },
        "codecs-available": {
            "decoders": ["c2.kvx.avc.decoder", "c2.kvx.hevc.decoder"],
            "encoders": ["c2.kvx.avc.encoder"]
        },
        "OptionalCodecs": ["c2.kvx.av1.decoder"]
    }
}
)";

struct Original {
    std::string text;
    std::vector<Token> tokens;
    SpecDocument content;
};

Original originalOf(std::string text) {
    const tool::Document document({.path = "document"}, text);
    EXPECT_TRUE(document.isAccepted);
    Original original = {std::move(text), {}, document.content};
    tool::Tokenizer tokenizer(document.parserText);
    for (Token token = tokenizer.next(); token.kind != Token::kEnd; token = tokenizer.next()) {
        original.tokens.push_back(token);
    }
    return original;
}

bool hasSameContent(const SpecDocument& a, const SpecDocument& b) {
    bool isSame = true;
    forEachContainer([&](const char* const* /*key*/, auto member) {
        if constexpr (requires { (a.*member).begin(); }) {
            isSame = isSame && a.*member == b.*member;
        } else {
            isSame = isSame && (a.*member).has_value() == (b.*member).has_value() &&
                     (!(a.*member) || ((a.*member)->main == (b.*member)->main &&
                                       (a.*member)->high == (b.*member)->high));
        }
    });
    return isSame;
}

// --- Breakages that --fix may undo ---

std::string with(const Original& original, Span span, const std::string& replacement) {
    std::string text = original.text;
    return text.replace(span.start, span.limit - span.start, replacement);
}

std::string_view textOf(const Original& original, const Token& token) {
    return std::string_view(original.text)
            .substr(token.span.start, token.span.limit - token.span.start);
}

// A token of that kind that the text begins with; the first one where there is none.
const Token& tokenOf(const Original& original, Dice* dice, char kind, std::string_view start = "") {
    const size_t first = dice->below(original.tokens.size());
    for (size_t i = 0; i < original.tokens.size(); ++i) {
        const Token& token = original.tokens[(first + i) % original.tokens.size()];
        if (token.kind == kind && textOf(original, token).starts_with(start)) {
            return token;
        }
    }
    return original.tokens.front();
}

std::string withoutComma(const Original& original, Dice* dice) {
    return with(original, tokenOf(original, dice, ',').span, dice->below(2) == 0 ? "" : " ");
}

std::string withComma(const Original& original, Dice* dice) {
    const size_t end = dice->of(original.tokens).span.limit;
    return with(original, {end, end}, ",");
}

std::string withMark(const Original& original, Dice* /*dice*/) {
    return "\xEF\xBB\xBF" + original.text;
}

std::string withPlus(const Original& original, Dice* dice) {
    const size_t start = tokenOf(original, dice, Token::kWord).span.start;
    return with(original, {start, start}, "+");
}

std::string withQuotes(const Original& original, Dice* dice) {
    const Token& word = tokenOf(original, dice, Token::kWord);
    return with(original, word.span, '"' + std::string(textOf(original, word)) + '"');
}

std::string withoutQuotes(const Original& original, Dice* dice) {
    constexpr const char* kStarts[] = {"\"0x", "\"40", "\"1"};
    const Token& word = tokenOf(original, dice, Token::kString, dice->of(kStarts));
    const std::string_view text = textOf(original, word);
    return text[0] == '"' ? with(original, word.span, std::string(text.substr(1, text.size() - 2)))
                          : original.text;
}

std::string withMisspeltName(const Original& original, Dice* dice) {
    constexpr const char* kStarts[] = {"\"private_", "\"private_", "\"V",  "\"F", "\"P",
                                       "\"N",        "\"D",        "\"K",  "\"p", "\"d",
                                       "\"e",        "\"O",        "\"c2", "\"co"};
    constexpr char kLetters[] = "aeinrst_-XBb";
    const Token& name = tokenOf(original, dice, Token::kString, dice->of(kStarts));
    std::string text(textOf(original, name));
    for (size_t mistakes = 1 + dice->below(2); mistakes > 0 && text.size() > 3; --mistakes) {
        const size_t at = 1 + dice->below(text.size() - 3);
        switch (dice->below(5)) {
            case 0:
                text.erase(at, 1);
                break;
            case 1:
                text.insert(at, 1, kLetters[dice->below(std::size(kLetters) - 1)]);
                break;
            case 2:
                std::swap(text[at], text[at + 1]);
                break;
            case 3:
                text.insert(at, 1, text[at]);
                break;
            default:
                text[at] = kLetters[dice->below(std::size(kLetters) - 1)];
        }
    }
    return with(original, name.span, text);
}

constexpr std::string (*kUndone[])(const Original&, Dice*) = {
        withoutComma, withComma,     withMark,         withPlus,
        withQuotes,   withoutQuotes, withMisspeltName, withMisspeltName};

// --- Other breakages ---

std::string brokenAnyhow(const Original& original, Dice* dice) {
    constexpr std::string_view kPieces[] = {
            "{", "}",  "[",    "]",     ":",  ",",    "\"", " ",  "\t",   "\n", "0",
            "1", "-",  "+",    ".",     "e",  "0x",   "_",  "/",  "//",   "/*", "*/",
            "#", "\\", "true", "\"a\"", "[]", "null", "'",  ", ", "\": ", "{}", "\"\": 1,"};
    std::string text = original.text;
    for (size_t count = 1 + dice->below(3); count > 0 && !text.empty(); --count) {
        const size_t at = dice->below(text.size());
        const size_t length = 1 + dice->below(dice->below(2) == 0 ? 1 : 20);
        const size_t line = text.rfind('\n', at);
        const size_t start = line == std::string::npos ? 0 : line;
        switch (dice->below(7)) {
            case 0:
                text.erase(at, length);
                break;
            case 1:
                text.insert(at, dice->of(kPieces));
                break;
            case 2:
                text.replace(at, 1, dice->of(kPieces));
                break;
            case 3:
                text.insert(at, text.substr(dice->below(text.size()), length));
                break;
            case 4:  // A line, or a large part of the text.
                text.erase(start, text.find('\n', start + 1) - start);
                break;
            case 5:
                text.insert(start, text.substr(start, text.find('\n', start + 1) - start));
                break;
            default:
                std::swap(text[at], text[text.size() - 1 - (text.size() - 1 - at) / 2]);
        }
    }
    return text;
}

// What is wrong with what --fix does with one broken document; empty when nothing is.
std::string tryOne(const Original& original, Dice* dice, const tool::CheckOptions& options,
                   size_t* restored) {
    const bool isUndone = dice->below(2) == 0;
    const std::string broken =
            isUndone ? dice->of(kUndone)(original, dice) : brokenAnyhow(original, dice);
    const std::string fixed =
            tool::withSafeFixes(tool::Document({.path = "document"}, broken), options);
    std::string why = fuzz::whyUnsafe(broken, fixed, *options.known);
    if (isUndone && fixed != broken) {
        const bool isSame = hasSameContent(tool::Document({.path = "document"}, fixed).content,
                                           original.content);
        why = why.empty() && !isSame ? "not what the document meant" : why;
        ++*restored;
    }
    return why.empty() ? why : why + "\n" + broken + "\n--- fixed ---\n" + fixed;
}

// KC2_BREAKAGES=100000 tries as many.
TEST(FixPropertyTest, FixRestoresABrokenDocumentOrLeavesIt) {
    const char* const wanted = std::getenv("KC2_BREAKAGES");
    const size_t breakages = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 2000;
    tool::CheckOptions options;
    options.known = std::make_shared<tool::KnownSettings>(*tool::loadCatalogue({}));
    std::vector<Original> originals;
    for (const std::string& text :
         {std::string(kEachSection),
          readFile(KC2_SOURCE_DIR "/targetspec/defaults/built_in_document_3.json"),
          readFile(KC2_SOURCE_DIR
                   "/examples/device/odm/etc/media_orvelle/video_system_specs.json")}) {
        originals.push_back(originalOf(text));
        EXPECT_EQ(text, tool::withSafeFixes(tool::Document({.path = "document"}, text), options));
    }
    size_t restored = 0;
    size_t unsafe = 0;
    for (size_t i = 0; i < breakages; ++i) {
        Dice dice(i);
        const Original& original = originals[i % 4 == 3 ? 1 + i / 4 % 2 : 0];
        const std::string why = tryOne(original, &dice, options, &restored);
        EXPECT_EQ("", why) << "breakage " << i;
        unsafe += why.empty() ? 0 : 1;
        ASSERT_GT(5U, unsafe) << "of " << i + 1;
    }
    RecordProperty("restored", static_cast<int>(restored));
    EXPECT_LT(breakages / 8, restored);  // Of those that --fix may undo, a half.
}

}  // namespace

}  // namespace kc2::test
