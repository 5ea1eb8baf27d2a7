// Names of codec components: misspelt, in the wrong list, and what the lists result in.

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "check/rules/Entries.h"
#include "check/rules/Misspellings.h"
#include "check/rules/Rules.h"

namespace kc2::tool {

namespace {

// The parts of a name between its dots, as far as rules look at them.
struct ComponentName {
    explicit ComponentName(std::string_view text) : name(text) {
        size_t start = 0;
        size_t limit = 0;
        for (int part = 0; part < kParts; ++part) {
            start = std::min(part == 0 ? 0 : limit + 1, name.size());
            limit = std::min(name.find('.', start), name.size());
        }
        role = name.substr(start, limit - start);
        base = name.substr(0, limit);
        variant = name.substr(limit);
    }

    bool isDecoder() const { return role == "decoder"; }
    bool isEncoder() const { return role == "encoder"; }

    // c2.<vendor>.<codec>.<decoder or encoder>, and what distinguishes components of one codec.
    bool hasForm() const {
        const auto isOfParts = [](char c) {
            return (c >= 'a' && c <= 'z') || isDigit(c) || c == '_' || c == '-' || c == '.';
        };
        return name.starts_with("c2.") && (isDecoder() || isEncoder()) &&
               std::all_of(name.begin(), name.end(), isOfParts) &&
               name.find("..") == std::string_view::npos && !name.ends_with('.');
    }

    static constexpr int kParts = 4;

    std::string_view name;
    std::string_view role;     // The last of four parts.
    std::string_view base;     // These four.
    std::string_view variant;  // What follows, with its dot.
};

// --- In one document ---

void checkComponentNames(const Document& document, const KnownSettings& known, Report* report) {
    std::vector<Misspelling> misspelt;
    forEachEntry(document, isOfCodecs, [&](const DocumentName& name) {
        const NearNames::Match match = known.components.find(name.text, name.list);
        if (match.isMisspelt()) {
            misspelt.push_back({name.span, match.entry->name,
                                fmt::format("\"{}\" is not a known component. Did you mean {}?",
                                            name.text, meantBy(match)),
                                match.isCertain});
        } else if (match.entry == nullptr && !name.text.empty() &&
                   !ComponentName(name.text).hasForm() && !isSeveralInOne(name.text)) {
            report->add("codec-name-form", document, name.span,
                        "not of the form of a component name, such as c2.kvx.avc.decoder.secure");
        }
    });
    const auto& codecs = document.content.supportedCodecs;
    reportMisspellings(
            "codec-misspelt", document, std::move(misspelt),
            [&](const std::string& meant) { return codecs.count(meant) != 0; }, report);
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

void checkVariantsWithoutBase(const Checked& checked, Report* report) {
    if (checked.isAlone() && isAddition(*checked.documents.front())) {
        return;
    }
    std::optional<std::unordered_set<std::string>> reported;  // Once a name needs it.
    const auto checkName = [&](const Document& document, const DocumentName& name) {
        const ComponentName component(name.text);
        const std::string base(component.base);
        if (!component.hasForm() || checked.whole().supportedCodecs.contains(base)) {
            return;
        }
        if (!reported) {
            reported = misspeltAndMeant(checked);
        }
        if (!reported->contains(std::string(name.text)) && !reported->contains(base)) {
            report->add(
                    "variant-without-base", document, name.span,
                    fmt::format("\"{}\" is listed, but \"{}\" is not: a variant without its base",
                                name.text, base));
        }
    };
    for (const Document* const document : checked.documents) {
        forEachEntry(*document, isOfCodecs, [&](const DocumentName& name) {
            if (std::find(std::begin(kComponentVariants), std::end(kComponentVariants),
                          ComponentName(name.text).variant) != std::end(kComponentVariants)) {
                checkName(*document, name);
            }
        });
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
        checkComponentNames(document, checked.known, report);
        checkWrongLists(document, checked.known, report);
        checkRepeatedComponents(document, report);
    });
    checkNoCodecs(checked, report);
    checkVariantsWithoutBase(checked, report);
    checkOneKind(checked, report);
}

}  // namespace kc2::tool
