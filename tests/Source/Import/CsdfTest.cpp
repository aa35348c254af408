#include "Import/Csdf.h"

#include "OpenRawFixture.h"
#include "Vectors/BlockMemory.h"
#include "torvelan/Host.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// The parts of a section, each with a sound default.
struct Section {
    std::string header = "TITLE='a circuit' DATE='a day' NODES='2' SWEEPVAR='TIME' COMPLEXVALUES='NO'\n";
    std::string nodes = "'V(a)' 'I(r1)'\n";
    std::string rows = "#C 0 2\n1.5:1 2.5:2\n#C 1e-9 2\n-3:1 4e3:2\n";
    std::string end = "#;\n";

    std::string text() const { return "#H\n" + header + "#N\n" + nodes + "\n" + rows + "\n" + end; }

    static Section withHeader(std::string header) {
        Section section;
        section.header = std::move(header);
        return section;
    }
    static Section withNodes(std::string nodes) {
        Section section = withHeader("SWEEPVAR=TIME\n");
        section.nodes = std::move(nodes);
        return section;
    }
    static Section withRows(std::string rows, std::string end = "#;\n") {
        Section section;
        section.rows = std::move(rows);
        section.end = std::move(end);
        return section;
    }
    static Section complexOne(std::string rows) {
        Section section = withHeader("SWEEPVAR=FREQUENCY COMPLEXVALUES=yes\n");
        section.rows = std::move(rows);
        return section;
    }
};

class CsdfTest : public OpenRawFixture {
protected:
    bool openCsdf(std::string_view content) {
        VecOpenRawFileOptions options;
        options.csdf = true;
        bool const done = openRaw(content, "out.tvdat", options);
        groupName_ = groupNames().empty() ? YString() : newest()->name;
        return done;
    }
    bool openCsdf(Section const & section) { return openCsdf(section.text()); }
    void expectRefused(std::string_view content, std::string const & reason) {
        vec_DestroyAllGroups();
        EXPECT_FALSE(openCsdf(content)) << content;
        EXPECT_THAT(texts(), ElementsAre("CSDF data file read failed due to bad format, reason: " + reason +
                                         ". No data imported"));
        EXPECT_THAT(groupNames(), IsEmpty());
    }
    void expectRefused(Section const & section, std::string const & reason) { expectRefused(section.text(), reason); }
    void expectUnfinished(std::string_view content) {
        vec_DestroyAllGroups();
        EXPECT_TRUE(openCsdf(content)) << content;
        EXPECT_THAT(texts(), ElementsAre("Possible missing data in CSDF file"));
        EXPECT_EQ(messages_->levels[0], MessageLevel::warning);
        EXPECT_THAT(groupNames(), SizeIs(1));
    }

    static constexpr char const * badHeader = "Bad format in header";
    static constexpr char const * badData = "Bad format in data block";
    static constexpr char const * missingData =
        "Missing data for some vectors. Torvelan currently does not support this feature";
};

TEST_F(CsdfTest, SectionBecomesAGroupWithADataFile) {
    ASSERT_TRUE(openCsdf(Section()));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_TRUE(groupName_.beginsWith("csdf_"));
    EXPECT_EQ(nameSpace().current, group());
    EXPECT_EQ(group()->title, "a circuit");
    EXPECT_EQ(group()->date, "a day");
    EXPECT_THAT(dataFiles(), ElementsAre("out.tvdat"));
    EXPECT_TRUE(group()->hasRealData);
    EXPECT_THAT(reals("time"), ElementsAre(0, 1e-9));
    EXPECT_THAT(reals("a"), ElementsAre(1.5, -3));
    EXPECT_THAT(reals("r1#p"), ElementsAre(2.5, 4000));
    EXPECT_EQ(vector("time")->physType(), PT_TIME);
    EXPECT_EQ(vector("a")->physType(), PT_VOLTAGE);
    EXPECT_EQ(vector("r1#p")->physType(), PT_CURRENT);
    EXPECT_THAT(realsOf(vector("a")->ref), ElementsAre(0, 1e-9));
    EXPECT_EQ(vector("a")->ref.name(), "TIME");
}

