// What is said of files that are not quite as they should be, word by word. Each is one good file with a change.
#include "Source/DataFiles/DataFilesFixture.h"

#include "DataFiles/BootRecords.h"
#include "Dfs/LittleEndian.h"
#include "Dfs/RecordText.h"
#include "support/MemoryFiles.h"

namespace {

constexpr char const * fileName = "/d/file.tvdat";
constexpr std::size_t blockSizePlace = 28, firstEntry = 36, entryBytes = 40, entriesOfBlock = 800;
constexpr std::size_t idField = 8, offsetField = 16, sizeField = 24, nextField = 32;

using Bytes = std::string;
using Words = std::string;

// The records of the directory.
class Image {
public:
    explicit Image(Bytes bytes_) : bytes(std::move(bytes_)) {}

    template <class Number> void set(std::size_t place, Number value) { storeNumber(bytes.data() + place, value); }
    std::int64_t field(std::size_t entry, std::size_t which) const {
        return loadNumber<std::int64_t>(bytes.data() + entry + which);
    }
    std::size_t entryOf(std::int64_t id) const {
        for (std::size_t k = 0; k < entriesOfBlock; ++k)
            if (field(firstEntry + k * entryBytes, idField) == id) return firstEntry + k * entryBytes;
        ADD_FAILURE() << "no entry of " << id;
        return firstEntry;
    }
    // Of extents of data that another one follows, by their places in the file.
    std::vector<std::size_t> closedExtents() const {
        std::vector<std::size_t> found;
        for (std::size_t k = 1; k < entriesOfBlock; ++k) {
            std::size_t const entry = firstEntry + k * entryBytes;
            bool const isRun = bytes[entry + 5] != 0;
            if (!isRun && field(entry, idField) > 0 && field(entry, nextField) > 0) found.push_back(entry);
        }
        std::sort(found.begin(), found.end(),
                  [this](std::size_t a, std::size_t b) { return field(a, offsetField) < field(b, offsetField); });
        return found;
    }
    // Another boot stream in place of that of the file.
    void replaceBoot(Bytes const & boot) {
        std::size_t const entry = entryOf(bootStream);
        set(entry + offsetField, static_cast<std::int64_t>(bytes.size()));
        set(entry + sizeField, static_cast<std::int64_t>(boot.size()));
        bytes += boot;
    }

    Bytes bytes;
};

Bytes key(std::string_view word, std::int32_t value) {
    RecordText record;
    record.string(word).number(value);
    return {record.data(), record.size()};
}
Bytes end() {
    RecordText record;
    record.string(endKey);
    return {record.data(), record.size()};
}

class OpeningWords : public DataFilesFixture {
protected:
    Image sample() {
        Group * group = newRun({"a"});
        for (int i = 0; i < 1000; ++i) addPoint(group, {"a"}, i);
        group->addPostProcess("script");
        EXPECT_TRUE(save(group, fileName));
        destroyGroup(group);
        return Image(disk.bytes(fileName));
    }
    // A file with these pairs in the boot stream. The streams have the numbers that they have in any file.
    Bytes withBoot(std::int32_t version, std::int32_t revision, Bytes const & last, bool hasScripts = true) {
        Bytes boot = key(versionKey, version) + key(revisionKey, revision);
        for (int i = 0; i < BOOT_STREAMS - (hasScripts ? 0 : 1); ++i) boot += key(bootKeys[i].word, streams[i]);
        return withBoot(boot + last);
    }
    Bytes withBoot(Bytes const & boot) {
        Image image = sample();
        image.replaceBoot(boot);
        return image.bytes;
    }
    void readStreamNumbers() {
        Bytes const bytes = sample().bytes;
        for (int i = 0; i < BOOT_STREAMS; ++i) {
            std::size_t const at = bytes.find(key(bootKeys[i].word, 0).substr(0, bootKeys[i].word.size() + 4));
            ASSERT_NE(at, Bytes::npos);
            streams[i] = loadNumber<std::int32_t>(bytes.data() + at + 4 + bootKeys[i].word.size());
        }
    }

    // All that is said at opening.
    Texts said(Bytes const & bytes, bool opens) {
        disk.put(fileName, bytes);
        words->clear();
        Group * group = open(fileName, ignoringLock());
        EXPECT_EQ(group != nullptr, opens);
        if (group != nullptr) {
            EXPECT_NE(group->find("a"), nullptr);
            destroyGroup(group);
        }
        return words->texts;
    }
    Words refused(Bytes const & bytes) {
        Texts const texts = said(bytes, false);
        std::string const beginning = std::string("Data file '") + fileName + "' load failed: ";
        EXPECT_EQ(texts.size(), 1U);
        EXPECT_EQ(words->count(MessageLevel::error), 1);
        EXPECT_EQ(words->last().substr(0, beginning.size()), beginning);
        return words->last().substr(std::min(beginning.size(), words->last().size()));
    }

