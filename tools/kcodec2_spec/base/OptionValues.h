// Options whose values are checked, with messages that say what is accepted.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/ExitCodes.h"

namespace kc2::tool {

// What is wrong with a value that must be in `words`, of which there are at least two; empty when
// it is.
std::string whyNotOneOf(const std::vector<std::string>& words, const std::string& value);

// What is wrong with a value that must be a whole number from 0; empty when it is.
std::string whyNotCount(const std::string& value);

// Adds an option whose value must be a word of `choices`; use() gets the choice for that word.
template <typename Choice>
CLI::Option* addChoice(CLI::App* command, const char* name,
                       const std::vector<std::pair<std::string, Choice>>& choices,
                       std::function<void(Choice)> use, const char* description) {
    std::vector<std::string> words;
    for (const auto& [word, choice] : choices) {
        words.push_back(word);
    }
    const auto useWord = [choices, use = std::move(use)](const std::string& given) {
        for (const auto& [word, choice] : choices) {
            if (word == given) {
                use(choice);
            }
        }
    };
    return command->add_option_function<std::string>(name, useWord, description)
            ->check(CLI::Validator(
                    [words](const std::string& value) { return whyNotOneOf(words, value); }, ""))
            ->type_name(CLI::detail::join(words, "|"));
}

// To be thrown while the command line is parsed: `what` is wrong with it.
inline CLI::ParseError usageError(const std::string& what) {
    return CLI::ParseError(what, kExitUsage);
}

// Throws a usage error where the options do not say which device to load.
inline void requireDevice(const DeviceOptions& options) {
    if (const std::string why = whyNoDevice(options); !why.empty()) {
        throw usageError(why);
    }
}

}  // namespace kc2::tool
