// The findings of a report as a page lists them: the worst first, equal ones once.

#include "report/FindingList.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "check/output/Excerpt.h"
#include "report/Html.h"

namespace kc2::tool {

namespace {

constexpr size_t kExcerptColumns = 100;
constexpr size_t kMostPlaces = 20;      // Of one finding.
constexpr size_t kMostNamesInLine = 8;  // Of variants; more can be folded.
constexpr size_t kMostNamesOfPage = 20'000;

// The message without the names of the variants that have the finding.
std::string_view ownMessageOf(const ReportEntry& entry) {
    const std::string_view message = entry.message;
    return entry.details == nullptr || entry.details->loads.empty()
                   ? message
                   : message.substr(0, entry.details->ownMessage);
}

// The line that it is in, with marks under what is wrong; empty for one about a whole file.
std::string excerptOf(const ReportEntry& entry) {
    return entry.isForFile ? std::string() : excerptOf(*entry.source, entry.span, kExcerptColumns);
}

// What equal findings have in common, but for their lines.
std::string commonTextOf(const ReportEntry& entry) {
    const std::string text = fmt::format("{}\n{}", entry.check->id, ownMessageOf(entry));
    if (entry.severity == Severity::Note) {
        return text;
    }
    const Source::Position position = entry.source->positionOf(entry.span.start);
    return fmt::format("{}:{} {}", position.line, position.column, text);
}

bool isInEqualLine(const ReportEntry& a, const ReportEntry& b) {
    return a.severity == Severity::Note ||
           (a.isForFile == b.isForFile && excerptOf(a) == excerptOf(b));
}

// Where equal findings are: in documents of several variants, at the same line.
struct FindingPlace {
    const ReportEntry* first;
    size_t documents = 0;
    std::set<size_t> loads = {};
};

class FindingList final : private HtmlWriter {
public:
    FindingList(const PageContent& content, const FindingRows& findings)
        : mContent(content), mFindings(findings) {}

    std::string write() {
        auto row = mFindings.rows.begin();
        while (row != mFindings.rows.end()) {
            const auto limit = std::find_if(
                    row, mFindings.rows.end(),
                    [row](const FindingRow& other) { return other.severity != row->severity; });
            writeSeverity({&*row, static_cast<size_t>(limit - row)});
            row = limit;
        }
        if (mFindings.notShown != 0) {
            add("<p>{} not shown, none more severe than these. kcodec2_spec check --all-variants "
                "prints all.</p>\n",
                counted(mFindings.notShown, "finding"));
        }
        return std::move(mPage);
    }

private:
    void writeSeverity(std::span<const FindingRow> rows) {
        const char* const name = nameOf(rows[0].severity);
        const size_t count = mContent.checked.report.count(rows[0].severity);
        add("<h3 id=\"{0}s\" class=\"{0}\">{1}{2}</h3>\n<div class=\"scroll\" role=\"region\" "
            "tabindex=\"0\" aria-labelledby=\"{0}s\">\n<ol class=\"findings\">\n",
            name, counted(count, name),
            rows.size() < count ? fmt::format(", {} distinct", rows.size()) : "");
        for (const FindingRow& row : rows) {
            writeRow(row);
        }
        mPage += "</ol>\n</div>\n";
    }

    void writeRow(const FindingRow& row) {
        const ReportEntry& first = *row.entries[0];
        add("<li id=\"finding-{}\"><p>{}{} <code class=\"check\" title=\"{}\">{}</code></p>\n",
            mWritten++, row.entries.size() == 1 ? "" : fmt::format("{} × ", row.entries.size()),
            html(ownMessageOf(first)), html(first.check->summary), first.check->id);
        writePlaces(row);
        if (!first.isForFile) {
            add("<pre>{}</pre>\n", excerptForPage(first));
        }
        if (first.details != nullptr) {
            for (const RelatedPlace& related : first.details->related) {
                if (!related.message.empty()) {  // Otherwise the finding's message names the place.
                    add("<p><code>{}</code> {}</p>\n",
                        htmlOfName(related.source->placeOf(related.span.start)),
                        html(related.message));
                }
            }
        }
        mPage += "</li>\n";
    }

    // Without the blanks that the line and its marks both begin with: a phone has no room for them.
    static std::string excerptForPage(const ReportEntry& entry) {
        const std::string text = excerptOf(entry);           // Both lines.
        std::string line = text.substr(0, text.find('\n'));  // A line end is markup, not a byte.
        std::string marks = text.substr(line.size() + 1);
        marks.pop_back();
        const size_t start = line.find("| ") + 2;
        const size_t blanks =
                std::min(line.find_first_not_of(' ', start), marks.find_first_not_of(' ', start)) -
                start;
        return fmt::format("{}\n{}\n", html(line.erase(start, blanks)),
                           html(marks.erase(start, blanks)));
    }

