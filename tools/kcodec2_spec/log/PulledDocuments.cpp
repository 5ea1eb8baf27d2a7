// A log beside the documents that were pulled from the same device.

#include "log/PulledDocuments.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "base/DeviceOptions.h"
#include "check/rules/Entries.h"
#include "check/rules/Rules.h"
#include "device/DeviceFile.h"
#include "device/DevicePaths.h"
#include "kc2/TargetSpecKeys.h"
#include "store/Load.h"
#include "targetspec/reading/Escaped.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

// Where a value begins in its document; nothing where there is none.
using Offset = std::optional<size_t>;
using PlacesByLine = std::multimap<std::pair<std::string, std::string>, size_t>;

// The key of a line about a skipped value: its place and its reason, as the device logs them.
std::pair<std::string, std::string> lineOf(const Verdict& verdict) {
    const Place place = {.section = verdict.section, .name = verdict.name, .index = verdict.index};
    const char* const reason = rowOf(verdict.kind).reason;
    return {reason != nullptr ? place.toString() : "", reason != nullptr ? reason : ""};
}

// One document of the tree: its places, and the lines that a device would write about it.
class PulledDocument {
public:
    explicit PulledDocument(const Document& document) : mDocument(document) {
        const KnownSettings nothing{Catalogue()};
        Report report{Levels()};
        checkReading(Checked(document, nothing), &report);
        for (const ReportEntry* const entry : report.inOrder()) {
            mMessages.emplace(entry->span.start,
                              fmt::format("{} [{}]", entry->message, entry->check->id));
        }
        for (const Verdict& verdict : document.verdicts) {
            if (rowOf(verdict.kind).effect == Effect::SkipsAndLogs) {
                mLogged.emplace(lineOf(verdict), verdict.start);
            }
        }
    }

    const Document& document() const { return mDocument; }
    const std::string& path() const { return mDocument.source.path(); }

    // Takes the next value that leaves this line.
    Offset take(const std::pair<std::string, std::string>& line) {
        const auto found = mLogged.find(line);
        if (found == mLogged.end()) {
            return std::nullopt;
        }
        const size_t offset = found->second;
        mLogged.erase(found);
        return offset;
    }

    // What a device would have logged and nobody took.
    const PlacesByLine& untaken() const { return mLogged; }

    // "path:line:column", and what the checker says there, if anything.
    std::string placeOf(size_t offset) const {
        const auto message = mMessages.find(offset);
        return mDocument.source.placeOf(offset) +
               (message != mMessages.end() ? ": " + message->second : "");
    }

    std::string whyRejected() const {
        if (!mDocument.isReadable) {
            return path() + ": cannot be read: " + mDocument.whyNotReadable;
        }
        return mMessages.empty() ? path() : placeOf(mMessages.begin()->first);
    }

    Offset named(const char* section, const std::string& name) const {
        const Node* const node = mDocument.section(section);
        const Node* const member = node != nullptr ? findMember(*node, name) : nullptr;
        return member != nullptr && member->isUsed() ? Offset(member->value.start) : std::nullopt;
    }

    Offset element(const char* section, size_t number) const {
        const std::vector<const Node*> elements = usedElements(mDocument, section);
        return number < elements.size() ? Offset(elements[number]->value.start) : std::nullopt;
    }

    Offset codec(const std::string& name) const {
        Offset offset;
        forEachEntry(mDocument, isOfCodecs, [&](const DocumentName& entry) {
            offset = entry.text == name ? Offset(entry.span.start) : offset;
        });
        return offset;
    }

private:
    const Document& mDocument;
    PlacesByLine mLogged;
    std::map<size_t, std::string> mMessages;  // By where they are.
};

constexpr char kOtherDocument[] = ". The phone runs another document than the one in the tree.";

