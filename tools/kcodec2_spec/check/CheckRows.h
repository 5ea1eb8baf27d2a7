// The checks, as data: one row each. "check --list", "explain", the rules of SARIF and
// docs/checks.md are printed from these rows.
#pragma once

namespace kc2::tool {

enum class Severity { Note, Warning, Error };

// Checks that belong together; options accept the name for all of them.
struct CheckGroup {
    const char* name;
    const char* title;
};

struct Check {
    const char* id;     // Never changes, so that options and comments keep working.
    const char* group;  // The name of one of kCheckGroups.
    Severity severity;
    const char* summary;       // On one line: what is found.
    const char* meaning;       // What the device does, and why it matters.
    const char* fix;           // What to do.
    const char* mistake = "";  // A document that has it; empty where no short one shows it.
    const char* fixed = "";    // The same document, fixed.
    const char* whyNoExample = "";
    // The device uses nothing in the document, so no option and no comment may hide the finding.
    bool isRejection = false;
};

// In the order of the rows below.
inline constexpr CheckGroup kCheckGroups[] = {
        {"load", "Which documents a load reads"},
        {"tree", "Files and names in the device tree"},
        {"reader", "What a device rejects, skips or changes"},
        {"document", "What is valid in a document, but probably not meant"},
        {"name", "Names of settings and of list entries"},
        {"codec", "Codec components"},
        {"value", "Values that the settings catalogue does not allow, and sections without any"},
        {"perf", "Perf words"},
        {"row", "Rows of the bit-rate table"},
        {"merge", "What the documents result in together"},
        {"comment", "Comments that suppress findings"},
};

// Why no document shows the mistake.
inline constexpr char kNeedsLoad[] = "it is about a whole load, not about one document";
inline constexpr char kNeedsTree[] =
        "it is about files, their names and modes, not about their text";
inline constexpr char kTooLarge[] = "a document that is too large for a device is too large here";

// In the order in which they are listed.
inline constexpr Check kChecks[] = {
        // --- Which documents a load reads -------------------------------------------------------
        {
                .id = "private-file-seeded",
                .group = "load",
                .severity = Severity::Note,
                .summary = "a private file that the device would write",
                .meaning = "The codec test tool is installed, and the private file is missing or "
                           "empty. A device then writes the built-in document into the file; the "
                           "checker does not.",
                .fix = "Remove the codec test tool where the device must not write the file, or "
                       "install a private file.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "spec-missing",
                .group = "load",
                .severity = Severity::Warning,
                .summary = "a system spec document that does not open",
                .meaning = "The document that the variant selects does not open. The device reads "
                           "the fallback instead; if that does not open either, only the overlay "
                           "fills the store.",
                .fix = "Install the document where the message says, or correct the property.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "fallback-alone",
                .group = "load",
                .severity = Severity::Note,
                .summary = "a load without a variant that reads the fallback",
                .meaning = "The variant is not set, and the document that a load then reads first "
                           "does not exist. The device logs an error for it at each load, and "
                           "reads the fallback.",
                .fix = "Leave it if the fallback is the device's only document. Otherwise install "
                       "the document where the message says.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "variant-needed",
                .group = "load",
                .severity = Severity::Note,
                .summary = "a load without a variant where every document is for a variant",
                .meaning = "The variant is not set, so the load reads none of the device's system "
                           "spec documents: each is for a variant.",
                .fix = "Name a variant with --variant, or check all with --all-variants.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "unreadable",
                .group = "load",
                .severity = Severity::Error,
                .summary = "a file that cannot be read",
                .meaning = "The file cannot be read, or not to its end, so a device uses nothing "
                           "in it. A directory is an example: it opens, but cannot be read. A pipe "
                           "makes the load wait until something is written into it.",
                .fix = "Install a regular file that others can read, or name another one.",
                .whyNoExample = kNeedsTree,
                .isRejection = true,
        },
        {
                .id = "load-without-codecs",
                .group = "load",
                .severity = Severity::Warning,
                .summary = "a load that names no codec component: all are enabled",
                .meaning = "No document of the load names a codec component. Components read that "
                           "as \"all are enabled\".",
                .fix = "Name the device's components in \"codecs-available\" of the system spec "
                       "document.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "variant-nearby",
                .group = "load",
                .severity = Severity::Warning,
                .summary = "a variant that misses a directory with a similar name",
                .meaning = "The variant selects a document that does not open, but a directory "
                           "with a similar name has one. The variant is appended to \"media\" as "
                           "it is: \"trail\" selects /odm/etc/mediatrail, \"/trail\" selects "
                           "/odm/etc/media/trail.",
                .fix = "Set the property to what follows \"media\" in the path of the directory.",
                .whyNoExample = kNeedsTree,
        },
        // --- Files and names in the device tree -------------------------------------------------
        {
                .id = "document-unselectable",
                .group = "tree",
                .severity = Severity::Warning,
                .summary = "a document that no path selects",
                .meaning = "The file looks like a system spec document, but no load reads it: its "
                           "name is misspelt (case matters), or no variant selects its directory. "
                           "/odm/etc/media is such a directory: without a variant, a load reads "
                           "only /vendor/etc/media. A document that a device would reject, and "
                           "that one in /odm/etc replaces, is another example.",
                .fix = "Rename, move or remove the file as the message says.",
                .whyNoExample = kNeedsTree,
        },
        {
                .id = "document-shadowed",
                .group = "tree",
                .severity = Severity::Note,
                .summary = "a document in /vendor/etc that one in /odm/etc replaces",
                .meaning = "The variant selects the document in /odm/etc, and no load reads the "
                           "one in /vendor/etc. A change to that one has no effect.",
                .fix = "Remove the document in /vendor/etc, or leave it if other images of the "
                       "device have none in /odm/etc.",
                .whyNoExample = kNeedsTree,
        },
        {
                .id = "link-broken",
                .group = "tree",
                .severity = Severity::Warning,
                .summary = "a link that leads nowhere in place of a document",
                .meaning = "The link, or a link on the way to a document, has no target in the "
                           "device tree. A load goes on as if the document did not exist, and logs "
                           "nothing about the link.",
                .fix = "Correct the target of the link, or remove the link.",
                .whyNoExample = kNeedsTree,
        },
        {
                .id = "private-file-name",
                .group = "tree",
                .severity = Severity::Warning,
                .summary = "a private file whose name is misspelt",
                .meaning = "The private file does not open, but a file beside it has a name that "
                           "differs in one or two letters. Nothing reads that file.",
                .fix = "Rename the file as the message says.",
                .whyNoExample = kNeedsTree,
        },
        {
                .id = "private-file-place",
                .group = "tree",
                .severity = Severity::Warning,
                .summary = "a private file in a directory where nothing reads it",
                .meaning = "The only private file that a load reads is "
                           "/data/vendor/media/video_private_configs.json. The directories of the "
                           "system spec documents have none.",
                .fix = "Move the file, or what it sets into the system spec document. Leave it if "
                       "the device copies it into /data/vendor/media.",
                .whyNoExample = kNeedsTree,
        },
        {
                .id = "private-file-type",
                .group = "tree",
                .severity = Severity::Warning,
                .summary = "a directory or a pipe in place of the private file",
                .meaning = "The device reads only a regular file. It goes on as if the private "
                           "file could not be opened, and uses the built-in document.",
                .fix = "Remove what is there, or replace it with a regular file.",
                .whyNoExample = kNeedsTree,
        },
        {
                .id = "chip-name",
                .group = "tree",
                .severity = Severity::Warning,
                .summary = "a chip's name that is misspelt, or in a variant by accident",
                .meaning = "The name of the chip in the path selects the built-in document. This "
                           "variant contains a chip's name by accident (\"_umbrella\" contains "
                           "\"brel\") or a misspelt one, so the built-in document may be the wrong "
                           "one.",
                .fix = "Rename the variant so that it contains its chip's name, and no other "
                       "chip's.",
                .whyNoExample = kNeedsTree,
        },
        {
                .id = "mode",
                .group = "tree",
                .severity = Severity::Warning,
                .summary = "a file or directory that a media service may not read",
                .meaning = "To open the system spec document, a media service needs the read bit "
                           "for others on the file and the search bit for others on each directory "
                           "above it. Files in /data belong to the service and are not checked.",
                .fix = "Install files with mode 644 and directories with mode 755.",
                .whyNoExample = kNeedsTree,
        },
        // --- What a device rejects, skips or changes --------------------------------------------
        {
                .id = "document-too-long",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a document longer than a device reads",
                .meaning = "The document is longer than 32 MiB. The device rejects it: nothing in "
                           "it is used.",
                .fix = "Shorten the document.",
                .whyNoExample = kTooLarge,
                .isRejection = true,
        },
        {
                .id = "too-many-values",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "more values than a device reads",
                .meaning = "The document has more than 1,048,576 values. The device rejects it: "
                           "nothing in it is used.",
                .fix = "Shorten the document.",
                .whyNoExample = kTooLarge,
                .isRejection = true,
        },
        {
                .id = "nesting-too-deep",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "nested deeper than a device reads",
                .meaning = "The document is nested deeper than 255 levels. The device rejects it: "
                           "nothing in it is used.",
                .fix = "Close the brackets that were left open: no section needs more than five "
                       "levels.",
                .whyNoExample = kTooLarge,
                .isRejection = true,
        },
        {
                .id = "syntax",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "not valid JSON",
                .meaning = "The device rejects the document: nothing in it is used. Comments and "
                           "leading zeros are allowed.",
                .fix = "Add, remove or correct what the message names.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": 50,}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
                .isRejection = true,
        },
        {
                .id = "root-not-object",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a root that is not an object",
                .meaning = "The root is neither an object nor null. The device rejects the "
                           "document: nothing in it is used.",
                .fix = "Put the sections into {\"Video\": {...}}.",
                .mistake = R"([{"Video": {"Presets": {"private_complexity": 50}}}])",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
                .isRejection = true,
        },
        {
                .id = "video-not-object",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a \"Video\" that is not an object",
                .meaning = "\"Video\" is neither an object nor null. The device rejects the "
                           "document: nothing in it is used.",
                .fix = "Write \"Video\" as an object.",
                .mistake = R"({"Video": [{"Presets": {"private_complexity": 50}}]})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
                .isRejection = true,
        },
        {
                .id = "section-not-object",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a section of named values that is not an object",
                .meaning = "\"Features\", \"Presets\", \"DolbyVision\", \"perf-resource-values\" "
                           "or \"codecs-available\" is neither an object nor null. The device "
                           "skips the section and logs a warning.",
                .fix = "Write the section as an object of names and values.",
                .mistake = R"({"Video": {"Features": ["private_enc_cvp_enable"]}})",
                .fixed = R"({"Video": {"Features": {"private_enc_cvp_enable": true}}})",
        },
        {
                .id = "feature-not-boolean",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a feature that is neither true nor false",
                .meaning = "The feature is a string, an array or an object. The device skips it "
                           "and logs a warning.",
                .fix = "Write true or false, without quotes.",
                .mistake = R"({"Video": {"Features": {"private_enc_cvp_enable": "true"}}})",
                .fixed = R"({"Video": {"Features": {"private_enc_cvp_enable": true}}})",
        },
        {
                .id = "preset-not-integer",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a preset that is not a signed 32-bit integer",
                .meaning = "The preset is not a number, or it is outside the signed 32-bit range. "
                           "The device skips it and logs a warning.",
                .fix = "Write a whole number from -2147483648 to 2147483647, without quotes.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": "50"}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "row-size",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a bit-rate row with fewer or more than three values",
                .meaning = "The device skips the row and logs a warning.",
                .fix = "Write each row as [low, high, bit rate].",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[0, 1000]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 1000, 500]]}})",
        },
        {
                .id = "row-not-array",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a bit-rate row that is an object",
                .meaning = "The row is an object with three members. The device skips it and logs "
                           "a warning.",
                .fix = "Write each row as [low, high, bit rate].",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [{"low": 0, "high": 1000, )"
                           R"("rate": 500}]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 1000, 500]]}})",
        },
        {
                .id = "row-value-not-integer",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a bit-rate row with a value that is not an integer",
                .meaning = "A value of the row is not a number, or it is outside the signed 32-bit "
                           "range. The device skips the row and logs a warning.",
                .fix = "Write whole numbers up to 2147483647, without quotes.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[0, "1000", 500]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 1000, 500]]}})",
        },
        {
                .id = "tier-level-not-integer",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a tier level that is not a signed 32-bit integer",
                .meaning = "The tier level is not a number, or it is outside the signed 32-bit "
                           "range. The device uses 0 instead and logs a warning.",
                .fix = "Write a whole number, without quotes.",
                .mistake = R"({"Video": {"DolbyVision": {"max_main_tier_level": "9", )"
                           R"("max_high_tier_level": 9}}})",
                .fixed = R"({"Video": {"DolbyVision": {"max_main_tier_level": 9, )"
                         R"("max_high_tier_level": 9}}})",
        },
        {
                .id = "perf-word-not-hexadecimal",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a perf word that is not a hexadecimal number",
                .meaning = "The word has no hexadecimal digits, or it is above 7FFFFFFF. The "
                           "device skips all words of the name, because skipping one would pair "
                           "codes with the wrong values, and logs a warning.",
                .fix = "Write a hexadecimal string up to \"0x7FFFFFFF\".",
                .mistake = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "max"]}}})",
                .fixed = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0xFFF"]}}})",
        },
        {
                .id = "list-not-array",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a list that is a single value",
                .meaning = "The device reads nothing in the list and logs nothing. A use case of "
                           "\"perf-resource-values\" is stored without words, so no later document "
                           "can set it.",
                .fix = "Put the value into brackets: [...].",
                .mistake = R"({"Video": {"KC2CodecPlugins": "plugin"}})",
                .fixed = R"({"Video": {"KC2CodecPlugins": ["plugin"]}})",
        },
        {
                .id = "element-not-string",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "an entry of a list of names that is not a string",
                .meaning = "The device skips the entry and logs nothing.",
                .fix = "Write the name as a string, or remove the entry.",
                .mistake = R"({"Video": {"KC2CodecPlugins": ["plugin", 7]}})",
                .fixed = R"({"Video": {"KC2CodecPlugins": ["plugin"]}})",
        },
        {
                .id = "profile-not-unsigned",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a Dolby Vision profile that is not an unsigned 32-bit integer",
                .meaning = "The device skips the profile and logs nothing.",
                .fix = "Write a whole number from 0 to 4294967295, without quotes.",
                .mistake = R"({"Video": {"DolbyVision": {"profiles": ["8"], )"
                           R"("max_main_tier_level": 9, "max_high_tier_level": 9}}})",
                .fixed = R"({"Video": {"DolbyVision": {"profiles": [8], )"
                         R"("max_main_tier_level": 9, "max_high_tier_level": 9}}})",
        },
        {
                .id = "no-video",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "a system spec document without \"Video\"",
                .meaning = "The root has no member \"Video\", so the device uses nothing in the "
                           "document. In the private file that is private-file-empty.",
                .fix = "Put the sections into \"Video\".",
                .mistake = R"({"Features": {"private_enc_cvp_enable": true}})",
                .fixed = R"({"Video": {"Features": {"private_enc_cvp_enable": true}}})",
        },
        {
                .id = "object-as-array",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "an object in place of an array",
                .meaning = "The device drops the names and uses the values in the order of the "
                           "names, not in the order of the text.",
                .fix = "Write an array: [...].",
                .mistake = R"({"Video": {"KC2CodecPlugins": {"first": "b", "second": "a"}}})",
                .fixed = R"({"Video": {"KC2CodecPlugins": ["b", "a"]}})",
        },
        {
                .id = "number-as-boolean",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "a number in place of true or false",
                .meaning = "The device reads 0 as false and every other number as true.",
                .fix = "Write true or false.",
                .mistake = R"({"Video": {"Features": {"private_enc_cvp_enable": 1}}})",
                .fixed = R"({"Video": {"Features": {"private_enc_cvp_enable": true}}})",
        },
        {
                .id = "null-as-false",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "null in place of true or false",
                .meaning = "The device stores false, so no later document can set the feature.",
                .fix = "Write false, or remove the name so that a later document can set it.",
                .mistake = R"({"Video": {"Features": {"private_enc_cvp_enable": null}}})",
                .fixed = R"({"Video": {"Features": {"private_enc_cvp_enable": false}}})",
        },
        {
                .id = "boolean-as-integer",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "true or false in place of an integer",
                .meaning = "The device reads true as 1 and false as 0.",
                .fix = "Write a number.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": true}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 1}}})",
        },
        {
                .id = "null-as-zero",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "null in place of an integer",
                .meaning = "The device stores 0. If it is a preset, no later document can set it.",
                .fix = "Write 0, or remove the name so that a later document can set it.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": null}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 0}}})",
        },
        {
                .id = "real-truncated",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "a real number in place of an integer",
                .meaning = "The device cuts off the fraction.",
                .fix = "Write the whole number that is meant.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": 50.9}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "negative-as-unsigned",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "a negative number that is stored as a large one",
                .meaning = "The device stores the value as an unsigned number, so it becomes "
                           "2147483648 or more.",
                .fix = "Write 0 or more.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[0, 1000, -5]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 1000, 500]]}})",
        },
        {
                .id = "perf-word-unquoted",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "a perf word without quotes",
                .meaning = "The device reads the number's decimal text as hexadecimal: 16 means "
                           "0x16, which is 22.",
                .fix = "Write a hexadecimal string.",
                .mistake = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", 16]}}})",
                .fixed = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0x10"]}}})",
        },
        {
                .id = "perf-word-tail",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "text after the digits of a perf word",
                .meaning = "The device ignores what follows the hexadecimal digits.",
                .fix = "Write nothing after the digits.",
                .mistake = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", )"
                           R"("1500 MHz"]}}})",
                .fixed = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0x5DC"]}}})",
        },
        {
                .id = "tier-level-absent",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "\"DolbyVision\" without one of its tier levels",
                .meaning = "The missing level becomes 0, even if an earlier document has set it.",
                .fix = "Write both levels wherever \"DolbyVision\" is.",
                .mistake = R"({"Video": {"DolbyVision": {"profiles": [8], )"
                           R"("max_main_tier_level": 9}}})",
                .fixed = R"({"Video": {"DolbyVision": {"profiles": [8], )"
                         R"("max_main_tier_level": 9, "max_high_tier_level": 9}}})",
        },
        {
                .id = "object-not-array",
                .group = "reader",
                .severity = Severity::Error,
                .summary = "an object in place of an array of other values",
                .meaning = "Some values of the object are not of the type that the array must "
                           "contain. The device uses only the others.",
                .fix = "Write an array of the values.",
                .mistake = R"({"Video": {"OptionalCodecs": {"decoders": ["c2.kvx.avc.decoder"]}}})",
                .fixed = R"({"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder"]}})",
        },
        {
                .id = "row-without-bound",
                .group = "reader",
                .severity = Severity::Note,
                .summary = "an upper bound of -1, which means no upper bound",
                .meaning = "The device stores the upper bound of the bit-rate row as 4294967295, "
                           "so in effect the row has none.",
                .fix = "Leave it if no upper bound is meant. Otherwise write the highest value "
                       "plus one.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[0, -1, 500]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 1000, 500]]}})",
        },
        {
                .id = "filter-description",
                .group = "reader",
                .severity = Severity::Warning,
                .summary = "a filter description, which nothing reads",
                .meaning = "The entry of \"KC2PreProcessingFilters\" is an object that describes a "
                           "filter. The device stores only strings, so it skips the entry and logs "
                           "nothing.",
                .fix = "Write the name of the filter as a string.",
                .mistake = R"({"Video": {"KC2PreProcessingFilters": [{"lib_name": "denoise"}]}})",
                .fixed = R"({"Video": {"KC2PreProcessingFilters": ["denoise"]}})",
        },
        // --- What is valid in a document, but probably not meant --------------------------------
        {
                .id = "section-misspelt",
                .group = "document",
                .severity = Severity::Error,
                .summary = "a section whose name is misspelt",
                .meaning = "\"Video\" has a member that is nearly a section. The device ignores it "
                           "with everything in it. Names are case-sensitive.",
                .fix = "Write the name that the message gives.",
                .mistake = R"({"Video": {"Preset": {"private_complexity": 50}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "wrong-level",
                .group = "document",
                .severity = Severity::Error,
                .summary = "sections that are not directly in \"Video\"",
                .meaning = "A bracket closes \"Video\" too early, the closing bracket of a section "
                           "is missing, or there is one object too many. The device does not read "
                           "the sections that are at a wrong level. It is one finding, at the "
                           "bracket or at the first section.",
                .fix = "Move the bracket or the sections as the message says.",
                .mistake = R"({"Video": {"Features": {"vendor_a": true}}, )"
                           R"("Presets": {"private_complexity": 50}})",
                .fixed = R"({"Video": {"Features": {"vendor_a": true}, )"
                         R"("Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "unknown-member",
                .group = "document",
                .severity = Severity::Warning,
                .summary = "a member that the device ignores, such as a misspelt one",
                .meaning = "The root, \"Video\", \"DolbyVision\" and \"codecs-available\" have "
                           "fixed members; the device ignores all others. Names are "
                           "case-sensitive.",
                .fix = "Correct the name, or move the member where it belongs.",
                .mistake = R"({"Video": {"private_complexity": 50}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "duplicate-member",
                .group = "document",
                .severity = Severity::Warning,
                .summary = "a name that one object has twice",
                .meaning = "The device uses the last value.",
                .fix = "Keep one of them.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": 50, )"
                           R"("private_complexity": 60}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 60}}})",
        },
        {
                .id = "leading-zero",
                .group = "document",
                .severity = Severity::Note,
                .summary = "a number with a leading zero",
                .meaning = "The number is decimal, not octal: 0101 is 101.",
                .fix = "Remove the zero.",
                .mistake = R"({"Video": {"Presets": {"private_vt_extension_version": 0101}}})",
                .fixed = R"({"Video": {"Presets": {"private_vt_extension_version": 101}}})",
        },
        {
                .id = "lone-minus",
                .group = "document",
                .severity = Severity::Warning,
                .summary = "a minus sign without digits",
                .meaning = "The device reads it as 0.",
                .fix = "Write the number.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": -}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "number-too-large",
                .group = "document",
                .severity = Severity::Warning,
                .summary = "a number that is too large for any parser",
                .meaning = "The number is above 1.8e308. JsonCpp up to 1.9.5 rejects the whole "
                           "document for it, as a syntax error. Later releases read it as "
                           "infinity, and the value is skipped.",
                .fix = "Write a smaller number.",
                .whyNoExample = "some releases of the parser report a syntax error instead",
        },
        {
                .id = "number-too-small",
                .group = "document",
                .severity = Severity::Error,
                .summary = "a number that is too close to 0 for a phone",
                .meaning = "The number is not 0, but closer to 0 than 2.2e-308. The C++ library of "
                           "every phone fails to read it, so the parser rejects the whole document "
                           "with a syntax error. The library of a development machine may read it.",
                .fix = "Write 0, or the number that is meant.",
                .whyNoExample = "some C++ libraries report a syntax error instead",
                .isRejection = true,
        },
        {
                .id = "control-character",
                .group = "document",
                .severity = Severity::Warning,
                .summary = "an unescaped line break, tab or other control character in a string",
                .meaning = "JsonCpp before 1.9.7 accepts characters below U+0020 in a string. From "
                           "1.9.7 on it rejects the whole document for them.",
                .fix = R"(Write an escape, such as \n, \t or \u001f, or remove the character.)",
                .mistake = R"({"Video": {"KC2CodecPlugins": ["plug)"
                           "\t"
                           R"(in"]}})",
                .fixed = R"({"Video": {"KC2CodecPlugins": ["plugin"]}})",
        },
        {
                .id = "placeholder",
                .group = "document",
                .severity = Severity::Warning,
                .summary = "a placeholder that nothing has replaced",
                .meaning = "A name, or a string that the device uses, contains ${, $( or {{. "
                           "The device uses it as it is.",
                .fix = "Write what the placeholder is for, or correct the script that replaces it.",
                .mistake = R"({"Video": {"KC2CodecPlugins": ["lib${NAME}.so"]}})",
                .fixed = R"({"Video": {"KC2CodecPlugins": ["libfilter.so"]}})",
        },
        {
                .id = "second-document",
                .group = "document",
                .severity = Severity::Error,
                .summary = "a second document, or merge marks, after the end of the document",
                .meaning = "The device reads only the first document.",
                .fix = "Join the two documents, or finish the merge.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": 50}}} )"
                           R"({"Video": {"Features": {"private_enc_cvp_enable": true}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}, )"
                         R"("Features": {"private_enc_cvp_enable": true}}})",
        },
        {
                .id = "trailing-text",
                .group = "document",
                .severity = Severity::Warning,
                .summary = "text after the end of the document",
                .meaning = "The device ignores it.",
                .fix = "Remove the text, or move it into the document.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": 50}}} )"
                           R"("Features": {"private_enc_cvp_enable": true})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}, )"
                         R"("Features": {"private_enc_cvp_enable": true}}})",
        },
        // --- Names of settings and of list entries ----------------------------------------------
        {
                .id = "setting-misplaced",
                .group = "name",
                .severity = Severity::Warning,
                .summary = "a known setting in another section than its own",
                .meaning = "The device stores the setting, but nothing reads it from that section, "
                           "so it has no effect.",
                .fix = "Move it into the section that the message names.",
                .mistake = R"({"Video": {"Presets": {"private_enc_cvp_enable": 1}}})",
                .fixed = R"({"Video": {"Features": {"private_enc_cvp_enable": true}}})",
        },
        {
                .id = "name-misspelt",
                .group = "name",
                .severity = Severity::Warning,
                .summary = "a setting whose name is nearly a known one",
                .meaning = "The name differs from a known one in a few letters, in case, in the "
                           "order of its words, in separators, in look-alike letters of another "
                           "script or in a prefix, or a word is missing, shortened or written out. "
                           "The device stores the setting, but nothing reads it. Other names are "
                           "free; for those that begin with private_, see private-name-unknown.",
                .fix = "Correct the name. If a component of this device does read it, make it "
                       "known with --settings FILE.",
                .mistake = R"({"Video": {"Presets": {"private_complexty": 50}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "private-name-unknown",
                .group = "name",
                .severity = Severity::Note,
                .summary = "names that begin with private_ or debug_private_, but are not known",
                .meaning =
                        "These prefixes mark the store's own settings, so a name with one that "
                        "the catalogue does not have may be misspelt beyond recognition, or of "
                        "another release. The device stores it. All such names of a document are "
                        "one finding, which lists the first five, each with the nearest known "
                        "name.",
                .fix = "Correct the names. For settings of your own use another prefix, or make "
                       "them known with --settings FILE.",
                .mistake = R"({"Video": {"Presets": {"private_zoom_width": 50}}})",
                .fixed = R"({"Video": {"Presets": {"vendor_zoom_width": 50}}})",
        },
        {
                .id = "name-case",
                .group = "name",
                .severity = Severity::Warning,
                .summary = "two names that differ only in case",
                .meaning = "The device stores both, as two different names.",
                .fix = "Keep the one that the components read.",
                .mistake = R"({"Video": {"Presets": {"vendor_limit": 1, "Vendor_Limit": 2}}})",
                .fixed = R"({"Video": {"Presets": {"vendor_limit": 1}}})",
        },
        {
                .id = "name-in-two-sections",
                .group = "name",
                .severity = Severity::Note,
                .summary = "a name that is set in two sections",
                .meaning = "\"Features\", \"Presets\" and \"perf-resource-values\" each have their "
                           "own names, so the device stores both values.",
                .fix = "Leave it if components read both. Otherwise keep the one that they read.",
                .mistake = R"({"Video": {"Features": {"vendor_limit": true}, )"
                           R"("Presets": {"vendor_limit": 1}}})",
                .fixed = R"({"Video": {"Presets": {"vendor_limit": 1}}})",
        },
        {
                .id = "name-varies",
                .group = "name",
                .severity = Severity::Note,
                .summary = "a name that another document spells almost the same",
                .meaning =
                        "Two documents of the device tree, such as two variants' or a private file "
                        "and a system spec document, have names that differ in one letter, in the "
                        "order of two letters or words, in case or in separators. The device "
                        "stores them as two names. It is reported at the name that fewer documents "
                        "have. Two names that one document has are not compared.",
                .fix = "Correct the misspelt one. Leave both if components read both.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "name-empty",
                .group = "name",
                .severity = Severity::Warning,
                .summary = "an empty name, or an empty entry in a list",
                .meaning = "The device stores it, but nothing reads it.",
                .fix = "Write the name, or remove the entry.",
                .mistake = R"({"Video": {"KC2CodecPlugins": ["plugin", ""]}})",
                .fixed = R"({"Video": {"KC2CodecPlugins": ["plugin"]}})",
        },
        {
                .id = "name-characters",
                .group = "name",
                .severity = Severity::Warning,
                .summary = "a name with odd spaces, invisible characters or invalid UTF-8",
                .meaning = "The name has a space at its start or end, a space other than the plain "
                           "one, a control, invisible or direction-changing character, or bytes "
                           "that are not UTF-8. Names are compared byte by byte, so it is not the "
                           "name that it looks like.",
                .fix = "Remove the characters that the message names.",
                .mistake = R"({"Video": {"KC2CodecPlugins": ["plugin "]}})",
                .fixed = R"({"Video": {"KC2CodecPlugins": ["plugin"]}})",
        },
        // --- Codec components -------------------------------------------------------------------
        {
                .id = "codec-misspelt",
                .group = "codec",
                .severity = Severity::Warning,
                .summary = "a component whose name is nearly a known one",
                .meaning = "The device stores the name, but that does not enable the component "
                           "that was probably meant. Other words for a codec, such as h264, and "
                           "dec for decoder are recognised. Codecs that resemble no known one, "
                           "such as vvc, are not reported.",
                .fix = "Correct the name, or leave it if the device has such a component.",
                .mistake = R"({"Video": {"OptionalCodecs": ["c2.kvx.acv.decoder"]}})",
                .fixed = R"({"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder"]}})",
        },
        {
                .id = "codec-name-form",
                .group = "codec",
                .severity = Severity::Note,
                .summary = "a codec name unlike that of a component",
                .meaning = "The name of a component is c2, its vendor, its codec, and decoder or "
                           "encoder, with dots between them. A variant such as .secure may follow.",
                .fix = "Write the component's name, such as c2.kvx.avc.decoder.secure.",
                .mistake = R"({"Video": {"OptionalCodecs": ["avc.decoder"]}})",
                .fixed = R"({"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder"]}})",
        },
        {
                .id = "codec-in-wrong-list",
                .group = "codec",
                .severity = Severity::Warning,
                .summary = "an encoder among decoders, or the reverse",
                .meaning = "The device stores both lists of \"codecs-available\" as one set, so "
                           "the component is enabled all the same. The list is misleading, and "
                           "another component may have been meant.",
                .fix = "Move it into the other list, or correct the name.",
                .mistake = R"({"Video": {"codecs-available": {"decoders": ["c2.kvx.avc.decoder", )"
                           R"("c2.kvx.avc.encoder"]}}})",
                .fixed = R"({"Video": {"codecs-available": {"decoders": ["c2.kvx.avc.decoder"], )"
                         R"("encoders": ["c2.kvx.avc.encoder"]}}})",
        },
        {
                .id = "codec-repeated",
                .group = "codec",
                .severity = Severity::Note,
                .summary = "a component that a document lists twice",
                .meaning = "The device stores it once.",
                .fix = "List it once.",
                .mistake = R"({"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder", )"
                           R"("c2.kvx.avc.decoder"]}})",
                .fixed = R"({"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder"]}})",
        },
        {
                .id = "no-codecs",
                .group = "codec",
                .severity = Severity::Warning,
                .summary = "codec sections that name no component: all are enabled",
                .meaning = "If no other document of the load names a component either, components "
                           "read that as \"all are enabled\".",
                .fix = "Name the components that the device has, or remove the section.",
                .mistake = R"({"Video": {"codecs-available": {"decoders": []}}})",
                .fixed = R"({"Video": {"codecs-available": {"decoders": ["c2.kvx.avc.decoder"], )"
                         R"("encoders": ["c2.kvx.avc.encoder"]}}})",
        },
        {
                .id = "variant-without-base",
                .group = "codec",
                .severity = Severity::Warning,
                .summary = "a .secure or .low_latency component without its base",
                .meaning = "No document of the load lists the component that this one is a variant "
                           "of. In a single document, it is reported only if the document has "
                           "\"codecs-available\" and is not a private file.",
                .fix = "List the component without the ending as well.",
                .mistake =
                        R"({"Video": {"codecs-available": {"decoders": )"
                        R"(["c2.kvx.avc.decoder.secure"], "encoders": ["c2.kvx.avc.encoder"]}}})",
                .fixed = R"({"Video": {"codecs-available": {"decoders": ["c2.kvx.avc.decoder", )"
                         R"("c2.kvx.avc.decoder.secure"], "encoders": ["c2.kvx.avc.encoder"]}}})",
        },
        {
                .id = "codecs-of-one-kind",
                .group = "codec",
                .severity = Severity::Note,
                .summary = "only decoders, or only encoders",
                .meaning = "The load lists decoders but no encoders, or the reverse. The missing "
                           "kind is then not enabled. There are such devices.",
                .fix = "Leave it if the device has no others. Otherwise list those as well.",
                .mistake = R"({"Video": {"codecs-available": {"decoders": )"
                           R"(["c2.kvx.avc.decoder"]}}})",
                .fixed = R"({"Video": {"codecs-available": {"decoders": ["c2.kvx.avc.decoder"], )"
                         R"("encoders": ["c2.kvx.avc.encoder"]}}})",
        },
        // --- Values that the settings catalogue does not allow, and sections without any --------
        {
                .id = "value-range",
                .group = "value",
                .severity = Severity::Warning,
                .summary = "a preset outside its range",
                .meaning = "The settings catalogue has a range for the preset. The device stores "
                           "the value all the same.",
                .fix = "Write a value in the range.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": -1}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 0}}})",
        },
        {
                .id = "value-unknown",
                .group = "value",
                .severity = Severity::Warning,
                .summary = "a preset with a value or a bit that does not exist",
                .meaning = "The settings catalogue lists all values, or all bits, of the preset. "
                           "The device stores the value all the same.",
                .fix = "Write one of the values, or a sum of the bits, that the message lists.",
                .mistake = R"({"Video": {"Presets": {"private_outbuf_fence": 4}}})",
                .fixed = R"({"Video": {"Presets": {"private_outbuf_fence": 3}}})",
        },
        {
                .id = "value-unsupported",
                .group = "value",
                .severity = Severity::Warning,
                .summary = "a preset with a value that is not supported",
                .meaning = "The settings catalogue lists the value, but as one that is not "
                           "supported. The device stores it all the same.",
                .fix = "Write a value that is supported.",
                .mistake = R"({"Video": {"Presets": {"private_outbuf_fence": 2}}})",
                .fixed = R"({"Video": {"Presets": {"private_outbuf_fence": 3}}})",
        },
        {
                .id = "bit-without-other",
                .group = "value",
                .severity = Severity::Warning,
                .summary = "a bit that has an effect only together with another bit",
                .meaning = "The other bit is not set, so this one has no effect.",
                .fix = "Add the other bit, or remove this one.",
                .mistake = R"({"Video": {"Presets": {"private_transcode_metadata_stat": 2}}})",
                .fixed = R"({"Video": {"Presets": {"private_transcode_metadata_stat": 3}}})",
        },
        {
                .id = "real-number",
                .group = "value",
                .severity = Severity::Note,
                .summary = "a whole number with a point or an exponent",
                .meaning = "The device reads it as the integer: 7.0 is 7, and 1e3 is 1000.",
                .fix = "Write it without a point and without an exponent.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": 5e1}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "video-empty",
                .group = "value",
                .severity = Severity::Error,
                .summary = "a system spec document whose \"Video\" is null or empty",
                .meaning = "The document sets nothing. In the private file that is "
                           "private-file-empty.",
                .fix = "Write the sections into it, or do not install the document.",
                .mistake = R"({"Video": {}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "section-null",
                .group = "value",
                .severity = Severity::Warning,
                .summary = "a section that is null",
                .meaning = "The device reads it as an empty section.",
                .fix = "Write the values of the section, or remove it.",
                .mistake = R"({"Video": {"Features": null, )"
                           R"("Presets": {"private_complexity": 50}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "section-empty",
                .group = "value",
                .severity = Severity::Note,
                .summary = "a section without content",
                .meaning = "The section sets nothing.",
                .fix = "Leave it, or remove the section.",
                .mistake = R"({"Video": {"Features": {}, "Presets": {"private_complexity": 50}}})",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
        {
                .id = "feature-needed",
                .group = "value",
                .severity = Severity::Warning,
                .summary = "a preset whose feature is not on",
                .meaning = "The preset has an effect only while the feature is true, and no "
                           "document of the load sets it to true.",
                .fix = "Set the feature to true as well, or remove the preset.",
                .mistake = R"({"Video": {"Presets": {"private_cpuaffinity_set": 15}}})",
                .fixed = R"({"Video": {"Features": {"private_set_cpu_affinity": true}, )"
                         R"("Presets": {"private_cpuaffinity_set": 15}}})",
        },
        {
                .id = "above-other",
                .group = "value",
                .severity = Severity::Warning,
                .summary = "a preset above the one that limits it",
                .meaning = "An example is a smallest slice size above the largest one.",
                .fix = "Lower the preset, or raise the other one.",
                .mistake = R"({"Video": {"Presets": {"private_min_slice_size_MB_Mode": 9, )"
                           R"("private_max_slice_size_MB_Mode": 4}}})",
                .fixed = R"({"Video": {"Presets": {"private_min_slice_size_MB_Mode": 4, )"
                         R"("private_max_slice_size_MB_Mode": 9}}})",
        },
        // --- Perf words -------------------------------------------------------------------------
        {
                .id = "perf-odd-length",
                .group = "perf",
                .severity = Severity::Warning,
                .summary = "perf words that do not come in pairs",
                .meaning = "The words are pairs of a resource code and its value, and the number "
                           "of words is odd.",
                .fix = "Add the word that is missing, or remove the one that is left over.",
                .mistake = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0xFFF", )"
                           R"("0x40800000"]}}})",
                .fixed = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0xFFF", )"
                         R"("0x40800000", "0x5DC"]}}})",
        },
        {
                .id = "perf-word-prefix",
                .group = "perf",
                .severity = Severity::Warning,
                .summary = "a perf word without 0x among words with it",
                .meaning = "The device reads every word as hexadecimal: \"1500\" is 0x1500.",
                .fix = "Write 0x, and the hexadecimal digits of the value that is meant.",
                .mistake = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "1500"]}}})",
                .fixed = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0x5DC"]}}})",
        },
        {
                .id = "perf-code-short",
                .group = "perf",
                .severity = Severity::Warning,
                .summary = "a resource code of seven digits",
                .meaning = "Resource codes have eight hexadecimal digits, so one is missing. The "
                           "device stores the word all the same.",
                .fix = "Write the missing digit.",
                .mistake = R"({"Video": {"perf-resource-values": {"x": ["0x40C0000", "0x1"]}}})",
                .fixed = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0x1"]}}})",
        },
        {
                .id = "perf-code-repeated",
                .group = "perf",
                .severity = Severity::Warning,
                .summary = "a use case with the same resource code twice",
                .meaning = "The device stores both pairs.",
                .fix = "Keep one of the pairs.",
                .mistake = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0x1", )"
                           R"("0x40C00000", "0x2"]}}})",
                .fixed = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0x2"]}}})",
        },
        {
                .id = "perf-pair-swapped",
                .group = "perf",
                .severity = Severity::Warning,
                .summary = "a value in place of its resource code",
                .meaning = "The second word of the pair looks like a resource code, the first one "
                           "does not. The first word of a pair is used as the code.",
                .fix = "Write the resource code before its value.",
                .mistake = R"({"Video": {"perf-resource-values": {"x": ["0xFFF", "0x40C00000"]}}})",
                .fixed = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0xFFF"]}}})",
        },
        {
                .id = "perf-empty",
                .group = "perf",
                .severity = Severity::Warning,
                .summary = "a use case without perf words",
                .meaning = "The device stores the use case without words, so no later document can "
                           "set it.",
                .fix = "Write its words, or remove the use case.",
                .mistake = R"({"Video": {"perf-resource-values": {"x": []}}})",
                .fixed = R"({"Video": {"perf-resource-values": {"x": ["0x40C00000", "0xFFF"]}}})",
        },
        // --- Rows of the bit-rate table ---------------------------------------------------------
        {
                .id = "row-matches-nothing",
                .group = "row",
                .severity = Severity::Warning,
                .summary = "a bit-rate row that matches no value",
                .meaning = "The row's lower bound is not below its upper bound, which is "
                           "exclusive, so the row is never used.",
                .fix = "Write a lower bound that is below the upper bound.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[1000, 1000, 500]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[1000, 1001, 500]]}})",
        },
        {
                .id = "row-hidden",
                .group = "row",
                .severity = Severity::Warning,
                .summary = "a bit-rate row whose range earlier rows cover",
                .meaning = "The first row that matches a value is used, so this row never is.",
                .fix = "Put the row before the one that covers it, or remove it.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[0, 9, 7], [2, 4, 5]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[2, 4, 5], [4, 9, 7]]}})",
        },
        {
                .id = "row-overlaps",
                .group = "row",
                .severity = Severity::Warning,
                .summary = "a bit-rate row that overlaps an earlier one",
                .meaning = "The earlier row is used for the values that both match.",
                .fix = "Start each row where the one before it ends.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[0, 6, 5], [4, 9, 7]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 6, 5], [6, 9, 7]]}})",
        },
        {
                .id = "row-catches-all",
                .group = "row",
                .severity = Severity::Note,
                .summary = "a last row for all remaining values",
                .meaning = "The last row of a document has no upper bound and overlaps earlier "
                           "rows, so it is used for every value that no earlier row matches.",
                .fix = "Leave it if that is meant. Otherwise start the row where the one before it "
                       "ends.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[10, 20, 5], )"
                           R"([0, 2147483647, 9]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[10, 20, 5], )"
                         R"([20, 2147483647, 9]]}})",
        },
        {
                .id = "row-gap",
                .group = "row",
                .severity = Severity::Warning,
                .summary = "values between bit-rate rows that no row matches",
                .meaning = "A component gets 0xFFFFFFFF for such a value. Upper bounds are "
                           "exclusive: [0, 100] and [101, 200] leave out 100. A gap that a table "
                           "repeats is reported once.",
                .fix = "Start each row where the one before it ends.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[0, 100, 5], [101, 200, 7]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 100, 5], [100, 200, 7]]}})",
        },
        {
                .id = "rows-apart",
                .group = "row",
                .severity = Severity::Note,
                .summary = "a bit-rate table whose rows do not touch",
                .meaning = "The rows leave out values: so many, or between groups so far apart, "
                           "that it is probably meant. A component gets 0xFFFFFFFF for such a "
                           "value.",
                .fix = "Leave it if the values between the rows need no bit rate. Otherwise add "
                       "rows for them.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[0, 100, 5], [150, 200, 7]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 100, 5], [100, 200, 7]]}})",
        },
        {
                .id = "rows-unsorted",
                .group = "row",
                .severity = Severity::Note,
                .summary = "bit-rate rows that are not in ascending order",
                .meaning = "The first row that matches a value is used, so order matters as soon "
                           "as rows overlap.",
                .fix = "Order the rows by their lower bounds.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[100, 200, 7], [0, 100, 5]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 100, 5], [100, 200, 7]]}})",
        },
        {
                .id = "rate-falls",
                .group = "row",
                .severity = Severity::Warning,
                .summary = "a bit rate below that of smaller values",
                .meaning = "The rate falls at this row, while it rises elsewhere in the table.",
                .fix = "Correct the rate, or leave it if it is meant to fall.",
                .mistake =
                        R"({"Video": {"NimbraModeBitrateTable": [[0, 100, 50], [100, 200, 7]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 100, 50], [100, 200, 70]]}})",
        },
        {
                .id = "rate-zero",
                .group = "row",
                .severity = Severity::Warning,
                .summary = "a bit rate of 0",
                .meaning = "A component uses 0 as the bit rate. It does not mean that there is no "
                           "rate: a value that no row matches gets 0xFFFFFFFF.",
                .fix = "Write the bit rate, or remove the row.",
                .mistake = R"({"Video": {"NimbraModeBitrateTable": [[0, 100, 0]]}})",
                .fixed = R"({"Video": {"NimbraModeBitrateTable": [[0, 100, 5]]}})",
        },
        // --- What the documents result in together ----------------------------------------------
        {
                .id = "document-of-other-chip",
                .group = "merge",
                .severity = Severity::Warning,
                .summary = "a document that is mostly another chip's built-in document",
                .meaning = "The path of the system spec document selects the built-in document of "
                           "its chip, but most of the document is as in the built-in document of "
                           "another one. Probably it was copied from a target with that chip.",
                .fix = "Copy from the chip's own built-in document (\"kcodec2_spec defaults\" "
                       "prints it), or correct the chip's name in the variant.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "setting-of-other-chip",
                .group = "merge",
                .severity = Severity::Note,
                .summary = "a setting, a component or a perf code of another chip",
                .meaning = "The system spec document has something that the settings catalogue "
                           "knows only for other chips than the one in its path, or that only "
                           "their built-in documents use.",
                .fix = "Leave it if this chip has it, too. Otherwise remove it.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "debug-setting",
                .group = "merge",
                .severity = Severity::Warning,
                .summary = "a debug setting that is changed in a system spec document",
                .meaning = "A known setting whose name begins with \"debug_\" has another value "
                           "in the system spec document than in the built-in document, so it "
                           "applies on every phone, and no private file can change it. A document "
                           "that is checked alone is taken for a system spec document if its name "
                           "is video_system_specs.json.",
                .fix = "Remove it, and set it in the private file of the phone that is being "
                       "debugged.",
                .whyNoExample = "an example has another name than a system spec document",
        },
        {
                .id = "listed-twice",
                .group = "merge",
                .severity = Severity::Warning,
                .summary = "an entry that is in a list twice",
                .meaning = "The entry of the plug-in or filter list is already in it, from this "
                           "document or the other one. The list keeps both.",
                .fix = "List it once.",
                .mistake = R"({"Video": {"KC2CodecPlugins": ["plugin", "plugin"]}})",
                .fixed = R"({"Video": {"KC2CodecPlugins": ["plugin"]}})",
        },
        {
                .id = "entries-in-one",
                .group = "merge",
                .severity = Severity::Warning,
                .summary = "several entries of a list in one string",
                .meaning = "The device keeps the string as one name, with its commas and blanks.",
                .fix = "Write each entry in its own quotes.",
                .mistake = R"({"Video": {"KC2CodecPlugins": ["liba.so, libb.so"]}})",
                .fixed = R"({"Video": {"KC2CodecPlugins": ["liba.so", "libb.so"]}})",
        },
        {
                .id = "name-without-effect",
                .group = "merge",
                .severity = Severity::Warning,
                .summary = "a name that both documents set, to different values",
                .meaning = "The system spec document and the private file set the same feature, "
                           "preset or perf name. One of the two values has no effect.",
                .fix = "Remove the name from the document whose value is not meant.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "name-repeated",
                .group = "merge",
                .severity = Severity::Note,
                .summary = "a name that both documents set, to the same value",
                .meaning = "The private file sets a name to the value that it already has.",
                .fix = "Leave it, or remove the name from the private file.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "levels-reset",
                .group = "merge",
                .severity = Severity::Warning,
                .summary = "Dolby Vision tier levels that the second document changes",
                .meaning = "The \"DolbyVision\" of the second document changes a tier level that "
                           "the system spec document has set.",
                .fix = "Repeat both levels in the second document, or remove \"DolbyVision\" from "
                       "it.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "codecs-added",
                .group = "merge",
                .severity = Severity::Note,
                .summary = "components that only the built-in document lists",
                .meaning = "The built-in document adds components that the system spec document "
                           "does not list. No document can remove a component; only a private file "
                           "keeps the built-in document from being read.",
                .fix = "If the device has the components, list them in the system spec document as "
                       "well. Otherwise install a private file.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "private-file-empty",
                .group = "merge",
                .severity = Severity::Warning,
                .summary = "a private file that sets nothing",
                .meaning = "The private file has no \"Video\", or an empty one. While the file is "
                           "there, no built-in document is read.",
                .fix = "Remove the file, or write settings into it.",
                .whyNoExample = "it is about a file's place, not about its text alone",
        },
        {
                .id = "built-in-lost",
                .group = "merge",
                .severity = Severity::Warning,
                .summary = "a private file with one setting replaces a whole built-in document",
                .meaning = "While the private file is there, the built-in document is not read. "
                           "The message names what is then unset.",
                .fix = "Repeat in the private file what the message names, or remove the file.",
                .whyNoExample = kNeedsLoad,
        },
        {
                .id = "built-in-not-read",
                .group = "merge",
                .severity = Severity::Note,
                .summary = "a private file replaces a built-in document that sets more",
                .meaning = "As built-in-lost, for a private file with several settings, or "
                           "with a single debug setting.",
                .fix = "Leave it, or repeat in the private file what the message names.",
                .whyNoExample = kNeedsLoad,
        },
        // --- Comments that suppress findings ----------------------------------------------------
        {
                .id = "allows-nothing",
                .group = "comment",
                .severity = Severity::Warning,
                .summary = "a comment that suppresses nothing",
                .meaning =
                        "The comment \"kcodec2_spec: allow ID\" names a check that finds nothing "
                        "there, or one that cannot be suppressed. It could hide a later "
                        "mistake.",
                .fix = "Remove the comment.",
                .mistake = R"({"Video": {"Presets": {"private_complexity": 50}} )"
                           "// kcodec2_spec: allow null-as-zero\n}",
                .fixed = R"({"Video": {"Presets": {"private_complexity": 50}}})",
        },
};

}  // namespace kc2::tool
