// Fuzz target: `kcodec2_spec check` on whole device trees, with its options. The input is text. A
// line that begins with '%' is a command: its first letter selects it, its arguments follow,
// separated by blanks. In a path, '*' is replaced by the variant.
//
//   %variant VALUE            the property that selects the document
//   %property NAME=VALUE      another property
//   %file PATH                with the lines up to the next command as its text
//   %directory PATH           also in the place of a file
//   %queue PATH               a pipe that no process writes into
//   %hidden PATH              a file that others cannot read
//   %link PATH TARGET         made after all files
//   %mapping PREFIX PATH      a directory of the tree, mapped to PREFIX as well
//   %error ID                 and %warning, %note, %omit
//   %use LETTERS              see use()

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "base/DeviceOptions.h"
#include "check/Check.h"
#include "device/DevicePaths.h"
#include "tests/fuzz/Printed.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/ScratchTree.h"

namespace kc2::fuzz {

namespace {

constexpr std::string_view kSecret = "what-is-outside-of-the-tree";

struct Command {
    char letter;
    std::string_view argument;
    std::string_view lines;  // Up to the next command.

    std::pair<std::string, std::string> words() const {
        const size_t blank = std::min(argument.find(' '), argument.size());
        return {std::string(argument.substr(0, blank)),
                std::string(argument.substr(std::min(blank + 1, argument.size())))};
    }
};

std::vector<Command> commandsIn(std::string_view text) {
    std::vector<Command> commands;
    for (size_t at = text.starts_with('%') ? 0 : text.find("\n%"); at < text.size();) {
        at += text[at] == '\n' ? 1 : 0;
        const size_t next = std::min(text.find("\n%", at), text.size());
        const std::string_view all = text.substr(at + 1, next - at - 1);
        const std::string_view line = all.substr(0, all.find('\n'));
        const size_t blank = std::min(line.find(' '), line.size());
        if (!line.empty()) {
            commands.push_back({line[0], line.substr(std::min(blank + 1, line.size())),
                                all.substr(std::min(line.size() + 1, all.size()))});
        }
        at = next;
    }
    return commands;
}

// One run of the check, as the input describes it.
class Run {
public:
    Run(const ScratchTree& tree, std::string_view input)
        : mTree(tree), mCommands(commandsIn(input)) {
        static const auto known = std::make_shared<const tool::KnownSettings>(
                tool::loadCatalogue({}).value_or(tool::Catalogue()));
        mCheck.known = known;
        mDevice.rootDirectory = tree.root();
        forEach("v", [&](const Command& command) { mVariant = command.argument; });
    }

    void check() {
        makeFiles();
        mDevice.properties.push_back(std::string(kVariantProperty) + "=" + mVariant);
        forEach("p", [&](const Command& command) {
            if (command.argument.find('=') != std::string_view::npos) {
                mDevice.properties.emplace_back(command.argument);
            }
        });
        forEach("m", [&](const Command& command) { addMapping(command); });
        forEach("ewno", [&](const Command& command) { setLevel(command); });
        forEach("u", [&](const Command& command) { use(command.argument); });
        requireFit(printedBy([&] {
            tool::applyDeviceOptions(mDevice);
            tool::muteLog();
            const int exitCode = runCheck();
            require(exitCode >= 0 && exitCode <= 2, "the exit code is one of the tool's");
        }));
    }

private:
    enum class Mode { Device, EachVariant, Files };

    void forEach(std::string_view letters, const std::function<void(const Command&)>& visit) const {
        for (const Command& command : mCommands) {
            if (letters.find(command.letter) != std::string_view::npos) {
                visit(command);
            }
        }
    }

    std::string inFull(std::string path) const {
        const size_t star = path.find('*');
        return star == std::string::npos ? path : path.replace(star, 1, mVariant);
    }

