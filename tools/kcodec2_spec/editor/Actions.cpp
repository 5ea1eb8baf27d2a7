// What an editor shows of a document, and what it may do to it.

#include "editor/Actions.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "base/Spelling.h"
#include "base/Text.h"
#include "document/Tokens.h"
#include "editor/EditorJson.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr char kQuickFix[] = "quickfix";
constexpr char kFixAll[] = "source.fixAll";

// Whether the editor wants actions of this kind: "source" is for "source.fixAll", too.
bool isWanted(const Json::Value& only, const std::string& kind) {
    return !only.isArray() || std::any_of(only.begin(), only.end(), [&](const Json::Value& one) {
        const std::string wanted = textOf(one);
        return wanted.empty() || kind == wanted || kind.starts_with(wanted + ".");
    });
}

Json::Value actionOf(const OpenDocument& document, const std::string& title, const char* kind,
                     Json::Value edits) {
    Json::Value action;
    action["title"] = title;
    action["kind"] = kind;
    action["edit"]["changes"][document.uri] = std::move(edits);
    return action;
}

void addFixAction(const OpenDocument& document, const EditorFinding& finding,
                  Json::Value* actions) {
    if (finding.fixes.empty()) {
        return;
    }
    Json::Value edits(Json::arrayValue);
    std::vector<std::string> titles;
    for (const Fix& fix : finding.fixes) {
        edits.append(editToJson(*document.lines, fix.span, fix.replacement));
        const std::string what = escaped(fix.what);
        if (std::find(titles.begin(), titles.end(), what) == titles.end()) {
            titles.push_back(what);
        }
    }
    Json::Value action = actionOf(document, joined(titles, ", "), kQuickFix, std::move(edits));
    action["diagnostics"].append(finding.diagnostic);
    action["isPreferred"] = true;
    actions->append(std::move(action));
}

// A comment on the line above. It must not be within a string or a comment, and must suppress the
// finding.
void addSuppression(const OpenDocument& document, const EditorFinding& finding,
                    Json::Value* actions) {
    if (finding.isForFile || finding.check->isRejection || isUnusedSuppression(*finding.check)) {
        return;
    }
    const Source& source = document.document->source;
    const size_t start = source.startOf(source.lineOf(finding.span.start));
    const size_t text =
            std::min(document.text.find_first_not_of(" \t", start), document.text.size());
    const bool hasReturn = document.text.find("\r\n") != std::string::npos;
    const std::string comment = fmt::format("// kcodec2_spec: allow {}", finding.check->id);
    const std::string line = fmt::format("{}{}{}", document.text.substr(start, text - start),
                                         comment, hasReturn ? "\r\n" : "\n");
    const Document changed({document.document->origin, document.document->path},
                           std::string(document.text).insert(start, line));
    Suppressions suppressions(changed.source, changed.comments);
    if (!changed.isJson() || changed.isAccepted != document.document->isAccepted ||
        changed.comments.size() != document.document->comments.size() + 1 ||
        !suppressions.suppress(*finding.check, finding.span.start + line.size())) {
        return;
    }
    Json::Value edits;
    edits.append(editToJson(*document.lines, {start, start}, line));
    Json::Value action = actionOf(document, comment, kQuickFix, std::move(edits));
    action["diagnostics"].append(finding.diagnostic);
    actions->append(std::move(action));
}

size_t startOfLineAt(const std::string& text, size_t offset) {
    const size_t end = offset == 0 ? std::string::npos : text.rfind('\n', offset - 1);
    return end == std::string::npos ? 0 : end + 1;
}

// One edit, of what lies between the equal ends of both texts.
void addFixAllAction(const OpenDocument& document, const CheckOptions& options,
                     Json::Value* actions) {
    const std::string after = withSafeFixes(*document.document, options);
    const std::string& before = document.text;
    if (after == before) {
        return;
    }
    const auto [left, right] =
            std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto same = static_cast<size_t>(left - before.begin());
    const size_t start = startOfLineAt(before, same);  // Whole lines: no character is cut.
    size_t kept = 0;
    const size_t most = std::min(before.size(), after.size()) - start;
    for (size_t end = 1; end <= most && before[before.size() - end] == after[after.size() - end];
         ++end) {
        kept = before[before.size() - end] == '\n' ? end - 1 : kept;
    }
    Json::Value edits;
    edits.append(editToJson(*document.lines, {start, before.size() - kept},
                            after.substr(start, after.size() - kept - start)));
    actions->append(actionOf(document, "Fix all", kFixAll, std::move(edits)));
}

// --- Symbols
// --------------------------------------------------------------------------------------

// The numbers that the protocol gives these kinds.
int symbolKindOf(const Node& node) {
    return node.isObject()   ? 19
           : node.isArray()  ? 18
           : node.isString() ? 15
           : node.isNumber() ? 16
                             : 17;
}

void addSymbols(const OpenDocument& document, const Node& object, size_t depth, bool isFlat,
                Json::Value* symbols) {
    constexpr size_t kMostSymbolLevels = 4;  // Root, "Video", a section, its members.
    if (!object.isObject() || depth == kMostSymbolLevels) {
        return;
    }
    for (const Node& member : object.children) {
        const Json::Value range =
                rangeToJson(*document.lines, {member.name.start, member.value.limit});
        Json::Value symbol;
        symbol["name"] = member.key.empty() ? "\"\"" : escaped(member.key);
        symbol["kind"] = symbolKindOf(member);
        if (isFlat) {
            symbol["location"]["uri"] = document.uri;
            symbol["location"]["range"] = range;
            symbols->append(std::move(symbol));
            addSymbols(document, member, depth + 1, isFlat, symbols);
            continue;
        }
        symbol["range"] = range;
        symbol["selectionRange"] = rangeToJson(*document.lines, member.name);
        Json::Value children(Json::arrayValue);
        addSymbols(document, member, depth + 1, isFlat, &children);
        symbol["children"] = std::move(children);
        symbols->append(std::move(symbol));
    }
}

}  // namespace

Json::Value codeActions(const OpenDocument& document, Span range, const Json::Value& only,
                        const CheckOptions& options) {
    constexpr size_t kMostSuppressions = 20;  // Each is tried first.
    Json::Value actions(Json::arrayValue);
    size_t suppressions = 0;
    for (const EditorFinding& finding : document.findings) {
        const bool isAtRange = finding.span.start <= range.limit &&
                               std::max(finding.span.start, finding.span.limit) >= range.start;
        if (!isAtRange || !isWanted(only, kQuickFix)) {
            continue;
        }
        addFixAction(document, finding, &actions);
        if (suppressions++ < kMostSuppressions) {
            addSuppression(document, finding, &actions);
        }
    }
    if (isWanted(only, kFixAll)) {
        addFixAllAction(document, options, &actions);
    }
    return actions;
}

Json::Value documentSymbols(const OpenDocument& document, bool isFlat) {
    Json::Value symbols(Json::arrayValue);
    addSymbols(document, document.document->tree.root, 0, isFlat, &symbols);
    return symbols;
}

}  // namespace kc2::tool
