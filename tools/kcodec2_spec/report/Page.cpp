// The page of an image: its variants side by side, their bit rates, and the checker's findings.

#include "report/Page.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/Text.h"
#include "platform/Version.h"
#include "report/FindingList.h"
#include "report/Html.h"
#include "report/Matrix.h"
#include "report/PageParts.h"
#include "store/Load.h"

namespace kc2::tool {

namespace {

// Browsers open a page of some 50 MiB; the page says what is left out.
constexpr size_t kMostFindings = 2'000;
constexpr size_t kMostCharts = 24;

// In a path that several variants have.

// Even if a text got past html(), it could neither run nor load anything. The policy has the hash
// of the script; scripts/check-report.py compares the two.
constexpr char kPolicy[] =
        "default-src 'none'; style-src 'unsafe-inline'; img-src data:; base-uri 'none'; "
        "form-action 'none'; script-src 'sha256-UrKDJPrASQN1BsRISAvKjYeOqoED2kArBk4N+ppwqP0='";

class PageWriter final : private HtmlWriter {
public:
    explicit PageWriter(const PageContent& content)
        : mContent(content),
          mMatrix(matrixOf(content.columns)),
          mFindings(findingRowsOf(content.checked.report, kMostFindings)) {
        for (const MatrixSection& section : mMatrix) {
            mRows += section.rows.size();
            mDifferences += section.differences;
        }
    }

    std::string write() {
        writeHead();
        writeLoads();
        writeMatrix();
        writeCharts();
        writeFindings();
        add("</main>\n<footer>Written by kcodec2_spec {}.</footer>\n<script>{}</script>\n</body>\n"
            "</html>\n",
            // The policy has the hash of the file; an embedded text starts with another newline.
            KC2_VERSION, std::string_view(kPageScript).substr(1));
        return std::move(mPage);
    }

private:
    const Report& report() const { return mContent.checked.report; }
    std::string titleOf(const LoadColumn& column) const {
        return titleForPage(mContent.checked, column);
    }

    void writeHead() {
        const std::string device = html(mContent.device);
        add("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<meta http-equiv=\"Content-Security-Policy\" content=\"{}\">\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta name=\"color-scheme\" content=\"light dark\">\n"
            "<link rel=\"icon\" href=\"data:,\">\n<title>{} – target specification</title>\n"
            "<style>\n{}</style>\n</head>\n<body>\n"
            "<a class=\"skip\" href=\"#matrix\">Skip to the matrix</a>\n<header>\n"
            "<h1><span>Target specification</span> <code>{}</code></h1>\n",
            kPolicy, device, kPageStyle, device);
        const size_t loads = mContent.checked.variants.size();
        add("<p class=\"sum\"><b>{}</b>{} · <b>{}</b>, <span id=\"differing\">{}</span> differ · ",
            counted(loads, "load"),
            mContent.columns.size() < loads ? fmt::format(", {} distinct", mContent.columns.size())
                                            : "",
            counted(mRows, "row"), mDifferences);
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
            const char* const name = nameOf(severity);
            const size_t count = report().count(severity);
            add(count == 0 ? fmt::runtime("<span class=\"zero\">{1}</span>")
                           : fmt::runtime("<a class=\"{0}\" href=\"#{0}s\">{1}</a>"),
                name, counted(count, name));
            mPage += severity == Severity::Note ? "</p>\n" : " · ";
        }
        add("<nav aria-label=\"Parts of the page\"><a href=\"#loads\">Loads</a> "
            "<a href=\"#matrix\">Matrix</a> <a href=\"#rates\">Bit rates</a> "
            "<a href=\"#findings\">Findings</a></nav>\n</header>\n<main>\n");
    }

