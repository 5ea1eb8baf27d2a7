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
    RowBuilder(const std::vector<Snapshot>& snapshots, size_t section)
        : mSnapshots(snapshots), mSection(section), mRowsOfEntries(snapshots.size()) {
        for (size_t column = 0; column < snapshots.size(); ++column) {
            addColumn(column);
        }
    }

    // Marks what differs between one column and the first.
    void mark(const std::vector<Change>& changes, size_t column) {
        for (const Change& change : changes) {
            if (change.before != nullptr) {
                mark(mRowsOfEntries[0][change.indexBefore], column);
            }
            if (change.after != nullptr) {
                mark(mRowsOfEntries[column][change.indexAfter], column);
            }
        }
    }

    std::vector<MatrixRow> take() {
        if (sectionOf(0).form != SectionForm::List) {
            mRows.sort(isBefore);  // A list keeps its order.
        }
        return {std::make_move_iterator(mRows.begin()), std::make_move_iterator(mRows.end())};
    }

private:
    using Row = std::list<MatrixRow>::iterator;

    const SnapshotSection& sectionOf(size_t column) const { return mSnapshots[column][mSection]; }

    // An entry that no earlier column has gets a row after the row of the entry before it, so that
    // a new entry of a list is shown at its place in the list.
    void addColumn(size_t column) {
        std::unordered_map<std::string_view, size_t> occurrences;
        Row next = mRows.begin();
        for (const SnapshotEntry& entry : sectionOf(column).entries) {
            const std::pair key(std::string_view(entry.name), ++occurrences[entry.name]);
            const auto known = mRowsByName.find(key);
            Row row;
            if (known != mRowsByName.end()) {
                row = known->second;
            } else {
                row = mRows.insert(next, {key.first, {}, false});
                row->cells.resize(mSnapshots.size());
                mRowsByName.emplace(key, row);
            }
            row->cells[column] = {&entry, mRowsOfEntries[column].size(), false};
            mRowsOfEntries[column].push_back(row);
            next = std::next(row);
        }
    }

    void mark(Row row, size_t column) {
        row->cells[column].isDifferent = true;
        row->isDifferent = true;
    }

    const std::vector<Snapshot>& mSnapshots;
    size_t mSection;
    std::list<MatrixRow> mRows;
    std::map<std::pair<std::string_view, size_t>, Row> mRowsByName;  // With the occurrence.
    std::vector<std::vector<Row>> mRowsOfEntries;                    // By column.
};

}  // namespace

std::vector<MatrixSection> matrixOf(const std::vector<Snapshot>& snapshots) {
    const Snapshot& first = snapshots.front();
    std::vector<RowBuilder> builders;
    builders.reserve(first.size());
    for (size_t i = 0; i < first.size(); ++i) {
        builders.emplace_back(snapshots, i);
    }
    for (size_t column = 1; column < snapshots.size(); ++column) {
        for (const SectionChanges& changes : differencesOf(first, snapshots[column])) {
            builders[static_cast<size_t>(changes.before - first.data())].mark(changes.changes,
                                                                              column);
        }
    }
    std::vector<MatrixSection> sections;
    for (size_t i = 0; i < first.size(); ++i) {
        MatrixSection section = {&first[i], builders[i].take(), 0};
        section.differences = static_cast<size_t>(
                std::count_if(section.rows.begin(), section.rows.end(),
                              [](const MatrixRow& row) { return row.isDifferent; }));
        sections.push_back(std::move(section));
    }
    return sections;
}

}  // namespace kc2::tool
