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
 * What the status-returning queries of TargetSpec answer. Positive values are POSIX error numbers.
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
    uint32_t bitRate;  ///< Bit rate for the values in the range, in the unit the document uses.
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
 * a perf-resource name that an earlier one set; it appends to the lists and the bit-rate table,
 * joins the codec names and the Dolby Vision profiles, and replaces both tier levels whenever it
 * has a "DolbyVision" section (a level missing there, null or unusable becomes 0).
 *
 * Documents are untrusted input. A document that is not valid JSON, whose root or "Video" is
 * neither an object nor null, that nests deeper than 255 levels, or that is
 * larger than 32 MiB or 1,048,576 values is rejected whole: one error line, and the store stays as
 * it was. Below that a bad value costs only its own section, named entry or table row, with one
 * warning line that names the place (a row of the wrong size has its own line), or only its own
 * list, list entry or Dolby Vision profile, without a line; a perf-resource name with one bad
 * element is skipped whole, so that resource codes and their values never slip out of step. Nothing
 * here throws. A document nested to the limit needs about 512 KiB of the calling thread's stack.
 *
 * Tools and tests may default-construct a store of their own and merge documents into it. Only the
 * queries and printSpecifications() are safe to call concurrently, and only on a store that no
 * thread is loading: Get() hands its instance out no earlier than that.
 */
class TargetSpec {
public:
    /** An empty store: every query answers "absent", both tier levels are 0, nothing is logged. */
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
     *         document order; empty when the name is absent, or present with an empty array.
     */
    std::vector<uint32_t> getPerfResourceValues(const std::string& name);

    /**
     * Bit rate of the first table row whose range [low, high) holds `*value`. Linear in the number
     * of rows, no allocation.
     *
     * @param[in] value only read. Null is answered like a value that no row holds.
     * @return the row's bit rate; 0xFFFFFFFF when no row holds the value.
     */
    uint32_t getNimbraModeBitRateValue(unsigned int* value);

    /**
     * @return the store's own Dolby Vision limits, not a copy: it lives as long as the store and is
     *         shared by all callers, hence constant.
     */
    const DVConfigs& getDVConfigs();

    /**
     * Appends the codec plug-in names, in document order with duplicates, to `*plugins`; what the
     * list held before stays in front.
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
     *         means no restriction: every component is enabled. A warning line says so on each such
     *         call.
     */
    std::unordered_set<std::string> getSupportedCodecs();

    /** @} */

    /** @name Load steps
     * Get() calls them in order; tools and tests call them on stores of their own. Those that
     * return a status answer 0 for success and 0xFFFFFFFF for failure. None of them may call Get().
     * @{
     */

    /**
     * First step: merges the system spec file, at readTargetVariant() or, when that cannot be
     * opened, at the fallback path /vendor/etc/video_system_specs.json.
     * @return 0xFFFFFFFF when neither could be opened or the one that opened was rejected.
     */
    uint32_t extractSpecData();

    /**
     * Path of the system spec document to try first:
     * /odm/etc/mediaVARIANT/video_system_specs.json when that exists, else the same under
     * /vendor/etc/media, where VARIANT is the property vendor.media.target_variant exactly as it
     * comes, with no "/" put before it. When the property is unset or "default":
     * /vendor/etc/media/video_system_specs.json, and an error line.
     *
     * A candidate under /odm that cannot be examined, for whatever reason, counts as absent, so
     * that the vendor document gets its chance. Reads the property anew on each call.
     */
    static std::string readTargetVariant();

    /**
     * Text of the built-in document of this device's chip: document 1 when readTargetVariant()
     * contains "brel" or "mirt", else document 2 when it contains "orvelle", else document 3.
     * @return NUL-terminated constant text that lives as long as the library; never null.
     */
    static const char* getPrivateConfig();

    /**
     * Merges one system spec document into this store: what remains in `stream`, or the built-in
     * document when the stream is in a failed state (failbit or badbit; end-of-file alone is not).
     *
     * @param stream stays the caller's, and open. Its state and exception mask are afterwards what
     *        they were, and nothing is thrown; only its gcount() is another.
     * @return 0 when the text was a document; 0xFFFFFFFF when it was rejected or could not be read
     *         to its end. The store is then as it was.
     */
    uint32_t parseJsonData(std::ifstream& stream);

    /**
     * Second step: merges the private configuration file
     * /data/vendor/media/video_private_configs.json, or the built-in document when it cannot be
     * opened.
     *
     * Where the codec test tool /vendor/bin/kcodec2_test is installed, a missing or empty private
     * file is first seeded with the built-in document, and this load then merges the built-in
     * document whether or not the file could be written. A file with content is never written to,
     * unless it cannot be opened for reading at all. A seed that cannot be written whole is left
     * empty, so that the next load seeds it again. What is not a regular file in its place counts
     * as a file that cannot be opened, and is not written to: opening a pipe could wait for ever.
     * @return 0xFFFFFFFF when the document was rejected; an empty private file without the test
     * tool counts as that.
     */
    uint32_t extractPrivateData();

    /** Writes features, presets, plug-ins and codec names to the log, as the log level allows. */
    void printSpecifications();

    /** @} */

private:
    /** Tools and tests enumerate a store through this; the library does not contain it. */
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
