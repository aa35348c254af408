#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "ExitStatus.h"
#include "OpenFiles.h"
#include "Table.h"

#include "torvelan/EngineSession.h"
#include "torvelan/Groups.h"
#include "torvelan/VectorStore.h"

namespace {

std::string text(YString const & s) {
    return std::string(s.view());
}

char const * kindName(VD_type type) {
    return type == VD_COMPLEX ? "complex" : type == VD_STRING ? "string" : "real";
}

std::vector<VectorInfo> vectorsOf(YString const & group) {
    int count = 0;
    vec_GetNumVectorsInGroup(group, &count);
    std::vector<VectorInfo> vectors(static_cast<std::size_t>(count));
    vectors.resize(static_cast<std::size_t>(vec_GetVectorsInGroup(group, vectors.data(), count)));
    return vectors;
}

std::string referenceName(YString const & group, YString const & name) {
    XYVector * vector = nullptr;
    vec_GetVector(group, name, &vector);
    return vector != nullptr && vector->ref.totalLength() > 0 ? text(vector->ref.name()) : "-";
}

std::vector<std::string> rowOf(YString const & group, VectorInfo const & vector) {
    std::string const unit = text(sp_GetPhysTypeUnit(vector.physType));
    return {text(vector.name),
            kindName(vector.type),
            std::to_string(vector.length),
            std::to_string(vector.numDivisions),
            unit.empty() ? "-" : unit,
            referenceName(group, vector.name)};
}

void writeGroup(YString const & group) {
    YString title;
    vec_GetGroupTitle(group, title);
    title.stripLeading(" \t");
    GroupInfo info;
    vec_GetGroupInfo(group, &info);
    info.date.stripLeading(" \t");
    writeOut("Group " + text(group) + ": " + text(title) + (info.date.empty() ? "" : "  (" + text(info.date) + ")") +
             "\n");
    using enum Table::Align;
    Table table({left, left, right, right, left, left});
    table.addRow({"  vector", "type", "length", "divisions", "unit", "reference"});
    for (VectorInfo const & vector : vectorsOf(group)) {
        auto row = rowOf(group, vector);
        row[0].insert(0, "  ");
        table.addRow(std::move(row));
    }
    writeOut(table.text());
}

int listFiles(std::vector<std::string> const & files) {
    auto const console = std::make_shared<ConsoleMessages>();
    EngineSession const session(console);
    int status = exitDone;
    for (std::string const & file : files) {
        EngineSession::Command const command;
        std::vector<YString> groups;
        if (!openFile(file, console, &groups)) status = exitInput;
        for (YString const & group : groups) writeGroup(group);
    }
    return status;
}

} // namespace

int runList(Arguments const & arguments) {
    CommandLine line({.command = "list",
                      .summary = "Lists the groups and vectors of each FILE.",
                      .operands = "FILE",
                      .operandHelp = fileHelp,
                      .example = "tvsh list ac.raw spice3:startup.out"});
    if (auto const status = line.parse(arguments)) return *status;
    if (line.operands().empty()) return line.usageError("a FILE is needed");
    return finishOutput(listFiles(line.operands()));
}
