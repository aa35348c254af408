// Native data files at the command line.

#include "TvshFixture.h"

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
    EXPECT_EQ(run({"eval", "--open", out, "vec_length(out)"}).out,
              run({"eval", "--open", example("amplifier/ac.raw"), "vec_length(out)"}).out);
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

TEST_F(Tvsh, DataSetsAheadOfABadOneAreImported) {
    std::string const set = contentOf(example("amplifier/ac.raw"));
    std::string const half = folder / "half.raw";
    std::ofstream(half, std::ios::binary) << set << set.substr(0, set.size() / 8);
    Outcome const imported = run({"import", half, "-o", folder / "out.tvdat"});
    EXPECT_TRUE(std::filesystem::exists(folder / "out.tvdat")) << imported.err;
}

TEST_F(Tvsh, ImportTellsWhatItCannotReadOrWrite) {
    std::string const file = example("amplifier/ac.raw");
    EXPECT_EQ(run({"import", file}).status, wrongUsage);
    EXPECT_EQ(run({"import", folder / "nothing", "-o", folder / "x.tvdat"}).status, unreadable);
    Outcome const outcome = run({"import", file, "-o", folder / "no" / "x.tvdat"});
    EXPECT_EQ(outcome.status, unwritable);
    EXPECT_NE(outcome.err.find("No such file or directory"), std::string::npos) << outcome.err;
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
