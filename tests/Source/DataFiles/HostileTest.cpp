// Files that nobody should have written: cut at every byte, changed in every byte, with numbers that mean harm. They
// give a message or less data, and take no more memory than their size accounts for; the store works on.
#include "Dfs/DfsFile.h"
#include "Dfs/LittleEndian.h"
#include "Source/DataFiles/DataFilesFixture.h"
#include "Vectors/BlockMemory.h"
#include "support/MemoryFiles.h"

#include <chrono>

namespace {

constexpr char const * fileName = "/hostile.tvdat";

class Hostile : public DataFilesFixture {
protected:
    ~Hostile() override { destroyAllGroups(); }

    // A file of everything that there is, as small as may be.
    std::string sample() {
        Group * run = newRun({"a", "b"});
        stringMember(run, "note", "text");
        run->addPostProcess("script");
        run->traces.push_back({"one", "two", true, {{"colour", "red"}}});
        EXPECT_EQ(initialise(run, fileName), VEC_OK);
        for (int step = 0; step < 3; ++step) {
            vec_AddGroupDivision(run->name, "s");
            if (step != 0)
                for (char const * name : {"time", "a", "b"}) run->find(name)->addDivision(run->name);
            for (int i = 0; i < 4; ++i) addPoint(run, {"a", "b"}, i);
        }
        destroyGroup(run);
        return disk.bytes(fileName);
    }

    // Opens it and asks for all that is there. An error is told once, and is the only word then.
    void exercise(std::string bytes) {
        disk.put(fileName, std::move(bytes));
        words->clear();
        Group * group = open(fileName, ignoringLock());
        auto const errors = std::count(words->levels.begin(), words->levels.end(), MessageLevel::error);
        ASSERT_EQ(errors, group != nullptr ? 0 : 1) << words->last();
        if (group == nullptr) return;
        group->forEachVector([](dvec & vector) {
            for (std::int64_t i = 0; i < std::min<std::int64_t>(vector.numDivisions(), 100); ++i) {
                vector.getReal(0, i);
                vector.divisionLabel(i);
            }
            vector.getRange(false);
        });
        group->postProcessScripts();
        destroyGroup(group);
    }

    template <class Number> static std::string with(std::string bytes, std::size_t at, Number value) {
        storeNumber(bytes.data() + at, value);
        return bytes;
    }

    MemoryFiles disk;
    FileSystemInUse inUse{disk};
};

constexpr std::size_t firstEntry = 36;

// Places of the file that hold something, one page of zeros being like another.
std::vector<std::size_t> interestingPlaces(std::string const & bytes) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] != 0 || i < 1200 || i % 509 == 0) places.push_back(i);
    return places;
}

TEST_F(Hostile, FilesCutAtEveryByte) {
    std::string const whole = sample();
    for (std::size_t length : interestingPlaces(whole)) exercise(whole.substr(0, length));
}

TEST_F(Hostile, EveryByteChanged) {
    std::string const whole = sample();
    for (std::size_t at : interestingPlaces(whole))
        for (int value : {0, 0xff, whole[at] ^ 1, whole[at] ^ 0x80, whole[at] + 1})
            exercise(with(whole, at, static_cast<char>(value)));
}

TEST_F(Hostile, EveryFieldOfTheDirectoryWithEveryEvilNumber) {
    std::string const whole = sample();
    std::int64_t const evil[] = {0,
                                 -1,
                                 1,
                                 39,
                                 1001,
                                 1002,
                                 1005,
                                 INT32_MAX,
                                 INT64_MAX,
                                 INT64_MIN,
                                 36,
                                 1LL << 62,
                                 100,
                                 2,
                                 0x7fffffff00000001LL,
                                 0x0000000a00000008LL,
                                 -0x7fffffffffffff00LL};
    constexpr std::size_t fields[] = {0, 4, 8, 16, 24, 32};
    for (std::size_t entry = 0; entry < 25; ++entry)
        for (std::size_t field : fields)
            for (std::int64_t value : evil) {
                std::size_t const at = firstEntry + entry * 40 + field;
                exercise(field == 0   ? with(whole, at, static_cast<std::uint32_t>(value))
                         : field == 4 ? with(whole, at, static_cast<std::uint16_t>(value))
                                      : with(whole, at, value));
            }
    for (std::int64_t value : evil) exercise(with(whole, 28, value));
}

TEST_F(Hostile, RunsOfManyExtentsTakeNoTimeAndNoMemory) {
    std::string bytes = sample();
    for (int i = 20; i < 800; ++i) {
        std::size_t const at = firstEntry + static_cast<std::size_t>(i) * 40;
        bytes = with(bytes, at + 4, std::uint16_t{0x0100});
        bytes = with(bytes, at + 8, std::int64_t{1} << 40 | std::int64_t{i} << 32);
        bytes = with(bytes, at + 16, std::int64_t{33000});
        bytes = with(bytes, at + 24, std::int32_t{1});
        bytes = with(bytes, at + 28, std::int32_t{INT32_MAX});
        bytes = with(bytes, at + 32, std::int64_t{1} << 40 | std::int64_t{i - 1} << 32);
    }
    BlockMemory::resetPeak();
    auto const start = std::chrono::steady_clock::now();
    exercise(bytes);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_LT(BlockMemory::peakBytes(), std::size_t{1} << 24);
}