TEST_F(CsdfTest, EachSectionBecomesAGroup) {
    ASSERT_TRUE(openCsdf(Section().text() + "\r\n\t " + Section::complexOne("#C 1 2 1/2 3/4 ").text() + "\n "));
    EXPECT_THAT(dataFiles(), ElementsAre("out.tvdat", "out_1.tvdat"));
    EXPECT_THAT(complexes("a"), ElementsAre(complex{1, 2}));
    int const number = std::stoi(std::string(groupName_.view().substr(5)));
    EXPECT_EQ(newest()->next->name, YString("csdf_" + std::to_string(number - 1)));
}

TEST_F(CsdfTest, WordsOfTheGrammarMayBeInAnyCase) {
    ASSERT_TRUE(openCsdf("#h title = x  nodes=1 SweepVar=Time complexvalues=Yes #n v(a) #c 1 1 2/3 #c 2 1 4/5 #"));
    EXPECT_EQ(group()->title, "x");
    EXPECT_THAT(complexes("a"), ElementsAre(complex{2, 3}, complex{4, 5}));
}

// --- the header

TEST_F(CsdfTest, HeaderMayBeEmpty) {
    ASSERT_TRUE(openCsdf(Section::withHeader("")));
    EXPECT_EQ(group()->title, "Unknown");
    EXPECT_EQ(group()->date, "");
    EXPECT_THAT(names(), ElementsAre("a", "r1#p"));
    EXPECT_THAT(reals("a"), ElementsAre(1.5, -3));
    EXPECT_EQ(vector("a")->ref.totalLength(), 0);
    EXPECT_EQ(vector("a")->ref.name(), "");
}

TEST_F(CsdfTest, LastOfEqualKeysCounts) {
    ASSERT_TRUE(openCsdf(Section::withHeader("TITLE=a title='b=c:d;e' SWEEPVAR='V,I'\n")));
    EXPECT_EQ(group()->title, "b=c:d;e");
    EXPECT_THAT(names(), ElementsAre("a", "r1#p", "V_I"));
    EXPECT_EQ(vector("V_I")->physType(), PT_VOLTAGE);
}

TEST_F(CsdfTest, FileBeginsWithAHeader) {
    for (char const * text : {"x", "#N", "#HH", "=", "''", "#C 1 1 1 #;"}) expectRefused(text, "No header found");
    expectRefused("", "File is empty");
}

TEST_F(CsdfTest, HeaderHasKeysAndValues) {
    for (char const * header : {"TITLE", "TITLE a", "= a", "TITLE==a", "TITLE=;", "TITLE:a", "a=b c", ";"})
        expectRefused(Section::withHeader(header + std::string("\n")), badHeader);
    expectRefused("#H #C 1 1 1", "Node names block missing");
    expectRefused("#H a=b #c", "Node names block missing");
    for (char const * word : {"#X", "#H", "#", "#;", "#NN"})
        expectRefused("#H a=b " + std::string(word) + " ", "Unknown block header");
}

TEST_F(CsdfTest, OnlyYesMeansComplex) {
    for (char const * answer : {"'NO'", "Y", "TRUE", "'YES '"}) {
        ASSERT_TRUE(openCsdf(Section::withHeader("COMPLEXVALUES=" + std::string(answer) + "\n")));
        EXPECT_TRUE(vector("a")->isReal());
    }
}

TEST_F(CsdfTest, SweepOfComplexDataIsReal) {
    ASSERT_TRUE(openCsdf(Section::complexOne("#C 10 2 1/2:1 3/4:2\n#C 20 2 5 / 6 7/-8\n")));
    EXPECT_THAT(reals("frequency"), ElementsAre(10, 20));
    EXPECT_TRUE(vector("frequency")->isReal());
    EXPECT_EQ(vector("frequency")->physType(), PT_FREQUENCY);
    EXPECT_THAT(complexes("a"), ElementsAre(complex{1, 2}, complex{5, 6}));
    EXPECT_THAT(complexes("r1#p"), ElementsAre(complex{3, 4}, complex{7, -8}));
}

