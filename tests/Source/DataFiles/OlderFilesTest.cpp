// Files of the versions before streams, built byte by byte.
#include "Source/DataFiles/DataFilesFixture.h"

#include "Dfs/LittleEndian.h"
#include "support/Files.h"
#include "support/MemoryFiles.h"

namespace {

struct OlderVector {
    std::string name;
    std::vector<double> values;
    std::vector<std::int64_t> divisions;
};

// Writes as the versions did.
class OlderWriter {
public:
    explicit OlderWriter(std::string const & version_, int code_) : code(code_) {
        counted("Torvelan datafile");
        counted(version_);
    }

    // The place of the next group is entered when that begins.
    void group(std::string const & name, std::vector<OlderVector> const & vectors,
               std::string const & reference = "time") {
        if (code > 10) {
            auto const here = static_cast<std::int32_t>(bytes.size());
            if (link != 0) storeNumber(bytes.data() + link, here);
            link = bytes.size();
            number(std::int32_t{0});
        }
        for (std::string const & text : {std::string("plot hdr"), std::string("Title"), std::string("Date"), name})
            string(text);
        if (code > 10) string("#");
        if (code >= 40) number(std::int64_t{0});
        auto const count = static_cast<int>(vectors.size());
        if (code < 41)
            number(static_cast<std::uint16_t>(count));
        else
            number(std::int32_t{count});
        for (OlderVector const & vector : vectors) {
            number(std::uint16_t{1});
            number(std::uint16_t{8});
            named(vector, PT_VOLTAGE);
            named({reference, vector.values, vector.divisions}, PT_TIME);
        }
    }

    std::string bytes;

private:
    template <class Number> void number(Number value) {
        char raw[sizeof value];
        storeNumber(raw, value);
        bytes.append(raw, sizeof raw);
    }
    void wide(std::int64_t value) { code >= 60 ? number(value) : number(static_cast<std::int32_t>(value)); }
    void counted(std::string const & text) {
        number(static_cast<std::int32_t>(text.size()));
        bytes += text;
    }
    void string(std::string const & text) {
        if (code >= 45) return counted(text);
        number(static_cast<std::uint16_t>(text.size()));
        bytes += text;
    }
    void named(OlderVector const & vector, PhysType type) {
        number(static_cast<std::uint16_t>(type));
        wide(++lastData);
        string("VecData");
        number(std::uint16_t{VD_REAL});
        wide(static_cast<std::int64_t>(vector.values.size()));
        std::string raw(vector.values.size() * sizeof(double), '\0');
        if (!raw.empty()) std::memcpy(raw.data(), vector.values.data(), raw.size());
        block(raw);
        if (code >= 40) {
            OlderWriter table("", code);
            table.bytes.clear();
            for (std::int64_t offset : vector.divisions) table.wide(offset);
            block(table.bytes);
            number(std::uint8_t{0});
            wide(0);
            wide(-1);
        }
        string(vector.name);
    }
    void header(std::int64_t next, std::int64_t blockBytes, std::int64_t total) {
        if (code < 40) {
            number(static_cast<std::int32_t>(next));
            number(static_cast<std::int32_t>(blockBytes));
            number(std::int32_t{0});
            number(static_cast<std::int32_t>(total));
            return;
        }
        number(next);
        number(std::int64_t{0});
        wide(blockBytes);
        wide(total);
    }
    void block(std::string const & raw) {
        std::int64_t const headerBytes = code < 40 ? 16 : code < 60 ? 24 : 32;
        auto const size = static_cast<std::int64_t>(raw.size());
        header(0, headerBytes + size, size);
        bytes += raw;
    }

    int code;
    std::size_t link = 0;
    std::int64_t lastData = 0;
};

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