class LogComparison {
public:
    LogComparison(const LoadStory& story, std::vector<Conclusion>* conclusions,
                  std::vector<PlacedLine>* places)
        : mStory(story),
          mAttribution(attribute(story)),
          mLoad(readLoad()),
          mConclusions(*conclusions),
          mPlaces(*places) {
        if (mLoad.hasSystemSpec()) {
            mSystemSpec = std::make_unique<PulledDocument>(*mLoad.systemSpec);
        }
        mOverlay = std::make_unique<PulledDocument>(*mLoad.overlay);
    }

    void run() {
        tellDocuments();
        comparePaths();
        for (size_t i = 0; i < mStory.events.size(); ++i) {
            compareEvent(i);
        }
        compareRejections();
        compareDump();
        if (mStory.droppedLines == 0 && mStory.cutLines == 0 && !mStory.isTooLong) {
            tellMissingLines(mSystemSpec.get());
            tellMissingLines(mOverlay.get());
        }
        std::stable_sort(mPlaces.begin(), mPlaces.end(),
                         [](const PlacedLine& a, const PlacedLine& b) { return a.line < b.line; });
    }

private:
    void contradict(std::string text, std::vector<uint64_t> lines = {}) {
        constexpr size_t kMost = 20;  // More of them say nothing more.
        if (++mContradictions <= kMost) {
            mConclusions.push_back({Severity::Error, "contradiction", std::move(text),
                                    "Pull the documents of this phone again, and see that the "
                                    "variant is the right one.",
                                    std::move(lines)});
        }
    }

    void tellDocuments() {
        const std::string spec =
                mSystemSpec == nullptr
                        ? "none opens"
                        : mSystemSpec->path() + (mLoad.systemSpec->isPipe       ? ", a pipe"
                                                 : mLoad.systemSpec->isAccepted ? ""
                                                                                : ", rejected");
        mConclusions.push_back(
                {Severity::Note,
                 "tree",
                 "in the tree, the system spec document is: " + spec +
                         "; the second document is: " + mLoad.overlay->origin +
                         (mLoad.overlay->path.empty() ? "" : " " + mOverlay->path()) +
                         (mLoad.overlay->isAccepted ? "" : ", rejected") +
                         (mLoad.isSeeded ? "; a device would write it into the private file" : ""),
                 "",
                 {}});
    }

    void comparePaths() {
        const std::string path = mStory.firstPath();
        if (!path.empty() && path != mLoad.firstPath) {
            contradict("the log shows that the device looks for " + path +
                               ", but the options and the tree lead to " + mLoad.firstPath +
                               ": the variant is another one, or the tree lacks a document",
                       {mStory.firstLine});
            return;
        }
        const bool isFallback = mLoad.hasSystemSpec() && mLoad.systemSpec->path != mLoad.firstPath;
        const std::vector<uint64_t> lines = {std::max(mStory.failedLine, mStory.nothingOpenedLine)};
        if (mStory.nothingOpenedLine != 0 && mLoad.hasSystemSpec()) {
            contradict("the log shows that no system spec document opens, but the tree has " +
                               mSystemSpec->path(),
                       lines);
        } else if (mStory.failedLine != 0 && mLoad.hasSystemSpec() && !isFallback) {
            contradict("the log shows that " + mStory.failedPath +
                               " does not open, but in the tree it does",
                       lines);
        } else if (mStory.fallbackLine != 0 && mStory.nothingOpenedLine == 0 &&
                   !mLoad.hasSystemSpec()) {
            contradict("the log shows that the fallback opens, but the tree has none",
                       {mStory.fallbackLine});
        } else if (mStory.failedLine == 0 && mStory.droppedLines == 0 &&
                   (isFallback || !mLoad.hasSystemSpec())) {
            contradict("in the tree " + mLoad.firstPath +
                       " does not open, but no line of the log says so");
        }
    }

    std::vector<PulledDocument*> documentsOf(size_t event) const {
        std::vector<PulledDocument*> documents;
        if (mSystemSpec != nullptr && mAttribution.of[event] != Which::Overlay) {
            documents.push_back(mSystemSpec.get());
        }
        if (mAttribution.of[event] != Which::SystemSpec) {
            documents.push_back(mOverlay.get());
        }
        return documents;
    }

