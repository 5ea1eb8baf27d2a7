// A component that uses the library, for reload.cpp to load and unload.

#include <fstream>
#include <list>
#include <string>

#include "kc2/FileDescriptor.h"
#include "kc2/IonInfo.h"
#include "kc2/KC2PlatformVersion.h"
#include "kc2/PixFormat.h"
#include "kc2/TamraBufferLayout.h"
#include "kc2/TargetSpec.h"
#include "tests/binary/Check.h"

namespace {

void usePlatform() {
    using Layout = kc2::Platform::TamraBufferLayout;
    CHECK(Layout::FormatMap(kc2::PixFormat::TAMRA_TP10) == 5);
    CHECK(Layout::Offset(kc2::PixFormat::TAMRA_P010, Layout::Y_META, 1, 1) == 0);
    CHECK(kc2::Platform::IonInfo::AlignmentFor(kc2::Platform::IonInfo::DEFAULT) == 4096);
    CHECK(kc2::Platform::GetUniqueIdForFileDescriptor(-1) == 0);
    CHECK(!kc2::KC2PlatformVersion::getBaseVersion().empty());
}

// A separate store: the one that Get() creates is never freed, by contract.
void useStore() {
    kc2::TargetSpec spec;
    std::ifstream stream;
    stream.setstate(std::ifstream::failbit);  // Selects the built-in document.
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
    usePlatform();
    useStore();
}
