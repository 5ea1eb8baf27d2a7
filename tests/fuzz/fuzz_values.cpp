// Fuzz target: documents of the right shape, nearly always valid JSON, with hostile values.

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <string>

#include "tests/fuzz/DocumentCheck.h"

namespace {

// Writes one document; the input makes every choice.
class DocumentWriter {
public:
    explicit DocumentWriter(FuzzedDataProvider* input) : mInput(*input) {}

    std::string write() {
        gap();
        writeObject([this] {
            writeKey({"Video"});
            writeVideo();
        });
        gap();
        return std::move(mText);
    }

private:
    // Shapes of a section, as the document format has them.
    enum class Shape { Members, Words, Rows, Names, DolbyVision, Codecs };

    struct Section {
        const char* key;
        Shape shape;
    };

    static constexpr Section kSections[] = {
            {"Features", Shape::Members},
            {"Presets", Shape::Members},
            {"NimbraModeBitrateTable", Shape::Rows},
            {"DolbyVision", Shape::DolbyVision},
            {"KC2CodecPlugins", Shape::Names},
            {"KC2PreProcessingFilters", Shape::Names},
            {"perf-resource-values", Shape::Words},
            {"codecs-available", Shape::Codecs},
            {"OptionalCodecs", Shape::Names},
            {"KC2EncPostProcessingFilters", Shape::Names},
    };

    bool rarely() { return mInput.ConsumeIntegralInRange(0, 15) == 15; }

    template <typename WriteMember>
    void writeObject(WriteMember writeMember) {
        writeContainer('{', '}', writeMember);
    }

    template <typename WriteElement>
    void writeContainer(char open, char close, WriteElement writeElement) {
        mText += open;
        const int count = mInput.ConsumeIntegralInRange(0, 5);
        for (int i = 0; i < count; ++i) {
            gap();
            writeElement();
            gap();
            mText += i + 1 < count ? "," : "";
        }
        mText += close;
    }

    // White space and comments, which contain what must be ignored there.
    void gap() {
        if (!rarely()) {
            return;
        }
        mText += mInput.PickValueInArray({" ", "\t\r\n", "// ]}\",\n", "// [[{{\r", "/* [\"{ */",
                                          "/**/", "/*/ */", "/***/", "//\r\n"});
    }

    // A key that belongs here, or any string.
    void writeKey(std::initializer_list<const char*> keys) {
        if (keys.size() == 0 || rarely()) {
            writeString();
        } else {
            const size_t index = mInput.ConsumeIntegralInRange<size_t>(0, keys.size() - 1);
            mText.append("\"").append(keys.begin()[index]).append("\"");
        }
        gap();
        mText += ':';
        gap();
    }

    void writeVideo() {
        if (rarely()) {
            writeAnything();
            return;
        }
        writeObject([this] {
            const Section section = mInput.PickValueInArray(kSections);
            writeKey({section.key});
            writeSection(section.shape);
        });
    }

    void writeSection(Shape shape) {
        if (rarely()) {
            writeAnything();
            return;
        }
        switch (shape) {
            case Shape::Members:
                writeObject([this] {
                    writeKey({"a", "b", "private_complexity"});
                    writeValue();
                });
                break;
            case Shape::Words:
                writeObject([this] {
                    writeKey({"a", "b"});
                    writeList();
                });
                break;
            case Shape::Rows:
                writeContainer('[', ']', [this] { writeRow(); });
                break;
            case Shape::Names:
                writeList();
                break;
            case Shape::DolbyVision:
                writeObject([this] {
                    writeKey({"profiles", "max_main_tier_level", "max_high_tier_level"});
                    mInput.ConsumeBool() ? writeList() : writeValue();
                });
                break;
            case Shape::Codecs:
                writeObject([this] {
                    writeKey({"decoders", "encoders"});
                    writeList();
                });
                break;
        }
    }

