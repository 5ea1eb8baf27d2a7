// A program that is not position independent has the key names copied into itself when it is
// loaded. The library must see what the program writes there.

#include <fstream>

#include "hostplatform/HostPlatform.h"
#include "kc2/PixFormat.h"
#include "kc2/TamraBufferLayout.h"
#include "kc2/TargetSpec.h"
#include "kc2/TargetSpecKeys.h"
#include "tests/binary/Check.h"

namespace {

bool builtInDocumentIsFound() {
    kc2::TargetSpec spec;
    std::ifstream stream;
    stream.setstate(std::ifstream::failbit);  // Selects the built-in document.
    CHECK(spec.parseJsonData(stream) == 0);
    return spec.isFeatureEnabled("private_enc_cvp_enable");
}

}  // namespace

int main() {
    kc2::host::setLogSink([](int, const char*, const char*) {});
    kc2::host::setProperty("vendor.media.target_variant", "_brel");

    CHECK(builtInDocumentIsFound());
    const char* const root = kc2::targetSpecRoot;
    kc2::targetSpecRoot = "Audio";
    CHECK(!builtInDocumentIsFound());
    kc2::targetSpecRoot = nullptr;
    CHECK(!builtInDocumentIsFound());
    kc2::targetSpecRoot = root;
    CHECK(builtInDocumentIsFound());

    CHECK(kc2::Platform::TamraBufferLayout::FormatMap(kc2::PixFormat::RGBA_FP16) == 11);
    std::puts("the library looks under the key that the program wrote");
}
