// Runs the host tool as its users do.

#include "RunTool.h"

#include <gtest/gtest.h>
#include <json/reader.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace kc2::test {

namespace {

// What the command lines name, copied: a tool that writes where it must not leaves the source tree
// as it is. Made once in a process, and removed when it ends.
const std::string& copiedTree() {
    static const ScratchDirectory tree;
    static const std::string path = [] {
        for (const char* const directory :
             {"examples", "targetspec/defaults", "tests/unit/catalogue", "tests/unit/check",
              "tests/unit/transcripts", "tools/kcodec2_spec/catalogue"}) {
            const std::filesystem::path copy = std::filesystem::path(tree.path()) / directory;
            std::filesystem::create_directories(copy.parent_path());
            std::filesystem::copy(std::filesystem::path(KC2_SOURCE_DIR) / directory, copy,
                                  std::filesystem::copy_options::recursive |
                                          std::filesystem::copy_options::copy_symlinks);
        }
        return tree.path();
    }();
    return path;
}

std::string commandFor(const std::string& arguments, const std::string& environment,
                       const std::string& directory) {
    return "cd " + copiedTree() + "/" + directory + " && " + environment + " " + kToolCommand +
           " " + arguments;
}

}  // namespace

Result run(const std::string& arguments, const std::string& directory) {
    FILE* const pipe = popen((commandFor(arguments, "", directory) + " 2>&1").c_str(), "r");
    std::string output;
    for (int c; (c = std::fgetc(pipe)) != EOF;) {
        output += static_cast<char>(c);
    }
    return {output, WEXITSTATUS(pclose(pipe))};
}

void expectAnswers(const std::string& command, const std::vector<Answer>& rows,
                   const std::string& directory) {
    for (const Answer& row : rows) {
        const Result result = run(command + row.arguments, directory);
        EXPECT_EQ(row.exitCode, result.exitCode) << row.arguments << "\n" << result.output;
        EXPECT_NE(std::string::npos, result.output.find(row.text)) << row.arguments << "\n"
                                                                   << result.output;
    }
}

Result runOnTerminal(const std::string& arguments, unsigned short columns,
                     const std::string& environment, const std::string& directory) {
    const std::string command = commandFor(arguments, environment, directory);
    const winsize size = {.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        std::_Exit(127);
    }
    std::string output;
    char buffer[4096];
    for (ssize_t count; (count = read(terminal, buffer, sizeof(buffer))) > 0;) {
        output.append(buffer, static_cast<size_t>(count));
    }
    close(terminal);
    int status = 0;
    waitpid(child, &status, 0);
    std::erase(output, '\r');  // The terminal puts one before each line end.
    return {output, WEXITSTATUS(status)};
}

Json::Value parsed(const std::string& text) {
    Json::Value json;
    std::istringstream stream(text);
    std::string errors;
    EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &json, &errors))
            << errors << text;
    return json;
}

size_t countOf(const std::string& part, const std::string& text) {
    size_t count = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) {
        ++count;
    }
    return count;
}

std::string describe(const Json::Value& finding) {
    const auto place = [](const Json::Value& at) {
        const std::string line = at["line"].asString();
        const std::string endLine = at["endLine"].asString();
        return line + ":" + at["column"].asString() + "-" + (line != endLine ? endLine + ":" : "") +
               at["endColumn"].asString() + " ";
    };
    std::string text = "    " + place(finding) + finding["severity"].asString() + ": " +
                       finding["message"].asString() + " [" + finding["id"].asString() + "]\n";
    for (const Json::Value& related : finding["related"]) {
        text += "        see " + place(related) + related["message"].asString() + "\n";
    }
    for (const Json::Value& fix : finding["fixes"]) {
        text += "        fix " + place(fix) + "'" + fix["replacement"].asString() + "' " +
                fix["what"].asString() + "\n";
    }
    return text;
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void expectFile(const std::string& name, const std::string& text) {
    const std::filesystem::path path = KC2_SOURCE_DIR "/tests/unit/check/expected/" + name;
    const std::filesystem::path kept = std::filesystem::temp_directory_path() / name;
    if (readFile(path) != text) {
        std::ofstream(kept) << text;
    }
    EXPECT_EQ(readFile(path), text) << "the new text is in " << kept;
}

ScratchDirectory::ScratchDirectory() : mPath(::testing::TempDir() + "kcodec2-tool-XXXXXX") {
    EXPECT_NE(nullptr, mkdtemp(mPath.data()));
}

ScratchDirectory::~ScratchDirectory() {
    std::filesystem::remove_all(mPath);
}

std::string ScratchDirectory::write(const std::string& name, const std::string& text) const {
    const std::filesystem::path path = std::filesystem::path(mPath) / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
    return path;
}

}  // namespace kc2::test
