// Scripts and commands of the command-line host.

#include "TvshFixture.h"

#include <poll.h>
#include <pty.h>
#include <unistd.h>

namespace {

class Script : public Tvsh {
protected:
    // Writes a script and runs it.
    Outcome script(std::string const & text, Words arguments = {}) {
        arguments.insert(arguments.begin(), {"run", file("main.tv", text)});
        return run(arguments);
    }
    // What lines at the prompt print; they succeed.
    std::string printed(std::string const & lines) {
        Outcome const outcome = prompt(lines);
        EXPECT_EQ(outcome.status, done) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }
    Outcome prompt(std::string const & lines) { return run({}, "<" + quoted(file("lines", lines))); }
    std::string at(int line) const { return (folder / "main.tv").string() + ":" + std::to_string(line) + ": "; }
};

} // namespace

TEST_F(Script, RunsALineAtATime) {
    Outcome const outcome = script("# a comment\n\n  Let x = 3 \r\nx*2\n\tLET y=x\n y\n");
    EXPECT_EQ(outcome.status, done) << outcome.err;
    EXPECT_EQ(outcome.out, "x*2 = 6\ny = 3\n");
}

TEST_F(Script, EndsAtTheFirstFailureAndNamesFileAndLine) {
    Outcome const outcome = script("1+1\n\nnothing\n2+2\n");
    EXPECT_EQ(outcome.status, failedExpression);
    EXPECT_EQ(outcome.out, "1+1 = 2\n");
    EXPECT_EQ(outcome.err, at(3) + "error: Cannot find vector of name 'nothing'\n");
}

TEST_F(Script, MayGoOnAfterErrors) {
    Outcome const outcome = script("OnError continue\nnothing\n2+2\nOnError stop\nnothing\n3+3\n");
    EXPECT_EQ(outcome.status, failedExpression);
    EXPECT_EQ(outcome.out, "2+2 = 4\n");
}

TEST_F(Script, QuitEndsItWithoutFailure) {
    EXPECT_EQ(script("1+1\nQuit\nnothing\n").status, done);
}

TEST_F(Script, GetsItsArguments) {
    Outcome const outcome = script("Arguments x y=x*2 s='none'\nx+y\ns\n", {"3", "4"});
    EXPECT_EQ(outcome.status, done) << outcome.err;
    EXPECT_EQ(outcome.out, "x+y = 7\ns = none\n");
    EXPECT_EQ(script("Arguments x y=x*2\nx+y\n", {"3"}).out, "x+y = 9\n");
    Outcome const missing = script("Arguments x\n");
    EXPECT_EQ(missing.status, failedExpression);
    EXPECT_EQ(missing.err, at(1) + "error: No value passed to argument 1\n");
    EXPECT_EQ(script("1\n", {"nothing"}).status, failedExpression) << "arguments are evaluated first";
}

TEST_F(Script, HasVariablesOfItsOwn) {
    file("inner.tv", "Let x=2\nx\n");
    EXPECT_EQ(script("Let x=1\nRun inner\nx\n").out, "x = 2\nx = 1\n");
}

TEST_F(Script, WritesVariablesPassedByReference) {
    file("set.tv", "Arguments @out v\nLet out=v*2\n");
    EXPECT_EQ(script("Let x=1\nRun set @x 5\nx\n").out, "x = 10\n");
    EXPECT_EQ(script("Run set @fresh XY([1,2],[3,4])\nfresh\nRef(fresh)\n").out,
              "fresh = 2, 4  [2 values over [3, 4]]\nRef(fresh) = 3, 4\n");
    EXPECT_EQ(script("Let x='text'\nRun set @x 5\nx\n").out, "x = 10\n");
}

TEST_F(Script, BecomesAFunctionOfExpressions) {
    file("twice.tv", "Arguments @rv x n=2\nLet rv=x*n\n");
    Outcome const outcome =
        script("RegisterUserFunction Twice twice 1 2\nTwice(4)+Twice(1,10)\nTwice(Twice(Twice(1)))\nTwice()\n");
    EXPECT_EQ(outcome.out, "Twice(4)+Twice(1, 10) = 18\nTwice(Twice(Twice(1))) = 8\n");
    EXPECT_EQ(outcome.err, at(4) + "error: Insufficient number of arguments to function 'Twice'\n");
}

TEST_F(Script, IsRunByExecute) {
    file("sum three.tv", "Arguments @rv a b c\nLet rv=a+b+c\n");
    EXPECT_EQ(script("Execute('\"sum three\"', 1, 2, 3)\n").out, "Execute('\"sum three\"', 1, 2, 3) = 6\n");
    Outcome const outcome = script("Execute('missing')\n");
    EXPECT_EQ(outcome.status, failedExpression);
    EXPECT_NE(outcome.err.find("there is no script 'missing'"), std::string::npos) << outcome.err;
}

