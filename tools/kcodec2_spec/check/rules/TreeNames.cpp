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
#include <unordered_map>
#include <utility>

#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"

namespace kc2::tool {

namespace {

// What is compared with each other.
enum class NameUse { Setting, Component, Library };
constexpr size_t kNameUses = 3;

struct SharedName {
    struct Place {
        const Document* document;
        Span span;
        size_t order;  // Of the document.
    };

    NameUse use;
    std::string_view text;
    std::string digits;
    uint32_t letters = 0;            // A bit for each that it has.
    size_t length = 0;               // Without separators.
    std::vector<Place> places = {};  // One in each document, in the order of the documents.
};

SharedName sharedName(NameUse use, std::string_view text) {
    SharedName name = {.use = use, .text = text, .digits = digitsOf(text)};
    for (const char c : text) {
        const char small = inSmallLetters(c);
        const bool isLetter = small >= 'a' && small <= 'z';
        name.letters |= isLetter ? uint32_t{1} << (small - 'a') : 0;
        name.length += isLetter || isDigit(c) ? 1 : 0;
    }
    return name;
}

// The names of the documents, each once.
class SharedNames {
public:
    explicit SharedNames(std::span<const Document* const> documents) {
        for (const Document* const document : documents) {
            if (!document->isBuiltIn() && mPaths.insert(document->source.path()).second) {
                addNamesOf(*document);
            }
        }
    }

    // Calls visit(a, b) for each two that may be one name in two spellings: digits distinguish
    // names, and one letter is wrong. So many names with the same digits come from no person, and
    // are not compared.
    template <typename Visit>
    void forEachPair(Visit visit) const {
        constexpr size_t kMost = 2000;
        const std::vector<const SharedName*> names = sorted();
        for (auto first = names.begin(); first != names.end();) {
            const auto limit = std::find_if(first, names.end(), [&](const SharedName* name) {
                return groupOf(*name) != groupOf(**first);
            });
            const bool isCompared = limit - first <= static_cast<ptrdiff_t>(kMost);
            for (auto a = first; isCompared && a != limit; ++a) {
                for (auto b = a + 1; b != limit; ++b) {
                    if (isAlike(**a, **b)) {
                        visit(**a, **b);
                    }
                }
            }
            first = limit;
        }
    }

private:
    static std::pair<NameUse, std::string_view> groupOf(const SharedName& name) {
        return {name.use, name.digits};
    }

    static bool isAlike(const SharedName& a, const SharedName& b) {
        return std::popcount(a.letters ^ b.letters) <= 2 && a.length <= b.length + 1 &&
               b.length <= a.length + 1;
    }

    void addNamesOf(const Document& document) {
        forEachSettingName(
                document, [&](const DocumentName& name) { add(NameUse::Setting, document, name); });
        forEachEntry(document, isOfCodecs,
                     [&](const DocumentName& name) { add(NameUse::Component, document, name); });
        const auto isOfLibraries = [](SectionType type) { return type == SectionType::Names; };
        forEachEntry(document, isOfLibraries,
                     [&](const DocumentName& name) { add(NameUse::Library, document, name); });
    }

    void add(NameUse use, const Document& document, const DocumentName& name) {
        auto& names = mNames[static_cast<size_t>(use)];
        auto found = names.find(name.text);
        if (found == names.end()) {
            found = names.emplace(name.text, sharedName(use, name.text)).first;
        }
        std::vector<SharedName::Place>& places = found->second.places;
        if (places.empty() || places.back().document != &document) {
            places.push_back({&document, name.span, mPaths.size()});
        }
    }

    std::vector<const SharedName*> sorted() const {
        std::vector<const SharedName*> names;
        for (const auto& ofUse : mNames) {
            for (const auto& [text, name] : ofUse) {
                names.push_back(&name);
            }
        }
        std::sort(names.begin(), names.end(), [](const SharedName* a, const SharedName* b) {
            return std::tie(a->use, a->digits, a->text) < std::tie(b->use, b->digits, b->text);
        });
        return names;
    }

    std::set<std::string> mPaths;
    std::array<std::unordered_map<std::string_view, SharedName>, kNameUses> mNames;
};

bool isInOneDocument(const SharedName& a, const SharedName& b) {
    return std::any_of(a.places.begin(), a.places.end(), [&](const SharedName::Place& place) {
        return std::any_of(b.places.begin(), b.places.end(), [&](const SharedName::Place& other) {
            return place.document == other.document;
        });
    });
}

// The two names, the rarer one first; of two as rare, the one that only the later document has.
std::pair<const SharedName*, const SharedName*> rarerFirst(const SharedName& a,
                                                           const SharedName& b) {
    const size_t countOfA = a.places.size();
    const size_t countOfB = b.places.size();
    const bool isALater = a.places.front().order > b.places.front().order;
    const bool isAFirst = countOfA != countOfB ? countOfA < countOfB : isALater;
    return isAFirst ? std::pair(&a, &b) : std::pair(&b, &a);
}

}  // namespace

TreeNames::TreeNames(std::span<const Document* const> documents, const KnownSettings& known) {
    const auto namesLike = [&](const SharedName& name) -> const NearNames& {
        return name.use == NameUse::Component ? known.components : known.settings;
    };
    const auto isVariation = [&](const SharedName& name, const SharedName& of) {
        return namesLike(name).isVariation(name.text, of.text);
    };
    const auto add = [&](const SharedName& rare, const SharedName& other) {
        const SharedName::Place& first = other.places.front();
        for (const SharedName::Place& place : rare.places) {
            mByPath[place.document->source.path()].push_back({place.span, rare.text, other.text,
                                                              first.document, first.span,
                                                              other.places.size()});
        }
    };
    SharedNames(documents).forEachPair([&](const SharedName& a, const SharedName& b) {
        const auto [rare, other] = rarerFirst(a, b);
        if (isInOneDocument(a, b)) {
            return;  // These are two names.
        }
        const bool isRareMisspelt = isVariation(*rare, *other);
        const bool isTie = rare->places.size() == other->places.size();
        if (!isRareMisspelt && !(isTie && isVariation(*other, *rare))) {
            return;
        }
        // Known names and misspelt ones are reported in each document.
        for (const SharedName* const name : {rare, other}) {
            if (namesLike(*name).find(name->text, "").entry != nullptr) {
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
