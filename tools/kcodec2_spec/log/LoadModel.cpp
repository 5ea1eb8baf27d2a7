// Which lines a load can write, and in which order: what a sequence of lines proves.

#include "log/LoadModel.h"

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>
#include <utility>

#include "device/DevicePaths.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

// The lines of a load in their order. A document's lines come section by section.
constexpr unsigned kSectionCount = std::size(kSections);
namespace slot {
enum : unsigned {
    Start,  // Before the first line.
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
    End,  // After the last line.
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
constexpr uint64_t kOverlayLines = slotBits(slot::PrivateRejected, slot::End);

// One kind of load: which slots it fills for sure, and which it may fill.
struct LoadKind {
    uint64_t required;
    uint64_t allowed;
    bool hasVariant;
    SpecSource source;
    bool isSpecAccepted;
    OverlayResult overlay;
};

constexpr LoadKind loadKindOf(bool hasVariant, uint64_t infoLines, SpecSource source,
                              bool isSpecAccepted, OverlayResult overlay) {
    LoadKind kind = {infoLines, 0, hasVariant, source, isSpecAccepted, overlay};
    const bool isOpen = source != SpecSource::None;
    kind.required |= source != SpecSource::Variant
                             ? slotBit(slot::OpenFailed) | slotBit(slot::FallingBack)
                             : 0;
    kind.required |= isOpen ? 0 : slotBit(slot::NothingOpened);
    kind.required |= hasVariant ? 0 : kLookups & ~(isOpen ? 0 : slotBit(slot::SpecLookup));
    kind.required |= isOpen && !isSpecAccepted ? slotBit(slot::SpecRejected) : 0;
    kind.required |= overlay == OverlayResult::Rejected ? slotBit(slot::PrivateRejected) : 0;
    kind.allowed = kind.required | slotBit(slot::End);
    kind.allowed |= isOpen && isSpecAccepted ? slotBits(slot::SpecSections, slot::Dump) : 0;
    kind.allowed |= overlay == OverlayResult::Private
                            ? slotBits(slot::PrivateSections, slot::BuiltInLines)
                    : overlay == OverlayResult::BuiltIn ? slotBit(slot::BuiltInLines)
                                                        : 0;
    return kind;
}

// The level word lets through nothing, a heading of the dump, or both.
constexpr uint64_t kShownLines[] = {0, slotBit(slot::Dump),
                                    slotBit(slot::Parsing) | slotBit(slot::Dump)};
constexpr std::pair<SpecSource, bool> kFirstSteps[] = {
        {SpecSource::Variant, false}, {SpecSource::Variant, true}, {SpecSource::Fallback, false},
        {SpecSource::Fallback, true}, {SpecSource::None, false},
};
constexpr OverlayResult kSecondSteps[] = {OverlayResult::BuiltIn, OverlayResult::Rejected,
                                          OverlayResult::Private};

constexpr auto kLoadKinds = [] {
    std::array<LoadKind,
               2 * std::size(kShownLines) * std::size(kFirstSteps) * std::size(kSecondSteps)>
            kinds = {};
    size_t count = 0;
    for (const uint64_t info : kShownLines) {
        for (const auto& [source, isAccepted] : kFirstSteps) {
            for (const OverlayResult overlay : kSecondSteps) {
                kinds[count++] = loadKindOf(false, info, source, isAccepted, overlay);
                kinds[count++] = loadKindOf(true, info, source, isAccepted, overlay);
            }
        }
    }
    return kinds;
}();

// The sections that an event may be about, as bits from 0 on.
uint64_t sectionsOf(const LoadEvent& event) {
    const std::string root = std::string(targetSpecRoot) + "/";
    const std::string_view place =
            std::string_view(event.value).substr(0, event.value.find_first_of("/[", root.size()));
    uint64_t section = 1;
    for (const Section& row : kSections) {
        if (event.id == LineId::RowSkipped ? row.type == SectionType::BitRateRows
                                           : place == root + *row.key) {
            return section;
        }
        section <<= 1;
    }
    return section - 1;  // Another release's place: any of them.
}

// Of the lines of a load that are not about a skipped value. The others are the dump's.
constexpr std::pair<LineId, uint64_t> kSlotsOfLines[] = {
        {LineId::NoVariant, kLookups},
        {LineId::Parsing, slotBit(slot::Parsing)},
        {LineId::OpenFailed, slotBit(slot::OpenFailed)},
        {LineId::FallingBack, slotBit(slot::FallingBack)},
        {LineId::NothingOpened, slotBit(slot::NothingOpened)},
        {LineId::StreamRejected, slotBit(slot::SpecRejected) | slotBit(slot::PrivateRejected)},
        {LineId::BuiltInRejected, slotBit(slot::BuiltInLines)},
        {LineId::EncoderFilter, slotBit(slot::SpecFilters) | slotBit(slot::PrivateFilters)},
};

uint64_t slotsOf(const LoadEvent& event) {
    if (event.id == LineId::Skipped || event.id == LineId::RowSkipped) {
        const bool isAny = event.document.empty();
        const uint64_t sections = sectionsOf(event);
        return (isAny || event.names("system spec") ? sections << slot::SpecSections : 0) |
               (isAny || event.names("private file") ? sections << slot::PrivateSections : 0) |
               (event.names("built-in") ? slotBit(slot::BuiltInLines) : 0);
    }
    for (const auto& [id, slots] : kSlotsOfLines) {
        if (id == event.id) {
            return slots;
        }
    }
    return slotBit(slot::Dump);
}

// The slots of `targets` that can follow one of `from`. Between them no line is required, unless
// lines may be missing.
uint64_t nextSlots(const LoadKind& kind, uint64_t from, uint64_t targets, bool mayMiss) {
    uint64_t reached = 0;
    for (uint64_t left = targets & kind.allowed; left != 0; left &= left - 1) {
        const unsigned target = static_cast<unsigned>(std::countr_zero(left));
        const uint64_t before = from & (slotBits(0, target) | (kRepeated & slotBit(target)));
        if (before == 0) {
            continue;
        }
        const unsigned last = 63 - static_cast<unsigned>(std::countl_zero(before));
        const uint64_t between = last == target ? 0 : slotBits(last, target) & ~slotBit(last);
        reached |= mayMiss || (kind.required & between) == 0 ? slotBit(target) : 0;
    }
    return reached;
}

// A line, or the end, as the model sees it.
struct EventStep {
    uint64_t slots;
    bool mayMiss;  // Lines before it.
    size_t event;
};

void addSteps(const LoadEvent& event, size_t number, bool mayMiss, std::vector<EventStep>* steps) {
    constexpr uint64_t kMost = 5;  // One more than any load has.
    const uint64_t count = event.id == LineId::NoVariant ? std::min(event.count, kMost) : 1;
    steps->insert(steps->end(), count, {slotsOf(event), mayMiss, number});
}

std::vector<EventStep> stepsOf(std::span<const LoadEvent> events, const LoadLimits& limits) {
    std::vector<EventStep> steps;
    for (size_t i = 0; i < events.size(); ++i) {
        addSteps(events[i], i, limits.hasGaps, &steps);
    }
    steps.push_back({slotBit(slot::End), limits.hasGaps || !limits.isEndKnown, events.size()});
    // Without any line of it the load may be older than the log.
    steps.front().mayMiss |= !limits.isStartKnown || events.empty();
    return steps;
}

// Which slots each step can have in a load of this kind; empty when it cannot be one.
std::vector<uint64_t> slotsIn(const LoadKind& kind, const std::vector<EventStep>& steps) {
    std::vector<uint64_t> slots;
    uint64_t from = slotBit(slot::Start);
    for (const EventStep& step : steps) {
        from = nextSlots(kind, from, step.slots, step.mayMiss);
        if (from == 0) {
            return {};
        }
        slots.push_back(from);
    }
    // Of a step's slots those from which the next step's can be reached.
    for (size_t next = slots.size() - 1; next > 0; --next) {
        uint64_t kept = 0;
        for (uint64_t left = slots[next - 1]; left != 0; left &= left - 1) {
            const uint64_t one = left & ~(left - 1);
            kept |= nextSlots(kind, one, slots[next], steps[next].mayMiss) != 0 ? one : 0;
        }
        slots[next - 1] = kept;
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
    std::vector<uint64_t> slots(events.size() + 1, 0);  // Of each event, and the end.
    const std::vector<EventStep> steps = stepsOf(events, limits);
    loads.isContradictory = true;
    for (const LoadKind& kind : kLoadKinds) {
        if (isExcluded(kind, events, limits)) {
            continue;
        }
        const std::vector<uint64_t> here = slotsIn(kind, steps);
        if (here.empty()) {
            continue;
        }
        loads.isContradictory = false;
        loads.canOpen[static_cast<size_t>(kind.source)] = true;
        loads.canAccept |= kind.isSpecAccepted;
        loads.canReject |= kind.source != SpecSource::None && !kind.isSpecAccepted;
        loads.canEnd[static_cast<size_t>(kind.overlay)] = true;
        for (size_t i = 0; i < steps.size(); ++i) {
            slots[steps[i].event] |= here[i];
        }
    }
    slots.pop_back();
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
    std::vector<EventStep> steps;
    addSteps(event, 0, true, &steps);
    std::vector<uint64_t> slots = mSlots;
    slots.resize(kLoadKinds.size(), slotBit(slot::Start));
    uint64_t anySlots = 0;
    for (size_t i = 0; i < slots.size(); ++i) {
        const LoadKind& kind = kLoadKinds[i];
        for (const EventStep& step : steps) {
            slots[i] = nextSlots(kind, slots[i], step.slots, true);
        }
        slots[i] = hasVariant && !kind.hasVariant ? 0 : slots[i];
        anySlots |= slots[i];
    }
    if (anySlots == 0) {
        return false;
    }
    mSlots = std::move(slots);
    mHasVariant = hasVariant;
    mPath = isPath && !event.isCut ? event.value : mPath;
    return true;
}

}  // namespace kc2::tool
