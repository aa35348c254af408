// Native data files at the command line.

#include "TvshFixture.h"

#include <algorithm>

#include <pty.h>
#include <unistd.h>

namespace {

std::string example(std::string const & name) {
    return std::string(TORVELAN_SOURCE_DIR) + "/examples/" + name;
}

} // namespace

TEST_F(Tvsh, ImportsAFileIntoANativeOneThatAllCommandsTake) {
    std::string const out = folder / "amp.tvdat";
    Outcome const imported = run({"import", example("amplifier/ac.raw"), "-o", out});
    ASSERT_EQ(imported.status, done) << imported.err;
    EXPECT_NE(imported.out.find(" -> " + out), std::string::npos) << imported.out;
    for (std::string const & file : {out, example("amplifier/ac.raw")}) {
        Outcome const length = run({"eval", "--open", file, "length(out)"});
        EXPECT_EQ(length.status, done) << length.err;
        EXPECT_EQ(length.out, "length(out) = 181\n") << file;
    }
    EXPECT_EQ(run({"list", out}).status, done);
    Outcome const dump = run({"dump", out});
    EXPECT_EQ(dump.status, done);
    for (char const * part : {"Damage: none", "Boot records:", "  version 2", "bytes: ", "vecdir"})
        EXPECT_NE(dump.out.find(part), std::string::npos) << part << " in\n" << dump.out;
}

TEST_F(Tvsh, ImportsEachDataSetIntoAFileOfItsOwn) {
    std::string const set = contentOf(example("amplifier/ac.raw"));
    std::string const both = folder / "both.raw";
    std::ofstream(both, std::ios::binary) << set << set;
    Outcome const imported = run({"import", both, "-o", folder / "out.tvdat"});
    ASSERT_EQ(imported.status, done) << imported.err;
    EXPECT_TRUE(std::filesystem::exists(folder / "out.tvdat"));
    EXPECT_TRUE(std::filesystem::exists(folder / "out_1.tvdat"));
}

TEST_F(Tvsh, DivisionsOfASingleColumnAreImported) {
    std::string const text = file("d.txt", ".div label=a index=0\na\n1\n2\n.div label=b index=1\na\n3\n4\n5\n");
    ASSERT_EQ(run({"import", text, "-o", folder / "d.tvdat"}).status, done);
    Outcome const listed = run({"list", folder / "d.tvdat"});
    EXPECT_NE(listed.out.find(" 2  "), std::string::npos) << listed.out;
    std::string const sum = "sum(a[][1])";
    EXPECT_EQ(run({"eval", "--open", folder / "d.tvdat", sum}).out, run({"eval", "--open", text, sum}).out);
}

TEST_F(Tvsh, DataSetsAheadOfABadOneAreImported) {
    std::string const set = contentOf(example("amplifier/ac.raw"));
    std::string const half = folder / "half.raw";
    std::ofstream(half, std::ios::binary) << set << set.substr(0, set.size() / 8);
    Outcome const imported = run({"import", half, "-o", folder / "out.tvdat"});
    EXPECT_TRUE(std::filesystem::exists(folder / "out.tvdat")) << imported.err;
}

// Where a file cannot become larger than this, as on a full disk.
constexpr char const * smallFiles = "trap '' XFSZ; ulimit -f 256; ";
constexpr int tooManyPoints = 40000;

TEST_F(Tvsh, ImportOntoAFullDiskIsNoSuccess) {
    std::string const large = file("large.raw", rawWithPoints(tooManyPoints));
    inShell = smallFiles;
    Outcome const outcome = run({"import", large, "-o", folder / "result.tvdat"});
    EXPECT_EQ(outcome.status, unwritable);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find("Write failure to data file " + (folder / "result.tvdat").string()), std::string::npos)
        << outcome.err;
    EXPECT_EQ(filesNamed("result"), Words());
}