    void writePlaces(const FindingRow& row) {
        std::vector<std::string> order;
        std::map<std::string, FindingPlace> places;
        for (const ReportEntry* const entry : row.entries) {
            const std::string text = patternOf(*entry) + positionOf(*entry);
            const auto [place, isNew] = places.emplace(text, FindingPlace{entry});
            if (isNew) {
                order.push_back(text);
            }
            const std::vector<size_t>& loads = loadsOf(*entry);
            place->second.loads.insert(loads.begin(), loads.end());
            ++place->second.documents;
        }
        for (size_t i = 0; i < std::min(order.size(), kMostPlaces); ++i) {
            writePlace(order[i], places.at(order[i]));
        }
        if (order.size() > kMostPlaces) {
            add("<p class=\"place\">and {}</p>\n",
                counted(order.size() - kMostPlaces, "more place"));
        }
    }

    void writePlace(const std::string& pattern, const FindingPlace& place) {
        const ReportEntry& first = *place.first;
        const std::string text =
                place.documents > 1 ? pattern : first.source->path() + positionOf(first);
        const std::string variants = variantsText(place.loads);
        const bool isBeside = !variants.empty() && !variants.starts_with("<details");
        add("<div class=\"place\"><code>{}</code>{}{}</div>\n", htmlOfName(text),
            isBeside ? " · " : "", variants);
    }

    static std::string positionOf(const ReportEntry& entry) {
        if (entry.isForFile) {
            return std::string();
        }
        const Source::Position position = entry.source->positionOf(entry.span.start);
        return fmt::format(":{}:{}", position.line, position.column);
    }

    // The document's path, without the name of the only variant that selects it.
    std::string patternOf(const ReportEntry& entry) const {
        const std::string& path = entry.source->path();
        const std::vector<size_t>& loads = loadsOf(entry);
        if (loads.size() != 1) {
            return path;
        }
        return withAnyVariant(path, mContent.checked.variants[loads[0]]);
    }

    // Which variants these are: all, those of whole columns, or by name.
    std::string variantsText(const std::set<size_t>& loads) {
        const CheckedVariants& checked = mContent.checked;
        if (loads.empty() || checked.variants.size() == 1) {
            return std::string();
        }
        if (loads.size() == checked.variants.size()) {
            return "every variant";
        }
        std::map<size_t, std::vector<size_t>> byColumn;
        for (const size_t load : loads) {
            byColumn[mContent.columnOf[load]].push_back(load);
        }
        std::vector<std::string> names;
        for (const auto& [column, variants] : byColumn) {
            addNames(column, variants, &names);
        }
        if (names.size() > mRoom) {
            return counted(loads.size(), "variant");
        }
        mRoom -= names.size();
        const std::string all = joined(names, ", ");
        return names.size() <= kMostNamesInLine
                       ? all
                       : fmt::format("<details open><summary>{}</summary>{}</details>",
                                     counted(loads.size(), "variant"), all);
    }

    void addNames(size_t index, const std::vector<size_t>& variants,
                  std::vector<std::string>* names) const {
        const LoadColumn& column = mContent.columns[index];
        if (variants.size() > 1 && variants.size() == column.variants.size()) {
            names->push_back(fmt::format("<a href=\"#load-{}\">{}</a>", index,
                                         titleForPage(mContent.checked, column)));
            return;
        }
        for (const size_t variant : variants) {
            names->push_back(variantForPage(mContent.checked, variant));
        }
    }

    const PageContent& mContent;
    const FindingRows& mFindings;
    size_t mWritten = 0;
    size_t mRoom = kMostNamesOfPage;
};

}  // namespace

FindingRows findingRowsOf(const Report& report, size_t mostRows) {
    FindingRows result;
    std::vector<const ReportEntry*> entries = report.inOrder();
    const auto severityOf = [](const ReportEntry* entry) {
        return -static_cast<int>(entry->severity);
    };
    std::stable_sort(entries.begin(), entries.end(),
                     [&](const auto* a, const auto* b) { return severityOf(a) < severityOf(b); });
    std::unordered_map<std::string, size_t> places;
    for (const ReportEntry* const entry : entries) {
        std::string text = commonTextOf(*entry);
        const auto known = places.find(text);
        if (known != places.end() &&
            isInEqualLine(*result.rows[known->second].entries[0], *entry)) {
            result.rows[known->second].entries.push_back(entry);
        } else if (result.rows.size() < mostRows) {
            places.emplace(std::move(text), result.rows.size());
            result.rows.push_back({entry->severity, {entry}});
        } else {
            ++result.notShown;
        }
    }
    return result;
}

const std::vector<size_t>& loadsOf(const ReportEntry& entry) {
    static const std::vector<size_t> kNone;
    return entry.details != nullptr ? entry.details->loads : kNone;
}

std::string findingList(const PageContent& content, const FindingRows& findings) {
    return FindingList(content, findings).write();
}

}  // namespace kc2::tool
