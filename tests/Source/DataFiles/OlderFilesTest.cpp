// Files of the versions before streams, built byte by byte.
#include "Source/DataFiles/DataFilesFixture.h"

#include "Source/DataFiles/OlderWriter.h"
#include "support/Files.h"
#include "support/MemoryFiles.h"

namespace {

struct Version {
    char const * name;
    int code;
};
constexpr Version versions[] = {{"1.1", 11}, {"4.0", 40}, {"4.1", 41}, {"4.5", 45}, {"6.0", 60}};

using OlderFiles = DataFilesFixture;

TEST_F(OlderFiles, OfEachVersionOpen) {
    for (Version const & version : versions) {
        SCOPED_TRACE(version.name);
        OlderWriter writer(version.name, version.code);
        std::vector<std::int64_t> const divisions =
            version.code >= 40 ? std::vector<std::int64_t>{0, 16} : std::vector<std::int64_t>();
        writer.group("old7", {{"out", {1, 2, 3, 4}, divisions}, {"in", {5}, {}}});
        YString const path = folder.path("old.tvdat");
        putBytes(path, writer.bytes);
        Group * group = open(path);
        ASSERT_NE(group, nullptr) << words->last();
        EXPECT_EQ(text(group->title), "Title");
        dvec & out = *group->find("out");
        EXPECT_EQ(out.numDivisions(), version.code >= 40 ? 2 : 1);
        EXPECT_EQ(out.totalLength(), 4);
        EXPECT_EQ(values(out, 0)[1], 2);
        EXPECT_EQ(text(out.ref.name()), "time");
        EXPECT_EQ(out.physType(), PT_VOLTAGE);
        EXPECT_EQ(text(group->oldStream->path()), text(path));
        destroyGroup(group);
    }
}

TEST_F(OlderFiles, SeveralGroupsOpenOneAfterTheOther) {
    OlderWriter writer("6.0", 60);
    for (char const * name : {"p", "q", "r"}) writer.group(name, {{name, {1, 2}, {}}});
    YString const path = folder.path("old.tvdat");
    putBytes(path, writer.bytes);
    Group * last = open(path);
    ASSERT_NE(last, nullptr) << words->last();
    EXPECT_EQ(text(last->name), "r");
    for (char const * name : {"p", "q", "r"}) {
        ASSERT_NE(findGroup(name), nullptr);
        EXPECT_EQ(values(*findGroup(name)->find(name)).size(), 2U);
    }
    EXPECT_NE(findGroup("p")->oldStream, findGroup("q")->oldStream);
}

TEST_F(OlderFiles, AGroupThatCannotBeRestoredLeavesThoseBeforeIt) {
    OlderWriter writer("4.1", 41);
    writer.group("first", {{"v", {1}, {}}});
    std::size_t const good = writer.bytes.size();
    writer.group("second", {{"v", {1}, {}}});
    YString const path = folder.path("old.tvdat");
    putBytes(path, writer.bytes.substr(0, good + 10));
    EXPECT_EQ(open(path), nullptr);
    EXPECT_EQ(words->last(),
              "Data file '" + text(path) + "' load failed: could not restore data. File may be corrupted");
    EXPECT_NE(findGroup("first"), nullptr);
    EXPECT_EQ(findGroup("second"), nullptr);
}

TEST_F(OlderFiles, HaveRealDataWhenAVectorHasAReference) {
    YString const path = folder.path("old.tvdat");
    for (bool hasReference : {false, true}) {
        OlderWriter writer("6.0", 60);
        writer.group("old", {{"v", {1}, {}}}, hasReference ? "time" : "");
        putBytes(path, writer.bytes);
        Group * group = open(path);
        ASSERT_NE(group, nullptr);
        EXPECT_EQ(group->hasRealData, hasReference);
        EXPECT_EQ(group->runId, 0U);
    }
}

TEST_F(OlderFiles, TemporaryOnesGoWithTheirGroup) {
    OlderWriter writer("6.0", 60);
    for (char const * name : {"p", "q"}) writer.group(name, {{name, {1, 2}, {}}});
    VecOpenGroupOptions options;
    options.temporary = true;
    YString const path = folder.path("old.tvdat");
    for (bool keep : {true, false}) {
        putBytes(path, writer.bytes);
        Group * last = open(path, options);
        ASSERT_NE(last, nullptr);
        EXPECT_EQ(vec_DestroyGroup(last->name, keep), VEC_OK);
        EXPECT_EQ(sp_ExistFile(path), keep);
        EXPECT_EQ(values(*groupListHead()->find("p")).size(), 2U) << "what is open can still be read";
        destroyAllGroups();
        EXPECT_FALSE(sp_ExistFile(path));
    }
    putBytes(path, writer.bytes.substr(0, writer.bytes.size() - 30));
    EXPECT_EQ(open(path, options), nullptr);
    EXPECT_FALSE(sp_ExistFile(path)) << "the group that was begun took it along";
}

TEST_F(OlderFiles, CutAndChangedTheyDoNoHarm) {
    MemoryFiles disk;
    FileSystemInUse const inUse(disk);
    for (Version const & version : versions) {
        OlderWriter writer(version.name, version.code);
        writer.group("x", {{"v", {1, 2, 3}, {}}});
        writer.group("y", {{"v", {1, 2, 3}, {}}});
        std::string const path = "/old.tvdat";
        for (std::size_t at = 0; at < writer.bytes.size(); ++at)
            for (int change = 0; change < 4; ++change) {
                std::string bytes = writer.bytes;
                if (change == 0) bytes.resize(at);
                if (change != 0) bytes[at] = static_cast<char>(change == 1 ? 0xff : change == 2 ? 0 : bytes[at] ^ 0x80);
                disk.put(path, bytes);
                words->clear();
                if (Group * group = open(YString(path), ignoringLock()))
                    group->forEachVector([](dvec & vector) { vector.getRange(false); });
                else
                    EXPECT_FALSE(words->texts.empty());
                destroyAllGroups();
            }
    }
}

TEST_F(OlderFiles, BlocksGoOnBehindTheirLinks) {
    constexpr std::int64_t headerBytes = 32;
    OlderWriter plain("6.0", 60);
    plain.group("x", {{"v", {1, 2, 3, 4}, {}}});
    std::string bytes = plain.bytes;
    double const first[] = {1, 2, 3, 4};
    std::size_t const payload = bytes.find(std::string(reinterpret_cast<char const *>(first), sizeof first));
    ASSERT_NE(payload, std::string::npos);
    // The block keeps two of its values; the other two stand at the end of the file, and no block knows the total.
    std::size_t const header = payload - static_cast<std::size_t>(headerBytes);
    storeNumber(bytes.data() + header, static_cast<std::int64_t>(bytes.size()));
    storeNumber(bytes.data() + header + 24, std::int64_t{0});
    storeNumber(bytes.data() + header + 16, std::int64_t{headerBytes + 16});
    bytes.erase(payload + 16, 16);
    storeNumber(bytes.data() + header, static_cast<std::int64_t>(bytes.size()));
    std::string more(static_cast<std::size_t>(headerBytes), '\0');
    storeNumber(more.data() + 16, std::int64_t{headerBytes + 16});
    more.append(reinterpret_cast<char const *>(first + 2), 16);
    YString const path = folder.path("old.tvdat");
    putBytes(path, bytes + more);
    Group * group = open(path);
    ASSERT_NE(group, nullptr) << words->last();
    EXPECT_EQ(values(*group->find("v")), (std::vector<double>{1, 2, 3, 4}));
}

} // namespace
