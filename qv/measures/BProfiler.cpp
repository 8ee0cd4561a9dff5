// The log file is opened for appending in the runtime's "ccs=UNICODE" text mode: a new file
// starts with a byte order mark and holds UTF-16LE with CR LF line ends, as the Windows
// runtime writes it (qv/platform/FileStream.h does the mode).
#include "qv/platform/Clock.h"
#include "qv/platform/FileStream.h"
#include "qv/platform/WideStream.h"

#include <qv/core/files/BDirEntry.h>
#include <qv/measures/BProfiler.h>
#include <qv/measures/Date.h>

BArray<WString> BProfiler::m_logEntries;
bool BProfiler::m_initialized = false;
bool BProfiler::m_running = false;
BStopWatch BProfiler::m_swatch(false);
WString BProfiler::m_logfilePath;

void BProfiler::SetLogfilePath(WString directory) {
    if (directory.IsEmpty()) {
        m_logfilePath = WString();
        return;
    }
    BDirEntry const dir(directory);
    if (!dir.Exists())
        dir.MakeDir();
    Date const today;
    WString name;
    name.Printf(u"%d%d%d.log", static_cast<int>(today.GetYear()),
                static_cast<int>(today.GetMonth()), static_cast<int>(today.GetDay()));
    m_logfilePath = directory + name;
}

void BProfiler::Start(WString text) {
    if (m_running)
        Stop(text);
    Log(State::Start, text);
}

void BProfiler::Step(WString text) {
    if (!m_running)
        Start(WString());
    Log(State::Step, text);
}

void BProfiler::Stop(WString text) {
    if (m_running)
        Log(State::Stop, text);
}

void BProfiler::Log(State state, WString text) {
    Initialize();
    WString line;
    if (state == State::Step) {
        line.Printf(u"%d\t%s", static_cast<int>(m_swatch.Period()),
                    text.IsEmpty() ? WString(u"Step") : text);
    } else {
        _SYSTEMTIME now{};
        qv::platform::GetLocalTime(&now);
        line.Printf(u"%02d:%02d:%02d\t%s\t%s", now.wHour, now.wMinute, now.wSecond,
                    state == State::Start ? u"Start" : u"Stop", text);
    }
    if (state == State::Start) {
        m_swatch.Reset();
        m_running = true;
    } else if (state == State::Stop) {
        m_swatch.Stop();
        m_running = false;
    }
    m_logEntries.Add(line);
    if (state == State::Stop && !m_logfilePath.IsEmpty())
        WriteOut();
}

void BProfiler::WriteOut() {
    std::FILE* file = nullptr;
    if (qv::platform::_wfopen_s(&file, m_logfilePath.CStr(), u"at,ccs=UNICODE") != 0 || !file)
        return;
    for (WString const& entry : m_logEntries) {
        qv::platform::fputws16(entry.CStr(), file);
        qv::platform::fputwc16(u'\n', file);
    }
    std::fclose(file);
    m_logEntries.Clear();
}

void BProfiler::Initialize() {
    if (m_initialized)
        return;
    m_logEntries.Clear();
    m_initialized = true;
}

void BProfiler::Uninitialize() {
    if (!m_initialized)
        return;
    m_swatch.Stop();
    m_initialized = false;
    m_logEntries.Clear();
}
