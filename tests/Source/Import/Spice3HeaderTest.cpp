#include "Import/Spice3Header.h"

#include "RawFileFixture.h"
#include "support/Streams.h"

namespace {

class Spice3HeaderTest : public testing::Test {
protected:
    Spice3Result read(std::string_view content) {
        ScratchFile const file(content);
        stream_ = std::make_unique<tvfstream>(file.path(), tvfstream::modeReadUntranslated, false, false);
        header_ = {};
        return readSpice3Header(*stream_, header_);
    }
    std::string rest() {
        std::string text;
        for (int c = stream_->get(); c >= 0; c = stream_->get()) text += static_cast<char>(c);
        return text;
    }

    std::unique_ptr<tvfstream> stream_;
    Spice3Header header_;
};

constexpr char counts[] = "No. Variables: 3\nNo. Points: 7\n";

std::string withCounts(std::string const & lines) {
    return lines + counts + "Variables:\n";
}

TEST_F(Spice3HeaderTest, KeysGiveTheRecord) {
    EXPECT_EQ(read(RawFile().text()), Spice3Result::done);
    EXPECT_EQ(header_.numVariables, 2);
    EXPECT_EQ(header_.numPoints, 2);
    EXPECT_FALSE(header_.isComplex);
    EXPECT_TRUE(header_.sweepVar.empty());
}

TEST_F(Spice3HeaderTest, TitleAndDateStandAsTheyAreWithTheirLeadingBlankAndColons) {
    EXPECT_EQ(read(withCounts("Title:  a: b \nDate:10:20:30\n")), Spice3Result::done);
    EXPECT_EQ(header_.title, "  a: b ");
    EXPECT_EQ(header_.date, "10:20:30");
}

TEST_F(Spice3HeaderTest, KeysAreComparedWithoutRegardToCase) {
    EXPECT_EQ(read("NO. VARIABLES: 3\nno. points:7\nSWEEPVAR: t\nfLAGS: Complex\nvariables:"), Spice3Result::done);
    EXPECT_EQ(header_.numVariables, 3);
    EXPECT_EQ(header_.numPoints, 7);
    EXPECT_EQ(header_.sweepVar, "t");
    EXPECT_TRUE(header_.isComplex);
}

TEST_F(Spice3HeaderTest, FlagsAreComparedWhole) {
    for (char const * flags : {"complex double", "complexx", "real", ""}) {
        EXPECT_EQ(read(withCounts(std::string("Flags: ") + flags + "\n")), Spice3Result::done);
        EXPECT_FALSE(header_.isComplex) << flags;
    }
    EXPECT_EQ(read(withCounts("Flags: \t complex \n")), Spice3Result::done);
    EXPECT_TRUE(header_.isComplex);
}

TEST_F(Spice3HeaderTest, LaterFlagsReplaceEarlierOnes) {
    EXPECT_EQ(read(withCounts("Flags: complex\nFlags: real\n")), Spice3Result::done);
    EXPECT_FALSE(header_.isComplex);
}

TEST_F(Spice3HeaderTest, CarriageReturnsAreDroppedWhereverTheyStand) {
    EXPECT_EQ(read("Ti\rtle: a\rb\r\nNo. Vari\rables: 1\r2\r\nNo. Points: 3\r\n\r\nVariables\r:\r\n"),
              Spice3Result::done);
    EXPECT_EQ(header_.title, " ab");
    EXPECT_EQ(header_.numVariables, 12);
}

TEST_F(Spice3HeaderTest, BlankLinesAndLeadingBlanksAndLeadingColonsAreNothing) {
    EXPECT_EQ(read("\n \t\n  No. Variables: 3\n\n::No. Points: 7\n:\nVariables:"), Spice3Result::done);
    EXPECT_EQ(header_.numVariables, 3);
    EXPECT_EQ(header_.numPoints, 7);
}

TEST_F(Spice3HeaderTest, ValueEndsAtAColonAndTheRestOfItsLineIsSkipped) {
    EXPECT_EQ(read("Sweepvar: the time : x\nNo. Variables: 3: Variables:\nNo. Points: 7\nVariables:\n"),
              Spice3Result::done);
    EXPECT_EQ(header_.sweepVar, "the time");
    EXPECT_EQ(rest(), "\n");
}

TEST_F(Spice3HeaderTest, EmptyValueDoesNotTakeTheNextLine) {
    EXPECT_EQ(read("Sweepvar:\nNo. Variables: 3\nNo. Points:\nVariables:\n"), Spice3Result::done);
    EXPECT_TRUE(header_.sweepVar.empty());
    EXPECT_EQ(header_.numPoints, 1);
}

TEST_F(Spice3HeaderTest, UnknownKeysAreSkippedWithTheirLine) {
    EXPECT_EQ(read(withCounts("Command: version: Variables:\nOption: x\nOffset:\n")), Spice3Result::done);
}

TEST_F(Spice3HeaderTest, WhatFollowsVariablesOnItsLineIsLeftToTheVariableList) {
    EXPECT_EQ(read(std::string(counts) + "Variables:\t0\ttime\ttime\n"), Spice3Result::done);
    EXPECT_EQ(rest(), "\t0\ttime\ttime\n");
}

TEST_F(Spice3HeaderTest, LineWithoutAColonIsABadHeader) {
    EXPECT_EQ(read("Title: x\nwords\nVariables:\n"), Spice3Result::badHeader);
    EXPECT_EQ(read("words"), Spice3Result::badHeader);
    EXPECT_EQ(read("words\n"), Spice3Result::badHeader);
}

TEST_F(Spice3HeaderTest, EndBeforeVariablesIsABadHeaderOnceAKeyHasBeenRead) {
    EXPECT_EQ(read("Title: x\n"), Spice3Result::badHeader);
    EXPECT_EQ(read(counts), Spice3Result::badHeader);
    EXPECT_EQ(read("No. Points: 3"), Spice3Result::badHeader);
}

TEST_F(Spice3HeaderTest, EndBeforeAnyKeyIsNothingThere) {
    for (char const * content : {"", "\n", " \t\r\n\n  "}) EXPECT_EQ(read(content), Spice3Result::nothing) << content;
}

TEST_F(Spice3HeaderTest, LackOfACountIsNothingThere) {
    EXPECT_EQ(read("No. Points: 3\nVariables:\n"), Spice3Result::nothing);
    EXPECT_EQ(read("No. Variables: 3\nVariables:\n"), Spice3Result::nothing);
    EXPECT_EQ(read("No. Variables: 3\nNo. Points: -1\nVariables:\n"), Spice3Result::nothing);
    EXPECT_EQ(read("No. Variables: -1\nNo. Points: 3\nVariables:\n"), Spice3Result::nothing);
}

TEST_F(Spice3HeaderTest, NoVariablesIsABadHeader) {
    for (char const * count : {"0", "-2", "-5", "none", "-99999999999999999999"})
        EXPECT_EQ(read(std::string("No. Points: 3\nNo. Variables: ") + count + "\nVariables:\n"),
                  Spice3Result::badHeader)
            << count;
}

TEST_F(Spice3HeaderTest, CountsAreReadAsFarAsTheyAreNumbersAndClamped) {
    auto points = [this](std::string const & text) {
        EXPECT_EQ(read("No. Variables: 1\nNo. Points: " + text + "\nVariables:\n"), Spice3Result::done);
        return header_.numPoints;
    };
    EXPECT_EQ(points("12 and more"), 12);
    EXPECT_EQ(points("0"), 1);
    EXPECT_EQ(points("1e9"), 1);
    EXPECT_EQ(points("-7"), -7);
    EXPECT_EQ(points("2147483647"), 2147483647);
    EXPECT_EQ(points("99999999999"), 2147483647);
}

TEST_F(Spice3HeaderTest, EachHeaderTakesTheNextNumberForItsGroup) {
    auto number = [this] {
        EXPECT_EQ(read(RawFile().text()), Spice3Result::done);
        EXPECT_TRUE(header_.groupName.beginsWith("spice3_"));
        return std::stoi(std::string(header_.groupName.view().substr(7)));
    };
    int const first = number();
    EXPECT_EQ(number(), first + 1);
    EXPECT_EQ(read("Variables:"), Spice3Result::nothing); // uses a number up as well
    EXPECT_EQ(number(), first + 3);
}

TEST_F(Spice3HeaderTest, LinesOfAnyLengthAndNulCharactersAreRead) {
    std::string const longText(1000000, 'x');
    EXPECT_EQ(read(withCounts("Title:" + longText + "\n" + longText + ":\n")), Spice3Result::done);
    EXPECT_EQ(header_.title.length(), longText.size());
    EXPECT_EQ(read(withCounts(std::string("Title:a\0b\n", 10))), Spice3Result::done);
    EXPECT_EQ(header_.title, "a");
}

} // namespace
