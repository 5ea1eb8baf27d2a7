// Names of codec components: misspelt, in the wrong list, and what the lists come to.

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "check/rules/DocumentNames.h"
#include "check/rules/Misspellings.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kDecoder = "decoder";
constexpr std::string_view kEncoder = "encoder";

// The parts of a name between its dots, as far as rules look at them.
struct ComponentName {
    explicit ComponentName(std::string_view name) {
        size_t start = 0;
        for (std::string_view* const part : {&prefix, &vendor, &codec, &role}) {
            const size_t limit = std::min(name.find('.', start), name.size());
            *part = name.substr(std::min(start, name.size()), limit - std::min(start, limit));
            start = limit + 1;
        }
        base = name.substr(0, std::min(start - 1, name.size()));
        variant = name.substr(base.size());
    }

    bool isDecoder() const { return role == kDecoder; }
    bool isEncoder() const { return role == kEncoder; }

    // c2.<vendor>.<codec>.<decoder or encoder>, and what distinguishes components of one codec.
    bool hasForm() const {
        const auto isOfWord = [](char c) {
            return (c >= 'a' && c <= 'z') || isDigit(c) || c == '_' || c == '-';
        };
        const auto isWord = [&](std::string_view part) {
            return !part.empty() && std::all_of(part.begin(), part.end(), isOfWord);
        };
        for (size_t dot = 0; dot < variant.size();) {  // It begins with a dot, or is empty.
            const size_t next = std::min(variant.find('.', dot + 1), variant.size());
            if (!isWord(variant.substr(dot + 1, next - dot - 1))) {
                return false;
            }
            dot = next;
        }
        return prefix == "c2" && isWord(vendor) && isWord(codec) && (isDecoder() || isEncoder());
    }

    std::string_view prefix;
    std::string_view vendor;
    std::string_view codec;
    std::string_view role;
    std::string_view base;     // These four.
    std::string_view variant;  // What follows, with its dot.
};

// --- In one document ---

void checkMisspeltComponents(const CheckedDocument& checked, const KnownSettings& known,
                             const Emit& emit) {
    std::vector<Misspelling> misspelt;
    forEachEntry(checked, isOfCodecs, [&](const DocumentName& name) {
        const NearNames::Match match = known.components.find(name.text, name.list);
        if (match.isMisspelt()) {
            misspelt.push_back({name.span, match.entry->name,
                                fmt::format("\"{}\" is not a known component. Did you mean \"{}\"?",
                                            name.text, match.entry->name)});
        }
    });
    const auto& codecs = checked.document.content.supportedCodecs;
    emitMisspellings(
            checked, std::move(misspelt),
            [&](const std::string& meant) { return codecs.count(meant) != 0; }, emit);
}

void checkCodecForm(const CheckedDocument& checked, const KnownSettings& known, const Emit& emit) {
    forEachEntry(checked, isOfCodecs, [&](const DocumentName& name) {
        if (!name.text.empty() && !ComponentName(name.text).hasForm() &&
            known.components.find(name.text, name.list).entry == nullptr) {
            emit(checked, name.span,
                 "not of the form of a component name, such as c2.kvx.avc.decoder.secure");
        }
    });
}

bool isAmongDecoders(const DocumentName& name) {
    return name.list == targetSpecAvailableDecoders;
}

// Whether an entry of one of the two lists is a component for the other one.
bool belongsInOtherList(const DocumentName& name, const KnownSettings& known) {
    if (*name.list == '\0') {
        return false;
    }
    const ComponentName component(name.text);
    const CodecComponent* const listed =
            component.hasForm() ? nullptr : known.catalogue.component(name.text);
    return listed != nullptr       ? listed->list != name.list
           : isAmongDecoders(name) ? component.isEncoder()
                                   : component.isDecoder();
}

