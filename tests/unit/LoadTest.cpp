// Whole loads, each in a separate process: documents, log lines, outcomes, failures of the file
// system, and many threads.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <set>
#include <thread>

#include "Device.h"
#include "hostplatform/HostPlatform.h"
#include "targetspec/TargetSpecInspector.h"

namespace kc2::test {

namespace {

const std::string kSpec = R"({"Video": {"Features": {"spec": true, "both": false}}})";
const std::string kPrivate = R"({"Video": {"Features": {"private": true, "both": true}}})";

const std::string kSpecContent = "feature both 0\nfeature spec 1\n";
const std::string kBothContent = "feature both 0\nfeature private 1\nfeature spec 1\n";

// A load by Get() in a separate process: the log's lines, then the status and the content.
struct Loaded {
    Lines log;
    std::string status;
    std::string content;
};

Loaded load(
        Device& device, const std::function<void()>& prepare = [] {}) {
    const Lines lines = inOwnProcess([&] {
        prepare();
        const TargetSpec& spec = *TargetSpec::Get();
        Lines result = device.takeLog();
        result.push_back("status " + std::to_string(TargetSpecInspector::status(spec)));
        result.push_back(contentOf(spec));
        return result;
    });
    Loaded loaded;
    for (const std::string& line : lines) {
        if (line.rfind("status ", 0) == 0) {
            loaded.status = line == "status 0" ? "ok" : "failed";
        } else if (loaded.status.empty()) {
            loaded.log.push_back(line);
        } else if (!line.empty()) {
            loaded.content += line + "\n";
        }
    }
    return loaded;
}

// Every query, on the store of kSpec and kPrivate.
bool answersRight(TargetSpec& spec) {
    int value = 0;
    unsigned int wanted = 1;
    std::list<std::string> names;
    return spec.isFeatureEnabled("private") && !spec.isFeatureEnabled("both") &&
           spec.getPresetValue("none", &value) == SPEC_NOT_FOUND &&
           spec.getPerfResourceValues("none").empty() &&
           spec.getNimbraModeBitRateValue(&wanted) == 0xFFFFFFFF &&
           spec.getDVConfigs().profiles.empty() && spec.getCodecPlugins(&names) == SPEC_OK &&
           spec.getPreprocessingFilters(&names) == SPEC_OK &&
           spec.getEncPostprocessingFilters(&names) == SPEC_OK && names.empty() &&
           spec.getSupportedCodecs().empty();
}

class LoadTest : public testing::Test {
protected:
    std::string builtIn() {
        TargetSpec spec;
        EXPECT_EQ(0u, parse(spec, TargetSpec::getPrivateConfig()));
        return contentOf(spec);
    }

    // The built-in document's content merged into that of the system spec document.
    std::string builtInOverSpec() {
        TargetSpec spec;
        EXPECT_EQ(0u, parse(spec, kSpec));
        EXPECT_EQ(0u, parse(spec, TargetSpec::getPrivateConfig()));
        return contentOf(spec);
    }

