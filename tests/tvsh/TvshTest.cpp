// The command-line host as a person and a script meet it: what it prints where, and its exit status.

#include "TvshFixture.h"

#include <csignal>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

Words keysOf(Json const & object) {
    Words keys;
    for (auto const & item : object.items()) keys.push_back(item.key());
    return keys;
}

} // namespace

TEST_F(Tvsh, EvaluatesEachExpressionInOneSession) {
    Outcome const outcome = run({"eval", "x=3", "x*2"});
    EXPECT_EQ(outcome.status, done);
    EXPECT_EQ(outcome.out, "x = 3\nx*2 = 6\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(Tvsh, ExpressionsAreTakenAsTheyStand) {
    EXPECT_EQ(json({"[1,2,3]"}).at(0)["values"][0]["divisions"], Json::parse("[[1,2,3]]"));
    EXPECT_EQ(json({""}, failedExpression).at(0)["messages"][0]["text"], "Bad syntax in expression ''");
    EXPECT_EQ(json({"%s"}, failedExpression).at(0)["messages"][0]["text"], "Bad syntax in expression '%s'");
    EXPECT_EQ(json({"1 2"}).at(0)["values"].size(), 2u);
    EXPECT_EQ(json({"--", "-1"}).at(0)["values"][0]["divisions"], Json::parse("[[-1]]"));
    EXPECT_EQ(json({"--", "--help"}, failedExpression).at(0)["expr"], "--help");
    EXPECT_EQ(json({"'a,b'"}).at(0)["values"][0]["divisions"], Json::parse(R"([["a,b"]])"));
}

TEST_F(Tvsh, AssignmentsComeFirst) {
    auto const objects = json({"--let", "a=2", "--let", "b=a*3", "b"});
    ASSERT_EQ(objects.size(), 1u);
    EXPECT_EQ(objects[0]["values"][0]["divisions"], Json::parse("[[6]]"));
}

TEST_F(Tvsh, AJsonObjectHasItsKeysInOrder) {
    Json const object = json({"1+1"}).at(0);
    EXPECT_EQ(keysOf(object), (Words{"expr", "ok", "code", "messages", "values"}));
    EXPECT_EQ(keysOf(object["values"][0]),
              (Words{"name", "type", "physType", "unit", "alias", "multiple", "labels", "divisions", "ref"}));
    EXPECT_EQ(object["ok"], true);
    EXPECT_EQ(object["code"], 0);
    EXPECT_TRUE(object["values"][0]["ref"].is_null());
}

TEST_F(Tvsh, AJsonMessageHasItsLevelFirst) {
    Json const message = json({"nothing"}, failedExpression).at(0)["messages"].at(0);
    EXPECT_EQ(keysOf(message), (Words{"level", "text"}));
}

TEST_F(Tvsh, JsonNumbersHaveSeventeenDigits) {
    std::string const text = run({"eval", "--json", "0.1"}).out;
    EXPECT_NE(text.find("[[0.10000000000000001]]"), std::string::npos) << text;
}

TEST_F(Tvsh, JsonNumbersReadBackToTheLastBit) {
    EXPECT_EQ(json({"1/3"}).at(0)["values"][0]["divisions"][0][0].get<double>(), 1.0 / 3.0);
    EXPECT_EQ(json({"0.1"}).at(0)["values"][0]["divisions"][0][0].get<double>(), 0.1);
}

TEST_F(Tvsh, JsonNumbersThatAreNoneAreWords) {
    EXPECT_EQ(json({"0^-1"}).at(0)["values"][0]["divisions"], Json::parse(R"([["inf"]])"));
    EXPECT_EQ(json({"--", "-(0^-1)"}).at(0)["values"][0]["divisions"], Json::parse(R"([["-inf"]])"));
    EXPECT_EQ(json({"0^-1-0^-1"}).at(0)["values"][0]["divisions"], Json::parse(R"([["nan"]])"));
}

TEST_F(Tvsh, JsonComplexElementsArePairs) {
    Json const value = json({"(1,2)*2"}).at(0)["values"][0];
    EXPECT_EQ(value["type"], "complex");
    EXPECT_EQ(value["divisions"], Json::parse("[[[2,4]]]"));
}

TEST_F(Tvsh, JsonCarriesTheReferenceAndUnits) {
    Json const value = json({"--open", rawFile(), "out*2"}).at(0)["values"][0];
    EXPECT_EQ(value["physType"], 2);
    EXPECT_EQ(value["unit"], "V");
    EXPECT_EQ(value["divisions"], Json::parse("[[3,-4,8]]"));
    EXPECT_EQ(keysOf(value["ref"]), (Words{"name", "type", "physType", "divisions"}));
    EXPECT_EQ(value["ref"]["name"], "time");
    EXPECT_EQ(value["ref"]["divisions"], Json::parse("[[0,1,2]]"));
}

TEST_F(Tvsh, JsonTextsAreEscapedAndAlwaysValid) {
    EXPECT_EQ(json({"'\"\\\t'"}).at(0)["values"][0]["divisions"][0][0], "\"\\\t");
    EXPECT_EQ(json({"'\xFF'"}).at(0)["values"][0]["divisions"][0][0], "\xEF\xBF\xBD") << "a byte that is not UTF-8";
}

TEST_F(Tvsh, AFailedExpressionTellsItsMessagesAndCode) {
    auto const objects = json({"nothing", "1+1"}, failedExpression);
    EXPECT_EQ(objects.at(0)["ok"], false);
    EXPECT_EQ(objects.at(0)["code"], 3);
    EXPECT_EQ(objects.at(0)["messages"],
              Json::parse(R"([{"level":"error","text":"Cannot find vector of name 'nothing'"}])"));
    EXPECT_EQ(objects.at(1)["ok"], true) << "the next expression is evaluated all the same";
}

TEST_F(Tvsh, WordsGoToStandardError) {
    Outcome const outcome = run({"eval", "nothing"});
    EXPECT_EQ(outcome.status, failedExpression);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "error: Cannot find vector of name 'nothing'\n");
}

