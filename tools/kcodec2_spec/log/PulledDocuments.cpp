// A load of a log beside the documents that were pulled from the same device.

#include "log/PulledDocuments.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "kc2/TargetSpec.h"
#include "kc2/TargetSpecKeys.h"
#include "store/Load.h"
#include "targetspec/reading/PrivateConfigFile.h"

namespace kc2::tool {

namespace {

// What a line says of a value, to compare the phone's lines with the library's.
using LineKey = std::tuple<LineId, std::string, std::string>;

LineKey keyOf(const LoadEvent& event) {
    return {event.id, event.value, event.reason};
}

std::string textOf(const LoadEvent& event) {
    return event.id == LineId::Skipped ? fmt::format("Skipped {}: {}", event.value, event.reason)
           : event.id == LineId::EncoderFilter ? fmt::format("filter {}", event.value)
                                               : logLine(event.id).text;
}

bool isOfValue(const LoadEvent& event) {
    return event.id == LineId::Skipped || event.id == LineId::RowSkipped ||
           event.id == LineId::EncoderFilter;
}

// What the library logs while it does `work`, as a device's log would show it.
template <typename Work>
LoadTrace traceOf(const Work& work) {
    constexpr size_t kMostTextBytes = 1023;  // The device's log cuts a line there.
    TraceCollector collector;
    captureLog([&](int, const char* tag, const char* text) {
        std::string_view rest = std::string_view(text).substr(0, kMostTextBytes);
        for (bool isMore = true; isMore;) {
            const size_t end = rest.find('\n');
            collector.add({.process = 0, .tag = tag, .text = rest.substr(0, end), .line = 1});
            isMore = end != std::string_view::npos;
            rest.remove_prefix(isMore ? end + 1 : rest.size());
        }
    });
    work();
    muteLog();
    return collector.traces().empty() ? LoadTrace() : collector.traces().front();
}

// One document of the tree: what the library logs of it, and where its values are.
class PulledDocument {
public:
    PulledDocument(const Document& document, std::string path, LoadTrace trace)
        : mDocument(document), mPath(std::move(path)), mTrace(std::move(trace)) {
        const KnownSettings nothing{Catalogue()};
        Report report{Levels()};
        checkReading(Checked(document, nothing), &report);
        for (const ReportEntry* const entry : report.inOrder()) {
            mMessages.emplace(entry->span.start,
                              fmt::format("{} [{}]", entry->message, entry->check->id));
        }
        indexValues();
        indexLines();
    }

    const Document& document() const { return mDocument; }
    const Dump& dump() const { return mTrace.dump; }
    const std::string& path() const { return mPath; }

    // The place of the value that the library logs this line about, empty when it is not known;
    // nothing when the library does not log the line (once more).
    std::optional<std::string> takeLine(const LoadEvent& event) {
        const auto line = mLines.extract(keyOf(event));
        return line ? std::optional(std::move(line.mapped())) : std::nullopt;
    }

    // What the library logs of the document and the log did not have.
    const std::multimap<LineKey, std::string>& lines() const { return mLines; }

    std::string whyRejected() const {
        if (!mDocument.isReadable) {
            return fmt::format("{}: cannot be read: {}", path(), mDocument.whyNotReadable);
        }
        return mMessages.empty() ? path() : placeOf(mMessages.begin()->first);
    }

    // The place of a section's value of that name, or of that number in a list; empty where there
    // is none.
    std::string placeIn(const char* section, const std::string& name) const {
        const auto found = mValues.find({section, name});
        return found != mValues.end() ? placeOf(found->second) : "";
    }

private:
    // "path:line:column", and what the checker says there, if anything.
    std::string placeOf(size_t offset) const {
        const auto message = mMessages.find(offset);
        const std::string place = mDocument.source.placeOf(offset);
        return message != mMessages.end() ? fmt::format("{}: {}", place, message->second) : place;
    }

    void indexValues() {
        forEachSection(mDocument, [&](const Section& row, const Node& section) {
            size_t number = 0;
            if (row.type == SectionType::Names) {
                for (const Node* const element : usedElements(mDocument, *row.key)) {
                    mValues.emplace(std::pair(*row.key, fmt::format("{}", number++)),
                                    element->value.start);
                }
            }
            for (const Node& member : section.children) {
                if (isOfNamedValues(row.type) && member.isUsed()) {
                    mValues.emplace(std::pair(*row.key, member.key), member.value.start);
                }
            }
        });
        forEachEntry(mDocument, isOfCodecs, [&](const DocumentName& entry) {
            mValues.emplace(std::pair(targetSpecSupportedCodecs, entry.text), entry.span.start);
        });
    }

