// Scripts of the host as functions, with a host whose scripts are C++ functions.

#include "Groups/GroupStore.h"
#include "RecordedMessages.h"
#include "torvelan/torvelan.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>

namespace {

using Texts = std::vector<std::string>;
using Words = std::vector<std::string>;
using Script = std::function<bool(Words const & words, ScpParseContext const & context)>;

std::map<std::string, Script> scripts;
Texts lines; // as they came

// Each script runs in a context of its own, with "$arg1" and on for what came by value, "$var1" for the result.
bool execute(char const * line, ScpParseContext const & context) {
    lines.emplace_back(line);
    std::istringstream in(line);
    Words words;
    for (std::string word; in >> word;) words.push_back(word);
    auto const script = scripts.find(words.at(0));
    return script != scripts.end() && script->second(words, context);
}

MakeDynamicFunction const registered("scp_Execute", reinterpret_cast<DynamicFunction>(execute));

class Execute : public testing::Test {
protected:
    Execute() {
        scripts.clear();
        lines.clear();
    }
    // A script that makes its result by an expression over its arguments, which are the words from the third on.
    void define(char const * name, std::string const & expr) {
        scripts[name] = [expr](Words const &, ScpParseContext const & inner) {
            return vec_LetCommand(YString("$execute_rv=" + expr), nullptr, false, inner) == FUNC_OK;
        };
    }
    void registerScript(WordArray const & words) { EXPECT_TRUE(vec_RegisterUserFunctionCommand(words, *handler)); }
    // The first value; null on failure.
    XYVector * evaluate(std::string const & expr) {
        YArray<XYVector *> out;
        bool const good = vec_EvalVecList(expr.c_str(), &out, context, YString(), false) == VEC_OK;
        return good ? out.front() : nullptr;
    }
    double number(std::string const & expr) {
        XYVector const * const value = evaluate(expr);
        if (value == nullptr) ADD_FAILURE() << expr << ": " << testing::PrintToString(handler->texts);
        return value != nullptr ? value->getReal(0) : 0;
    }
    void expectFailure(std::string const & expr, Texts const & words) {
        EXPECT_EQ(evaluate(expr), nullptr) << expr;
        EXPECT_EQ(handler->texts, words) << expr;
        handler->clear();
    }
    bool isClean() {
        return nameSpace().local->find("$execute_rv") == nullptr && nameSpace().local->find("$execute_arg1") == nullptr;
    }

    EngineSession session;
    std::shared_ptr<RecordedMessages> handler = std::make_shared<RecordedMessages>();
    ScpParseContext context{handler};
};

} // namespace

TEST_F(Execute, HandsOverArgumentsAndResultByName) {
    define("add", "$execute_arg1+$execute_arg2");
    EXPECT_EQ(number("Execute('add', 2, 3)"), 5);
    EXPECT_EQ(lines, Texts{"add /ne @$execute_rv $execute_arg1 $execute_arg2"});
    EXPECT_TRUE(isClean());
}

TEST_F(Execute, EscapesTheScript) {
    scripts["a|n||b"] = [](Words const &, ScpParseContext const &) { return true; };
    scripts["x"] = [](Words const & words, ScpParseContext const &) { return words.at(1) == "y"; };
    evaluate("Execute('x y')");
    EXPECT_EQ(lines.back(), "x y /ne @$execute_rv");
}

TEST_F(Execute, ResultsMayBeOfAnyKindAndCarryTheirReference) {
    define("text", "'abc'");
    EXPECT_STREQ(evaluate("Execute('text')")->getString(0), "abc");
    define("pair", "(1,2)");
    EXPECT_EQ(evaluate("Execute('pair')")->getImag(0), 2);
    define("wave", "XY([1,2],[5,6])");
    XYVector const * const wave = evaluate("Execute('wave')");
    ASSERT_NE(wave, nullptr);
    EXPECT_EQ(wave->totalLength(), 2);
    EXPECT_EQ(wave->ref.getReal(1), 6);
}

TEST_F(Execute, ArgumentsCarryTheirReference) {
    define("ref", "Ref($execute_arg1)");
    EXPECT_EQ(number("Execute('ref', XY([1,2],[5,6]))"), 5);
}

TEST_F(Execute, AScriptThatMakesNoResultGivesNone) {
    scripts["quiet"] = [](Words const &, ScpParseContext const &) { return true; };
    EXPECT_EQ(evaluate("Execute('quiet')"), nullptr);
    EXPECT_EQ(number("length(Execute('quiet'))"), 0);
}

TEST_F(Execute, AFailedScriptFailsTheExpression) {
    EXPECT_EQ(evaluate("Execute('missing')"), nullptr);
    scripts["bad"] = [](Words const &, ScpParseContext const & inner) {
        inner.messages()->error("bad script");
        return false;
    };
    handler->clear();
    expectFailure("Execute('bad', 1)+1", {"bad script"});
    EXPECT_TRUE(isClean());
}

TEST_F(Execute, AnExceptionLeavesNoVectorsBehind) {
    scripts["throws"] = [](Words const &, ScpParseContext const &) -> bool { throw MemoryException("here"); };
    expectFailure("Execute('throws', 1)", {"Evaluation of function 'Execute' failed due to insufficient memory"});
    EXPECT_TRUE(isClean());
}

