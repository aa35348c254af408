#include "Import/Quadrel.h"

#include "Groups/GroupStore.h"
#include "Import/BoundedLine.h"
#include "Import/QuadrelColumn.h"
#include "Import/TextColumns.h"
#include "Import/UniqueNames.h"
#include "support/Numbers.h"
#include "support/TextScan.h"

#include <algorithm>

namespace {

bool skipTitle(tvfstream & stream) {
    constexpr int lines = 3;
    BoundedLine<1024> line;
    for (int i = 0; i < lines; ++i)
        if (!line.read(stream)) return false;
    return !stream.eof();
}

// The number that a line begins with.
bool readCount(tvfstream & stream, std::int64_t & count) {
    YString line;
    stream.getline(&line);
    std::string_view word;
    if (sp_ScanLine(line, " \t\n", &word, 1) == 0) return false;
    count = parseInt(word);
    return true;
}

class QuadrelReader {
public:
    QuadrelReader(tvfstream & stream, Group * group) : stream_(stream), group_(group), uniqueName_(*group) {}

    bool read() {
        std::int64_t nodes = 0;
        if (!skipTitle(stream_) || !readCount(stream_, points_) || !readCount(stream_, nodes)) return false;
        if (!readColumns(nodes + 1)) return false; // with the reference
        if (!vectors_.empty()) (void)readTextColumns(stream_, vectors_);
        nameSpace().current = group_;
        return true;
    }

private:
    bool readColumns(std::int64_t count) {
        pointsAhead_ = pointsAhead(count);
        for (std::int64_t i = 0; i < count; ++i) {
            QuadrelColumn column;
            if (!line_.read(stream_) || !parseQuadrelColumn(line_.text(), column) || !addColumn(column)) return false;
        }
        return !pairIsOpen_;
    }

    // Two columns in a row can be the parts of one complex vector.
    bool addColumn(QuadrelColumn const & column) {
        bool const isSecond = column.part == QuadrelPart::imaginary;
        bool const fits = isSecond ? pairIsOpen_ && equalNoCase(column.name, pairName_) : !pairIsOpen_;
        if (!fits) return false;
        pairIsOpen_ = column.part == QuadrelPart::real;
        pairName_ = column.name;
        if (!isSecond) addVector(column);
        return true;
    }

    void addVector(QuadrelColumn const & column) {
        bool const isComplex = column.part == QuadrelPart::real || column.type == PT_FREQUENCY;
        auto * const vector = new dvec(uniqueName_(column.name), group_, column.type);
        vectors_.push_back(vector);
        vector->allocate(pointsAhead_, isComplex ? VD_COMPLEX : VD_REAL);
        vector->ref = *vectors_.front();
        vector->enterGroup();
        if (!column.negativeName.empty()) addNegative(column.negativeName, vector->name());
    }

    void addNegative(YString const & name, YString const & positive) {
        auto * const alias = new dvec(uniqueName_(name), YString::joined("-:", {positive}).view(), group_, PT_CURRENT);
        alias->flags |= VF_ALIAS;
        alias->enterGroup();
    }

    // As many as were announced, if the rest of the file can hold them: a value needs two characters.
    std::int64_t pointsAhead(std::int64_t columns) const {
        std::int64_t const rest = static_cast<std::int64_t>(stream_.getFileSize()) - stream_.tellg();
        std::int64_t const values = std::max<std::int64_t>(rest, 0) / 2;
        return std::clamp<std::int64_t>(points_, 0, values / std::max<std::int64_t>(columns, 1));
    }

    tvfstream & stream_;
    Group * const group_;
    UniqueNames uniqueName_;
    BoundedLine<998> line_;
    std::int64_t points_ = 0;
    std::int64_t pointsAhead_ = 0; // for which memory is taken
    bool pairIsOpen_ = false;      // the column before was a real part
    YString pairName_;             // of the column before
    YArray<dvec *> vectors_;       // in file order; the group owns them
};

} // namespace

bool readQuadrel(tvfstream & stream, Group * group) {
    return QuadrelReader(stream, group).read();
}