    // Both a document and a log may have a hundred thousand values.
    void indexLines() {
        std::multimap<std::pair<std::string, std::string>, size_t> skipped;
        for (const Verdict& verdict : mDocument.verdicts) {
            const char* const reason = rowOf(verdict.kind).reason;
            const Place place = {
                    .section = verdict.section, .name = verdict.name, .index = verdict.index};
            if (rowOf(verdict.kind).effect == Effect::SkipsAndLogs) {
                skipped.emplace(reason != nullptr ? std::pair(place.toString(), reason)
                                                  : std::pair(std::string(), ""),
                                verdict.start);
            }
        }
        size_t filters = 0;
        for (const LoadEvent& event : mTrace.events) {
            for (uint64_t n = 0; isOfValue(event) && n < event.count; ++n) {
                std::string place;
                if (event.id == LineId::EncoderFilter) {
                    place = placeIn(targetSpecSupportedEncPostProcessingFilters,
                                    fmt::format("{}", filters++));
                } else if (const auto value = skipped.extract({event.value, event.reason})) {
                    place = placeOf(value.mapped());
                }
                mLines.emplace(keyOf(event), std::move(place));
            }
        }
    }

    const Document& mDocument;
    const std::string mPath;
    LoadTrace mTrace;
    std::multimap<LineKey, std::string> mLines;  // With the places of their values.
    std::map<size_t, std::string> mMessages;     // By where they are.
    std::map<std::pair<std::string, std::string>, size_t> mValues;
};

class LogComparison {
public:
    LogComparison(const LoadTrace& trace, bool isSpecKnown)
        : mTrace(trace), mLogFacts(factsOf(trace)), mLoad(readLoad()) {
        const bool isTriedNext = mTrace.find(LineId::OpenFailed) != nullptr ||
                                 mTrace.find(LineId::FallingBack) != nullptr;
        const std::string path = mTrace.firstPath();
        const bool isSamePath = path.empty() || path == mLoad.firstPath;
        // Where only the phone has the document under /odm, it was not pulled.
        mIsOtherPath = !isSamePath && path != odmPathOf(mLoad.variant);
        const bool isSpecDecided = isSpecKnown && isSamePath && mLoad.hasSystemSpec() &&
                                   !mLoad.systemSpec->isPipe &&
                                   (mLoad.hasFirstDocument() || isTriedNext);
        TargetSpec store;
        if (isSpecDecided) {
            LoadTrace step = traceOf([&] {
                store.extractSpecData();
                store.printSpecifications();
            });
            mSystemSpec = std::make_unique<PulledDocument>(
                    *mLoad.systemSpec, localPath(mLoad.systemSpec->path), std::move(step));
        }
        if (mLoad.isPrivateFileOpen) {
            LoadTrace step = traceOf([&] { store.extractPrivateData(); });
            mPrivateFile = std::make_unique<PulledDocument>(
                    *mLoad.overlay, localPath(kPrivateConfig), std::move(step));
        }
    }

    PulledComparison run() {
        mResult.facts = factsOf(mTrace, treeFacts());
        if (mResult.facts.loads.isContradictory) {
            mResult.facts = mLogFacts;
            contradictSteps();
        }
        describeTree();
        if (!mIsOtherPath) {
            for (size_t i = 0; i < mTrace.events.size(); ++i) {
                compareEvent(i);
            }
            compareDump();
            compareCodecs();
            compareMissingLines();
        }
        std::stable_sort(mResult.places.begin(), mResult.places.end(),
                         [](const PlacedLine& a, const PlacedLine& b) { return a.line < b.line; });
        return std::move(mResult);
    }

private:
    // A file in the tree decides; one that is not there may not have been pulled.
    TreeFacts treeFacts() const {
        TreeFacts facts;
        if (mSystemSpec != nullptr) {
            std::fill(std::begin(facts.limits.canOpen), std::end(facts.limits.canOpen), false);
            facts.limits.canOpen[static_cast<size_t>(
                    mLoad.hasFirstDocument() ? SpecSource::Variant : SpecSource::Fallback)] = true;
            facts.limits.canAccept = mLoad.systemSpec->isAccepted;
            facts.limits.canReject = !mLoad.systemSpec->isAccepted;
        }
        const bool hasTool = isTestToolInstalled();
        for (size_t i = 0; i < std::size(facts.canBe); ++i) {
            const OverlayOutcome& outcome = mLogFacts.outcomes[i];
            facts.canBe[i] = (outcome.hasTestTool || !hasTool) && canBe(outcome);
        }
        return facts;
    }

