/// \file
/// BProfiler: a process-wide profiler that writes a plain log of timed runs. A run is a line
/// with the wall-clock time, the word Start and a text; a line per step with the milliseconds
/// since the start and a text; and a line with the time, the word Stop and a text. The lines
/// are kept in memory and appended, at a Stop, to a UTF-16 file named after the date of the
/// last SetLogfilePath. See docs/measures.md.
#pragma once

#include <qv/core/Export.h>
#include <qv/core/containers/BArray.h>
#include <qv/core/strings/WString.h>
#include <qv/measures/BStopWatch.h>

/// Static members only, for one thread at a time: nothing is locked.
class QV_EXPORT BProfiler {
public:
    enum class State { Start = 0, Step = 1, Stop = 2 };

    /// Log files go to directory, which is made if it is missing, under the name
    /// YYYYMD.log of today (no padding: 2024-03-07 gives "202437.log"). No separator is added:
    /// end directory with one. An empty directory means no file: lines accumulate in memory.
    static void SetLogfilePath(WString directory);
    /// Starts a run; a run going on is stopped first with the same text.
    static void Start(WString text);
    /// Notes the milliseconds since the start, with the text (or "Step" for an empty one);
    /// without a run, one is started with an empty text first.
    static void Step(WString text);
    /// Ends the run and writes the lines held to the log file, if one is set; the lines stay
    /// for the next Stop if the file cannot be opened. Without a run, nothing.
    static void Stop(WString text);

protected:
    static void Log(State state, WString text);
    /// Clears the lines once.
    static void Initialize();
    /// Stops the clock and clears the lines, so that the next Log begins afresh.
    static void Uninitialize();

private:
    static void WriteOut();

    static BArray<WString> m_logEntries;
    static bool m_initialized;
    static bool m_running;
    static BStopWatch m_swatch;
    static WString m_logfilePath;
};