// --- the nodes

TEST_F(CsdfTest, NodeNames) {
    Section const section = Section::withNodes("'V(a b)' V(x,y) VDB(c/d:e=f) I(x1) plain out:1 'W(r)'");
    ASSERT_TRUE(openCsdf(Section{section.header, section.nodes, "#C 0 7 1 2 3 4 5 6 7\n"}));
    EXPECT_THAT(names(), ElementsAre("a b", "c/d:e=f#VDB", "out:1", "plain", "r#pwr", "TIME", "x1#p", "x_y"));
    EXPECT_EQ(vector("out:1")->physType(), PT_UNKNOWN);
}

TEST_F(CsdfTest, FurtherNamesOfANodeAreAlternatives) {
    ASSERT_TRUE(openCsdf(Section::withNodes("V(x:1);V(out);V(2) 'I(r:1);I(r1)'")));
    EXPECT_THAT(names(), ElementsAre("out", "r1#p", "TIME"));
}

TEST_F(CsdfTest, EqualNamesAreMadeSingle) {
    Section section = Section::withNodes("V(TIME) V(a) v(A) V(a_1)");
    section.rows = "#C 0 4 1 2 3 4\n";
    ASSERT_TRUE(openCsdf(section));
    EXPECT_THAT(names(), ElementsAre("a", "A_1", "a_1_1", "TIME", "TIME_1"));
    EXPECT_THAT(reals("time"), ElementsAre(0));
    EXPECT_THAT(reals("time_1"), ElementsAre(1));
}

TEST_F(CsdfTest, NodesBlock) {
    expectRefused("#H #N ;V(a) #C", "Illegal character found in node name");
    expectRefused("#H #N V(a) #N", "Unexpected node names block");
    expectRefused("#H #N V(a) #X", "Unknown block header");
    expectRefused("#H #N V(a) #", "Unknown block header");
}

TEST_F(CsdfTest, NumberOfNodesIsThatOfTheHeader) {
    for (char const * count : {"1", "3", "-2", "x", "2147483648", "4294967298"})
        expectRefused(Section::withHeader("NODES=" + std::string(count) + "\n"),
                      "Number of nodes found does not match header");
    EXPECT_TRUE(openCsdf(Section::withHeader("NODES='2 nodes'\n")));
}

TEST_F(CsdfTest, NoNodesHaveNoValues) {
    expectRefused("#H #N #C 1 0 #C 2 0 #;", badData);
}

// --- the rows

TEST_F(CsdfTest, IndicesAreHexadecimalAndCheckTheOrder) {
    Section section = Section::withNodes("");
    for (int i = 1; i <= 17; ++i) section.nodes += "V(n" + std::to_string(i) + ") ";
    section.rows = "#C 0 17 1:1 2:2 3:3 4:4 5:5 6:6 7:7 8:8 9:9 10:A 11:b 12:C 13:0d 14:0xE 15 16 : 10 17:11\n";
    ASSERT_TRUE(openCsdf(section));
    EXPECT_THAT(reals("n10"), ElementsAre(10));
    EXPECT_THAT(reals("n17"), ElementsAre(17));
    expectRefused(Section::withRows("#C 1 2 1.0:2 2.0:1"), missingData);
    expectRefused(Section::withRows("#C 1 2 1.0:1 2.0:1"), missingData);
    for (char const * index : {"0", "-1", "3", "FFFFFFFF", "10000000000000001", "x", "/", ":"})
        expectRefused(Section::withRows("#C 1 2 1.0:" + std::string(index) + " 2.0:2"), badData);
    expectRefused(Section::withRows("#C 1 2 1:" + std::string(1000000, 'F') + " 2:2"), badData);
}

