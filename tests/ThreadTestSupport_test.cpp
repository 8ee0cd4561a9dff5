// The child-process helper of the threaded suites must fail a child that fails in any way a
// sanitizer or the test itself can report.
#include "ThreadTestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

namespace {

TEST(RunBounded, FailsChildrenThatFailInAnyWay) {
    enum End { kTrue, kFalse, kAbort, kHang };
    struct Row {
        char const* name;
        char const* report; // what the child writes to stderr
        End end;
        char const* verdict;
    } const rows[] = {
        {"clean", "", kTrue, ""},
        {"returns false", "", kFalse, "exit status 3"},
        {"address sanitizer report", "==7==ERROR: AddressSanitizer: heap-use-after-free\n", kTrue,
         "sanitizer report"},
        {"undefined behaviour report", "x.cpp:1:2: runtime error: signed integer overflow\n", kTrue,
         "sanitizer report"},
        {"aborts", "", kAbort, "killed by signal 6"},
        {"hangs", "", kHang, "timed out"},
    };
    for (Row const& r : rows) {
        std::string const verdict = thread_test::RunBounded(
            [&r] {
                std::fputs(r.report, stderr);
                if (r.end == kAbort)
                    std::abort();
                if (r.end == kHang)
                    std::this_thread::sleep_for(thread_test::kBound);
                return r.end == kTrue;
            },
            std::chrono::milliseconds(300));
        EXPECT_EQ(verdict.substr(0, verdict.find('\n')), r.verdict) << r.name << ": " << verdict;
    }
}

} // namespace
