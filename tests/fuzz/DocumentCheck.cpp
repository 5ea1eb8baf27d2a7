// One document through the library, and what must be true of any document.

#include "tests/fuzz/DocumentCheck.h"

#include <android/log.h>
#include <sys/mman.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "device/BaseLibrary.h"
#include "device/Log.h"
#include "hostplatform/HostPlatform.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/StoreContent.h"

namespace kc2::fuzz {

namespace {

struct LogCount {
    size_t errors = 0;
    size_t warnings = 0;
    size_t filters = 0;

    bool operator==(const LogCount&) const = default;
};

LogCount sLogCount;

void countLine(int priority, const char* tag, const char* text) {
    require(std::string_view(tag) == log::kTagTargetSpec, "every line has the store's tag");
    const std::string_view line = text;
    if (priority == ANDROID_LOG_ERROR) {
        require(line == "Couldn't parse json from file stream", "an error line names the error");
        ++sLogCount.errors;
    } else if (priority == ANDROID_LOG_WARN) {
        ++sLogCount.warnings;
    } else if (line.starts_with("mEncPostProcessingFilters ")) {
        ++sLogCount.filters;
    }
}

// A file in memory, opened for each reading as the library opens a device's file.
class TextFile {
public:
    TextFile() : mDescriptor(memfd_create("document", MFD_CLOEXEC)) {
        require(mDescriptor >= 0, "a file in memory can be created");
        mPath = "/proc/self/fd/" + std::to_string(mDescriptor);
    }

    void write(std::string_view text) const {
        const auto size = static_cast<off_t>(text.size());
        require(ftruncate(mDescriptor, size) == 0 &&
                        pwrite(mDescriptor, text.data(), text.size(), 0) == size,
                "the text can be written");
    }

    const std::string& path() const { return mPath; }

private:
    int mDescriptor;
    std::string mPath;
};

// Something in each section, so that every merge finds names and entries in the store.
constexpr std::string_view kEarlierDocument = R"({"Video": {
    "Features": {"private_enc_cvp_enable": false, "a": true},
    "Presets": {"private_complexity": 7, "a": -1},
    "NimbraModeBitrateTable": [[0, 10, 100]],
    "DolbyVision": {"profiles": [5, 8], "max_main_tier_level": 3, "max_high_tier_level": 4},
    "KC2CodecPlugins": ["a"],
    "KC2PreProcessingFilters": ["a"],
    "perf-resource-values": {"a": ["0x1"]},
    "codecs-available": {"decoders": ["a"], "encoders": ["b"]},
    "KC2EncPostProcessingFilters": ["a"]}})";

void setUp() {
    // Debug lines are written, too, and no error line about a variant that is not set.
    host::setLogSink(countLine);
    host::setLogLevel(log::kMaskInfo | log::kMaskDebugDetail | log::kMaskDebugHeading);
    host::setProperty("vendor.media.target_variant", "_fuzz");
    updateLogLevel();
}

uint32_t parse(const std::string& path, TargetSpec* store) {
    std::ifstream stream(path);
    require(stream.is_open(), "the text can be read");
    return store->parseJsonData(stream);
}

// Parses the document into a store that holds `content`, which is kept up to date.
void checkParse(const std::string& path, const std::optional<ExpectedDocument>& expected,
                TargetSpec* store, StoreContent* content) {
    sLogCount = {};
    const uint32_t status = parse(path, store);
    if (expected) {
        require(status == 0, "a document that the parser accepts is accepted");
        *content = merged(std::move(*content), *expected);
        require(contentOf(*store) == *content, "the store has what the document says");
        require(sLogCount == LogCount{0, expected->warnings,
                                      expected->content.encPostProcessingFilters.size()},
                "one warning for each thing left out, one debug line per filter");
    } else {
        require(status == 0xFFFFFFFF, "a text that the parser does not accept is rejected");
        require(contentOf(*store) == *content, "a rejected document leaves the store as it was");
        require(sLogCount == LogCount{1, 0, 0}, "a rejected document writes one error line");
    }
}

}  // namespace

void checkDocument(std::string_view text) {
    [[maybe_unused]] static const bool isSetUp = (setUp(), true);
    static const TextFile file;

    TargetSpec store;
    if (text.size() % 2 == 0) {  // The others start with an empty store.
        file.write(kEarlierDocument);
        require(parse(file.path(), &store) == 0, "the earlier document is accepted");
    }
    StoreContent content = contentOf(store);

    file.write(text);
    const std::optional<ExpectedDocument> expected = expectedDocument(text);
    checkParse(file.path(), expected, &store, &content);
    checkParse(file.path(), expected, &store, &content);
    store.printSpecifications();
}

}  // namespace kc2::fuzz
