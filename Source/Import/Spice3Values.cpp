#include "Import/Spice3Values.h"

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

void skipIndex(tvfstream & stream) {
    int index = 0;
    stream >> index;
}

// False when the values ended before the last point. A number that touches the end of the file does not count: it may
// have been cut.
bool readPoints(tvfstream & stream, std::int32_t numPoints, PointBlock<double> & block) {
    for (std::int32_t point = 0; point < numPoints; ++point) {
        skipIndex(stream);
        for (std::size_t i = 0; i < block.columns(); ++i) {
            double value = 0;
            stream >> value;
            if (stream.eof() || stream.fail()) return false;
            block.add(value);
        }
    }
    return true;
}

// Where the values end early the last state is repeated for the points announced, but never beyond what a file of that
// size could have held.
bool readPoints(tvfstream & stream, std::int32_t numPoints, PointBlock<complex> & block) {
    std::uint64_t const mostValues = stream.getFileSize() / 2;
    complex value;
    for (std::int32_t point = 0; point < numPoints; ++point) {
        skipIndex(stream);
        for (std::size_t i = 0; i < block.columns(); ++i) {
            stream >> value.re;
            stream.get();
            stream >> value.im;
            if (stream.fail() && block.total() >= mostValues) return false;
            block.add(value);
        }
    }
    return true;
}

template <class Element> bool readAll(tvfstream & stream, std::int32_t numPoints, YArray<dvec *> const & vectors) {
    PointBlock<Element> block(vectors);
    bool const complete = readPoints(stream, numPoints, block);
    block.flush();
    return complete;
}

} // namespace

Spice3Result readSpice3Values(tvfstream & stream, Spice3Header const & header, YArray<dvec *> const & vectors) {
    if (!findValues(stream)) return Spice3Result::noValues;
    auto const read = header.isComplex ? readAll<complex> : readAll<double>;
    if (read(stream, header.numPoints, vectors))
        for (dvec * vector : vectors) vector->shrinkReal();
    return Spice3Result::done;
}
