/// \file
/// BStopWatch: a stop watch on the high-resolution counter. See docs/measures.md.
#pragma once

#include <qv/core/Export.h>

/// Running or stopped, as m_stop says (0 means running). A plain value: one thread at a time
/// uses it; copies are independent watches.
class QV_EXPORT BStopWatch {
public:
    /// Starts running, or, with false, stopped at 0.
    explicit BStopWatch(bool running = true);

    /// Runs from 0 again, whatever the state was.
    void Reset();
    /// Stops; a second Stop keeps the first stop time.
    void Stop();
    /// Runs on after a Stop, leaving the pause out of the time. Nothing while running.
    void Continue();
    /// The time in whole milliseconds, truncated; raw counter ticks if the counter has no
    /// known frequency.
    unsigned long Period() const;
    /// The same, not truncated.
    double PeriodD() const;

private:
    static long long Counter();

    long long m_start;
    long long m_stop;
    double m_ticks_per_ms;
};
