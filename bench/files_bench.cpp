// Reading a 50 MB UTF-16LE text file line by line through BFile and WString::ReadLn, against
// std::ifstream and std::getline on the same lines in UTF-8 and against Qt's QTextStream
// reading the same UTF-16LE file. Every side only touches each line (its first character): the
// comparison is of reading, not of measuring. BM_BFileUtf16Pieces shows the stream layer's
// share: the reads alone, without building lines in a WString. BM_BFileUtf16ReadLnThreaded is
// ReadLn once the process has started a second thread, when every line takes the stream's
// lock; it runs last, since no process goes back to one thread.
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <qv/core/files/BFile.h>
#include <qv/core/strings/WString.h>
#include <qv/platform/WideStream.h>
#include <string>
#include <thread>

#ifdef QV_BENCH_WITH_QT
#include <QFile>
#include <QString>
#include <QStringConverter>
#include <QTextStream>
#endif

namespace {

constexpr std::size_t kUtf16Bytes = 50u << 20;

// The two files, made once in a temporary directory and removed at exit.
struct Files {
    std::string dir;
    std::u16string utf16;
    std::string utf8;
    long long lines = 0;

    Files() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qvbenchXXXXXX").string();
        dir = ::mkdtemp(pattern.data()) ? pattern : ".";
        utf8 = dir + "/lines.utf8";
        std::string const path16 = dir + "/lines.utf16";
        utf16.assign(path16.begin(), path16.end());
        BFile out(utf16.c_str(), u"wt,ccs=UTF-16LE");
        std::ofstream out8(utf8, std::ios::binary);
        std::size_t written = 2;
        for (unsigned i = 0; written < kUtf16Bytes; ++i) {
            // Lines of 20 to 139 characters, some beyond Latin-1, a few longer than a piece.
            std::u16string line =
                u"$KEY_" + std::u16string(i % 7 == 0 ? 600 : 20 + i % 120, u'a' + i % 26);
            line += i % 3 == 0 ? u"\t\u00FCber \u20AC" : u"\tplain";
            WString const w(line);
            std::string const l8 = w.ToUtf8();
            qv::platform::fputws16((line + u"\n").c_str(), out);
            out8 << l8 << '\n';
            written += (line.size() + 2) * 2;
            ++lines;
        }
    }
    ~Files() { std::filesystem::remove_all(dir); }
};

Files const& TheFiles() {
    static Files const files;
    return files;
}

void BM_BFileUtf16ReadLn(benchmark::State& state) {
    Files const& files = TheFiles();
    long long units = 0;
    for (auto _ : state) {
        BFile in(files.utf16.c_str(), u"r,ccs=UTF-16LE");
        WString line;
        long long count = 0;
        for (; line.ReadLn(in); ++count)
            units += line.CStr()[0];
        benchmark::DoNotOptimize(units);
        state.counters["lines"] = static_cast<double>(count);
    }
    state.SetBytesProcessed(static_cast<long long>(state.iterations()) * kUtf16Bytes);
}

// The stream layer alone: the same reads into the piece buffer, without building lines.
void BM_BFileUtf16Pieces(benchmark::State& state) {
    Files const& files = TheFiles();
    for (auto _ : state) {
        BFile in(files.utf16.c_str(), u"r,ccs=UTF-16LE");
        char16_t piece[512];
        long long count = 0;
        while (qv::platform::fgetws16(piece, 512, in))
            ++count;
        benchmark::DoNotOptimize(count);
    }
    state.SetBytesProcessed(static_cast<long long>(state.iterations()) * kUtf16Bytes);
}

void BM_IfstreamUtf8Getline(benchmark::State& state) {
    Files const& files = TheFiles();
    long long bytes = 0;
    for (auto _ : state) {
        std::ifstream in(files.utf8, std::ios::binary);
        std::string line;
        long long count = 0;
        while (std::getline(in, line)) {
            bytes += line.c_str()[0];
            ++count;
        }
        benchmark::DoNotOptimize(bytes);
        state.counters["lines"] = static_cast<double>(count);
    }
    state.SetBytesProcessed(static_cast<long long>(state.iterations()) * kUtf16Bytes);
}

#ifdef QV_BENCH_WITH_QT
// What a Qt program reads the file with: QTextStream over a QFile, told the encoding.
void BM_QTextStreamUtf16ReadLine(benchmark::State& state) {
    Files const& files = TheFiles();
    QString const path = QString::fromStdU16String(files.utf16);
    long long units = 0;
    for (auto _ : state) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            state.SkipWithError("cannot open the file");
            break;
        }
        QTextStream in(&file);
        in.setEncoding(QStringConverter::Utf16LE);
        long long count = 0;
        while (!in.atEnd()) {
            QString const line = in.readLine();
            units += line.isEmpty() ? 0 : line.front().unicode();
            ++count;
        }
        benchmark::DoNotOptimize(units);
        state.counters["lines"] = static_cast<double>(count);
    }
    state.SetBytesProcessed(static_cast<long long>(state.iterations()) * kUtf16Bytes);
}
#endif

// BM_BFileUtf16ReadLn in a process with a second thread.
void BM_BFileUtf16ReadLnThreaded(benchmark::State& state) {
    std::thread([] {}).join();
    BM_BFileUtf16ReadLn(state);
}

} // namespace

BENCHMARK(BM_BFileUtf16ReadLn)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BFileUtf16Pieces)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IfstreamUtf8Getline)->Unit(benchmark::kMillisecond);
#ifdef QV_BENCH_WITH_QT
BENCHMARK(BM_QTextStreamUtf16ReadLine)->Unit(benchmark::kMillisecond);
#endif
BENCHMARK(BM_BFileUtf16ReadLnThreaded)->Unit(benchmark::kMillisecond);
