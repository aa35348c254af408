#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Evaluation.h"
#include "ExitStatus.h"
#include "OpenFiles.h"
#include "Table.h"
#include "TextOutput.h"

#include "torvelan/EngineSession.h"

#include <algorithm>

namespace {

struct PrintOptions {
    std::int64_t rows = 0; // at most, evenly spaced; 0: all
    int precision = 6;
};

struct Column {
    std::string title;
    BaseVector const * values;
};

// References are shown once, ahead of the first of the values that share them.
std::vector<Column> columnsOf(std::vector<std::unique_ptr<Evaluation>> const & evaluations) {
    std::vector<Column> columns;
    NamedVector const * shown = nullptr;
    for (auto const & evaluation : evaluations)
        for (XYVector const * value : evaluation->values()) {
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

std::string tableOf(std::vector<Column> const & columns, std::int64_t division, PrintOptions const & options) {
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

void writeTables(std::vector<Column> const & columns, PrintOptions const & options) {
    for (std::int64_t division = 0; division < mostDivisions(columns); ++division) {
        if (division > 0) writeOut("\n");
        writeOut(tableOf(columns, division, options));
    }
}

int printFile(std::vector<std::string> const & operands, PrintOptions const & options) {
    auto const console = std::make_shared<ConsoleMessages>();
    EngineSession const session(console);
    EngineSession::Command const command;
    if (!openFile(operands.front(), console)) return exitInput;
    std::vector<std::unique_ptr<Evaluation>> evaluations;
    for (auto expression = operands.begin() + 1; expression != operands.end(); ++expression) {
        evaluations.push_back(std::make_unique<Evaluation>(*expression, console));
        if (!evaluations.back()->ok()) return exitExpression;
    }
    writeTables(columnsOf(evaluations), options);
    return exitDone;
}

} // namespace

int runPrint(Arguments const & arguments) {
    CommandLine line({.command = "print",
                      .summary = "Prints values over their reference as a table.",
                      .operands = "FILE EXPR",
                      .operandHelp = std::string(fileHelp) + "; and expressions over its vectors",
                      .example = "tvsh print --rows 20 startup.raw out 'l1#p' 'out*rload#p'"});
    PrintOptions options;
    line.app.add_option("-n,--rows", options.rows, "at most N rows, evenly spaced")
        ->type_name("N")
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{1} << 53));
    line.app.add_option("--precision", options.precision, "significant digits")
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(1, 17));
    if (auto const status = line.parse(arguments)) return *status;
    if (line.operands().size() < 2) return line.usageError("a FILE and an EXPR are needed");
    return finishOutput(printFile(line.operands(), options));
}
