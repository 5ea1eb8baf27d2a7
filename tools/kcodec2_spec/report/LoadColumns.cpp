// The columns of the page: variants whose loads are equal share one.

#include "report/LoadColumns.h"

#include <unordered_map>
#include <utility>

#include "base/DeviceOptions.h"
#include "base/Text.h"
#include "device/DevicePaths.h"
#include "report/Html.h"

namespace kc2::tool {

namespace {

// Two loads have the same text where a page shows the same of both. Any bytes may be in a name, so
// each part begins with its length.
std::string comparedText(const Snapshot& snapshot, const Load& load) {
    std::string text;
    const auto add = [&text](const std::string& part) {
        text.append(std::to_string(part.size())).append(":").append(part);
    };
    for (const SnapshotSection& section : snapshot) {
        text.append(std::to_string(section.entries.size())).append(" ");
        for (const SnapshotEntry& entry : section.entries) {
            add(entry.name);
            add(entry.text);
            add(entry.origin);
        }
    }
    add(load.overlay->origin);
    return text;
}

}  // namespace

std::vector<LoadColumn> columnsOf(const CheckedVariants& checked, std::vector<size_t>* columnOf) {
    std::vector<LoadColumn> columns;
    std::unordered_map<std::string, size_t> places;
    for (size_t i = 0; i < checked.variants.size(); ++i) {
        playVariant(checked.variants[i]);
        const LoadSteps steps = deviceSteps(checked.loads[i]);
        TargetSpec store;
        steps.systemSpec(store);
        steps.overlay(store);
        Snapshot snapshot = sectionsOf(store, steps);
        const auto [place, isNew] =
                places.emplace(comparedText(snapshot, checked.loads[i]), columns.size());
        if (isNew) {
            columns.push_back({{}, std::move(snapshot), stepsOf(&store)});
        }
        columns[place->second].variants.push_back(i);
        columnOf->push_back(place->second);
    }
    return columns;
}

std::string variantForPage(const CheckedVariants& checked, size_t variant) {
    const std::string& name = checked.variants[variant];
    return name == kDefaultVariant ? "no variant" : html(name.empty() ? "\"\"" : name);
}

std::string titleForPage(const CheckedVariants& checked, const LoadColumn& column) {
    const std::vector<size_t>& variants = column.variants;
    if (variants.size() == 1) {
        return variantForPage(checked, variants[0]);
    }
    return checked.variants[variants[0]] == kDefaultVariant
                   ? "no variant and " + counted(variants.size() - 1, "variant")
                   : counted(variants.size(), "variant");
}

std::string withAnyVariant(std::string text, const std::string& variant) {
    for (const std::string directory : {kOdmSpecDirectory, kVendorSpecDirectory}) {
        const std::string path = directory + variant + kSystemSpecName;
        for (size_t at = 0; (at = text.find(path, at)) != std::string::npos; ++at) {
            text.replace(at + directory.size(), variant.size(), "<variant>");
        }
    }
    return text;
}

}  // namespace kc2::tool
