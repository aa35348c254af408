// Groups that go on in the files of others.
#include "Source/DataFiles/DataFilesFixture.h"

namespace {

class Linking : public DataFilesFixture {
protected:
    static constexpr int points = 3;

    static void addPoints(Group * group, double first) {
        for (int i = 0; i < points; ++i) {
            group->find("time")->addVal(static_cast<double>(i));
            group->find("a")->addVal(first + i);
        }
    }
    // Files of groups of one name, whose vectors are the same streams.
    void saveAlike(std::initializer_list<std::pair<YString, double>> files) {
        Group * group = newRun({"a"});
        addPoints(group, 0);
        for (auto const & [path, first] : files) {
            for (int i = 0; i < points; ++i) group->find("a")->writableRealData()[i] = first + i;
            ASSERT_TRUE(save(group, path));
        }
        destroyGroup(group);
    }
    Group * target() {
        Group * run = newRun({"a"});
        EXPECT_EQ(initialise(run, folder.path("target.tvdat")), VEC_OK);
        addPoints(run, 0);
        return run;
    }
    static std::vector<double> from(double first) { return {first, first + 1, first + 2}; }
};

TEST_F(Linking, AMergedGroupIsContinuedWithWhatItShows) {
    YString const one = folder.path("one.tvdat"), two = folder.path("two.tvdat");
    saveAlike({{one, 100}, {two, 200}});
    Group * run = target();
    VecOpenGroupOptions merging;
    merging.merge = true;
    Group * shown = open(one);
    ASSERT_EQ(open(two, merging), shown) << "the vectors of the second file in the group of the first";
    ASSERT_EQ(values(*shown->find("a")), from(200));
    ASSERT_EQ(vec_AppendGroup(run->name, shown->name, words), VEC_OK);
    ASSERT_EQ(run->find("a")->numDivisions(), 2);
    EXPECT_EQ(values(*run->find("a"), 1), from(200));
    destroyGroup(run);
    destroyGroup(shown);
    EXPECT_EQ(values(*open(folder.path("target.tvdat"))->find("a"), 1), from(200));
}

TEST_F(Linking, AVectorThatShowsAnotherFilesIsContinuedWithThat) {
    YString const one = folder.path("one.tvdat"), two = folder.path("two.tvdat");
    saveAlike({{one, 100}, {two, 200}});
    Group * run = target();
    Group * source = open(one);
    source->find("a")->assign(*open(two)->find("a"));
    ASSERT_EQ(vec_AppendGroup(run->name, source->name, words), VEC_OK);
    EXPECT_EQ(values(*run->find("a"), 1), from(200));
    EXPECT_EQ(values(run->find("a")->ref, 1), (std::vector<double>{0, 1, 2}));
}

} // namespace
