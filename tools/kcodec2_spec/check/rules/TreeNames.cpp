// Names that the documents of a device tree spell differently.

#include "check/rules/TreeNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"

namespace kc2::tool {

namespace {

// What is compared with each other.
enum class NameUse { Setting, Component, Library };

constexpr uint32_t kDigit = uint32_t{1} << 31;

// The bit of each letter, whatever its case, and the one of all digits.
constexpr std::array<uint32_t, 256> kLetterBits = [] {
    std::array<uint32_t, 256> bits = {};
    for (size_t byte = 0; byte < bits.size(); ++byte) {
        const char c = inSmallLetters(static_cast<char>(byte));
        bits[byte] = c >= 'a' && c <= 'z' ? uint32_t{1} << (c - 'a') : isDigit(c) ? kDigit : 0;
    }
    return bits;
}();

// A name in a document.
struct NamePlace {
    NameUse use;
    const Document* document;
    size_t order;  // Of the document.
    std::string_view text;
    Span span;
    uint32_t letters = 0;  // The bits of those that it has.
    size_t length = 0;     // Without separators.
};

using SharedName = std::vector<NamePlace>;  // One in each document, in the order of the documents.

// Whether one letter may be wrong.
bool isAlike(const NamePlace& a, const NamePlace& b) {
    return std::popcount(a.letters ^ b.letters) <= 2 && a.length <= b.length + 1 &&
           b.length <= a.length + 1 && a.text != b.text;
}

// The names of several documents, in groups of one use and the same digits: digits distinguish
// names. Most groups are small, so a document may have a hundred thousand names.
class SharedNames {
public:
    explicit SharedNames(std::span<const Document* const> documents) {
        std::set<std::string> paths;
        for (const Document* const document : documents) {
            if (!document->isBuiltIn() && paths.insert(document->source.path()).second) {
                addNamesOf(*document, paths.size());
            }
        }
        std::sort(mGroups.begin(), mGroups.end(),
                  [](const Group& a, const Group& b) { return a.first < b.first; });
    }

    // Calls visit(a, b) for each two that may be one name in two spellings. So many names in one
    // group come from no person, and are not compared.
    template <typename Visit>
    void forEachPair(Visit visit) const {
        constexpr size_t kMost = 2000;
        for (auto first = mGroups.begin(); first != mGroups.end();) {
            const auto limit = std::find_if(first, mGroups.end(), [&](const auto& one) {
                return one.first != first->first;
            });
            const std::vector<SharedName> names = namesOf({first, limit});
            for (size_t i = 0; names.size() <= kMost && i < names.size(); ++i) {
                for (size_t j = i + 1; j < names.size(); ++j) {
                    if (isAlike(names[i].front(), names[j].front())) {
                        visit(names[i], names[j]);
                    }
                }
            }
            first = limit;
        }
    }

private:
    using Group = std::pair<uint64_t, size_t>;  // Its digits, and the index of a place.

    void addNamesOf(const Document& document, size_t order) {
        const auto addAs = [&](NameUse use) {
            return [this, use, order, &document](const DocumentName& name) {
                add({use, &document, order, name.text, name.span});
            };
        };
        const auto isOfLibraries = [](SectionType type) { return type == SectionType::Names; };
        forEachSettingName(document, addAs(NameUse::Setting));
        forEachEntry(document, isOfCodecs, addAs(NameUse::Component));
        forEachEntry(document, isOfLibraries, addAs(NameUse::Library));
    }

    void add(NamePlace place) {
        constexpr int kBits = 5;
        uint64_t group = static_cast<uint64_t>(place.use) + 1;  // Other digits may have the same.
        uint32_t letters = 0;
        size_t separators = 0;
        for (const char c : place.text) {
            const uint32_t bit = kLetterBits[static_cast<unsigned char>(c)];
            letters |= bit;
            separators += bit == 0 ? 1 : 0;
            if (bit == kDigit) {
                group = std::rotl(group, kBits) ^ static_cast<uint64_t>(c);
            }
        }
        place.letters = letters;
        place.length = place.text.size() - separators;
        mGroups.emplace_back(group, mPlaces.size());
        mPlaces.push_back(place);
    }

    // Whether it may have two names that are alike. A large one has.
    bool mayHavePair(std::span<const Group> group) const {
        constexpr size_t kSmall = 8;
        for (size_t i = 1; group.size() <= kSmall && i < group.size(); ++i) {
            const NamePlace& one = mPlaces[group[i].second];
            if (std::any_of(
                        group.begin(), group.begin() + static_cast<ptrdiff_t>(i),
                        [&](const Group& other) { return isAlike(one, mPlaces[other.second]); })) {
                return true;
            }
        }
        return group.size() > kSmall;
    }

