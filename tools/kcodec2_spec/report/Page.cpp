// The page of an image: its variants side by side, their bit rates, and the checker's findings.

#include "report/Page.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/Text.h"
#include "check/output/Excerpt.h"
#include "check/output/Output.h"
#include "device/DevicePaths.h"
#include "platform/Version.h"
#include "report/Html.h"
#include "report/PageParts.h"
#include "store/Load.h"

namespace kc2::tool {

namespace {

// Browsers open a page of some 50 MiB; the page says what is left out.
constexpr size_t kMostCells = 200'000;
constexpr size_t kMostFindings = 2'000;
constexpr size_t kMostCharts = 24;
constexpr size_t kExcerptColumns = 100;

// Even if a text got past html(), it could neither run nor load anything. The policy has the hash
// of the script; scripts/check-report.py compares the two.
constexpr char kPolicy[] =
        "default-src 'none'; style-src 'unsafe-inline'; img-src data:; base-uri 'none'; "
        "form-action 'none'; script-src 'sha256-uwIa1WG69Wnq8GpgoiZHuknvMCghGxIQsSF0fV0DMpw='";

std::string shownVariant(const std::string& variant) {
    return variant == kDefaultVariant ? "no variant" : html(variant);
}

class PageWriter {
public:
    explicit PageWriter(const PageContent& content)
        : mContent(content),
          mVariants(content.checked.variants.size()),
          mMatrix(matrixOf(content.snapshots)) {
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
    template <typename... Values>
    void add(fmt::format_string<Values...> text, Values&&... values) {
        fmt::format_to(std::back_inserter(mPage), text, std::forward<Values>(values)...);
    }

    const Report& report() const { return mContent.checked.report; }
    const Load& load(size_t variant) const { return mContent.checked.loads[variant]; }
    std::string variantName(size_t variant) const {
        return shownVariant(mContent.checked.variants[variant]);
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
        add("<p class=\"sum\"><b>{}</b> · <b>{}</b>, {} differ · ", counted(mVariants, "load"),
            counted(mRows, "row"), mDifferences);
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
            add("<span class=\"{} {}\">{}</span>{}", nameOf(severity),
                report().count(severity) == 0 ? "zero" : "some",
                counted(report().count(severity), nameOf(severity)),
                severity == Severity::Note ? "</p>\n" : " · ");
        }
        add("<nav aria-label=\"Parts of the page\"><a href=\"#loads\">Loads</a> "
            "<a href=\"#matrix\">Matrix</a> <a href=\"#rates\">Bit rates</a> "
            "<a href=\"#findings\">Findings</a></nav>\n</header>\n<main>\n");
    }

    void writeLoads() {
        add("<section id=\"loads\" aria-labelledby=\"loads-title\">\n"
            "<h2 id=\"loads-title\">Loads</h2>\n<table>\n<caption>What each variant loads, in this "
            "order. Differences are those from the first load, as a component sees them."
            "</caption>\n<thead><tr><th scope=\"col\">Variant</th>"
            "<th scope=\"col\">System spec document</th><th scope=\"col\">Private overlay</th>"
            "<th scope=\"col\" class=\"number\">Differences</th></tr></thead>\n<tbody>\n");
        for (size_t i = 0; i < mVariants; ++i) {
            size_t differences = 0;
            for (const MatrixSection& section : mMatrix) {
                differences += static_cast<size_t>(std::count_if(
                        section.rows.begin(), section.rows.end(),
                        [i](const MatrixRow& row) { return row.cells[i].isDifferent; }));
            }
            add("<tr><th scope=\"row\">{}</th><td><code>{}</code></td><td><code>{}</code></td>"
                "<td class=\"number\">{}</td></tr>\n",
                variantName(i), html(describeSystemSpec(load(i))), html(describeOverlay(load(i))),
                i == 0 ? "–" : std::to_string(differences));
        }
        add("</tbody>\n</table>\n</section>\n");
    }

