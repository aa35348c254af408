#include "torvelan/Host.h"

#include <gtest/gtest.h>

namespace {

int one() {
    return 1;
}

int two() {
    return 2;
}

int call(char const * name) {
    return reinterpret_cast<int (*)()>(support_GetDynamicFunction(name))();
}

MakeDynamicFunction const registered("testFunction", reinterpret_cast<DynamicFunction>(one));

TEST(DynamicFunctions, AnUnknownNameIsNull) {
    EXPECT_EQ(support_GetDynamicFunction("testNobody"), nullptr);
    EXPECT_EQ(support_GetDynamicFunction(""), nullptr);
}

TEST(DynamicFunctions, TheLastOfANameWins) {
    EXPECT_EQ(call("testFunction"), 1);
    MakeDynamicFunction("testFunction", reinterpret_cast<DynamicFunction>(two));
    EXPECT_EQ(call("testFunction"), 2);
}

} // namespace
