#include "torvelan/Commands.h"

#include "Evaluation/ScriptFunctions.h"
#include "Groups/GroupStore.h"
#include "RecordedMessages.h"
#include "torvelan/torvelan.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using Texts = std::vector<std::string>;
using Divisions = std::vector<std::vector<double>>;

Divisions divisionsOf(BaseVector const & vector) {
    Divisions out;
    for (std::int64_t d = 0; d < vector.numDivisions(); ++d) {
        out.emplace_back();
        for (std::int64_t i = 0; i < vector.length(d); ++i) out.back().push_back(vector.getReal(i, d));
    }
    return out;
}

class Commands : public testing::Test {
protected:
    void let(std::string const & expr) { EXPECT_EQ(letCode(expr), FUNC_OK) << expr; }
    FUNC_ERROR letCode(std::string const & expr) { return vec_LetCommand(YString(expr), handler, true, context); }
    bool setRef(std::string const & vector, std::string const & expr) {
        return vec_SetRefCommand(YString(vector), YString(expr), handler, context);
    }
    bool arguments(WordArray const & words) { return vec_ArgumentsCommand(words, context); }
    dvec & vector(char const * name) {
        dvec * const found = findVector(name, nullptr, false);
        if (found == nullptr) throw std::runtime_error(std::string("no vector ") + name);
        return *found;
    }
    bool exists(char const * name) { return findVector(name, nullptr, false) != nullptr; }
    // A vector as it came with a call, in the local group.
    void pass(char const * name, double value) {
        auto * const passed = new dvec(name, nullptr, PT_NONE);
        passed->addVal(value);
        passed->enterGroup();
    }
    void make(char const * name, Divisions const & divisions) {
        auto * const made = new dvec(name, nullptr, PT_NONE);
        for (auto const & division : divisions) {
            if (made->totalLength() > 0) made->addDivision(YString());
            for (double value : division) made->addVal(value);
        }
        made->enterGroup();
    }
    YString groupNamed(char const * name) {
        YString made;
        vec_MakeGroup("title", name, made, 0, AnalysisInfo());
        return made;
    }
    // The messages since the last question.
    Texts said() {
        Texts const texts = handler->texts;
        handler->clear();
        return texts;
    }

    std::shared_ptr<RecordedMessages> reports = std::make_shared<RecordedMessages>(); // what belongs to no command
    EngineSession session{reports};
    std::shared_ptr<RecordedMessages> handler = std::make_shared<RecordedMessages>();
    ScpParseContext context{handler};
};

void noteDeath(void * count, void *) {
    ++*static_cast<int *>(count);
}

} // namespace

// --- Let

TEST_F(Commands, LetEvaluatesForItsEffect) {
    let("x=3");
    EXPECT_EQ(vector("x").getReal(0), 3);
    let("1+1");
    EXPECT_EQ(said(), Texts{});
}

TEST_F(Commands, LetFailsWithoutAValue) {
    EXPECT_EQ(letCode("nothing"), FUNC_FAILED);
    EXPECT_EQ(said(), Texts{"Cannot find vector of name 'nothing'"});
    EXPECT_EQ(letCode("1+"), FUNC_FAILED);
    EXPECT_EQ(said(), Texts{"Bad syntax in expression '1+'"});
}

TEST_F(Commands, LetTakesTheContextsMessagesWhenThereAreNoOthers) {
    EXPECT_EQ(vec_LetCommand("nothing", nullptr, false, context), FUNC_FAILED);
    EXPECT_EQ(said().size(), 1u);
}

// --- SetRef

TEST_F(Commands, AReferenceSharesNameAndDataOfTheValue) {
    let("v=[1,2,3]");
    let("t=[5,6,7]");
    EXPECT_TRUE(setRef("v", "t"));
    EXPECT_EQ(vector("v").ref.name(), YString("t"));
    EXPECT_TRUE(vector("v").ref.sharesRep(vector("t")));
    EXPECT_TRUE(setRef("v", "t*2"));
    EXPECT_EQ(divisionsOf(vector("v").ref), (Divisions{{10, 12, 14}}));
    EXPECT_EQ(vector("v").ref.name(), YString("t*2"));
}