    Device mDevice;
};

TEST_F(LoadTest, EachSourceOfTheSystemSpecHasItsLines) {
    const std::string error = "E/KC2TargetSpec: Failed to open ";
    const std::string parsing = "I/KC2TargetSpec: Parsing system specs file from: ";
    const std::string variantPath = "/vendor/etc/media_test/video_system_specs.json";
    const std::string fallback = std::string("W/KC2TargetSpec: Falling back to ") + kFallbackSpec;
    const struct {
        const char* variant;
        const char* file;
        const char* text;
        Lines before;  // The lines before the dump.
        Lines after;   // The lines after it.
        bool isLoaded;
    } rows[] = {
            {"_test", kVariantSpec, "", {parsing + kVariantSpec}, {}, true},
            {"_test", kVariantSpec, "{", {parsing + kVariantSpec, kStreamErrorLine}, {}, false},
            {"_test",
             kFallbackSpec,
             "",
             {parsing + variantPath, error + variantPath, fallback},
             {},
             true},
            {"_test",
             kFallbackSpec,
             "[]",
             {parsing + variantPath, error + variantPath, fallback, kStreamErrorLine},
             {},
             false},
            {"_test",
             "/none",
             "",
             {parsing + variantPath, error + variantPath, fallback,
              error + kFallbackSpec + "... Exit!"},
             {},
             false},
            {"default",
             kDefaultSpec,
             "",
             {kNoVariantLine, parsing + kDefaultSpec, kNoVariantLine},
             {kNoVariantLine, kNoVariantLine},
             true},
            {"default",
             "/none",
             "",
             {kNoVariantLine, parsing + kDefaultSpec, error + kDefaultSpec, fallback,
              error + kFallbackSpec + "... Exit!"},
             {kNoVariantLine, kNoVariantLine},
             false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.variant) + " " + row.file + " " + row.text);
        Device device;
        setVariant(row.variant);
        host::setLogLevel(0x2);
        device.write(row.file, *row.text == '\0' ? kSpec : row.text);
        device.write(kPrivateFile, kPrivate);
        Lines expected = row.before;
        expected.push_back("I/KC2TargetSpec: Video Core Features:");
        if (row.isLoaded) {
            expected.push_back("I/KC2TargetSpec:        both                      : 0");
            expected.push_back("I/KC2TargetSpec:        spec                      : 1");
        }
        for (const char* heading :
             {"Video Core Presets:", "Pre processing plugins:", "Codec plugins:"}) {
            expected.push_back(std::string("I/KC2TargetSpec: ") + heading);
        }
        // getPrivateConfig() runs in the overlay step and in the parse.
        expected.insert(expected.end(), row.after.begin(), row.after.end());
        const Loaded loaded = load(device);
        EXPECT_EQ(expected, loaded.log);
        EXPECT_EQ(row.isLoaded ? kBothContent : "feature both 1\nfeature private 1\n",
                  loaded.content);
        EXPECT_EQ("ok", loaded.status);
    }
}

TEST_F(LoadTest, EachOutcomeOfTheOverlay) {
    const char* const kAbsent = nullptr;
    const std::string builtInText = TargetSpec::getPrivateConfig();
    const struct {
        bool hasTool;
        const char* file;
        std::string content;
        const char* status;
        std::string fileAfterwards;
    } rows[] = {
            {false, kAbsent, builtInOverSpec(), "ok", ""},
            {false, "", kSpecContent, "failed", ""},
            {false, kPrivate.c_str(), kBothContent, "ok", kPrivate},
            {false, "{", kSpecContent, "failed", "{"},
            {true, kAbsent, builtInOverSpec(), "ok", builtInText},
            {true, "", builtInOverSpec(), "ok", builtInText},
            {true, kPrivate.c_str(), kBothContent, "ok", kPrivate},
            {true, "{", kSpecContent, "failed", "{"},
            {true, " ", kSpecContent, "failed", " "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.hasTool << " " << (row.file ? row.file : "absent"));
        Device device;
        device.write(kVariantSpec, kSpec);
        device(kPrivateFile);  // Creates its directory.
        if (row.file != kAbsent) {
            device.write(kPrivateFile, row.file);
        }
        if (row.hasTool) {
            device.write(kTestTool, "");
        }
        const Loaded loaded = load(device);
        EXPECT_EQ(row.content, loaded.content);
        EXPECT_EQ(row.status, loaded.status);
        EXPECT_EQ(loaded.status == "ok" ? Lines() : Lines{kStreamErrorLine}, loaded.log);
        EXPECT_EQ(row.fileAfterwards, device.read(kPrivateFile));
    }
}

TEST_F(LoadTest, EachStepNamesItsDocumentAndReturnsItsStatus) {
    mDevice.write(kVariantSpec, R"({"Video": {"Features": {"a": ""}}})");
    mDevice.write(kPrivateFile, R"({"Video": {"Features": {"b": ""}}})");
    TargetSpec spec;
    EXPECT_EQ(0u, spec.extractSpecData());
    EXPECT_EQ(0u, spec.extractPrivateData());
    const std::string skipped = "W/KC2TargetSpec: Skipped Video/Features/";
    EXPECT_EQ((Lines{skipped + "a in the system spec: not a boolean",
                     skipped + "b in the private file: not a boolean"}),
              mDevice.takeLog());
    mDevice.write(kVariantSpec, "{");
    mDevice.write(kPrivateFile, "{");
    EXPECT_EQ(kFailed, spec.extractSpecData());
    EXPECT_EQ(kFailed, spec.extractPrivateData());
}

// Every way in which a file really fails. But for one row the tool is installed, so that the
// private file may be written.
TEST_F(LoadTest, NoFaultOfTheFileSystemStopsIt) {
    namespace fs = std::filesystem;
    host::mapDirectory("/proc", "/proc");  // A file that opens and fails when it is read.
    const auto link = [&](const char* target) {
        return [this, target] { fs::create_symlink(target, mDevice(kPrivateFile)); };
    };
    const auto spec = [&](const char* target) {
        return [this, target] {
            fs::remove(mDevice(kVariantSpec));
            fs::create_symlink(target, mDevice(kVariantSpec));
            mDevice.write(kPrivateFile, kPrivate);
        };
    };
    const auto asNobody = [] {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
            std::abort();
        }
    };
    const char* const builtInText = TargetSpec::getPrivateConfig();
    const std::string all = builtInOverSpec();
    const std::string onlyPrivate = "feature both 1\nfeature private 1\n";
    const Lines rejected = {kStreamErrorLine};
    const std::string vendorSpec = "/vendor/etc/media_test/video_system_specs.json";
    const Lines missing = {
            "E/KC2TargetSpec: Failed to open " + vendorSpec,
            std::string("W/KC2TargetSpec: Falling back to ") + kFallbackSpec,
            std::string("E/KC2TargetSpec: Failed to open ") + kFallbackSpec + "... Exit!"};
    const struct {
        const char* fault;
        std::function<void()> prepare;   // Before the load, as root.
        std::function<void()> inLoader;  // In the process that loads.
        std::string content;
        Lines log;
        const char* fileAfterwards;  // Null where there is no file to examine.
    } rows[] = {
            {"private: I/O error while reading", link("/proc/self/mem"), [] {}, all, {}, nullptr},
            {"private: a directory",
             [&] { fs::create_directory(mDevice(kPrivateFile)); },
             [] {},
             all,
             {},
             nullptr},
            {"private: a directory, without the tool",
             [&] {
                 fs::remove(mDevice(kTestTool));
                 fs::create_directory(mDevice(kPrivateFile));
             },
             [] {},
             all,
             {},
             nullptr},
            {"private: a pipe",
             [&] { mkfifo(mDevice(kPrivateFile).c_str(), 0600); },
             [] {},
             all,
             {},
             nullptr},
            {"private: a link loop", link("video_private_configs.json"), [] {}, all, {}, nullptr},
            {"private: a link to nowhere", link("nowhere/file"), [] {}, all, {}, nullptr},
            {"private: the directory is a file",
             [&] { mDevice.write("/data/vendor/media", "x"); },
             [] {},
             all,
             {},
             nullptr},
            {"private: no permission",
             [&] {
                 mDevice.write(kPrivateFile, kPrivate);
                 fs::permissions(mDevice(kPrivateFile), fs::perms::none);
                 fs::permissions(mDevice("/"), fs::perms::all);
             },
             asNobody,
             all,
             {},
             kPrivate.c_str()},
            {"private: may be written, not read",
             [&] {
                 mDevice.write(kPrivateFile, "");
                 fs::permissions(mDevice(kPrivateFile), fs::perms::others_write);
                 fs::permissions(mDevice("/"), fs::perms::all);
             },
             asNobody,
             all,
             {},
             builtInText},
            {"spec: I/O error while reading", spec("/proc/self/mem"), [] {}, onlyPrivate, rejected,
             kPrivate.c_str()},
            {"spec: a directory", spec("/"), [] {}, onlyPrivate, rejected, kPrivate.c_str()},
            {"spec: a link loop", spec("video_system_specs.json"), [] {}, onlyPrivate, missing,
             kPrivate.c_str()},
            {"spec: no permission on the way",
             [&] {
                 mDevice.write(kPrivateFile, kPrivate);
                 fs::permissions(mDevice("/odm/etc/media_test"), fs::perms::none);
                 fs::permissions(mDevice("/"), fs::perms::all);
             },
             asNobody, onlyPrivate, missing, kPrivate.c_str()},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fault);
        fs::remove_all(mDevice("/odm"));
        fs::remove_all(mDevice("/data"));
        mDevice.write(kTestTool, "");
        mDevice.write(kVariantSpec, kSpec);
        row.prepare();
        const Loaded loaded = load(mDevice, row.inLoader);
        EXPECT_EQ(row.content, loaded.content);
        EXPECT_EQ(row.log, loaded.log);
        EXPECT_EQ("ok", loaded.status);
        if (row.fileAfterwards != nullptr) {
            EXPECT_TRUE(fs::is_regular_file(mDevice(kPrivateFile)));
            EXPECT_EQ(row.fileAfterwards, mDevice.read(kPrivateFile));
        }
    }
}

