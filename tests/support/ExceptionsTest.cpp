#include "torvelan/Exceptions.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace {

TEST(Exceptions, MemoryExceptionSaysSoAndIsOfClassFive) {
    MemoryException const e("where");
    EXPECT_EQ(e.errorClass, 5);
    EXPECT_STREQ(e.text, "*** Fatal error, out of memory ***\nwhere");
}

TEST(Exceptions, FatalExceptionSaysSoAndIsOfClassSix) {
    FatalException const e("why");
    EXPECT_EQ(e.errorClass, 6);
    EXPECT_STREQ(e.text, "*** Fatal error ***\nwhy");
}

TEST(Exceptions, LongTextsAreCut) {
    std::string const text(5000, 'x');
    EXPECT_EQ(std::strlen(MemoryException(text).text), 999U);
    EXPECT_EQ(std::strlen(FatalRecord(1, text).text), 999U);
    EXPECT_EQ(std::strlen(TorvelanException(text).text), 1000U);
    EXPECT_STREQ(FatalRecord(1, {}).text, "");
}

TEST(Exceptions, OsExceptionIsCaughtAsItsBase) {
    try {
        throw OsException(OsException::accessViolation, 0xC0000005U, nullptr, "Access violation");
    } catch (TorvelanException const & e) {
        EXPECT_STREQ(e.text, "Access violation");
        auto const & os = dynamic_cast<OsException const &>(e);
        EXPECT_EQ(os.kind, OsException::accessViolation);
        EXPECT_EQ(os.status, 0xC0000005U);
    }
}

TEST(Exceptions, MemoryAndFatalStandAlone) {
    static_assert(!std::is_base_of_v<TorvelanException, MemoryException>);
    static_assert(!std::is_base_of_v<TorvelanException, FatalException>);
    static_assert(!std::is_base_of_v<MemoryException, FatalException>);
    EXPECT_THROW(throw FatalException("x"), FatalException);
}

} // namespace
