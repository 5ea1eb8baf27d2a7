// The documents that are measured, and the device tree that they lie in.

#include "bench/Documents.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "bench/Floors.h"
#include "hostplatform/HostPlatform.h"

namespace kc2::bench {

namespace {

namespace fs = std::filesystem;

constexpr int kEntryCounts[] = {10, 100, 1000, 10000, 100000};

fs::path makeScratchDirectory() {
    std::string path = (fs::temp_directory_path() / "kcodec2-bench-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) {
        std::abort();
    }
    return path;
}

const fs::path& scratchDirectory() {
    static const fs::path directory = makeScratchDirectory();
    return directory;
}

void writeText(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

// The entries of one section: opened by the first, closed by text().
class Section {
public:
    Section(const char* name, char open, char close)
        : mClose(close), mText("        \"" + std::string(name) + "\": " + open) {}

    void add(const std::string& entry) {
        mText.append(mIsEmpty ? "\n" : ",\n").append("            ").append(entry);
        mIsEmpty = false;
    }

    std::string text() const { return mText + "\n        " + mClose; }

private:
    char mClose;
    std::string mText;
    bool mIsEmpty = true;
};

// The text "<prefix><number>", with its quotes.
std::string quoted(const char* prefix, const std::string& number) {
    return std::string("\"").append(prefix).append(number).append("\"");
}

// `entries` entries over the sections, about as a real document spreads them.
std::string generatedText(int entries) {
    Section features("Features", '{', '}');
    Section presets("Presets", '{', '}');
    Section rows("NimbraModeBitrateTable", '[', ']');
    Section plugins("KC2CodecPlugins", '[', ']');
    Section perfValues("perf-resource-values", '{', '}');
    Section codecs("OptionalCodecs", '[', ']');
    for (int entry = 0; entry < entries; ++entry) {
        const std::string number = std::to_string(entry);
        switch (entry % 10) {
            case 0:
            case 1:
                features.add(quoted("private_enc_feature_", number).append(": true"));
                break;
            case 2:
            case 3:
            case 4:
            case 5:
                presets.add(quoted("private_max_supported_preset_", number)
                                    .append(": ")
                                    .append(number)
                                    .append("00"));
                break;
            case 6:
                rows.add(std::string("[")
                                 .append(number)
                                 .append(", ")
                                 .append(std::to_string(entry + 10))
                                 .append(", 500]"));
                break;
            case 7:
                plugins.add("\"libkcodec2_plugin_" + number + ".so\"");
                break;
            case 8:
                perfValues.add("\"private_perf_resource_values_" + number +
                               "\": [\"0x40800100\", \"0xFFF\"]");
                break;
            default:
                codecs.add("\"c2.kvx.codec_" + number + ".decoder.low_latency\"");
                break;
        }
    }
    std::string text = "{\n    \"Video\": {\n";
    for (const Section* section : {&features, &presets, &rows, &plugins, &perfValues}) {
        text += section->text() + ",\n";
    }
    return text + codecs.text() + "\n    }\n}\n";
}

std::vector<fs::path> jsonFilesUnder(const fs::path& directory) {
    std::vector<fs::path> files;
    if (fs::exists(directory)) {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
            if (entry.path().extension() == ".json") {
                files.push_back(entry.path());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<Document> collectDocuments() {
    const fs::path source = KC2_SOURCE_DIR;
    std::vector<Document> documents;
    for (const char* directory : {"targetspec/defaults", "examples/device"}) {
        for (const fs::path& path : jsonFilesUnder(source / directory)) {
            const fs::path name = fs::relative(path, source / fs::path(directory).parent_path());
            documents.push_back({name.string(), path.string(), floors::readFile(path.c_str())});
        }
    }
    for (const int entries : kEntryCounts) {
        const std::string name = std::to_string(entries) + " entries";
        const fs::path path = scratchDirectory() / (name + ".json");
        writeText(path, generatedText(entries));
        documents.push_back({name, path.string(), floors::readFile(path.c_str()), entries});
    }
    return documents;
}

}  // namespace

const std::vector<Document>& documents() {
    static const std::vector<Document> documents = collectDocuments();
    return documents;
}

const Document& documentNamed(const std::string& name) {
    const auto document =
            std::find_if(documents().begin(), documents().end(),
                         [&](const Document& candidate) { return candidate.name == name; });
    if (document == documents().end()) {
        std::abort();
    }
    return *document;
}

const Document& richestDocument() {
    const auto isPoorer = [](const Document& left, const Document& right) {
        const auto rank = [](const Document& document) {
            return document.entries != 0 ? 0 : document.text.size();
        };
        return rank(left) < rank(right);
    };
    return *std::max_element(documents().begin(), documents().end(), isPoorer);
}

void setUpDevice() {
    const fs::path device = scratchDirectory() / "device";
    writeText(device / "vendor/etc/media_brel/video_system_specs.json", richestDocument().text);
    writeText(device / "data/vendor/media/video_private_configs.json", documents().front().text);
    host::mapDirectory("/", device.string());
    host::setProperty("vendor.media.target_variant", "_brel");
    host::setLogSink([](int, const char*, const char*) {});
}

void tearDownDevice() {
    fs::remove_all(scratchDirectory());
}

}  // namespace kc2::bench
