// The findings as lists of the page, the errors first.

#include "report/FindingList.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "device/DevicePaths.h"
#include "report/Html.h"

namespace kc2::tool {

namespace {

constexpr size_t kMostPlaces = 20;      // Of one finding.
constexpr size_t kMostNamesInLine = 8;  // Of variants; more can be folded.
constexpr size_t kMostNamesOfPage = 20'000;

// Where equal findings are: in documents of several variants, at the same line.
struct FindingPlace {
    const ReportEntry* first;
    size_t documents = 0;
    std::vector<size_t> loads = {};  // Sorted.
};

class FindingList {
public:
    FindingList(const PageContent& content, const FindingRows& findings)
        : mContent(content), mFindings(findings), mColumnOf(content.checked.variants.size()) {
        for (size_t column = 0; column < content.columns.size(); ++column) {
            for (const size_t variant : content.columns[column].variants) {
                mColumnOf[variant] = column;
            }
        }
    }

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
        return std::move(mList);
    }

private:
    template <typename... Values>
    void add(fmt::format_string<Values...> text, Values&&... values) {
        fmt::format_to(std::back_inserter(mList), text, std::forward<Values>(values)...);
    }

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
        mList += "</ol>\n</div>\n";
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
        mList += "</li>\n";
    }

    // Without the blanks that the line and its marks both begin with: a phone has no room for them.
    static std::string excerptForPage(const ReportEntry& entry) {
        std::vector<std::string> lines;
        const std::string text = excerptOf(entry);
        for (size_t at = 0; at < text.size();) {  // A line end is markup here, not a byte.
            const size_t end = std::min(text.find('\n', at), text.size());
            lines.push_back(text.substr(at, end - at));
            at = end + 1;
        }
        const size_t bar = lines.empty() ? std::string::npos : lines[0].find("| ");
        const size_t start = bar == std::string::npos ? 0 : bar + 2;
        size_t indentation = start == 0 ? 0 : text.size();
        for (const std::string& line : lines) {
            const size_t first = std::min(line.find_first_not_of(' ', start), line.size());
            indentation = std::min(indentation, first - std::min(start, first));
        }
        std::string excerpt;
        for (std::string& line : lines) {
            excerpt.append(html(line.erase(std::min(start, line.size()), indentation)))
                    .append("\n");
        }
        return excerpt;
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
            place->second.loads.insert(place->second.loads.end(), loads.begin(), loads.end());
            ++place->second.documents;
        }
        for (size_t i = 0; i < std::min(order.size(), kMostPlaces); ++i) {
            writePlace(order[i], &places.at(order[i]));
        }
        if (order.size() > kMostPlaces) {
            add("<p class=\"place\">and {}</p>\n",
                counted(order.size() - kMostPlaces, "more place"));
        }
    }

    void writePlace(const std::string& pattern, FindingPlace* place) {
        std::vector<size_t>& loads = place->loads;
        std::sort(loads.begin(), loads.end());
        loads.erase(std::unique(loads.begin(), loads.end()), loads.end());
        const ReportEntry& first = *place->first;
        const std::string text =
                place->documents > 1 ? pattern : first.source->path() + positionOf(first);
        const std::string variants = variantsText(loads);
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
        const std::string& variant = mContent.checked.variants[loads[0]];
        for (const std::string directory : {kOdmSpecDirectory, kVendorSpecDirectory}) {
            const std::string end = directory + variant + kSystemSpecName;
            if (path.ends_with(end)) {
                return path.substr(0, path.size() - end.size()) + directory + "<variant>" +
                       kSystemSpecName;
            }
        }
        return path;
    }

    // Which variants these are: all, those of whole columns, or by name.
    std::string variantsText(const std::vector<size_t>& loads) {
        const CheckedVariants& checked = mContent.checked;
        if (loads.empty() || checked.variants.size() == 1) {
            return std::string();
        }
        if (loads.size() == checked.variants.size()) {
            return "every variant";
        }
        std::map<size_t, std::vector<size_t>> byColumn;
        for (const size_t load : loads) {
            byColumn[mColumnOf[load]].push_back(load);
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
    std::vector<size_t> mColumnOf;  // By variant.
    size_t mWritten = 0;
    size_t mRoom = kMostNamesOfPage;
    std::string mList;
};

}  // namespace

std::string findingList(const PageContent& content, const FindingRows& findings) {
    return FindingList(content, findings).write();
}

}  // namespace kc2::tool
