// A component that uses the library, for reload.cpp to load and unload.

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>

#include "checks/Check.h"
#include "kc2/FileDescriptor.h"
#include "kc2/IonInfo.h"
#include "kc2/KC2PlatformVersion.h"
#include "kc2/PixFormat.h"
#include "kc2/TamraBufferLayout.h"
#include "kc2/TargetSpec.h"
#include "kc2/TargetSpecKeys.h"

namespace {

// Position-independent code sees the globals where the library has them.
void checkKeyOrder() {
    const char** const inOrder[] = {
            &kc2::targetSpecRoot,
            &kc2::targetSpecFeatures,
            &kc2::targetSpecPresets,
            &kc2::targetSpecNimbraModeBitRate,
            &kc2::targetSpecDV,
            &kc2::targetSpecCodecPlugins,
            &kc2::targetSpecPreProcessingFilters,
            &kc2::targetSpecDVProfiles,
            &kc2::targetSpecDVMaxMainTierLevel,
            &kc2::targetSpecDVMaxHighTierLevel,
            &kc2::targetSpecPreProcessingFilterCodecName,
            &kc2::targetSpecPreProcessingFilterLibName,
            &kc2::targetSpecPreProcessingFilterInputStreams,
            &kc2::targetSpecPreProcessingFilterOutputStreams,
            &kc2::targetSpecSupportedCodecs,
            &kc2::targetSpecAvailableDecoders,
            &kc2::targetSpecAvailableEncoders,
            &kc2::targetSpecSupportedEncPostProcessingFilters,
            &kc2::targetSpecOptionalCodecs,
            &kc2::targetSpecPerfResourceValues,
    };
    for (size_t i = 0; i < std::size(inOrder); ++i) {
        CHECK(inOrder[i] == inOrder[0] + i);
    }
}

void usePlatform() {
    using Layout = kc2::Platform::TamraBufferLayout;
    CHECK(Layout::FormatMap(kc2::PixFormat::TAMRA_TP10) == 5);
    CHECK(Layout::Offset(kc2::PixFormat::TAMRA_P010, Layout::Y_META, 1, 1) == 0);
    CHECK(kc2::Platform::IonInfo::AlignmentFor(kc2::Platform::IonInfo::PIXEL) == 4096);
    CHECK(kc2::Platform::GetUniqueIdForFileDescriptor(-1) == 0);
    CHECK(!kc2::KC2PlatformVersion::getBaseVersion().empty());
}

// A store of its own: the one that Get() creates is never freed, by contract.
void useStore() {
    kc2::TargetSpec spec;
    std::ifstream stream;
    stream.setstate(std::ifstream::failbit);  // Stands for the built-in document.
    CHECK(spec.parseJsonData(stream) == 0);
    CHECK(spec.isFeatureEnabled("private_enc_cvp_enable"));
    CHECK(spec.extractSpecData() != 0);
    CHECK(spec.extractPrivateData() == 0);
    spec.printSpecifications();
    std::list<std::string> plugins;
    CHECK(spec.getCodecPlugins(&plugins) == kc2::SPEC_OK);
}

}  // namespace

extern "C" [[gnu::visibility("default")]] void useLibrary() {
    checkKeyOrder();
    usePlatform();
    useStore();
}
