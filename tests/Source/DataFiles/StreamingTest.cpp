// A run that writes its data file, and those who read it meanwhile.
#include "Source/DataFiles/DataFilesFixture.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

using Streaming = DataFilesFixture;

TEST_F(Streaming, ReadersSeeWhatTheLastUpdateShowed) {
    YString const path = folder.path("run.tvdat");
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    constexpr int points = 10000; // more than one extent
    for (int i = 0; i < points; ++i) addPoint(run, {"a"}, i);
    ASSERT_EQ(vec_FixGroup(run->name), VEC_OK);
    ASSERT_EQ(vec_DataSent(run->name, false), VEC_OK);
    addPoint(run, {"a"}, points);

    Group * seen = open(path, ignoringLock());
    ASSERT_NE(seen, nullptr) << words->last();
    EXPECT_EQ(seen->find("a")->length(), points);
    EXPECT_EQ(values(*seen->find("a")).back(), points - 1);
    EXPECT_EQ(seen->find("a")->ref.length(), points);
    EXPECT_EQ(run->find("a")->length(), points + 1);
    EXPECT_EQ(run->find("a")->getReal(points), points);
}

TEST_F(Streaming, OthersAreTurnedAwayWhileTheRunWrites) {
    YString const path = folder.path("run.tvdat");
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    EXPECT_EQ(open(path), nullptr);
    EXPECT_EQ(words->last(), "Cannot read data file '" + text(path) + "' as it is currently being updated");
    destroyGroup(run);
    EXPECT_NE(open(path), nullptr);
}

TEST_F(Streaming, ValuesGoToTheFileAndNotToMemory) {
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, folder.path("run.tvdat")), VEC_OK);
    for (int i = 0; i < 1000; ++i) addPoint(run, {"a"}, i);
    std::vector<double> const seen = values(*run->find("a"));
    ASSERT_EQ(seen.size(), 1000U);
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(seen[static_cast<std::size_t>(i)], i);
}

TEST_F(Streaming, DivisionsAndTheirLabelsComeAsTheyAreAnnounced) {
    YString const path = folder.path("run.tvdat");
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    for (int step = 0; step < 300; ++step) {
        if (step == 0)
            vec_AddGroupDivision(run->name, "s0");
        else
            addDivision(run, {"time", "a"}, ("s" + std::to_string(step)).c_str());
        for (int i = 0; i <= step % 3; ++i) addPoint(run, {"a"}, step + i);
        vec_DataSent(run->name, false);
    }
    vec_FixGroup(run->name);
    vec_DataSent(run->name, false);
    Group * seen = open(path, ignoringLock());
    ASSERT_NE(seen, nullptr) << words->last();
    dvec & a = *seen->find("a");
    ASSERT_EQ(a.numDivisions(), 300);
    EXPECT_EQ(a.length(5), 3);
    EXPECT_EQ(values(a, 4), (std::vector<double>{4, 5}));
    EXPECT_EQ(text(a.divisionLabel(299)), "s299");
    EXPECT_EQ(a.ref.numDivisions(), 300);
}

TEST_F(Streaming, AnotherProcessReadsWhileThisOneWrites) {
    YString const path = folder.path("run.tvdat");
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    Group * run = newRun({"a"});
    ASSERT_EQ(initialise(run, path), VEC_OK);
    for (int i = 0; i < 5000; ++i) addPoint(run, {"a"}, i);
    vec_FixGroup(run->name);
    vec_DataSent(run->name, false);
    pid_t const reader = fork();
    if (reader == 0) {
        Group * seen = open(path, ignoringLock());
        bool const refused = open(path) == nullptr;
        bool good = seen != nullptr && refused && seen->find("a")->length() == 5000;
        for (int i = 0; good && i < 5000; ++i) good = seen->find("a")->getReal(i) == i;
        _exit(good ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(reader, &status, 0), reader);
    EXPECT_EQ(status, 0);
}

} // namespace
