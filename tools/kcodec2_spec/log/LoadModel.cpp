// Which lines a load can write, and in which order: what a sequence of lines proves.

#include "log/LoadModel.h"

#include <algorithm>
#include <bit>
#include <iterator>

#include "device/DevicePaths.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

// The lines of a load in their order. A document's lines come section by section.
constexpr unsigned kSectionCount = std::size(kSections);
enum Slot : unsigned {
    FirstLookup,
    Parsing,
    OpenFailed,
    FallingBack,
    NothingOpened,
    SpecLookup,
    SpecRejected,
    SpecSections,
    SpecFilters = SpecSections + kSectionCount,
    Dump,
    OverlayLookup,
    OverlayLookupAgain,
    PrivateRejected,
    PrivateSections,
    PrivateFilters = PrivateSections + kSectionCount,
    BuiltInLines,
    SlotCount,
};
static_assert(SlotCount <= 64);

constexpr uint64_t bit(unsigned slot) {
    return uint64_t{1} << slot;
}

constexpr uint64_t bits(unsigned first, unsigned limit) {
    return bit(limit) - bit(first);
}

constexpr uint64_t kRepeated =
        bits(SpecSections, Dump) | bits(PrivateSections, BuiltInLines) | bit(BuiltInLines);
constexpr uint64_t kLookups =
        bit(FirstLookup) | bit(SpecLookup) | bit(OverlayLookup) | bit(OverlayLookupAgain);
constexpr uint64_t kSpecLines = bits(SpecRejected, Dump);
constexpr uint64_t kOverlayLines = bits(PrivateRejected, SlotCount);

// One kind of load: which slots it fills for sure, and which it may fill.
struct Kind {
    uint64_t required;
    uint64_t allowed;
    bool hasVariant;
    SpecSource source;
    bool isSpecAccepted;
    OverlayResult overlay;
};

Kind kindOf(bool hasVariant, uint64_t infoLines, SpecSource source, bool isSpecAccepted,
            OverlayResult overlay) {
    Kind kind = {infoLines, 0, hasVariant, source, isSpecAccepted, overlay};
    const bool isOpen = source != SpecSource::None;
    kind.required |= source != SpecSource::Variant ? bit(OpenFailed) | bit(FallingBack) : 0;
    kind.required |= isOpen ? 0 : bit(NothingOpened);
    kind.required |= hasVariant ? 0 : kLookups & ~(isOpen ? 0 : bit(SpecLookup));
    kind.required |= isOpen && !isSpecAccepted ? bit(SpecRejected) : 0;
    kind.required |= overlay == OverlayResult::Rejected ? bit(PrivateRejected) : 0;
    kind.allowed = kind.required;
    kind.allowed |= isOpen && isSpecAccepted ? bits(SpecSections, Dump) : 0;
    kind.allowed |= overlay == OverlayResult::Private   ? bits(PrivateSections, BuiltInLines)
                    : overlay == OverlayResult::BuiltIn ? bit(BuiltInLines)
                                                        : 0;
    return kind;
}

std::vector<Kind> allKinds() {
    std::vector<Kind> kinds;
    for (const bool hasVariant : {false, true}) {
        // The level word lets through nothing, a heading of the dump, or both.
        for (const uint64_t info : {uint64_t{0}, bit(Dump), bit(Parsing) | bit(Dump)}) {
            for (const SpecSource source :
                 {SpecSource::Variant, SpecSource::Fallback, SpecSource::None}) {
                for (const bool isAccepted : {false, true}) {
                    if (source == SpecSource::None && isAccepted) {
                        continue;
                    }
                    for (const OverlayResult overlay :
                         {OverlayResult::BuiltIn, OverlayResult::Rejected,
                          OverlayResult::Private}) {
                        kinds.push_back(kindOf(hasVariant, info, source, isAccepted, overlay));
                    }
                }
            }
        }
    }
    return kinds;
}

const std::vector<Kind>& kinds() {
    static const std::vector<Kind>& all = *new std::vector<Kind>(allKinds());
    return all;
}

// The sections that an event may be about, as bits from 0 on.
uint64_t sectionsOf(const LoadEvent& event) {
    uint64_t section = 1;
    for (const Section& row : kSections) {
        const std::string place = std::string(targetSpecRoot) + "/" + *row.key;
        const bool isInside =
                event.value.size() == place.size() ||
                (event.value.size() > place.size() &&
                 (event.value[place.size()] == '/' || event.value[place.size()] == '['));
        if (event.id == LineId::RowSkipped ? row.type == SectionType::BitRateRows
                                           : event.value.starts_with(place) && isInside) {
            return section;
        }
        section <<= 1;
    }
    return section - 1;  // Another release's place: any of them.
}

