#include <chrono>
#include <gtest/gtest.h>
#include <qv/operations/BAutoLockR.h>
#include <qv/operations/BAutoLockW.h>
#include <qv/operations/BAutoTryLockR.h>
#include <qv/operations/BAutoTryLockW.h>
#include <qv/operations/BLockRW.h>
#include <qv/operations/BSyncableSmartObj.h>

// Lock states seen from one thread. Whether another thread could enter is checked with the
// guards of a second thread in the concurrent suite; here the state machine's answers.

TEST(BLockRW, WriteOwnerNestsReadsAndWritesToAnyDepth) {
    BLockRW lock;
    lock.LockW();
    lock.LockR();
    lock.LockW();
    EXPECT_TRUE(lock.TryLockR());
    lock.LockR();
    lock.UnlockR();
    lock.UnlockR();
    lock.UnlockW();
    lock.UnlockR();
    lock.UnlockW();
    // Free again: a reader's round trip and a new write both work.
    lock.LockR();
    lock.UnlockR();
    EXPECT_TRUE(lock.TryLockW());
    lock.UnlockW();
}

TEST(BLockRW, TryLockReadsOnlyForTheWriteOwner) {
    BLockRW lock;
    EXPECT_FALSE(lock.TryLockR()) << "a free lock gives no read lock to a try";
    lock.LockR();
    EXPECT_FALSE(lock.TryLockR()) << "nor does a lock held for reading";
    lock.UnlockR();
    lock.LockW();
    EXPECT_TRUE(lock.TryLockR());
    lock.UnlockR();
    lock.UnlockW();
    EXPECT_TRUE(lock.TryLockW());
    lock.UnlockW();
}

TEST(BLockRW, TryLockWriteGivesUpAfterAboutAMillisecondWithAReaderInside) {
    BLockRW lock;
    lock.LockR();
    auto const start = std::chrono::steady_clock::now();
    EXPECT_FALSE(lock.TryLockW());
    auto const waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::microseconds(900));
    EXPECT_LT(waited, std::chrono::milliseconds(500));
    lock.UnlockR();
    EXPECT_TRUE(lock.TryLockW());
    lock.UnlockW();
}

TEST(BLockRW, LastUnlockWriteWithOwnReadsOutstandingThrowsOne) {
    BLockRW lock;
    lock.LockW();
    lock.LockR();
    try {
        lock.UnlockW();
        FAIL() << "no exception";
    } catch (int code) {
        EXPECT_EQ(code, 1);
    }
    // The write side stays held by this thread: its reads still nest.
    EXPECT_TRUE(lock.TryLockR());
}

TEST(BLockRW, UnlockWriteByAThreadWithoutTheWriteSideChangesNothing) {
    BLockRW lock;
    lock.UnlockW();
    lock.LockR();
    lock.UnlockR();
    EXPECT_TRUE(lock.TryLockW());
    lock.UnlockW();
}

TEST(BLockGuards, HoldAndReleaseThroughTheInterface) {
    BLockRW lock;
    {
        BAutoLockW write(lock);
        BAutoLockR read(lock);
        BAutoTryLockR tryRead(lock);
        EXPECT_TRUE(tryRead.IsLocked());
        BAutoTryLockW tryWrite(lock);
        EXPECT_FALSE(tryWrite.IsLocked());
    }
    // Everything given back, in the right order (a read left over would have thrown).
    BAutoTryLockW again(lock);
    EXPECT_TRUE(again.IsLocked());
}

TEST(BLockGuards, AFailedTryReleasesNothing) {
    BLockRW lock;
    lock.LockR();
    {
        BAutoTryLockR tryRead(lock);
        EXPECT_FALSE(tryRead.IsLocked());
    }
    // Had the guard released, this UnlockR would take the count below zero and the try
    // below would succeed while a reader is still inside.
    EXPECT_FALSE(lock.TryLockW());
    lock.UnlockR();
    EXPECT_TRUE(lock.TryLockW());
    lock.UnlockW();
}

TEST(BSyncableSmartObj, OneRecursiveLockForReadersAndWriters) {
    BSyncableSmartObj object;
    object.LockR();
    object.LockW();
    EXPECT_TRUE(object.TryLockR());
    EXPECT_TRUE(object.TryLockW());
    object.UnlockW();
    object.UnlockR();
    object.UnlockW();
    object.UnlockR();
}
