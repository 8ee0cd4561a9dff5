// A whole profile file worked through once: open a profile of 10,000 keys, read every key and
// write each one back changed. The binary profile reads its file once into memory and writes
// it once, at destruction, through a temporary file and a rename; the ini profile reads through
// the parsed-file cache and puts every single write on disk (temporary file, fsync, rename,
// lock), so it pays one replacement of the file per key.
#include <benchmark/benchmark.h>
#include <qv/qvcore.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kKeys = 10000;

struct Directory {
    std::filesystem::path path;
    Directory() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qvbenchXXXXXX").string();
        path = ::mkdtemp(pattern.data()) ? pattern : ".";
    }
    ~Directory() { std::filesystem::remove_all(path); }
};

std::vector<WString> const& Keys() {
    static std::vector<WString> keys = [] {
        std::vector<WString> made;
        for (int i = 0; i < kKeys; ++i)
            made.push_back(WString::FromUtf8("key" + std::to_string(i)));
        return made;
    }();
    return keys;
}

void BM_ReadAndRewrite_BBinProfile(benchmark::State& state) {
    Directory dir;
    WString path = WString::FromUtf8((dir.path / "p.bin").string());
    {
        BBinProfile profile(path, kProfileNew);
        for (int i = 0; i < kKeys; ++i)
            profile.WriteInt(Keys()[i], i);
    }
    for (auto _ : state) {
        BBinProfile profile(path, kProfileReadWrite);
        for (WString const& key : Keys())
            profile.WriteInt(key, profile.ReadInt(key, 0) + 1);
    } // destruction writes the file
    state.SetItemsProcessed(state.iterations() * kKeys);
}
BENCHMARK(BM_ReadAndRewrite_BBinProfile)->Unit(benchmark::kMillisecond)->MinTime(1.0);

void BM_ReadAndRewrite_BIniProfile(benchmark::State& state) {
    Directory dir;
    std::filesystem::path file = dir.path / "p.ini";
    {
        std::ofstream out(file, std::ios::binary);
        out << "[S]\r\n";
        for (int i = 0; i < kKeys; ++i)
            out << "key" << i << "=" << i << "\r\n";
    }
    WString path = WString::FromUtf8(file.string());
    for (auto _ : state) {
        BIniProfile profile(path, u"S", false);
        for (WString const& key : Keys()) {
            int value = 0;
            profile.Read(key, value, IProfile::kNoMin, IProfile::kNoMax);
            profile.Write(key, value + 1);
        }
    }
    state.SetItemsProcessed(state.iterations() * kKeys);
}
BENCHMARK(BM_ReadAndRewrite_BIniProfile)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