    void compareEvent(size_t i) {
        const LogEvent& event = mStory.events[i];
        if (event.id == LineId::EncoderFilter) {
            placeFilter(i);
            return;
        }
        if (event.id != LineId::Skipped && event.id != LineId::RowSkipped) {
            return;
        }
        for (uint64_t n = 0; n < event.count; ++n) {
            Offset finding;
            for (PulledDocument* const document : documentsOf(i)) {
                finding = document->take({event.place, event.reason});
                if (finding) {
                    mPlaces.push_back({event.line, textOf(event), document->placeOf(*finding)});
                    break;
                }
            }
            if (!finding) {
                contradict("no document in the tree leaves the line \"" + textOf(event) + "\"" +
                                   kOtherDocument,
                           {event.line});
                return;
            }
        }
    }

    static std::string textOf(const LogEvent& event) {
        return event.id == LineId::Skipped ? "Skipped " + event.place + ": " + event.reason
                                           : logLine(event.id).text;
    }

    void placeFilter(size_t i) {
        const LogEvent& event = mStory.events[i];
        for (PulledDocument* const document : documentsOf(i)) {
            const Offset finding = document->element(targetSpecSupportedEncPostProcessingFilters,
                                                     mFilters[document]);
            if (finding) {
                mFilters[document] += event.count;
                mPlaces.push_back(
                        {event.line, "filter " + event.place, document->placeOf(*finding)});
                return;
            }
        }
        contradict("no document in the tree has the encoder post-processing filter \"" +
                           event.place + "\" at this place of its list" + kOtherDocument,
                   {event.line});
    }

    void compareRejections() {
        bool isSpecRejected = false;
        bool isOverlayRejected = false;
        for (size_t i = 0; i < mStory.events.size(); ++i) {
            if (mStory.events[i].id != LineId::StreamRejected) {
                continue;
            }
            bool isAny = false;
            for (PulledDocument* const document : documentsOf(i)) {
                bool* const isRejected =
                        document == mOverlay.get() ? &isOverlayRejected : &isSpecRejected;
                if (!document->document().isAccepted && !*isRejected) {
                    mPlaces.push_back({mStory.events[i].line, logLine(LineId::StreamRejected).text,
                                       document->whyRejected()});
                    *isRejected = true;
                    isAny = true;
                    break;
                }
            }
            if (!isAny) {
                contradict(std::string("the log shows that a document was rejected, but the tree's "
                                       "is accepted") +
                                   kOtherDocument,
                           {mStory.events[i].line});
            }
        }
        if (mStory.droppedLines != 0) {
            return;
        }
        if (mSystemSpec != nullptr && !mLoad.systemSpec->isAccepted && !isSpecRejected) {
            contradict("a device rejects " + mSystemSpec->whyRejected() +
                       "; but no line of the log says so" + kOtherDocument);
        }
        if (!mLoad.overlay->isAccepted && !isOverlayRejected) {
            contradict("a device rejects " + mOverlay->whyRejected() +
                       "; but no line of the log says so" + kOtherDocument);
        }
    }

    void compareValue(const DumpedValue& dumped, Offset finding, const std::string& value) {
        const std::string text = dumped.name + (dumped.value.empty() ? "" : " : " + dumped.value);
        if (!finding) {
            contradict("the dump shows \"" + text +
                               "\", which the tree's system spec document does not have" +
                               kOtherDocument,
                       {dumped.line});
            return;
        }
        mPlaces.push_back({dumped.line, text, mSystemSpec->placeOf(*finding)});
        if (value != dumped.value) {
            contradict("the dump shows \"" + text + "\", but " + mSystemSpec->placeOf(*finding) +
                               " makes it " + value + kOtherDocument,
                       {dumped.line});
        }
    }