TEST_F(CsdfTest, RowMayEndBeforeTheLastNode) {
    ASSERT_TRUE(openCsdf(Section::withRows("#C 0 2 1 2 #C 1 1 3 #C 2 2 4 5 #C 3 1 6:1\n")));
    EXPECT_THAT(reals("time"), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(reals("a"), ElementsAre(1, 3, 4, 6));
    EXPECT_THAT(reals("r1#p"), ElementsAre(2, 5));
}

TEST_F(CsdfTest, RowsHaveTheirForm) {
    for (char const * row : {"#C = 2 1 2", "#C : 2 1 2", "#C 1 / 1 2", "#C 1 0", "#C 1 3 1 2 3", "#C 1 -1",
                             "#C 1 2147483648 1 2", "#C 1 x 1 2", "#C 1 2 / 1", "#C 1 2 1 /", "#C 1 2 1/2 3",
                             "#C 1 2 1 2 3", "#C 1 2 1 2 #X", "#C 1 2 1 2 #N", "#C 1 2 1 2:2:", "#C 1 3"})
        expectRefused(Section::withRows(row + std::string("\n")), badData);
    Section section = Section::complexOne("#C 1 2 1 2");
    expectRefused(section, badData);
    section.rows = "#C 1 2 1/2:1 3";
    expectRefused(section, badData);
    section.rows = "#C 1 2 1/:1";
    expectRefused(section, badData);
}

TEST_F(CsdfTest, NumbersAreReadByWhatTheyBeginWith) {
    ASSERT_TRUE(openCsdf(Section::withRows("#C +1 2 1k .5x #C '2' 2 '3' +-4\n#C 1e400 2 1e-400 -inf #C 5 2 6. x "
                                           "#C ' 7' 2 '\n\t8' ' '")));
    EXPECT_THAT(reals("time"), ElementsAre(1, 2, HUGE_VAL, 5, 7));
    EXPECT_THAT(reals("a"), ElementsAre(1, 3, 0, 6, 8));
    EXPECT_THAT(reals("r1#p"), ElementsAre(0.5, 0, -HUGE_VAL, 0, 0));
}

// --- the end

TEST_F(CsdfTest, SectionEndsWithOrWithoutASemicolon) {
    for (char const * end : {"#", "#;", "#\n", "#; \r\n\t"})
        EXPECT_TRUE(openCsdf(Section::withRows("#C 1 2 3 4 ", end))) << end;
    EXPECT_THAT(texts(), IsEmpty());
}

TEST_F(CsdfTest, SectionWithoutAnEndIsKeptWithAWarning) {
    expectUnfinished(Section::withRows("#C 0 2 1:1 2:2\n#C 1 2 3:1 4:2", "").text());
    EXPECT_THAT(reals("time"), ElementsAre(0, 1));
    EXPECT_THAT(reals("a"), ElementsAre(1, 3));
    EXPECT_THAT(reals("r1#p"), ElementsAre(2, 4));
    expectUnfinished(Section::withRows("#C 0 2 1 2\n#C 1 2 3 4", "").text());
    EXPECT_THAT(reals("r1#p"), ElementsAre(2, 4));
}

TEST_F(CsdfTest, NumberThatTouchesTheEndMayBeCutAndDoesNotCount) {
    auto lengths = [this](char const * rows) {
        std::string text = Section::withRows(rows, "").text();
        text.pop_back(); // the line feed
        expectUnfinished(text);
        return std::vector<std::size_t>{reals("time").size(), reals("a").size(), reals("r1#p").size()};
    };
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1"), ElementsAre(1, 1, 1));
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1 "), ElementsAre(2, 1, 1));
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1 2"), ElementsAre(2, 1, 1));
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1 2 3"), ElementsAre(2, 1, 1));
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1 2 3 "), ElementsAre(2, 2, 1));
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1 2 3:"), ElementsAre(2, 2, 1));
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1 2 3:1"), ElementsAre(2, 2, 1));
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1 2 3:9"), ElementsAre(2, 2, 1));
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1 2 3 4"), ElementsAre(2, 2, 1));
    EXPECT_THAT(lengths("#C 0 2 1 2\n#C 1 2 3 4:2"), ElementsAre(2, 2, 2));
}

TEST_F(CsdfTest, FileCutAnywhereKeepsWhatCame) {
    for (Section const & section : {Section(), Section::complexOne("#C 1 2 1/2:1 3/4:2\n#C 2 2 5/6 7/8\n")}) {
        std::string const whole = section.text();
        expectRefused(whole.substr(0, 1), "No header found");
        for (std::size_t n = 2; n < whole.size() - 2; ++n) {
            std::string const cut = whole.substr(0, n);
            // A word of the grammar that has lost its end is another one.
            if (cut.ends_with("#"))
                openCsdf(cut);
            else
                expectUnfinished(cut);
        }
    }
    expectUsable();
}

TEST_F(CsdfTest, BlankFileHasNoSections) {
    EXPECT_TRUE(openCsdf(" \n"));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_THAT(groupNames(), IsEmpty());
}

TEST_F(CsdfTest, BadLaterSectionIsToldByItsNumberAndTheEarlierOnesStay) {
    EXPECT_FALSE(openCsdf(Section().text() + Section::withRows("#C x y").text()));
    EXPECT_THAT(texts(), ElementsAre("CSDF data file read failed due to bad format in section 2, reason: Bad format in "
                                     "data block. Earlier sections successfully imported"));
    EXPECT_THAT(groupNames(), SizeIs(1));
    EXPECT_THAT(dataFiles(), ElementsAre("out.tvdat"));
    EXPECT_FALSE(openCsdf(Section().text() + "x"));
    EXPECT_THAT(texts(), SizeIs(1));
}

// --- bad input

TEST_F(CsdfTest, NulCutsTheWordItStandsIn) {
    std::string const nul(1, '\0');
    ASSERT_TRUE(openCsdf(Section::withHeader("TITLE=ab" + nul + "cd SWEEPVAR=TIME" + nul + "\n")));
    EXPECT_EQ(group()->title, "ab");
    EXPECT_THAT(reals("TIME"), ElementsAre(0, 1e-9));
    std::string const text = Section().text();
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string damaged = text;
        damaged[i] = '\0';
        openCsdf(damaged);
        EXPECT_LE(texts().size(), 1u);
        vec_DestroyAllGroups();
    }
    expectUsable();
}

