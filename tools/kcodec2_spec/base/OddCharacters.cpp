// The table of odd characters.

#include "base/OddCharacters.h"

#include <algorithm>
#include <iterator>

namespace kc2::tool {

namespace {

constexpr char kPlainQuote[] = "write the plain quote \"";
constexpr char kPlainBlank[] = "write a plain blank";
constexpr char kPlainComma[] = "write a plain ','";
constexpr char kPlainMinus[] = "write the plain minus sign -";
constexpr char kPlainLineEnd[] = "end the line plainly";
constexpr char kRemove[] = "remove it";

constexpr OddCharacter kOddCharacters[] = {
        {0x0085, 0x0085, "a next-line character", kPlainLineEnd},
        {0x00A0, 0x00A0, "a no-break space", kPlainBlank, true},
        {0x00AB, 0x00AB, "a left angle quote", kPlainQuote},
        {0x00AD, 0x00AD, "a soft hyphen", kRemove},
        {0x00B4, 0x00B4, "an acute accent", kPlainQuote},
        {0x00BB, 0x00BB, "a right angle quote", kPlainQuote},
        {0x060C, 0x060C, "an Arabic comma", kPlainComma},
        {0x061B, 0x061B, "an Arabic semicolon", kPlainComma},
        {0x061C, 0x061C, "a direction-changing character", kRemove},
        {0x2000, 0x200A, "a typographic space", kPlainBlank, true},
        {0x200B, 0x200D, "an invisible character", kRemove},
        {0x200E, 0x200F, "a direction-changing character", kRemove},
        {0x2010, 0x2015, "a typographic dash", kPlainMinus},
        {0x2018, 0x2018, "a left single smart quote", kPlainQuote},
        {0x2019, 0x2019, "a right single smart quote", kPlainQuote},
        {0x201A, 0x201B, "a single smart quote", kPlainQuote},
        {0x201C, 0x201C, "a left smart quote", kPlainQuote},
        {0x201D, 0x201D, "a right smart quote", kPlainQuote},
        {0x201E, 0x201F, "a smart quote", kPlainQuote},
        {0x2026, 0x2026, "an ellipsis", "write out what it stands for, or remove it"},
        {0x2028, 0x2029, "a Unicode line separator", kPlainLineEnd},
        {0x202A, 0x202E, "a direction-changing character", kRemove},
        {0x202F, 0x202F, "a narrow no-break space", kPlainBlank, true},
        {0x2032, 0x2033, "a prime", kPlainQuote},
        {0x205F, 0x205F, "a typographic space", kPlainBlank, true},
        {0x2060, 0x2065, "an invisible character", kRemove},
        {0x2066, 0x2069, "a direction-changing character", kRemove},
        {0x206A, 0x206F, "an invisible character", kRemove},
        {0x2212, 0x2212, "a mathematical minus sign", kPlainMinus},
        {0x3000, 0x3000, "a full-width space", kPlainBlank, true},
        {0x3001, 0x3001, "an ideographic comma", kPlainComma},
        {0xFEFF, 0xFEFF, "a byte order mark", kRemove},
};

}  // namespace

const OddCharacter* oddCharacter(char32_t character) {
    const auto row = std::find_if(std::begin(kOddCharacters), std::end(kOddCharacters),
                                  [character](const OddCharacter& odd) {
                                      return odd.first <= character && character <= odd.last;
                                  });
    return row != std::end(kOddCharacters) ? row : nullptr;
}

}  // namespace kc2::tool