    bool canBe(const OverlayOutcome& outcome) const {
        if (mPrivateFile == nullptr) {
            return true;
        }
        const Document& file = mPrivateFile->document();
        const std::string_view state = outcome.privateFile;
        if (mLoad.isSeeded || (file.text.empty() && file.isReadable)) {
            return state == "empty";
        }
        // With the test tool the load may have written it itself.
        const bool isSeeded =
                std::any_of(std::begin(kChipDocuments), std::end(kChipDocuments),
                            [&](const ChipDocument& chip) { return file.text == chip.text; });
        return file.isAccepted ? state == "valid" || (isSeeded && outcome.isSeeding())
                               : state == "not a valid document";
    }

    void contradict(std::string text, std::vector<uint64_t> lines = {}) {
        constexpr size_t kMost = 20;  // More of them say nothing more.
        std::erase(lines, 0);
        if (++mContradictions <= kMost) {
            mResult.conclusions.push_back(
                    {Severity::Error, "contradiction", "log and tree contradict each other",
                     std::move(text),
                     "pull the documents of this phone again, and check that the variant is right",
                     std::move(lines), "the log and the tree contradict each other"});
        }
    }

    // What the lines prove about the two steps, and the documents disprove.
    void contradictSteps() {
        const ProvedFacts& log = mLogFacts;
        const size_t before = mContradictions;
        if (mSystemSpec != nullptr) {
            const std::string path = mSystemSpec->path();
            if (log.isOnly(SpecSource::None)) {
                contradict(fmt::format("no system spec document opens on the phone, but the tree "
                                       "has {}",
                                       path),
                           {mTrace.lineOf(LineId::NothingOpened)});
            } else if (mLoad.hasFirstDocument() && !log.isOpen(SpecSource::Variant)) {
                contradict(fmt::format("{} does not open on the phone, but in the tree it does",
                                       mLoad.firstPath),
                           {mTrace.lineOf(LineId::OpenFailed)});
            }
            contradictRejection(*mSystemSpec, Which::SystemSpec, log.loads.canAccept,
                                log.loads.canReject);
        }
        if (mPrivateFile != nullptr) {
            contradictRejection(
                    *mPrivateFile, Which::Overlay,
                    log.isOpen(OverlayResult::Private) || log.isOpen(OverlayResult::BuiltIn),
                    log.isOpen(OverlayResult::Rejected));
        }
        if (mContradictions == before && !log.loads.isContradictory) {
            contradict("the lines of this load cannot come from these documents",
                       {mTrace.firstLine});
        }
    }

    void contradictRejection(const PulledDocument& document, Which which, bool canAccept,
                             bool canReject) {
        const bool isAccepted = document.document().isAccepted;
        if (isAccepted && !canAccept && canReject) {
            std::vector<uint64_t> lines;
            for (size_t i = 0; i < mTrace.events.size(); ++i) {
                if (mTrace.events[i].id == LineId::StreamRejected &&
                    mLogFacts.loads.of[i] == which) {
                    lines.push_back(mTrace.events[i].line);
                }
            }
            contradict(fmt::format("the phone rejected {}, but the library accepts the tree's: the "
                                   "phone has another document",
                                   document.path()),
                       lines);
        } else if (!isAccepted && !canReject && canAccept) {
            contradict(
                    fmt::format("the library rejects {}; but no line of the log says so: the "
                                "phone has another document",
                                document.whyRejected()));
        }
    }