    void writeLoads() {
        mPage += "<section id=\"loads\" aria-labelledby=\"loads-title\">\n"
                 "<h2 id=\"loads-title\">Loads</h2>\n"
                 "<div class=\"scroll low\" role=\"region\" tabindex=\"0\" "
                 "aria-labelledby=\"loads-title\">\n<table class=\"loads\">\n<caption>What each "
                 "variant loads, in this order. Differences are those from the <span "
                 "class=\"static\">first load</span><span class=\"scripted\" hidden>load that is "
                 "chosen below</span>, as a component sees them.</caption>\n<thead><tr>"
                 "<th scope=\"col\">Variant</th><th scope=\"col\">System spec document</th>"
                 "<th scope=\"col\">Private overlay</th>"
                 "<th scope=\"col\" class=\"number\">Differences</th></tr></thead>\n<tbody>\n";
        const std::vector<size_t> differences = differencesByColumn();
        for (size_t i = 0; i < mContent.columns.size(); ++i) {
            const LoadColumn& column = mContent.columns[i];
            add("<tr id=\"load-{}\"><th scope=\"row\">{}</th><td>{}</td><td>{}</td>"
                "<td class=\"number\">{}</td></tr>\n",
                i, namesOf(column), documentsOf(column, describeSystemSpec),
                documentsOf(column, describeOverlay),
                i == 0 ? "–" : std::to_string(differences[i]));
        }
        mPage += "</tbody>\n</table>\n</div>\n</section>\n";
    }

    std::vector<size_t> differencesByColumn() const {
        std::vector<size_t> differences(mContent.columns.size(), 0);
        for (const MatrixSection& section : mMatrix) {
            for (const MatrixRow& row : section.rows) {
                for (const MatrixCell& cell : row.cells) {
                    differences[cell.column] += cell.isDifferent ? 1 : 0;
                }
            }
        }
        return differences;
    }

    // The title, and the variants' names where they share the column.
    std::string namesOf(const LoadColumn& column) const {
        if (column.variants.size() == 1) {
            return titleOf(column);
        }
        std::string names;
        for (const size_t variant : column.variants) {
            names += (names.empty() ? "" : ", ") + variantForPage(mContent.checked, variant);
        }
        return fmt::format("<details open><summary>{}</summary>{}</details>", titleOf(column),
                           names);
    }

    // A line for each way in which the column's loads are described.
    std::string documentsOf(const LoadColumn& column, std::string (*describe)(const Load&)) const {
        std::vector<std::string> lines;
        std::unordered_map<std::string, size_t> counts;
        for (const size_t variant : column.variants) {
            const Load& load = mContent.checked.loads[variant];
            std::string text = describe(load);
            if (column.variants.size() > 1 && load.isVariantSet()) {
                text = withAnyVariant(std::move(text), load.variant);
            }
            if (++counts[text] == 1) {
                lines.push_back(text);
            }
        }
        std::string all;
        for (const std::string& line : lines) {
            all += fmt::format("{}<code>{}</code>{}", all.empty() ? "" : "<br>", htmlOfName(line),
                               lines.size() == 1 ? "" : fmt::format(" ({})", counts[line]));
        }
        return all;
    }

    void writeMatrix() {
        mPage += "<section id=\"matrix\" aria-labelledby=\"matrix-title\">\n"
                 "<h2 id=\"matrix-title\">Matrix</h2>\n<form class=\"controls\">\n"
                 "<label class=\"scripted\" hidden>Filter <input type=\"search\" id=\"filter\" "
                 "autocomplete=\"off\" spellcheck=\"false\"></label>\n"
                 "<label><input type=\"checkbox\" id=\"only\"> Only differences</label>\n"
                 "<label class=\"scripted\" hidden>Compare with <select id=\"baseline\">";
        for (const LoadColumn& column : mContent.columns) {
            const std::string first = variantForPage(mContent.checked, column.variants[0]);
            add("<option value=\"{}\">{}{}</option>", first, titleOf(column),
                column.variants.size() == 1 ? "" : ": " + first + " …");
        }
        mPage += "</select></label>\n<output class=\"scripted\" id=\"shown\" for=\"filter only "
                 "baseline\" hidden></output>\n</form>\n"
                 "<div class=\"scroll high\" role=\"region\" tabindex=\"0\" "
                 "aria-labelledby=\"matrix-title\">\n";
        mPage += matrixTable(mContent, mMatrix, mFindings);
        mPage += "</div>\n</section>\n";
    }