TEST_F(LoadTest, AReadOnlyProcessSeedsNothing) {
    mDevice.write(kTestTool, "");
    mDevice.write(kPrivateFile, "");
    const Loaded loaded = load(mDevice, [] { host::setReadOnly(true); });
    EXPECT_EQ(builtIn(), loaded.content);
    EXPECT_EQ("", mDevice.read(kPrivateFile));
}

// With libc++ the last bytes are written no earlier than when the file is closed.
TEST_F(LoadTest, ASeedIsWrittenWholeOrNotAtAll) {
    mDevice.write(kTestTool, "");
    for (const char* const variant : {"_brel", "_orvelle", "_test"}) {
        setVariant(variant);
        const std::string text = TargetSpec::getPrivateConfig();
        for (const size_t room : {size_t{1000}, text.size() - 1, text.size()}) {
            mDevice.write(kPrivateFile, "");
            const Loaded loaded = load(mDevice, [&] {
                const rlimit limit = {room, room};
                std::signal(SIGXFSZ, SIG_IGN);
                setrlimit(RLIMIT_FSIZE, &limit);
            });
            EXPECT_EQ(builtIn(), loaded.content) << variant << " " << room;
            EXPECT_EQ(room == text.size() ? text : "", mDevice.read(kPrivateFile))
                    << variant << " " << room;
        }
    }
}