    // The documents that the load reads, or may read, and the tree lacks.
    std::vector<std::string> absentDocuments() const {
        std::vector<std::string> absent;
        if (mSystemSpec == nullptr && mTrace.hasLoad() && !mIsOtherPath) {
            if (mTrace.firstPath().empty()) {
                absent.emplace_back(
                        "the system spec document (no line names it: give the variant with "
                        "--variant)");
            } else if (mLogFacts.isOpen(SpecSource::Variant)) {
                absent.push_back(mTrace.firstPath());
            } else if (mLogFacts.isOpen(SpecSource::Fallback)) {
                absent.emplace_back(kFallbackSystemSpec);
            }
        }
        if (mPrivateFile == nullptr) {
            absent.emplace_back(kPrivateConfig);
        }
        return absent;
    }

    void describeTree() {
        if (mIsOtherPath) {
            contradict(fmt::format("the phone looks for {}, but the options select {}: give the "
                                   "variant of the phone",
                                   mTrace.firstPath(), mLoad.firstPath),
                       {mTrace.firstLine});
        }
        std::vector<std::string> compared;
        for (const PulledDocument* const document : documentsFor(Which::Either)) {
            compared.push_back(document->path());
        }
        std::string text = fmt::format("compared with: {}",
                                       compared.empty() ? "no document" : joined(compared, ", "));
        const std::vector<std::string> absent = absentDocuments();
        if (!absent.empty()) {
            text += fmt::format("; not in the tree, and so decides nothing: {}",
                                joined(absent, ", "));
        }
        if (mPrivateFile == nullptr && !mLogFacts.loads.isContradictory &&
            !mLogFacts.isOpen(OverlayResult::BuiltIn)) {
            text += "; the phone has a private file: the built-in document was not merged";
        }
        std::vector<std::string> pulls;
        for (const std::string& path : absent) {
            if (path.starts_with("/")) {
                pulls.push_back(fmt::format("adb pull {}", path));
            }
        }
        mResult.conclusions.push_back({Severity::Note, "tree", "", text, joined(pulls, "; ")});
    }

    // Those of the tree that decide, and may be the one that a line is about.
    std::vector<PulledDocument*> documentsFor(Which which) const {
        std::vector<PulledDocument*> documents = {
                which != Which::Overlay ? mSystemSpec.get() : nullptr,
                which != Which::SystemSpec ? mPrivateFile.get() : nullptr};
        std::erase(documents, nullptr);
        return documents;
    }

    void compareEvent(size_t i) {
        const LoadEvent& event = mTrace.events[i];
        if (event.id == LineId::StreamRejected) {
            placeRejection(i);
        }
        if (!isOfValue(event) || event.names("built-in")) {
            return;
        }
        const Which which = whichOf(mTrace, mLogFacts, i);
        const std::vector<PulledDocument*> documents = documentsFor(which);
        const bool isComplete = documents.size() == (which == Which::Either ? 2 : 1);
        for (uint64_t n = 0; n < event.count; ++n) {
            std::optional<std::string> place;
            for (PulledDocument* const document : documents) {
                place = place ? place : document->takeLine(event);
            }
            if (!place && isComplete) {
                contradict(fmt::format("the library does not log \"{}\" for the documents in the "
                                       "tree",
                                       textOf(event)),
                           {event.line});
            }
            if (!place) {
                return;
            }
            if (!place->empty()) {
                mResult.places.push_back({event.line, textOf(event), *place});
            }
        }
    }

    void placeRejection(size_t i) {
        const Which which = mResult.facts.loads.of[i];
        for (const PulledDocument* const document : documentsFor(which)) {
            if (which != Which::Either && !document->document().isAccepted) {
                mResult.places.push_back(
                        {mTrace.events[i].line, textOf(mTrace.events[i]), document->whyRejected()});
            }
        }
    }

    void compareValues(const std::vector<DumpedValue>& logged,
                       const std::vector<DumpedValue>& expected, const DumpPart& part) {
        std::multimap<std::string, std::string> left;
        for (const DumpedValue& value : expected) {
            left.emplace(value.name, value.value);
        }
        const std::string document = mSystemSpec->path();
        for (size_t i = 0; i < logged.size(); ++i) {
            const DumpedValue& value = logged[i];
            const std::string text = value.value.empty()
                                             ? value.name
                                             : fmt::format("{} : {}", value.name, value.value);
            const bool isInPlace =
                    !part.isInOrder || (i < expected.size() && expected[i].name == value.name);
            const auto found = left.find(value.name);
            if (found == left.end() || !isInPlace) {
                contradict(fmt::format("the dump shows \"{}\", which {} does not have{}", text,
                                       document, isInPlace ? "" : " at this place of its list"),
                           {value.line});
            } else {
                const std::string place = mSystemSpec->placeIn(
                        *part.key, part.isInOrder ? fmt::format("{}", i) : value.name);
                if (found->second != value.value) {
                    contradict(fmt::format("the dump shows \"{}\", but {} makes it {}", text, place,
                                           found->second),
                               {value.line});
                }
                mResult.places.push_back({value.line, text, place});
            }
            if (found != left.end()) {
                left.erase(found);
            }
        }
        if (!left.empty() && mTrace.dump.isWhole && isWhole()) {
            contradict(fmt::format("the dump does not show {} of {}, which {} has",
                                   left.begin()->first, *part.key, document));
        }
    }

