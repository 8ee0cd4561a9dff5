#include "qv/platform/Clock.h"

#include <qv/measures/BFramesPerSecondCounter.h>

BFramesPerSecondCounter::BFramesPerSecondCounter(double rate) : m_frequency(0) {
    qv::platform::QueryPerformanceFrequency(&m_frequency);
    m_span = static_cast<long long>(static_cast<double>(m_frequency) / rate);
}

void BFramesPerSecondCounter::AddFrame() {
    long long now = 0;
    if (!qv::platform::QueryPerformanceCounter(&now))
        return;
    m_frames.Add(now);
    unsigned long long drop = 0;
    while (m_frames.Count() - drop > 2 && now - m_frames[drop] > m_span)
        ++drop;
    m_frames.RemoveAt(0, drop);
}

double BFramesPerSecondCounter::Fps() const {
    unsigned long long const n = m_frames.Count();
    if (n < 2)
        return 0.0;
    long long const ticks = m_frames[n - 1] - m_frames[0];
    return static_cast<double>(n - 1) * static_cast<double>(m_frequency) /
           static_cast<double>(ticks);
}

void BFramesPerSecondCounter::Restart() {
    m_frames.RemoveAt(0, m_frames.Count());
}
