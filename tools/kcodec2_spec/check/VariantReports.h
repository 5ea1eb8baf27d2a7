// The reports of several variants of a device, as one.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "check/Report.h"
#include "check/rules/Rules.h"

namespace kc2::tool {

class VariantReports {
public:
    // The load must outlive this, and the report that it is added to.
    void add(const std::string& variant, const Report& report, const CheckedLoad& load);

    // Adds each finding once, with the variants that have it.
    void addTo(Report* report) const;

private:
    struct Shared {
        const Source* source;
        std::vector<std::string> variants;
        FindingDetails details;
        bool isForFile;
        const Rule* rule;
        Span span;
        std::string message;
    };
    using Key = std::tuple<std::string, std::string, size_t, size_t, std::string>;

    std::string variantsOf(const Shared& shared) const;

    size_t mVariants = 0;
    std::map<std::string, size_t> mReaders;  // How many loads read a document, by its path.
    std::map<std::pair<std::string, bool>, const Source*> mSources;  // One for each path.
    std::map<Key, size_t> mPlaces;                                   // In mFindings.
    std::vector<Shared> mFindings;                                   // In the order of the first.
};

// A device under several variants, and what the check finds in it.
struct CheckedVariants {
    std::vector<std::string> variants;
    std::vector<std::unique_ptr<CheckedLoad>> loads;  // The report points into these.
    Report report;
};

// Loads and checks the device under each of the variants.
CheckedVariants checkVariants(std::vector<std::string> variants, const Levels& levels,
                              const KnownSettings& known);

}  // namespace kc2::tool