    void writeList() {
        if (rarely()) {
            writeAnything();
        } else {
            writeContainer('[', ']', [this] { writeValue(); });
        }
    }

    void writeRow() {
        if (rarely()) {
            writeAnything();
            return;
        }
        mText += '[';
        writeValue();
        for (int i = rarely() ? mInput.ConsumeIntegralInRange(0, 4) : 2; i > 0; --i) {
            mText += ',';
            writeValue();
        }
        mText += ']';
    }

    void writeAnything() {
        switch (mInput.ConsumeIntegralInRange(0, 3)) {
            case 0:
                writeTower();
                break;
            case 1:
                writeObject([this] {
                    writeKey({"0", "1", "2", "profiles", "decoders"});
                    writeValue();
                });
                break;
            default:
                writeValue();
        }
    }

    // Containers in containers, sometimes around the parser's limit.
    void writeTower() {
        const int levels = rarely() ? mInput.ConsumeIntegralInRange(985, 1005)
                                    : mInput.ConsumeIntegralInRange(1, 4);
        const bool isObject = mInput.ConsumeBool();
        for (int i = 0; i < levels; ++i) {
            mText += isObject ? "{\"0\":" : "[";
        }
        if (mInput.ConsumeBool()) {
            mText += mInput.PickValueInArray({"0", "{}", "[]", "[ ]", "{/**/}", "[/**/]", "\"[\""});
        } else {
            mText += isObject ? "{}" : "";
        }
        mText.append(static_cast<size_t>(levels), isObject ? '}' : ']');
    }

    void writeValue() {
        switch (mInput.ConsumeIntegralInRange(0, 7)) {
            case 0:
                mText += mInput.PickValueInArray({"true", "false", "null"});
                break;
            case 1:
                mText += mInput.PickValueInArray(
                        {"2147483647", "2147483648", "-2147483648", "-2147483649", "4294967295",
                         "4294967296", "9223372036854775807", "9223372036854775808",
                         "-9223372036854775808", "-9223372036854775809", "18446744073709551615",
                         "18446744073709551616", "0101", "-0", "-", "00", "-007"});
                break;
            case 2:
                mText += mInput.PickValueInArray(
                        {"4.0", "4.5", "-0.5", "2147483647.5", "-2147483648.5", "4294967295.0",
                         "4294967295.5", "1e308", "-1e308", "1e-320", "1e999", "-1e999", "0.0",
                         "-0.0", "1.", "1e", "1E+2", "9007199254740993"});
                break;
            case 3:
                mText += std::to_string(mInput.ConsumeIntegral<int64_t>());
                break;
            case 4:
                mText += std::to_string(mInput.ConsumeFloatingPoint<double>());
                break;
            case 5:
                mText += mInput.PickValueInArray(
                        {"\"0x40C00000\"", "\"0x7FFFFFFF\"", "\"0x80000000\"", "\"-0x80000000\"",
                         "\"-0x80000001\"", "\"\"", "\"0x\"", "\"x\"", "\" \\t+fFz\"",
                         "\"0x1\\u0000\"", "\"\\u0000\"", "\"ffffffffffffffffff\"", "\"%s%n\""});
                break;
            case 6:
                writeString();
                break;
            default:
                rarely() ? writeAnything() : static_cast<void>(mText += "16");
        }
    }

    void writeString() {
        mText += '"';
        for (const char byte : mInput.ConsumeRandomLengthString(24)) {
            switch (byte) {
                case '"':
                case '\\':
                    mText.append("\\") += byte;
                    break;
                case '\0':
                    mText += "\\u0000";
                    break;
                case '\1':
                    mText += "\\ud83d\\ude00";  // A surrogate pair.
                    break;
                case '\2':
                    mText += "\\ud83d";  // Half of one.
                    break;
                default:
                    mText += byte;
            }
        }
        mText += '"';
    }

    FuzzedDataProvider& mInput;
    std::string mText;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    kc2::fuzz::checkDocument(DocumentWriter(&input).write());
    return 0;
}
