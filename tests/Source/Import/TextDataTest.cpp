#include "Import/TextData.h"

#include "Groups/LoosePool.h"
#include "ImportFixture.h"

#include <limits>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using Numbers = std::vector<double>;

class TextDataTest : public ImportFixture {
protected:
    static constexpr char const * badFormat = "Bad format in ASCII data file";

    bool openText(std::string_view content, bool keepColons = false) {
        VecOpenGroupOptions options;
        options.keepColons = keepColons;
        bool const done = open(content, DATA_TEXT, options);
        group_ = groupListHead();
        return done;
    }
    // Refused, with what was read before that in the group.
    void expectBadFormat(std::string_view content) {
        EXPECT_FALSE(openText(content)) << content;
        EXPECT_THAT(texts(), ElementsAre(badFormat)) << content;
        EXPECT_EQ(groupName_, "untouched");
        EXPECT_TRUE(group_->name.beginsWith("text"));
    }
    dvec * find(char const * name) const {
        dvec * const v = group_->find(name);
        EXPECT_NE(v, nullptr) << name;
        return v;
    }
    Numbers numbers(char const * name) const { return realsOf(*find(name)); }
    Numbers division(char const * name, std::int64_t i) const {
        dvec const & v = *find(name);
        Numbers values;
        for (std::int64_t k = 0; k < v.length(i); ++k) values.push_back(v.getReal(k, i));
        return values;
    }
    std::vector<complex> pairs(char const * name) const {
        dvec const & v = *find(name);
        EXPECT_TRUE(v.isComplex()) << name;
        return {v.complexData(), v.complexData() + v.length()};
    }
    std::vector<std::string> memberNames() const {
        std::vector<std::string> result;
        for (YString const & name : group_->namesInOrder()) result.emplace_back(name.view());
        return result;
    }
    std::string referenceName(char const * name) const { return std::string(find(name)->ref.name().view()); }

    Group * group_ = nullptr; // that of the last opening
};

TEST_F(TextDataTest, ColumnsUnderNamesAreVectorsOverTheFirst) {
    ASSERT_TRUE(openText("time,v(out)\n0,1\n1,2.5\n"));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_THAT(memberNames(), ElementsAre("out", "time"));
    EXPECT_THAT(numbers("time"), ElementsAre(0, 1));
    EXPECT_THAT(numbers("out"), ElementsAre(1, 2.5));
    EXPECT_EQ(find("time")->physType(), PT_TIME);
    EXPECT_EQ(find("out")->physType(), PT_VOLTAGE);
    EXPECT_TRUE(find("out")->ref.sharesRep(*find("time")));
    EXPECT_EQ(referenceName("out"), "time");
    EXPECT_TRUE(find("time")->ref.noData());
}

TEST_F(TextDataTest, GroupIsCurrentAndTitledByThePath) {
    ASSERT_TRUE(openText("a b\n1 2\n"));
    EXPECT_EQ(nameSpace().current, group_);
    EXPECT_EQ(group_->title, file_.path());
    EXPECT_EQ(groupName_, group_->name);
    EXPECT_TRUE(groupName_.beginsWith("text"));
    EXPECT_EQ(group_->runId, 0u);
}

TEST_F(TextDataTest, BlanksCommasTabsAndCarriageReturnsSeparate) {
    ASSERT_TRUE(openText("a,b\tc d\r\n1,\t2 ,,3\r 4 \r\n5 6 7 8\r\n"));
    EXPECT_THAT(numbers("a"), ElementsAre(1, 5));
    EXPECT_THAT(numbers("d"), ElementsAre(4, 8));
}

TEST_F(TextDataTest, CommentsStandAheadOfNames) {
    ASSERT_TRUE(openText("* a comment\n\n.option x\n  \t\n*\na b\n1 2\n"));
    EXPECT_THAT(memberNames(), ElementsAre("a", "b"));
}

TEST_F(TextDataTest, QuotedNamesHoldSeparators) {
    ASSERT_TRUE(openText("time \"load, r1\" \"v(a b)\" c\n1 2 3 4\n"));
    EXPECT_THAT(memberNames(), ElementsAre("a_b", "c", "load,_r1", "time"));
    EXPECT_EQ(find("a_b")->physType(), PT_VOLTAGE);
    EXPECT_THAT(numbers("load,_r1"), ElementsAre(2));
}

