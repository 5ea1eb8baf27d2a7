// The floors: the core of each operation, without the library. In a separate shared library, so
// that a floor is reached by the same kind of call as the library.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kc2/TargetSpec.h"

namespace Json {
class Value;
}

namespace kc2::bench::floors {

#pragma GCC visibility push(default)

void* readPointer();
bool findFeature(const std::map<std::string, bool>& features, const std::string& name);
int32_t findPreset(const std::map<std::string, int32_t>& presets, const std::string& name,
                   int* value);
uint32_t findBitRate(const std::vector<NimbraBitRateEntry>& rows, const unsigned int* value);
std::vector<uint32_t> findWords(const std::map<std::string, std::vector<uint32_t>>& words,
                                const std::string& name);
void appendNames(const std::list<std::string>& names, std::list<std::string>* list);
std::unordered_set<std::string> copyNames(const std::unordered_set<std::string>& names);

uint32_t switchOverFormats(unsigned int format);

using Planes = std::unordered_map<uint32_t, std::unordered_set<uint32_t>>;
uint64_t findPlane(const Planes& planes, unsigned int format, uint32_t plane);
uint64_t logUnknownFormat(unsigned int format);

std::string readFile(const char* path);
bool parse(const std::string& text, Json::Value* root);

#pragma GCC visibility pop

}  // namespace kc2::bench::floors