TEST_F(Commands, AReferenceIsOnlyTheValuesOwnElements) {
    let("v=[1,2]");
    let("t=XY([5,6],[8,9])");
    EXPECT_TRUE(setRef("v", "t"));
    EXPECT_EQ(divisionsOf(vector("v").ref), (Divisions{{5, 6}}));
}

TEST_F(Commands, AVectorMayBeItsOwnReference) {
    let("v=[1,2,3]");
    EXPECT_TRUE(setRef("v", "v"));
    EXPECT_EQ(divisionsOf(vector("v").ref), (Divisions{{1, 2, 3}}));
    let("v[0]=9");
    EXPECT_EQ(divisionsOf(vector("v").ref), (Divisions{{1, 2, 3}})) << "writing makes the data its own";
}

TEST_F(Commands, MutualReferencesAreFine) {
    let("a=[1,2]");
    let("b=[3,4]");
    EXPECT_TRUE(setRef("a", "b"));
    EXPECT_TRUE(setRef("b", "a"));
    EXPECT_TRUE(setRef("a", "b"));
    let("c=a+b");
    EXPECT_EQ(divisionsOf(vector("a").ref), (Divisions{{3, 4}}));
    EXPECT_EQ(divisionsOf(vector("b").ref), (Divisions{{1, 2}}));
}

TEST_F(Commands, AnAliasStandsForItsValue) {
    let("v=[1,2]");
    let("t=[5,6]");
    let("a='t*10'");
    EXPECT_TRUE(vec_MakeAliasCommand("a", *handler));
    EXPECT_TRUE(setRef("v", "a"));
    EXPECT_EQ(divisionsOf(vector("v").ref), (Divisions{{50, 60}}));
}

TEST_F(Commands, SetRefTellsWhatIsMissing) {
    EXPECT_FALSE(setRef("nothing", "1"));
    EXPECT_EQ(said(), Texts{"There is no vector of name 'nothing'"});
    let("v=[1,2,3]");
    EXPECT_FALSE(setRef("v", "1+"));
    EXPECT_EQ(said(), (Texts{"Bad syntax in expression '1+'", "Cannot evaluate reference expression '1+'"}));
    EXPECT_FALSE(setRef("v", "[1,2]"));
    EXPECT_EQ(said(), Texts{"Reference '[1,2]' is not the same length as vector 'v'"});
}

TEST_F(Commands, AListOfReferencesChangesNothing) {
    let("v=[1,2]");
    let("t=[5,6]");
    EXPECT_TRUE(setRef("v", "t"));
    EXPECT_FALSE(setRef("v", "t+1, t"));
    EXPECT_EQ(handler->levels, std::vector<MessageLevel>{MessageLevel::warning});
    EXPECT_EQ(said(), Texts{"Extra expression ignored"});
    EXPECT_EQ(divisionsOf(vector("v").ref), (Divisions{{5, 6}}));
}

TEST_F(Commands, AnEmptyVectorIsNamedTheTargetFirst) {
    auto * const empty = new dvec("empty", nullptr, PT_NONE);
    empty->enterGroup();
    auto * const second = new dvec("second", nullptr, PT_NONE);
    second->enterGroup();
    let("v=1");
    EXPECT_FALSE(setRef("empty", "second"));
    EXPECT_EQ(said(), Texts{"The vector 'empty' has no data. The expression cannot be evaluated"});
    EXPECT_FALSE(setRef("v", "second"));
    EXPECT_EQ(said(), Texts{"The vector 'second' has no data. The expression cannot be evaluated"});
}

