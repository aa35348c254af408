// Functions that ask about groups and vectors, through expressions.

#include "Groups/GroupStore.h"
#include "RecordedMessages.h"
#include "torvelan/torvelan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using Texts = std::vector<std::string>;
using Reals = std::vector<double>;

class GroupFunctions : public testing::Test {
protected:
    // The first value; null when the expression fails.
    XYVector * value(std::string const & expr) {
        YArray<XYVector *> out;
        bool const good = vec_EvalVecList(expr.c_str(), &out, context, YString(), false) == VEC_OK;
        return good ? out.front() : nullptr;
    }
    Texts texts(std::string const & expr) {
        XYVector const * const vector = value(expr);
        if (vector == nullptr) return {"failed: " + testing::PrintToString(handler->texts)};
        Texts out;
        for (std::int64_t i = 0; i < vector->length(); ++i) out.emplace_back(vector->getString(i));
        return out;
    }
    Reals reals(std::string const & expr) {
        XYVector const * const vector = value(expr);
        if (vector == nullptr) ADD_FAILURE() << expr << ": " << testing::PrintToString(handler->texts);
        return vector != nullptr ? elements(*vector) : Reals();
    }
    static Reals elements(BaseVector const & vector) {
        Reals out;
        for (std::int64_t i = 0; i < vector.length(); ++i) out.push_back(vector.getReal(i));
        return out;
    }
    static Reals divisionOf(BaseVector const & vector, std::int64_t division) {
        Reals out;
        for (std::int64_t i = 0; i < vector.length(division); ++i) out.push_back(vector.getReal(i, division));
        return out;
    }
    // No value and no message but that of the empty result.
    void expectNothing(std::string const & expr) {
        handler->clear();
        EXPECT_EQ(reals("length(" + expr + ")"), Reals{0}) << expr;
        EXPECT_TRUE(handler->texts.empty()) << expr;
    }
    std::string group(char const * title, char const * name, bool isCurrent = true) {
        YString made;
        vec_MakeGroup(title, name, made, 0, AnalysisInfo());
        if (isCurrent) vec_SetCurrentGroup(made);
        return std::string(made);
    }
    dvec & member(std::string const & groupName, char const * name, Reals const & values, Reals const & x = {}) {
        auto * const vector = new dvec(name, findGroup(groupName), PT_VOLTAGE);
        for (double v : values) vector->addVal(v);
        for (double v : x) vector->ref.addVal(v);
        if (!x.empty()) vector->ref.setName("time");
        if (!x.empty()) vector->ref.setPhysType(PT_TIME);
        vector->enterGroup();
        return *vector;
    }
    static YString label(char const * name, double at) { return vec_ComposeDivisionString(name, at, PT_RESISTANCE); }

    EngineSession session;
    std::shared_ptr<RecordedMessages> handler = std::make_shared<RecordedMessages>();
    ScpParseContext context{handler};
};

} // namespace

// --- groups

TEST_F(GroupFunctions, GroupsAreListedNewestFirst) {
    std::string const a = group("First", "a"), b = group("Second", "b");
    vec_PushContext();
    EXPECT_EQ(texts("Groups()"), (Texts{b, a, "global"}));
    EXPECT_EQ(texts("Groups('title')"), (Texts{"Second", "First", "Global vars"})) << "in the order of the names";
    findGroup(a)->date = "today";
    EXPECT_EQ(texts("Groups('Date')"), (Texts{"", "today", ""}));
    vec_PopContext();
}

TEST_F(GroupFunctions, GroupInfoEndsWithWhetherItIsKept) {
    YString made;
    vec_MakeGroup("Run", "tran", made, 7, AnalysisInfo());
    std::string const name(made);
    EXPECT_EQ(texts("GetGroupInfo('" + name + "')"), (Texts{"", "", "Run", name, "nokeep"}));
    vec_KeepGroup(made, true);
    EXPECT_EQ(texts("GetGroupInfo('" + name + "')").back(), "keep");
    EXPECT_EQ(texts("GetGroupInfo('')"), (Texts{"", "", "Global vars", "global", "keep"}));
    expectNothing("GetGroupInfo('nowhere')");
}