TEST_F(Tvsh, DataSetsAheadOfOneForWhichTheDiskIsTooSmallAreImported) {
    std::string const sets = file("sets.raw", rawWithPoints(3) + rawWithPoints(tooManyPoints));
    inShell = smallFiles + ("TMPDIR=" + quoted(folder)) + " ";
    Outcome const outcome = run({"import", sets, "-o", folder / "result.tvdat"});
    EXPECT_EQ(outcome.status, unreadable);
    EXPECT_NE(outcome.err.find("temporary files"), std::string::npos) << outcome.err;
    EXPECT_EQ(filesNamed("result"), Words{"result.tvdat"});
    EXPECT_NE(outcome.out.find("6 values -> "), std::string::npos) << outcome.out;
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1);
    EXPECT_EQ(filesNamed("tvsh-"), Words());
}

TEST_F(Tvsh, ImportTellsATerminalHowFarItIs) {
    constexpr int points = 1000000; // with signs, which make numbers that are read one by one
    std::string text = rawHeader("real", points) + "Values:\n";
    for (int i = 0; i < points; ++i) text += " " + std::to_string(i) + "\t+1.2345678901234567e+00\n\t+2.5\n";
    std::string const large = file("large.raw", text);
    int terminal = -1;
    pid_t const child = forkpty(&terminal, nullptr, nullptr, nullptr);
    ASSERT_GE(child, 0);
    if (child == 0) {
        execl(TVSH_PROGRAM, "tvsh", "import", large.c_str(), "-o", (folder / "out.tvdat").c_str(), nullptr);
        _exit(127);
    }
    std::string shown;
    char buffer[4096];
    for (ssize_t n = 0; (n = read(terminal, buffer, sizeof buffer)) > 0;)
        shown.append(buffer, static_cast<std::size_t>(n));
    int code = -1;
    EXPECT_EQ(waitpid(child, &code, 0), child);
    EXPECT_EQ(code, 0);
    close(terminal);
    std::size_t const progress = shown.find("\rlarge.raw: reading ");
    EXPECT_NE(progress, std::string::npos) << shown;
    EXPECT_NE(shown.find(" %", progress), std::string::npos) << shown;
    EXPECT_NE(shown.find("\r\x1b[K", progress), std::string::npos) << shown;
    EXPECT_EQ(run({"import", large, "-o", folder / "out.tvdat"}).err, "");
}

TEST_F(Tvsh, ImportTellsWhatItCannotReadOrWrite) {
    std::string const file = example("amplifier/ac.raw");
    EXPECT_EQ(run({"import", file}).status, wrongUsage);
    EXPECT_EQ(run({"import", folder / "nothing", "-o", folder / "x.tvdat"}).status, unreadable);
    Outcome const outcome = run({"import", file, "-o", folder / "no" / "x.tvdat"});
    EXPECT_EQ(outcome.status, unwritable);
    EXPECT_NE(outcome.err.find("No such file or directory"), std::string::npos) << outcome.err;
    EXPECT_NE(run({"import", file, "-o", ""}).err.find("Cannot write file '': a file without a name"),
              std::string::npos);
}

TEST_F(Tvsh, DumpTellsOfDamageAndOfWhatIsNoDataFile) {
    std::string const out = folder / "amp.tvdat";
    ASSERT_EQ(run({"import", example("amplifier/ac.raw"), "-o", out}).status, done);
    std::filesystem::resize_file(out, std::filesystem::file_size(out) - 100);
    EXPECT_NE(run({"dump", out}).out.find("Damage: extents lie behind the end of the file"), std::string::npos);
    EXPECT_EQ(run({"dump", example("amplifier/ac.raw")}).status, unreadable);
}

TEST_F(Tvsh, AScriptSavesAGroup) {
    std::string const script = folder / "save.tv", out = folder / "saved.tvdat";
    std::ofstream(script) << "OpenGroup " << example("amplifier/ac.raw") << "\nLet gain = db(out/in)\nSaveGroup " << out
                          << "\n";
    Outcome const outcome = run({"run", script});
    ASSERT_EQ(outcome.status, done) << outcome.err;
    EXPECT_TRUE(std::filesystem::exists(out));
}
