// Building and walking a tree of 1,000,000 nodes, with and without a registered dispatcher
// that receives every change. The tree is 1,000 children of the root with 999 children each.
#include <benchmark/benchmark.h>
#include <qv/operations/BDispatcher.h>
#include <qv/tree/BNode.h>

namespace {

constexpr int kFanOut = 1000;

// A dispatcher that only counts, so that the figure is the tree's own cost of announcing.
class CountingDispatcher : public BDispatcher {
public:
    bool Send(unsigned int, unsigned long long, unsigned long long) override {
        ++count;
        return true;
    }
    bool Post(unsigned int, unsigned long long, unsigned long long) override { return true; }
    unsigned long ThreadId() override { return 0; }
    bool Subscribe(BMessageReceiver*) override { return false; }
    bool Unsubscribe(BMessageReceiver*) override { return false; }
    unsigned long long count = 0;
};

SP<BNode> BuildTree() {
    SP<BNode> root = new BNode;
    for (int i = 0; i < kFanOut; ++i) {
        SP<BNode> branch = new BNode;
        root->AddChild(branch, -1);
        for (int j = 0; j < kFanOut - 1; ++j)
            branch->AddChild(new BNode, -1);
    }
    return root;
}

void Build(benchmark::State& state, bool withDispatcher) {
    SP<CountingDispatcher> dispatcher = new CountingDispatcher;
    BDispatcher::RegisterDispatcher(withDispatcher ? dispatcher.get() : nullptr);
    for (auto _ : state) {
        SP<BNode> root = BuildTree();
        benchmark::DoNotOptimize(root.get());
        state.PauseTiming();
        root = nullptr;
        state.ResumeTiming();
    }
    BDispatcher::RegisterDispatcher(nullptr);
    state.counters["nodes"] = kFanOut * kFanOut;
}

void Build_NoDispatcher(benchmark::State& state) {
    Build(state, false);
}
void Build_WithDispatcher(benchmark::State& state) {
    Build(state, true);
}

void WalkByChildAndSister(benchmark::State& state) {
    SP<BNode> root = BuildTree();
    for (auto _ : state) {
        long visited = 0;
        for (BNode* branch = root->Child(0); branch; branch = branch->Sister())
            for (BNode* leaf = branch->Child(0); leaf; leaf = leaf->Sister())
                ++visited;
        benchmark::DoNotOptimize(visited);
    }
}

void Destroy(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        SP<BNode> root = BuildTree();
        state.ResumeTiming();
        root = nullptr;
    }
}

BENCHMARK(Build_NoDispatcher)->Unit(benchmark::kMillisecond);
BENCHMARK(Build_WithDispatcher)->Unit(benchmark::kMillisecond);
BENCHMARK(WalkByChildAndSister)->Unit(benchmark::kMillisecond);
BENCHMARK(Destroy)->Unit(benchmark::kMillisecond);

} // namespace
