// A load of a log beside the documents that were pulled from the same device.

#include "log/PulledDocuments.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
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
            collector.add({.process = 0, .tag = tag, .text = rest.substr(0, end)}, 1);
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
        for (const LoadEvent& event : mTrace.events) {
            for (uint64_t n = 0; isOfValue(event) && n < event.count; ++n) {
                mLeft.insert(keyOf(event));
            }
        }
        index();
    }

    const Document& document() const { return mDocument; }
    const Dump& dump() const { return mTrace.dump; }
    const std::string& path() const { return mPath; }

    // Whether the library logs this line about the document (once more), and its place if it is
    // known.
    bool logs(const LoadEvent& event, std::string* place) {
        const auto found = mLeft.find(keyOf(event));
        if (found == mLeft.end()) {
            return false;
        }
        mLeft.erase(found);
        if (event.id == LineId::EncoderFilter) {
            *place = element(targetSpecSupportedEncPostProcessingFilters, mFilters++);
        } else if (const auto value = mLogged.find({event.value, event.reason});
                   value != mLogged.end()) {
            *place = placeOf(value->second);
            mLogged.erase(value);
        }
        return true;
    }

    // What the library logs of the document and the log did not have.
    const std::multiset<LineKey>& left() const { return mLeft; }

    std::string whyRejected() const {
        if (!mDocument.isReadable) {
            return fmt::format("{}: cannot be read: {}", path(), mDocument.whyNotReadable);
        }
        return mMessages.empty() ? path() : placeOf(mMessages.begin()->first);
    }

    // Places, empty where there is no such value.
    std::string named(const char* section, const std::string& name) const {
        const auto found = mNamed.find({section, name});
        return found != mNamed.end() ? placeOf(found->second) : "";
    }

    std::string element(const char* section, size_t number) const {
        const auto found = mElements.find(section);
        return found != mElements.end() && number < found->second.size()
                       ? placeOf(found->second[number]->value.start)
                       : "";
    }

    std::string codec(const std::string& name) const {
        const auto found = mCodecs.find(name);
        return found != mCodecs.end() ? placeOf(found->second) : "";
    }

private:
    // "path:line:column", and what the checker says there, if anything.
    std::string placeOf(size_t offset) const {
        const auto message = mMessages.find(offset);
        const std::string place = mDocument.source.placeOf(offset);
        return message != mMessages.end() ? fmt::format("{}: {}", place, message->second) : place;
    }

    // Both a document and a log may have a hundred thousand values.
    void index() {
        for (const Verdict& verdict : mDocument.verdicts) {
            const FindingRow& row = rowOf(verdict.kind);
            const Place place = {
                    .section = verdict.section, .name = verdict.name, .index = verdict.index};
            if (row.effect == Effect::SkipsAndLogs) {
                mLogged.emplace(row.reason != nullptr ? std::pair(place.toString(), row.reason)
                                                      : std::pair(std::string(), ""),
                                verdict.start);
            }
        }
        forEachSection(mDocument, [&](const Section& row, const Node& section) {
            if (row.type == SectionType::Names) {
                mElements.emplace(*row.key, usedElements(mDocument, *row.key));
            }
            for (const Node& member : section.children) {
                if (isOfNamedValues(row.type) && member.isUsed()) {
                    mNamed.emplace(std::pair(*row.key, member.key), member.value.start);
                }
            }
        });
        forEachEntry(mDocument, isOfCodecs, [&](const DocumentName& entry) {
            mCodecs.emplace(entry.text, entry.span.start);
        });
    }

    const Document& mDocument;
    const std::string mPath;
    LoadTrace mTrace;
    std::multiset<LineKey> mLeft;
    size_t mFilters = 0;
    std::multimap<std::pair<std::string, std::string>, size_t> mLogged;
    std::map<size_t, std::string> mMessages;  // By where they are.
    std::map<std::pair<std::string, std::string>, size_t> mNamed;
    std::map<std::string, std::vector<const Node*>> mElements;
    std::map<std::string, size_t, std::less<>> mCodecs;
};

