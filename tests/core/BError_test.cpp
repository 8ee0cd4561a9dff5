#include <cerrno>
#include <climits>
#include <fstream>
#include <gtest/gtest.h>
#include <qv/core/BError.h>
#include <qv/core/GetLastErrorMessage.h>
#include <qv/core/Narrowing.h>
#include <qv/core/SetThreadName.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

// Runs f, expecting a BError with the code and argument 0.
template <class F>
void ExpectError(F f, int code, char16_t const* argument0) {
    try {
        f();
        ADD_FAILURE() << "nothing thrown";
    } catch (BError const& e) {
        EXPECT_EQ(e.Error(), code);
        EXPECT_EQ(e.Argument(0), WString(argument0));
    }
}

} // namespace

TEST(BError, NewCodesKeepTheArgumentsAndChecksThrowCopies) {
    BError e(5, u"x", nullptr, u"z");
    EXPECT_TRUE(e.Argument(1).IsEmpty());
    e = 7;
    ExpectError([&] { e.Throw(); }, 7, u"x");
    ExpectError([&] { e.Check(9); }, 9, u"x");
    EXPECT_EQ(e.Error(), 7) << "the object keeps its own code";
    BError ok;
    EXPECT_NO_THROW(e.Check(0));
    EXPECT_NO_THROW(e.Check(ok));
    ExpectError([&] { ok.Check(e); }, 7, u"x");
    ExpectError([] { BError::Test(5, u"x", u"y"); }, 5, u"x");
    ExpectError([] { BError::Condition(false, u"why", u"where"); }, 32767, u"why");
    ExpectError([] { BError::Check(false, 31825, u"file"); }, 31825, u"file");
}

TEST(Narrowing, Boundaries) {
    EXPECT_EQ(Sizet_int(2147483647ull), INT_MAX);
    ExpectError([] { Sizet_int(2147483648ull); }, 32767, u"Sizet_int");
    EXPECT_EQ(Sizet_uint(4294967295ull), UINT_MAX);
    ExpectError([] { Sizet_uint(4294967296ull); }, 32767, u"Sizet_uint");
    EXPECT_EQ(Sizet_byte(255), 255);
    ExpectError([] { Sizet_byte(256); }, 32767, u"Sizet_byte");
    EXPECT_EQ(Longptr_int(-2147483648ll), INT_MIN);
    ExpectError([] { Longptr_int(-2147483649ll); }, 32767, u"Longptr_int");
    ExpectError([] { Longptr_int(2147483648ll); }, 32767, u"Longptr_int");
    EXPECT_EQ(Dwordptr_int(0xFFFFFFFF80000000ull), INT_MIN);
    EXPECT_EQ(Dwordptr_int(0x7FFFFFFFull), INT_MAX);
    ExpectError([] { Dwordptr_int(0x80000000ull); }, 32767, u"Dwordptr_int");
    ExpectError([] { Dwordptr_int(0xFFFFFFFFull); }, 32767, u"Dwordptr_int");
}

TEST(SystemDiagnostics, LastErrorMessageAndThreadNames) {
    errno = ENOENT;
    EXPECT_EQ(GetLastErrorMessage(), WString(u"No such file or directory"));
    errno = 123456;
    EXPECT_TRUE(GetLastErrorMessage().IsEmpty()) << "a code the system does not know";

    std::string seen;
    std::thread worker([&] {
        SetThreadName("qv-worker-with-a-long-name", 0xFFFFFFFF);
        std::ifstream comm("/proc/self/task/" + std::to_string(syscall(SYS_gettid)) + "/comm");
        std::getline(comm, seen);
    });
    worker.join();
    EXPECT_EQ(seen, "qv-worker-with-");
}
