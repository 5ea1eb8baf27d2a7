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
namespace slot {
enum : unsigned {
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
    Count,
};
}  // namespace slot
static_assert(slot::Count <= 64);

constexpr uint64_t slotBit(unsigned slot) {
    return uint64_t{1} << slot;
}

constexpr uint64_t slotBits(unsigned first, unsigned limit) {
    return slotBit(limit) - slotBit(first);
}

constexpr uint64_t kRepeated = slotBits(slot::SpecSections, slot::Dump) |
                               slotBits(slot::PrivateSections, slot::BuiltInLines) |
                               slotBit(slot::BuiltInLines);
constexpr uint64_t kLookups = slotBit(slot::FirstLookup) | slotBit(slot::SpecLookup) |
                              slotBit(slot::OverlayLookup) | slotBit(slot::OverlayLookupAgain);
constexpr uint64_t kSpecLines = slotBits(slot::SpecRejected, slot::Dump);
constexpr uint64_t kOverlayLines = slotBits(slot::PrivateRejected, slot::Count);

// One kind of load: which slots it fills for sure, and which it may fill.
struct LoadKind {
    uint64_t required;
    uint64_t allowed;
    bool hasVariant;
    SpecSource source;
    bool isSpecAccepted;
    OverlayResult overlay;
};

LoadKind loadKindOf(bool hasVariant, uint64_t infoLines, SpecSource source, bool isSpecAccepted,
                    OverlayResult overlay) {
    LoadKind kind = {infoLines, 0, hasVariant, source, isSpecAccepted, overlay};
    const bool isOpen = source != SpecSource::None;
    kind.required |= source != SpecSource::Variant
                             ? slotBit(slot::OpenFailed) | slotBit(slot::FallingBack)
                             : 0;
    kind.required |= isOpen ? 0 : slotBit(slot::NothingOpened);
    kind.required |= hasVariant ? 0 : kLookups & ~(isOpen ? 0 : slotBit(slot::SpecLookup));
    kind.required |= isOpen && !isSpecAccepted ? slotBit(slot::SpecRejected) : 0;
    kind.required |= overlay == OverlayResult::Rejected ? slotBit(slot::PrivateRejected) : 0;
    kind.allowed = kind.required;
    kind.allowed |= isOpen && isSpecAccepted ? slotBits(slot::SpecSections, slot::Dump) : 0;
    kind.allowed |= overlay == OverlayResult::Private
                            ? slotBits(slot::PrivateSections, slot::BuiltInLines)
                    : overlay == OverlayResult::BuiltIn ? slotBit(slot::BuiltInLines)
                                                        : 0;
    return kind;
}

std::vector<LoadKind> makeLoadKinds() {
    std::vector<LoadKind> kinds;
    for (const bool hasVariant : {false, true}) {
        // The level word lets through nothing, a heading of the dump, or both.
        for (const uint64_t info :
             {uint64_t{0}, slotBit(slot::Dump), slotBit(slot::Parsing) | slotBit(slot::Dump)}) {
            for (const SpecSource source :
                 {SpecSource::Variant, SpecSource::Fallback, SpecSource::None}) {
                for (const bool isAccepted : {false, true}) {
                    if (source == SpecSource::None && isAccepted) {
                        continue;
                    }
                    for (const OverlayResult overlay :
                         {OverlayResult::BuiltIn, OverlayResult::Rejected,
                          OverlayResult::Private}) {
                        kinds.push_back(loadKindOf(hasVariant, info, source, isAccepted, overlay));
                    }
                }
            }
        }
    }
    return kinds;
}

const std::vector<LoadKind>& loadKinds() {
    static const std::vector<LoadKind>& all = *new std::vector<LoadKind>(makeLoadKinds());
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
            return slotBit(slot::Parsing);
        case LineId::OpenFailed:
            return slotBit(slot::OpenFailed);
        case LineId::FallingBack:
            return slotBit(slot::FallingBack);
        case LineId::NothingOpened:
            return slotBit(slot::NothingOpened);
        case LineId::StreamRejected:
            return slotBit(slot::SpecRejected) | slotBit(slot::PrivateRejected);
        case LineId::BuiltInRejected:
            return slotBit(slot::BuiltInLines);
        case LineId::EncoderFilter:
            return slotBit(slot::SpecFilters) | slotBit(slot::PrivateFilters);
        case LineId::Skipped:
        case LineId::RowSkipped: {
            const auto named = [&](const char* words) {
                return event.document.empty() || event.document.find(words) != std::string::npos;
            };
            const uint64_t sections = sectionsOf(event);
            return (named("system spec") ? sections << slot::SpecSections : 0) |
                   (named("private file") ? sections << slot::PrivateSections : 0) |
                   (event.document.find("built-in") != std::string::npos
                            ? slotBit(slot::BuiltInLines)
                            : 0);
        }
        default:
            return slotBit(slot::Dump);
    }
}

// From which slot on lines may be missing without anybody noticing: the slots of `targets` that
// can follow one of `from`.
uint64_t nextSlots(const LoadKind& kind, uint64_t from, uint64_t targets, bool mayMiss) {
    uint64_t reached = 0;
    for (uint64_t left = targets & kind.allowed; left != 0; left &= left - 1) {
        const unsigned target = static_cast<unsigned>(std::countr_zero(left));
        const uint64_t self = kRepeated & slotBit(target);
        const uint64_t before = from & (slotBits(0, target) | self);
        if (before == 0) {
            continue;
        }
        const unsigned last = 63 - static_cast<unsigned>(std::countl_zero(before));
        const bool isSelf = last == target;
        const uint64_t between = isSelf ? 0 : slotBits(last, target) & ~slotBit(last);
        if (mayMiss || (kind.required & between) == 0) {
            reached |= slotBit(target);
        }
    }
    return reached;
}