TEST_F(Tvsh, AFailedAssignmentEndsTheRun) {
    Outcome const outcome = run({"eval", "--let", "a=nothing", "1"});
    EXPECT_EQ(outcome.status, failedExpression);
    EXPECT_EQ(outcome.out, "");
}

TEST_F(Tvsh, AFileThatCannotBeOpenedEndsTheRun) {
    Outcome const outcome = run({"eval", "--json", "--open", "/nonexistent/x.raw", "1"});
    EXPECT_EQ(outcome.status, unreadable);
    EXPECT_EQ(outcome.out, "");
}

TEST_F(Tvsh, OptionsMayStandBehindExpressions) {
    EXPECT_EQ(run({"eval", "a/3", "--let=a=1", "--precision=3"}).out, "a/3 = 0.333\n");
}

TEST_F(Tvsh, LongVectorsAreShortened) {
    EXPECT_EQ(run({"eval", "[1 2 3 4 5 6 7 8]"}).out, "[1, 2, 3, 4, 5, 6, 7, 8] = 1, 2, 3, 4, 5, 6, 7, 8\n");
    Outcome const outcome = run({"eval", "--let", "v=[1 2 3 4 5 6 7 8 9]", "v*1"});
    EXPECT_EQ(outcome.out, "v*1 = 1, 2, 3, 4, ..., 8, 9  [9 values]\n");
}

TEST_F(Tvsh, UnitsTakeThePrefixThatSuits) {
    std::string const path = rawFile();
    EXPECT_EQ(run({"eval", "--open", path, "out[0]/1000", "out[1]*1Meg", "out[0]*out[0]/1000"}).out,
              "out[0]/1000 = 1.5 mV\nout[1]*1E+06 = -2 MV\nout[0]*out[0]/1000 = 0.00225 V^2\n");
}

TEST_F(Tvsh, PrecisionIsThatAskedFor) {
    EXPECT_EQ(run({"eval", "--precision", "3", "1/3"}).out, "1/3 = 0.333\n");
}

TEST_F(Tvsh, AGroupNamesWhereToLook) {
    std::string const path = rawFile();
    EXPECT_EQ(run({"eval", "--open", path, "--open", path, "--group", "spice3_1", "out[1]"}).status, done);
    EXPECT_EQ(run({"eval", "--open", path, "--group", "nosuch", "out[1]"}).status, wrongUsage);
}

TEST_F(Tvsh, TheTypeMayBeNamed) {
    EXPECT_EQ(run({"eval", "--open", "spice3:" + rawFile(), "mean(out)"}).status, done);
    for (char const * type : {"native:", "spice2:", "pspice:", "csdf:", "quadrel:"})
        EXPECT_EQ(run({"eval", "--open", type + rawFile(), "mean(out)"}).status, unreadable) << type;
}