TEST_F(CsdfTest, AnyByteChangedIsRefusedOrRead) {
    std::string const text = Section().text();
    for (std::size_t i = 0; i < text.size(); ++i)
        for (char const c : {'#', '\'', ':', '/', ' ', '9', '-', '\xff'}) {
            std::string damaged = text;
            damaged[i] = c;
            bool const done = openCsdf(damaged);
            EXPECT_LE(texts().size(), 1u);
            bool const nothingCame = !done && std::string_view(texts().at(0)).ends_with("No data imported");
            EXPECT_EQ(groupNames().empty(), nothingCame);
            vec_DestroyAllGroups();
        }
    expectUsable();
}

TEST_F(CsdfTest, WordMayBeOfAnyLength) {
    std::string const text(20000000, 'x');
    ASSERT_TRUE(openCsdf(Section::withHeader("TITLE='" + text + "'\n")));
    EXPECT_EQ(group()->title.size(), text.size());
    expectUnfinished("#H TITLE='" + text);
    EXPECT_TRUE(openCsdf(Section::withNodes("V(a) V(" + text + ")")));
}

TEST_F(CsdfTest, ManyNodesOfOneNameAreNoBurden) {
    Section section = Section::withNodes("");
    section.rows = "#C 0 100000";
    for (int i = 0; i < 100000; ++i) {
        section.nodes += "V(a) ";
        section.rows += " 1";
    }
    section.rows += "\n";
    ASSERT_TRUE(openCsdf(section));
    EXPECT_THAT(reals("a_99999"), ElementsAre(1));
}

