// A device for one test: its files in a temporary directory, its properties, and its log.

#include "Device.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <utility>

#include "device/BaseLibrary.h"
#include "hostplatform/HostPlatform.h"
#include "targetspec/TargetSpecInspector.h"

namespace kc2::test {

namespace {

std::string readAll(std::istream& stream) {
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace

Device::Device() {
    std::string pattern = std::filesystem::temp_directory_path() / "kc2-device-XXXXXX";
    mRoot = mkdtemp(pattern.data());
    host::mapDirectory("/", mRoot);
    host::setLogLevel(0);
    updateLogLevel();
    host::setLogSink([this](int priority, const char* tag, const char* text) {
        mLog.push_back(std::string(1, "??VDIWEF"[priority]) + "/" + tag + ": " + text);
    });
    setVariant("_test");
}

Device::~Device() {
    host::setLogSink(nullptr);
    std::filesystem::remove_all(mRoot);
}

std::string Device::operator()(const std::string& devicePath) const {
    const std::filesystem::path path = mRoot + devicePath;
    std::filesystem::create_directories(path.parent_path());
    return path;
}

void Device::write(const std::string& devicePath, const std::string& text) const {
    std::ofstream((*this)(devicePath)) << text;
}

std::string Device::read(const std::string& devicePath) const {
    std::ifstream stream(mRoot + devicePath);
    return readAll(stream);
}

Lines Device::takeLog() {
    return std::exchange(mLog, {});
}

void setVariant(const std::string& variant) {
    host::setProperty("vendor.media.target_variant", variant);
}

uint32_t parse(TargetSpec& spec, const std::string& text) {
    std::string pattern = std::filesystem::temp_directory_path() / "kc2-document-XXXXXX";
    close(mkstemp(pattern.data()));
    std::ofstream(pattern) << text;
    std::ifstream stream(pattern);
    std::filesystem::remove(pattern);
    return spec.parseJsonData(stream);
}

std::string contentOf(const TargetSpec& spec) {
    using Inspector = TargetSpecInspector;
    std::ostringstream out;
    for (const auto& [name, isOn] : Inspector::features(spec)) {
        out << "feature " << name << " " << isOn << "\n";
    }
    for (const auto& [name, value] : Inspector::presets(spec)) {
        out << "preset " << name << " " << value << "\n";
    }
    for (const auto& [name, words] : Inspector::perfResourceValues(spec)) {
        out << "perf " << name;
        for (const uint32_t word : words) {
            out << " " << word;
        }
        out << "\n";
    }
    for (const NimbraBitRateEntry& row : Inspector::nimbraModeBitRateTable(spec)) {
        out << "row " << row.low << " " << row.high << " " << row.bitRate << "\n";
    }
    const DVConfigs& limits = Inspector::dvConfigs(spec);
    for (const uint32_t profile : limits.profiles) {
        out << "profile " << profile << "\n";
    }
    if (limits.maxMainTierLevel != 0 || limits.maxHighTierLevel != 0) {
        out << "levels " << limits.maxMainTierLevel << " " << limits.maxHighTierLevel << "\n";
    }
    const auto list = [&out](const char* title, const auto& names) {
        for (const std::string& name : names) {
            out << title << " " << name << "\n";
        }
    };
    list("plugin", Inspector::codecPlugins(spec));
    list("pre", Inspector::preprocessingFilters(spec));
    list("encpost", Inspector::encPostProcessingFilters(spec));
    const auto& codecs = Inspector::supportedCodecs(spec);
    list("codec", std::set<std::string>(codecs.begin(), codecs.end()));
    return out.str();
}

Lines inOwnProcess(const std::function<Lines()>& work) {
    int ends[2];
    EXPECT_EQ(0, pipe(ends));
    const pid_t child = fork();
    if (child == 0) {
        std::string text;
        for (const std::string& line : work()) {
            text += line + "\n";
        }
        const bool isWritten =
                ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
        _exit(isWritten && !testing::Test::HasFailure() ? 0 : 1);
    }
    close(ends[1]);
    Lines lines;
    std::string text;
    char block[4096];
    for (ssize_t size; (size = ::read(ends[0], block, sizeof(block))) > 0;) {
        text.append(block, static_cast<size_t>(size));
    }
    close(ends[0]);
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    int status = 0;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    EXPECT_EQ(0, status) << "the process did not end normally";
    return lines;
}

}  // namespace kc2::test
