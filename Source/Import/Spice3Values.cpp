#include "Import/Spice3Values.h"

#include "Import/NumberReader.h"
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

// False when the values ended before the last point. A number that touches the end of the file does not count: it may
// have been cut.
bool readRealPoints(NumberReader & numbers, std::int32_t numPoints, std::size_t numVariables,
                    PointBlock<double> & block) {
    for (std::int32_t point = 0; point < numPoints; ++point) {
        numbers.skipInteger();
        for (std::size_t i = 0; i < numVariables; ++i) {
            double value = 0;
            if (!numbers.real(value) || numbers.atEnd()) return false;
            block.add(value);
        }
    }
    return true;
}

// Where the values end early the last state is repeated for the points announced, but never beyond what a file of that
// size could have held.
bool readComplexPoints(NumberReader & numbers, std::int32_t numPoints, std::size_t numVariables,
                       std::uint64_t mostValues, PointBlock<complex> & block) {
    complex value;
    for (std::int32_t point = 0; point < numPoints; ++point) {
        numbers.skipInteger();
        for (std::size_t i = 0; i < numVariables; ++i) {
            if (numbers.real(value.re)) numbers.get();
            numbers.real(value.im);
            if (numbers.failed() && block.total() >= mostValues) return false;
            block.add(value);
        }
    }
    return true;
}

bool readPoints(tvfstream & stream, Spice3Header const & header, YArray<dvec *> const & vectors) {
    NumberReader numbers(stream);
    if (header.isComplex) {
        PointBlock<complex> block(vectors);
        bool const complete =
            readComplexPoints(numbers, header.numPoints, vectors.size(), stream.getFileSize() / 2, block);
        block.flush();
        return complete;
    }
    PointBlock<double> block(vectors);
    bool const complete = readRealPoints(numbers, header.numPoints, vectors.size(), block);
    block.flush();
    return complete;
}

} // namespace

Spice3Result readSpice3Values(tvfstream & stream, Spice3Header const & header, YArray<dvec *> const & vectors) {
    if (!findValues(stream)) return Spice3Result::noValues;
    if (readPoints(stream, header, vectors))
        for (dvec * vector : vectors) vector->shrinkReal();
    return Spice3Result::done;
}