TEST_F(LoadTest, APrivateFileMayBeRewrittenMeanwhile) {
    mDevice.write(kVariantSpec, kSpec);
    mDevice.write(kPrivateFile, kPrivate);
    const std::string other = R"({"Video": {"Features": {"other": true}}})";
    const std::string path = mDevice(kPrivateFile);
    std::atomic<bool> isDone{false};
    std::thread writer([&] {
        while (!isDone) {
            std::ofstream(path) << kPrivate;
            std::ofstream(path) << other;
        }
    });
    std::set<std::string> contents;
    for (int i = 0; i < 2000; ++i) {
        TargetSpec spec;
        spec.extractPrivateData();
        contents.insert(contentOf(spec));
    }
    isDone = true;
    writer.join();
    for (const std::string& content : contents) {
        EXPECT_TRUE(content.empty() || content == "feature both 1\nfeature private 1\n" ||
                    content == "feature other 1\n")
                << content;
    }
}

// A few threads, where the first one reads a pipe until it is written to, so that all others arrive
// during the load; and many threads that race for a plain file.
TEST_F(LoadTest, ManyFirstCallersShareOneLoad) {
    for (const size_t threadCount : {4, 16}) {
        const bool isPipe = threadCount == 4;
        Device device;
        if (isPipe) {
            ASSERT_EQ(0, mkfifo(device(kVariantSpec).c_str(), 0600));
        } else {
            device.write(kVariantSpec, kSpec);
        }
        device.write(kPrivateFile, kPrivate);
        host::setLogLevel(0x2);
        const Lines lines = inOwnProcess([&] {
            std::vector<TargetSpec*> instances(threadCount);
            std::atomic<size_t> arrived{0};
            std::atomic<int> failures{0};
            std::vector<std::thread> threads;
            threads.reserve(threadCount);
            for (TargetSpec*& instance : instances) {
                threads.emplace_back([&] {
                    ++arrived;
                    while (!isPipe && arrived != threadCount) {
                    }
                    instance = TargetSpec::Get();
                    failures += answersRight(*instance) ? 0 : 1;
                });
            }
            if (isPipe) {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                device.write(kVariantSpec, kSpec);
            }
            for (std::thread& thread : threads) {
                thread.join();
            }
            device.write(kPrivateFile, kSpec);  // No later call reads it.
            for (TargetSpec* instance : instances) {
                failures += instance == TargetSpec::Get() && answersRight(*instance) ? 0 : 1;
            }
            Lines result = {std::to_string(failures)};
            for (const std::string& line : device.takeLog()) {
                if (line.find("Features:") != std::string::npos) {
                    result.push_back(line);
                }
            }
            return result;
        });
        EXPECT_EQ((Lines{"0", "I/KC2TargetSpec: Video Core Features:"}), lines) << threadCount;
    }
}

#ifdef __cpp_exceptions  // Without exceptions a program ends where an allocation fails.
TEST_F(LoadTest, ALoadThatThrowsIsRepeated) {
    mDevice.write(kVariantSpec, kSpec);
    mDevice.write(kPrivateFile, kPrivate);
    host::setLogLevel(0x2);
    const Lines lines = inOwnProcess([&] {
        alarm(20);  // With the lock still taken, the next call would wait for ever.
        Lines result;
        // The second line is there when the first document is in the store.
        for (const char* const failing : {"Parsing system specs", "Video Core Features:"}) {
            host::setLogSink([failing](int, const char*, const char* text) {
                if (std::string(text).rfind(failing, 0) == 0) {
                    throw std::bad_alloc();
                }
            });
            try {
                TargetSpec::Get();
            } catch (const std::bad_alloc&) {
                result.push_back("thrown");
            }
        }
        host::setLogSink([](int, const char*, const char*) {});
        TargetSpec& spec = *TargetSpec::Get();
        result.push_back(answersRight(spec) && TargetSpec::Get() == &spec ? "loaded" : "wrong");
        return result;
    });
    EXPECT_EQ((Lines{"thrown", "thrown", "loaded"}), lines);
}
#endif

}  // namespace

}  // namespace kc2::test