class LogComparison {
public:
    LogComparison(const LoadTrace& trace, bool isSpecKnown)
        : mTrace(trace), mLogFacts(factsOf(trace)), mLoad(readLoad()) {
        const bool isTriedNext = mTrace.find(LineId::OpenFailed) != nullptr ||
                                 mTrace.find(LineId::FallingBack) != nullptr;
        const std::string path = mTrace.firstPath();
        mIsOtherPath = !path.empty() && path != mLoad.firstPath;
        const bool isSpecDecided = isSpecKnown && !mIsOtherPath && mLoad.hasSystemSpec() &&
                                   !mLoad.systemSpec->isPipe && (isFirst() || isTriedNext);
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
    // Whether the tree has the document that the variant selects.
    bool isFirst() const {
        return mLoad.hasSystemSpec() && mLoad.systemSpec->path == mLoad.firstPath;
    }

    // A file in the tree decides; one that is not there may not have been pulled.
    TreeFacts treeFacts() const {
        TreeFacts facts;
        if (mSystemSpec != nullptr) {
            std::fill(std::begin(facts.limits.canOpen), std::end(facts.limits.canOpen), false);
            facts.limits.canOpen[static_cast<size_t>(isFirst() ? SpecSource::Variant
                                                               : SpecSource::Fallback)] = true;
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
        return file.isAccepted ? state == "valid" || (isSeeded && outcome.isSeeding)
                               : state == "not a valid document";
    }

    void contradict(
            std::string text, std::vector<uint64_t> lines = {},
            std::string advice =
                    "pull the documents of this phone again, and check that the variant is right") {
        constexpr size_t kMost = 20;  // More of them say nothing more.
        if (++mContradictions <= kMost) {
            mResult.conclusions.push_back({Severity::Error, "contradiction",
                                           "log and tree contradict each other", text,
                                           std::move(advice), std::move(lines),
                                           "the log and the tree contradict each other", text});
        }
    }

    uint64_t lineOf(LineId id) const {
        const LoadEvent* const event = mTrace.find(id);
        return event != nullptr ? event->line : 0;
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
                           {lineOf(LineId::NothingOpened)});
            } else if (isFirst() && !log.isOpen(SpecSource::Variant)) {
                contradict(fmt::format("{} does not open on the phone, but in the tree it does",
                                       mLoad.firstPath),
                           {lineOf(LineId::OpenFailed)});
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
                        "--property)");
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
        if (mPrivateFile == nullptr && !mLogFacts.loads.isContradictory &&
            !mLogFacts.isOpen(OverlayResult::BuiltIn)) {
            contradict("the phone has a private file, but the tree has none",
                       mTrace.noCodecs.line != 0 ? std::vector{mTrace.noCodecs.line}
                                                 : std::vector<uint64_t>(),
                       fmt::format("adb pull {}", kPrivateConfig));
        }
        std::vector<std::string> compared;
        for (const PulledDocument* const document : {mSystemSpec.get(), mPrivateFile.get()}) {
            if (document != nullptr) {
                compared.push_back(document->path());
            }
        }
        std::string text = fmt::format("compared with: {}",
                                       compared.empty() ? "no document" : joined(compared, ", "));
        std::vector<std::string> pulls;
        for (const std::string& path : absentDocuments()) {
            text += fmt::format("; not in the tree, so it decides nothing: {}", path);
            if (path.starts_with("/")) {
                pulls.push_back(fmt::format("adb pull {}", path));
            }
        }
        mResult.conclusions.push_back({Severity::Note, "tree", "", text, joined(pulls, "; ")});
    }

    void compareEvent(size_t i) {
        const LoadEvent& event = mTrace.events[i];
        if (event.id == LineId::StreamRejected) {
            placeRejection(i);
        }
        if (!isOfValue(event) || event.document.find("built-in") != std::string::npos) {
            return;
        }
        const Which which = whichOf(mTrace, mLogFacts, i);
        PulledDocument* const spec = which != Which::Overlay ? mSystemSpec.get() : nullptr;
        PulledDocument* const file = which != Which::SystemSpec ? mPrivateFile.get() : nullptr;
        const bool isComplete = (which == Which::Overlay || spec != nullptr) &&
                                (which == Which::SystemSpec || file != nullptr);
        for (uint64_t n = 0; n < event.count; ++n) {
            std::string place;
            if ((spec == nullptr || !spec->logs(event, &place)) &&
                (file == nullptr || !file->logs(event, &place))) {
                if (isComplete) {
                    contradict(fmt::format("the library does not log \"{}\" for the documents in "
                                           "the tree",
                                           textOf(event)),
                               {event.line});
                }
                return;
            }
            if (!place.empty()) {
                mResult.places.push_back({event.line, textOf(event), place});
            }
        }
    }

