// Writing and loading trees of nodes through an object archive, side by side with
// Boost.Serialization's binary archive of the same tree (bench/BenchTrees.h), which both
// archives must store with the shared object once and load as one instance. The load cases
// also count the heap bytes per node that the loaded tree holds.
#include "BenchTrees.h"

#include <qv/persistence/BQuorvelArchive.h>

namespace {

using namespace bench_trees;

void WriteQv(BNode* root, WString const& path) {
    BQuorvelArchive archive(path.CStr(), BArchive::WRITE, BString("class BenchTree"), 1);
    archive.Insert(root, "tree");
}

void Qv_Write(benchmark::State& state) {
    SP<BNode> root = BuildTree(state.range(0));
    WString path = WString::FromUtf8(TempFile("qv_bench_tree.qva"));
    for (auto _ : state)
        WriteQv(root, path);
    state.counters["nodes"] = static_cast<double>(state.range(0));
}

void Qv_Load(benchmark::State& state) {
    WString path = WString::FromUtf8(TempFile("qv_bench_tree.qva"));
    WriteQv(BuildTree(state.range(0)), path);
    for (auto _ : state) {
        SP<BNode> root;
        double before = HeapInUse();
        {
            BQuorvelArchive archive(path.CStr(), BArchive::READ, BString("class BenchTree"), 1);
            root = archive.TakeOut("tree");
        } // the archive's teardown is part of loading; the tree outlives it through root
        if (!root || root->ChildNum() == 0)
            state.SkipWithError("load failed");
        benchmark::DoNotOptimize(root.get());
        state.PauseTiming(); // freeing the tree is not loading it, on either side
        state.counters["bytes_per_node"] =
            (HeapInUse() - before) / static_cast<double>(state.range(0));
        root = nullptr;
        state.ResumeTiming();
    }
}

BENCHMARK(Qv_Write)->Apply(Sizes);
BENCHMARK(Qv_Load)->Apply(Sizes);

#ifdef QV_BENCH_WITH_BOOST
void Boost_Write(benchmark::State& state) {
    auto root = BuildBoostTree(state.range(0));
    std::string path = TempFile("boost_bench_tree.bin");
    for (auto _ : state)
        WriteBoost(root, path);
}

void Boost_Load(benchmark::State& state) {
    std::string path = TempFile("boost_bench_tree.bin");
    WriteBoost(BuildBoostTree(state.range(0)), path);
    BoostLoadCase(state, path);
}

BENCHMARK(Boost_Write)->Apply(Sizes);
BENCHMARK(Boost_Load)->Apply(Sizes);
#endif

} // namespace