// The first slots that a load can begin with in a log that may lack its start.
uint64_t firstSlots(const LoadKind& kind, uint64_t targets, bool mayMiss) {
    uint64_t reached = 0;
    for (uint64_t left = targets & kind.allowed; left != 0; left &= left - 1) {
        const unsigned target = static_cast<unsigned>(std::countr_zero(left));
        if (mayMiss || (kind.required & slotBits(0, target)) == 0) {
            reached |= slotBit(target);
        }
    }
    return reached;
}

uint64_t endSlots(const LoadKind& kind, uint64_t slots, bool mayMiss) {
    const uint64_t last = mayMiss || kind.required == 0
                                  ? 0
                                  : ~uint64_t{0} << (63 - std::countl_zero(kind.required));
    return last == 0 ? slots : slots & last;
}

// An event as the model sees it.
struct EventSlots {
    uint64_t slots;
    uint64_t repeats;
};

EventSlots slotsFor(const LoadEvent& event) {
    constexpr uint64_t kMost = 5;  // One more than any load has.
    return {slotsOf(event), event.id == LineId::NoVariant ? std::min(event.count, kMost) : 1};
}

uint64_t slotsAfter(const LoadKind& kind, uint64_t from, const EventSlots& place, bool mayMiss) {
    for (uint64_t n = 0; n < place.repeats; ++n) {
        from = nextSlots(kind, from, place.slots, mayMiss);
    }
    return from;
}

uint64_t slotsAtStart(const LoadKind& kind, const EventSlots& place, bool mayMissStart,
                      bool mayMiss) {
    const uint64_t first = firstSlots(kind, place.slots, mayMissStart);
    return slotsAfter(kind, first, {place.slots, place.repeats - 1}, mayMiss);
}

// Which slots each event can have in a load of this kind; empty when it cannot be one.
std::vector<uint64_t> slotsIn(const LoadKind& kind, const std::vector<EventSlots>& places,
                              const LoadLimits& limits) {
    std::vector<uint64_t> slots;
    for (const EventSlots& place : places) {
        slots.push_back(slots.empty()
                                ? slotsAtStart(kind, place, limits.hasGaps || !limits.isStartKnown,
                                               limits.hasGaps)
                                : slotsAfter(kind, slots.back(), place, limits.hasGaps));
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
    for (size_t next = slots.size(); next > 1; --next) {
        const size_t i = next - 1;
        uint64_t kept = 0;
        for (uint64_t left = slots[i - 1]; left != 0; left &= left - 1) {
            const uint64_t one = left & ~(left - 1);
            kept |= (slotsAfter(kind, one, places[i], limits.hasGaps) & slots[i]) != 0 ? one : 0;
        }
        slots[i - 1] = kept;
    }
    return slots;
}

bool isPathOfVariant(const LoadEvent& event) {
    return (event.id == LineId::Parsing || event.id == LineId::OpenFailed) && !event.isCut &&
           event.value != std::string(kVendorSpecDirectory) + kSystemSpecName;
}

bool isExcluded(const LoadKind& kind, std::span<const LoadEvent> events, const LoadLimits& limits) {
    const bool isBuiltInRejected =
            std::any_of(events.begin(), events.end(),
                        [](const LoadEvent& event) { return event.id == LineId::BuiltInRejected; });
    const bool isOpen = kind.source != SpecSource::None;
    const bool fitsTree = limits.canOpen[static_cast<size_t>(kind.source)] &&
                          limits.canEnd[static_cast<size_t>(kind.overlay)] &&
                          (!isOpen || (kind.isSpecAccepted ? limits.canAccept : limits.canReject));
    // Every built-in document names codec components.
    return !fitsTree || (limits.hasNoCodecs && limits.hasDumpedCodecs) ||
           (limits.hasDumpEntries && !kind.isSpecAccepted) ||
           (limits.hasNoCodecs && kind.overlay == OverlayResult::BuiltIn && !isBuiltInRejected) ||
           (!kind.hasVariant && std::any_of(events.begin(), events.end(), isPathOfVariant));
}

PossibleLoads collectLoads(std::span<const LoadEvent> events, const LoadLimits& limits) {
    PossibleLoads loads;
    std::vector<uint64_t> slots(events.size(), 0);
    std::vector<EventSlots> places;
    std::transform(events.begin(), events.end(), std::back_inserter(places), slotsFor);
    loads.isContradictory = true;
    for (const LoadKind& kind : loadKinds()) {
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
    PossibleLoads loads = collectLoads(events, limits);
    if (loads.isContradictory && !limits.hasGaps) {
        LoadLimits stopped = limits;
        stopped.isEndKnown = false;
        const bool isUnfinished = limits.isEndKnown && !limits.hasNoCodecs &&
                                  !collectLoads(events, stopped).isContradictory;
        LoadLimits withGaps = limits;
        withGaps.hasGaps = true;
        loads = collectLoads(events, withGaps);
        loads.isIncomplete = !loads.isContradictory;
        loads.isUnfinished = isUnfinished;
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
    const EventSlots place = slotsFor(event);
    std::vector<uint64_t> slots;
    for (size_t i = 0; i < loadKinds().size(); ++i) {
        const LoadKind& kind = loadKinds()[i];
        const bool isExcluded = kind.hasVariant ? lacksVariant : hasVariant;
        slots.push_back(isExcluded       ? 0
                        : mSlots.empty() ? slotsAtStart(kind, place, true, true)
                                         : slotsAfter(kind, mSlots[i], place, true));
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
