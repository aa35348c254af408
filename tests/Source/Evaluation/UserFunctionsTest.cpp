#include "torvelan/UserFunctions.h"

#include "RecordedMessages.h"
#include "torvelan/EngineSession.h"
#include "torvelan/Evaluate.h"
#include "torvelan/Exceptions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <dlfcn.h>
#include <set>
#include <stdexcept>

namespace {

using Reals = std::vector<double>;

// Fills what a call of a module would be handed.
class UserFunctions : public testing::Test {
protected:
    NamedVector & real(Reals const & values, PhysType type = PT_VOLTAGE) {
        NamedVector & vector = *vectors.emplace_back(std::make_unique<NamedVector>("v"));
        vector.setSize(static_cast<std::int64_t>(values.size()), VD_REAL);
        std::copy(values.begin(), values.end(), vector.writableRealData());
        vector.setPhysType(type);
        return vector;
    }
    UserFunctionArgument const * call(char const * name, std::vector<UserFunctionArgument> const & records) {
        error = -1;
        return interface().callFunction(&environment, name, records.data(), static_cast<int>(records.size()), &error);
    }
    UserFunctionArgument const * call(char const * name, Reals const & values) { return call(name, {record(values)}); }
    static UserFunctionArgument record(Reals const & values) {
        return {values.data(), nullptr,  static_cast<std::int32_t>(values.size()), USER_REAL, USER_NONE,
                "voltage",     "unknown"};
    }
    UserFunctionInterface & interface() { return environment.getUserFunctionInterface(); }

    EngineSession session;
    RecordedMessages messages;
    std::vector<std::unique_ptr<NamedVector>> vectors;
    FuncArgs args{"userFunction"};
    FuncResult result;
    UserFunctionEnvironment environment{&result, args};
    int error = -1;
};

FUNC_ERROR throwing(FuncArgs const & args, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler &,
                    ScpParseContext const &) {
    YString const & name = args.getFuncName();
    if (equalNoCase(name, "throw_memory")) throw MemoryException("in a test");
    if (equalNoCase(name, "throw_torvelan")) throw TorvelanException("in a test");
    if (equalNoCase(name, "throw_standard")) throw std::runtime_error("in a test");
    throw 42;
}

FUNC_ERROR failing(FuncArgs const &, FuncResult *, FuncInfo *, YRef<MessageHandler>, MessageHandler & messages,
                   ScpParseContext const &) {
    messages.error("never heard");
    return FUNC_FAILED;
}

std::vector<void *> seenPointers;
UserFunctionArgument seenRecord;
int seenCount = 0;

void direct(UserFunctionInterface * frame, char const *) {
    seenCount = frame->numArgs;
    seenRecord = frame->arguments[frame->numArgs - 1];
    auto const * const pointers = static_cast<void * const *>(seenRecord.yData);
    seenPointers.assign(pointers, pointers + seenRecord.length);
}

struct Registered {
    Registered() {
        argType const type = ARG_NUMERIC;
        for (char const * name : {"throw_memory", "throw_torvelan", "throw_standard", "throw_other"})
            FuncDef{FuncInfo(name, &type, 1, 1, throwing, nullptr, false)};
        FuncDef{FuncInfo("fail_always", &type, 1, 1, failing, nullptr, false)};
        FuncDef{FuncInfo("no_handler", &type, 1, 1, nullptr, nullptr, false)};
        FuncInfo info("direct_call", &type, 0, 1, nullptr, nullptr, false);
        info.directHandler = direct;
        FuncDef{info};
    }
} const registered;

} // namespace

// --- what a module is handed

