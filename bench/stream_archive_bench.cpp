// Writing and reading trees of nodes through a stream archive, side by side with
// Boost.Serialization's binary archive of the same tree (bench/BenchTrees.h). The stream
// archive keeps no table of what it wrote, so it stores the shared object once per holder and
// reads it back as that many objects; Boost tracks it and stores it once.
#include "BenchTrees.h"

#include <qv/persistence/BIStreamArchive.h>
#include <qv/persistence/BOStreamArchive.h>

namespace {

using namespace bench_trees;

void WriteStream(BNode* root, WString const& path) {
    BOStreamArchive archive(path, u"BenchTree");
    archive.Insert(root, "tree");
}

void BM_Write_StreamArchive(benchmark::State& state) {
    SP<BNode> root = BuildTree(state.range(0));
    WString path = WString::FromUtf8(TempFile("qv_bench_tree.qvs"));
    for (auto _ : state)
        WriteStream(root, path);
}

void BM_Read_StreamArchive(benchmark::State& state) {
    WString path = WString::FromUtf8(TempFile("qv_bench_tree.qvs"));
    WriteStream(BuildTree(state.range(0)), path);
    for (auto _ : state) {
        SP<BNode> root;
        {
            BIStreamArchive archive(path, u"BenchTree");
            root = archive.TakeOut("");
        }
        if (!root || root->ChildNum() == 0)
            state.SkipWithError("read failed");
        benchmark::DoNotOptimize(root.get());
        state.PauseTiming(); // freeing the tree is not reading it, on either side
        root = nullptr;
        state.ResumeTiming();
    }
}

BENCHMARK(BM_Write_StreamArchive)->Apply(Sizes);
BENCHMARK(BM_Read_StreamArchive)->Apply(Sizes);

#ifdef QV_BENCH_WITH_BOOST
void BM_Write_BoostBinary(benchmark::State& state) {
    auto root = BuildBoostTree(state.range(0));
    std::string path = TempFile("boost_bench_stream_tree.bin");
    for (auto _ : state)
        WriteBoost(root, path);
}

void BM_Read_BoostBinary(benchmark::State& state) {
    std::string path = TempFile("boost_bench_stream_tree.bin");
    WriteBoost(BuildBoostTree(state.range(0)), path);
    BoostLoadCase(state, path);
}

BENCHMARK(BM_Write_BoostBinary)->Apply(Sizes);
BENCHMARK(BM_Read_BoostBinary)->Apply(Sizes);
#endif

} // namespace
