// Stores side by side: a row for each entry that one of the stores has, a column for each store.

#include "report/Matrix.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <map>
#include <unordered_map>
#include <utility>

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

}  // namespace kc2::tool
