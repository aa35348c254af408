#include "ValueTable.h"

#include "Console.h"
#include "Table.h"
#include "TextOutput.h"

#include <algorithm>

namespace {

struct Column {
    std::string title;
    BaseVector const * values;
};

// References are shown once, ahead of the first of the values that share them.
std::vector<Column> columnsOf(std::vector<XYVector const *> const & values) {
    std::vector<Column> columns;
    NamedVector const * shown = nullptr;
    for (XYVector const * value : values) {
        bool const isNew = shown == nullptr || !shown->sameData(value->ref);
        if (value->ref.totalLength() > 0 && isNew && !value->sameData(value->ref)) {
            shown = &value->ref;
            columns.push_back({displayName(shown->name()), shown});
        }
        columns.push_back({displayName(value->name()), value});
    }
    return columns;
}

std::int64_t longest(std::vector<Column> const & columns, std::int64_t division) {
    std::int64_t n = 0;
    for (Column const & column : columns)
        if (division < column.values->numDivisions()) n = std::max(n, column.values->length(division));
    return n;
}

std::int64_t mostDivisions(std::vector<Column> const & columns) {
    std::int64_t n = 0;
    for (Column const & column : columns) n = std::max(n, column.values->numDivisions());
    return n;
}

std::vector<std::string> rowOf(std::vector<Column> const & columns, std::int64_t i, std::int64_t division,
                               int precision) {
    std::vector<std::string> row;
    for (Column const & column : columns) {
        BaseVector const & values = *column.values;
        bool const isThere = division < values.numDivisions() && i < values.length(division);
        row.push_back(isThere ? elementText(values, i, division, precision) : "");
    }
    return row;
}

std::string tableOf(std::vector<Column> const & columns, std::int64_t division, TableOptions const & options) {
    Table table(std::vector<Table::Align>(columns.size(), Table::Align::right));
    std::vector<std::string> titles;
    for (Column const & column : columns) titles.push_back(column.title);
    table.addRow(std::move(titles));
    std::int64_t const n = longest(columns, division);
    std::int64_t const rows = options.rows > 0 ? std::min(options.rows, n) : n;
    for (std::int64_t k = 0; k < rows; ++k) {
        double const spacing = rows > 1 ? static_cast<double>(n - 1) / static_cast<double>(rows - 1) : 0;
        auto const i = static_cast<std::int64_t>(static_cast<double>(k) * spacing + 0.5);
        table.addRow(rowOf(columns, i, division, options.precision));
    }
    return table.text();
}

} // namespace

void writeTables(std::vector<XYVector const *> const & values, TableOptions const & options) {
    std::vector<Column> const columns = columnsOf(values);
    for (std::int64_t division = 0; division < mostDivisions(columns); ++division) {
        if (division > 0) writeOut("\n");
        writeOut(tableOf(columns, division, options));
    }
}
