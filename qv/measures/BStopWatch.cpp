#include "qv/platform/Clock.h"

#include <qv/measures/BStopWatch.h>

BStopWatch::BStopWatch(bool running) : m_start(Counter()), m_stop(0), m_ticks_per_ms(1.0) {
    long long frequency = 0;
    if (qv::platform::QueryPerformanceFrequency(&frequency))
        m_ticks_per_ms = static_cast<double>(frequency) * 0.001;
    if (!running)
        m_stop = m_start;
}

long long BStopWatch::Counter() {
    long long count = 0;
    qv::platform::QueryPerformanceCounter(&count);
    return count;
}

void BStopWatch::Reset() {
    m_start = Counter();
    m_stop = 0;
}

void BStopWatch::Stop() {
    if (m_stop == 0)
        m_stop = Counter();
}

void BStopWatch::Continue() {
    if (m_stop == 0)
        return;
    m_start += Counter() - m_stop;
    m_stop = 0;
}

unsigned long BStopWatch::Period() const {
    return static_cast<unsigned long>(PeriodD());
}

double BStopWatch::PeriodD() const {
    long long const end = m_stop != 0 ? m_stop : Counter();
    return static_cast<double>(end - m_start) / m_ticks_per_ms;
}
