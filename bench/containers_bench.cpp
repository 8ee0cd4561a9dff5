// BArray and BDictionary beside std::vector and std::unordered_map, at the sizes the library
// uses: 1000 expected keys (binary profiles, WString keys) and 250000 (object archive tables,
// BString keys). Keys are lower-case hexadecimal numbers, the form of object ids.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <qv/core/containers/BArray.h>
#include <qv/core/containers/BDictionary.h>
#include <qv/core/strings/BString.h>
#include <qv/core/strings/WString.h>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

std::vector<std::string> HexKeys(long n) {
    std::vector<std::string> keys;
    char text[32];
    for (long i = 0; i < n; ++i) {
        std::snprintf(text, sizeof text, "%lx", i * 7919 + 1);
        keys.emplace_back(text);
    }
    return keys;
}

void BArrayAdd(benchmark::State& state) {
    for (auto _ : state) {
        BArray<long long> a;
        for (long i = 0; i < state.range(0); ++i)
            a.Add(i);
        benchmark::DoNotOptimize(a[0]);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BArrayAdd)->Arg(1000)->Arg(250000);

void VectorPushBack(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<long long> a;
        for (long i = 0; i < state.range(0); ++i)
            a.push_back(i);
        benchmark::DoNotOptimize(a[0]);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(VectorPushBack)->Arg(1000)->Arg(250000);

template <class S>
std::vector<S> Keys(long n) {
    std::vector<S> out;
    for (auto const& k : HexKeys(n))
        out.emplace_back(S(k.c_str()));
    return out;
}
template <>
std::vector<WString> Keys<WString>(long n) {
    std::vector<WString> out;
    for (auto const& k : HexKeys(n))
        out.push_back(WString::FromUtf8(k));
    return out;
}

template <class S>
void BDictionarySet(benchmark::State& state) {
    auto keys = Keys<S>(state.range(0));
    for (auto _ : state) {
        BDictionary<S, long long> d(static_cast<unsigned long long>(state.range(0)));
        for (std::size_t i = 0; i < keys.size(); ++i)
            d.Set(keys[i], static_cast<long long>(i));
        benchmark::DoNotOptimize(d.Count());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class S>
void BDictionaryFind(benchmark::State& state) {
    auto keys = Keys<S>(state.range(0));
    BDictionary<S, long long> d(static_cast<unsigned long long>(state.range(0)));
    for (std::size_t i = 0; i < keys.size(); ++i)
        d.Set(keys[i], static_cast<long long>(i));
    for (auto _ : state)
        for (auto const& k : keys)
            benchmark::DoNotOptimize(d.Find(k));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class K>
std::vector<K> StdKeys(long n) {
    std::vector<K> out;
    for (auto const& k : HexKeys(n))
        out.emplace_back(k.begin(), k.end());
    return out;
}

template <class K>
void UnorderedMapSet(benchmark::State& state) {
    auto keys = StdKeys<K>(state.range(0));
    for (auto _ : state) {
        std::unordered_map<K, long long> m;
        for (std::size_t i = 0; i < keys.size(); ++i)
            m[keys[i]] = static_cast<long long>(i);
        benchmark::DoNotOptimize(m.size());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class K>
void UnorderedMapFind(benchmark::State& state) {
    auto keys = StdKeys<K>(state.range(0));
    std::unordered_map<K, long long> m;
    for (std::size_t i = 0; i < keys.size(); ++i)
        m[keys[i]] = static_cast<long long>(i);
    for (auto _ : state)
        for (auto const& k : keys)
            benchmark::DoNotOptimize(m.find(k));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BDictionarySet<BString>)->Arg(1000)->Arg(250000);
BENCHMARK(UnorderedMapSet<std::string>)->Arg(1000)->Arg(250000);
BENCHMARK(BDictionaryFind<BString>)->Arg(1000)->Arg(250000);
BENCHMARK(UnorderedMapFind<std::string>)->Arg(1000)->Arg(250000);
// WString keys compare by the locale rule (collation), which dominates their cost.
BENCHMARK(BDictionarySet<WString>)->Arg(1000);
BENCHMARK(UnorderedMapSet<std::u16string>)->Arg(1000);
BENCHMARK(BDictionaryFind<WString>)->Arg(1000);
BENCHMARK(UnorderedMapFind<std::u16string>)->Arg(1000);

} // namespace
