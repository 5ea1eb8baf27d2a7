// The singleton and its load sequence: read this file first.

#include "kc2/TargetSpec.h"

#include <fstream>

#include "base/BaseLibrary.h"
#include "targetspec/DefaultDocuments.h"
#include "targetspec/LoadStatus.h"
#include "targetspec/SystemSpecFile.h"

namespace kc2 {

// Constant-initialised: nothing of the store runs when the library is loaded.
TargetSpec* TargetSpec::mInstance = nullptr;
constinit std::atomic<uint8_t> TargetSpec::mLock{0};
constinit std::atomic<bool> TargetSpec::mIsInitialized{false};

// tests/model/GetModel.cpp proves these orderings; it takes the same steps.
TargetSpec* TargetSpec::Get() {
    if (mIsInitialized.load(std::memory_order_acquire)) [[likely]] {
        return mInstance;
    }
    return load();
}

TargetSpec* TargetSpec::load() {
    while (mLock.exchange(1, std::memory_order_acquire) != 0) {
        // Another thread is loading; it needs milliseconds, once per process.
    }
    if (!mIsInitialized.load(std::memory_order_acquire)) {
        updateLogLevel();
        mInstance = new TargetSpec();
        mInstance->mStatus = mInstance->extractSpecData();
        mInstance->printSpecifications();  // Before the overlay: the log shows the device's spec.
        mInstance->mStatus = mInstance->extractPrivateData();
        mIsInitialized.store(true, std::memory_order_release);
    }
    mLock.store(0, std::memory_order_release);
    return mInstance;
}

uint32_t TargetSpec::extractSpecData() {
    std::ifstream stream;
    if (openSystemSpec(stream).empty()) {
        return kLoadFailed;
    }
    return parseJsonData(stream);
}

const char* TargetSpec::getPrivateConfig() {
    return chipDocumentFor(readTargetVariant()).text;
}

}  // namespace kc2