TEST_F(Tvsh, ListsVectorsWithKindLengthUnitAndReference) {
    Outcome const outcome = run({"list", rawFile()});
    EXPECT_EQ(outcome.status, done);
    for (char const * word : {"spice3_1", "made by a test", "out", "real", "3", "V", "time"})
        EXPECT_NE(outcome.out.find(word), std::string::npos) << word;
}

TEST_F(Tvsh, PrintsATable) {
    Outcome const outcome = run({"print", rawFile(), "out", "out*out"});
    EXPECT_EQ(outcome.status, done);
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 4);
    EXPECT_NE(outcome.out.find("-2 V"), std::string::npos);
}

TEST_F(Tvsh, ListsFunctionsWithTheirCounts) {
    Outcome const names = run({"functions"});
    EXPECT_EQ(names.status, done);
    EXPECT_NE(names.out.find("\nphase_rad\n"), std::string::npos);
    std::istringstream lines(run({"functions", "--json"}).out);
    bool found = false;
    for (std::string line; std::getline(lines, line);) {
        Json const entry = Json::parse(line);
        EXPECT_FALSE(entry["summary"].get<std::string>().empty()) << line;
        if (entry["name"] != "max") continue;
        found = true;
        EXPECT_EQ(entry["minArgs"], 2);
        EXPECT_EQ(entry["maxArgs"], 2);
    }
    EXPECT_TRUE(found);
}

TEST_F(Tvsh, VersionAndHelp) {
    for (char const * option : {"-V", "--version"}) EXPECT_EQ(run({option}).status, done);
    EXPECT_NE(run({"-V"}).out.find("0.1.0"), std::string::npos);
    for (Words const & words :
         {Words{"-h"}, {"--help"}, {"eval", "-h"}, {"list", "--help"}, {"print", "-h"}, {"functions", "--help"}}) {
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.status, done) << words.front();
        EXPECT_NE(outcome.out.find("Usage: tvsh"), std::string::npos) << words.front();
        EXPECT_NE(outcome.out.find("Example: tvsh"), std::string::npos) << words.front();
    }
}

TEST_F(Tvsh, WrongUsageIsTwo) {
    for (Words const & words : {Words{"nosuch"},
                                {"--nosuch"},
                                {"eval"},
                                {"eval", "-1"},
                                {"eval", "1", "-1"},
                                {"eval", "1", "--open"},
                                {"eval", "--nosuch", "1"},
                                {"list"},
                                {"functions", "x"},
                                {"print", "x"},
                                {"print", "-n", "0", "x", "y"},
                                {"eval", "--precision", "99", "1"}}) {
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.status, wrongUsage) << words.front();
        EXPECT_NE(outcome.err.find("--help"), std::string::npos) << words.front();
        EXPECT_EQ(outcome.out, "");
    }
}

TEST_F(Tvsh, AnUnreadableFileIsNamed) {
    for (std::string const & path :
         {std::string("/nonexistent/x.raw"), file("empty.raw", ""), file("text.txt", "hello\n"),
          file("cut.raw", rawHeader("real", 3)), folder.string()}) {
        Outcome const outcome = run({"list", path});
        EXPECT_EQ(outcome.status, unreadable) << path;
        EXPECT_NE(outcome.err.find(path), std::string::npos) << outcome.err;
    }
}