TEST_F(Execute, RunsOncePerDivision) {
    auto * const v = new dvec("v", nullptr, PT_NONE);
    v->addVal(1);
    v->addVal(2);
    v->addDivision(YString());
    v->addVal(5);
    v->enterGroup();
    define("total", "sum($execute_arg1)");
    XYVector const * const totals = evaluate("Execute('total', v)");
    ASSERT_NE(totals, nullptr);
    ASSERT_EQ(totals->numDivisions(), 2);
    EXPECT_EQ(totals->getReal(0, 0), 3);
    EXPECT_EQ(totals->getReal(0, 1), 5);
    EXPECT_EQ(lines.size(), 2u);
}

TEST_F(Execute, CallsMayNest) {
    define("twice", "2*$execute_arg1");
    scripts["outer"] = [this](Words const &, ScpParseContext const & inner) {
        vec_PushContext();
        YArray<XYVector *> out;
        bool const good = vec_EvalVecList("Execute('twice', 21)", &out, inner, YString(), false) == VEC_OK;
        double const value = good ? out.front()->getReal(0) : 0;
        vec_PopContext();
        return good &&
               vec_LetCommand(YString("$execute_rv=" + std::to_string(value)), nullptr, false, inner) == FUNC_OK;
    };
    EXPECT_EQ(number("Execute('outer', Execute('twice', 1))+Execute('twice', 3)"), 48);
    EXPECT_TRUE(isClean());
}

TEST_F(Execute, SurvivesAScriptThatEndsWhatItWasGiven) {
    scripts["vandal"] = [this](Words const &, ScpParseContext const &) {
        vec_DiscardCommand({"global:$execute_arg1"}, {}, *handler);
        vec_DiscardCommand({"global:$execute_rv"}, {}, *handler);
        return true;
    };
    EXPECT_EQ(evaluate("Execute('vandal', [1,2])"), nullptr);
    vec_PushContext();
    scripts["popper"] = [](Words const &, ScpParseContext const &) {
        vec_PopContext();
        return true;
    };
    EXPECT_EQ(evaluate("Execute('popper', [1,2])"), nullptr);
    EXPECT_EQ(number("1+1"), 2);
}

TEST_F(Execute, AReadOnlyResultIsTakenToo) {
    scripts["locks"] = [this](Words const &, ScpParseContext const & inner) {
        return vec_LetCommand("$execute_rv=7", nullptr, false, inner) == FUNC_OK &&
               vec_SetReadOnlyCommand("$execute_rv", *handler);
    };
    EXPECT_EQ(number("Execute('locks')"), 7);
    EXPECT_TRUE(isClean());
}

// --- script functions

TEST_F(Execute, AScriptFunctionIsCalledByItsName) {
    define("add_script", "$execute_arg1+$execute_arg2");
    registerScript({"Add", "add_script", "2", "2"});
    XYVector const * const value = evaluate("add(2,3)*2");
    ASSERT_NE(value, nullptr) << testing::PrintToString(handler->texts);
    EXPECT_EQ(value->getReal(0), 10);
    EXPECT_EQ(value->name(), YString("Add(2, 3)*2")) << "in its registered spelling";
    EXPECT_EQ(lines, Texts{"add_script /ne @$execute_rv $execute_arg1 $execute_arg2"});
}

TEST_F(Execute, AWrongCountGivesOneMessage) {
    registerScript({"Two", "script", "2", "3"});
    expectFailure("Two(1)", {"Insufficient number of arguments to function 'Two'"});
    expectFailure("Two()", {"Insufficient number of arguments to function 'Two'"});
    expectFailure("Two(1,2,3,4)", {"Too many arguments to function 'Two'"});
    EXPECT_TRUE(lines.empty());
}

TEST_F(Execute, FifteenArgumentsAreTheMost) {
    define("many", "$execute_arg15");
    registerScript({"Many", "many"});
    EXPECT_EQ(number("Many(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15)"), 15);
    expectFailure("Many(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)", {"Too many arguments to function 'Execute'"});
}

TEST_F(Execute, TheContextTellsAScriptFunctionFromExecute) {
    std::vector<bool> flags;
    scripts["flag"] = [&flags](Words const &, ScpParseContext const & inner) {
        flags.push_back(inner.scriptFunction);
        return vec_LetCommand("$execute_rv=1", nullptr, false, inner) == FUNC_OK;
    };
    registerScript({"Flag", "flag"});
    number("Flag()+Execute('flag')+Flag(Execute('flag'))");
    EXPECT_EQ(flags, (std::vector<bool>{true, false, false, true}));
    EXPECT_FALSE(context.scriptFunction);
}

TEST_F(Execute, ScriptFunctionsHaveATextForm) {
    registerScript({"Add", "add_script"});
    EXPECT_EQ(vec_ExpandAlias("ADD(x y)"), YString("Add(x, y)"));
}

TEST_F(Execute, ExistFunctionLooksInTheListItIsAskedFor) {
    registerScript({"Add", "add_script"});
    EXPECT_EQ(number("ExistFunction('sin')"), 1);
    EXPECT_EQ(number("ExistFunction('SIN','script')"), 0);
    EXPECT_EQ(number("ExistFunction('add')"), 0);
    EXPECT_EQ(number("ExistFunction('add','Script')"), 1);
    EXPECT_EQ(number("ExistFunction('nothing')"), 0);
}

TEST_F(Execute, TheWorkerTakesItsScriptSecond) {
    define("add", "$execute_arg2+1");
    EXPECT_EQ(number("_ExecuteAsyncWorker(7, 'add', 2)"), 3);
    EXPECT_EQ(lines, Texts{"add /ne @$execute_rv $execute_arg2"});
}
