// Files that are continued after their run was killed: what is appended keeps its reference.
#include "Source/DataFiles/DataFilesFixture.h"

#include <cmath>

namespace {

class Continuing : public DataFilesFixture {
protected:
    static double valueOf(double x) { return 2 * x + 1; }
    static complex complexOf(double x) { return {x, -x}; }

    // A run of a real and a complex vector over the time.
    Group * begin() {
        Group * run = newRun({"a"});
        auto * c = new dvec("c", run, PT_VOLTAGE);
        c->setSize(0, VD_COMPLEX);
        static_cast<NamedVector &>(c->ref) = *run->find("time");
        c->enterGroup();
        EXPECT_EQ(initialise(run, folder.path("run.tvdat")), VEC_OK);
        return run;
    }
    static void add(Group * run, int first, int points) {
        for (int i = first; i < first + points; ++i) {
            run->find("time")->addVal(static_cast<double>(i));
            run->find("a")->addVal(valueOf(i));
            run->find("c")->addVal(complexOf(i));
        }
    }
    // The file as a kill would leave it now, when only these vectors have reached it.
    YString killed(Group * run, std::initializer_list<char const *> flushed) {
        for (char const * name : flushed) run->find(name)->shrinkReal();
        vec_DataSent(run->name, false);
        YString const path = folder.path("killed.tvdat");
        putBytes(path, bytesOf(folder.path("run.tvdat")));
        return path;
    }
    // Appends so many points, and looks: every value that is there stands over its own x. The answer is the number of
    // values with one.
    int goOn(YString const & path, int first, int points) {
        Group * again = open(path, forUpdate());
        EXPECT_NE(again, nullptr) << words->last();
        if (again == nullptr) return 0;
        add(again, first, points);
        int const pairs = look(*again);
        destroyGroup(again);
        Group * seen = open(path);
        EXPECT_EQ(look(*seen), pairs) << "what a reader sees is what the writer saw";
        destroyGroup(seen);
        return pairs;
    }
    static int look(Group & group) {
        int pairs = 0;
        dvec const & a = *group.find("a");
        dvec const & c = *group.find("c");
        EXPECT_EQ(c.numDivisions(), a.numDivisions());
        for (std::int64_t d = 0; d < a.numDivisions(); ++d) {
            EXPECT_EQ(a.length(d), c.length(d));
            EXPECT_EQ(a.length(d), a.ref.length(d));
            for (std::int64_t i = 0; i < a.length(d); ++i) {
                double const x = a.ref.getReal(i, d), y = a.getReal(i, d), re = c.getReal(i, d), im = c.getImag(i, d);
                EXPECT_TRUE(std::isnan(x) || std::isnan(y) || y == valueOf(x)) << y << " over " << x;
                EXPECT_TRUE(std::isnan(x) || std::isnan(re) || (complex{re, im} == complexOf(x)))
                    << re << " over " << x;
                pairs += !std::isnan(x) && !std::isnan(y) && !std::isnan(re);
            }
        }
        return pairs;
    }
};

TEST_F(Continuing, WhatIsNewKeepsItsReference) {
    using Names = std::initializer_list<char const *>;
    for (Names flushed : {Names{"a"}, {"time"}, {"c"}, {"a", "c"}, {"time", "c"}, {"a", "c", "time"}}) {
        Group * run = begin();
        add(run, 0, 400);
        vec_FixGroup(run->name);
        add(run, 400, 100);
        YString const path = killed(run, flushed);
        destroyGroup(run);
        int const whole = flushed.size() == 3 ? 500 : 400;
        EXPECT_EQ(goOn(path, 1000, 10), whole + 10);
        EXPECT_EQ(open(path)->find("a")->length(), 510);
        destroyAllGroups();
    }
}

TEST_F(Continuing, AFileThatHasLostNothingIsNotTouched) {
    Group * run = begin();
    add(run, 0, 400);
    destroyGroup(run);
    YString const path = folder.path("run.tvdat");
    std::string const before = bytesOf(path);
    destroyGroup(open(path, forUpdate()));
    EXPECT_EQ(bytesOf(path), before);
}

// The divisions are known at once, the values behind them not.
TEST_F(Continuing, DivisionsStayTogether) {
    for (char const * flushed : {"a", "c", "time"}) {
        Group * run = begin();
        add(run, 0, 100);
        addDivision(run, {"time", "a", "c"}, "second");
        add(run, 200, 50);
        vec_FixGroup(run->name);
        add(run, 250, 50);
        run->find(flushed)->addDivision(run->name);
        run->find(flushed)->addVal(std::nan(""));
        YString const path = killed(run, {flushed});
        destroyGroup(run);
        EXPECT_EQ(goOn(path, 300, 20), 170) << flushed;
        dvec const & a = *open(path)->find("a");
        ASSERT_EQ(a.numDivisions(), 3) << flushed;
        EXPECT_EQ(a.length(1), 100);
        EXPECT_EQ(a.length(2), 21);
        destroyAllGroups();
    }
}

TEST_F(Continuing, DivisionsThatContradictEachOtherStayAsTheyAre) {
    Group * run = begin();
    add(run, 0, 10);
    run->find("a")->addDivision(run->name);
    run->find("time")->addVal(10.0);
    run->find("time")->addDivision(run->name);
    run->find("a")->addVal(0.0);
    run->find("time")->addVal(11.0);
    destroyGroup(run);
    YString const path = folder.path("run.tvdat");
    Group * again = open(path, forUpdate());
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->find("a")->numDivisions(), 1);
    EXPECT_EQ(again->find("a")->length(), 10);
    EXPECT_EQ(again->find("a")->ref.length(), 10);
}

} // namespace
