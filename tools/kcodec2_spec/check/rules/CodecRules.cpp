// Names of codec components: misspelt, in the wrong list, and what the lists result in.

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/Spelling.h"
#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Misspellings.h"
#include "check/rules/Rules.h"

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

void checkMisspeltComponents(const Document& document, const KnownSettings& known, Report* report) {
    std::vector<Misspelling> misspelt;
    forEachEntry(document, isOfCodecs, [&](const DocumentName& name) {
        const NearNames::Match match = known.components.find(name.text, name.list);
        if (match.isMisspelt()) {
            misspelt.push_back({name.span, match.entry->name,
                                fmt::format("\"{}\" is not a known component. Did you mean {}?",
                                            name.text, meantBy(match)),
                                match.isCertain});
        }
    });
    const auto& codecs = document.content.supportedCodecs;
    reportMisspellings(
            "codec-misspelt", document, std::move(misspelt),
            [&](const std::string& meant) { return codecs.count(meant) != 0; }, report);
}

void checkCodecForm(const Document& document, const KnownSettings& known, Report* report) {
    forEachEntry(document, isOfCodecs, [&](const DocumentName& name) {
        if (!name.text.empty() && !ComponentName(name.text).hasForm() &&
            !isSeveralInOne(name.text) &&
            known.components.find(name.text, name.list).entry == nullptr) {
            report->add("codec-name-form", document, name.span,
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

void checkWrongLists(const Document& document, const KnownSettings& known, Report* report) {
    forEachEntry(document, isOfCodecs, [&](const DocumentName& name) {
        if (belongsInOtherList(name, known)) {
            report->add("codec-in-wrong-list", document, name.span,
                        fmt::format("\"{}\" is {}, but it is listed in \"{}\"", name.text,
                                    isAmongDecoders(name) ? "an encoder" : "a decoder", name.list));
        }
    });
}

void checkRepeatedComponents(const Document& document, Report* report) {
    size_t entries = 0;
    forEachEntry(document, isOfCodecs, [&](const DocumentName& /*name*/) { ++entries; });
    if (entries == document.content.supportedCodecs.size()) {
        return;
    }
    std::unordered_map<std::string, Span> first;
    forEachEntry(document, isOfCodecs, [&](const DocumentName& name) {
        const auto [found, isNew] = first.emplace(name.text, name.span);
        if (!isNew) {
            report->add("codec-repeated", document, name.span,
                        fmt::format("\"{}\" is listed already, at {}: once is enough", name.text,
                                    document.source.positionText(found->second.start)),
                        besides(document.source, found->second));
        }
    });
}

// --- In the whole load ---

// A document that only adds components says nothing about those that it does not list.
bool isAddition(const Document& document) {
    return isPrivateFile(document) || document.section(targetSpecSupportedCodecs) == nullptr;
}

// The known components that misspelt names mean, and those names: what is missing because of them
// is reported already.
std::unordered_set<std::string> misspeltAndMeant(const Checked& checked) {
    std::unordered_set<std::string> names;
    for (const Document* const document : checked.documents) {
        forEachEntry(*document, isOfCodecs, [&](const DocumentName& name) {
            const NearNames::Match match = checked.known.components.find(name.text, name.list);
            if (match.isMisspelt()) {
                names.insert(match.entry->name);
                names.insert(match.other != nullptr ? match.other->name : "");
                names.emplace(name.text);
            }
        });
    }
    return names;
}

struct LoneVariant {
    const Document* document;
    Span span;
    std::string name;
    std::string base;
};

std::vector<LoneVariant> loneVariants(const Checked& checked) {
    const auto& codecs = checked.whole().supportedCodecs;
    std::vector<LoneVariant> lone;
    for (const Document* const document : checked.documents) {
        forEachEntry(*document, isOfCodecs, [&](const DocumentName& name) {
            const ComponentName component(name.text);
            const bool isVariant =
                    std::find(std::begin(kComponentVariants), std::end(kComponentVariants),
                              component.variant) != std::end(kComponentVariants);
            std::string base(isVariant ? component.base : "");
            if (isVariant && component.hasForm() && codecs.count(base) == 0) {
                lone.push_back({document, name.span, std::string(name.text), std::move(base)});
            }
        });
    }
    return lone;
}

void checkVariantsWithoutBase(const Checked& checked, Report* report) {
    if (checked.isAlone() && isAddition(*checked.documents.front())) {
        return;
    }
    const std::vector<LoneVariant> lone = loneVariants(checked);
    const std::unordered_set<std::string> reported =
            lone.empty() ? std::unordered_set<std::string>() : misspeltAndMeant(checked);
    for (const LoneVariant& one : lone) {
        if (reported.count(one.name) == 0 && reported.count(one.base) == 0) {
            report->add(
                    "variant-without-base", *one.document, one.span,
                    fmt::format("\"{}\" is listed, but \"{}\" is not: a variant without its base",
                                one.name, one.base));
        }
    }
}

// Whether a list may be empty because of something that is reported already.
bool hasLostCodecs(const Checked& checked) {
    for (const Document* const document : checked.documents) {
        bool isMisplaced = false;
        forEachEntry(*document, isOfCodecs, [&](const DocumentName& name) {
            isMisplaced = isMisplaced || belongsInOtherList(name, checked.known);
        });
        if (isMisplaced) {
            return true;
        }
        for (const Verdict& verdict : document->verdicts) {
            const Effect effect = rowOf(verdict.kind).effect;
            const bool isOfVideo = verdict.section.empty();
            const bool isOfCodecSection = verdict.section == targetSpecSupportedCodecs ||
                                          verdict.section == targetSpecOptionalCodecs;
            if (effect == Effect::Rejects || (effect == Effect::Ignores && isOfVideo) ||
                (effect != Effect::Takes && isOfCodecSection)) {
                return true;
            }
        }
    }
    return false;
}

// At the first section of components.
void reportAtCodecs(CheckId check, const Checked& checked, const std::string& message,
                    Report* report) {
    for (const Document* const document : checked.documents) {
        for (const char* const key : {targetSpecSupportedCodecs, targetSpecOptionalCodecs}) {
            if (const Node* const section = document->section(key)) {
                report->add(check, *document, section->name, message);
                return;
            }
        }
    }
}

// A load has its own check: there the other document may name some.
void checkNoCodecs(const Checked& checked, Report* report) {
    if (checked.isAlone() && checked.whole().supportedCodecs.empty() && !hasLostCodecs(checked)) {
        reportAtCodecs("no-codecs", checked,
                       "no codec component is named: that enables every component", report);
    }
}

void checkOneKind(const Checked& checked, Report* report) {
    size_t decoders = 0;
    size_t encoders = 0;
    for (const std::string& name : checked.whole().supportedCodecs) {
        const ComponentName component(name);
        decoders += component.isDecoder() ? 1 : 0;
        encoders += component.isEncoder() ? 1 : 0;
    }
    const bool isOneKind = (decoders == 0) != (encoders == 0);
    if (!isOneKind || (checked.isAlone() && isAddition(*checked.documents.front())) ||
        hasLostCodecs(checked)) {
        return;
    }
    reportAtCodecs("codecs-of-one-kind", checked,
                   encoders == 0 ? "only decoders are listed, and no encoders"
                                 : "only encoders are listed, and no decoders",
                   report);
}

}  // namespace

void checkCodecs(const Checked& checked, Report* report) {
    checked.forEachWritten([&](const Document& document) {
        checkMisspeltComponents(document, checked.known, report);
        checkCodecForm(document, checked.known, report);
        checkWrongLists(document, checked.known, report);
        checkRepeatedComponents(document, report);
    });
    checkNoCodecs(checked, report);
    checkVariantsWithoutBase(checked, report);
    checkOneKind(checked, report);
}

}  // namespace kc2::tool