    void makeFiles() const {
        mTree.clear();
        forEach("f", [&](const Command& command) {
            mTree.writeFile(inFull(std::string(command.argument)), std::string(command.lines));
        });
        forEach("d", [&](const Command& command) {
            mTree.makeDirectory(inFull(std::string(command.argument)));
        });
        forEach("q", [&](const Command& command) {
            mTree.makePipe(inFull(std::string(command.argument)));
        });
        forEach("h", [&](const Command& command) {
            mTree.hideFromOthers(inFull(std::string(command.argument)));
        });
        forEach("l", [&](const Command& command) {
            const auto [path, target] = command.words();
            mTree.makeLink(inFull(path), inFull(target));
        });
    }

    // The options accept only such mappings.
    void addMapping(const Command& command) {
        const auto [prefix, path] = command.words();
        const std::string directory = mTree.root() + "/" + path;
        std::error_code error;
        if (prefix.starts_with('/') && prefix.find(':') == std::string::npos &&
            path.find("..") == std::string::npos &&
            std::filesystem::is_directory(directory, error)) {
            mDevice.mappings.push_back(prefix + ":" + directory);
        }
    }

    void setLevel(const Command& command) {
        using tool::Severity;
        const std::string id(command.argument);
        const std::string wrong =
                command.letter == 'o'
                        ? mCheck.levels.set(id, std::nullopt)
                        : mCheck.levels.set(id, command.letter == 'e'   ? Severity::Error
                                                : command.letter == 'w' ? Severity::Warning
                                                                        : Severity::Note);
        require(wrong.empty() || wrong.find(id) != std::string::npos, "a wrong id is named");
    }

    void use(std::string_view letters) {
        for (const char letter : letters) {
            switch (letter) {
                case 'j':
                    mCheck.format = tool::ReportFormat::Json;
                    break;
                case 's':
                    mCheck.format = tool::ReportFormat::Sarif;
                    break;
                case 'w':
                    mCheck.warningsAreErrors = true;
                    break;
                case 'm':
                    mCheck.output.mostFindings = 2;
                    break;
                case 'l':
                    mCheck.levels.setLeast(tool::Severity::Warning);
                    break;
                case 'a':
                    mMode = Mode::EachVariant;
                    break;
                case 'f':
                    mMode = Mode::Files;
                    break;
                case 'x':
                    mCheck.fix = tool::FixMode::Show;
                    break;
                default:
                    break;
            }
        }
        mCheck.fixLimits.rootDirectory = mCheck.fix == tool::FixMode::None ? "" : mTree.root();
    }

    int runCheck() const {
        if (mMode == Mode::Files) {
            return tool::checkFiles(mTree.files(), mCheck);
        }
        return mMode == Mode::EachVariant ? tool::checkEachVariant(mCheck)
                                          : tool::checkDevice(mCheck);
    }

    void requireFit(const Printed& printed) const {
        requirePlain(printed.errors);
        if (mCheck.fix == tool::FixMode::Show) {
            requirePlain(printed.output, TextKind::Diff);
        } else if (mCheck.format == tool::ReportFormat::Text) {
            requirePlain(printed.output);
        } else {
            requireJson(printed.output);
        }
        require(printed.output.find(kSecret) == std::string::npos,
                "nothing outside of the tree is shown");
    }

    const ScratchTree& mTree;
    std::vector<Command> mCommands;
    std::string mVariant;
    tool::DeviceOptions mDevice;
    tool::CheckOptions mCheck;
    Mode mMode = Mode::Device;
};

}  // namespace

}  // namespace kc2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const kc2::fuzz::ScratchTree tree;
    [[maybe_unused]] static const bool isSetUp = [] {
        std::ofstream(tree.outside()) << "{\"" << kc2::fuzz::kSecret << "\": 1}";
        return true;
    }();
    const std::string text(data, data + size);
    // The fuzzer may have learnt the word from this comparison.
    if (text.find("outside-of") == std::string::npos) {
        kc2::fuzz::Run(tree, text).check();
    }
    return 0;
}