TEST_F(UserFunctions, EachArgumentHasARecord) {
    NamedVector &y = real({1, 2, 3}), &x = real({4, 5, 6}, PT_TIME);
    NamedVector z("z"), s("s"), none;
    z.setSize(1, VD_COMPLEX);
    z.writableComplexData()[0] = {1, 2};
    s.setSize(1, VD_STRING);
    s.setString("text", 0);
    args.setNumArgs(3);
    args.add(&y, &x);
    args.add(&z, &none);
    args.add(&s, &none);
    ASSERT_EQ(environment.prepare(messages), FUNC_OK);
    ASSERT_EQ(interface().numArgs, 3);
    UserFunctionArgument const * const records = interface().arguments;
    EXPECT_EQ(records[0].yKind, USER_REAL);
    EXPECT_EQ(records[0].xKind, USER_REAL);
    EXPECT_EQ(records[0].length, 3);
    EXPECT_EQ(static_cast<double const *>(records[0].yData)[2], 3);
    EXPECT_EQ(static_cast<double const *>(records[0].xData)[2], 6);
    EXPECT_STREQ(records[0].yUnits, "voltage");
    EXPECT_STREQ(records[0].xUnits, "time");
    EXPECT_EQ(records[1].yKind, USER_COMPLEX);
    EXPECT_EQ(records[1].xData, nullptr);
    EXPECT_STREQ(records[1].yUnits, "unknown");
    EXPECT_EQ(static_cast<complex const *>(records[1].yData)[0].im, 2);
    EXPECT_EQ(records[2].yKind, USER_STRING);
    EXPECT_STREQ(static_cast<char const * const *>(records[2].yData)[0], "text");
    EXPECT_EQ(interface().environment, &environment);
    EXPECT_EQ(&environment.getInArgs(), &args);
    EXPECT_EQ(environment.getOutArgs(), &result);
}

TEST_F(UserFunctions, AnArgumentWithoutAKindIsRefused) {
    NamedVector unset;
    unset.setSize(0, VD_NONE);
    args.setNumArgs(1);
    args.add(&unset, nullptr);
    EXPECT_EQ(vec_PrepareUserFunction(&environment, args, interface(), messages), 2);
    ASSERT_EQ(messages.texts.size(), 1u);
    EXPECT_NE(messages.texts[0].find("userFunction"), std::string::npos);
    messages.clear();
    EXPECT_EQ(environment.prepare(messages), FUNC_FAILED);
}

TEST_F(UserFunctions, ArraysAreVectorsThatCanBeFound) {
    double * const reals = environment.allocateRealArg(3);
    complex * const pairs = environment.allocateComplexArg(2);
    EXPECT_EQ(reals[2], 0);
    EXPECT_EQ(pairs[1].im, 0);
    YRef<NamedVector> const r = environment.findNamedVector(reals), c = environment.findNamedVector(pairs);
    ASSERT_TRUE(r != nullptr && c != nullptr);
    EXPECT_EQ(r->length(), 3);
    EXPECT_TRUE(c->isComplex());
    EXPECT_EQ(r->name().view().substr(0, 8), "realarg_");
    EXPECT_EQ(c->name().view().substr(0, 11), "complexarg_");
    EXPECT_NE(r->name().view().substr(8), c->name().view().substr(11)) << "the counter goes on";
    EXPECT_EQ(environment.findNamedVector(reals + 1), nullptr);
    EXPECT_EQ(environment.findNamedVector(static_cast<double const *>(nullptr)), nullptr);
    EXPECT_EQ(environment.findNamedVector(static_cast<complex const *>(nullptr)), nullptr);
    EXPECT_EQ(environment.allocateRealArg(0), nullptr);
    EXPECT_EQ(environment.allocateComplexArg(-5), nullptr);
    EXPECT_TRUE(environment.allocateNamedVector()->noData());
    *environment.allocateString() = "kept";
}

// --- calls back

TEST_F(UserFunctions, ARegisteredFunctionIsCalledOnArrays) {
    args.setNumArgs(0);
    environment.prepare(messages);
    UserFunctionArgument const * const sines = call("SIN", Reals{0.5, 1});
    ASSERT_NE(sines, nullptr);
    EXPECT_EQ(error, 0);
    ASSERT_EQ(sines->length, 2);
    EXPECT_NEAR(static_cast<double const *>(sines->yData)[1], std::sin(1.0), 1e-15);
    EXPECT_EQ(sines->yKind, USER_REAL);
    EXPECT_EQ(sines->xKind, USER_NONE);
    EXPECT_EQ(sines->xData, nullptr);
    UserFunctionArgument const * const magnitude = call("mag", Reals{-3});
    ASSERT_NE(magnitude, nullptr);
    EXPECT_STREQ(magnitude->yUnits, "voltage");
    EXPECT_EQ(static_cast<double const *>(sines->yData)[0], std::sin(0.5)) << "earlier results stay";
}

