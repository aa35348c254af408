// The layout of records: each has a frame of a letter and some words in front.
//
// The size in a frame counts the frame, but not everything agrees on how large the frame is: records 'A' and 'M' take
// it for 8 bytes whatever it is.
#include "Groups/Group.h"
#include "Import/BinaryInput.h"
#include "Import/BinaryPoints.h"
#include "Import/PSpice.h"
#include "support/Numbers.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr std::int64_t shortFrame = 9, wideFrame = 13, frameInData = 8;

int nextGroupNumber = 1;

struct Frame {
    std::uint8_t type;
    std::uint32_t left; // records of its kind to come, as it seems; 0 in the last one
    std::int64_t size;
};

struct RecordsHeader {
    std::int64_t columns = 0;
    std::int64_t rows = 0;
    int dataType = 0;
    PSpiceShape shape;
};

// A number as scanf reads it by "0x%x"; 0 without the prefix.
std::uint32_t scanHex(YString const & text) {
    constexpr std::string_view prefix = "0x";
    if (!text.beginsWith(prefix)) return 0;
    YString const digits(text.view().substr(prefix.size()));
    return static_cast<std::uint32_t>(std::strtoul(digits.c_str(), nullptr, 16));
}

using KeyAction = void (*)(Group & group, RecordsHeader & header, YString const & value);

struct KeyRow {
    std::string_view key;
    KeyAction action;
};

constexpr KeyRow keyRows[] = {
    {"AnaCols", [](Group &, RecordsHeader & h, YString const & v) { h.columns = parseInt(v); }},
    {"AnaRows", [](Group &, RecordsHeader & h, YString const & v) { h.rows = scanHex(v); }},
    {"CirName", [](Group & g, RecordsHeader &, YString const & v) { g.title = v; }},
    {"Date", [](Group & g, RecordsHeader &, YString const & v) { g.date = v; }},
    {"DataType", [](Group &, RecordsHeader & h, YString const & v) { h.dataType = parseInt(v); }},
    {"Complex", [](Group &, RecordsHeader & h, YString const & v) { h.shape.isComplex = parseInt(v) != 1; }},
};

void takeEntry(std::string_view entry, Group & group, RecordsHeader & header) {
    std::size_t const equals = entry.find('=');
    if (equals == entry.npos) return;
    for (KeyRow const & row : keyRows)
        if (equalNoCase(row.key, entry.substr(0, equals))) row.action(group, header, entry.substr(equals + 1));
}

class RecordsReader {
public:
    RecordsReader(tvfstream & stream, Group * group, bool wideFrames)
        : stream_(stream), input_(stream), group_(group), frameBytes_(wideFrames ? wideFrame : shortFrame),
          fileSize_(static_cast<std::int64_t>(stream.getFileSize())) {}

    bool read() { return skipFirst() && readHeader() && readNames() && readData(); }
    bool isCut() const noexcept { return sweepIsCut_; } // values of the sweep are missing at the end of the file

private:
    Frame readFrame() {
        Frame frame{};
        frame.type = input_.byte();
        frame.left = input_.longWord();
        if (frameBytes_ == wideFrame) (void)input_.longWord();
        frame.size = input_.longWord();
        return frame;
    }

    // Behind its frame; false when the file ends before the record does.
    bool skipBody(std::int64_t bytes) {
        if (input_.failed() || bytes < 0 || bytes > fileSize_ - stream_.tellg()) return false;
        input_.skip(bytes);
        return true;
    }

    bool skipFirst() {
        Frame const frame = readFrame();
        return frame.type == 'I' && frame.size >= shortFrame && skipBody(frame.size - frameBytes_);
    }

    bool readHeader() {
        constexpr std::int64_t largest = 50000;
        Frame const frame = readFrame();
        if (frame.type != 'H' || frame.size < frameBytes_ || frame.size > largest) return false;
        takeEntries(headerText(static_cast<std::size_t>(frame.size)));
        if (input_.failed() || header_.dataType != 0) return false;
        group_->name = YString::joined("pspice", {YString(nextGroupNumber++)});
        return countsFit();
    }

    // A wide frame counts as a short one here. A writer that counts it as what it is has the letter of the next record
    // that much earlier.
    std::string headerText(std::size_t size) {
        std::string text = input_.bytes(size - shortFrame);
        std::size_t const wholeFrame = size - static_cast<std::size_t>(frameBytes_);
        if (stream_.peek() == 'N' || wholeFrame >= text.size() || text[wholeFrame] != 'N') return text;
        stream_.seekg(static_cast<std::int64_t>(wholeFrame) - static_cast<std::int64_t>(text.size()), 1);
        text.resize(wholeFrame);
        return text;
    }