    void writeMatrix() {
        add("<section id=\"matrix\" aria-labelledby=\"matrix-title\">\n"
            "<h2 id=\"matrix-title\">Matrix</h2>\n<form class=\"controls\">\n"
            "<label class=\"scripted\" hidden>Filter <input type=\"search\" id=\"filter\" "
            "autocomplete=\"off\" spellcheck=\"false\"></label>\n"
            "<label><input type=\"checkbox\" id=\"only\"> Only differences</label>\n"
            "<output class=\"scripted\" id=\"shown\" for=\"filter only\" hidden></output>\n"
            "</form>\n<table class=\"matrix\">\n<caption>A cell with ≠ differs from the first "
            "column. Beside each value is the document that set it. A number after # is the place "
            "in a list.</caption>\n<thead><tr><th scope=\"col\">Setting</th>");
        for (size_t i = 0; i < mVariants; ++i) {
            add("<th scope=\"col\">{}</th>", variantName(i));
        }
        add("</tr></thead>\n");
        size_t room = kMostCells / mVariants;
        for (const MatrixSection& section : mMatrix) {
            writeSection(section, &room);
        }
        add("</table>\n</section>\n");
    }

    void writeSection(const MatrixSection& section, size_t* room) {
        add("<tbody id=\"{}\"{}>\n<tr class=\"section\"><th scope=\"rowgroup\" colspan=\"{}\">{} "
            "<span>{}{}{}</span></th></tr>\n",
            section.section->key, section.differences == 0 ? " class=\"same\"" : "", mVariants + 1,
            section.section->title, counted(section.rows.size(), "row"),
            section.differences == 0 ? "" : fmt::format(", {} differ", section.differences),
            section.rows.empty() ? section.section->whenEmpty : "");
        if (!section.rows.empty()) {
            writeWhenEmpty(section);
        }
        const size_t shown = std::min(section.rows.size(), *room);
        *room -= shown;
        for (size_t i = 0; i < shown; ++i) {
            writeRow(section, section.rows[i]);
        }
        if (shown < section.rows.size()) {
            add("<tr class=\"left-out\"><td colspan=\"{}\">{} not shown: the page would be too "
                "large. kcodec2_spec show prints them.</td></tr>\n",
                mVariants + 1, counted(section.rows.size() - shown, "row"));
        }
        add("</tbody>\n");
    }

    // A store without entries can mean the opposite of what the empty cells suggest.
    void writeWhenEmpty(const MatrixSection& section) {
        const size_t index = static_cast<size_t>(&section - mMatrix.data());
        const std::string_view meaning = section.section->whenEmpty;
        const auto isEmpty = [index](const Snapshot& snapshot) {
            return snapshot[index].entries.empty();
        };
        if (meaning.empty() ||
            std::none_of(mContent.snapshots.begin(), mContent.snapshots.end(), isEmpty)) {
            return;
        }
        add("<tr class=\"row differs\"><th scope=\"row\">no entry</th>");
        for (const Snapshot& snapshot : mContent.snapshots) {
            add("<td>{}</td>",
                isEmpty(snapshot) ? meaning.substr(meaning.find_first_not_of(": ")) : "");
        }
        add("</tr>\n");
    }

    void writeRow(const MatrixSection& section, const MatrixRow& row) {
        const Setting* const setting = mContent.catalogue.setting(row.name);
        add("<tr class=\"row{}\"><th scope=\"row\"><code>{}</code>", row.isDifferent ? "" : " same",
            html(row.name));
        if (setting != nullptr) {
            add(" <small>{}</small>", html(setting->meaning));
        }
        add("</th>");
        for (size_t i = 0; i < mVariants; ++i) {
            writeCell(row.cells[i], section.section->form, load(i));
        }
        add("</tr>\n");
    }

    void writeCell(const MatrixCell& cell, SectionForm form, const Load& load) {
        add("<td{}>", cell.isDifferent ? " class=\"differs\"" : "");
        if (cell.isDifferent) {
            add("<i aria-hidden=\"true\">≠</i><span class=\"sr\">differs: </span>");
        }
        if (cell.entry == nullptr) {
            add("<span class=\"none\" aria-hidden=\"true\">–</span>"
                "<span class=\"sr\">not there</span></td>");
            return;
        }
        std::string value = form == SectionForm::List ? fmt::format("#{} ", cell.index + 1) : "";
        value += cell.entry->text;
        add("<b>{}</b> <small class=\"{}\">{}</small></td>", value.empty() ? "yes" : html(value),
            cell.entry->origin == load.overlay->origin ? "overlay" : "spec",
            html(cell.entry->origin));
    }