TEST_F(UserFunctions, KindsAndReferencesGoThrough) {
    args.setNumArgs(0);
    environment.prepare(messages);
    complex const z[] = {{3, 4}};
    UserFunctionArgument const * const magnitude =
        call("mag", {{z, nullptr, 1, USER_COMPLEX, USER_NONE, "current", "unknown"}});
    ASSERT_NE(magnitude, nullptr);
    EXPECT_EQ(*static_cast<double const *>(magnitude->yData), 5);
    double const y[] = {1, 2}, x[] = {0, 3};
    UserFunctionArgument const * const negative = call("abs", {{y, x, 2, USER_REAL, USER_REAL, "voltage", "time"}});
    ASSERT_NE(negative, nullptr);
    ASSERT_NE(negative->xData, nullptr);
    EXPECT_EQ(static_cast<double const *>(negative->xData)[1], 3);
    EXPECT_STREQ(negative->xUnits, "time");
    char const * const words[] = {"a", nullptr};
    UserFunctionArgument const * const count =
        call("length", {{words, nullptr, 2, USER_STRING, USER_NONE, nullptr, nullptr}});
    ASSERT_NE(count, nullptr);
    EXPECT_EQ(*static_cast<double const *>(count->yData), 2);
}

TEST_F(UserFunctions, AResultMayBeAnArgument) {
    args.setNumArgs(0);
    environment.prepare(messages);
    double * const own = environment.allocateRealArg(2);
    own[0] = 4;
    own[1] = 9;
    UserFunctionArgument const * const roots =
        call("sqrt", {{own, nullptr, 2, USER_REAL, USER_NONE, "unknown", "unknown"}});
    ASSERT_NE(roots, nullptr);
    UserFunctionArgument const * const sum = call("sum", {*roots});
    ASSERT_NE(sum, nullptr);
    EXPECT_EQ(*static_cast<double const *>(sum->yData), 5);
    EXPECT_EQ(own[1], 9) << "an argument is not written";
}

TEST_F(UserFunctions, FailuresAreCodes) {
    args.setNumArgs(0);
    environment.prepare(messages);
    struct Case {
        char const * name;
        int code;
    };
    for (Case const & c : {Case{"nothing_such", 1},
                           {"", 1},
                           {"no_handler", 2},
                           {"fail_always", 3},
                           {"ln", 3},
                           {"throw_memory", 6},
                           {"throw_torvelan", 7},
                           {"throw_standard", 8},
                           {"throw_other", 8}}) {
        EXPECT_EQ(call(c.name, Reals{-1}), nullptr) << c.name;
        EXPECT_EQ(error, c.code) << c.name;
    }
    EXPECT_EQ(call(nullptr, Reals{1}), nullptr);
    EXPECT_EQ(error, 1);
    EXPECT_TRUE(messages.texts.empty());
    EXPECT_EQ(interface().callFunction(&environment, "nothing_such", nullptr, 0, nullptr), nullptr);
}

TEST_F(UserFunctions, RecordsThatCannotBeAreRefused) {
    args.setNumArgs(0);
    environment.prepare(messages);
    double const y[] = {1, 2};
    UserFunctionArgument const good = {y, nullptr, 2, USER_REAL, USER_NONE, "voltage", "unknown"};
    auto const refuses = [&](auto const & change) {
        UserFunctionArgument record = good;
        change(record);
        bool const refused = call("abs", {record}) == nullptr && error == 3;
        return refused;
    };
    EXPECT_TRUE(refuses([](UserFunctionArgument & r) { r.yData = nullptr; }));
    EXPECT_TRUE(refuses([](UserFunctionArgument & r) { r.length = -1; }));
    EXPECT_TRUE(refuses([](UserFunctionArgument & r) { r.length = 0; }));
    EXPECT_TRUE(refuses([](UserFunctionArgument & r) { r.yKind = 77; }));
    EXPECT_TRUE(refuses([](UserFunctionArgument & r) { r.yKind = USER_STRING; }));
    EXPECT_TRUE(refuses([&](UserFunctionArgument & r) {
        r.xData = y;
        r.xKind = -1;
    }));
    EXPECT_EQ(call("abs", {good, good}), nullptr) << "too many";
    EXPECT_EQ(call("abs", std::vector<UserFunctionArgument>{}), nullptr) << "too few";
    EXPECT_EQ(interface().callFunction(&environment, "abs", nullptr, 1, &error), nullptr);
    EXPECT_EQ(error, 3);
    EXPECT_EQ(interface().callFunction(&environment, "max", &good, -1, &error), nullptr);
    EXPECT_NE(call("abs", {good}), nullptr);
}

