// The flat layout: a header of fixed order, the names, and points to the end of the file.
#include "Groups/Group.h"
#include "Import/BinaryInput.h"
#include "Import/BinaryPoints.h"
#include "Import/PSpice.h"

#include <algorithm>

namespace {

int nextGroupNumber = 1;

class FlatReader {
public:
    FlatReader(tvfstream & stream, Group * group, std::uint8_t marker)
        : stream_(stream), input_(stream), group_(group), is404_(marker == PSpiceMarker::flat404),
          is51_(marker == PSpiceMarker::flat51) {}

    bool read() {
        if (!readHeader()) return false;
        group_->name = YString::joined("pspice", {YString(nextGroupNumber++)});
        // More than there are, since the header counts as well.
        mostPoints_ = stream_.getFileSize() / shape_.numVectors / BinaryPoints::bytesOf(BinaryPoints::Values::floats);
        if (mostPoints_ < 1) return false;
        shape_.pointsAhead = pointsAhead();
        if (!readPSpiceNames(input_, group_, shape_, vectors_)) return false;
        if (is51_) input_.skip(1);
        if (!readPoints()) return false;
        for (dvec * vector : vectors_) vector->shrinkReal();
        return true;
    }

private:
    bool readHeader() {
        if (is51_) input_.skip(2);
        group_->title = text();
        input_.skip(1);
        (void)text();
        group_->date = text();
        input_.skip(4);
        (void)text();
        input_.skip(1 + 4);
        if (is51_) (void)text();
        input_.skip(2);
        std::uint16_t const kind = input_.word();
        if (is404_) {
            input_.skip(2);
            (void)text();
        }
        input_.skip(is404_ ? 12 : 10);
        shape_.numVectors = input_.word();
        input_.skip(2 + 4 + 4 + (is51_ ? 9 : 3));
        shape_.isComplex = kind != 1;
        return !input_.failed() && (kind == 1 || kind == 2) && shape_.numVectors != 0;
    }

    YString text() {
        constexpr std::size_t mostBytes = 130;
        return input_.text(mostBytes);
    }

    // Points for which the rest of the file has room, if each name has a byte at least.
    std::int64_t pointsAhead() const {
        auto const rest = static_cast<std::int64_t>(stream_.getFileSize()) - stream_.tellg();
        auto const pointBytes =
            static_cast<std::int64_t>(BinaryPoints::bytesOf(shape_.valuesInFile()) * shape_.numVectors);
        return std::max<std::int64_t>(rest, 0) / pointBytes;
    }

    // A point that ends within its first value is not there; one that ends later is damage. The reference of complex
    // data is real.
    bool readPoints() {
        BinaryPoints const points(vectors_, shape_.valuesInFile(), BinaryPoints::Reference::real, is51_ ? 1 : 0);
        BinaryPoints::Outcome const outcome = points.read(stream_, mostPoints_);
        return outcome.complete || outcome.rest < points.valueBytes() || outcome.rest == points.pointBytes();
    }

    tvfstream & stream_;
    BinaryInput input_;
    Group * const group_;
    bool const is404_, is51_;
    PSpiceShape shape_;
    std::uint64_t mostPoints_ = 0;
    YArray<dvec *> vectors_; // in file order; the group owns them
};

} // namespace

bool readPSpiceFlat(tvfstream & stream, Group * group, std::uint8_t marker) {
    return FlatReader(stream, group, marker).read();
}
