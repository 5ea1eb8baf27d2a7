/**
 * @file
 * kc2::TargetSpec: what the video subsystem of this device can do.
 */
#pragma once

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <list>
#include <map>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

/** The platform library of the media codec service. */
namespace kc2 {

struct SpecDocument;

#pragma GCC visibility push(default)

/**
 * @name Query status values
 * What the queries of TargetSpec with a status return. Positive values are POSIX error numbers.
 * @{
 */
inline constexpr int32_t SPEC_OK = 0;             ///< Success.
inline constexpr int32_t SPEC_NOT_FOUND = 2;      ///< No preset of that name (ENOENT).
inline constexpr int32_t SPEC_BAD_ARGUMENT = 22;  ///< The output argument is null (EINVAL).
inline constexpr int32_t SPEC_NO_LIST = -2;       ///< The output list is null (filter getters).
/** @} */

/** One row of the Nimbra-mode bit-rate table: the bit rate for the values in [low, high). */
struct NimbraBitRateEntry {
    uint32_t low;      ///< Lower bound of the range, inclusive.
    uint32_t high;     ///< Upper bound of the range, exclusive. Not above `low`: matches nothing.
    uint32_t bitRate;  ///< Bit rate for the values in the range, in the document's unit.
};

/** Dolby Vision limits of the device. */
struct DVConfigs {
    std::set<uint32_t> profiles;   ///< Supported Dolby Vision profile numbers, ascending.
    int32_t maxMainTierLevel = 0;  ///< Highest level in the main tier; 0 when no document sets it.
    int32_t maxHighTierLevel = 0;  ///< Highest level in the high tier; 0 when no document sets it.
};

/**
 * The store of the target device's video capabilities.
 *
 * Codec components call Get() and then any query, from any thread, any number of times. The first
 * Get() in the process loads the store from JSON system spec documents: first the system spec file
 * that the target variant selects, then the private configuration file or, when that cannot be
 * opened, the built-in document of the chip. A later document never replaces a feature, a preset or
 * a perf-resource name that an earlier one set. It appends to the lists and the bit-rate table,
 * adds codec names and Dolby Vision profiles to the sets, and replaces both tier levels if it has a
 * "DolbyVision" section (a level that is missing there, null or unusable becomes 0).
 *
 * Documents are untrusted input. A document is rejected as a whole if it is not valid JSON, if its
 * root or "Video" is neither an object nor null, if it nests deeper than 255 levels, or if it is
 * larger than 32 MiB or 1,048,576 values. That is one error line, and the store stays as it was.
 *
 * In an accepted document, only the bad value is skipped: its section, named entry or table row
 * with one warning line that names the place (a row of the wrong size has a line without a place),
 * its list, list entry or Dolby Vision profile without a line. A perf-resource name with one bad
 * element is skipped as a whole, so that no value is paired with another one's resource code.
 *
 * Nothing here throws in a device build. A document nested to the limit needs about 512 KiB of the
 * calling thread's stack.
 *
 * Tools and tests may default-construct further stores and merge documents into them. The queries
 * and printSpecifications() are safe to call concurrently, on a store that no thread is loading;
 * the instance that Get() returns is loaded.
 */
class TargetSpec {
public:
    /** An empty store: it has no names, and both tier levels are 0. Logs nothing. */
    TargetSpec() = default;
    TargetSpec(const TargetSpec&) = delete;
    TargetSpec& operator=(const TargetSpec&) = delete;

    /**
     * The process-wide store, created and loaded by the first call.
     *
     * Safe to call from any thread. Threads that arrive while another one loads wait in a busy loop
     * until it is done, some milliseconds; later calls take no lock and read no file. A load step
     * that fails is logged and leaves its part of the store empty.
     *
     * Call it once when the service starts: before it starts threads of real-time priority, and
     * before it forks. A waiting thread of real-time priority on the core of a loading thread of
     * lower priority keeps that one from running until the kernel throttles it, and where both are
     * of real-time priority, perhaps for ever. A child that is forked while another thread loads
     * waits for ever: it has the taken lock, but not that thread.
     *
     * Throws nothing in a device build. Where the library is built with exceptions, as on a
     * development machine, an allocation that fails during the load throws std::bad_alloc; nobody
     * sees what was stored by then, and the next call loads anew.
     *
     * @return the instance, never null. It belongs to the library and is never freed or reloaded.
     */
    static TargetSpec* Get();

    /**
     * @name Queries
     * @{
     */

    /** @return the switch of the feature `name`; false when no document names it. No allocation. */
    bool isFeatureEnabled(const std::string& name);

    /**
     * Looks up the numeric preset or limit `name`. No allocation.
     *
     * @param name matched byte by byte; case counts.
     * @param[out] value receives the preset; left alone unless the result is SPEC_OK.
     * @return SPEC_OK, SPEC_NOT_FOUND, or SPEC_BAD_ARGUMENT when `value` is null (tested first).
     */
    int32_t getPresetValue(const std::string& name, int* value);

    /**
     * @return a copy of the perf-lock words of the use case `name`, resource codes and values in
     *         document order; empty if the name is absent, or has an empty array.
     */
    std::vector<uint32_t> getPerfResourceValues(const std::string& name);

    /**
     * Bit rate of the first table row whose range [low, high) contains `*value`. Linear in the
     * number of rows, no allocation.
     *
     * @param[in] value only read; null is like a value that is in no row.
     * @return the row's bit rate, in the document's unit; 0xFFFFFFFF if the value is in no row.
     */
    uint32_t getNimbraModeBitRateValue(unsigned int* value);