TEST_F(UserFunctions, NothingIsThrownIntoAModule) {
    args.setNumArgs(0);
    environment.prepare(messages);
    EXPECT_EQ(interface().allocateReal(nullptr, 3), nullptr);
    EXPECT_EQ(interface().allocateComplex(nullptr, 3), nullptr);
    EXPECT_EQ(interface().allocateNamedVector(nullptr), nullptr);
    EXPECT_EQ(interface().allocateString(nullptr), nullptr);
    EXPECT_EQ(interface().callFunction(nullptr, "sin", nullptr, 0, &error), nullptr);
    EXPECT_EQ(error, 3);
}

TEST_F(UserFunctions, OneArrayMayStandOnBothSides) {
    args.setNumArgs(0);
    environment.prepare(messages);
    double * const own = environment.allocateRealArg(2);
    UserFunctionArgument const * const answer = call("abs", {{own, own, 2, USER_REAL, USER_REAL, "voltage", "time"}});
    ASSERT_NE(answer, nullptr);
    EXPECT_STREQ(answer->yUnits, "voltage");
    EXPECT_STREQ(answer->xUnits, "time");
}

// --- direct calls

TEST_F(UserFunctions, ADirectCallHandsOverItsPointers) {
    int a = 0, b = 0;
    seenCount = 0;
    vec_CallUserFunctionDirect("Direct_Call", 2, static_cast<void *>(&a), static_cast<void *>(&b));
    EXPECT_EQ(seenCount, 1);
    EXPECT_EQ(seenPointers, (std::vector<void *>{&a, &b}));
    EXPECT_EQ(seenRecord.yKind, USER_NONE);
    EXPECT_EQ(seenRecord.length, 2);
    UserFunctionInterface frame{};
    frame.numArgs = 3;
    vec_CallUserFunctionDirectAppend("direct_call", 1, &frame, static_cast<void *>(&b));
    EXPECT_EQ(seenCount, 4);
    EXPECT_EQ(seenPointers, std::vector<void *>{&b});
}

TEST_F(UserFunctions, ADirectCallOfNothingDoesNothing) {
    seenCount = 0;
    vec_CallUserFunctionDirect("nothing_such", 0);
    vec_CallUserFunctionDirect("sin", 0);
    vec_CallUserFunctionDirect(nullptr, 0);
    UserFunctionInterface full{};
    full.numArgs = UserFunctionInterface::maxArguments;
    vec_CallUserFunctionDirectAppend("direct_call", 0, &full);
    vec_CallUserFunctionDirectAppend("direct_call", 0, nullptr);
    vec_CallUserFunctionDirect("direct_call", -4);
    EXPECT_EQ(seenCount, 0);
}

// --- the check at start

TEST(RegisterUserFunctionCallTest, ReportsWhatIsMissing) {
    auto const reports = std::make_shared<RecordedMessages>();
    RegisterUserFunctionCall const present("sin"), missing("not_there");
    { EngineSession const session(reports); }
    EXPECT_EQ(reports->texts, std::vector<std::string>{"Internal Function not_there not found. This is an installation "
                                                       "problem - some functionality will not be available"});
    RegisterUserFunctionCall::list().clear();
}

// --- a module of its own

TEST_F(UserFunctions, AModuleCallsBackAndKeepsItsFailures) {
    void * const module = dlopen(TORVELAN_TEST_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    auto const rms = reinterpret_cast<double * (*)(UserFunctionInterface *, int *)>(dlsym(module, "plugin_rms"));
    auto const codes = reinterpret_cast<void (*)(UserFunctionInterface *, int *)>(dlsym(module, "plugin_codes"));
    ASSERT_TRUE(rms != nullptr && codes != nullptr);
    args.setNumArgs(1);
    args.add(&real({3, -4, 3, -4}), nullptr);
    ASSERT_EQ(environment.prepare(messages), FUNC_OK);
    double const * const answer = rms(&interface(), &error);
    ASSERT_NE(answer, nullptr) << error;
    EXPECT_DOUBLE_EQ(*answer, std::sqrt(12.5));
    EXPECT_NE(environment.findNamedVector(answer), nullptr);
    int found[3] = {};
    codes(&interface(), found);
    EXPECT_EQ(found[0], USER_NO_MEMORY);
    EXPECT_EQ(found[1], USER_TORVELAN_EXCEPTION);
    EXPECT_EQ(found[2], USER_OTHER_EXCEPTION);
    dlclose(module);
}
