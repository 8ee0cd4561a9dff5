// SHA-1 against OpenSSL's libcrypto, and the bit planes of a 4096 x 3000 scan mask against
// std::vector<bool> and boost::dynamic_bitset, side by side in one run. The mask has one
// plane, so BBitArray holds a byte to a pixel where the others hold a bit.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <boost/dynamic_bitset.hpp>
#include <cstdint>
#include <qv/measures/BBitArray.h>
#include <qv/measures/BSha1.h>
#include <vector>

#ifdef QV_BENCH_WITH_OPENSSL
#include <openssl/evp.h>
#endif

namespace {

constexpr int kWidth = 4096;
constexpr int kHeight = 3000;
constexpr std::size_t kPixels = std::size_t{kWidth} * kHeight;

std::vector<unsigned char> Message(std::size_t n) {
    std::vector<unsigned char> m(n);
    for (std::size_t i = 0; i < n; ++i)
        m[i] = static_cast<unsigned char>(i * 7 + 1);
    return m;
}

void BM_Sha1_Qv(benchmark::State& state) {
    std::vector<unsigned char> m = Message(static_cast<std::size_t>(state.range(0)));
    Crypt::BSha1::Result digest;
    for (auto _ : state) {
        Crypt::BSha1::Encrypt(m.data(), m.size(), digest);
        benchmark::DoNotOptimize(digest);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(BM_Sha1_Qv)->Arg(1 << 10)->Arg(1 << 16)->Arg(1 << 20);

#ifdef QV_BENCH_WITH_OPENSSL
// One context for all iterations, so that OpenSSL pays no allocation per digest.
void BM_Sha1_OpenSSL(benchmark::State& state) {
    std::vector<unsigned char> m = Message(static_cast<std::size_t>(state.range(0)));
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    EVP_MD const* sha1 = EVP_sha1();
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    for (auto _ : state) {
        EVP_DigestInit_ex(context, sha1, nullptr);
        EVP_DigestUpdate(context, m.data(), m.size());
        EVP_DigestFinal_ex(context, digest, &length);
        benchmark::DoNotOptimize(digest);
    }
    EVP_MD_CTX_free(context);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(BM_Sha1_OpenSSL)->Arg(1 << 10)->Arg(1 << 16)->Arg(1 << 20);
#endif

// Setting a checkerboard pixel by pixel: the per-bit path of each container.
void BM_SetBits_BBitArray(benchmark::State& state) {
    BBitArray plane(1, kWidth, kHeight);
    for (auto _ : state) {
        for (int y = 0; y < kHeight; ++y)
            for (int x = y & 1; x < kWidth; x += 2)
                plane.SetBit(x, y, 0);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels / 2));
}
void BM_SetBits_VectorBool(benchmark::State& state) {
    std::vector<bool> plane(kPixels);
    for (auto _ : state) {
        for (int y = 0; y < kHeight; ++y)
            for (int x = y & 1; x < kWidth; x += 2)
                plane[std::size_t{kWidth} * y + x] = true;
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels / 2));
}
void BM_SetBits_DynamicBitset(benchmark::State& state) {
    boost::dynamic_bitset<std::uint64_t> plane(kPixels);
    for (auto _ : state) {
        for (int y = 0; y < kHeight; ++y)
            for (int x = y & 1; x < kWidth; x += 2)
                plane.set(std::size_t{kWidth} * y + x);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels / 2));
}
BENCHMARK(BM_SetBits_BBitArray)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetBits_VectorBool)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetBits_DynamicBitset)->Unit(benchmark::kMillisecond);

// Setting the whole plane.
void BM_SetPlane_BBitArray(benchmark::State& state) {
    BBitArray plane(1, kWidth, kHeight);
    for (auto _ : state) {
        plane.ChangePlane(0, true);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}
void BM_SetPlane_VectorBool(benchmark::State& state) {
    std::vector<bool> plane(kPixels);
    for (auto _ : state) {
        std::fill(plane.begin(), plane.end(), true);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}
void BM_SetPlane_DynamicBitset(benchmark::State& state) {
    boost::dynamic_bitset<std::uint64_t> plane(kPixels);
    for (auto _ : state) {
        plane.set();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}
BENCHMARK(BM_SetPlane_BBitArray)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetPlane_VectorBool)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetPlane_DynamicBitset)->Unit(benchmark::kMillisecond);

// Counting the set pixels of a plane with every third pixel set.
template <class Plane, class Set>
void Every3rd(Plane& plane, Set set) {
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            if ((std::size_t{kWidth} * y + x) % 3 == 0)
                set(plane, x, y);
}
void BM_CountBits_BBitArray(benchmark::State& state) {
    BBitArray plane(1, kWidth, kHeight);
    Every3rd(plane, [](BBitArray& p, int x, int y) { p.SetBit(x, y, 0); });
    for (auto _ : state)
        benchmark::DoNotOptimize(plane.CountBits(0));
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}
void BM_CountBits_VectorBool(benchmark::State& state) {
    std::vector<bool> plane(kPixels);
    Every3rd(plane,
             [](std::vector<bool>& p, int x, int y) { p[std::size_t{kWidth} * y + x] = true; });
    for (auto _ : state)
        benchmark::DoNotOptimize(std::count(plane.begin(), plane.end(), true));
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}
void BM_CountBits_DynamicBitset(benchmark::State& state) {
    boost::dynamic_bitset<std::uint64_t> plane(kPixels);
    Every3rd(plane, [](auto& p, int x, int y) { p.set(std::size_t{kWidth} * y + x); });
    for (auto _ : state)
        benchmark::DoNotOptimize(plane.count());
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPixels));
}
BENCHMARK(BM_CountBits_BBitArray)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CountBits_VectorBool)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CountBits_DynamicBitset)->Unit(benchmark::kMillisecond);

} // namespace
