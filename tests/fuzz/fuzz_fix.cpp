// Fuzz target: does `kcodec2_spec check --fix` only repair, whatever the text?

#include <cstdint>
#include <memory>
#include <string>

#include "check/Check.h"
#include "tests/fuzz/FixProperty.h"
#include "tests/fuzz/Require.h"

namespace kc2::fuzz {

namespace {

tool::CheckOptions optionsWithCatalogue() {
    tool::CheckOptions options;
    options.known = std::make_shared<tool::KnownSettings>(
            tool::loadCatalogue({}).value_or(tool::Catalogue()));
    return options;
}

void fix(const std::string& text) {
    static const tool::CheckOptions& options = *new tool::CheckOptions(optionsWithCatalogue());
    const tool::Document document({.path = "document"}, text);
    const std::string unsafe =
            whyUnsafe(text, tool::withSafeFixes(document, options), *options.known);
    require(unsafe.empty(), unsafe.c_str());
}

}  // namespace

}  // namespace kc2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kc2::fuzz::fix(std::string(data, data + size));
    return 0;
}