    std::int32_t streams[BOOT_STREAMS] = {};
    MemoryFiles disk;
    FileSystemInUse inUse{disk};
};

TEST_F(OpeningWords, OfAFileWhoseBeginningIsDamaged) {
    Words const reason = "could not read file header. File may be corrupted";
    for (std::int64_t size : {std::int64_t{0}, std::int64_t{-40}, std::int64_t{39}, INT64_MAX}) {
        Image image = sample();
        image.set(blockSizePlace, size);
        EXPECT_EQ(refused(image.bytes), reason) << size;
    }
    Image const good = sample();
    std::string_view const settings = "TimeBufferedBufferSize";
    std::size_t const place = good.bytes.find(settings);
    Image changed = good;
    changed.bytes[place] = 'X';
    EXPECT_EQ(refused(changed.bytes), reason);
    for (std::int32_t slot : {0, -1, 65537}) {
        changed = good;
        changed.set(place + settings.size(), slot);
        EXPECT_EQ(refused(changed.bytes), reason) << slot;
    }
}

TEST_F(OpeningWords, OfExtentsThatContradictEachOther) {
    Words const reason = "inconsistent data. File may be corrupted";
    Image const good = sample();
    auto const extents = good.closedExtents();
    ASSERT_GE(extents.size(), 3U);
    std::size_t const one = extents[1], other = extents[2];
    Image claimedTwice = good;
    claimedTwice.set(one + nextField, good.field(other, nextField));
    EXPECT_EQ(refused(claimedTwice.bytes), reason);
    for (std::int64_t distance : {-1, 0, 1}) {
        Image overlapping = good;
        overlapping.set(one + offsetField, good.field(other, offsetField) + distance);
        EXPECT_EQ(refused(overlapping.bytes), reason) << distance;
    }
}

TEST_F(OpeningWords, OfAFileThatHasLostItsEnd) {
    std::string const warning =
        std::string("Data file '") + fileName +
        "' has some missing data. Some vectors may be truncated or missing. This may have been caused by an abnormal "
        "simulation termination";
    Image const good = sample();
    auto const extents = good.closedExtents();
    Image endless = good;
    endless.set(extents.back() + nextField, std::int64_t{99999});
    EXPECT_EQ(said(endless.bytes, true), Texts{warning});
    EXPECT_EQ(words->levels, std::vector{MessageLevel::warning});
    std::size_t largest = extents[0]; // of the values
    for (std::size_t entry : extents)
        if (good.field(entry, sizeField) > good.field(largest, sizeField)) largest = entry;
    Image shortened = good;
    shortened.set(largest + offsetField, static_cast<std::int64_t>(good.bytes.size()));
    shortened.bytes += "a few bytes";
    EXPECT_EQ(said(shortened.bytes, true), Texts{warning});
}

TEST_F(OpeningWords, OfALaterProgram) {
    readStreamNumbers();
    EXPECT_EQ(said(withBoot(2, 1, end()), true), Texts{});
    std::string const warning = std::string("Data file '") + fileName +
                                "': file created with a later program version. Some data may be missing";
    EXPECT_EQ(said(withBoot(2, 2, end()), true), Texts{warning});
    EXPECT_EQ(words->levels, std::vector{MessageLevel::warning});
    Words const error = "file created with a later program version";
    EXPECT_EQ(refused(withBoot(3, 1, end())), error);
    EXPECT_EQ(refused(withBoot(3, 2, end())), error) << "the version counts more";
    EXPECT_EQ(refused(withBoot(key(versionKey, 3) + key("unheard of", 1))), error);
}

TEST_F(OpeningWords, OfABootStream) {
    readStreamNumbers();
    Words const error = "could not restore data. File may be corrupted";
    EXPECT_EQ(said(withBoot(2, 1, key("new", 7) + key("newer", 8) + end()), true), Texts{}) << "passed over";
    EXPECT_EQ(said(withBoot(1, 1, end(), false), true), Texts{}) << "the first version had no scripts";
    EXPECT_EQ(said(withBoot(1, 1, end()), true), Texts{}) << "to it they are unknown";
    EXPECT_EQ(refused(withBoot(2, 1, end(), false)), error);
    EXPECT_EQ(refused(withBoot(2, 1, {})), error) << "no end";
    EXPECT_EQ(refused(withBoot({})), error);
    Bytes const beginning = key(versionKey, 2) + key(revisionKey, 1);
    Bytes known[BOOT_STREAMS];
    for (int i = 0; i < BOOT_STREAMS; ++i) known[i] = key(bootKeys[i].word, streams[i]);
    EXPECT_EQ(refused(withBoot(key(revisionKey, 1) + key(versionKey, 2))), error);
    EXPECT_EQ(refused(withBoot(beginning + known[1] + known[0] + known[2] + known[3] + known[4] + end())), error)
        << "out of order";
    EXPECT_EQ(
        refused(withBoot(beginning + known[0] + key("new", 7) + known[1] + known[2] + known[3] + known[4] + end())),
        error)
        << "unknown ones come last";
    EXPECT_EQ(
        refused(withBoot(beginning + key("HEADER", streams[0]) + known[1] + known[2] + known[3] + known[4] + end())),
        error);
}

} // namespace