uint64_t slotsOf(const LoadEvent& event) {
    switch (event.id) {
        case LineId::NoVariant:
            return kLookups;
        case LineId::Parsing:
            return bit(Parsing);
        case LineId::OpenFailed:
            return bit(OpenFailed);
        case LineId::FallingBack:
            return bit(FallingBack);
        case LineId::NothingOpened:
            return bit(NothingOpened);
        case LineId::StreamRejected:
            return bit(SpecRejected) | bit(PrivateRejected);
        case LineId::BuiltInRejected:
            return bit(BuiltInLines);
        case LineId::EncoderFilter:
            return bit(SpecFilters) | bit(PrivateFilters);
        case LineId::Skipped:
        case LineId::RowSkipped: {
            const auto named = [&](const char* words) {
                return event.document.empty() || event.document.find(words) != std::string::npos;
            };
            const uint64_t sections = sectionsOf(event);
            return (named("system spec") ? sections << SpecSections : 0) |
                   (named("private file") ? sections << PrivateSections : 0) |
                   (event.document.find("built-in") != std::string::npos ? bit(BuiltInLines) : 0);
        }
        default:
            return bit(Dump);
    }
}

// From which slot on lines may be missing without anybody noticing: the slots of `targets` that
// can follow one of `from`.
uint64_t step(const Kind& kind, uint64_t from, uint64_t targets, bool mayMiss) {
    uint64_t reached = 0;
    for (uint64_t left = targets & kind.allowed; left != 0; left &= left - 1) {
        const unsigned target = static_cast<unsigned>(std::countr_zero(left));
        const uint64_t self = kRepeated & bit(target);
        const uint64_t before = from & (bits(0, target) | self);
        if (before == 0) {
            continue;
        }
        const unsigned last = 63 - static_cast<unsigned>(std::countl_zero(before));
        const bool isSelf = last == target;
        const uint64_t between = isSelf ? 0 : bits(last, target) & ~bit(last);
        if (mayMiss || (kind.required & between) == 0) {
            reached |= bit(target);
        }
    }
    return reached;
}

// The first slots that a load can begin with in a log that may lack its start.
uint64_t startSlots(const Kind& kind, uint64_t targets, bool mayMiss) {
    uint64_t reached = 0;
    for (uint64_t left = targets & kind.allowed; left != 0; left &= left - 1) {
        const unsigned target = static_cast<unsigned>(std::countr_zero(left));
        if (mayMiss || (kind.required & bits(0, target)) == 0) {
            reached |= bit(target);
        }
    }
    return reached;
}

uint64_t endSlots(const Kind& kind, uint64_t slots, bool mayMiss) {
    const uint64_t last = mayMiss || kind.required == 0
                                  ? 0
                                  : ~uint64_t{0} << (63 - std::countl_zero(kind.required));
    return last == 0 ? slots : slots & last;
}

// An event as the model sees it.
struct Place {
    uint64_t slots;
    uint64_t repeats;
};

Place placeOf(const LoadEvent& event) {
    constexpr uint64_t kMost = 5;  // One more than any load has.
    return {slotsOf(event), event.id == LineId::NoVariant ? std::min(event.count, kMost) : 1};
}

uint64_t go(const Kind& kind, uint64_t from, const Place& place, bool mayMiss) {
    for (uint64_t n = 0; n < place.repeats; ++n) {
        from = step(kind, from, place.slots, mayMiss);
    }
    return from;
}

uint64_t start(const Kind& kind, const Place& place, bool mayMissStart, bool mayMiss) {
    const uint64_t first = startSlots(kind, place.slots, mayMissStart);
    return go(kind, first, {place.slots, place.repeats - 1}, mayMiss);
}

// Which slots each event can have in a load of this kind; empty when it cannot be one.
std::vector<uint64_t> slotsIn(const Kind& kind, const std::vector<Place>& places,
                              const LoadLimits& limits) {
    std::vector<uint64_t> slots;
    for (const Place& place : places) {
        slots.push_back(slots.empty() ? start(kind, place, limits.hasGaps || !limits.isStartKnown,
                                              limits.hasGaps)
                                      : go(kind, slots.back(), place, limits.hasGaps));
        if (slots.back() == 0) {
            return {};
        }
    }
    if (!slots.empty()) {
        slots.back() = endSlots(kind, slots.back(), limits.hasGaps || !limits.isEndKnown);
        if (slots.back() == 0) {
            return {};
        }
    }
    // Of an event's slots those from which the next event's can be reached.
    for (size_t i = slots.size(); i-- > 1;) {
        uint64_t kept = 0;
        for (uint64_t left = slots[i - 1]; left != 0; left &= left - 1) {
            const uint64_t one = left & ~(left - 1);
            kept |= (go(kind, one, places[i], limits.hasGaps) & slots[i]) != 0 ? one : 0;
        }
        slots[i - 1] = kept;
    }
    return slots;
}