TEST_F(GroupFunctions, VectorsOfAGroupInNameOrder) {
    std::string const g = group("", "g");
    member(g, "b", {1});
    member(g, "A", {1}).setPhysType(PT_CURRENT);
    vec_MakeString("s", "text", YString());
    vec_MakeAliasVector("al", "b*2", YString(), PT_NONE);
    EXPECT_EQ(texts("VectorsInGroup()"), (Texts{"A", "al", "b", "s"}));
    EXPECT_EQ(texts("VectorsInGroup('" + g + "','real')"), (Texts{"A", "b"}));
    EXPECT_EQ(texts("VectorsInGroup('','String')"), Texts{"s"});
    EXPECT_EQ(texts("VectorsInGroup('','alias')"), Texts{"al"});
    EXPECT_EQ(texts("VectorsInGroup('','current')"), Texts{"A"});
    expectNothing("VectorsInGroup('nowhere')");
    expectNothing("VectorsInGroup('','complex')");
}

TEST_F(GroupFunctions, CollatedVectorsAreThoseWithNumbers) {
    std::string const g = group("", "g");
    member(g, "a", {1});
    vec_MakeString("b", "text", YString());
    member(g, "c", {1});
    vec_MakeAliasVector("d", "a*2", YString(), PT_NONE);
    member(g, "e", {1});
    EXPECT_EQ(reals("CollateGroup()"), (Reals{0, 2, 4})) << "positions in name order";
    EXPECT_EQ(reals("CollateGroup('" + g + "', 10.9)"), (Reals{10, 12, 14}));
    EXPECT_EQ(reals("CollateGroup('', -3)"), (Reals{0, 2, 4}));
    EXPECT_EQ(reals("CollateGroup('', 0, ['E', 'a', 'b'])"), (Reals{0, 4}));
    expectNothing("CollateGroup('', 0, 'zz')");
    expectNothing("CollateGroup('nowhere')");
    EXPECT_EQ(reals("Range(CollateGroup('', 1e300),0,0)"), Reals{1e300});
}

TEST_F(GroupFunctions, PostProcessScriptsOfAGroup) {
    std::string const g = group("", "g");
    vec_AddPostProc(YString(g), "one");
    vec_AddPostProc(YString(g), "two");
    EXPECT_EQ(texts("GetPostProcessScripts('" + g + "')"), (Texts{"one", "two"}));
    expectNothing("GetPostProcessScripts('nowhere')");
}

TEST_F(GroupFunctions, Collections) {
    EXPECT_EQ(reals("MakeCollection('runs','Multiple')"), Reals{1});
    EXPECT_EQ(reals("MakeCollection('runs')"), Reals{0}) << "known already";
    std::string const a = group("", "a"), b = group("", "b");
    vec_CloseCollection();
    group("", "c");
    EXPECT_EQ(texts("GroupsInCollection('runs')"), (Texts{a, b}));
    EXPECT_EQ(texts("CollectionName('" + a + "')"), Texts{"runs"});
    EXPECT_EQ(texts("CollectionName()"), Texts{""}) << "of the current group";
    vec_SetCurrentGroup(YString(b));
    EXPECT_EQ(texts("CollectionName()"), Texts{"runs"});
    EXPECT_EQ(texts("CollectionName('nowhere')"), Texts{"runs"});
    expectNothing("GroupsInCollection('nothing')");
    expectNothing("GroupsInCollection('')");
}

// --- steps

TEST_F(GroupFunctions, StepsOfAGroupAreItsLabels) {
    std::string const g = group("", "g");
    expectNothing("GetGroupStepParameter()");
    expectNothing("GetGroupStepVals()");
    for (double value : {1e3, 1.1e3, 0.1}) vec_AddGroupDivision(YString(g), label("r1", value));
    EXPECT_EQ(texts("GetGroupStepParameter('" + g + "')"), Texts{"r1"});
    EXPECT_EQ(reals("GetGroupStepVals()"), (Reals{1e3, 1.1e3, 0.1})) << "to the last bit";
    EXPECT_EQ(value("GetGroupStepVals()")->physType(), PT_RESISTANCE);
    expectNothing("GetGroupStepVals('nowhere')");
}

