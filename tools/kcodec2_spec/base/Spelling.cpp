// How far apart two words are.

#include "base/Spelling.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "base/Text.h"

namespace kc2::tool {

namespace {

constexpr size_t kLongest = 100;  // The cost is the product of the lengths.

using Row = std::array<size_t, kLongest + 1>;

bool isSame(char a, char b) {
    return inSmallLetters(a) == inSmallLetters(b);
}

void removeCommonEnds(std::string_view* a, std::string_view* b) {
    while (!a->empty() && !b->empty() && isSame(a->front(), b->front())) {
        a->remove_prefix(1);
        b->remove_prefix(1);
    }
    while (!a->empty() && !b->empty() && isSame(a->back(), b->back())) {
        a->remove_suffix(1);
        b->remove_suffix(1);
    }
}

}  // namespace

size_t editDistance(std::string_view a, std::string_view b, size_t limit) {
    if (std::max(a.size(), b.size()) > kLongest ||
        std::max(a.size(), b.size()) - std::min(a.size(), b.size()) > limit) {
        return a == b ? 0 : limit + 1;
    }
    removeCommonEnds(&a, &b);
    // One row for each letter of `a`: an exchange looks two rows back.
    Row rows[3];
    std::iota(rows[0].begin(), rows[0].begin() + b.size() + 1, size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        const Row& before = rows[(i - 1) % 3];
        Row& row = rows[i % 3];
        row[0] = i;
        size_t least = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({before[j - 1] + (isSame(a[i - 1], b[j - 1]) ? 0 : 1), before[j] + 1,
                               row[j - 1] + 1});
            if (i > 1 && j > 1 && isSame(a[i - 1], b[j - 2]) && isSame(a[i - 2], b[j - 1])) {
                row[j] = std::min(row[j], rows[(i - 2) % 3][j - 2] + 1);
            }
            least = std::min(least, row[j]);
        }
        if (least > limit) {
            return limit + 1;
        }
    }
    return rows[a.size() % 3][b.size()];
}

size_t commonLetters(std::string_view a, std::string_view b) {
    Row row = {};
    b = b.substr(0, kLongest);
    for (const char left : a.substr(0, kLongest)) {
        size_t diagonal = 0;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            row[j] = left == b[j - 1] ? diagonal + 1 : std::max(row[j], row[j - 1]);
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace kc2::tool
