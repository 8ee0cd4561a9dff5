// WString against std::u16string and Qt's QString, side by side in one run: copying, appending
// characters and text, length, case-blind comparison and case-blind search.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <qv/core/strings/WString.h>
#include <string>

#ifdef QV_BENCH_WITH_QT
#include <QString>
#endif

namespace {

constexpr char16_t kText[] = u"Measurement/Sensor_01/Camera_Left/Exposure_Time";
constexpr char16_t kOther[] = u"measurement/sensor_01/camera_left/exposure_timf";
constexpr char16_t kNeedle[] = u"CAMERA_LEFT";

std::u16string CaseFold(std::u16string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](char16_t c) { return c >= u'A' && c <= u'Z' ? c + 32 : c; });
    return s;
}

void Copy_WString(benchmark::State& state) {
    WString s(kText);
    for (auto _ : state) {
        WString copy = s;
        benchmark::DoNotOptimize(copy);
    }
}
void Copy_U16String(benchmark::State& state) {
    std::u16string s(kText);
    for (auto _ : state) {
        std::u16string copy = s;
        benchmark::DoNotOptimize(copy);
    }
}

void AppendChars_WString(benchmark::State& state) {
    for (auto _ : state) {
        WString s;
        for (int i = 0; i < 1000; ++i)
            s.Append(static_cast<char16_t>(u'a' + i % 26));
        benchmark::DoNotOptimize(s);
    }
}
void AppendChars_U16String(benchmark::State& state) {
    for (auto _ : state) {
        std::u16string s;
        for (int i = 0; i < 1000; ++i)
            s.push_back(static_cast<char16_t>(u'a' + i % 26));
        benchmark::DoNotOptimize(s);
    }
}

void AppendText_WString(benchmark::State& state) {
    for (auto _ : state) {
        WString s;
        for (int i = 0; i < 100; ++i)
            s.Append(u"segment/");
        benchmark::DoNotOptimize(s);
    }
}
void AppendText_U16String(benchmark::State& state) {
    for (auto _ : state) {
        std::u16string s;
        for (int i = 0; i < 100; ++i)
            s.append(u"segment/");
        benchmark::DoNotOptimize(s);
    }
}

void Length_WString(benchmark::State& state) {
    WString s(kText);
    for (auto _ : state)
        benchmark::DoNotOptimize(s.Length());
}
void Length_U16String(benchmark::State& state) {
    std::u16string s(kText);
    for (auto _ : state) {
        benchmark::DoNotOptimize(s);
        benchmark::DoNotOptimize(s.size());
    }
}

void ICmp_WString(benchmark::State& state) {
    WString a(kText), b(kOther);
    for (auto _ : state)
        benchmark::DoNotOptimize(a.ICmp(b));
}
void ICmp_U16StringAsciiFold(benchmark::State& state) {
    std::u16string a(kText), b(kOther);
    for (auto _ : state)
        benchmark::DoNotOptimize(CaseFold(a).compare(CaseFold(b)));
}

void IIncludes_WString(benchmark::State& state) {
    WString s(kText);
    for (auto _ : state)
        benchmark::DoNotOptimize(s.IIncludes(kNeedle));
}
void IIncludes_U16StringAsciiFold(benchmark::State& state) {
    std::u16string s(kText), needle(kNeedle);
    for (auto _ : state)
        benchmark::DoNotOptimize(CaseFold(s).find(CaseFold(needle)));
}

BENCHMARK(Copy_WString);
BENCHMARK(Copy_U16String);
BENCHMARK(AppendChars_WString);
BENCHMARK(AppendChars_U16String);
BENCHMARK(AppendText_WString);
BENCHMARK(AppendText_U16String);
BENCHMARK(Length_WString);
BENCHMARK(Length_U16String);
BENCHMARK(ICmp_WString);
BENCHMARK(ICmp_U16StringAsciiFold);
BENCHMARK(IIncludes_WString);
BENCHMARK(IIncludes_U16StringAsciiFold);

#ifdef QV_BENCH_WITH_QT
void Copy_QString(benchmark::State& state) {
    QString s = QString::fromUtf16(kText);
    for (auto _ : state) {
        QString copy = s;
        benchmark::DoNotOptimize(copy);
    }
}
void AppendChars_QString(benchmark::State& state) {
    for (auto _ : state) {
        QString s;
        for (int i = 0; i < 1000; ++i)
            s.append(QChar(u'a' + i % 26));
        benchmark::DoNotOptimize(s);
    }
}
void AppendText_QString(benchmark::State& state) {
    for (auto _ : state) {
        QString s;
        for (int i = 0; i < 100; ++i)
            s.append(QStringView(u"segment/"));
        benchmark::DoNotOptimize(s);
    }
}
void Length_QString(benchmark::State& state) {
    QString s = QString::fromUtf16(kText);
    for (auto _ : state) {
        benchmark::DoNotOptimize(s);
        benchmark::DoNotOptimize(s.size());
    }
}
void ICmp_QString(benchmark::State& state) {
    QString a = QString::fromUtf16(kText), b = QString::fromUtf16(kOther);
    for (auto _ : state)
        benchmark::DoNotOptimize(a.compare(b, Qt::CaseInsensitive));
}
void IIncludes_QString(benchmark::State& state) {
    QString s = QString::fromUtf16(kText), needle = QString::fromUtf16(kNeedle);
    for (auto _ : state)
        benchmark::DoNotOptimize(s.contains(needle, Qt::CaseInsensitive));
}
BENCHMARK(Copy_QString);
BENCHMARK(AppendChars_QString);
BENCHMARK(AppendText_QString);
BENCHMARK(Length_QString);
BENCHMARK(ICmp_QString);
BENCHMARK(IIncludes_QString);
#endif

} // namespace