TEST_F(TextDataTest, UnterminatedQuoteTakesTheRestOfTheLine) {
    ASSERT_TRUE(openText("a \"b c\n1 2 3\n"));
    EXPECT_THAT(memberNames(), ElementsAre("a", "b_c"));
}

TEST_F(TextDataTest, ColonsCutOrAreKeptAsUnderscores) {
    ASSERT_TRUE(openText("t X1:out v(x1:in)\n1 2 3\n"));
    EXPECT_THAT(memberNames(), ElementsAre("in_", "out", "t"));
    EXPECT_EQ(find("in_")->physType(), PT_UNKNOWN);
    ASSERT_TRUE(openText("t X1:out v(x1:in)\n1 2 3\n", true));
    EXPECT_THAT(memberNames(), ElementsAre("t", "x1_in", "X1_out"));
    EXPECT_EQ(find("x1_in")->physType(), PT_VOLTAGE);
}

TEST_F(TextDataTest, EqualNamesAreNumbered) {
    ASSERT_TRUE(openText("x x X v(x) x_1\n1 2 3 4 5\n"));
    EXPECT_THAT(memberNames(), ElementsAre("x", "x_1", "x_1_1", "X_2", "x_3"));
    EXPECT_THAT(numbers("x_1"), ElementsAre(2));
    EXPECT_THAT(numbers("x_1_1"), ElementsAre(5));
}

TEST_F(TextDataTest, NamesEndAtTheFirstNumber) {
    ASSERT_TRUE(openText("a b 3 c\n1 2 3 4\n"));
    EXPECT_THAT(memberNames(), ElementsAre("a", "b"));
}

TEST_F(TextDataTest, ShortRowsAreFilledWithZeros) {
    ASSERT_TRUE(openText("time,v(out)\n1,2\n2\n"));
    EXPECT_THAT(numbers("time"), ElementsAre(1, 2));
    EXPECT_THAT(numbers("out"), ElementsAre(2, 0));
    ASSERT_TRUE(openText("a b c\n1\n2 3\n4 5 6\n"));
    EXPECT_THAT(numbers("b"), ElementsAre(0, 3, 5));
    EXPECT_THAT(numbers("c"), ElementsAre(0, 0, 6));
}

TEST_F(TextDataTest, TokensBeyondTheLastColumnAndBlankLinesAreIgnored) {
    ASSERT_TRUE(openText("a b\n1 2 3 word\n\n  \t\r\n4 5 (\n"));
    EXPECT_THAT(numbers("a"), ElementsAre(1, 4));
    EXPECT_THAT(numbers("b"), ElementsAre(2, 5));
}

TEST_F(TextDataTest, NumbersMayHaveEngineeringSuffixes) {
    ASSERT_TRUE(openText("a b c d\n1k 2.5MEG -3u +4\n1e3 .5 -.5 5.\n+ - 1e 0x10\n1kohm 2V -inf 1e999\n"));
    EXPECT_THAT(numbers("a"), ElementsAre(1000, 1000, 0, 1000));
    EXPECT_THAT(numbers("b"), ElementsAre(2.5e6, 0.5, 0, 2));
    EXPECT_THAT(numbers("c"), ElementsAre(-3e-6, -0.5, 1, 0));
    EXPECT_THAT(numbers("d"), ElementsAre(4, 5, 0, std::numeric_limits<double>::infinity()));
}

TEST_F(TextDataTest, LastLineNeedsNoLineFeed) {
    ASSERT_TRUE(openText("a b\n1 2\n3 4"));
    EXPECT_THAT(numbers("b"), ElementsAre(2, 4));
    ASSERT_TRUE(openText("a b\n1 2\n3"));
    EXPECT_THAT(numbers("b"), ElementsAre(2, 0));
}

TEST_F(TextDataTest, NamesAloneAreEmptyVectorsIfTheLineIsWhole) {
    ASSERT_TRUE(openText("a b\n"));
    EXPECT_THAT(memberNames(), ElementsAre("a", "b"));
    EXPECT_EQ(find("a")->length(), 0);
    expectBadFormat("a b");
    EXPECT_THAT(memberNames(), ElementsAre("a", "b"));
}