    /**
     * @return the store's own Dolby Vision limits, not a copy: it lives as long as the store and is
     *         shared by all callers, hence constant.
     */
    const DVConfigs& getDVConfigs();

    /**
     * Appends the codec plug-in names, in document order with duplicates, to `*plugins`; entries
     * that are in the list already stay in front.
     * @return SPEC_OK (also when there are none), or SPEC_BAD_ARGUMENT when `plugins` is null.
     */
    int32_t getCodecPlugins(std::list<std::string>* plugins);

    /**
     * Appends the pre-processing filter entries, in document order with duplicates, to `*filters`.
     * @return SPEC_OK (also when there are none), or SPEC_NO_LIST when `filters` is null.
     */
    int32_t getPreprocessingFilters(std::list<std::string>* filters);

    /**
     * Appends the encoder post-processing filter names, in document order with duplicates, to
     * `*filters`.
     * @return SPEC_OK (also when there are none), or SPEC_NO_LIST when `filters` is null.
     */
    int32_t getEncPostprocessingFilters(std::list<std::string>* filters);

    /**
     * @return a copy of the names of the hardware codec components that are enabled. An empty set
     *         means no restriction: every component is enabled. Each call that returns one writes a
     *         warning line.
     */
    std::unordered_set<std::string> getSupportedCodecs();

    /** @} */

    /** @name Load steps
     * Get() calls them in order; tools and tests call them on further stores. A status is 0 for
     * success and 0xFFFFFFFF for failure. None of them may call Get().
     * @{
     */

    /**
     * First step: merges the system spec file, at readTargetVariant() or, if that cannot be opened,
     * at the fallback path /vendor/etc/video_system_specs.json.
     * @return 0; 0xFFFFFFFF if neither could be opened, or the one that opened was rejected.
     */
    uint32_t extractSpecData();

    /**
     * Path of the system spec document to try first:
     * /odm/etc/mediaVARIANT/video_system_specs.json if that exists, else the same under
     * /vendor/etc/media. VARIANT is the property vendor.media.target_variant, unchanged, without a
     * "/" before it. If the property is unset or "default":
     * /vendor/etc/media/video_system_specs.json, and an error line.
     *
     * If the path under /odm cannot be examined, for whatever reason, the one under /vendor is
     * returned. Reads the property and examines the path on each call.
     */
    static std::string readTargetVariant();

    /**
     * Text of the built-in document of this device's chip, which is the chip whose code name
     * readTargetVariant() contains; `kcodec2_spec defaults --help` lists the documents with their
     * chips.
     * @return NUL-terminated constant text that lives as long as the library; never null.
     */
    static const char* getPrivateConfig();

    /**
     * Merges one system spec document into this store: the rest of `stream`, or the built-in
     * document if the stream is in a failed state (failbit or badbit, not eofbit alone).
     *
     * @param stream stays the caller's, and open. Its state and exception mask are restored, its
     *        gcount() is not. Nothing is thrown, whatever the exception mask.
     * @return 0; 0xFFFFFFFF if the text was rejected or could not be read to its end. The store is
     *         then unchanged.
     */
    uint32_t parseJsonData(std::ifstream& stream);

    /**
     * Second step: merges the private configuration file
     * /data/vendor/media/video_private_configs.json, or the built-in document if the file cannot be
     * opened.
     *
     * Where the codec test tool /vendor/bin/kcodec2_test is installed, a missing or empty private
     * file is first seeded with the built-in document, and this load merges the built-in document,
     * whether or not the file could be written. A file with content is never written to, unless it
     * cannot be opened for reading at all. If the seed cannot be written completely, the file is
     * left empty, so that the next load seeds it again. What is not a regular file is treated as
     * one that cannot be opened, and is not written to: opening a pipe could wait for ever.
     * @return 0; 0xFFFFFFFF if the document was rejected, as an empty private file is without the
     *         test tool.
     */
    uint32_t extractPrivateData();

    /**
     * Writes features, presets, pre-processing filters, plug-ins and codec names to the log, as far
     * as the log level allows.
     */
    void printSpecifications();

    /** @} */

private:
    /** Through this, tools and tests read a whole store; it is not part of the library. */
    friend struct TargetSpecInspector;

    [[gnu::visibility("hidden")]] static TargetSpec* load();
    [[gnu::visibility("hidden")]] uint32_t parse(std::ifstream& stream, const char* streamName);
    [[gnu::visibility("hidden")]] void merge(SpecDocument& document);

    std::map<std::string, bool> mFeatures;
    std::map<std::string, std::vector<uint32_t>> mPerfResourceValues;
    std::map<std::string, int32_t> mPresets;
    std::vector<NimbraBitRateEntry> mNimbraModeBitRateTable;
    std::list<std::string> mCodecPlugins;
    DVConfigs mDVConfigs;
    std::list<std::string> mPreprocessingFilters;
    std::unordered_set<std::string> mSupportedCodecs;
    std::list<std::string> mEncPostProcessingFilters;
    uint32_t mStatus = 0;

    [[gnu::visibility("hidden")]] static TargetSpec* mInstance;
    [[gnu::visibility("hidden")]] static std::atomic<uint8_t> mLock;
    [[gnu::visibility("hidden")]] static std::atomic<bool> mIsInitialized;
};

#pragma GCC visibility pop

}  // namespace kc2
