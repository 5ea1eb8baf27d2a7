// Stores side by side: a row for each entry that one of the stores has, a column for each store.

#include "report/Matrix.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <list>
#include <map>
#include <unordered_map>
#include <utility>

#include "base/Text.h"
#include "report/CellFindings.h"
#include "report/Html.h"
#include "store/SnapshotDiff.h"

namespace kc2::tool {

namespace {

// Numbers by value: Dolby Vision profiles are names here.
bool isBefore(const MatrixRow& a, const MatrixRow& b) {
    const auto isNumber = [](std::string_view name) {
        return name.find_first_not_of("0123456789") == std::string_view::npos;
    };
    if (isNumber(a.name) && isNumber(b.name) && a.name.size() != b.name.size()) {
        return a.name.size() < b.name.size();
    }
    return a.name < b.name;
}

// The rows of one section.
class RowBuilder {
public:
    // An entry that no earlier column has gets a row after the row of the entry before it, so that
    // a new entry of a list is shown at its place in the list.
    void addColumn(size_t column, const SnapshotSection& section) {
        std::unordered_map<std::string_view, size_t> occurrences;
        std::vector<Row> rowsOfEntries;
        Row next = mRows.begin();
        for (const SnapshotEntry& entry : section.entries) {
            const std::pair key(std::string_view(entry.name), ++occurrences[entry.name]);
            const auto known = mRowsByName.find(key);
            Row row;
            if (known != mRowsByName.end()) {
                row = known->second;
            } else {
                row = mRows.insert(next, {key.first, {}, false});
                mRowsByName.emplace(key, row);
            }
            row->cells.push_back({column, &entry, rowsOfEntries.size(), false});
            rowsOfEntries.push_back(row);
            next = std::next(row);
        }
        (column == 0 ? mFirst : mLatest) = std::move(rowsOfEntries);
    }

    // Marks what differs between the column that was added last and the first.
    void mark(const std::vector<Change>& changes, size_t column) {
        for (const Change& change : changes) {
            if (change.before != nullptr) {
                mark(mFirst[change.indexBefore], column);
            }
            if (change.after != nullptr) {
                mark(mLatest[change.indexAfter], column);
            }
        }
    }

    std::vector<MatrixRow> take(SectionForm form) {
        if (form != SectionForm::List) {
            mRows.sort(isBefore);  // A list keeps its order.
        }
        return {std::make_move_iterator(mRows.begin()), std::make_move_iterator(mRows.end())};
    }

private:
    using Row = std::list<MatrixRow>::iterator;

    static void mark(Row row, size_t column) {
        if (row->cells.back().column != column) {
            row->cells.push_back({column});
        }
        row->cells.back().isDifferent = true;
        row->isDifferent = true;
    }

    std::list<MatrixRow> mRows;
    std::map<std::pair<std::string_view, size_t>, Row> mRowsByName;  // With the occurrence.
    std::vector<Row> mFirst;                                         // Of the first column.
    std::vector<Row> mLatest;                                        // Of the last one.
};

// Browsers open a page of some 50 MiB; the page says what is left out.
constexpr size_t kMostCells = 200'000;
constexpr size_t kNamesInHead = 3;  // Of the variants that share a column; the loads have all.

class MatrixTable final : private HtmlWriter {
public:
    MatrixTable(const PageContent& content, const std::vector<MatrixSection>& matrix,
                const FindingRows& findings)
        : mContent(content),
          mColumns(content.columns.size()),
          mMatrix(matrix),
          mFindings(content, findings) {}

    std::string write() {
        mPage = "<table class=\"matrix\">\n<caption id=\"matrix-caption\">A cell with ≠ differs "
                "from the <span class=\"static\">first column</span><span class=\"scripted\" "
                "hidden>column that is chosen</span>. Beside each value is the document that set "
                "it. A number after # is the place in a list.</caption>\n<thead><tr>"
                "<th scope=\"col\">Setting</th>";
        for (const LoadColumn& column : mContent.columns) {
            add("<th scope=\"col\"{}>{}{}</th>",
                &column == mContent.columns.data() ? " class=\"baseline\"" : "",
                titleForPage(mContent.checked, column), someNamesOf(column));
        }
        mPage += "</tr></thead>\n";
        size_t room = kMostCells / mColumns;
        for (const MatrixSection& section : mMatrix) {
            writeSection(section, &room);
        }
        mPage += "</table>\n";
        return std::move(mPage);
    }

private:
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
        mPage += "</tbody>\n";
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
        mPage += "<tr class=\"row meaning\"><th scope=\"row\">no entry</th>";
        for (const LoadColumn& column : mContent.columns) {
            add("<td>{}</td>",
                isEmpty(column) ? meaning.substr(meaning.find_first_not_of(": ")) : "");
        }
        mPage += "</tr>\n";
    }