TEST_F(TextDataTest, FilesWithoutABlockAreBadFormat) {
    for (char const * content : {"", "\n", "* only\n", ".div label=x index=1\n", "1 2 3", "\n\n*\n.\n"})
        expectBadFormat(content);
    EXPECT_TRUE(group_->vectors.empty());
}

TEST_F(TextDataTest, NumbersAloneAreDataOverAnIndex) {
    for (char const * content : {"1\n2\n3\n", "1 2 3\n", "1 2\n3", "1,2 word\n-x 3\n"}) {
        ASSERT_TRUE(openText(content)) << content;
        EXPECT_THAT(memberNames(), ElementsAre("Data"));
        Numbers const data = numbers("Data");
        EXPECT_EQ(data.front(), 1);
        EXPECT_EQ(data.back(), 3);
        EXPECT_EQ(referenceName("Data"), "Index");
        Numbers index(data.size());
        for (std::size_t i = 0; i < index.size(); ++i) index[i] = static_cast<double>(i);
        EXPECT_THAT(realsOf(find("Data")->ref), ElementsAreArray(index));
        EXPECT_EQ(find("Data")->physType(), PT_UNKNOWN);
    }
    EXPECT_THAT(numbers("Data"), ElementsAre(1, 2, 0, 3)); // "-x" looks like a number
}

TEST_F(TextDataTest, NumbersOfCommentsAreDataToo) {
    ASSERT_TRUE(openText("* 7 runs of 8\n1k 2\n"));
    EXPECT_THAT(numbers("Data"), ElementsAre(7, 8, 1000, 2));
}

TEST_F(TextDataTest, OneColumnHasAnIndexForReference) {
    ASSERT_TRUE(openText("power\n5\n6\n7\n"));
    EXPECT_EQ(referenceName("power"), "Index");
    EXPECT_THAT(realsOf(find("power")->ref), ElementsAre(0, 1, 2));
    EXPECT_EQ(find("power")->ref.physType(), PT_UNKNOWN);
    EXPECT_THAT(memberNames(), ElementsAre("power"));
    ASSERT_TRUE(openText("power\n"));
    EXPECT_EQ(find("power")->ref.length(), 0);
}

TEST_F(TextDataTest, PairsMakeAVectorComplex) {
    for (char const * row :
         {"1 (1 2)\n2 (3 4)\n", "1,(1,2)\n2,(3,4)\n", "1 ( 1 2 )\n2 (3 4 )\n", "1 (1 2k2)\n2 3 4\n"}) {
        ASSERT_TRUE(openText(std::string("freq v(out)\n") + row)) << row;
        EXPECT_THAT(numbers("freq"), ElementsAre(1, 2));
        EXPECT_FALSE(find("freq")->isComplex());
        std::vector<complex> const out = pairs("out");
        ASSERT_EQ(out.size(), 2u) << row;
        EXPECT_EQ(out[0].re, 1);
        EXPECT_EQ(out[1], (complex{3, 4})) << row;
    }
    EXPECT_EQ(pairs("out")[0].im, 2000);
}

TEST_F(TextDataTest, ReferenceThatBecomesComplexIsStillShared) {
    ASSERT_TRUE(openText("freq v(out)\n(1,0) (1,2)\n2 0 3 4\n"));
    EXPECT_THAT(pairs("freq"), ElementsAre(complex{1, 0}, complex{2, 0}));
    EXPECT_THAT(pairs("out"), ElementsAre(complex{1, 2}, complex{3, 4}));
    EXPECT_TRUE(find("out")->ref.sharesRep(*find("freq")));
}

TEST_F(TextDataTest, FrequencyColumnOfAComplexTableTakesOneNumber) {
    ASSERT_TRUE(openText("Frequency v(out)\n(1,0) (1,2)\n2 3 4\n5\n"));
    EXPECT_THAT(pairs("Frequency"), ElementsAre(complex{1, 0}, complex{2, 0}, complex{5, 0}));
    EXPECT_THAT(pairs("out"), ElementsAre(complex{1, 2}, complex{3, 4}, complex{0, 0}));
}

TEST_F(TextDataTest, WordsInAComplexColumnAreZero) {
    ASSERT_TRUE(openText("t v(out)\n1 (1,2)\n2 word 3\n3 4\n"));
    EXPECT_THAT(pairs("out"), ElementsAre(complex{1, 2}, complex{0, 3}, complex{4, 0}));
}

