#include "Import/Spice2.h"

#include "Import/BinaryPoints.h"
#include "Import/GroupBeingRead.h"
#include "Import/OutputFile.h"
#include "Import/UniqueNames.h"
#include "support/Streams.h"

#include <bit>
#include <cstring>
#include <memory>

static_assert(std::endian::native == std::endian::little, "values are taken from the file as they stand");

namespace {

int nextGroupNumber = 1;

constexpr std::size_t nameBytes = 8, valueBytes = 8;

// What a file begins with, up to the names.
struct FixedPart {
    char title[80];
    char date[8];
    char time[8];
    std::uint16_t variables;
    std::uint16_t format;
};
static_assert(sizeof(FixedPart) == 100);
constexpr std::uint16_t knownFormat = 4;

// Without the blanks at its end; a NUL ends it as well.
template <std::size_t n> YString textOf(char const (&field)[n]) {
    YString text(field, strnlen(field, n));
    text.stripTrailing(" ");
    return text;
}

struct Signal {
    YString name;
    PhysType type = PT_UNKNOWN;
};

Signal reference(YString const & name) {
    if (equalNoCase(name, "time")) return {name, PT_TIME};
    if (equalNoCase(name, "freq")) return {name, PT_FREQUENCY};
    bool const isVoltage = equalNoCase(name.view().substr(0, 1), "v");
    bool const isCurrent = equalNoCase(name.view().substr(0, 1), "i");
    return {name, isVoltage ? PT_VOLTAGE : isCurrent ? PT_CURRENT : PT_UNKNOWN};
}

// A node, which has a number, or a device.
Signal nodeOrDevice(YString const & name) {
    bool const isNode = !name.empty() && name[0] >= '0' && name[0] <= '9';
    return isNode ? Signal{name, PT_VOLTAGE} : Signal{YString::joined(name, {"#p"}), PT_CURRENT};
}

class Spice2Reader {
public:
    Spice2Reader(tvfstream & stream, Group * group, bool takeAhead)
        : stream_(stream), group_(group), takeAhead_(takeAhead) {}

    // False unless the header is sound, and all names are there.
    bool readHeader() {
        bool const isWhole = readBytes(&fixed_, sizeof fixed_);
        nameGroup();
        if (!isWhole || fixed_.variables == 0 || fixed_.format != knownFormat) return false;
        points_ = static_cast<std::int64_t>(stream_.getFileSize() / fixed_.variables / valueBytes);
        return points_ > 0 && makeVectors();
    }

    void readValues() {
        constexpr std::int64_t modeBytes = 2, unusedBytes = 22, unusedOfEach = 4;
        stream_.seekg(modeBytes + unusedOfEach * fixed_.variables + unusedBytes, 1);
        using Values = BinaryPoints::Values;
        BinaryPoints const points(vectors_, kind_ == VD_COMPLEX ? Values::floatPairs : Values::doubles);
        // The file ends before the last of the points estimated, unless it grows meanwhile.
        if (points.read(stream_, static_cast<std::uint64_t>(points_)).complete)
            for (dvec * vector : vectors_) vector->shrinkReal();
    }

private:
    bool readBytes(void * dest, std::size_t n) { return stream_.read(static_cast<char *>(dest), n) == n; }

    void nameGroup() {
        if (YString const title = textOf(fixed_.title); !title.empty()) group_->title = title;
        group_->date = YString(fixed_.date, strnlen(fixed_.date, sizeof fixed_.date));
        group_->name = YString::joined("spice2_", {YString(nextGroupNumber++)});
    }

    bool makeVectors() {
        auto const names = std::make_unique<char[][nameBytes]>(fixed_.variables);
        if (!readBytes(names.get(), nameBytes * fixed_.variables)) return false;
        UniqueNames unique(*group_);
        for (std::size_t i = 0; i < fixed_.variables; ++i) {
            YString const name = textOf(names[i]);
            Signal const signal = vectors_.empty() ? reference(name) : nodeOrDevice(name);
            if (vectors_.empty() && signal.type == PT_FREQUENCY) kind_ = VD_COMPLEX;
            makeVector(unique(signal.name), signal.type);
        }
        return true;
    }

    void makeVector(YString const & name, PhysType type) {
        auto * vector = new dvec(name, group_, type);
        vectors_.push_back(vector);
        vector->allocate(takeAhead_ ? points_ : 0, kind_);
        vector->ref = *vectors_.front();
        vector->enterGroup();
    }

    tvfstream & stream_;
    Group * group_;
    bool takeAhead_; // memory for the points estimated
    FixedPart fixed_{};
    VD_type kind_ = VD_REAL;
    std::int64_t points_ = 0; // estimated by the size of the file: more than there are, since the header counts too
    YArray<dvec *> vectors_;  // in file order; the group owns them
};

} // namespace

bool readSpice2(tvfstream & stream, Group * group, OutputFile & output, MessageHandler & messages) {
    Spice2Reader reader(stream, group, !output.isWanted());
    if (!reader.readHeader()) return false;
    output.attachTo(*group);
    reader.readValues();
    output.finish();
    listAsRead(group, messages);
    return true;
}