TEST_F(GroupFunctions, NestedSweepsAreCountedFromTheOutermost) {
    std::string const g = group("", "g");
    for (double outer : {1.0, 2.0})
        for (double inner : {10.0, 20.0})
            vec_AddGroupDivision(YString(g),
                                 YString(std::string(label("r1", outer)) + "/" + std::string(label("c1", inner))));
    EXPECT_EQ(texts("GetGroupStepParameter()"), (Texts{"r1", "c1"}));
    EXPECT_EQ(reals("GetGroupStepVals()"), (Reals{1, 1, 2, 2}));
    EXPECT_EQ(reals("GetGroupStepVals('', 1)"), (Reals{10, 20, 10, 20}));
    for (char const * level : {"2", "-1", "1e300"}) expectNothing(std::string("GetGroupStepVals('',") + level + ")");
}

TEST_F(GroupFunctions, StepsOfAVectorAreThoseItShows) {
    std::string const g = group("", "g");
    dvec & v = member(g, "v", {1, 2});
    expectNothing("GetVecStepParameter(v)");
    for (double at : {5.0, 6.0}) vec_AddGroupDivision(YString(g), label("r1", at));
    v.addDivision(YString(g));
    v.addVal(3);
    EXPECT_EQ(texts("GetVecStepParameter(v)"), Texts{"r1"});
    EXPECT_EQ(reals("GetVecStepVals(v)"), (Reals{5, 6}));
    EXPECT_EQ(reals("GetVecStepVals(v*2)"), (Reals{5, 6}));
}

TEST_F(GroupFunctions, PlainLabelsHaveNoValues) {
    std::string const g = group("", "g");
    for (char const * name : {"slow", "fast"}) vec_AddGroupDivision(YString(g), name);
    EXPECT_EQ(texts("GetGroupStepParameter()"), Texts{"slow"});
    expectNothing("GetGroupStepVals()");
}

// --- vectors

TEST_F(GroupFunctions, KindsOfVectors) {
    EXPECT_EQ(reals("[IsNum(1), IsNum((1,2)), IsNum('x')]"), (Reals{1, 1, 0}));
    EXPECT_EQ(reals("[IsComplex(1), IsComplex((1,2)), IsComplex('x')]"), (Reals{0, 1, 0}));
    EXPECT_EQ(reals("[IsStr(1), IsStr((1,2)), IsStr('x')]"), (Reals{0, 0, 1}));
}

TEST_F(GroupFunctions, WhatAVectorMeasures) {
    std::string const g = group("", "g");
    member(g, "v", {1, 2}, {3, 4});
    EXPECT_EQ(texts("PhysType(v)"), Texts{"voltage"});
    EXPECT_EQ(texts("PhysType(v*v)"), Texts{"voltage_squared"});
    EXPECT_EQ(texts("Units(v)"), Texts{"V"});
    EXPECT_EQ(texts("Units('v')"), Texts{"V"});
    EXPECT_EQ(texts("Units(Ref(v))"), Texts{"s"});
    EXPECT_EQ(texts("Units(1)"), Texts{std::string(sp_GetPhysTypeUnit(PT_LITERAL))});
    EXPECT_EQ(texts("RefName(v*2)"), Texts{"time"});
    EXPECT_EQ(texts("RefName(1)"), Texts{""});
    expectNothing("Units('nothing')");
}

TEST_F(GroupFunctions, TruthOfAName) {
    std::string const g = group("", "g");
    member(g, "inCurrent", {1});
    value("yes=2");
    value("no=[0,1]");
    value("turned=(0,1)");
    EXPECT_EQ(reals("True('x')"), Reals{0});
    EXPECT_EQ(reals("True('yes')"), Reals{1});
    EXPECT_EQ(reals("True('no')"), Reals{0});
    EXPECT_EQ(reals("True('turned')"), Reals{0}) << "the real part counts";
    EXPECT_EQ(reals("True('inCurrent')"), Reals{0});
    EXPECT_EQ(reals("True('inCurrent','searchcurrent')"), Reals{1});
    EXPECT_TRUE(handler->texts.empty());
}