TEST_F(Script, FailsTheExpressionThatCallsIt) {
    file("bad.tv", "Arguments @rv\nnothing\n");
    Outcome const outcome = script("RegisterUserFunction Bad bad 0 0\nBad()+1\n");
    EXPECT_EQ(outcome.status, failedExpression);
    EXPECT_EQ(outcome.err, (folder / "bad.tv").string() + ":2: error: Cannot find vector of name 'nothing'\n");
}

TEST_F(Script, CannotRecurseForEver) {
    file("again.tv", "Run again\n");
    Outcome outcome = script("Run again\n");
    EXPECT_EQ(outcome.status, failedExpression);
    EXPECT_NE(outcome.err.find("scripts are nested too deeply to run 'again'"), std::string::npos) << outcome.err;
    file("rec.tv", "Arguments @rv x\nLet rv=Rec(x+1)\n");
    outcome = script("RegisterUserFunction Rec rec 1 1\nRec(1)\n");
    EXPECT_EQ(outcome.status, failedExpression);
    EXPECT_NE(outcome.err.find("scripts are nested too deeply to run 'rec'"), std::string::npos) << outcome.err;
}

TEST_F(Script, IsFoundBesideItsCallerAndAlongThePath) {
    std::filesystem::create_directories(folder / "lib");
    file("lib/helper.tv", "Run other\n");
    file("lib/other.tv", "'other'\n");
    EXPECT_EQ(script("Run lib/helper\n").out, "'other' = other\n");
    setenv("TVSH_PATH", ("/nonexistent:" + (folder / "lib").string()).c_str(), 1);
    EXPECT_EQ(script("Run other\n").out, "'other' = other\n");
    unsetenv("TVSH_PATH");
    EXPECT_EQ(script("Run other\n").status, unreadable);
    EXPECT_EQ(run({"run", "/nonexistent/x.tv"}).status, unreadable);
    EXPECT_EQ(run({"run"}).status, wrongUsage);
}

TEST_F(Script, ExamplesPrintWhatStandsBesideThem) {
    std::string const source = TORVELAN_SOURCE_DIR;
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(source);
    for (std::string const name : {"review", "measures"}) {
        std::string const place = "examples/" + name + "/";
        Outcome const outcome = run({"run", place + name + ".tv"});
        EXPECT_EQ(outcome.status, done) << outcome.err;
        EXPECT_EQ(outcome.out, contentOf(place + "expected.txt"));
    }
    std::filesystem::current_path(before);
}

// --- commands

TEST_F(Script, WrongUsageIsExplained) {
    for (auto const & [line, words] : {std::pair<std::string, std::string>{"SetUnits v", "something is missing"},
                                       {"Groups now", "too many words"},
                                       {"DelGroup /some x", "unknown switch '/some'"},
                                       {"Print 'x", "a quote is not closed"},
                                       {"OnError maybe", "OnError takes 'continue' or 'stop'"},
                                       {"Help nothing", "there is no command 'nothing'"},
                                       {"SetGroup nowhere", "there is no group of name 'nowhere'"},
                                       {"Vectors nowhere", "there is no group of name 'nowhere'"},
                                       {"Echo {1", "'{' without '}'"}}) {
        Outcome const outcome = script(line + "\n");
        EXPECT_NE(outcome.status, done) << line;
        EXPECT_NE(outcome.err.find(words), std::string::npos) << line << ": " << outcome.err;
    }
    EXPECT_EQ(script("SetUnits v\n").status, wrongUsage);
}

TEST_F(Script, CommandsOnVectors) {
    EXPECT_EQ(printed("Let v=[1,2]\nSetUnits v V\nSetRef v [3, 4]*2\nv\nRef(v)\n"),
              "v = 1 V, 2 V  [2 values over [3, 4]*2]\nRef(v) = 6, 8\n");
    EXPECT_EQ(printed("Let v=2\nMakeAlias a v*3\na+1\nLet s='v*5'\nMakeAlias s\ns\n"), "a+1 = 7\ns = 10\n");
    EXPECT_EQ(prompt("Let v=2\nSetReadOnly v\nv=3\n").status, failedExpression);
    EXPECT_EQ(prompt("MakeAlias a 1\nMakeAlias a 2\n").status, failedExpression);
    EXPECT_EQ(printed("Let v=2\nDiscard global:v\nExistVec('v')\n"), "ExistVec('v') = 0\n");
}

TEST_F(Script, CommandsOnGroups) {
    std::string const raw = rawFile();
    EXPECT_EQ(printed("OpenGroup " + raw + "\nGroups\nVectors\nSetGroup global\nGroups\n"),
              "* spice3_1  made by a test\n  global  Global vars\nout\ntime\n"
              "  spice3_1  made by a test\n* global  Global vars\n");
    EXPECT_EQ(printed("OpenGroup " + raw + "\nKeepGroup\nKeepGroup /no spice3_1\nDelGroup /all\nGroups\n"),
              "* global  Global vars\n");
    EXPECT_EQ(printed("OpenGroup " + raw + "\nDiscard /group spice3_1\nGroups\n"), "* global  Global vars\n");
    EXPECT_EQ(prompt("OpenGroup /nonexistent.raw\n").status, unreadable);
    EXPECT_EQ(prompt("DelGroup global\n").err, "error: The group 'global' is protected and cannot be deleted\n");
}