TEST_F(Commands, DivisionsMustAgreeToo) {
    make("v", {{1, 2}, {3}});
    make("t", {{1}, {2, 3}});
    EXPECT_FALSE(setRef("v", "t"));
    EXPECT_EQ(said(), Texts{"Reference 't' is not the same length as vector 'v'"});
    EXPECT_TRUE(setRef("v", "v*2"));
    EXPECT_EQ(divisionsOf(vector("v").ref), (Divisions{{2, 4}, {6}}));
}

// --- SetUnits, MakeAlias, SetReadOnly

TEST_F(Commands, UnitsAreSetByNameOrUnit) {
    let("v=XY([1,2],[3,4])");
    EXPECT_TRUE(vec_SetUnitsCommand("v", "Voltage", *handler));
    EXPECT_EQ(vector("v").physType(), PT_VOLTAGE);
    EXPECT_TRUE(vec_SetUnitsCommand("v", "A", *handler));
    EXPECT_EQ(vector("v").physType(), PT_CURRENT);
    EXPECT_NE(vector("v").ref.physType(), PT_CURRENT);
    EXPECT_FALSE(vec_SetUnitsCommand("v", "furlong", *handler));
    EXPECT_EQ(said(), Texts{"Unit 'furlong' not recognised"});
    EXPECT_EQ(vector("v").physType(), PT_CURRENT);
    EXPECT_FALSE(vec_SetUnitsCommand("w", "V", *handler));
    EXPECT_EQ(said(), Texts{"There is no vector of name 'w'"});
}

TEST_F(Commands, OnlyAStringBecomesAnAlias) {
    let("v=2");
    let("a='v*3'");
    EXPECT_TRUE(vec_MakeAliasCommand("a", *handler));
    let("w=a+1");
    EXPECT_EQ(vector("w").getReal(0), 7);
    EXPECT_FALSE(vec_MakeAliasCommand("v", *handler));
    EXPECT_EQ(said(), Texts{"The vector 'v' is not a string and cannot\nbe converted to an alias"});
    EXPECT_FALSE(vec_MakeAliasCommand("nothing", *handler));
    EXPECT_EQ(said(), Texts{"There is no vector of name 'nothing'"});
}

TEST_F(Commands, AReadOnlyVectorIsNotAssigned) {
    let("v=2");
    EXPECT_TRUE(vec_SetReadOnlyCommand("v", *handler));
    EXPECT_EQ(letCode("v=3"), FUNC_FAILED);
    EXPECT_EQ(vector("v").getReal(0), 2);
    said();
    EXPECT_FALSE(vec_SetReadOnlyCommand("nothing", *handler));
    EXPECT_EQ(said(), Texts{"There is no vector of name 'nothing'"});
}

// --- Discard, DelGroup

TEST_F(Commands, AVectorIsDiscarded) {
    let("v=2");
    EXPECT_TRUE(vec_DiscardCommand({"global:v"}, {}, *handler));
    EXPECT_FALSE(exists("v"));
    let("v=2");
    EXPECT_TRUE(vec_DiscardCommand({":v"}, {}, *handler)) << "the global group is current";
    EXPECT_FALSE(vec_DiscardCommand({"v"}, {}, *handler));
    EXPECT_EQ(said(), Texts{"Cannot find vector 'v'"});
    EXPECT_FALSE(vec_DiscardCommand({"nowhere:v"}, {}, *handler));
    EXPECT_EQ(said(), Texts{"There is no group of name 'nowhere'"});
    EXPECT_FALSE(vec_DiscardCommand({}, {}, *handler));
    EXPECT_EQ(said(), Texts{"Cannot find vector ''"});
}

TEST_F(Commands, AReadOnlyVectorLeavesItsGroupAlive) {
    std::unique_ptr<dvec> const pi(&vector("pi")); // nobody else ends it afterwards
    EXPECT_TRUE(vec_DiscardCommand({"global:pi"}, {}, *handler));
    EXPECT_FALSE(exists("pi"));
    EXPECT_TRUE(pi->isTemporary());
    EXPECT_EQ(pi->getReal(0), 3.141592653589793);
    EXPECT_EQ(said(), Texts{});
}