    void writeCharts() {
        const std::vector<LoadColumn>& columns = mContent.columns;
        const Steps& first = columns[0].steps;
        const bool isFirstDrawn = first && !first->empty();
        add("<section id=\"rates\" aria-labelledby=\"rates-title\">\n"
            "<h2 id=\"rates-title\">Nimbra-mode bit rates</h2>\n"
            "<p>The bit rate that a component gets, by the value that it passes. The horizontal "
            "scale is that of square roots.{}</p>\n<div class=\"charts\">\n",
            isFirstDrawn ? " The dashed line is the first load." : "");
        std::vector<const Steps*> all;
        for (const LoadColumn& column : columns) {
            all.push_back(&column.steps);
        }
        const StepChart chart(all);
        const std::vector<std::vector<size_t>> groups = columnsByRates();
        for (size_t i = 0; i < std::min(groups.size(), kMostCharts); ++i) {
            const Steps& steps = columns[groups[i][0]].steps;
            add("<figure><figcaption>{}</figcaption>", titleOf(groups[i]));
            if (!steps) {
                mPage += "<p class=\"empty\">Too many rows to draw. The matrix has them.</p>";
            } else if (steps->empty()) {
                mPage += "<p class=\"empty\">No rows: a component gets no bit rate.</p>";
            } else {
                mPage += chart.draw(fmt::format("chart-{}", i), describe(groups[i]), *steps,
                                    i != 0 && isFirstDrawn ? &*first : nullptr);
            }
            mPage += "</figure>\n";
        }
        mPage += "</div>\n";
        if (groups.size() > kMostCharts) {
            add("<p>{} not drawn.</p>\n", counted(groups.size() - kMostCharts, "more chart"));
        }
        mPage += "</section>\n";
    }

    // Loads with equal bit rates share a chart.
    std::vector<std::vector<size_t>> columnsByRates() const {
        std::vector<std::vector<size_t>> groups;
        std::unordered_map<std::string, size_t> places;
        for (size_t i = 0; i < mContent.columns.size(); ++i) {
            const Steps& steps = mContent.columns[i].steps;
            if (!steps) {  // Those that are not known may differ.
                groups.push_back({i});
                continue;
            }
            const auto [place, isNew] = places.emplace(inWords(*steps), groups.size());
            if (isNew) {
                groups.emplace_back();
            }
            groups[place->second].push_back(i);
        }
        return groups;
    }

    std::string titleOf(const std::vector<size_t>& columns) const {
        constexpr size_t kMostTitles = 6;
        std::vector<std::string> titles;
        for (size_t i = 0; i < std::min(columns.size(), kMostTitles); ++i) {
            titles.push_back(titleOf(mContent.columns[columns[i]]));
        }
        if (columns.size() > kMostTitles) {
            titles.push_back(counted(columns.size() - kMostTitles, "more load"));
        }
        return joined(titles, ", ");
    }

    // The chart, for screen readers.
    std::string describe(const std::vector<size_t>& columns) const {
        return fmt::format("Bit rates with {}{}", titleOf(columns),
                           inWords(*mContent.columns[columns[0]].steps));
    }

    static std::string inWords(const std::vector<Step>& steps) {
        std::string text;
        for (const Step& step : steps) {
            text += fmt::format("; from {} to below {}: {}", step.low, step.limit,
                                step.bitRate ? std::to_string(*step.bitRate) : "none");
        }
        return text;
    }

    void writeFindings() {
        mPage += "<section id=\"findings\" aria-labelledby=\"findings-title\">\n"
                 "<h2 id=\"findings-title\">Findings</h2>\n";
        mPage += report().count() == 0 ? "<p>None.</p>\n" : findingList(mContent, mFindings);
        mPage += "</section>\n";
    }

    const PageContent& mContent;
    const std::vector<MatrixSection> mMatrix;
    const FindingRows mFindings;
    size_t mRows = 0;
    size_t mDifferences = 0;
};

}  // namespace

std::string pageOf(const PageContent& content) {
    return PageWriter(content).write();
}

}  // namespace kc2::tool