void checkWrongLists(const CheckedDocument& checked, const KnownSettings& known, const Emit& emit) {
    forEachEntry(checked, isOfCodecs, [&](const DocumentName& name) {
        if (belongsInOtherList(name, known)) {
            emit(checked, name.span,
                 fmt::format("\"{}\" is {}, but it is listed in \"{}\"", name.text,
                             isAmongDecoders(name) ? "an encoder" : "a decoder", name.list));
        }
    });
}

void checkRepeatedComponents(const CheckedDocument& checked, const KnownSettings& /*known*/,
                             const Emit& emit) {
    size_t entries = 0;
    forEachEntry(checked, isOfCodecs, [&](const DocumentName& /*name*/) { ++entries; });
    if (entries == checked.document.content.supportedCodecs.size()) {
        return;
    }
    std::unordered_map<std::string, Span> first;
    forEachEntry(checked, isOfCodecs, [&](const DocumentName& name) {
        const auto [found, isNew] = first.emplace(name.text, name.span);
        if (!isNew) {
            emit(checked, name.span,
                 fmt::format("\"{}\" is listed already, at {}: it counts once", name.text,
                             checked.source.placeOf(found->second.start)),
                 RelatedPlace{&checked.source, found->second, ""});
        }
    });
}

constexpr DocumentRule kCodecRules[] = {
        {{"codec-misspelt", Severity::Warning, "a component that is nearly a known one"},
         checkMisspeltComponents},
        {{"codec-name-form", Severity::Note, "a codec name unlike that of a component"},
         checkCodecForm},
        {{"codec-in-wrong-list", Severity::Warning, "an encoder among decoders, or the reverse"},
         checkWrongLists},
        {{"codec-repeated", Severity::Note, "a component that a document lists twice"},
         checkRepeatedComponents},
};

// --- In the whole load ---

bool isInAnyDocument(const MergedDocuments& documents, const std::string& component) {
    return std::any_of(documents.begin(), documents.end(), [&](const auto& document) {
        return document->document.content.supportedCodecs.count(component) != 0;
    });
}

// A document that only adds components says nothing about those that it does not list.
bool isAddition(const CheckedDocument& document) {
    return isPrivateFile(document) || document.section(targetSpecSupportedCodecs) == nullptr;
}

// The known components that misspelt names mean, and those names: what is missing because of them
// is reported.
std::unordered_set<std::string> misspeltAndMeant(const MergedDocuments& documents,
                                                 const KnownSettings& known) {
    std::unordered_set<std::string> names;
    for (const auto& document : documents) {
        forEachEntry(*document, isOfCodecs, [&](const DocumentName& name) {
            const NearNames::Match match = known.components.find(name.text, name.list);
            if (match.isMisspelt()) {
                names.insert(match.entry->name);
                names.emplace(name.text);
            }
        });
    }
    return names;
}

struct LoneVariant {
    const CheckedDocument* document;
    Span span;
    std::string name;
    std::string base;
};

std::vector<LoneVariant> loneVariants(const MergedDocuments& documents) {
    constexpr std::string_view kVariants[] = {".secure", ".low_latency"};
    std::vector<LoneVariant> lone;
    for (const auto& document : documents) {
        forEachEntry(*document, isOfCodecs, [&](const DocumentName& name) {
            const ComponentName component(name.text);
            const bool isVariant = std::find(std::begin(kVariants), std::end(kVariants),
                                             component.variant) != std::end(kVariants);
            std::string base(isVariant ? component.base : "");
            if (isVariant && component.hasForm() && !isInAnyDocument(documents, base)) {
                lone.push_back(
                        {document.get(), name.span, std::string(name.text), std::move(base)});
            }
        });
    }
    return lone;
}

void checkVariantsWithoutBase(const MergedDocuments& documents, const KnownSettings& known,
                              const Emit& emit) {
    if (documents.size() == 1 && isAddition(*documents.front())) {
        return;
    }
    const std::vector<LoneVariant> lone = loneVariants(documents);
    const std::unordered_set<std::string> reported =
            lone.empty() ? std::unordered_set<std::string>() : misspeltAndMeant(documents, known);
    for (const LoneVariant& one : lone) {
        if (reported.count(one.name) == 0 && reported.count(one.base) == 0) {
            emit(*one.document, one.span,
                 fmt::format("\"{}\" is listed, but \"{}\" is not: a variant without its base",
                             one.name, one.base));
        }
    }
}