TEST_F(Commands, GroupsAreDiscardedUntilOneFails) {
    YString const a = groupNamed("a"), b = groupNamed("b"), c = groupNamed("c");
    EXPECT_FALSE(vec_DiscardCommand({a, "nowhere", b}, {.groupMode = true}, *handler));
    EXPECT_EQ(said(), Texts{"There is no group of name 'nowhere'"});
    EXPECT_EQ(findGroup(a), nullptr);
    EXPECT_NE(findGroup(b), nullptr);
    vec_SetCurrentGroup(c);
    EXPECT_FALSE(vec_DiscardCommand({"", ""}, {.groupMode = true}, *handler)) << "only the first word may be empty";
    EXPECT_EQ(findGroup(c), nullptr);
    EXPECT_EQ(said(), Texts{"There is no group of name ''"});
    EXPECT_FALSE(vec_DiscardCommand({"global"}, {.groupMode = true}, *handler));
    EXPECT_EQ(said(), Texts{"The group 'global' is protected and cannot be destroyed"});
}

TEST_F(Commands, GroupsAreDeletedFromTheEndAndOnAfterAFailure) {
    YString const a = groupNamed("a"), b = groupNamed("b");
    EXPECT_FALSE(vec_DelGroupCommand({a, "global", "nowhere", b}, {}, *handler));
    EXPECT_EQ(said(),
              (Texts{"There is no group of name 'nowhere'", "The group 'global' is protected and cannot be deleted"}));
    EXPECT_EQ(findGroup(a), nullptr);
    EXPECT_EQ(findGroup(b), nullptr);
    EXPECT_TRUE(vec_DelGroupCommand({}, {}, *handler));
}

TEST_F(Commands, AllGroupsMeansThoseThatMayGo) {
    groupNamed("a");
    groupNamed("b");
    vec_PushContext();
    static int deaths; // the global group goes with the session, after this test
    deaths = 0;
    vec_InstallDeleteNotifyProc("global", noteDeath, &deaths);
    EXPECT_TRUE(vec_DelGroupCommand({"nowhere"}, {.all = true}, *handler));
    EXPECT_EQ(said(), Texts{});
    YList<YString> left;
    vec_GetGroups(&left);
    EXPECT_EQ(left.size(), 1u);
    EXPECT_EQ(deaths, 0);
    vec_PopContext();
}

// --- RegisterUserFunction

TEST_F(Commands, AScriptBecomesAFunction) {
    EXPECT_TRUE(vec_RegisterUserFunctionCommand({"Gain", "gain_script", "1", "2"}, *handler));
    EXPECT_TRUE(isScriptFunction("GAIN"));
    EXPECT_TRUE(vec_RegisterUserFunctionCommand({"gain", "other"}, *handler));
    ScriptFunction const * const function = findScriptFunction("Gain");
    ASSERT_NE(function, nullptr);
    EXPECT_EQ(function->name, YString("gain"));
    EXPECT_EQ(function->scriptName, YString("other"));
    EXPECT_EQ(function->minArgs, 0);
    EXPECT_EQ(function->maxArgs, 31);
    YList<FunctionInfo> list;
    vec_GetScriptFunctions(&list);
    EXPECT_EQ(list.size(), 1u);
}

TEST_F(Commands, ABuiltInFunctionIsNotReplaced) {
    EXPECT_FALSE(vec_RegisterUserFunctionCommand({"SIN", "script"}, *handler));
    EXPECT_EQ(said(), Texts{"The function 'SIN' is internal and cannot be defined as a user function"});
    EXPECT_FALSE(isScriptFunction("sin"));
    for (WordArray const & words : {WordArray{}, {"", "s"}, {"f"}}) {
        EXPECT_FALSE(vec_RegisterUserFunctionCommand(words, *handler));
        EXPECT_EQ(said(), Texts{"A user function needs a name and a script"});
    }
}

