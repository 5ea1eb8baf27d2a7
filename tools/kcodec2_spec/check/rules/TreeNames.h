// Names that the documents of a device tree spell differently.
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/KnownSettings.h"
#include "document/Document.h"

namespace kc2::tool {

class TreeNames {
public:
    // A name that another document has in nearly the same spelling.
    struct Variation {
        Span span;
        std::string_view name;
        std::string_view other;
        const Document* otherDocument;  // The first one that has it.
        Span otherSpan;
        size_t otherCount;  // Of documents that have it.
    };

    // The documents must outlive this. Those of one path are one document; built-in ones have known
    // names only.
    TreeNames(std::span<const Document* const> documents, const KnownSettings& known);

    // The names of this document, or of another one of its path, that are the rarer ones.
    std::span<const Variation> in(const Document& document) const;

private:
    std::map<std::string, std::vector<Variation>> mByPath;
};

}  // namespace kc2::tool