TEST_F(TextDataTest, BadPairsEndTheFileInSilence) {
    for (char const * row : {"2 (3 4\n", "2 (3 4 x)\n", "2 (\n", "2 (3\n", "2 (3)\n"}) {
        ASSERT_TRUE(openText(std::string("t out\n1 (1 2)\n") + row + "3 (5 6)\n")) << row;
        EXPECT_THAT(texts(), IsEmpty());
        EXPECT_THAT(numbers("t"), ElementsAre(1, 2)) << row;
        EXPECT_THAT(pairs("out"), ElementsAre(complex{1, 2})) << row;
    }
}

TEST_F(TextDataTest, PairInARealVectorWithValuesEndsTheFileInSilence) {
    ASSERT_TRUE(openText("t out\n1 2\n2 (1 2)\n3 4\n"));
    EXPECT_THAT(texts(), IsEmpty());
    EXPECT_THAT(numbers("t"), ElementsAre(1, 2));
    EXPECT_THAT(numbers("out"), ElementsAre(2));
}

TEST_F(TextDataTest, AWordInTheFirstColumnBeginsANewBlock) {
    ASSERT_TRUE(openText("time x\n1 2\ntime y\n3 4\n5 6\n"));
    EXPECT_THAT(memberNames(), ElementsAre("time", "time_1", "x", "y"));
    EXPECT_THAT(numbers("time"), ElementsAre(1));
    EXPECT_THAT(numbers("time_1"), ElementsAre(3, 5));
    EXPECT_THAT(numbers("y"), ElementsAre(4, 6));
    EXPECT_TRUE(find("y")->ref.sharesRep(*find("time_1")));
    EXPECT_TRUE(find("x")->ref.sharesRep(*find("time")));
}

