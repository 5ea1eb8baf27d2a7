// Which lines a load can write, and in which order: what a sequence of lines proves.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "log/LogLines.h"

namespace kc2::tool {

// A line about a step or a document of a load.
struct LoadEvent {
    LineId id;
    uint64_t line = 0;          // Of the log, the first one is 1.
    std::string value = {};     // A path, the place of a skipped value, the name of a filter.
    std::string reason = {};    // Why a value was skipped.
    std::string document = {};  // As the line names it; empty when it does not.
    uint64_t count = 1;         // How many such lines follow each other.
    bool isCut = false;         // The line ends early.
    uint64_t lastLine = 0;      // Of these lines.

    // Whether the line names a document in such words.
    bool names(std::string_view words) const { return document.find(words) != std::string::npos; }
};

// What an event is about.
enum class Which { SystemSpec, Overlay, Either };

// How the first step can end.
enum class SpecSource { Variant, Fallback, None };

// How the second step can end.
enum class OverlayResult { BuiltIn, Rejected, Private };

// What is known of a load beside its lines.
struct LoadLimits {
    bool isStartKnown = true;  // Nothing of the load is before the first event.
    bool isEndKnown = true;    // Nothing of the load is after the last one.
    bool hasGaps = false;      // Lines may be missing anywhere.
    bool hasDumpEntries = false;
    bool hasDumpedCodecs = false;
    bool hasNoCodecs = false;  // A component got the empty set of codecs.
    // What the documents of the device leave possible.
    bool canOpen[3] = {true, true, true};  // By SpecSource.
    bool canAccept = true;
    bool canReject = true;
    bool canEnd[3] = {true, true, true};  // By OverlayResult.
};

// Every load that can have written the lines.
struct PossibleLoads {
    bool isContradictory = false;  // There is none: the lines are not of one load.
    bool isIncomplete = false;     // There is one only if lines are missing.
    bool isUnfinished = false;     // There is one that stops after the last event.
    bool canOpen[3] = {};          // By SpecSource.
    bool canAccept = false;        // The system spec document that opened.
    bool canReject = false;
    bool canEnd[3] = {};    // By OverlayResult.
    std::vector<Which> of;  // One for each event.
};

PossibleLoads possibleLoads(std::span<const LoadEvent> events, const LoadLimits& limits);

// The point in a load that the lines have reached; lines may be missing.
class LoadPosition {
public:
    // Goes on to `event`; false, and no change, when it cannot follow in the same load.
    bool follow(const LoadEvent& event);

private:
    std::vector<uint64_t> mSlots;  // For each kind of load; empty before the first event.
    std::string mPath;             // Of the system spec document.
    bool mHasVariant = false;      // A path that is not the one without a variant.
};

}  // namespace kc2::tool