    std::vector<SharedName> namesOf(std::span<const Group> group) const {
        std::vector<SharedName> names;
        if (!mayHavePair(group)) {
            return names;
        }
        std::vector<const NamePlace*> places;
        for (const Group& one : group) {
            places.push_back(&mPlaces[one.second]);
        }
        std::sort(places.begin(), places.end(), [](const NamePlace* a, const NamePlace* b) {
            return std::tie(a->text, a->order) < std::tie(b->text, b->order);
        });
        for (const NamePlace* const place : places) {
            if (names.empty() || names.back().front().text != place->text) {
                names.push_back({*place});
            } else if (names.back().back().document != place->document) {
                names.back().push_back(*place);
            }
        }
        return names;
    }

    std::vector<NamePlace> mPlaces;
    std::vector<Group> mGroups;
};

bool isInOneDocument(const SharedName& a, const SharedName& b) {
    for (auto one = a.begin(), other = b.begin(); one != a.end() && other != b.end();) {
        if (one->order == other->order) {
            return true;
        }
        one->order < other->order ? ++one : ++other;
    }
    return false;
}

// The two names, the rarer one first; of two as rare, the one that only the later document has.
std::pair<const SharedName*, const SharedName*> rarerFirst(const SharedName& a,
                                                           const SharedName& b) {
    const bool isAFirst =
            std::pair(a.size(), b.front().order) < std::pair(b.size(), a.front().order);
    return isAFirst ? std::pair(&a, &b) : std::pair(&b, &a);
}

}  // namespace

TreeNames::TreeNames(std::span<const Document* const> documents, const KnownSettings& known) {
    const auto namesLike = [&](const SharedName& name) -> const NearNames& {
        return name.front().use == NameUse::Component ? known.components : known.settings;
    };
    const auto isVariation = [&](const SharedName& name, const SharedName& of) {
        return namesLike(name).isVariation(name.front().text, of.front().text);
    };
    const auto add = [&](const SharedName& rare, const SharedName& other) {
        const NamePlace& first = other.front();
        for (const NamePlace& place : rare) {
            mByPath[place.document->source.path()].push_back(
                    {place.span, place.text, first.text, first.document, first.span, other.size()});
        }
    };
    size_t room = 50'000;  // So many alike names come from no person, and comparing takes long.
    SharedNames(documents).forEachPair([&](const SharedName& a, const SharedName& b) {
        if (room == 0 || isInOneDocument(a, b) ||
            digitsOf(a.front().text) != digitsOf(b.front().text)) {
            return;  // These are two names.
        }
        --room;
        const auto [rare, other] = rarerFirst(a, b);
        const bool isRareMisspelt = isVariation(*rare, *other);
        const bool isTie = rare->size() == other->size();
        if (!isRareMisspelt && !(isTie && isVariation(*other, *rare))) {
            return;
        }
        // Known names and misspelt ones are reported in each document.
        for (const SharedName* const name : {rare, other}) {
            if (namesLike(*name).find(name->front().text, "").entry != nullptr) {
                return;
            }
        }
        isRareMisspelt ? add(*rare, *other) : add(*other, *rare);
    });
}

std::span<const TreeNames::Variation> TreeNames::in(const Document& document) const {
    const auto found = mByPath.find(document.source.path());
    return found != mByPath.end() ? std::span<const Variation>(found->second)
                                  : std::span<const Variation>();
}

void checkTreeNames(const Checked& checked, Report* report) {
    std::optional<TreeNames> ofLoad;
    const TreeNames* names = checked.treeNames;
    if (names == nullptr && checked.hasWrittenOverlay()) {
        names = &ofLoad.emplace(checked.documents, checked.known);
    }
    if (names == nullptr) {
        return;
    }
    checked.forEachWritten([&](const Document& document) {
        for (const TreeNames::Variation& one : names->in(document)) {
            const Source& source = one.otherDocument->source;
            report->add("name-varies", document, one.span,
                        fmt::format("\"{}\" is nearly \"{}\", at {}{}: is one of them misspelt?",
                                    one.name, one.other, source.placeOf(one.otherSpan.start),
                                    one.otherCount == 1
                                            ? ""
                                            : fmt::format(" and in {}", counted(one.otherCount - 1,
                                                                                "other document"))),
                        besides(source, one.otherSpan));
        }
    });
}

}  // namespace kc2::tool