    bool isWhole() const {
        return mTrace.lineAfter != 0 && !mTrace.hasGaps() && !mLogFacts.loads.isIncomplete &&
               !mLogFacts.loads.isContradictory;
    }

    // Where the phone has merged nothing from the document, its lines and its dump say nothing more
    // about the tree's.
    bool isUnusedOnPhone(const PulledDocument& document) const {
        const bool canAccept = &document == mSystemSpec.get()
                                       ? mLogFacts.loads.canAccept
                                       : mLogFacts.isOpen(OverlayResult::Private) ||
                                                 mLogFacts.isOpen(OverlayResult::BuiltIn);
        return document.document().isAccepted && !canAccept;
    }

    void compareDump() {
        Dump logged = mTrace.dump;
        if (!logged.isOfLoad || mSystemSpec == nullptr || !logged.lostHeadings.empty() ||
            isUnusedOnPhone(*mSystemSpec)) {
            return;
        }
        const Dump& expected = mSystemSpec->dump();
        if (!logged.hasCodecsHeading) {  // The codec components are among the plug-ins.
            std::vector<DumpedValue>& plugins = logged.of(DumpSection::Plugins);
            const size_t count = std::min(plugins.size(), expected.of(DumpSection::Plugins).size());
            const auto first = plugins.begin() + static_cast<std::ptrdiff_t>(count);
            logged.of(DumpSection::Codecs).assign(first, plugins.end());
            plugins.erase(first, plugins.end());
        }
        for (const DumpPart& part : kDumpParts) {
            compareValues(logged.of(part.section), expected.of(part.section), part);
        }
    }

    void compareCodecs() {
        for (const PulledDocument* const document : documentsFor(Which::Either)) {
            if (mTrace.noCodecs.count != 0 &&
                !document->document().content.supportedCodecs.empty()) {
                contradict(fmt::format("no document that the phone merged names a codec component, "
                                       "but {} does",
                                       document->path()),
                           {mTrace.noCodecs.line});
            }
        }
    }

    // The lines about encoder filters need a bit of the level word.
    void compareMissingLines() {
        if (!isWhole() || mTrace.lineBefore == 0) {
            return;
        }
        const bool hasFilters = mTrace.find(LineId::EncoderFilter) != nullptr;
        for (const PulledDocument* const document : documentsFor(Which::Either)) {
            if (isUnusedOnPhone(*document)) {
                continue;
            }
            for (const auto& [key, place] : document->lines()) {
                const auto& [id, value, reason] = key;
                if (id != LineId::EncoderFilter || hasFilters) {
                    contradict(
                            fmt::format("no line of the log is about {} of {}: the phone has "
                                        "another document, or the log was filtered",
                                        textOf({.id = id, .value = value, .reason = reason}),
                                        document->path()));
                }
            }
        }
    }

    const LoadTrace& mTrace;
    const ProvedFacts mLogFacts;
    const Load mLoad;
    bool mIsOtherPath = false;
    std::unique_ptr<PulledDocument> mSystemSpec;  // Null where the tree does not decide.
    std::unique_ptr<PulledDocument> mPrivateFile;
    size_t mContradictions = 0;
    PulledComparison mResult;
};

}  // namespace

PulledComparison comparePulled(const LoadTrace& trace, bool isVariantGiven) {
    const std::string path = trace.firstPath();
    if (!isVariantGiven) {
        const std::string variant = variantIn(path);
        playVariant(variant.empty() ? kDefaultVariant : variant);
    }
    muteLog();
    return LogComparison(trace, isVariantGiven || !path.empty()).run();
}

}  // namespace kc2::tool
