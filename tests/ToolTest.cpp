// The host tool, run as its users run it.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace kc2::test {

namespace {

struct Result {
    std::string output;
    int exitCode;
};

Result run(const std::string& arguments) {
    const std::string command = "cd " KC2_SOURCE_DIR " && " KC2_SPEC_TOOL " " + arguments + " 2>&1";
    FILE* const pipe = popen(command.c_str(), "r");
    std::string output;
    for (int c; (c = std::fgetc(pipe)) != EOF;) {
        output += static_cast<char>(c);
    }
    return {output, WEXITSTATUS(pclose(pipe))};
}

TEST(ToolTest, EachCommandAnswers) {
    const std::string tree = "show --rootdir examples/device ";
    const std::string variant = "--property vendor.media.target_variant=";
    const struct {
        std::string arguments;
        int exitCode;
        const char* text;  // Somewhere in the output.
    } rows[] = {
            {tree + variant + "_orvelle", 0, "max_main_tier_level  9  system spec\n"},
            {tree + variant + "_orvelle", 0, "libkc2_plugin_frame_dump.so  private file\n"},
            {tree + variant + "_orvelle", 0,
             "private_perf_resource_values_video_encode  0x40800000=0xFFF 0x40C00000=0x1  system"},
            {tree + "--log info", 0, "I/KC2TargetSpec("},
            {"show --rootdir scripts " + variant + "_mirt", 0,
             "built-in document 1 (\"mirt\" in the"},
            {"show --json --rootdir examples/device", 0, "\"private_complexity\" : \n"},
            {"show --rootdir no/such/directory", 2, "Directory does not exist: no/such/directory"},
            {"show --dirmap vendor:examples", 2, "not of the form /PREFIX:DIR"},
            {"show --property name", 2, "not of the form NAME=VALUE"},
            {"show --colour", 2, "--colour"},
            {"", 2, "subcommand is required"},
            {"--help", 0, "Exit codes:"},
            {"defaults 1", 0, "Built-in document 1"},
            {"defaults --variant _orvelle", 0, "Built-in document 2"},
            {"defaults 4", 2, "4 not in range"},
            {"formats", 0, "TAMRA_TP10                0x7FA30C09  2141391881  5       Y UV Y_META"},
            {"formats 2141391881", 0, "TAMRA_TP10"},
            {"formats -- -1040187392", 0, "RGBA8888_CMPR"},
            {"formats TAMRA_TP1", 1, "Did you mean TAMRA_TP10?"},
            {"formats 0x127", 1, "0x127 is no pixel format of the video core.\n"},
    };
    for (const auto& row : rows) {
        const Result result = run(row.arguments);
        EXPECT_EQ(row.exitCode, result.exitCode) << row.arguments << "\n" << result.output;
        EXPECT_NE(std::string::npos, result.output.find(row.text)) << row.arguments << "\n"
                                                                   << result.output;
    }
}

}  // namespace

}  // namespace kc2::test