    void placeRejection(size_t i) {
        for (const auto& [document, which] : {std::pair(mSystemSpec.get(), Which::SystemSpec),
                                              std::pair(mPrivateFile.get(), Which::Overlay)}) {
            const Which of = mResult.facts.loads.of[i];
            if (document != nullptr && of == which && !document->document().isAccepted) {
                mResult.places.push_back(
                        {mTrace.events[i].line, textOf(mTrace.events[i]), document->whyRejected()});
            }
        }
    }

    void compareValues(const std::vector<DumpedValue>& logged, std::vector<DumpedValue> expected,
                       const char* section, bool isOrdered) {
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
            const auto found = left.find(value.name);
            const bool isInPlace =
                    !isOrdered || (i < expected.size() && expected[i].name == value.name);
            const std::string place = isOrdered ? mSystemSpec->element(section, i)
                                      : section == targetSpecSupportedCodecs
                                              ? mSystemSpec->codec(value.name)
                                              : mSystemSpec->named(section, value.name);
            if (found == left.end() || !isInPlace) {
                contradict(fmt::format("the dump shows \"{}\", which {} does not have {}", text,
                                       document, isInPlace ? "" : "at this place of its list"),
                           {value.line});
                continue;
            }
            if (found->second != value.value) {
                contradict(fmt::format("the dump shows \"{}\", but {} makes it {}", text, place,
                                       found->second),
                           {value.line});
            }
            left.erase(found);
            mResult.places.push_back({value.line, text, place});
        }
        if (!left.empty() && mTrace.dump.isWhole && isWhole()) {
            contradict(fmt::format("the dump does not show {} of {}, which {} has",
                                   left.begin()->first, section, document));
        }
    }

    bool isWhole() const {
        return mTrace.lineAfter != 0 && mTrace.droppedLines == 0 && mTrace.cutCount == 0 &&
               !mTrace.isTooLong && !mLogFacts.loads.isIncomplete &&
               !mLogFacts.loads.isContradictory;
    }

    // Without their heading the codec components are among the plug-ins.
    void compareDump() {
        const Dump& logged = mTrace.dump;
        if (!logged.isOfLoad || mSystemSpec == nullptr || !logged.lostHeadings.empty()) {
            return;
        }
        const Dump& expected = mSystemSpec->dump();
        compareValues(logged.features, expected.features, targetSpecFeatures, false);
        compareValues(logged.presets, expected.presets, targetSpecPresets, false);
        compareValues(logged.filters, expected.filters, targetSpecPreProcessingFilters, true);
        const size_t plugins = logged.hasCodecsHeading
                                       ? logged.plugins.size()
                                       : std::min(logged.plugins.size(), expected.plugins.size());
        const auto middle = logged.plugins.begin() + static_cast<std::ptrdiff_t>(plugins);
        compareValues({logged.plugins.begin(), middle}, expected.plugins, targetSpecCodecPlugins,
                      true);
        std::vector<DumpedValue> codecs(middle, logged.plugins.end());
        codecs.insert(codecs.end(), logged.codecs.begin(), logged.codecs.end());
        compareValues(codecs, expected.codecs, targetSpecSupportedCodecs, false);
    }

    void compareCodecs() {
        if (mTrace.noCodecs.count == 0) {
            return;
        }
        for (const PulledDocument* const document : {mSystemSpec.get(), mPrivateFile.get()}) {
            if (document != nullptr && !document->document().content.supportedCodecs.empty()) {
                contradict(fmt::format("no document that the phone merged names a codec component, "
                                       "but {} does",
                                       document->path()),
                           {mTrace.noCodecs.line});
            }
        }
    }

    // The lines about encoder filters need a bit of the level word.
    void compareMissingLines() {
        for (const PulledDocument* const document : {mSystemSpec.get(), mPrivateFile.get()}) {
            if (document == nullptr || !isWhole() || mTrace.lineBefore == 0) {
                continue;
            }
            for (const auto& [id, value, reason] : document->left()) {
                if (id != LineId::EncoderFilter || mTrace.find(id) != nullptr) {
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
