// QVAlloc/QVFree with the standard manager registered, against malloc/free and mmap/munmap,
// side by side in one run, in the pattern of a scan pipeline: a ring of a few large buffers,
// the oldest freed and a new one allocated in turn, so that every allocation after the first
// round can reuse a gap. Each new buffer is touched the same way on every side (one byte
// written per page, so every page becomes resident), since a fresh page costs a fault wherever
// it comes from. The Untouched variants measure the calls alone.
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <qv/memory/CMemoryBlock.h>
#include <qv/memory/CStdMemoryManager.h>
#include <qv/memory/QVAlloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int kRing = 3;
std::size_t const kPage = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

void Touch(void* start, std::size_t size) {
    auto* bytes = static_cast<volatile unsigned char*>(start);
    for (std::size_t at = 0; at < size; at += kPage)
        bytes[at] = 1;
}

struct QvSide {
    CStdMemoryManager manager;
    explicit QvSide(std::size_t size) {
        // Room for the ring and one more, as an application sizes its frames for its scans.
        manager.Init((kRing + 1) * size, (kRing + 1) * size);
        CMemoryBlockManager::RegisterMemoryManager(&manager);
    }
    ~QvSide() { CMemoryBlockManager::RegisterMemoryManager(nullptr); }
    using Buffer = CMemoryBlock*;
    Buffer Alloc(std::size_t size) { return QVAlloc(size); }
    void* Start(Buffer b) { return b->Start(); }
    void Free(Buffer b, std::size_t) { QVFree(b); }
};

struct MallocSide {
    explicit MallocSide(std::size_t) {}
    using Buffer = void*;
    Buffer Alloc(std::size_t size) { return std::malloc(size); }
    void* Start(Buffer b) { return b; }
    void Free(Buffer b, std::size_t) { std::free(b); }
};

struct MmapSide {
    explicit MmapSide(std::size_t) {}
    using Buffer = void*;
    Buffer Alloc(std::size_t size) {
        void* p = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        return p == MAP_FAILED ? nullptr : p;
    }
    void* Start(Buffer b) { return b; }
    void Free(Buffer b, std::size_t size) { ::munmap(b, size); }
};

template <class Side, bool touch>
void Pipeline(benchmark::State& state) {
    auto const size = static_cast<std::size_t>(state.range(0));
    Side side(size);
    typename Side::Buffer ring[kRing] = {};
    for (auto& buffer : ring) {
        buffer = side.Alloc(size);
        Touch(side.Start(buffer), size);
    }
    int oldest = 0;
    for (auto _ : state) {
        side.Free(ring[oldest], size);
        ring[oldest] = side.Alloc(size);
        if (!ring[oldest]) {
            state.SkipWithError("no memory");
            return;
        }
        if (touch)
            Touch(side.Start(ring[oldest]), size);
        benchmark::DoNotOptimize(side.Start(ring[oldest]));
        oldest = (oldest + 1) % kRing;
    }
    for (auto buffer : ring)
        side.Free(buffer, size);
    state.SetBytesProcessed(static_cast<long long>(state.iterations()) *
                            static_cast<long long>(size));
}

void Sizes(benchmark::internal::Benchmark* b) {
    for (long long size : {64ll << 10, 1ll << 20, 4ll << 20, 16ll << 20, 64ll << 20})
        b->Arg(size);
}

} // namespace

BENCHMARK(Pipeline<QvSide, true>)->Name("BM_ReuseTouched_QVAlloc")->Apply(Sizes);
BENCHMARK(Pipeline<MallocSide, true>)->Name("BM_ReuseTouched_Malloc")->Apply(Sizes);
BENCHMARK(Pipeline<MmapSide, true>)->Name("BM_ReuseTouched_Mmap")->Apply(Sizes);
BENCHMARK(Pipeline<QvSide, false>)->Name("BM_ReuseUntouched_QVAlloc")->Apply(Sizes);
BENCHMARK(Pipeline<MallocSide, false>)->Name("BM_ReuseUntouched_Malloc")->Apply(Sizes);
BENCHMARK(Pipeline<MmapSide, false>)->Name("BM_ReuseUntouched_Mmap")->Apply(Sizes);
