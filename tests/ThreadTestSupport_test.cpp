// The child-process helper of the threaded suites must fail a child that fails in any way a
// sanitizer or the test itself can report.
#include "ThreadTestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

namespace {

TEST(RunBounded, FailsChildrenThatFailInAnyWay) {
    struct Row {
        char const* name;
        bool (*child)();
        char const* verdict;
    } const rows[] = {
        {"clean", [] { return true; }, ""},
        {"returns false", [] { return false; }, "exit status 3"},
        {"address sanitizer report",
         [] {
             std::fputs("==7==ERROR: AddressSanitizer: heap-use-after-free\n", stderr);
             return true;
         },
         "sanitizer report"},
        {"thread sanitizer report",
         [] {
             std::fputs("WARNING: ThreadSanitizer: data race (pid=7)\n", stderr);
             return true;
         },
         "sanitizer report"},
        {"undefined behaviour report",
         [] {
             std::fputs("x.cpp:1:2: runtime error: signed integer overflow\n", stderr);
             return true;
         },
         "sanitizer report"},
        {"aborts",
         [] {
             std::abort();
             return true;
         },
         "killed by signal 6"},
        {"hangs",
         [] {
             std::this_thread::sleep_for(thread_test::kBound);
             return true;
         },
         "timed out"},
    };
    for (Row const& r : rows) {
        std::string const verdict =
            thread_test::RunBounded(r.child, std::chrono::milliseconds(300));
        EXPECT_EQ(verdict.substr(0, verdict.find('\n')), r.verdict) << r.name << ": " << verdict;
    }
}

} // namespace
