// Runs the host tool as its users do.
#pragma once

#include <json/value.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kc2::test {

// The tool's path for a shell; the variable KC2_SPEC_TOOL can name another build's tool.
inline constexpr char kToolCommand[] = "${KC2_SPEC_TOOL:-" KC2_SPEC_TOOL "}";

struct Result {
    std::string output;  // From both streams.
    int exitCode;
};

// Through a shell, in a directory of a copy of the source tree, which has the examples, the
// built-in documents and the samples of the tests.
Result run(const std::string& arguments, const std::string& directory = ".");

// A command line, and its expected result.
struct Answer {
    std::string arguments;
    int exitCode;
    std::string text;  // Somewhere in the output.
};

// Runs `command` with the arguments of each row.
void expectAnswers(const std::string& command, const std::vector<Answer>& rows,
                   const std::string& directory = ".");

// On a terminal of that many columns, with these variables set: "TERM=xterm".
Result runOnTerminal(const std::string& arguments, unsigned short columns,
                     const std::string& environment, const std::string& directory = ".");

// The JSON that a command has printed; fails the test when it is not JSON.
Json::Value parsed(const std::string& text);

// All that a report in JSON says of a finding but its path: its place, severity, message and check,
// then each related place and each fix on its line.
std::string describe(const Json::Value& finding);

// How often a part is in a text.
size_t countOf(const std::string& part, const std::string& text);

std::string readFile(const std::filesystem::path& path);

// Compares `text` with tests/unit/check/expected/`name`. If they differ, the failure names a file
// with `text`, which can replace the expected one.
void expectFile(const std::string& name, const std::string& text);

// A directory that is removed at the end.
class ScratchDirectory {
public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    // Writes a file below it and returns its path.
    std::string write(const std::string& name, const std::string& text) const;
    std::string path() const { return mPath; }

private:
    std::string mPath;
};

}  // namespace kc2::test
