// A function that walks through all divisions in one call gives what it gives division by division.

#include "Source/Evaluation/FrameTools.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

char const * const walkers[] = {"integ", "avg", "diff", "Rms", "Mean1", "RMS1", "RootSumOfSquares", "SumNoise"};

FuncHandler counted = nullptr;
int calls = 0;
FUNC_ERROR countCalls(FuncArgs const & args, FuncResult * result, FuncInfo * info, YRef<MessageHandler> messages,
                      MessageHandler & handlerMessages, ScpParseContext const & context) {
    ++calls;
    return counted(args, result, info, messages, handlerMessages, context);
}

// Bit by bit, so that a NaN equals itself.
std::vector<std::vector<std::uint64_t>> bitsOf(BaseVector const & vector) {
    std::vector<std::vector<std::uint64_t>> out;
    for (Values const & values : divisionsOf(vector)) {
        out.emplace_back();
        for (double value : values) out.back().push_back(std::bit_cast<std::uint64_t>(value));
    }
    return out;
}

class DivisionWalk : public FrameTest {
protected:
    // The calls of the handler for a walk.
    int expectSame(char const * name, std::vector<dvec *> const & arguments) {
        FuncInfo walking = *vec_FindFunction(name), each = walking;
        EXPECT_TRUE(walking.walksDivisions) << name;
        counted = walking.handler;
        walking.handler = each.handler = countCalls;
        each.walksDivisions = false;
        dvec * const wanted = call(each, copiesOf(arguments));
        FUNC_ERROR const wantedCode = code;
        Texts const words = messages->texts;
        messages->clear();
        calls = 0;
        dvec * const got = call(walking, copiesOf(arguments));
        EXPECT_EQ(code, wantedCode) << name;
        EXPECT_EQ(messages->texts, words) << name;
        messages->clear();
        EXPECT_EQ(got == nullptr, wanted == nullptr) << name;
        if (got == nullptr || wanted == nullptr) return calls;
        EXPECT_EQ(got->numDivisions(), wanted->numDivisions()) << name;
        EXPECT_EQ(bitsOf(*got), bitsOf(*wanted)) << name;
        EXPECT_EQ(bitsOf(got->ref), bitsOf(wanted->ref)) << name;
        EXPECT_EQ(labelsOf(*got), labelsOf(*wanted)) << name;
        EXPECT_EQ(got->physType(), wanted->physType()) << name;
        EXPECT_EQ(got->ref.physType(), wanted->ref.physType()) << name;
        EXPECT_EQ(got->isMultiple(), wanted->isMultiple()) << name;
        return calls;
    }
    static std::vector<dvec *> copiesOf(std::vector<dvec *> const & vectors) {
        std::vector<dvec *> copies;
        for (dvec * vector : vectors) copies.push_back(new dvec(*vector));
        return copies;
    }
    dvec * steps(std::vector<std::size_t> const & lengths) {
        Divisions values, places;
        std::uniform_real_distribution<double> unit(0.1, 1);
        for (std::size_t length : lengths) {
            values.emplace_back();
            places.emplace_back();
            for (std::size_t i = 0; i < length; ++i) {
                values.back().push_back(unit(random) - 0.5);
                places.back().push_back((i > 0 ? places.back().back() : 0) + unit(random));
            }
        }
        dvec * const v = makeVector("v", values, places);
        v->setPhysType(PT_VOLTAGE);
        v->ref.setPhysType(PT_TIME);
        v->setMultiple();
        return v;
    }

    std::mt19937_64 random{std::random_device()()};
};

} // namespace

TEST_F(DivisionWalk, OneCallServesAllDivisions) {
    for (std::vector<std::size_t> const & lengths :
         {std::vector<std::size_t>{3, 2, 5}, {2, 2}, {700, 3, 2, 900}, {2, 3, 3, 3, 3, 3, 3, 3}})
        for (char const * name : walkers) EXPECT_EQ(expectSame(name, {steps(lengths)}), 1) << name;
}

TEST_F(DivisionWalk, DivisionsOfOnePoint) {
    for (char const * name : walkers) expectSame(name, {steps({1, 1, 1})});
    for (char const * name : walkers) expectSame(name, {steps({3, 1, 2})});
}

TEST_F(DivisionWalk, LimitsForAllDivisions) {
    dvec * const v = steps({40, 50, 60});
    for (char const * name : {"Mean1", "RMS1", "SumNoise"}) {
        EXPECT_EQ(expectSame(name, {v, makeVector("start", {{3}})}), 1);
        EXPECT_EQ(expectSame(name, {v, makeVector("start", {{1}}), makeVector("end", {{4.5}})}), 1);
        expectSame(name, {v, makeVector("start", {{5}}), makeVector("end", {{4.5}})});
        expectSame(name, {v, makeVector("start", {{1e9}})});
    }
}

TEST_F(DivisionWalk, LimitsForEachDivision) {
    dvec * const v = steps({40, 50});
    for (char const * name : {"Mean1", "RMS1"})
        EXPECT_EQ(expectSame(name, {v, makeVector("start", {{3}, {1}}), makeVector("end", {{7}, {8}})}), 2);
}

TEST_F(DivisionWalk, ReferencesThatAreMissingOrOtherwiseDivided) {
    for (char const * name : walkers) {
        expectSame(name, {makeVector("a", {{1, 2}, {3, 4}})});
        expectSame(name, {makeVector("b", {{1, 2}, {3, 4, 5}}, {{0, 1, 2}, {3, 4}})});
        expectSame(name, {makeVector("c", {{1, 2}, {3, 4, 5}}, {{0, 1, 2, 3, 4}})});
        expectSame(name, {makeVector("d", {{1, 2}, {3, 4, 5}}, {{0, 1}})});
    }
}

TEST_F(DivisionWalk, ComplexReferencesGiveTheirRealParts) {
    dvec * const v = makeVector("v", {{1, 2}, {3, 4, 6}});
    v->ref.setComplexFlag();
    for (int i = 0; i < 5; ++i) {
        if (i == 2) v->ref.addDivision(YString());
        v->ref.addVal(complex{0.5 * i * i, 7});
    }
    for (char const * name : walkers) EXPECT_EQ(expectSame(name, {v}), 1) << name;
}

TEST_F(DivisionWalk, NumbersThatAreNone) {
    double const notANumber = std::numeric_limits<double>::quiet_NaN(),
                 infinity = std::numeric_limits<double>::infinity();
    dvec * const v = makeVector("v", {{1, notANumber, 2}, {3, infinity}}, {{0, 1, 2}, {0, notANumber}});
    for (char const * name : walkers) expectSame(name, {v});
}

TEST_F(DivisionWalk, PartOfTheDivisions) {
    dvec * const view = new dvec(*steps({3, 2, 5}));
    view->openDivisionAt(1);
    view->ref.openDivisionAt(1);
    for (char const * name : walkers) expectSame(name, {view});
}