TEST(ScriptFunctionList, EndsWithTheSession) {
    {
        EngineSession const session;
        registerScriptFunction("f", "s", 0, 1);
        EXPECT_TRUE(isScriptFunction("f"));
    }
    EXPECT_FALSE(isScriptFunction("f"));
}

// --- Arguments

class Arguments : public Commands {
protected:
    Arguments() { vec_PushContext(); }
    ~Arguments() override { vec_PopContext(); }
};

TEST_F(Arguments, NameWhatWasPassed) {
    pass("$arg1", 1);
    pass("$var2", 2);
    pass("$arg3", 3);
    EXPECT_TRUE(arguments({"x", "@rv", "n=7"}));
    EXPECT_EQ(vector("x").getReal(0), 1);
    EXPECT_EQ(vector("rv").getReal(0), 2);
    EXPECT_EQ(vector("n").getReal(0), 3);
    EXPECT_FALSE(exists("$arg1"));
}

TEST_F(Arguments, HaveDefaults) {
    pass("$arg1", 5);
    EXPECT_TRUE(arguments({"x", "n=x*2", "s='a=b'"}));
    EXPECT_EQ(vector("n").getReal(0), 10);
    EXPECT_STREQ(vector("s").getString(0), "a=b");
    EXPECT_EQ(vector("n").owner(), nameSpace().local);
}

TEST_F(Arguments, MissingOnesEndTheCommand) {
    EXPECT_FALSE(arguments({"@x", "y=3"}));
    EXPECT_EQ(said(), Texts{"No value passed to argument 1"});
    EXPECT_FALSE(exists("y"));
    pass("$arg1", 5);
    EXPECT_FALSE(arguments({"x", "y"}));
    EXPECT_EQ(said(), Texts{"No value passed to argument 2"});
    EXPECT_TRUE(exists("x")) << "what was done stays";
}

TEST_F(Arguments, ADefaultOverwritesAGlobalOfTheName) {
    auto * const old = new dvec("n", nameSpace().global, PT_NONE);
    old->addVal(1);
    old->enterGroup();
    EXPECT_TRUE(arguments({"n=7"}));
    EXPECT_EQ(old->getReal(0), 7);
    EXPECT_EQ(said(), Texts{});
}

TEST_F(Arguments, ATakenNameLeavesTheArgumentAsItWas) {
    pass("$arg1", 5);
    pass("x", 1);
    arguments({"x"});
    EXPECT_EQ(reports->texts.size(), 1u) << "an internal error";
    EXPECT_EQ(vector("x").getReal(0), 1);
    EXPECT_EQ(vector("$arg1").getReal(0), 5);
}

TEST_F(Arguments, OddWordsDoNoHarm) {
    EXPECT_FALSE(arguments({""}));
    EXPECT_FALSE(arguments({"@"}));
    EXPECT_EQ(said(), (Texts{"No value passed to argument 1", "No value passed to argument 1"}));
    EXPECT_TRUE(arguments({"=3"}));
    EXPECT_TRUE(arguments({"x="}));
    EXPECT_EQ(said().size(), 2u) << "each a complaint about syntax";
    EXPECT_TRUE(arguments({}));
    WordArray many(10000, "n=1");
    EXPECT_TRUE(arguments(many));
    EXPECT_EQ(vector("n").getReal(0), 1);
}

TEST(WordArrayTest, ReadsNumbersAndMissingWords) {
    WordArray const words = {"7", "x", "-1", "99999999999", "3 "};
    EXPECT_EQ(words.integer(0, 5), 7);
    EXPECT_EQ(words.integer(1, 5), 5);
    EXPECT_EQ(words.integer(2, 5), -1);
    EXPECT_EQ(words.integer(3, 5), 5);
    EXPECT_EQ(words.integer(4, 5), 5);
    EXPECT_EQ(words.integer(9, 5), 5);
    EXPECT_EQ(words[9], YString());
}
