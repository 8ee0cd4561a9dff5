// Qv::Log without a sink (its whole cost should be one lock and unlock, so it is set beside a
// bare std::mutex pair) and with a sink that only looks at the text (formatting on the stack,
// beside swprintf formatting the same message into a stack buffer).
#include <benchmark/benchmark.h>
#include <cwchar>
#include <mutex>
#include <qv/operations/Log.h>

namespace {

class CountingSink : public Qv::LoggerInterface {
public:
    void Write(char16_t const*, Qv::ELog, char16_t const*, char16_t const* text) override {
        m_units += text[0];
    }
    long long m_units = 0;
};

void LogWithoutSink(benchmark::State& state) {
    for (auto _ : state)
        Qv::Log(u"bench", Qv::ELog::Info, u"ctx", u"frame %d of %s took %f ms", 17, u"camera", 2.5);
}

void MutexPair(benchmark::State& state) {
    std::mutex mutex;
    for (auto _ : state) {
        mutex.lock();
        benchmark::ClobberMemory();
        mutex.unlock();
    }
}

void LogWithSink(benchmark::State& state) {
    CountingSink sink;
    Qv::RegisterLoggerInterface(&sink);
    for (auto _ : state)
        Qv::Log(u"bench", Qv::ELog::Info, u"ctx", u"frame %d of %s took %f ms", 17, u"camera", 2.5);
    Qv::UnregisterLoggerInterface(&sink);
    benchmark::DoNotOptimize(sink.m_units);
}

void Swprintf(benchmark::State& state) {
    for (auto _ : state) {
        wchar_t text[4096];
        std::swprintf(text, 4096, L"frame %d of %ls took %f ms", 17, L"camera", 2.5);
        benchmark::DoNotOptimize(text);
    }
}

} // namespace

BENCHMARK(LogWithoutSink);
BENCHMARK(MutexPair);
BENCHMARK(LogWithSink);
BENCHMARK(Swprintf);
