#include "support/FileLock.h"

#include "TemporaryFile.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

TEST(FileLock, TellsWhetherAWriterHoldsAFile) {
    TemporaryFile const file("data");
    FileLock free;
    EXPECT_FALSE(free.locked());
    EXPECT_TRUE(free.lock(file.path()));
    EXPECT_TRUE(free.locked());
    FileLock second;
    EXPECT_TRUE(second.lock(file.path())) << "tests do not keep each other out";
}

TEST(FileLock, AWriterKeepsOthersOutUntilItCloses) {
    TemporaryFile const file("data");
    int const writer = open(file.path().c_str(), O_RDWR);
    ASSERT_TRUE(lockForWriting(writer));
    FileLock lock;
    EXPECT_FALSE(lock.lock(file.path()));
    EXPECT_FALSE(lock.locked());
    int const another = open(file.path().c_str(), O_RDWR);
    EXPECT_FALSE(lockForWriting(another));
    close(open(file.path().c_str(), O_RDONLY)); // does not end the lock
    EXPECT_FALSE(lock.lock(file.path()));
    close(writer);
    EXPECT_TRUE(lock.lock(file.path()));
    close(another);
}

TEST(FileLock, AFileThatIsNotThereIsNotLocked) {
    FileLock lock;
    EXPECT_FALSE(lock.lock("/nonexistent/x"));
    EXPECT_FALSE(lock.lock("/tmp"));
}
