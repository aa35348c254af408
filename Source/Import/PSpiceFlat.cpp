// The flat layout: a header of fixed order, the names, and points to the end of the file.
#include "Groups/Group.h"
#include "Import/BinaryInput.h"
#include "Import/FloatPoints.h"
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
        mostPoints_ = stream_.getFileSize() / shape_.numVectors / FloatPoints::realBytes;
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
        FloatPoints const points({}, shape_.isComplex);
        auto const pointBytes = static_cast<std::int64_t>(points.valueBytes() * shape_.numVectors);
        return std::max<std::int64_t>(rest, 0) / pointBytes;
    }

    // A point that ends within its first value is not there; one that ends later is damage.
    bool readPoints() {
        FloatPoints const points(vectors_, shape_.isComplex, is51_ ? 1 : 0);
        std::size_t const pointsInBlock = std::max<std::size_t>(blockBytes / points.stride(), 1);
        std::vector<char> block(pointsInBlock * points.stride());
        for (std::uint64_t left = mostPoints_; left != 0;) {
            std::size_t const wanted = std::min<std::uint64_t>(pointsInBlock, left) * points.stride();
            std::size_t const got = stream_.read(block.data(), wanted);
            std::size_t const rest = got % points.stride();
            std::size_t const whole = got / points.stride() + (rest >= points.pointBytes() ? 1 : 0);
            clearReferenceParts(block.data(), whole, points.stride());
            points.append(block.data(), whole);
            if (got != wanted) return rest < points.valueBytes() || rest == points.pointBytes();
            left -= whole;
        }
        return true;
    }

    // The reference of complex data is real.
    void clearReferenceParts(char * points, std::size_t count, std::size_t stride) const {
        if (!shape_.isComplex) return;
        constexpr std::size_t part = FloatPoints::realBytes;
        for (std::size_t i = 0; i < count; ++i) std::memset(points + i * stride + part, 0, part);
    }

    static constexpr std::size_t blockBytes = std::size_t{64} << 10;

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