TEST_F(CsdfTest, ManySectionsAreReadInTurn) {
    std::string text;
    for (int i = 0; i < 2000; ++i) text += "#H#N";
    expectRefused(text, "No header found");
    text.clear();
    for (int i = 0; i < 2000; ++i) text += "#H #N V(a) #C 1 1 2 # ";
    ASSERT_TRUE(openCsdf(text));
    EXPECT_THAT(groupNames(), SizeIs(2000));
}

TEST_F(CsdfTest, MemoryThatRunsOutLeavesNothingInTheStore) {
    std::string rows;
    for (int i = 0; i < 100; ++i) rows += "#C 0 2 1 2\n"; // more than fits a vector without memory of its own
    std::string const text = Section::withRows(rows).text();
    disk_.takesNew = false; // so that the values stay in memory
    bool done = false;
    int failures = 0;
    for (std::uint64_t n = 1; !done && n < 100; ++n) {
        BlockMemory::failAt(n);
        try {
            done = openCsdf(text);
        } catch (MemoryException const &) {
            ++failures;
            EXPECT_THAT(groupNames(), IsEmpty());
        }
        BlockMemory::failAt(0);
    }
    EXPECT_TRUE(done);
    EXPECT_GT(failures, 0);
    expectUsable();
}

// --- while others have their turn

class CsdfYieldTest : public CsdfTest {
public:
    using ImportFixture::expectUsable;
    using ImportFixture::messages_;

protected:
    ~CsdfYieldTest() override {
        MakeDynamicFunction("ProcessEvents", nullptr);
        action = nullptr;
    }
    void onYield(void (*proc)(CsdfYieldTest &)) {
        present = this;
        action = proc;
        MakeDynamicFunction("ProcessEvents", [] {
            ++present->yields;
            action(*present);
        });
    }
    // Each row has three words that count, or five with indices.
    static std::string manyRows(int rows, bool indices) {
        Section section;
        section.rows.clear();
        for (int i = 0; i < rows; ++i)
            section.rows += "#C " + std::to_string(i) + (indices ? " 2 1:1 2:2\n" : " 2 1 2\n");
        return section.text();
    }

    int yields = 0;

private:
    static inline CsdfYieldTest * present = nullptr;
    static inline void (*action)(CsdfYieldTest &) = nullptr;
};

TEST_F(CsdfYieldTest, EveryHundredThousandWords) {
    onYield([](CsdfYieldTest &) {});
    ASSERT_TRUE(openCsdf(manyRows(100000, false)));
    EXPECT_EQ(yields, 3);
    EXPECT_THAT(reals("time"), SizeIs(100000));
    ASSERT_TRUE(openCsdf(manyRows(100000, true)));
    EXPECT_EQ(yields, 8);
    ASSERT_TRUE(openCsdf(manyRows(100, true)));
    EXPECT_EQ(yields, 8);
}

TEST_F(CsdfYieldTest, StoreMayBecomeAnotherOne) {
    onYield([](CsdfYieldTest & test) {
        vec_DestroyAllGroups();
        test.expectUsable();
        ScratchFile const other("x y\n1 2\n");
        YString name;
        EXPECT_TRUE(vec_OpenForeignDataFile(other.path(), DATA_TEXT, {}, &name, test.messages_));
        EXPECT_NE(findGroup(name), nullptr);
    });
    ASSERT_TRUE(openCsdf(manyRows(150000, true)));
    EXPECT_EQ(yields, 7);
    EXPECT_THAT(reals("time"), SizeIs(150000));
    EXPECT_THAT(reals("a"), SizeIs(150000));
    EXPECT_THAT(groupNames(), SizeIs(2));
}

TEST_F(CsdfYieldTest, GroupThatIsBeingReadCannotBeReached) {
    onYield([](CsdfYieldTest & test) {
        EXPECT_THAT(groupNames(), IsEmpty());
        EXPECT_NE(vec_DestroyGroup("csdf_1", false), VEC_OK);
        test.expectUsable();
    });
    ASSERT_TRUE(openCsdf(manyRows(50000, false)));
    EXPECT_EQ(yields, 1);
}

} // namespace