// Whether a list may be empty because of something that is reported already.
bool hasLostCodecs(const MergedDocuments& documents, const KnownSettings& known) {
    for (const auto& document : documents) {
        bool isMisplaced = false;
        forEachEntry(*document, isOfCodecs, [&](const DocumentName& name) {
            isMisplaced = isMisplaced || belongsInOtherList(name, known);
        });
        if (isMisplaced) {
            return true;
        }
        for (const KeptFinding& finding : document->document.findings) {
            const Effect effect = rowOf(finding.kind).effect;
            const bool isOfVideo = finding.section.empty();
            const bool isOfCodecSection = finding.section == targetSpecSupportedCodecs ||
                                          finding.section == targetSpecOptionalCodecs;
            if (effect == Effect::Rejects || (effect == Effect::Ignores && isOfVideo) ||
                (effect != Effect::Takes && isOfCodecSection)) {
                return true;
            }
        }
    }
    return false;
}

// At the first section of components that there is.
void emitAtCodecs(const MergedDocuments& documents, const std::string& message, const Emit& emit) {
    for (const auto& document : documents) {
        for (const char* const key : {targetSpecSupportedCodecs, targetSpecOptionalCodecs}) {
            if (const OutlineNode* const section = document->section(key)) {
                emit(*document, section->name, message);
                return;
            }
        }
    }
}

// Of a load it is a separate rule: there the other document may name some.
void checkNoCodecs(const MergedDocuments& documents, const KnownSettings& known, const Emit& emit) {
    const CheckedDocument& alone = *documents.front();
    if (documents.size() != 1 || !alone.document.content.supportedCodecs.empty() ||
        hasLostCodecs(documents, known)) {
        return;
    }
    emitAtCodecs(documents, "no codec component is named: that enables every component", emit);
}

void checkOneKind(const MergedDocuments& documents, const KnownSettings& known, const Emit& emit) {
    size_t decoders = 0;
    size_t encoders = 0;
    for (const auto& document : documents) {
        for (const std::string& name : document->document.content.supportedCodecs) {
            const ComponentName component(name);
            decoders += component.isDecoder() ? 1 : 0;
            encoders += component.isEncoder() ? 1 : 0;
        }
    }
    const bool isOneKind = (decoders == 0) != (encoders == 0);
    if (!isOneKind || (documents.size() == 1 && isAddition(*documents.front())) ||
        hasLostCodecs(documents, known)) {
        return;
    }
    emitAtCodecs(documents,
                 fmt::format("only {}coders are listed, and not one {}coder",
                             encoders == 0 ? "de" : "en", encoders == 0 ? "en" : "de"),
                 emit);
}

constexpr DocumentsRule kCodecMergeRules[] = {
        {{"no-codecs", Severity::Warning, "codec sections that name no component: all are enabled"},
         checkNoCodecs},
        {{"variant-without-base", Severity::Warning,
          "a secure or low-latency component without the one that it is a variant of"},
         checkVariantsWithoutBase},
        {{"codecs-of-one-kind", Severity::Note, "only decoders, or only encoders"}, checkOneKind},
};

}  // namespace

void applyCodecRules(const CheckedDocument& document, const KnownSettings& known, Report* report) {
    applyRows(kCodecRules, report, document, known);
}

void applyCodecMergeRules(const MergedDocuments& documents, const KnownSettings& known,
                          Report* report) {
    applyRows(kCodecMergeRules, report, documents, known);
}

std::vector<const Rule*> codecRules() {
    return rulesOf(kCodecRules);
}

std::vector<const Rule*> codecMergeRules() {
    return rulesOf(kCodecMergeRules);
}

}  // namespace kc2::tool