TEST_F(TextDataTest, AWordInALaterColumnCompletesTheRowFirst) {
    ASSERT_TRUE(openText("time x y\n1 2 3\n4 word 5\n"));
    // The line that begins with a number is read again as a block without names: the whole file as one column.
    EXPECT_THAT(numbers("time"), ElementsAre(1, 4));
    EXPECT_THAT(numbers("x"), ElementsAre(2, 0));
    EXPECT_THAT(numbers("y"), ElementsAre(3, 0));
    EXPECT_THAT(numbers("Data"), ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(TextDataTest, APointBeforeAWordIsACommentOfTheNextBlock) {
    ASSERT_TRUE(openText("a b\n1 2\n.x\nc d\n3 4\n"));
    EXPECT_THAT(memberNames(), ElementsAre("a", "b", "c", "d"));
    EXPECT_THAT(numbers("a"), ElementsAre(1));
    ASSERT_TRUE(openText("a b\n1 2\n.\n3 4\n"));
    EXPECT_THAT(memberNames(), ElementsAre("a", "b", "Data"));
    EXPECT_THAT(numbers("Data"), ElementsAre(1, 2, 0, 3, 4)); // the point looks like a number
}

TEST_F(TextDataTest, NameOfTheDataMayBeTaken) {
    ASSERT_TRUE(openText("Data\n1\n.x\n3\n"));
    EXPECT_THAT(memberNames(), ElementsAre("Data", "Data_1"));
    EXPECT_THAT(texts(), IsEmpty());
}

TEST_F(TextDataTest, CommentBehindTheLastRowIsBadFormat) {
    expectBadFormat("a b\n1 2\n* the end\n");
    EXPECT_THAT(numbers("b"), ElementsAre(2));
    expectBadFormat("a b\n1 2\nend");
    EXPECT_THAT(memberNames(), ElementsAre("a", "b", "end"));
}

TEST_F(TextDataTest, DivisionsContinueTheVectorsOfTheirNames) {
    ASSERT_TRUE(openText(".div index=0 label=first\ntime v(out)\n0 1\n1 2\n"
                         ".div index=1 label=second\ntime v(out)\n0 3\n1 4\n2 5\n"
                         ".DIV INDEX=2 LABEL=\"third\"\ntime v(out)\n0 6\n"));
    EXPECT_THAT(memberNames(), ElementsAre("out", "time"));
    ASSERT_EQ(find("out")->numDivisions(), 3);
    EXPECT_THAT(division("out", 0), ElementsAre(1, 2));
    EXPECT_THAT(division("out", 1), ElementsAre(3, 4, 5));
    EXPECT_THAT(division("out", 2), ElementsAre(6));
    EXPECT_THAT(division("time", 1), ElementsAre(0, 1, 2));
    EXPECT_EQ(find("out")->ref.numDivisions(), 3);
    EXPECT_TRUE(find("out")->ref.sharesRep(*find("time")));
    NameArray labels;
    find("out")->divisionLabels(&labels);
    EXPECT_THAT(labels, ElementsAre(YString("first"), YString("second"), YString("third")));
}

TEST_F(TextDataTest, DivisionWithoutIndexMakesNewVectors) {
    ASSERT_TRUE(openText(".div label=a\nx y\n1 2\n.div label=b\nx y\n3 4\n.div index=0\nx y\n5 6\n"));
    EXPECT_THAT(memberNames(), ElementsAre("x", "x_1", "x_2", "y", "y_1", "y_2"));
    EXPECT_THAT(*group_->labels, ElementsAre(YString("a"), YString("b")));
}

TEST_F(TextDataTest, SettingsOfADivisionAreSplitAtBlanksFirst) {
    ASSERT_TRUE(openText(".div label=\"two words\" index=\"x\" other=1 nothing\nx y\n1 2\n"));
    EXPECT_THAT(*group_->labels, ElementsAre(YString("two")));
    ASSERT_TRUE(openText(".div label=a=b,label=c index=-1 label=\n.div label=\"d=e\"\nx y\n1 2\n"));
    EXPECT_THAT(*group_->labels, ElementsAre(YString("d=e")));
    EXPECT_THAT(memberNames(), ElementsAre("x", "y"));
}

TEST_F(TextDataTest, IndexTooLargeForAnyDivisionStillContinues) {
    ASSERT_TRUE(openText("x y\n1 2\n.div index=99999999999999999999\nx y\n3 4\n.div index=2147483648\nx y\n5 6\n"));
    EXPECT_EQ(find("y")->numDivisions(), 3);
}

TEST_F(TextDataTest, DivisionOfAnUnknownVectorStaysOutsideTheGroup) {
    std::size_t const loose = LoosePool::count();
    ASSERT_TRUE(openText("x y\n1 2\n.div index=1\nx z\n3 4\n"));
    EXPECT_THAT(memberNames(), ElementsAre("x", "y"));
    EXPECT_THAT(division("x", 1), ElementsAre(3));
    EXPECT_EQ(LoosePool::count(), loose + 1);
    LoosePool::sweep();
    EXPECT_EQ(LoosePool::count(), 0u);
}

TEST_F(TextDataTest, VectorNamedTwiceInAContinuationTakesBothColumns) {
    ASSERT_TRUE(openText("x\n1\n2\n.div index=1\nx x\n3 4\n5 6\n"));
    EXPECT_EQ(find("x")->totalLength(), 6);
    Numbers const all(find("x")->allRealData(), find("x")->allRealData() + 6);
    EXPECT_THAT(all, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(TextDataTest, EmptyVectorThatAContinuationMakesComplexIsSharedAsReference) {
    ASSERT_TRUE(openText("a b\n.div index=1\nb a\n(1,2) (3,4)\n"));
    EXPECT_TRUE(find("b")->ref.sharesRep(*find("a")));
    EXPECT_TRUE(find("a")->isComplex());
    EXPECT_TRUE(find("b")->ref.isComplex());
}

TEST_F(TextDataTest, ContentMayBeAnything) {
    std::string const zeros("a\0b c\n1\0 2\n", 11);
    ASSERT_TRUE(openText(zeros));
    EXPECT_THAT(numbers("c"), ElementsAre(2));
    ASSERT_TRUE(openText("\xEF\xBB\xBFtime v\n1 2\n"));
    EXPECT_THAT(memberNames(), ElementsAre("v", "\xEF\xBB\xBFtime"));
    ASSERT_TRUE(openText("%s%n v(%s)\n1 2\n"));
    EXPECT_THAT(memberNames(), ElementsAre("_s", "_s_n"));
    ASSERT_TRUE(openText("X1: b\n1 2\n"));
    EXPECT_THAT(memberNames(), ElementsAre("", "b"));
    expectUsable();
}

// Some numbers per row are plain, some are not, and rows stand across the edges of the reader's blocks.
TEST_F(TextDataTest, LongTablesAreReadToTheLastBit) {
    std::string content = "t a b\n";
    Numbers t, a, b;
    unsigned state = 1;
    for (int i = 0; i < 30000; ++i) {
        state = state * 1664525u + 1013904223u;
        t.push_back(i);
        a.push_back(static_cast<double>(state) / 7e9);
        b.push_back(i % 7 == 0 ? -static_cast<double>(state) * 1e3 : static_cast<double>(state) * 1e-20);
        content += std::to_string(i) + ' ';
        content += YString(a.back()).view();
        content += i % 5 == 0 ? " \t," : ",";
        content += i % 7 == 0 ? std::string("-") + std::to_string(state) + "k" : std::string(YString(b.back()).view());
        content += i % 3 == 0 ? "\r\n" : "\n";
    }
    ASSERT_TRUE(openText(content));
    EXPECT_EQ(numbers("t"), t);
    EXPECT_EQ(numbers("a"), a);
    EXPECT_EQ(numbers("b"), b);
    content.erase(0, 6);
    ASSERT_TRUE(openText(content));
    Numbers all;
    for (std::size_t i = 0; i < t.size(); ++i) all.insert(all.end(), {t[i], a[i], b[i]});
    EXPECT_EQ(numbers("Data"), all);
}

TEST_F(TextDataTest, ALineMayBeLongerThanAnyBlock) {
    std::string names = "x", row = "0";
    Numbers wanted;
    for (int i = 1; i < 200000; ++i) {
        names += " x";
        row += ' ' + std::to_string(i);
    }
    ASSERT_TRUE(openText(names + '\n' + row + " 1 2 3\n" + row));
    EXPECT_EQ(group_->vectors.size(), 200000u);
    EXPECT_THAT(numbers("x_199999"), ElementsAre(199999, 199999));
}

// 100,000 names and as many lines of one number would be ten thousand million zeros.
TEST_F(TextDataTest, GapsOfAWideTableHaveABound) {
    std::string content;
    for (int i = 0; i < 100000; ++i) content += "x ";
    content += '\n';
    for (int i = 0; i < 100000; ++i) content += "1\n";
    expectBadFormat(content);
    EXPECT_LT(find("x_99999")->length(), 100);
    EXPECT_GT(find("x_99999")->length(), 20);
    for (int block = 0; block < 40; ++block) content += "y\n1\n"; // the bound is that of the file
    expectBadFormat(content);
}

TEST_F(TextDataTest, IndexOfOneColumnHasADivisionForEachOfIts) {
    ASSERT_TRUE(openText(".div label=a index=0\na\n1\n2\n.div label=b index=1\na\n3\n4\n5\n.div index=2\na\n6\n"));
    dvec & a = *find("a");
    EXPECT_EQ(a.numDivisions(), 3);
    ASSERT_EQ(a.ref.numDivisions(), 3);
    EXPECT_TRUE(a.sameDivisions(a.ref));
    for (int division = 0; division < 3; ++division)
        for (std::int64_t i = 0; i < a.length(division); ++i)
            EXPECT_EQ(a.ref.getReal(i, division), static_cast<double>(i));
}

TEST_F(TextDataTest, AnyCutIsReadOrRefused) {
    std::string const text = "* c\n.div label=a index=0\ntime \"v(a b)\" i(r)\n0 (1,2) 1k\n1 3 4 .5\n"
                             ".div label=b index=1\ntime v(a_b) z\n0 (5 6) 7\n.\nword\n8\n";
    for (std::size_t n = 0; n <= text.size(); ++n) {
        bool const done = openText(text.substr(0, n));
        EXPECT_EQ(texts().empty(), done) << n;
        EXPECT_TRUE(done || texts() == std::vector<std::string>{badFormat}) << n;
    }
    expectUsable();
}

TEST_F(TextDataTest, AnyByteChangedIsReadOrRefused) {
    std::string const text = ".div index=1\na b\n1 (2,3)\n4 5 6\n\nc\n7\n";
    for (std::size_t i = 0; i < text.size(); ++i)
        for (char const c : {'\0', '\n', '(', ')', '.', '-', 'x', '"', '\xff'}) {
            std::string damaged = text;
            damaged[i] = c;
            bool const done = openText(damaged);
            EXPECT_EQ(texts().empty(), done) << i << ' ' << c;
        }
    expectUsable();
}

} // namespace
