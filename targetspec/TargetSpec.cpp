// A load from Get() to the merged store: read this file first.

#include "kc2/TargetSpec.h"

#include <fstream>
#include <memory>
#include <string>

#include "device/BaseLibrary.h"
#include "device/Log.h"
#include "targetspec/LoadStatus.h"
#include "targetspec/reading/BuiltInDocuments.h"
#include "targetspec/reading/DocumentText.h"
#include "targetspec/reading/PrivateConfigFile.h"
#include "targetspec/reading/SpecLocation.h"
#include "targetspec/reading/SpecReader.h"
#include "targetspec/reading/SystemSpecFile.h"

namespace kc2 {

namespace {

constexpr auto& kTag = log::kTagTargetSpec;

// Logs skipped values as warnings.
class FindingLog final : public FindingSink {
public:
    // `document` is its name in the log; null if it has none.
    explicit FindingLog(const char* document)
        : FindingSink({Effect::SkipsAndLogs}), mDocument(document) {}

    void take(const Finding& finding) override {
        const char* const reason = rowOf(finding.kind).reason;
        if (finding.kind == FindingKind::RowSizeNotThree) {
            KC2_LOG_WARNING(kTag, "Unable to queue the json entry due to inappropriate size");
        } else if (mDocument != nullptr) {
            KC2_LOG_WARNING(kTag, "Skipped %s in %s: %s", finding.place.toString().c_str(),
                            mDocument, reason);
        } else {
            KC2_LOG_WARNING(kTag, "Skipped %s: %s", finding.place.toString().c_str(), reason);
        }
    }

private:
    const char* const mDocument;
};

}  // namespace

// Constant-initialised: no code of the store runs when the library is loaded.
TargetSpec* TargetSpec::mInstance = nullptr;
constinit std::atomic<uint8_t> TargetSpec::mLock{0};
constinit std::atomic<bool> TargetSpec::mIsInitialized{false};

// tests/unit/model/GetModel.cpp proves these orderings; it takes the same steps.
TargetSpec* TargetSpec::Get() {
    if (mIsInitialized.load(std::memory_order_acquire)) [[likely]] {
        return mInstance;
    }
    return load();
}

TargetSpec* TargetSpec::load() {
    while (mLock.exchange(1, std::memory_order_acquire) != 0) {
        while (mLock.load(std::memory_order_relaxed) != 0) {
            // Another thread is loading; it needs milliseconds, once per process. Waiting threads
            // only read the lock: if all of them wrote to it, its release would be delayed.
        }
    }
    // Where an allocation throws during the load, as on a development machine, the lock must not
    // stay taken. The store of that load is freed, and the next Get() loads anew.
    struct Unlock {
        ~Unlock() { mLock.store(0, std::memory_order_release); }
    } const unlock;
    if (!mIsInitialized.load(std::memory_order_acquire)) {
        updateLogLevel();
        auto store = std::make_unique<TargetSpec>();
        mInstance = store.get();
        mInstance->mStatus = mInstance->extractSpecData();
        mInstance->printSpecifications();  // Before the overlay: the log shows the device's spec.
        mInstance->mStatus = mInstance->extractPrivateData();
        mIsInitialized.store(true, std::memory_order_release);
        (void)store.release();  // It is never freed.
    }
    return mInstance;
}

uint32_t TargetSpec::extractSpecData() {
    std::ifstream stream;
    if (!openSystemSpec(stream)) {
        return kLoadFailed;
    }
    return parse(stream, "the system spec");
}

uint32_t TargetSpec::extractPrivateData() {
    const bool hasTestTool = isTestToolInstalled();
    const char* const builtInDocument = getPrivateConfig();
    std::ifstream privateFile;
    const bool mustSeed = openPrivateConfig(privateFile, hasTestTool);
    if (mustSeed) {
        seedPrivateConfig(builtInDocument);
    }
    return parse(privateFile, "the private file");
}

std::string TargetSpec::readTargetVariant() {
    return locateSystemSpec();
}

const char* TargetSpec::getPrivateConfig() {
    return chipDocumentFor(readTargetVariant()).text;
}

uint32_t TargetSpec::parseJsonData(std::ifstream& stream) {
    return parse(stream, nullptr);
}

// `streamName` is the stream's document in the log; null if it has no name.
uint32_t TargetSpec::parse(std::ifstream& stream, const char* streamName) {
    const char* const builtInDocument = getPrivateConfig();
    SpecDocument document;
    if (stream.fail()) {
        std::string text = builtInDocument;
        FindingLog findings("the built-in document");
        if (!readSpecDocument(text, &document, findings)) {
            KC2_LOG_ERROR(kTag, "Couldn't parse json from string literal");
            return kLoadFailed;
        }
    } else {
        DocumentText text;
        FindingLog findings(streamName);
        if (!text.read(stream) || !readSpecDocument(text.bytes(), &document, findings)) {
            KC2_LOG_ERROR(kTag, "Couldn't parse json from file stream");
            return kLoadFailed;
        }
    }
    merge(document);
    return kLoadOk;
}

}  // namespace kc2
