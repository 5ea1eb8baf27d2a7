// How the rules of a table add what they find, and how a table is applied.
#pragma once

#include <string>
#include <utility>

#include "check/Report.h"
#include "check/Rule.h"
#include "check/rules/Rules.h"

namespace kc2::tool {

// Adds findings of one rule.
class Emit {
public:
    Emit(const Rule& rule, Report* report) : mRule(rule), mReport(*report) {}

    void operator()(const CheckedDocument& document, Span span, std::string message,
                    FindingDetails details = {}) const {
        mReport.add(mRule, document.source, span, std::move(message), std::move(details));
    }

    // One with a second place that it is about.
    void operator()(const CheckedDocument& document, Span span, std::string message,
                    RelatedPlace related) const {
        FindingDetails details = {};
        details.related.push_back(std::move(related));
        (*this)(document, span, std::move(message), std::move(details));
    }

    void forFile(const CheckedDocument& document, std::string message) const {
        mReport.addForFile(mRule, document.source, std::move(message));
    }

private:
    const Rule& mRule;
    Report& mReport;
};

// A row of a table of rules: what the rule is, and the function that looks at the inputs.
template <typename... Inputs>
struct RuleRow {
    Rule rule;
    void (*check)(const Inputs&... inputs, const Emit& emit);
};

using DocumentRule = RuleRow<CheckedDocument, KnownSettings>;
using DocumentsRule = RuleRow<MergedDocuments, KnownSettings>;

// Calls the function of each row with what the rules of the table look at.
template <typename Row, size_t N, typename... Inputs>
void applyRows(const Row (&rows)[N], Report* report, const Inputs&... inputs) {
    for (const Row& row : rows) {
        row.check(inputs..., Emit(row.rule, report));
    }
}

}  // namespace kc2::tool
