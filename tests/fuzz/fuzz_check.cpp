// Fuzz target: does `kcodec2_spec check` report about a document what the library does with it?

#include <android/log.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <set>
#include <string>

#include "catalogue/KnownSettings.h"
#include "check/rules/Rules.h"
#include "hostplatform/HostPlatform.h"
#include "kc2/TargetSpecKeys.h"
#include "store/Load.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/StoreContent.h"

namespace kc2::fuzz {

namespace {

size_t sErrors = 0;
size_t sWarnings = 0;

void countLine(int priority, const char* /*tag*/, const char* /*text*/) {
    sErrors += priority == ANDROID_LOG_ERROR ? 1 : 0;
    sWarnings += priority == ANDROID_LOG_WARN ? 1 : 0;
}

// Loads the text with the library into an empty store.
uint32_t parse(const std::string& text, StoreContent* content) {
    static const int file = memfd_create("document", MFD_CLOEXEC);
    const auto size = static_cast<off_t>(text.size());
    require(ftruncate(file, size) == 0 && pwrite(file, text.data(), text.size(), 0) == size,
            "the text can be written");
    std::ifstream stream("/proc/self/fd/" + std::to_string(file));
    TargetSpec store;
    const uint32_t status = store.parseJsonData(stream);
    *content = contentOf(store);
    return status;
}

// The names of a section that the tool reports as used, as the reader returned them.
std::set<std::string> namesTaken(const tool::CheckedDocument& checked, const char* section) {
    std::set<std::string> names;
    for (const tool::KeptFinding* const finding : checked.takenIn(section)) {
        names.insert(finding->name);
    }
    return names;
}

template <typename Map>
bool hasNames(const Map& values, const std::set<std::string>& names) {
    return std::equal(values.begin(), values.end(), names.begin(), names.end(),
                      [](const auto& value, const auto& name) { return value.first == name; });
}

size_t countTaken(const tool::CheckedDocument& checked, const char* section) {
    return static_cast<size_t>(std::count_if(
            checked.document.findings.begin(), checked.document.findings.end(),
            [section](const tool::KeptFinding& finding) {
                return finding.kind == FindingKind::Taken && finding.section == section;
            }));
}

void compare(const tool::CheckedDocument& checked, const StoreContent& store) {
    require(hasNames(store.features, namesTaken(checked, targetSpecFeatures)), "the same features");
    require(hasNames(store.presets, namesTaken(checked, targetSpecPresets)), "the same presets");
    require(hasNames(store.perfResourceValues, namesTaken(checked, targetSpecPerfResourceValues)),
            "the same perf words");
    require(store.nimbraModeBitRateTable.size() == countTaken(checked, targetSpecNimbraModeBitRate),
            "as many rows");
    require(store.codecPlugins.size() == countTaken(checked, targetSpecCodecPlugins),
            "as many plug-ins");
    require(store.preprocessingFilters.size() ==
                    countTaken(checked, targetSpecPreProcessingFilters),
            "as many filters");
    require(store.encPostProcessingFilters.size() ==
                    countTaken(checked, targetSpecSupportedEncPostProcessingFilters),
            "as many filters of the encoders");
    require(store.supportedCodecs.size() <= countTaken(checked, targetSpecSupportedCodecs) +
                                                    countTaken(checked, targetSpecOptionalCodecs),
            "no component that the tool does not know");
}

void check(const std::string& text) {
    static const tool::KnownSettings& known =
            *new tool::KnownSettings(tool::loadCatalogue({}).value_or(tool::Catalogue()));
    sErrors = 0;
    sWarnings = 0;
    StoreContent store;
    const bool isAccepted = parse(text, &store) == 0;
    const tool::CheckedDocument checked("document",
                                        tool::readDocument("document", "document", text));
    require(checked.document.isAccepted == isAccepted, "both accept the document, or neither");
    const auto logged = static_cast<size_t>(std::count_if(
            checked.document.findings.begin(), checked.document.findings.end(),
            [](const tool::KeptFinding& finding) {
                require(finding.start <= finding.limit, "a finding has a place in the text");
                return rowOf(finding.kind).effect == Effect::SkipsAndLogs;
            }));
    require(!isAccepted || sWarnings == logged, "what the tool reports as logged is logged");
    require(sErrors == (isAccepted ? 0 : 1), "a rejected document writes one error line");

    tool::Report report{tool::Levels()};
    tool::checkDocument(checked, known, &report);
    report.addUnusedAllowances();
    if (isAccepted) {
        compare(checked, store);
    } else {
        require(store == StoreContent(), "a rejected document changes nothing");
        require(report.count(tool::Severity::Error) != 0, "the tool reports a rejection");
    }
}

}  // namespace

}  // namespace kc2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    [[maybe_unused]] static const bool isSetUp = [] {
        kc2::host::setLogSink(kc2::fuzz::countLine);
        kc2::host::setProperty("vendor.media.target_variant", "_fuzz");
        return true;
    }();
    kc2::fuzz::check(std::string(data, data + size));
    return 0;
}
