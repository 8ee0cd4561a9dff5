// Reading 10,000 keys one by one from a 10,000-key ini file through BIniProfile, which checks
// the file's identity on every read so that another process's write is seen at once, against
// Qt 6's QSettings in ini format, which reads the file once and serves from memory. And
// writing 1,000 keys: BIniProfile puts every write on disk (temporary file, rename, lock);
// QSettings collects them and writes once on sync().
#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <qv/profiles/BIniProfile.h>
#include <string>
#include <vector>

#ifdef QV_BENCH_WITH_QT
#include <QSettings>
#include <QString>
#endif

namespace {

constexpr int kReadKeys = 10000;
constexpr int kWriteKeys = 1000;

struct Files {
    std::string dir;
    std::string ini;
    std::vector<WString> keys;
    Files() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qvbenchXXXXXX").string();
        dir = ::mkdtemp(pattern.data()) ? pattern : ".";
        ini = dir + "/read.ini";
        std::ofstream out(ini, std::ios::binary);
        out << "[S]\r\n";
        for (int i = 0; i < kReadKeys; ++i) {
            out << "key" << i << "=value " << i << "\r\n";
            keys.push_back(WString::FromUtf8("key" + std::to_string(i)));
        }
    }
    ~Files() { std::filesystem::remove_all(dir); }
};

Files& Shared() {
    static Files files;
    return files;
}

void BM_ReadKey_BIniProfile(benchmark::State& state) {
    Files& f = Shared();
    BIniProfile profile(WString::FromUtf8(f.ini), u"S", false);
    for (auto _ : state) {
        for (WString const& key : f.keys)
            benchmark::DoNotOptimize(profile.GetString(key, WString()));
    }
    state.SetItemsProcessed(state.iterations() * kReadKeys);
}
BENCHMARK(BM_ReadKey_BIniProfile)->Unit(benchmark::kMillisecond)->MinTime(1.0);

void BM_WriteKey_BIniProfile(benchmark::State& state) {
    Files& f = Shared();
    std::string const path = f.dir + "/write.ini";
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(path);
        state.ResumeTiming();
        BIniProfile profile(WString::FromUtf8(path), u"S", false);
        for (int i = 0; i < kWriteKeys; ++i)
            profile.WriteString(f.keys[static_cast<std::size_t>(i)], u"some value");
    }
    state.SetItemsProcessed(state.iterations() * kWriteKeys);
}
BENCHMARK(BM_WriteKey_BIniProfile)->Unit(benchmark::kMillisecond)->MinTime(1.0);

#ifdef QV_BENCH_WITH_QT
void BM_ReadKey_QSettings(benchmark::State& state) {
    Files& f = Shared();
    QSettings settings(QString::fromStdString(f.ini), QSettings::IniFormat);
    std::vector<QString> keys;
    for (int i = 0; i < kReadKeys; ++i)
        keys.push_back(QStringLiteral("S/key%1").arg(i));
    for (auto _ : state) {
        for (QString const& key : keys)
            benchmark::DoNotOptimize(settings.value(key));
    }
    state.SetItemsProcessed(state.iterations() * kReadKeys);
}
BENCHMARK(BM_ReadKey_QSettings)->Unit(benchmark::kMillisecond)->MinTime(1.0);

void BM_WriteKey_QSettings(benchmark::State& state) {
    Files& f = Shared();
    std::string const path = f.dir + "/qwrite.ini";
    std::vector<QString> keys;
    for (int i = 0; i < kWriteKeys; ++i)
        keys.push_back(QStringLiteral("S/key%1").arg(i));
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(path);
        state.ResumeTiming();
        QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
        for (QString const& key : keys)
            settings.setValue(key, QStringLiteral("some value"));
        settings.sync();
    }
    state.SetItemsProcessed(state.iterations() * kWriteKeys);
}
BENCHMARK(BM_WriteKey_QSettings)->Unit(benchmark::kMillisecond)->MinTime(1.0);
#endif

} // namespace
