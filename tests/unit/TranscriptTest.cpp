// Each file in transcripts/ is a command of the tool, its output and its exit code.
// scripts/update-transcripts.sh rewrites them.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "RunTool.h"

namespace kc2::test {

namespace {

TEST(TranscriptTest, EachCommandPrintsItsTranscript) {
    const std::filesystem::path directory = KC2_SOURCE_DIR "/tests/unit/transcripts";
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() != ".txt") {
            continue;
        }
        const std::string transcript = readFile(entry.path());
        const size_t end = transcript.find('\n');
        ASSERT_EQ("$ kcodec2_spec ", transcript.substr(0, 15)) << entry.path();
        const Result result = run(transcript.substr(15, end - 15), "tests/unit/transcripts");
        EXPECT_EQ(transcript.substr(end + 1),
                  result.output + "[exit code " + std::to_string(result.exitCode) + "]\n")
                << entry.path();
        ++count;
    }
    EXPECT_LT(10, count);
}

}  // namespace

}  // namespace kc2::test