TEST_F(Script, TablesAndTexts) {
    EXPECT_EQ(printed("Print XY([1,2,3],[4,5,6]) [7,8]\n").substr(0, 5), "[4, 5");
    EXPECT_EQ(printed("Let a=[1,2,3,4,5]\nPrint /rows=2 a\n"), "a\n1\n5\n");
    EXPECT_EQ(printed("Let x=1.5\nEcho x is {x}, twice {x*2}; done\n"), "x is 1.5, twice 3; done\n");
    EXPECT_EQ(printed("Echo\n"), "\n");
}

TEST_F(Script, DisplayDrawsEveryValueInItsPlace) {
    EXPECT_EQ(printed("Let v=XY([0,1,2,3],[0,1,2,3])\nDisplay /width=20 /height=4 v\n"), "* v\n"
                                                                                         "3 |                 ***\n"
                                                                                         "  |          ********\n"
                                                                                         "  |    *******\n"
                                                                                         "0 |*****\n"
                                                                                         "  +--------------------\n"
                                                                                         "   0   [0, 1, 2, 3]   3\n");
    EXPECT_EQ(printed("Display 'text' 'more text'\n"), "nothing to draw\n");
    EXPECT_EQ(printed("Display 5\n").substr(0, 4), "* 5\n");
}

TEST_F(Script, HelpNamesEveryCommand) {
    std::string const all = printed("Help\n");
    for (char const * name : {"Arguments", "Let", "MakeAlias", "RegisterUserFunction", "Run", "Display"})
        EXPECT_NE(("\n" + all).find(std::string("\n") + name + " "), std::string::npos) << name;
    EXPECT_EQ(printed("help setunits\n"), "SetUnits VECTOR UNIT\n    says what a vector measures\n");
}

TEST_F(Script, TheDocumentHasEveryCommand) {
    std::string const document = contentOf(std::string(TORVELAN_SOURCE_DIR) + "/docs/tvsh.md");
    std::istringstream lines(printed("Help\n"));
    int count = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line.front() == ' ') continue;
        std::string shown = line;
        if (auto const bar = shown.find('|'); bar != std::string::npos) shown.insert(bar, "\\");
        EXPECT_NE(document.find("| `" + shown + "` |"), std::string::npos) << line;
        ++count;
    }
    EXPECT_GT(count, 20);
}

// At a terminal.
TEST_F(Script, ThePromptCompletesNamesAndKeepsItsHistory) {
    int terminal = -1;
    pid_t const child = forkpty(&terminal, nullptr, nullptr, nullptr);
    ASSERT_GE(child, 0);
    if (child == 0) {
        setenv("XDG_STATE_HOME", folder.c_str(), 1);
        setenv("TERM", "xterm", 1);
        execl(TVSH_PROGRAM, "tvsh", nullptr);
        _exit(127);
    }
    std::string shown;
    auto const waitFor = [&](std::string const & words) {
        char buffer[4096];
        while (shown.find(words) == std::string::npos) {
            pollfd ready{terminal, POLLIN, 0};
            if (poll(&ready, 1, 20000) <= 0) return false;
            ssize_t const n = read(terminal, buffer, sizeof buffer);
            if (n <= 0) return false;
            shown.append(buffer, static_cast<std::size_t>(n));
        }
        shown.clear();
        return true;
    };
    auto const type = [&](std::string const & keys) {
        EXPECT_EQ(write(terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    };
    EXPECT_TRUE(waitFor("tvsh> "));
    type("global:p\t\n");
    EXPECT_TRUE(waitFor("pi = 3.14"));
    type("Quit\n");
    int code = -1;
    while (waitFor("never")) {
    }
    EXPECT_EQ(waitpid(child, &code, 0), child);
    EXPECT_EQ(code, 0);
    close(terminal);
    std::string const history = (folder / "tvsh/history").string();
    EXPECT_NE(contentOf(history).find("global:pi"), std::string::npos);
    EXPECT_EQ(std::filesystem::status(history).permissions() & std::filesystem::perms(077), std::filesystem::perms(0));
}

TEST_F(Script, OptionsAreSet) {
    std::string const slopes = "Let v=XY([0,5,1,4],[0,0.1,1,2])\ndiff(v)\n";
    EXPECT_EQ(printed(slopes), "diff(v) = 50, 50, -4.44444, 3  [4 values over [0, 0.1, 1, 2]]\n");
    EXPECT_EQ(printed("Set DerivAcceptFactor 0.5\n" + slopes),
              "diff(v) = 1, 1, 1, 3  [4 values over [0, 0.1, 1, 2]]\n");
}
