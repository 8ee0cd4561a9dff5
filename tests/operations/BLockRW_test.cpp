#include <chrono>
#include <gtest/gtest.h>
#include <qv/operations/BAutoLockR.h>
#include <qv/operations/BAutoLockW.h>
#include <qv/operations/BAutoTryLockR.h>
#include <qv/operations/BAutoTryLockW.h>
#include <qv/operations/BLockRW.h>
#include <qv/operations/BSyncableSmartObj.h>
#include <sstream>
#include <string>

// Lock states seen from one thread. Whether another thread could enter is checked with the
// guards of a second thread in the concurrent suite; here the state machine's answers.

namespace {
// Plays a script on the lock: R and W lock, -R and -W unlock, R? and W? try and note the
// answer as 1 or 0, undoing a successful try at once for a write and keeping it for a read.
std::string Play(BSyncableInterface const& lock, char const* script) {
    std::istringstream steps(script);
    std::string answers;
    for (std::string step; steps >> step;) {
        bool const read = step.find('R') != std::string::npos;
        if (step.back() == '?') {
            bool const got = read ? lock.TryLockR() : lock.TryLockW();
            answers += got ? '1' : '0';
            if (got && !read)
                lock.UnlockW();
        } else if (step[0] == '-') {
            read ? lock.UnlockR() : lock.UnlockW();
        } else {
            read ? lock.LockR() : lock.LockW();
        }
    }
    return answers;
}
} // namespace

TEST(BLockRW, StateMachineScripts) {
    struct Row {
        char const* name;
        bool mutex; // BSyncableSmartObj, else BLockRW
        char const* script;
        char const* answers;
    } const rows[] = {
        {"the write owner nests reads and writes to any depth, then it is free", false,
         "W R W R? R -R -R -W -R -W R -R W?", "11"},
        {"only the write owner gets a read from a try", false, "R? R R? -R W R? -R -W W?", "0011"},
        {"UnlockW without the write side changes nothing", false, "-W R -R W?", "1"},
        {"one recursive lock for readers and writers", true, "R W R? W? -R -W -R", "11"},
    };
    for (Row const& row : rows) {
        BLockRW lock;
        BSyncableSmartObj mutex;
        BSyncableInterface const& played =
            row.mutex ? static_cast<BSyncableInterface&>(mutex) : lock;
        EXPECT_EQ(Play(played, row.script), row.answers) << row.name;
    }
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
    EXPECT_EQ(Play(lock, "W?"), "1");
    // A failed try releases nothing: had the guard released, the write below would succeed
    // while a reader is still inside.
    lock.LockR();
    EXPECT_FALSE(BAutoTryLockR(lock).IsLocked());
    EXPECT_EQ(Play(lock, "W? -R W?"), "01");
}