TEST_F(Tvsh, WhatIsNoFileIsRefusedUnread) {
    std::string const pipe = (folder / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (std::string const & path : {std::string("/dev/zero"), "spice3:" + pipe, pipe}) {
        Outcome const outcome = run({"list", path});
        EXPECT_EQ(outcome.status, unreadable) << path;
        EXPECT_NE(outcome.err.find("a device or a pipe"), std::string::npos) << outcome.err;
    }
}

TEST_F(Tvsh, AHugeFileWithoutLinesIsGivenUpEarly) {
    std::string const zeros = file("zeros.raw", "");
    std::filesystem::resize_file(zeros, std::uintmax_t{1} << 40); // they take no room on the disk
    Outcome const outcome = run({"list", zeros});
    EXPECT_EQ(outcome.status, unreadable);
    EXPECT_NE(outcome.err.find(zeros), std::string::npos) << outcome.err;
}

TEST_F(Tvsh, AListedFileThatFailsLeavesTheOthers) {
    Outcome const outcome = run({"list", "/nonexistent/x.raw", rawFile()});
    EXPECT_EQ(outcome.status, unreadable);
    EXPECT_NE(outcome.out.find("Group spice3_1"), std::string::npos);
}

TEST_F(Tvsh, ABinaryRawFileIsExplained) {
    std::string const path = file("binary.raw", rawHeader("real", 1) + "Binary:\n" + std::string(16, '\1'));
    Outcome const outcome = run({"list", path});
    EXPECT_EQ(outcome.status, unreadable);
    EXPECT_NE(outcome.err.find("set filetype=ascii"), std::string::npos);
}

TEST_F(Tvsh, EveryDataSetOfAFileIsThere) {
    std::string const one = contentOf(rawFile());
    auto const path = file("three.raw", one + std::string(3000000, '\n') + one + one);
    Outcome const outcome = run({"eval", "--open", path, "out[1]", "spice3_1:out[1]", "spice3_2:out[1]"});
    EXPECT_EQ(outcome.status, done);
    EXPECT_EQ(outcome.out, "out[1] = -2 V\nspice3_1:out[1] = -2 V\nspice3_2:out[1] = -2 V\n");
    EXPECT_EQ(outcome.err, "");
    std::string const list = run({"list", path}).out;
    for (char const * group : {"Group spice3_1:", "Group spice3_2:", "Group spice3_3:"})
        EXPECT_NE(list.find(group), std::string::npos) << group;
}

TEST_F(Tvsh, PathsMayHoldAnyByte) {
    std::filesystem::copy_file(rawFile(), folder / "a b:c'%s\n\xFF.raw");
    EXPECT_EQ(run({"eval", "--open", "spice3:" + (folder / "a b:c'%s\n\xFF.raw").string(), "mean(out)"}).status, done);
}

TEST_F(Tvsh, AnOutputThatCannotBeWrittenIsFive) {
    EXPECT_EQ(run({"eval", "1"}, ">/dev/full").status, unwritable);
    EXPECT_EQ(run({"eval", "--json", "1"}, ">/dev/full").status, unwritable);
    EXPECT_EQ(run({"eval", "1"}, ">&-").status, unwritable);
    EXPECT_EQ(run({"functions"}, ">/dev/full").status, unwritable);
    EXPECT_EQ(run({"--help"}, ">/dev/full").status, unwritable);
    EXPECT_EQ(run({"list", rawFile()}, ">/dev/full").status, unwritable);
}

// The shell makes 130 of an end by this signal.
TEST_F(Tvsh, AnInterruptEndsIt) {
    int input[2], words[2];
    ASSERT_EQ(pipe(input), 0);
    ASSERT_EQ(pipe(words), 0);
    pid_t const child = fork();
    if (child == 0) {
        dup2(input[0], STDIN_FILENO);
        dup2(words[1], STDERR_FILENO);
        std::signal(SIGINT, SIG_DFL);
        execl(TVSH_PROGRAM, "tvsh", nullptr);
        _exit(127);
    }
    close(words[1]);
    ASSERT_EQ(write(input[1], "nothing\n", 8), 8);
    char said = 0;
    EXPECT_EQ(read(words[0], &said, 1), 1) << "tvsh runs, and complains of the line";
    ASSERT_EQ(kill(child, SIGINT), 0);
    int code = 0;
    ASSERT_EQ(waitpid(child, &code, 0), child);
    EXPECT_TRUE(WIFSIGNALED(code) && WTERMSIG(code) == SIGINT) << code;
    for (int end : {input[0], input[1], words[0]}) close(end);
}

TEST_F(Tvsh, ADecimalCommaChangesNothing) {
    Outcome const outcome = run({"eval", "--precision", "3", "1.5*2.25"});
    EXPECT_EQ(outcome.out, "1.5*2.25 = 3.38\n");
}

TEST_F(Tvsh, ThePromptTakesALineAtATime) {
    std::string const script = file("lines", "x=[1,2]\nx*2\nnothing\n1+1\nquit\n3\n");
    Outcome const outcome = run({}, "<" + quoted(script));
    EXPECT_EQ(outcome.status, failedExpression) << "one of the lines failed";
    EXPECT_EQ(outcome.out, "x = 1, 2\nx*2 = 2, 4\n1+1 = 2\n");
    EXPECT_NE(outcome.err.find("Cannot find vector of name 'nothing'"), std::string::npos);
}

TEST_F(Tvsh, ThePromptOpensFilesFirst) {
    std::string const script = file("lines", "out[2]\n");
    EXPECT_EQ(run({"--open", rawFile()}, "<" + quoted(script)).out, "out[2] = 4 V\n");
    EXPECT_EQ(run({"--open", "/nonexistent/x.raw"}, "<" + quoted(script)).status, unreadable);
}