    void writeRow(const MatrixSection& section, const MatrixRow& row) {
        const Setting* const setting = mContent.catalogue.setting(row.name);
        add("<tr class=\"row{}\"><th scope=\"row\"><code class=\"name\">{}</code>",
            row.isDifferent ? "" : " same", htmlOfName(row.name));
        if (setting != nullptr) {
            add(" <small>{}</small>", html(setting->meaning));
        }
        mPage += "</th>";
        const std::vector<CellFinding>& findings = mFindings.of(*section.section, row.name);
        auto cell = row.cells.begin();
        for (size_t column = 0; column < mColumns; ++column) {
            if (cell != row.cells.end() && cell->column == column) {
                writeCell(*cell++, *section.section, column);
            } else {
                mPage += "<td class=\"none\">";
            }
            if (!findings.empty()) {
                writeLink(findings, column);
            }
            mPage += "</td>";
        }
        mPage += "</tr>\n";
    }

    // The style shows the marks, so that a script can move them.
    void writeCell(const MatrixCell& cell, const SnapshotSection& section, size_t column) {
        if (cell.entry == nullptr) {
            mPage += cell.isDifferent ? "<td class=\"none differs\">" : "<td class=\"none\">";
            return;
        }
        const std::string& text = cell.entry->text;
        mPage += cell.isDifferent ? "<td class=\"differs\"><b>" : "<td><b>";
        if (section.form == SectionForm::List) {
            add("#{}{}", cell.index + 1, text.empty() ? "" : " ");
            mPage += html(text);
        } else {
            mPage += text.empty() ? "yes" : html(text);
        }
        const Load& load = mContent.checked.loads[mContent.columns[column].variants[0]];
        mPage += cell.entry->origin == load.overlay->origin ? "</b> <small class=\"overlay\">"
                                                            : "</b> <small class=\"spec\">";
        mPage.append(html(cell.entry->origin)).append("</small>");
    }

    // To the worst of the findings about the cell.
    void writeLink(const std::vector<CellFinding>& findings, size_t column) {
        const CellFinding* first = nullptr;
        size_t count = 0;
        for (const CellFinding& finding : findings) {
            if (finding.columns.count(column) != 0) {
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
    const CellFindings mFindings;
};

}  // namespace

std::vector<MatrixSection> matrixOf(const std::vector<LoadColumn>& columns) {
    const Snapshot& first = columns.front().snapshot;
    std::vector<RowBuilder> builders(first.size());
    for (size_t column = 0; column < columns.size(); ++column) {
        const Snapshot& snapshot = columns[column].snapshot;
        for (size_t i = 0; i < first.size(); ++i) {
            builders[i].addColumn(column, snapshot[i]);
        }
        for (const SectionChanges& changes : differencesOf(first, snapshot)) {
            builders[static_cast<size_t>(changes.before - first.data())].mark(changes.changes,
                                                                              column);
        }
    }
    std::vector<MatrixSection> sections;
    for (size_t i = 0; i < first.size(); ++i) {
        MatrixSection section = {&first[i], builders[i].take(first[i].form), 0};
        section.differences = static_cast<size_t>(
                std::count_if(section.rows.begin(), section.rows.end(),
                              [](const MatrixRow& row) { return row.isDifferent; }));
        sections.push_back(std::move(section));
    }
    return sections;
}

std::string matrixTable(const PageContent& content, const std::vector<MatrixSection>& matrix,
                        const FindingRows& findings) {
    return MatrixTable(content, matrix, findings).write();
}

}  // namespace kc2::tool