    void writeCharts() {
        const std::vector<Steps>& all = mContent.steps;
        add("<section id=\"rates\" aria-labelledby=\"rates-title\">\n"
            "<h2 id=\"rates-title\">Nimbra-mode bit rates</h2>\n"
            "<p>The bit rate that a component gets, by the value that it passes. The horizontal "
            "scale "
            "is that of square roots.{}</p>\n<div class=\"charts\">\n",
            all[0].value_or(std::vector<Step>()).empty() ? ""
                                                         : " The dashed line is the first load.");
        const StepChart chart(all);
        for (size_t i = 0; i < std::min(all.size(), kMostCharts); ++i) {
            add("<figure><figcaption>{}</figcaption>", variantName(i));
            if (!all[i]) {
                add("<p class=\"empty\">Too many rows to draw. The matrix has them.</p>");
            } else if (all[i]->empty()) {
                add("<p class=\"empty\">No rows: a component gets no bit rate.</p>");
            } else {
                mPage += chart.draw(fmt::format("chart-{}", i), describe(i), *all[i],
                                    i != 0 && all[0] ? &*all[0] : nullptr);
            }
            add("</figure>\n");
        }
        add("</div>\n");
        if (all.size() > kMostCharts) {
            add("<p>{} not drawn.</p>\n", counted(all.size() - kMostCharts, "load"));
        }
        add("</section>\n");
    }

    // The chart in words, for screen readers.
    std::string describe(size_t variant) const {
        const std::string& name = mContent.checked.variants[variant];
        std::string text =
                fmt::format("Bit rates with {}", name == kDefaultVariant ? "no variant" : name);
        for (const Step& step : *mContent.steps[variant]) {
            text += fmt::format("; from {} to below {}: {}", step.low, step.limit,
                                step.bitRate ? std::to_string(*step.bitRate) : "none");
        }
        return text;
    }

    void writeFindings() {
        OutputOptions options;
        options.mostFindings = kMostFindings;
        const std::vector<const ReportEntry*> shown = shownEntries(report(), options);
        std::vector<std::pair<std::string, std::vector<const ReportEntry*>>> documents;
        std::unordered_map<std::string, size_t> places;
        for (const ReportEntry* const entry : shown) {
            const std::string& path = entry->source->path();
            if (places.emplace(path, documents.size()).second) {
                documents.push_back({path, {}});
            }
            documents[places[path]].second.push_back(entry);
        }
        add("<section id=\"findings\" aria-labelledby=\"findings-title\">\n"
            "<h2 id=\"findings-title\">Findings</h2>\n");
        for (const auto& [path, entries] : documents) {
            add("<table class=\"findings\">\n<caption><code>{}</code></caption>\n<thead><tr>"
                "<th scope=\"col\">Severity</th><th scope=\"col\" class=\"number\">Line</th>"
                "<th scope=\"col\">Finding</th><th scope=\"col\">Check</th></tr></thead>\n"
                "<tbody>\n",
                html(path));
            for (const ReportEntry* const entry : entries) {
                writeFinding(*entry);
            }
            add("</tbody>\n</table>\n");
        }
        if (shown.size() < report().count()) {
            add("<p>{} not shown, none more severe than these. kcodec2_spec check "
                "--all-variants prints all.</p>\n",
                counted(report().count() - shown.size(), "finding"));
        }
        add("</section>\n");
    }

    void writeFinding(const ReportEntry& entry) {
        const Source::Position position = entry.source->positionOf(entry.span.start);
        add("<tr><td class=\"{0}\">{0}</td><td class=\"number\">{1}</td><td>{2}",
            nameOf(entry.severity),
            entry.isForFile ? "–" : fmt::format("{}:{}", position.line, position.column),
            html(entry.message));
        if (!entry.isForFile) {
            std::string excerpt;
            const std::string lines = excerptOf(*entry.source, entry.span, kExcerptColumns);
            for (size_t at = 0; at < lines.size();) {  // A line end is markup here, not a byte.
                const size_t end = std::min(lines.find('\n', at), lines.size());
                excerpt.append(html(lines.substr(at, end - at))).append("\n");
                at = end + 1;
            }
            add("<pre tabindex=\"0\">{}</pre>", excerpt);
        }
        if (entry.details != nullptr) {
            for (const RelatedPlace& related : entry.details->related) {
                add("<p><code>{}</code> {}</p>", html(related.source->placeOf(related.span.start)),
                    html(related.message));
            }
        }
        add("</td><td title=\"{}\"><code>{}</code></td></tr>\n", html(entry.check->summary),
            entry.check->id);
    }

    const PageContent& mContent;
    const size_t mVariants;
    const std::vector<MatrixSection> mMatrix;
    size_t mRows = 0;
    size_t mDifferences = 0;
    std::string mPage;
};

}  // namespace

std::string pageOf(const PageContent& content) {
    return PageWriter(content).write();
}

}  // namespace kc2::tool