    template <typename Values>
    void compareNamed(const std::vector<DumpedValue>& dumped, const char* section,
                      const Values& values) {
        for (const DumpedValue& value : dumped) {
            const auto stored = values.find(value.name);
            compareValue(
                    value,
                    stored != values.end() ? mSystemSpec->named(section, value.name) : Offset(),
                    stored != values.end() ? std::to_string(stored->second) : "");
        }
        tellMissing(dumped.size(), values.size(), section);
    }

    void compareList(const std::vector<DumpedValue>& dumped, const char* section,
                     const std::list<std::string>& names) {
        size_t number = 0;
        for (const std::string& name : names) {
            if (number == dumped.size()) {
                break;
            }
            const Offset finding = mSystemSpec->element(section, number);
            compareValue(dumped[number], dumped[number].name == name ? finding : Offset(), "");
            ++number;
        }
        tellMissing(dumped.size(), names.size(), section);
    }

    void tellMissing(size_t dumped, size_t stored, const char* section) {
        if (mStory.dump.isWhole && dumped < stored && mStory.droppedLines == 0 &&
            !mStory.isTooLong) {
            contradict("the dump shows " + std::to_string(dumped) + " of " + section +
                               ", but the tree's system spec document has " +
                               std::to_string(stored) + kOtherDocument,
                       {});
        }
    }

    // Behind the plug-ins there may be the codec components, without a heading between.
    void compareDump() {
        const Dump& dump = mStory.dump;
        if (!dump.isStarted || mSystemSpec == nullptr) {
            return;
        }
        const SpecDocument& content = mLoad.systemSpec->content;
        compareNamed(dump.features, targetSpecFeatures, content.features);
        compareNamed(dump.presets, targetSpecPresets, content.presets);
        compareList(dump.filters, targetSpecPreProcessingFilters, content.preprocessingFilters);
        const size_t plugins = dump.hasCodecsHeading
                                       ? dump.plugins.size()
                                       : std::min(dump.plugins.size(), content.codecPlugins.size());
        const auto middle = dump.plugins.begin() + static_cast<std::ptrdiff_t>(plugins);
        compareList({dump.plugins.begin(), middle}, targetSpecCodecPlugins, content.codecPlugins);
        std::vector<DumpedValue> codecs(middle, dump.plugins.end());
        codecs.insert(codecs.end(), dump.codecs.begin(), dump.codecs.end());
        for (const DumpedValue& codec : codecs) {
            compareValue(codec,
                         content.supportedCodecs.count(codec.name) != 0
                                 ? mSystemSpec->codec(codec.name)
                                 : Offset(),
                         "");
        }
        tellMissing(codecs.size(), content.supportedCodecs.size(), targetSpecSupportedCodecs);
    }

    void tellMissingLines(const PulledDocument* document) {
        if (document == nullptr) {
            return;
        }
        for (const auto& [line, finding] : document->untaken()) {
            contradict("no line of the log is about " + document->placeOf(finding) +
                       kOtherDocument);
        }
    }

    const LoadStory& mStory;
    const Attribution mAttribution;
    const Load mLoad;
    std::unique_ptr<PulledDocument> mSystemSpec;
    std::unique_ptr<PulledDocument> mOverlay;
    std::map<const PulledDocument*, size_t> mFilters;  // How many filters of each are placed.
    size_t mContradictions = 0;
    std::vector<Conclusion>& mConclusions;
    std::vector<PlacedLine>& mPlaces;
};

}  // namespace

void comparePulled(const LoadStory& story, bool isVariantGiven,
                   std::vector<Conclusion>* conclusions, std::vector<PlacedLine>* places) {
    const std::string path = story.firstPath();
    if (!isVariantGiven && !path.empty()) {
        const std::string variant = variantIn(path);
        playVariant(variant.empty() ? kDefaultVariant : variant);
    }
    LogComparison(story, conclusions, places).run();
}

}  // namespace kc2::tool
