#include "Commands.h"
#include "Console.h"
#include "Evaluation.h"
#include "ExitStatus.h"
#include "LineReader.h"
#include "NumberText.h"
#include "OpenFiles.h"
#include "TextOutput.h"

#include "torvelan/EngineSession.h"

namespace {

bool isQuit(std::string const & line) {
    return line == "quit" || line == "exit";
}

bool isBlank(std::string const & line) {
    return line.find_first_not_of(" \t\r") == std::string::npos;
}

bool runLine(std::string const & line, YRef<MessageHandler> const & messages) {
    EngineSession::Command const command;
    Evaluation const evaluation(line, messages);
    for (XYVector const * value : evaluation.values()) writeOut(valueText(*value, shortestPrecision));
    return evaluation.ok();
}

bool runLines(LineReader & reader, YRef<MessageHandler> const & messages) {
    bool ok = true;
    while (auto const line = reader.next()) {
        if (isQuit(*line)) return ok;
        if (!isBlank(*line)) ok = runLine(*line, messages) && ok;
    }
    if (reader.isInteractive()) writeOut("\n"); // else what follows stands behind the last prompt
    return ok;
}

} // namespace

int runPrompt(std::vector<std::string> const & files) {
    auto const console = std::make_shared<ConsoleMessages>();
    EngineSession const session(console);
    for (std::string const & file : files) {
        EngineSession::Command const command;
        if (!openFile(file, console)) return finishOutput(exitInput);
    }
    LineReader reader;
    if (reader.isInteractive()) writeOut(std::string("tvsh ") + vec_Version() + "; 'quit' ends it\n");
    bool const ok = runLines(reader, console);
    return finishOutput(ok || reader.isInteractive() ? exitDone : exitExpression);
}
