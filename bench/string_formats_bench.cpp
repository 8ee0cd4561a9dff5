// Printf beside snprintf into a std::string, and Convert(double &) beside std::from_chars.
// The goal for Printf of ordinary short text is to stay within 1.5x of snprintf.
#include <benchmark/benchmark.h>
#include <charconv>
#include <cstdio>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <string>

namespace {

void WStringPrintf(benchmark::State& state) {
    WString name(u"sensor");
    int i = 0;
    for (auto _ : state) {
        WString s;
        s.Printf(u"%s %d: %d points", name, ++i, 1024);
        benchmark::DoNotOptimize(s.CStr());
    }
}
BENCHMARK(WStringPrintf);

void BStringPrintf(benchmark::State& state) {
    BString name("sensor");
    int i = 0;
    for (auto _ : state) {
        BString s;
        s.Printf("%s %d: %d points", name, ++i, 1024);
        benchmark::DoNotOptimize(s.CStr());
    }
}
BENCHMARK(BStringPrintf);

void SnprintfString(benchmark::State& state) {
    std::string name("sensor");
    int i = 0;
    for (auto _ : state) {
        char buffer[256];
        int n = std::snprintf(buffer, sizeof buffer, "%s %d: %d points", name.c_str(), ++i, 1024);
        std::string s(buffer, static_cast<std::size_t>(n));
        benchmark::DoNotOptimize(s.data());
    }
}
BENCHMARK(SnprintfString);

void WStringPrintfFloat(benchmark::State& state) {
    double x = 0.5;
    for (auto _ : state) {
        WString s;
        s.Printf(u"x=%.3f y=%g", x, x * 2);
        x += 0.25;
        ;
        benchmark::DoNotOptimize(s.CStr());
    }
}
BENCHMARK(WStringPrintfFloat);

void SnprintfStringFloat(benchmark::State& state) {
    double x = 0.5;
    for (auto _ : state) {
        char buffer[256];
        int n = std::snprintf(buffer, sizeof buffer, "x=%.3f y=%g", x, x * 2);
        x += 0.25;
        ;
        std::string s(buffer, static_cast<std::size_t>(n));
        benchmark::DoNotOptimize(s.data());
    }
}
BENCHMARK(SnprintfStringFloat);

void WStringConvertDouble(benchmark::State& state) {
    WString text(u"  1234.5678e-3 ");
    for (auto _ : state) {
        double d;
        benchmark::DoNotOptimize(text.Convert(d));
        benchmark::DoNotOptimize(d);
    }
}
BENCHMARK(WStringConvertDouble);

void BStringConvertDouble(benchmark::State& state) {
    BString text("  1234.5678e-3 ");
    for (auto _ : state) {
        double d;
        benchmark::DoNotOptimize(text.Convert(d));
        benchmark::DoNotOptimize(d);
    }
}
BENCHMARK(BStringConvertDouble);

void FromChars(benchmark::State& state) {
    std::string text("1234.5678e-3");
    for (auto _ : state) {
        double d;
        benchmark::DoNotOptimize(std::from_chars(text.data(), text.data() + text.size(), d));
        benchmark::DoNotOptimize(d);
    }
}
BENCHMARK(FromChars);

} // namespace
