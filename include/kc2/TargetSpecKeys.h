/**
 * @file
 * The key names of the system spec document, as writable globals.
 *
 * Every component that reads or writes a system spec document spells its keys through these
 * globals, and so does the library itself: it reads the pointer anew at each lookup, so a program
 * that assigns one before the first kc2::TargetSpec::Get() makes the library look for another key.
 * Assign only while no other thread loads a document. A null pointer names no member. The texts are
 * constants that live as long as the library; a text that a program assigns stays its own, and must
 * live as long as documents are loaded.
 *
 * The globals are one after the other in the library's memory, in the order of this file. A program
 * that GNU ld links with copy relocations has its copies in another order; the library uses those.
 */
#pragma once

namespace kc2 {

#pragma GCC visibility push(default)

/** "Video": member of the root, the object that holds every section. */
extern const char* targetSpecRoot;

/** "Features": section, object of feature name -> boolean. */
extern const char* targetSpecFeatures;
/** "Presets": section, object of preset name -> signed 32-bit integer. */
extern const char* targetSpecPresets;
/** "NimbraModeBitrateTable": section, array of [low, high, bit rate] rows. */
extern const char* targetSpecNimbraModeBitRate;
/** "DolbyVision": section, object of the three members below. */
extern const char* targetSpecDV;
/** "KC2CodecPlugins": section, array of codec plug-in names. */
extern const char* targetSpecCodecPlugins;
/** "KC2PreProcessingFilters": section, array of pre-processing filter entries. */
extern const char* targetSpecPreProcessingFilters;

/** "profiles": member of "DolbyVision", array of profile numbers. */
extern const char* targetSpecDVProfiles;
/** "max_main_tier_level": member of "DolbyVision", signed 32-bit integer. */
extern const char* targetSpecDVMaxMainTierLevel;
/** "max_high_tier_level": member of "DolbyVision", signed 32-bit integer. */
extern const char* targetSpecDVMaxHighTierLevel;

/**
 * @name Members of a pre-processing filter description
 * For the components that read such descriptions; the store itself does not.
 * @{
 */
extern const char* targetSpecPreProcessingFilterCodecName;      ///< "codec_name"
extern const char* targetSpecPreProcessingFilterLibName;        ///< "lib_name"
extern const char* targetSpecPreProcessingFilterInputStreams;   ///< "input_streams"
extern const char* targetSpecPreProcessingFilterOutputStreams;  ///< "output_streams"
/** @} */

/** "codecs-available": section, object of the two members below. */
extern const char* targetSpecSupportedCodecs;
/** "decoders": member of "codecs-available", array of component names. */
extern const char* targetSpecAvailableDecoders;
/** "encoders": member of "codecs-available", array of component names. */
extern const char* targetSpecAvailableEncoders;

/** "KC2EncPostProcessingFilters": section, array of encoder post-processing filter names. */
extern const char* targetSpecSupportedEncPostProcessingFilters;
/** "OptionalCodecs": section, array of further component names. */
extern const char* targetSpecOptionalCodecs;
/** "perf-resource-values": section, object of use-case name -> array of hexadecimal strings. */
extern const char* targetSpecPerfResourceValues;

#pragma GCC visibility pop

}  // namespace kc2
