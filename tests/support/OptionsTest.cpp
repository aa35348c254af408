#include "torvelan/Host.h"

#include <gmock/gmock.h>

namespace {

auto const session = OptionPersistence::session;
MakeOption const textOption("TestText", "OnStart", session, __FILE__, __LINE__);
MakeOption const intOption("TestInt", 3, OptionPersistence::stored, __FILE__, __LINE__);
MakeOption const boolOption("TestBool", true, session, __FILE__, __LINE__);
MakeOption const realOption("TestReal", 0.1, session, __FILE__, __LINE__);

TEST(Options, DefaultsReadBack) {
    EXPECT_EQ(sp_GetStringOption("TestText"), "OnStart");
    EXPECT_EQ(sp_GetIntOption("TestInt"), 3);
    EXPECT_TRUE(sp_GetBoolOption("TestBool"));
    EXPECT_EQ(sp_GetDoubleOption("TestReal"), 0.1);
}

TEST(Options, NamesAreFoundInAnyCase) {
    bool found = false;
    EXPECT_EQ(sp_GetIntOption("TESTINT", &found), 3);
    EXPECT_TRUE(found);
}

TEST(Options, UnknownOnesReadAsNothing) {
    bool found = true;
    EXPECT_EQ(sp_GetStringOption("TestNone", &found), "");
    EXPECT_FALSE(found);
    found = true;
    EXPECT_EQ(sp_GetIntOption("TestNone", &found), 0);
    EXPECT_FALSE(found);
    EXPECT_FALSE(sp_GetBoolOption("TestNone"));
    EXPECT_EQ(sp_GetDoubleOption("TestNone"), 0.0);
}

TEST(Options, ATextOfAnotherTypeReadsAsZero) {
    bool found = false;
    EXPECT_EQ(sp_GetIntOption("TestText", &found), 0);
    EXPECT_TRUE(found);
    EXPECT_FALSE(sp_GetBoolOption("TestText"));
    EXPECT_EQ(sp_GetDoubleOption("TestText"), 0.0);
    sp_SetOption("TestHalf", "12x");
    EXPECT_EQ(sp_GetIntOption("TestHalf"), 0);
    EXPECT_EQ(sp_GetDoubleOption("TestHalf"), 0.0);
    sp_SetOption("TestHalf", "99999999999");
    EXPECT_EQ(sp_GetIntOption("TestHalf"), 0);
    sp_SetOption("TestHalf", "");
    EXPECT_EQ(sp_GetIntOption("TestHalf"), 0);
    EXPECT_EQ(sp_GetDoubleOption("TestHalf"), 0.0);
}

TEST(Options, ANumberIsAnyOfTheTypesItFits) {
    EXPECT_EQ(sp_GetDoubleOption("TestInt"), 3.0);
    EXPECT_EQ(sp_GetStringOption("TestReal"), "0.1");
}

TEST(Options, WordsForTrue) {
    for (char const * word : {"true", "TRUE", "on", "Yes", "1"}) {
        sp_SetOption("TestSwitch", word);
        EXPECT_TRUE(sp_GetBoolOption("TestSwitch")) << word;
    }
    for (char const * word : {"false", "off", "no", "0", "2", ""}) {
        sp_SetOption("TestSwitch", word);
        EXPECT_FALSE(sp_GetBoolOption("TestSwitch")) << word;
    }
}

TEST(Options, SettingReplacesAndCreates) {
    sp_SetOption("testint", "17");
    EXPECT_EQ(sp_GetIntOption("TestInt"), 17);
    sp_SetOption("TestInt", "3");
    bool found = false;
    sp_SetOption("TestMade", "here");
    EXPECT_EQ(sp_GetStringOption("TestMade", &found), "here");
    EXPECT_TRUE(found);
}

TEST(Options, AValueSetBeforeTheRegistrationStays) {
    sp_SetOption("TestEarly", "5");
    MakeOption("TestEarly", 1, session, __FILE__, __LINE__);
    EXPECT_EQ(sp_GetIntOption("TestEarly"), 5);
}

TEST(Options, TwoDifferentDefaultsAreReported) {
    MakeOption("TestTwice", 1, session, "One.cpp", 10);
    testing::internal::CaptureStderr();
    MakeOption("TestTwice", 1, session, "Two.cpp", 20);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    MakeOption("TestTwice", 2, session, "Two.cpp", 20);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::AllOf(testing::HasSubstr("TestTwice"), testing::HasSubstr("module Two.cpp, line 20")));
    EXPECT_EQ(sp_GetIntOption("TestTwice"), 1);
}

} // namespace