bool isPathOfVariant(const LoadEvent& event) {
    return (event.id == LineId::Parsing || event.id == LineId::OpenFailed) && !event.isCut &&
           event.value != std::string(kVendorSpecDirectory) + kSystemSpecName;
}

bool isExcluded(const Kind& kind, std::span<const LoadEvent> events, const LoadLimits& limits) {
    const bool isBuiltInRejected =
            std::any_of(events.begin(), events.end(),
                        [](const LoadEvent& event) { return event.id == LineId::BuiltInRejected; });
    const bool isOpen = kind.source != SpecSource::None;
    const bool fitsTree = limits.canOpen[static_cast<size_t>(kind.source)] &&
                          limits.canEnd[static_cast<size_t>(kind.overlay)] &&
                          (!isOpen || (kind.isSpecAccepted ? limits.canAccept : limits.canReject));
    // Every built-in document names codec components.
    return !fitsTree || (limits.hasDumpEntries && !kind.isSpecAccepted) ||
           (limits.hasNoCodecs && kind.overlay == OverlayResult::BuiltIn && !isBuiltInRejected) ||
           (!kind.hasVariant && std::any_of(events.begin(), events.end(), isPathOfVariant));
}

PossibleLoads collect(std::span<const LoadEvent> events, const LoadLimits& limits) {
    PossibleLoads loads;
    std::vector<uint64_t> slots(events.size(), 0);
    std::vector<Place> places;
    std::transform(events.begin(), events.end(), std::back_inserter(places), placeOf);
    loads.isContradictory = true;
    for (const Kind& kind : kinds()) {
        if (isExcluded(kind, events, limits)) {
            continue;
        }
        const std::vector<uint64_t> here = slotsIn(kind, places, limits);
        if (here.size() != events.size()) {
            continue;
        }
        loads.isContradictory = false;
        loads.canOpen[static_cast<size_t>(kind.source)] = true;
        loads.canAccept |= kind.isSpecAccepted;
        loads.canReject |= kind.source != SpecSource::None && !kind.isSpecAccepted;
        loads.canEnd[static_cast<size_t>(kind.overlay)] = true;
        for (size_t i = 0; i < slots.size(); ++i) {
            slots[i] |= here[i];
        }
    }
    for (const uint64_t each : slots) {
        const bool isSpec = (each & kSpecLines) != 0;
        const bool isOverlay = (each & kOverlayLines) != 0;
        loads.of.push_back(isSpec == isOverlay ? Which::Either
                           : isSpec            ? Which::SystemSpec
                                               : Which::Overlay);
    }
    return loads;
}

}  // namespace

PossibleLoads possibleLoads(std::span<const LoadEvent> events, const LoadLimits& limits) {
    PossibleLoads loads = collect(events, limits);
    if (loads.isContradictory && !limits.hasGaps) {
        LoadLimits withGaps = limits;
        withGaps.hasGaps = true;
        loads = collect(events, withGaps);
        loads.isIncomplete = !loads.isContradictory;
    }
    return loads;
}

bool LoadPosition::follow(const LoadEvent& event) {
    const bool isPath = event.id == LineId::Parsing || event.id == LineId::OpenFailed;
    if (isPath && !event.isCut && !mPath.empty() && event.value != mPath) {
        return false;
    }
    const bool hasVariant = mHasVariant || isPathOfVariant(event);
    const bool lacksVariant = mLacksVariant || event.id == LineId::NoVariant;
    const Place place = placeOf(event);
    std::vector<uint64_t> slots;
    for (size_t i = 0; i < kinds().size(); ++i) {
        const Kind& kind = kinds()[i];
        const bool isExcluded = kind.hasVariant ? lacksVariant : hasVariant;
        slots.push_back(isExcluded       ? 0
                        : mSlots.empty() ? start(kind, place, true, true)
                                         : go(kind, mSlots[i], place, true));
    }
    if (std::all_of(slots.begin(), slots.end(), [](uint64_t each) { return each == 0; })) {
        return false;
    }
    mSlots = std::move(slots);
    mHasVariant = hasVariant;
    mLacksVariant = lacksVariant;
    mPath = isPath && !event.isCut ? event.value : mPath;
    return true;
}

}  // namespace kc2::tool
