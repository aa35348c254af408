// Files of every type, by their content, through the command-line host.
#include "TvshFixture.h"

namespace {

class TvshFiles : public Tvsh {
protected:
    // What an expression over a file gives.
    std::string value(std::string const & argument, char const * expression) {
        Outcome const outcome = run({"eval", "--open", argument, expression});
        EXPECT_EQ(outcome.status, done) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }
    // The words about a file that is refused.
    std::string refusal(std::string const & argument) {
        Outcome const outcome = run({"list", argument});
        EXPECT_EQ(outcome.status, unreadable) << argument;
        EXPECT_EQ(outcome.out, "");
        return outcome.err;
    }
    void expectRefusal(std::string const & argument, std::initializer_list<char const *> words) {
        std::string const said = refusal(argument);
        for (char const * word : words) EXPECT_NE(said.find(word), std::string::npos) << word << "\n" << said;
    }

    static std::string spice2(char format = 4, char padding = ' ') {
        auto field = [padding](std::string text, std::size_t width) {
            return text.append(width - text.size(), padding);
        };
        std::string text = field("a title", 80) + field("today", 8) + "09:10:11" + std::string("\2\0", 2);
        text += format;
        text += std::string(1, '\0') + field("time", 8) + field("12", 8) + std::string(2 + 8 + 22, ' ');
        for (double const number : {0.0, 1.0, 2.0, 3.0}) text.append(reinterpret_cast<char const *>(&number), 8);
        return text;
    }
    static std::string quadrel() { return "Quadrel\nb\nc\n2 points\n1 node\n1 TIME\n2 V(X$OUT,0)\n0 1\n1 2\n"; }
    static std::string csdf() {
        return "#H\nSOURCE='x' TITLE='t' SWEEPVAR='TIME' NODES='1' COMPLEXVALUES='NO'\n#N\n'V(OUT)'\n"
               "#C 0 1\n5:1\n#C 1 1\n6:1\n#;\n";
    }
    // One vector of one value.
    static std::string pspice() {
        std::string text(6, '\xFF');
        return text + "\1\xF3";
    }
};

TEST_F(TvshFiles, TextTablesAreKnownByTheirNumbers) {
    EXPECT_EQ(value(file("a.csv", "time,v(out)\n0,1\n1,2k\n"), "out[1]"), "out[1] = 2 kV\n");
    EXPECT_EQ(value(file("b.txt", "* words\nx y\r\n(1,2) 3\r\n"), "y"), "y = 3\n");
    EXPECT_EQ(value(file("c.txt", "1\n2\n-3\n"), "sum(Data)"), "sum(Data) = 0\n");
    EXPECT_EQ(value(file("e.txt", "z\n( 1 2 )\n"), "im(z)"), "im(z) = 2\n");
    EXPECT_EQ(value("text:" + file("d.txt", "a b\n"), "length(a)"), "length(a) = 0\n");
}

TEST_F(TvshFiles, BinaryFilesAreKnownByTheirLayout) {
    std::string const path = file("old.raw", spice2());
    std::filesystem::rename(path, folder / "named.csv");
    EXPECT_EQ(value((folder / "named.csv").string(), "sum(time)"), "sum(time) = 2 s\n");
    EXPECT_EQ(value(file("nul.raw", spice2(4, '\0')), "sum(time)"), "sum(time) = 2 s\n");
}

TEST_F(TvshFiles, CsdfAndQuadrelAreKnownByTheirFirstLines) {
    EXPECT_EQ(value(file("x.csd", csdf()), "OUT[1]"), "OUT[1] = 6 V\n");
    EXPECT_EQ(value(file("y.csd", std::string(100, '\n') + " #h" + csdf().substr(2)), "OUT[1]"), "OUT[1] = 6 V\n");
    EXPECT_EQ(value(file("x.qdl", quadrel()), "OUT[1]"), "OUT[1] = 2 V\n");
}

TEST_F(TvshFiles, EverySetOfASpice3FileIsFoundHoweverItsKeysAreWritten) {
    std::string const set = contentOf(rawFile());
    for (char const * key : {"Variables:", "VARIABLES:", " \tvariables :", "Vari\rables:"}) {
        std::string second = set;
        second.replace(second.find("\nVariables:") + 1, 10, key);
        Outcome const outcome = run({"list", file("two.raw", set + second)});
        EXPECT_EQ(outcome.status, done) << outcome.err;
        std::size_t const first = outcome.out.find("Group ");
        EXPECT_NE(outcome.out.find("Group ", first + 1), std::string::npos) << key << "\n" << outcome.out;
    }
}

TEST_F(TvshFiles, PSpiceFilesAreKnownByTheirSignature) {
    expectRefusal(file("x.dat", pspice()),
                  {"PSpice data file read failed", "by its content this is a PSpice data file"});
}

TEST_F(TvshFiles, NativeFilesAreKnownByTheirHeader) {
    std::string const saved = (folder / "saved.bin").string();
    std::string const script =
        file("save.tv", "OpenGroup " + file("x.txt", "a b\n1 2\n3 4\n") + "\nSaveGroup " + saved + "\n");
    ASSERT_EQ(run({"run", script}).status, done);
    EXPECT_EQ(value(saved, "sum(b)"), "sum(b) = 6\n");
    EXPECT_EQ(value("native:" + saved, "sum(b)"), "sum(b) = 6\n");
    std::string const header = std::string("\x11\0\0\0", 4) + "Torvelan datafile";
    expectRefusal(file("x.tvdat", header), {"load failed"});
}

TEST_F(TvshFiles, WhatIsNothingIsRefusedWithWhatIsAccepted) {
    std::string const zeros(1000, '\0');
    for (std::string const & content : {std::string(), std::string("hello\n"), zeros, "a b\n1 2\n" + zeros, spice2(3)})
        expectRefusal(file("x", content), {"not recognised", "TYPE:FILE"});
}

TEST_F(TvshFiles, TypeThatIsNamedIsTaken) {
    expectRefusal("spice2:" + file("x", spice2(3)),
                  {"incorrect format", "byte 98: found format 3, where 4 is expected"});
    expectRefusal("spice2:" + file("y", "short"), {"incorrect format", "the file ends at byte 5"});
    expectRefusal("spice3:" + file("z", "hello\n"), {"incorrect format", "line 1: found 'hello'"});
    EXPECT_EQ(run({"eval", "--open", "text:" + rawFile(), "1"}).status, done);
}

TEST_F(TvshFiles, PlaceOfAFaultIsTold) {
    std::string const whole = contentOf(rawFile());
    auto changed = [&](std::string const & from, std::string const & to) {
        std::string text = whole;
        text.replace(text.find(from), from.size(), to);
        return file("x.raw", text);
    };
    expectRefusal(changed("Values:", "Walues:"), {"by its content this is a SPICE3 raw file", "before 'Values:'"});
    expectRefusal(changed("\n\t1\t", "\n\t7\t"), {"variable list", "found '?7?", "where variable 1 is expected"});
    expectRefusal("spice3:" + changed("No. Variables", "No. Variable"), {"'No. Variables' has not come before"});
    expectRefusal(file("t.txt", "a b\n1 2\n* end\n\n"), {"Bad format in ASCII data file", "line 3: found '* end'"});
    expectRefusal("text:" + file("e.txt", "\n"), {"no line that is not blank"});
    expectRefusal("spice2:" + file("none", ""), {"the file ends at byte 0"});
}

} // namespace
