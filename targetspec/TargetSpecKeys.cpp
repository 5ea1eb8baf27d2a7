// The key names of the system spec document.

#include "kc2/TargetSpecKeys.h"

// GCC emits file-scope variables in reverse; components rely on this order in memory. Clang keeps
// the order of the source and does not know the attribute.
#if defined(__GNUC__) && !defined(__clang__)
#define IN_ORDER [[gnu::no_reorder]]
#else
#define IN_ORDER
#endif

namespace kc2 {

IN_ORDER const char* targetSpecRoot = "Video";
IN_ORDER const char* targetSpecFeatures = "Features";
IN_ORDER const char* targetSpecPresets = "Presets";
IN_ORDER const char* targetSpecNimbraModeBitRate = "NimbraModeBitrateTable";
IN_ORDER const char* targetSpecDV = "DolbyVision";
IN_ORDER const char* targetSpecCodecPlugins = "KC2CodecPlugins";
IN_ORDER const char* targetSpecPreProcessingFilters = "KC2PreProcessingFilters";
IN_ORDER const char* targetSpecDVProfiles = "profiles";
IN_ORDER const char* targetSpecDVMaxMainTierLevel = "max_main_tier_level";
IN_ORDER const char* targetSpecDVMaxHighTierLevel = "max_high_tier_level";
IN_ORDER const char* targetSpecPreProcessingFilterCodecName = "codec_name";
IN_ORDER const char* targetSpecPreProcessingFilterLibName = "lib_name";
IN_ORDER const char* targetSpecPreProcessingFilterInputStreams = "input_streams";
IN_ORDER const char* targetSpecPreProcessingFilterOutputStreams = "output_streams";
IN_ORDER const char* targetSpecSupportedCodecs = "codecs-available";
IN_ORDER const char* targetSpecAvailableDecoders = "decoders";
IN_ORDER const char* targetSpecAvailableEncoders = "encoders";
IN_ORDER const char* targetSpecSupportedEncPostProcessingFilters = "KC2EncPostProcessingFilters";
IN_ORDER const char* targetSpecOptionalCodecs = "OptionalCodecs";
IN_ORDER const char* targetSpecPerfResourceValues = "perf-resource-values";

}  // namespace kc2
