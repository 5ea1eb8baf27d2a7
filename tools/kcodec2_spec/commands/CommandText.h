// The commands and their options as plain values, for the manual page and the completions.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kc2::tool {

struct OptionText {
    std::vector<std::string> names;  // "-h", "--help"; empty for an argument without a name.
    std::string label;               // As --help shows the names: "-h,--help", "FILE".
    std::string form;                // What follows the names there: " DIR".
    std::string description;
    std::string value;                 // What its value is: "DIR", or the argument's name.
    bool isFlag = false;               // It has no value.
    std::vector<std::string> choices;  // Its values, where they are a list.
};

struct CommandText {
    std::string name;  // Empty for the tool itself.
    std::string description;
    std::string usage;
    std::vector<OptionText> arguments;  // By position.
    std::vector<OptionText> options;
    std::string footer;
};

// The tool itself, then each command, from the definitions that --help prints.
std::vector<CommandText> commandTexts(const CLI::App& app);

}  // namespace kc2::tool