TEST_F(GroupFunctions, ExistenceOfAName) {
    std::string const g = group("", "g");
    member(g, "v", {1});
    value("local=1");
    EXPECT_EQ(reals("ExistVec('local')"), Reals{1});
    EXPECT_EQ(reals("ExistVec('v')"), Reals{1});
    EXPECT_EQ(reals("ExistVec('v','GlobalLocal')"), Reals{0});
    EXPECT_EQ(reals("ExistVec('" + g + ":v')"), Reals{1});
    EXPECT_EQ(reals("ExistVec('nowhere:v')"), Reals{0});
    EXPECT_EQ(reals("ExistVec('')"), Reals{0});
    member(g, (g + ":v").c_str(), {1});
    EXPECT_EQ(reals("ExistVec('" + g + ":v')"), Reals{2});
}

TEST_F(GroupFunctions, AVectorByItsName) {
    std::string const g = group("", "g"), other = group("", "other", false);
    member(g, "a-b", {1, 2}, {3, 4});
    member(other, "v", {7});
    value("x=5");
    EXPECT_EQ(reals("Vec('a-b')*2"), (Reals{2, 4}));
    EXPECT_EQ(elements(value("Vec('a-b')")->ref), (Reals{3, 4}));
    EXPECT_EQ(reals("Vec('x')"), Reals{5}) << "as an expression finds it";
    EXPECT_EQ(reals("Vec('" + other + ":v')"), Reals{7});
    EXPECT_EQ(reals("Vec('v','" + other + "')"), Reals{7});
    EXPECT_EQ(reals("Vec(':a-b')"), (Reals{1, 2}));
    EXPECT_EQ(reals("Vec('a-b','')"), (Reals{1, 2}));
    vec_MakeAliasVector("twice", "x*2", YString(), PT_NONE);
    EXPECT_EQ(reals("Vec('twice')"), Reals{10});
    for (char const * expr : {"Vec('nothing')", "Vec(':x')", "Vec('v','nowhere')", "Vec('')"}) expectNothing(expr);
}

TEST_F(GroupFunctions, LogarithmicSpacing) {
    EXPECT_EQ(reals("HasLogSpacing([1,10,100,1000])"), Reals{1});
    EXPECT_EQ(reals("HasLogSpacing(XY([1,2,3],[1,10,100]))"), Reals{1}) << "of the reference where there is one";
    EXPECT_EQ(reals("HasLogSpacing(XY([1,10,100],[1,2,3]))"), Reals{0});
    for (char const * x : {"[1,2,3,4]", "[1,10]", "[0,1,10]", "[-1,-10,-100]", "[5,5,5]", "[1,10,100,101]"})
        EXPECT_EQ(reals(std::string("HasLogSpacing(") + x + ")"), Reals{0}) << x;
    auto * const response = new dvec("response", nullptr, PT_NONE);
    response->setComplexFlag();
    response->ref.setComplexFlag();
    for (double f : {1.0, 10.0, 100.0}) {
        response->addVal(complex{f, 1});
        response->ref.addVal(complex{f, 0});
    }
    response->enterGroup();
    EXPECT_EQ(reals("HasLogSpacing(response)"), Reals{1});
}