    void takeEntries(std::string_view text) {
        while (!text.empty()) {
            std::string_view const entry = text.substr(0, text.find('\0'));
            takeEntry(entry, *group_, header_);
            text.remove_prefix(std::min(entry.size() + 1, text.size()));
        }
    }

    // A name and a point need a byte each.
    bool countsFit() {
        bool const fit = header_.columns > 0 && header_.columns <= fileSize_ && header_.rows <= fileSize_;
        header_.shape.numVectors = fit ? static_cast<std::size_t>(header_.columns) : 0;
        return fit;
    }

    bool readNames() {
        std::uint8_t const type = input_.byte();
        input_.skip(frameBytes_ - 1);
        header_.shape.pointsAhead = pointsAhead();
        return type == 'N' && readPSpiceNames(input_, group_, header_.shape, vectors_);
    }

    // As many as were announced, if the rest of the file can hold them.
    std::int64_t pointsAhead() const {
        auto const valueBytes = static_cast<std::int64_t>(BinaryPoints::bytesOf(header_.shape.valuesInFile()));
        std::int64_t const pointBytes = static_cast<std::int64_t>(sizeof(double)) + (header_.columns - 1) * valueBytes;
        return std::min(header_.rows, std::max<std::int64_t>(fileSize_ - stream_.tellg(), 0) / pointBytes);
    }

    // Up to the last records of both kinds, or to anything that is no record of data.
    bool readData() {
        bool sweepDone = false, analysisDone = false;
        while (!(sweepDone && analysisDone) && !sweepIsCut_ && stream_.peek() >= 0) {
            Frame const frame = readFrame();
            if (frame.type == 'S') {
                if (!readSweep(frame.size - frameBytes_)) return false;
                sweepDone = sweepDone || frame.left == 0;
            } else if (frame.type == 'A') {
                if (!readAnalysis(frame)) return false;
                analysisDone = analysisDone || frame.left == 0;
            } else if (frame.type != 'M') {
                break;
            } else if (!skipBody(frame.size - frameInData)) {
                return false;
            }
        }
        return true;
    }

    // Of one that the end of the file cuts the whole values count.
    bool readSweep(std::int64_t bytes) {
        constexpr std::size_t valueBytes = sizeof(double), most = 512;
        if (input_.failed() || bytes < 0) return false;
        double values[most];
        for (std::size_t left = static_cast<std::size_t>(bytes) / valueBytes; left > 0 && !sweepIsCut_;) {
            std::size_t const wanted = std::min(left, most);
            std::size_t const got = stream_.read(reinterpret_cast<char *>(values), wanted * valueBytes) / valueBytes;
            appendSweep(values, static_cast<std::int64_t>(got));
            sweepIsCut_ = got != wanted;
            left -= got;
        }
        return true;
    }

    // What goes beyond the rows announced is dropped.
    void appendSweep(double const * values, std::int64_t count) {
        std::int64_t const room = std::max<std::int64_t>(header_.rows - sweepRows_, 0);
        vectors_.front()->addVals(values, static_cast<std::size_t>(std::min(count, room)));
        sweepRows_ += count;
    }

    // The values of every vector but the first. What goes beyond the rows announced is dropped.
    bool readAnalysis(Frame const & frame) {
        if (vectors_.size() < 2) return skipBody(frame.size - frameBytes_);
        if (input_.failed() || frame.size < frameInData) return false;
        std::span<dvec * const> const others = std::span(vectors_).subspan(1);
        BinaryPoints const points(others, header_.shape.valuesInFile());
        auto const stride = static_cast<std::int64_t>(points.stride());
        std::int64_t const count = (frame.size - frameInData) / stride;
        std::int64_t const kept = std::min(count, std::max<std::int64_t>(header_.rows - analysisRows_, 0));
        analysisRows_ += count;
        return points.read(stream_, static_cast<std::uint64_t>(kept)).complete && skipBody((count - kept) * stride);
    }

    tvfstream & stream_;
    BinaryInput input_;
    Group * const group_;
    std::int64_t const frameBytes_;
    std::int64_t const fileSize_;
    RecordsHeader header_;
    YArray<dvec *> vectors_; // in file order; the group owns them
    std::int64_t sweepRows_ = 0, analysisRows_ = 0;
    bool sweepIsCut_ = false;
};

} // namespace

bool readPSpiceRecords(tvfstream & stream, Group * group, bool wideFrames, MessageHandler & messages) {
    RecordsReader reader(stream, group, wideFrames);
    if (!reader.read()) return false;
    if (reader.isCut()) messages.warning("Possible missing data in PSpice data file");
    return true;
}
