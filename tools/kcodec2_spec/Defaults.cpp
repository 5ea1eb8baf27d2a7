// kcodec2_spec defaults: a built-in document, to start a new one from.

#include <fmt/format.h>

#include <cstdio>
#include <map>
#include <string>

#include "Commands.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

int numberOfDefault() {
    return chipDocumentFor("").number;
}

std::string chipsOfDefaults() {
    std::map<int, std::string> chips;
    for (const ChipDocument& row : kChipDocuments) {
        std::string& names = chips[row.number];
        names += names.empty() ? "" : ", ";
        names += *row.chip != '\0' ? row.chip : "all others; the default";
    }
    std::string text;
    for (const auto& [number, names] : chips) {
        text += fmt::format("{}{} ({})", text.empty() ? "" : ", ", number, names);
    }
    return text;
}

std::string whyNotDefault(const std::string& word) {
    for (const ChipDocument& row : kChipDocuments) {
        if (word == std::to_string(row.number)) {
            return std::string();
        }
    }
    return fmt::format("there is no built-in document {}: {}", word, chipsOfDefaults());
}

int printDefault(int number) {
    for (const ChipDocument& row : kChipDocuments) {
        if (row.number == number) {
            std::fputs(row.text, stdout);
            return kExitOk;
        }
    }
    return kExitUsage;
}

}  // namespace kc2::tool