TEST_F(GroupFunctions, WordsAsAnExpression) {
    EXPECT_EQ(texts("Expr('a + b-c')"), Texts{"a + Vec('b-c')"});
    EXPECT_EQ(texts("Expr('  q#p\t*  ( v1 )  ')"), Texts{"q#p * ( v1 )"});
    EXPECT_EQ(texts("Expr('')"), Texts{""});
    std::string const g = group("", "g");
    member(g, "a-b", {1});
    YString pseudonym;
    vec_GetVectorPseudonym(YString(), "a-b", &pseudonym);
    std::string const p(pseudonym);
    EXPECT_EQ(texts("Expr('" + p + " + 1')"), Texts{"Vec('a-b') + 1"});
    EXPECT_EQ(texts("Expr(':" + p + "')"), Texts{":" + p});
    EXPECT_EQ(texts("Expr(':" + p + "', 'Legacy')"), Texts{":Vec('a-b')"});
    std::string const many(200000, '+');
    EXPECT_EQ(texts("Expr('" + many + "')").at(0).size(), many.size() + 7);
}

TEST_F(GroupFunctions, TimersOfFunctions) {
    value("ListFunctionTimers('CLEAR')");
    value("sin(1)");
    Texts const timers = texts("ListFunctionTimers()");
    EXPECT_TRUE(std::is_sorted(timers.begin(), timers.end()));
    EXPECT_TRUE(std::any_of(timers.begin(), timers.end(),
                            [](std::string const & text) { return text.find("sin") != std::string::npos; }));
}

TEST_F(GroupFunctions, EachHasAPlaceInTheSources) {
    YList<FuncLocInfo> places;
    vec_GetFunctionLocs(&places);
    for (auto [name, file] :
         {std::pair{"Groups", "/GrpFunc.cpp"}, {"length", "/Cmath1.cpp"}, {"max", "/Operators.cpp"}}) {
        auto const at = std::find_if(places.begin(), places.end(), [=](auto const & row) { return row.name == name; });
        ASSERT_NE(at, places.end()) << name;
        EXPECT_TRUE(at->file.view().ends_with(file)) << at->file.view();
        EXPECT_GT(at->line, 0) << name;
        EXPECT_FALSE(at->modulePath.empty()) << name;
    }
}

// --- ComposeDigital

TEST_F(GroupFunctions, ABusIsTheSumOfItsBits) {
    std::string const g = group("", "g");
    member(g, "d#0", {0, 5, 5, 0, 0}, {0, 1, 2, 3, 4});
    member(g, "d#1", {0, 0, 0, 5, 5}, {0, 1, 2, 3, 4});
    XYVector const * const bus = value("ComposeDigital('d')");
    ASSERT_NE(bus, nullptr);
    EXPECT_EQ(elements(*bus), (Reals{0, 0, 1, 1, 2, 2}));
    EXPECT_EQ(elements(bus->ref), (Reals{0, 0.5, 0.5, 2.5, 2.5, 4}));
    EXPECT_EQ(bus->ref.physType(), PT_TIME);
    EXPECT_EQ(bus->ref.name(), YString("time"));
    EXPECT_EQ(reals("ComposeDigital('d',[1,0])"), (Reals{0, 0, 2, 2, 1, 1})) << "bit 0 first";
    EXPECT_EQ(reals("ComposeDigital('" + g + ":d',1)"), (Reals{0, 0, 1, 1}));
}

TEST_F(GroupFunctions, NamesOfWiresFollowThePattern) {
    std::string const g = group("", "g");
    member(g, "bus_3_x", {0, 5}, {0, 2});
    EXPECT_EQ(reals("ComposeDigital('bus',3,2.5,'','%BUSNAME%_%WIRENUM%_x')"), (Reals{0, 0, 1, 1}));
    expectNothing("ComposeDigital('bus')");
    expectNothing("ComposeDigital('bus',[3,4],2.5,'','%BUSNAME%_%WIRENUM%_x')");
}

TEST_F(GroupFunctions, BetweenTheLevelsABusHasNoValue) {
    std::string const g = group("", "g");
    member(g, "d#0", {0, 10, 10, 0}, {0, 10, 20, 30});
    XYVector const * bus = value("ComposeDigital('d',[0,0],[2,8])");
    ASSERT_NE(bus, nullptr);
    EXPECT_EQ(elements(bus->ref), (Reals{0, 2, 2, 8, 8, 22, 22, 28, 28, 30}));
    EXPECT_TRUE(std::isnan(bus->getReal(2)));
    EXPECT_EQ(bus->getReal(4), 1);
    for (char const * word : {"holdInvalid", "HOLDINV"}) {
        bus = value(std::string("ComposeDigital('d',[0,0],[2,8],'") + word + "')");
        EXPECT_EQ(elements(*bus), (Reals{0, 0, 1, 1, 0, 0}));
        EXPECT_EQ(elements(bus->ref), (Reals{0, 8, 8, 28, 28, 30}));
    }
}

