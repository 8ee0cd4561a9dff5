#include "platform/FileTestSupport.h"

#include <cctype>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <gtest/gtest.h>
#include <qv/measures/BFramesPerSecondCounter.h>
#include <qv/measures/BProfiler.h>
#include <qv/measures/BStopWatch.h>
#include <qv/measures/Date.h>
#include <qv/measures/Time.h>
#include <qv/platform/Clock.h>
#include <string>
#include <thread>
#include <vector>

namespace {

void Pause(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

// One run of pauses serves both clocks; margins of a tenth of a second or more, as the machine
// may be busy.
TEST(Timing, StopWatchAndFrameCounter) {
    BStopWatch total, watch, idle(false);
    // The quick counter spans 10 ms: after a long pause the last two frames remain, and the rate
    // is that of the pause, however many quick frames came before it.
    BFramesPerSecondCounter counter, quick(100.0);
    counter.AddFrame();
    for (int i = 0; i < 5; ++i)
        quick.AddFrame();
    EXPECT_EQ(counter.Fps(), 0.0) << "one frame";
    Pause(300);
    counter.AddFrame();
    quick.AddFrame();
    EXPECT_GT(counter.Fps(), 0.5);
    EXPECT_LT(counter.Fps(), 3.4);
    EXPECT_LT(quick.Fps(), 3.4);
    counter.Restart();
    EXPECT_EQ(counter.Fps(), 0.0);
    EXPECT_EQ(idle.Period(), 0u) << "made stopped reads 0";
    idle.Continue();
    watch.Stop();
    double const stopped = watch.PeriodD();
    EXPECT_GE(stopped, 300.0);
    Pause(300);
    EXPECT_GE(idle.Period(), 300u);
    EXPECT_GE(total.Period(), idle.Period() + 290u) << "runs from 0 after Continue";
    watch.Stop(); // keeps the first stop time
    EXPECT_EQ(watch.PeriodD(), stopped);
    watch.Continue();
    EXPECT_LT(watch.PeriodD() - stopped, 150.0) << "the pause does not count";
    EXPECT_GE(watch.PeriodD(), stopped);
    watch.Reset();
    EXPECT_LT(watch.PeriodD(), 150.0);
}

TEST(Timing, CalendarNumbers) {
    struct Case {
        std::string name;
        unsigned long got;
        unsigned long want;
    };
    std::vector<Case> const cases = {
        {"date number", Date(31, 12, 2024).GetDate(), 20241231},
        {"year modulo 10000", Date(1, 1, 12024).GetYear(), 2024},
        {"month modulo 100", Date(1, 113, 2024).GetDate(), 20241301},
        {"negative seconds", Time(-1234l).GetSec(), 12},
        {"minute modulo 10000 spills into the hour", Time(0, 19999, 0, 0).GetHour(), 99},
        {"most negative number", Time(static_cast<long>(INT32_MIN)).GetHour(), 2147},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.got, c.want) << c.name;
}

// The platform's local time feeds Date and Time: month from 1, the year in full, milliseconds
// from the nanoseconds. In UTC, so that the answer is fixed.
TEST(Timing, LocalTimeFieldsFeedDateAndTime) {
    char const* const saved = std::getenv("TZ");
    std::string const restore = saved ? saved : "";
    setenv("TZ", "UTC", 1);
    tzset();
    _SYSTEMTIME t{};
    qv::platform::LocalTimeAt(1709251199, 999999999, &t); // the last moment of 29 February 2024
    EXPECT_EQ(Date(t.wDay, t.wMonth, t.wYear).GetDate(), 20240229ul);
    EXPECT_EQ(Time(t.wHour, t.wMinute, t.wSecond, t.wMilliseconds / 10).GetTime(), 23595999l);
    EXPECT_EQ(t.wDayOfWeek, 4) << "a Thursday";
    if (saved)
        setenv("TZ", restore.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}

// The profiler's subclass view, to start each test from a clean state.
struct ProfilerAccess : BProfiler {
    static void Reset() { Uninitialize(); }
};

TEST(Timing, ProfilerLogFile) {
    TempDir dir;
    // A directory path through a regular file cannot be made: the lines wait in memory.
    WriteBytes(dir / "blocker", "x");
    BProfiler::SetLogfilePath(WString((dir.U("blocker") + u"/logs/").c_str()));
    ProfilerAccess::Reset();
    BProfiler::Stop(WString(u"nothing")); // no run: nothing
    BProfiler::Step(WString());           // starts a run with an empty text
    BProfiler::Start(WString(u"b"));      // stops the first run with the same text
    BProfiler::SetLogfilePath(WString((dir.U("logs") + u"/").c_str()));
    BProfiler::Stop(WString(u"c\u00e9"));
    BProfiler::Stop(WString(u"again")); // no run: nothing
    BProfiler::SetLogfilePath(WString());

    Date const today;
    std::string const name = std::to_string(today.GetYear()) + std::to_string(today.GetMonth()) +
                             std::to_string(today.GetDay()) + ".log";
    std::string const bytes = ReadBytes(dir / ("logs/" + name));
    ASSERT_GE(bytes.size(), 2u) << name;
    EXPECT_EQ(bytes.substr(0, 2), "\xFF\xFE");
    std::u16string wide((bytes.size() - 2) / 2, u'\0');
    std::memcpy(wide.data(), bytes.data() + 2, wide.size() * 2);
    // Wall-clock lines "hh:mm:ss" become T, the step line's milliseconds d; UTF-16, not ANSI.
    std::string text, digits = WString(wide.c_str()).ToUtf8();
    for (char& c : digits)
        c = std::isdigit(static_cast<unsigned char>(c)) ? 'd' : c;
    for (std::size_t at; (at = digits.find("dd:dd:dd")) != std::string::npos;)
        digits.replace(at, 8, "T");
    for (char c : digits)
        if (c != 'd' || text.empty() || text.back() != 'd')
            text += c;
    EXPECT_EQ(text, "T\tStart\t\r\nd\tStep\r\nT\tStop\tb\r\nT\tStart\tb\r\nT\tStop\tc\xC3\xA9\r\n");
    ProfilerAccess::Reset();
}

} // namespace
