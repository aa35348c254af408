#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "ExitStatus.h"

#include "torvelan/DataFiles.h"

namespace {

// What is found goes to the output, what is wrong to the console.
class DumpMessages final : public MessageHandler {
public:
    explicit DumpMessages(std::string const & file) { console.setSubject(file); }
    void finalOutput(MessageLevel level, YString const & text) override {
        if (level == MessageLevel::info)
            writeOut(std::string(text.view()) + "\n");
        else
            console.finalOutput(level, text);
    }

private:
    ConsoleMessages console;
};

} // namespace

int runDump(Arguments const & arguments) {
    CommandLine line(
        {.command = "dump",
         .summary = "Shows how each data file is built: streams, extents, records, links, and damage found.",
         .operands = "FILE",
         .operandHelp = "a native data file",
         .example = "tvsh dump run.tvdat"});
    if (auto const status = line.parse(arguments)) return *status;
    if (line.operands().empty()) return line.usageError("a FILE is needed");
    int status = exitDone;
    for (std::string const & file : line.operands())
        if (!vec_DescribeDataFile(YString(file), std::make_shared<DumpMessages>(file))) status = exitInput;
    return finishOutput(status);
}
