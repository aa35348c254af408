#include "Import/Spice3Values.h"

#include "Import/PlainPoint.h"
#include "Import/PointBlock.h"
#include "Import/Spice3Lines.h"
#include "support/TextScan.h"
#include "torvelan/dvec.h"

namespace {

bool findValues(tvfstream & stream) {
    Spice3Line line;
    while (line.read(stream)) {
        std::string_view word;
        if (sp_ScanLine(line.text(), " \t\r:", &word, 1) > 0 && equalNoCase(word, "Values")) return true;
    }
    return false;
}

template <class Element> class PointReader {
public:
    PointReader(tvfstream & stream, YArray<dvec *> const & vectors)
        : stream_(stream), block_(vectors), mostValues_(stream.getFileSize() / 2) {}

    // False when the values ended before the last one.
    bool read(std::int32_t numPoints) {
        std::int32_t point = 0;
        while (point < numPoints && (plainPoint() || anyPoint())) ++point;
        block_.flush();
        return point >= numPoints;
    }

private:
    // A whole point where it lies in the stream's buffer, when there is nothing unusual about it. It gives what the
    // extraction would, only sooner.
    bool plainPoint() {
        Element * const values = block_.room();
        std::size_t const taken = parsePlainPoint(stream_.buffered(), values, block_.columns());
        if (taken == 0) return false;
        stream_.skipBuffered(taken);
        value_ = values[block_.columns() - 1];
        block_.addPoint();
        return true;
    }

    bool anyPoint() {
        int index = 0;
        stream_ >> index;
        for (std::size_t i = 0; i < block_.columns(); ++i) {
            if (!readValue(value_)) return false;
            block_.add(value_);
        }
        return true;
    }

    // A number that touches the end of the file does not count: it may have been cut.
    bool readValue(double & value) {
        stream_ >> value;
        return !stream_.eof() && !stream_.fail();
    }

    // Where the values end early the last state is repeated for the points announced, but never beyond what a file of
    // that size could have held.
    bool readValue(complex & value) {
        stream_ >> value.re;
        stream_.get();
        stream_ >> value.im;
        return !stream_.fail() || block_.total() < mostValues_;
    }

    tvfstream & stream_;
    PointBlock<Element> block_;
    Element value_{}; // the one read last
    std::uint64_t const mostValues_;
};

} // namespace

Spice3Result readSpice3Values(tvfstream & stream, Spice3Header const & header, YArray<dvec *> const & vectors) {
    if (!findValues(stream)) return Spice3Result::noValues;
    bool const complete = header.isComplex ? PointReader<complex>(stream, vectors).read(header.numPoints)
                                           : PointReader<double>(stream, vectors).read(header.numPoints);
    if (complete)
        for (dvec * vector : vectors) vector->shrinkReal();
    return Spice3Result::done;
}