// With many vectors that begin one extent behind the other, all of them would be many times the file.
TEST_F(Hostile, AVectorDoesNotBeginInsideAStream) {
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, fileName), VEC_OK);
    for (int i = 0; i < 10000; ++i) addPoint(run, {"a"}, i);
    destroyGroup(run);
    std::string const whole = disk.bytes(fileName);
    DfsFile file(fileName, DfsMode::read);
    ASSERT_EQ(file.openOrCreate(true), DfsStatus::good);
    int found = 0;
    file.directory().forEach([&](DirectoryEntry const & head) {
        if (head.next <= 0 || head.type != StreamType::bytes) return;
        std::string streams(16, '\0'); // as the record of a vector names them
        storeNumber(streams.data(), head.id);
        storeNumber(streams.data() + 8, head.id + 1);
        std::size_t const at = whole.find(streams);
        if (at == std::string::npos) return;
        ++found;
        exercise(with(whole, at, head.next));
        EXPECT_EQ(words->last(),
                  "Data file '/hostile.tvdat' load failed: could not restore data. File may be corrupted");
    });
    EXPECT_EQ(found, 2) << "time and a";
}

// All blocks together, however large the chain says that the next one is.
TEST_F(Hostile, ADirectoryIsNoLargerThanItsFile) {
    std::string bytes = with(sample(), firstEntry + 16, std::int64_t{firstEntry});
    bytes = with(bytes, firstEntry + 24, std::int64_t{40} << 20);
    exercise(with(bytes, firstEntry + 32, std::int64_t{77777}));
    EXPECT_EQ(words->last(),
              "Data file '/hostile.tvdat' load failed: could not read file header. File may be corrupted");
}

// The extents of a ring have each one predecessor, so that no count of claims finds them.
TEST_F(Hostile, RingsAreFound) {
    std::string const whole = sample();
    for (std::size_t entry = 1; entry < 22; ++entry) {
        std::size_t const at = firstEntry + entry * 40;
        auto const id = loadNumber<std::int64_t>(whole.data() + at + 8);
        if (id <= 0) continue;
        disk.put(fileName, with(whole, at + 32, id));
        words->clear();
        EXPECT_EQ(open(fileName, ignoringLock()), nullptr) << "entry " << entry;
    }
}

// The nexts of a run that count up from below zero reach other extents.
TEST_F(Hostile, ARunDoesNotComeUpFromBelowZero) {
    std::string bytes = sample();
    std::size_t const at = firstEntry + 20 * 40;
    bytes = with(bytes, at + 4, std::uint16_t{0x0100});
    bytes = with(bytes, at + 8, std::int64_t{90});
    bytes = with(bytes, at + 16, std::int64_t{33000});
    bytes = with(bytes, at + 24, std::int32_t{1});
    bytes = with(bytes, at + 28, std::int32_t{20});
    bytes = with(bytes, at + 32, std::int64_t{-5});
    disk.put(fileName, bytes);
    EXPECT_EQ(open(fileName, ignoringLock()), nullptr);
}

TEST_F(Hostile, FilesToBeContinuedAreLeftAloneWhenTheyAreDamaged) {
    std::string const whole = sample();
    VecOpenGroupOptions options = forUpdate();
    options.ignoreLock = true;
    for (std::size_t cut : {whole.size() - 1, whole.size() - 1000}) {
        std::string const bytes = whole.substr(0, cut);
        disk.put(fileName, bytes);
        EXPECT_EQ(open(fileName, options), nullptr);
        EXPECT_EQ(disk.bytes(fileName), bytes);
    }
}

// A block of the directory that the file has lost would be written anew, wherever the chain says that it was.
TEST_F(Hostile, AFileThatHasLostABlockOfItsDirectoryIsNotContinued) {
    std::string const whole = sample();
    VecOpenGroupOptions options = forUpdate();
    options.ignoreLock = true;
    for (std::int64_t place : {static_cast<std::int64_t>(whole.size()), std::int64_t{1} << 40, INT64_MAX - 40}) {
        std::string bytes = with(whole, firstEntry + 16, place);
        bytes = with(bytes, firstEntry + 24, std::int64_t{40});
        bytes = with(bytes, firstEntry + 32, std::int64_t{77777});
        disk.put(fileName, bytes);
        words->clear();
        EXPECT_EQ(open(fileName, options), nullptr);
        EXPECT_EQ(words->last(), "Data file '/hostile.tvdat' load failed: inconsistent data. File may be corrupted");
        EXPECT_TRUE(disk.bytes(fileName) == bytes);
        EXPECT_NE(open(fileName, ignoringLock()), nullptr) << words->last();
    }
}

TEST_F(Hostile, TheVersionIsTold) {
    std::string const whole = sample();
    std::string const path(fileName);
    auto const told = [&](std::string const & version) {
        std::string bytes = whole;
        bytes.replace(25, 3, version);
        disk.put(fileName, bytes);
        open(fileName, ignoringLock());
        return words->last();
    };
    EXPECT_EQ(told("9.9"), "Data file '" + path +
                               "' load failed: version not recognised. Possibly created by a later program version");
    EXPECT_EQ(told("6.2"),
              "Data file '" + path + "' load failed: file version is a format that is no longer supported");
    EXPECT_EQ(told("7.1"), "Data file '" + path + "' load failed: unexpected error, please contact support");
    disk.put(fileName, "something else");
    open(fileName, ignoringLock());
    EXPECT_EQ(words->last(), "Data file '" + path + "' load failed: file is not a Torvelan data file");
}

TEST_F(Hostile, AFileThatIsNotThereIsTold) {
    EXPECT_EQ(open(folder.path("nowhere.tvdat")), nullptr);
    EXPECT_EQ(words->last(),
              "Cannot open file '" + text(folder.path("nowhere.tvdat")) + "': No such file or directory");
}

} // namespace