TEST_F(GroupFunctions, BusesMayBeSignedAndScaled) {
    std::string const g = group("", "g");
    for (int bit = 0; bit < 3; ++bit) {
        Reals levels, x;
        for (int code = 0; code < 8; ++code)
            for (double edge : {0.0, 1.0}) {
                levels.push_back((code >> bit & 1) * 5.0);
                x.push_back(code + edge);
            }
        member(g, ("d#" + std::to_string(bit)).c_str(), levels, x);
    }
    auto const codes = [this](char const * options) {
        Reals const steps = reals(std::string("ComposeDigital('d',[0,2],2.5,") + options + ")");
        Reals out;
        for (std::size_t i = 0; i < steps.size(); i += 2) out.push_back(steps[i]);
        return out;
    };
    EXPECT_EQ(codes("''"), (Reals{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(codes("'signed'"), (Reals{0, 1, 2, 3, -4, -3, -2, -1}));
    EXPECT_EQ(codes("'scale'"), (Reals{0, 0.125, 0.25, 0.375, 0.5, 0.625, 0.75, 0.875}));
    EXPECT_EQ(codes("['scale','signed']"), (Reals{0, 0.25, 0.5, 0.75, -1, -0.75, -0.5, -0.25}));
}

// Wires on grids of their own, against the bits looked up one by one.
TEST_F(GroupFunctions, ABusAgreesWithItsWiresEverywhere) {
    unsigned const seed = std::random_device()();
    std::mt19937 random(seed);
    std::string const g = group("", "g");
    std::vector<Reals> x(5), y(5);
    std::uniform_real_distribution<double> step(0.1, 1.0);
    for (std::size_t k = 0; k < x.size(); ++k) {
        double at = 0;
        for (int i = 0; i < 200; ++i, at += step(random)) {
            x[k].push_back(at);
            y[k].push_back(random() % 2 != 0 ? 5.0 : 0.0);
        }
        member(g, ("d#" + std::to_string(k)).c_str(), y[k], x[k]);
    }
    XYVector const * const bus = value("ComposeDigital('d',[0,4],2.5)");
    ASSERT_NE(bus, nullptr);
    double const end = 0.95 * std::min({x[0].back(), x[1].back(), x[2].back(), x[3].back(), x[4].back()});
    for (int probe = 0; probe < 2000; ++probe) {
        double const at = std::uniform_real_distribution<double>(0, end)(random);
        double wanted = 0;
        bool isNearEdge = false;
        for (std::size_t k = 0; k < x.size(); ++k) {
            auto const i = static_cast<std::size_t>(std::upper_bound(x[k].begin(), x[k].end(), at) - x[k].begin() - 1);
            double const v = y[k][i] + (y[k][i + 1] - y[k][i]) * (at - x[k][i]) / (x[k][i + 1] - x[k][i]);
            isNearEdge = isNearEdge || std::fabs(v - 2.5) < 1e-9;
            if (v > 2.5) wanted += std::ldexp(1.0, static_cast<int>(k));
        }
        double const * const times = bus->ref.realData();
        auto const place = std::upper_bound(times, times + bus->length(), at) - times - 1;
        ASSERT_TRUE(isNearEdge || bus->getReal(place) == wanted) << at << ", seed " << seed;
    }
}

TEST_F(GroupFunctions, WiresOfASteppedRunGiveABusForEachDivision) {
    std::string const g = group("", "g");
    dvec & low = member(g, "d#0", {0, 5}, {0, 2});
    for (double at : {1.0, 2.0}) vec_AddGroupDivision(YString(g), label("r1", at));
    low.addDivision(YString(g));
    low.ref.addDivision(YString(g));
    for (double v : {5.0, 0.0}) low.addVal(v);
    for (double x : {0.0, 4.0}) low.ref.addVal(x);
    member(g, "d#1", {5, 5}, {0, 1});
    XYVector const * const bus = value("ComposeDigital('d',[0,1],2.5)");
    ASSERT_NE(bus, nullptr);
    ASSERT_EQ(bus->numDivisions(), 2);
    ASSERT_EQ(bus->ref.numDivisions(), 2);
    EXPECT_EQ(divisionOf(*bus, 0), (Reals{2, 2, 3, 3}));
    EXPECT_EQ(divisionOf(bus->ref, 0), (Reals{0, 1, 1, 2}));
    EXPECT_EQ(divisionOf(*bus, 1), (Reals{3, 3, 2, 2}));
    EXPECT_EQ(divisionOf(bus->ref, 1), (Reals{0, 2, 2, 4}));
    EXPECT_EQ(bus->divisionLabel(1), label("r1", 2));
    EXPECT_EQ(reals("GetVecStepVals(ComposeDigital('d',[0,1]))"), (Reals{1, 2}));

    dvec & third = member(g, "d#2", {0}, {0});
    for (int i = 0; i < 2; ++i) {
        third.addDivision(YString(g));
        third.addVal(1);
    }
    expectNothing("ComposeDigital('d')");
}

TEST_F(GroupFunctions, SweepsDownwardsGiveTheBusOfThoseUpwards) {
    std::string const g = group("", "g");
    member(g, "up#0", {5, 5, 0, 0}, {0, 1, 2, 3});
    member(g, "up#1", {0, 5}, {0, 3});
    member(g, "down#0", {0, 0, 5, 5}, {3, 2, 1, 0});
    member(g, "down#1", {5, 0}, {3, 0});
    EXPECT_EQ(reals("ComposeDigital('up')"), (Reals{1, 1, 2, 2})) << "both pass the middle at 1.5";
    EXPECT_EQ(reals("ComposeDigital('down')"), reals("ComposeDigital('up')"));
    EXPECT_EQ(reals("Ref(ComposeDigital('down'))"), (Reals{0, 1.5, 1.5, 3}));
}

TEST_F(GroupFunctions, NumbersOfWiresMayBeAny) {
    std::string const g = group("", "g");
    member(g, "d#-1", {0, 5}, {0, 2});
    EXPECT_EQ(reals("ComposeDigital('d',[-1,-1],2.5)"), (Reals{0, 0, 1, 1}));
    for (char const * wires : {"1e300", "-1e300", "[0,1e300]", "[-1e300,1e300]", "[1e300,-1e300]"})
        expectNothing(std::string("ComposeDigital('d',") + wires + ")");
}

TEST_F(GroupFunctions, OddWiresDoNoHarm) {
    double const nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
    std::string const g = group("", "g");
    member(g, "n#0", {0, nan, 5, infinity}, {0, 1, 2, 3});
    EXPECT_FALSE(reals("ComposeDigital('n',0,2.5)").empty());
    member(g, "m#0", {0, 5, 0}, {nan, nan, nan});
    expectNothing("ComposeDigital('m',0,2.5)");
    member(g, "c#0", {5, 5}, {0, 1});
    EXPECT_EQ(reals("ComposeDigital('c')"), (Reals{1, 1}));
    for (int bit = 0; bit < 65; ++bit) member(g, ("w#" + std::to_string(bit)).c_str(), {5, 5}, {0, 1});
    EXPECT_EQ(reals("ComposeDigital('w',[0,63],2.5)"), (Reals{18446744073709551615.0, 18446744073709551615.0}));
    EXPECT_EQ(reals("ComposeDigital('w',[0,63],2.5,'signed')"), (Reals{-1, -1}));
    EXPECT_EQ(value("ComposeDigital('w')"), nullptr);
    EXPECT_EQ(handler->texts, Texts{"A bus in function 'ComposeDigital' has 64 wires at most"});
}
