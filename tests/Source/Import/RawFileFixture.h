// SPICE3 raw files made in memory.
#pragma once

#include "ImportFixture.h"

// The parts of a raw file, each with a sound default.
struct RawFile {
    std::string flags = "real";
    std::string variableCount = "2";
    std::string pointCount = "2";
    std::string extra; // further lines of the header
    std::string variables = "\t0\ttime\ttime\n\t1\tv(out)\tvoltage\n";
    std::string valuesLine = "Values:\n";
    std::string values = "0\t0.5\n\t1.5\n1\t1\n\t2.5\n";

    std::string header() const {
        return "Title: a circuit\nDate: today\nPlotname: Transient Analysis\nFlags: " + flags +
               "\nNo. Variables: " + variableCount + "\nNo. Points: " + pointCount + "\n" + extra;
    }
    std::string text() const { return header() + "Variables:\n" + variables + valuesLine + values; }

    static RawFile complexOne(std::string points, std::string data) {
        RawFile file;
        file.flags = "complex";
        file.variableCount = "1";
        file.pointCount = std::move(points);
        file.variables = "0 frequency frequency\n";
        file.values = std::move(data);
        return file;
    }
};

class RawFileFixture : public ImportFixture {
protected:
    static constexpr char const * generalFailure = "SPICE3 raw data file read failed because of incorrect format";

    using ImportFixture::open;
    bool open(std::string_view content) { return ImportFixture::open(content, DATA_SPICE3); }
    bool open(RawFile const & file) { return open(file.text()); }

    void expectRefused(std::string_view content) { ImportFixture::expectRefused(content, DATA_SPICE3, generalFailure); }
    bool openAnything(std::string_view content) { return ImportFixture::openAnything(content, DATA_SPICE3); }
};
