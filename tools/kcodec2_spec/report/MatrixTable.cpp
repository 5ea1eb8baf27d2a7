// The matrix as a table of the page.

#include "report/MatrixTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "base/Text.h"
#include "report/Html.h"

namespace kc2::tool {

namespace {

// Browsers open a page of some 50 MiB; the page says what is left out.
constexpr size_t kMostCells = 200'000;
constexpr size_t kNamesInHead = 3;  // Of the variants that share a column; the loads have all.

class MatrixTable {
public:
    MatrixTable(const PageContent& content, const std::vector<MatrixSection>& matrix,
                const CellFindings& findings)
        : mContent(content),
          mColumns(content.columns.size()),
          mMatrix(matrix),
          mFindings(findings) {}

    std::string write() {
        mTable = "<table class=\"matrix\">\n<caption id=\"matrix-caption\">A cell with ≠ differs "
                 "from the <span class=\"static\">first column</span><span class=\"scripted\" "
                 "hidden>column that is chosen</span>. Beside each value is the document that set "
                 "it. A number after # is the place in a list.</caption>\n<thead><tr>"
                 "<th scope=\"col\">Setting</th>";
        for (const LoadColumn& column : mContent.columns) {
            add("<th scope=\"col\"{}>{}{}</th>",
                &column == mContent.columns.data() ? " class=\"baseline\"" : "",
                titleForPage(mContent.checked, column), someNamesOf(column));
        }
        mTable += "</tr></thead>\n";
        size_t room = kMostCells / mColumns;
        for (const MatrixSection& section : mMatrix) {
            writeSection(section, &room);
        }
        mTable += "</table>\n";
        return std::move(mTable);
    }

private:
    template <typename... Values>
    void add(fmt::format_string<Values...> text, Values&&... values) {
        fmt::format_to(std::back_inserter(mTable), text, std::forward<Values>(values)...);
    }

    std::string someNamesOf(const LoadColumn& column) const {
        if (column.variants.size() == 1) {
            return std::string();
        }
        std::string names;
        for (size_t i = 0; i < std::min(column.variants.size(), kNamesInHead); ++i) {
            names += (i == 0 ? "" : ", ") + variantForPage(mContent.checked, column.variants[i]);
        }
        return fmt::format(" <small>{}{}</small>", names,
                           column.variants.size() > kNamesInHead ? " …" : "");
    }

    void writeSection(const MatrixSection& section, size_t* room) {
        const SnapshotSection& first = *section.section;
        add("<tbody id=\"{}\" class=\"{}{}\">\n<tr class=\"section\"><th scope=\"rowgroup\" "
            "colspan=\"{}\">{} <span>{}<span class=\"count\">{}</span>{}</span></th></tr>\n",
            first.key, first.form == SectionForm::List ? "list" : "named",
            section.differences == 0 ? " same" : "", mColumns + 1, first.title,
            counted(section.rows.size(), "row"),
            section.differences == 0 ? "" : fmt::format(", {} differ", section.differences),
            section.rows.empty() ? first.whenEmpty : "");
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
                mColumns + 1, counted(section.rows.size() - shown, "row"));
        }
        mTable += "</tbody>\n";
    }

    // A store without entries can mean the opposite of what the empty cells suggest.
    void writeWhenEmpty(const MatrixSection& section) {
        const size_t index = static_cast<size_t>(&section - mMatrix.data());
        const std::string_view meaning = section.section->whenEmpty;
        const auto isEmpty = [index](const LoadColumn& column) {
            return column.snapshot[index].entries.empty();
        };
        if (meaning.empty() ||
            std::none_of(mContent.columns.begin(), mContent.columns.end(), isEmpty)) {
            return;
        }
        mTable += "<tr class=\"row meaning\"><th scope=\"row\">no entry</th>";
        for (const LoadColumn& column : mContent.columns) {
            add("<td>{}</td>",
                isEmpty(column) ? meaning.substr(meaning.find_first_not_of(": ")) : "");
        }
        mTable += "</tr>\n";
    }

    void writeRow(const MatrixSection& section, const MatrixRow& row) {
        const Setting* const setting = mContent.catalogue.setting(row.name);
        add("<tr class=\"row{}\"><th scope=\"row\"><code class=\"name\">{}</code>",
            row.isDifferent ? "" : " same", htmlOfName(row.name));
        if (setting != nullptr) {
            add(" <small>{}</small>", html(setting->meaning));
        }
        mTable += "</th>";
        const std::vector<CellFinding>& findings = mFindings.of(*section.section, row.name);
        auto cell = row.cells.begin();
        for (size_t column = 0; column < mColumns; ++column) {
            if (cell != row.cells.end() && cell->column == column) {
                writeCell(*cell++, *section.section, column);
            } else {
                mTable += "<td class=\"none\">";
            }
            if (!findings.empty()) {
                writeLink(findings, column);
            }
            mTable += "</td>";
        }
        mTable += "</tr>\n";
    }

    // The style shows the marks, so that a script can move them.
    void writeCell(const MatrixCell& cell, const SnapshotSection& section, size_t column) {
        if (cell.entry == nullptr) {
            mTable += cell.isDifferent ? "<td class=\"none differs\">" : "<td class=\"none\">";
            return;
        }
        const std::string& text = cell.entry->text;
        mTable += cell.isDifferent ? "<td class=\"differs\"><b>" : "<td><b>";
        if (section.form == SectionForm::List) {
            add("#{}{}", cell.index + 1, text.empty() ? "" : " ");
            mTable += html(text);
        } else {
            mTable += text.empty() ? "yes" : html(text);
        }
        const Load& load = mContent.checked.loads[mContent.columns[column].variants[0]];
        mTable += cell.entry->origin == load.overlay->origin ? "</b> <small class=\"overlay\">"
                                                             : "</b> <small class=\"spec\">";
        mTable.append(html(cell.entry->origin)).append("</small>");
    }

    // To the worst of the findings about the cell.
    void writeLink(const std::vector<CellFinding>& findings, size_t column) {
        const CellFinding* first = nullptr;
        size_t count = 0;
        for (const CellFinding& finding : findings) {
            if (std::binary_search(finding.columns.begin(), finding.columns.end(), column)) {
                first = first == nullptr ? &finding : first;
                ++count;
            }
        }
        if (first != nullptr) {
            add(" <a class=\"{}\" href=\"#finding-{}\">{}</a>", nameOf(first->severity), first->row,
                count == 1 ? nameOf(first->severity) : counted(count, "finding"));
        }
    }

    const PageContent& mContent;
    const size_t mColumns;
    const std::vector<MatrixSection>& mMatrix;
    const CellFindings& mFindings;
    std::string mTable;
};

}  // namespace

std::string matrixTable(const PageContent& content, const std::vector<MatrixSection>& matrix,
                        const CellFindings& findings) {
    return MatrixTable(content, matrix, findings).write();
}

}  // namespace kc2::tool
