// Writing and loading trees of nodes through an object archive, side by side with
// Boost.Serialization's binary archive of the same tree (bench/BenchTrees.h), which both
// archives must store with the shared object once and load as one instance. The load cases
// also count the heap bytes per node that the loaded tree holds.
#include "BenchTrees.h"

#include <ctime>
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

// The archive's teardown is part of loading; the tree outlives it.
SP<BNode> LoadQv(WString const& path) {
    BQuorvelArchive archive(path.CStr(), BArchive::READ, BString("class BenchTree"), 1);
    return archive.TakeOut("tree");
}

void Qv_Load(benchmark::State& state) {
    WString path = WString::FromUtf8(TempFile("qv_bench_tree.qva"));
    WriteQv(BuildTree(state.range(0)), path);
    for (auto _ : state) {
        double before = HeapInUse();
        SP<BNode> root = LoadQv(path);
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

double ThreadCpuMs() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// Both loads of the same tree in every iteration, one right after the other. The machines we
// measure on slow down for seconds at a time; cases run one after the other can land on
// either side of such a stretch, while the two halves of one iteration share it. The counter
// ratio is our CPU time over Boost's, summed over the iterations; freeing each tree is left
// out, as in the cases above.
void Paired_Load(benchmark::State& state) {
    WString qvPath = WString::FromUtf8(TempFile("qv_bench_tree.qva"));
    std::string boostPath = TempFile("boost_bench_tree.bin");
    WriteQv(BuildTree(state.range(0)), qvPath);
    WriteBoost(BuildBoostTree(state.range(0)), boostPath);
    double qvMs = 0, boostMs = 0;
    for (auto _ : state) {
        double start = ThreadCpuMs();
        SP<BNode> root = LoadQv(qvPath);
        double middle = ThreadCpuMs();
        std::shared_ptr<Node> boostRoot = LoadBoost(boostPath);
        double end = ThreadCpuMs();
        if (!root || !boostRoot)
            state.SkipWithError("load failed");
        qvMs += middle - start;
        boostMs += end - middle;
        state.PauseTiming();
        root = nullptr;
        boostRoot.reset();
        state.ResumeTiming();
    }
    state.counters["qv_ms"] = benchmark::Counter(qvMs, benchmark::Counter::kAvgIterations);
    state.counters["boost_ms"] = benchmark::Counter(boostMs, benchmark::Counter::kAvgIterations);
    state.counters["ratio"] = boostMs > 0 ? qvMs / boostMs : 0;
}

BENCHMARK(Paired_Load)->Arg(1000000)->Unit(benchmark::kMillisecond)->MinTime(2.0);
#endif

} // namespace
